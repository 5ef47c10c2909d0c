#include "util/symtab.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "util/alloc.h"
#include "util/hash.h"

namespace {

int64_t inUse() {
    int64_t used = 0;
    getMemUsed(&used, nullptr);
    return used;
}

template <class F>
std::string stderrOf(F run) {
    testing::internal::CaptureStderr();
    run();
    return testing::internal::GetCapturedStderr();
}

// Names of one chain, head first, with their depths: "CI:0 CB:1 C:2".
std::string chain(const HSymTab* tab, int bucket) {
    std::string out;
    for (const HSym* s = tab->buckets[bucket]; s; s = s->next) {
        if (!out.empty()) out += ' ';
        out.append(s->name).append(":").append(std::to_string(s->depth));
    }
    return out;
}

class SymTab : public ::testing::Test {
  protected:
    void SetUp() override {
        hSymResetID();
        start = inUse();
    }
    // Every test gives back all it took.
    void TearDown() override { EXPECT_EQ(inUse(), start); }
    int64_t start = 0;
};

TEST_F(SymTab, HashMatchesHandComputedValues) {
    // "CA": 'C' = 67; 67 * 16 + 'A' (65) = 1137; 1137 - 4 * 253 = 125.
    EXPECT_EQ(elfHash("CA"), 1137UL);
    EXPECT_EQ(hSymNameLoc("CA", 253), 125);
    // "ABCDEFGHI": no fold up to F (0x4567896); then the high nibble folds:
    // G: 0x45678960 + 0x47 = 0x456789A7 -> 0x056789A7 ^ 0x40 = 0x056789E7
    // H: 0x56789E70 + 0x48 = 0x56789EB8 -> 0x06789EB8 ^ 0x50 = 0x06789EE8
    // I: 0x6789EE80 + 0x49 = 0x6789EEC9 -> 0x0789EEC9 ^ 0x60 = 0x0789EEA9
    EXPECT_EQ(elfHash("ABCDEFGHI"), 0x0789EEA9UL);
    EXPECT_EQ(hSymNameLoc("ABCDEFGHI", 253), 0x0789EEA9 % 253);
    // A byte above 127 enters as a negative value: -23 wraps, and the fold
    // gives 0x0FFFFFE9 ^ 0xF0 = 0x0FFFFF19.
    EXPECT_EQ(elfHash("\xE9"), 0x0FFFFF19UL);
    EXPECT_EQ(hSymNameLoc("CA", 0), 0);
}

TEST_F(SymTab, BucketCountBelowOneMeans253) {
    for (int asked : {0, -4}) {
        HSymTab* tab = hSymTabAlloc(asked);
        ASSERT_NE(tab, nullptr);
        EXPECT_EQ(tab->nBuckets, 253);
        EXPECT_EQ(tab->nSyms, 0);
        hSymTabFree(tab);
    }
}

// With 7 buckets "C" (67), "CB" (1138) and "CI" (1145) all fall in bucket 4.
TEST_F(SymTab, CollidingNamesChainWithDepthsAndIDs) {
    HSymTab* tab = hSymTabAlloc(7);
    for (const char* name : {"C", "CB", "CI"}) ASSERT_EQ(hSymNameLoc(name, 7), 4);
    hSetSymInt("C", 1, tab);
    hSetSymInt("CB", 2, tab);
    hSetSymInt("CI", 3, tab);
    EXPECT_EQ(chain(tab, 4), "CI:0 CB:1 C:2");
    EXPECT_EQ(tab->maxDepth, 2);
    int value = 0;
    EXPECT_TRUE(hGetSymInt("CB", tab, &value));
    EXPECT_EQ(value, 2);
    EXPECT_EQ(hFindSym("C", tab)->id, 1);
    EXPECT_FALSE(hSymExists("CA", tab));

    // A second "CB" goes in front and hides the first.
    HSym* newer = hAddSym("CB", HSYM_INT, tab);
    EXPECT_EQ(hFindSym("CB", tab), newer);
    EXPECT_EQ(newer->id, 4);
    EXPECT_EQ(chain(tab, 4), "CB:0 CI:1 CB:2 C:3");
    EXPECT_EQ(tab->nSyms, 4);

    // Freeing the head: the rest keep their order and move up by one.
    hSymFree(newer);
    EXPECT_EQ(chain(tab, 4), "CI:0 CB:1 C:2");
    EXPECT_EQ(tab->nSyms, 3);
    EXPECT_EQ(hFindSym("CB", tab)->id, 2);
    hSymFree(hFindSym("CB", tab));
    EXPECT_EQ(chain(tab, 4), "CI:0 C:1");
    EXPECT_EQ(tab->maxDepth, 3);  // the deepest ever seen stays
    hSymFreeR(hFindSym("CI", tab));
    EXPECT_EQ(tab->buckets[4], nullptr);
    EXPECT_EQ(tab->nSyms, 0);
    hSymTabFree(tab);
}

TEST_F(SymTab, TypeClashNoticeKeepsTypeAndOverwritesSlot) {
    HSymTab* tab = hSymTabAlloc(0);
    hSetSymInt("HA", 5, tab);
    EXPECT_EQ(stderrOf([&] { hSetSymInt("HA", 6, tab); }), "");
    EXPECT_EQ(stderrOf([&] { EXPECT_EQ(hSetSymStr("HA", "text", tab), 0); }),
              "Symbol Notice: Type Clash for Symbol HA\n");
    HSym* sym = hFindSym("HA", tab);
    EXPECT_EQ(sym->type, HSYM_INT);
    char* text = nullptr;
    EXPECT_TRUE(hGetSymStr("HA", tab, &text));
    EXPECT_STREQ(text, "text");
    // Back to an int: the copied text is given back (checked by the balance).
    EXPECT_EQ(stderrOf([&] { hSetSymInt("HA", 7, tab); }), "");
    EXPECT_EQ(sym->textSize, 0);
    hSymTabFree(tab);
}

TEST_F(SymTab, GettersReadTheSlotAsTheirOwnType) {
    HSymTab* tab = hSymTabAlloc(11);
    hSetSymDbl("d", 1.5, tab);
    long bits = 0;
    EXPECT_TRUE(hGetSymLong("d", tab, &bits));
    EXPECT_EQ(bits, 0x3FF8000000000000L);  // IEEE 754 double 1.5
    EXPECT_TRUE(hGetSymDbl("d", tab, nullptr));
    hSetSymFlt("f", -0.25f, tab);
    float f = 0;
    EXPECT_TRUE(hGetSymFlt("f", tab, &f));
    EXPECT_EQ(f, -0.25f);
    double untouched = 42.0;
    EXPECT_FALSE(hGetSymDbl("missing", tab, &untouched));
    EXPECT_EQ(untouched, 42.0);
    EXPECT_FALSE(hGetSymInt("d", nullptr, nullptr));
    hSymTabFree(tab);
}

TEST_F(SymTab, ReverseLookupsGoBucketThenChainOrder) {
    HSymTab* tab = hSymTabAlloc(7);
    int target = 0;
    // Buckets: "N" 1, "O" 2, "H" 2 (in front of "O"), "CA" 3.
    hSetSymInt("CA", 9, tab);
    hSetSymInt("O", 9, tab);
    hSetSymInt("H", 9, tab);
    hSetSymInt("N", 8, tab);
    EXPECT_STREQ(hFindSymInt(tab, 9, 1)->name, "H");
    EXPECT_STREQ(hFindSymInt(tab, 9, 2)->name, "O");
    EXPECT_STREQ(hFindSymInt(tab, 9, 3)->name, "CA");
    EXPECT_EQ(hFindSymInt(tab, 9, 4), nullptr);
    EXPECT_EQ(hFindSymInt(tab, 9, 0), nullptr);
    EXPECT_STREQ(hFindSymID(tab, 4)->name, "N");
    EXPECT_EQ(hFindSymID(tab, 5), nullptr);

    EXPECT_EQ(stderrOf([&] {
                  hSetSymStr("O", "x", tab);  // an int symbol holding a text takes part too
                  hSetSymStr("C", "x", tab);
                  hSetSymPtr("N", &target, tab);
              }),
              "Symbol Notice: Type Clash for Symbol O\nSymbol Notice: Type Clash for Symbol N\n");
    testing::internal::CaptureStderr();
    EXPECT_STREQ(hFindSymStr(tab, "x", 1)->name, "O");
    EXPECT_STREQ(hFindSymStr(tab, "x", 2)->name, "C");
    EXPECT_EQ(hFindSymStr(tab, "y", 1), nullptr);
    EXPECT_EQ(hFindSymPtr(tab, &target, 1), hFindSym("N", tab));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");  // lookups stay quiet
    hSymTabFree(tab);
}

TEST_F(SymTab, ValuesAsText) {
    HSymTab* tab = hSymTabAlloc(1);
    hSetSymDbl("a", 2.5, tab);
    hSetSymFlt("b", 0.125f, tab);
    hSetSymInt("c", -7, tab);
    hSetSymLong("d", 1L << 40, tab);
    hSetSymPtr("e", reinterpret_cast<void*>(0x1234), tab);
    hSetSymStr("f", "H1'", tab);
    hSetSymStr("f", hFindSym("f", tab)->val.s, tab);  // its own text again
    EXPECT_STREQ(hSymVal2Str(hFindSym("a", tab)), "2.500000");
    EXPECT_STREQ(hSymVal2Str(hFindSym("b", tab)), "0.125000");
    EXPECT_STREQ(hSymVal2Str(hFindSym("c", tab)), "-7");
    EXPECT_STREQ(hSymVal2Str(hFindSym("d", tab)), "1099511627776");
    EXPECT_STREQ(hSymVal2Str(hFindSym("e", tab)), "4660");
    EXPECT_STREQ(hSymVal2Str(hFindSym("f", tab)), "H1'");
    EXPECT_STREQ(hSymVal2Str(nullptr), "NULL");
    hSymTabFree(tab);
}

TEST_F(SymTab, DumpListsBucketsInOrderEachChainFromItsHead) {
    HSymTab* tab = hSymTabAlloc(7);
    testing::internal::CaptureStdout();
    hSymDump(tab);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    hSetSymStr("CB", "beta", tab);
    hSetSymFlt("N", 1.5f, tab);
    hSetSymInt("C", 12, tab);
    testing::internal::CaptureStdout();
    hSymDump(tab);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              " Loc:    1  Depth:   0 Name: N                Value: 1.500000\n"
              " Loc:    4  Depth:   0 Name: C                Value: 12\n"
              " Loc:    4  Depth:   1 Name: CB               Value: beta\n");
    hSymTabFree(tab);
}

TEST_F(SymTab, FreeingTextValuesRestoresTheBalance) {
    HSymTab* tab = hSymTabAlloc(3);
    hSetSymStr("seg", "A", tab);
    hSetSymStr("seg", "a longer replacement text", tab);
    hSetSymStr("chain", "B", tab);
    hSetSymStr("none", nullptr, tab);
    stderrOf([&] { hSetSymDbl("chain", 3.0, tab); });  // clash: the owned text goes
    EXPECT_GT(inUse(), start);
    hSymFree(hFindSym("seg", tab));
    EXPECT_EQ(tab->nSyms, 2);
    hSymTabFree(tab);
}

}  // namespace
