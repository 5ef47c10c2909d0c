#include "pdb/name_match.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "pdb/regex.h"
#include "util/alloc.h"

namespace {

TEST(Glob, WildcardsSetsAndEscapes) {
    struct Case {
        const char* text;
        const char* pattern;
        int expected;
    } cases[] = {
        {"HB", "HB*", 1},      {"HB12", "HB*", 1},      {"CB", "*B", 1},     {"", "*", 1},
        {"HBG1", "*B*1", 1},   {"axxbyyc", "a*b*c", 1}, {"abcb", "*b", 1},   {"HB12", "*1", 0},
        {"HA", "H?", 1},       {"H", "H?", 0},          {"HAB", "H?", 0},    {"HB1", "H[A-C]1", 1},
        {"HD1", "H[A-C]1", 0}, {"HD", "H[AB-D]", 1},    {"H-", "H[-A]", 1},  {"]", "[\\]]", 1},
        {"H*", "H\\*", 1},     {"HA", "H\\*", 0},       {"H?", "H\\?", 1},   {"HB", "HB1", 0},
        {"HB1", "HB", 0},      {"hb", "HB", 0},         {"H1", "H[0-9]", 1}, {"H12", "H[0-9]", 0},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(strMatchGlob(c.text, c.pattern), c.expected) << c.pattern << " on " << c.text;
    }
}

TEST(Glob, MalformedPatternsMatchNothing) {
    EXPECT_EQ(strMatchGlob("[", "["), 0);
    EXPECT_EQ(strMatchGlob("H[", "H["), 0);
    EXPECT_EQ(strMatchGlob("HA", "H[A"), 0);
    EXPECT_EQ(strMatchGlob("]", "[]"), 0);
    EXPECT_EQ(strMatchGlob("", "[]"), 0);
    EXPECT_EQ(strMatchGlob("H]", "*[]"), 0);
    EXPECT_EQ(strMatchGlob("H\\", "H\\"), 0);
    EXPECT_EQ(strMatchGlob(nullptr, "*"), 0);
    EXPECT_EQ(strMatchGlob("H", nullptr), 0);
}

TEST(AtomMatch, NumeralAndRunConventionsAnchoredAtBothEnds) {
    EXPECT_EQ(atomMatch("HB1", "HB#"), 1);
    EXPECT_EQ(atomMatch("HB12", "HB#"), 0);
    EXPECT_EQ(atomMatch("1HB1", "HB#"), 0);
    EXPECT_EQ(atomMatch("HBA", "HB#"), 0);
    EXPECT_EQ(atomMatch("HB12", "HB##"), 1);
    EXPECT_EQ(atomMatch("1HB", "#HB"), 1);
    for (const char* name : {"HG", "HG1", "HG12"}) EXPECT_EQ(atomMatch(name, "HG*"), 1) << name;
    EXPECT_EQ(atomMatch("HD1", "HG*"), 0);
    EXPECT_EQ(atomMatch("1HG", "HG*"), 0);
    for (char digit = '1'; digit <= '9'; digit++) {
        EXPECT_EQ(atomMatch((std::string("H") + digit).c_str(), "H#"), 1) << digit;
    }
    EXPECT_EQ(atomMatch("H", "H#"), 0);
    EXPECT_EQ(atomMatch("HA", "H#"), 0);
    EXPECT_EQ(atomMatch("hb1", "HB#"), 0);  // names compare case by case
    EXPECT_EQ(atomMatch("HB2", "HB[23]"), 1);
    EXPECT_EQ(atomMatch(nullptr, "HB#"), 0);
}

TEST(StrMatch, ModesAndCase) {
    EXPECT_EQ(strMatch("CA", "CA", kMatchExact, 1), 1);
    EXPECT_EQ(strMatch("ca", "CA", kMatchExact, 1), 0);
    EXPECT_EQ(strMatch("ca", "CA", kMatchExact, 0), 1);
    EXPECT_EQ(strMatch("CA1", "CA", kMatchExact, 0), 0);
    EXPECT_EQ(strMatch("ca", "^CA$", kMatchRegex, 0), 1);
    EXPECT_EQ(strMatch("ca", "^CA$", kMatchRegex, 1), 0);
    EXPECT_EQ(strMatch("CA", "^[a-c]a$", kMatchRegex, 0), 1);
    EXPECT_EQ(strMatch("xCAy", "CA", kMatchRegex, 1), 1);  // a search, not anchored
    EXPECT_EQ(strMatch("hb12", "HB*", kMatchGlob, 0), 1);
    EXPECT_EQ(strMatch("hb12", "HB*", kMatchGlob, 1), 0);
    EXPECT_EQ(strMatch("xCAy", "CA", kMatchGlob, 1), 0);
    EXPECT_EQ(strMatch("CA", "CA", 0, 1), 0);
    EXPECT_EQ(strMatch("CA", "CA", 4, 0), 0);
    EXPECT_EQ(strMatch(nullptr, "CA", kMatchExact, 1), 0);
    EXPECT_EQ(strMatch("CA", nullptr, kMatchGlob, 0), 0);
    // A bad expression gives no match and leaves its reason.
    resetRegError();
    EXPECT_EQ(strMatch("CA", "(CA", kMatchRegex, 0), 0);
    EXPECT_STREQ(strGetRegError(), "unmatched ()");
}

TEST(AtomExpr, ClassifiesAndWritesPrintfPattern) {
    char pattern[kAtomExprSize];
    EXPECT_EQ(isAtomExpr("CA", pattern), 0);
    EXPECT_STREQ(pattern, "CA");
    EXPECT_EQ(isAtomExpr("HB#", pattern), 1);
    EXPECT_STREQ(pattern, "HB%d");
    EXPECT_EQ(isAtomExpr("HG*", pattern), 2);
    EXPECT_STREQ(pattern, "HG%s%s");
    EXPECT_EQ(isAtomExpr("H#*", pattern), 2);
    EXPECT_EQ(isAtomExpr("H*#", pattern), 1);
    EXPECT_STREQ(pattern, "H%s%s%d");
    EXPECT_EQ(isAtomExpr("H%#", pattern), 1);
    EXPECT_STREQ(pattern, "H%%%d");
    EXPECT_EQ(isAtomExpr("HB#", nullptr), 1);
    char small[4];
    EXPECT_EQ(isAtomExpr("HB#", small, sizeof(small)), 1);
    EXPECT_STREQ(small, "");
}

TEST(AtomExpr, NumeralMarksBecomeDigitSets) {
    char text[kAtomExprSize] = "#H#";
    EXPECT_EQ(adjAtomExpr(text), 2);
    EXPECT_STREQ(text, "[0-9]H[0-9]");
    std::strcpy(text, "CA");
    EXPECT_EQ(adjAtomExpr(text), 0);
    EXPECT_STREQ(text, "CA");
    char small[8] = "H##";
    EXPECT_EQ(adjAtomExpr(small, sizeof(small)), -1);
    EXPECT_STREQ(small, "H##");
    char exact[7] = "H#";
    EXPECT_EQ(adjAtomExpr(exact, sizeof(exact)), 1);
    EXPECT_STREQ(exact, "H[0-9]");
    // The glob form the selection uses: H# matches H1 to H9 and nothing longer.
    std::strcpy(text, "h#");
    ASSERT_EQ(adjAtomExpr(text), 1);
    for (char digit = '1'; digit <= '9'; digit++) {
        EXPECT_EQ(strMatch((std::string("H") + digit).c_str(), text, kMatchGlob, 0), 1);
    }
    EXPECT_EQ(strMatch("H10", text, kMatchGlob, 0), 0);
    EXPECT_EQ(strMatch("HA", text, kMatchGlob, 0), 0);
}

TEST(NameMatch, CopiesAndExpressionsGiveBackTheirMemory) {
    int64_t before = 0;
    int64_t after = 0;
    getMemUsed(&before, nullptr);
    EXPECT_EQ(strMatch("hb1", "^HB[0-9]$", kMatchRegex, 0), 1);
    EXPECT_EQ(strMatch("hb1", "HB?", kMatchGlob, 0), 1);
    EXPECT_EQ(strMatch("hb1", "(", kMatchRegex, 0), 0);
    EXPECT_EQ(atomMatch("HG12", "HG*"), 1);
    EXPECT_EQ(atomMatch("HG12", "HG("), 0);
    getMemUsed(&after, nullptr);
    EXPECT_EQ(after, before);
}

}  // namespace
