#include "app/residue_range.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>

namespace {

// res1, resN and aRes1 after the defaults, for a run naming the given tables:
// coupling table residues 5 to 70, shift table residues 2 to 60.
std::array<int, 3> rangeFor(const char* dFile, const char* csFile, int res1, int resN, int aRes1) {
    RunSettings s;
    runSettingsNull(&s);
    std::strcpy(s.inName, dFile);
    std::strcpy(s.csName, csFile);
    s.res1 = res1;
    s.resN = resN;
    s.aRes1 = aRes1;
    applyResidueRangeDefaults(&s, 5, 70, 2, 60);
    return {s.res1, s.resN, s.aRes1};
}

using Range = std::array<int, 3>;

TEST(ResidueRange, UnsetEndsComeFromTheTables) {
    EXPECT_EQ(rangeFor("d.tab", "", kUnset, kUnset, kUnset), (Range{5, 70, 5}));
    EXPECT_EQ(rangeFor("d.tab", "cs.tab", kUnset, kUnset, kUnset), (Range{2, 70, 2}));
    EXPECT_EQ(rangeFor("", "cs.tab", kUnset, kUnset, kUnset), (Range{2, 60, 2}));
    EXPECT_EQ(rangeFor("d.tab", "cs.tab", 10, kUnset, 100), (Range{10, 70, 100}));
}

TEST(ResidueRange, ReversedEndsAreSwappedAndUnsetMeansBelowTheLimit) {
    EXPECT_EQ(rangeFor("", "", 50, 10, kUnset), (Range{10, 50, 10}));
    // -99999 is a real residue number; anything below it is unset.
    EXPECT_EQ(rangeFor("d.tab", "", -99999, -100000, kUnset), (Range{-99999, 70, -99999}));
}

}  // namespace
