#include "util/symtab.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "support/checks.h"
#include "util/hash.h"

namespace {

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
        start = bytesInUse();
    }
    // Every test gives back all it took.
    void TearDown() override { EXPECT_EQ(bytesInUse(), start); }
    int64_t start = 0;
};

TEST_F(SymTab, HashMatchesHandComputedValuesAndDefaultBucketCount) {
    // "CA": 'C' = 67; 67 * 16 + 'A' (65) = 1137; 1137 - 4 * 253 = 125.
    EXPECT_EQ(elfHash("CA"), 1137UL);
    EXPECT_EQ(hSymNameLoc("CA", 253), 125);
    // "ABCDEFGHI": no fold up to F (0x4567896); then the high nibble folds:
    // G: 0x45678960 + 0x47 = 0x456789A7 -> 0x056789A7 ^ 0x40 = 0x056789E7
    // H: 0x56789E70 + 0x48 = 0x56789EB8 -> 0x06789EB8 ^ 0x50 = 0x06789EE8
    // I: 0x6789EE80 + 0x49 = 0x6789EEC9 -> 0x0789EEC9 ^ 0x60 = 0x0789EEA9
    EXPECT_EQ(elfHash("ABCDEFGHI"), 0x0789EEA9UL);
    // A byte above 127 enters as a negative value: -23 wraps, and the fold
    // gives 0x0FFFFFE9 ^ 0xF0 = 0x0FFFFF19.
    EXPECT_EQ(elfHash("\xE9"), 0x0FFFFF19UL);
    HSymTab* tab = hSymTabAlloc(-4);
    EXPECT_EQ(tab->nBuckets, 253);
    hSymTabFree(tab);
}

// With 7 buckets "C" (67), "CB" (1138) and "CI" (1145) all fall in bucket 4.
TEST_F(SymTab, CollidingNamesChainWithDepthsAndIDs) {
    HSymTab* tab = hSymTabAlloc(7);
    for (const char* name : {"C", "CB", "CI"}) ASSERT_EQ(hSymNameLoc(name, 7), 4);
    hSetSymInt("C", 1, tab);
    hSetSymInt("CB", 2, tab);
    hSetSymInt("CI", 3, tab);
    EXPECT_EQ(chain(tab, 4), "CI:0 CB:1 C:2");
    EXPECT_EQ(hFindSym("C", tab)->id, 1);
    EXPECT_EQ(hFindSym("CA", tab), nullptr);

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
    hSymFree(hFindSym("CB", tab));
    EXPECT_EQ(chain(tab, 4), "CI:0 C:1");
    EXPECT_EQ(tab->maxDepth, 3);  // the deepest ever seen stays
    hSymFreeR(hFindSym("CI", tab));
    EXPECT_EQ(tab->buckets[4], nullptr);
    EXPECT_EQ(tab->nSyms, 0);
    hSymTabFree(tab);
}

// The balance check of TearDown shows that every replaced text is given back.
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
    stderrOf([&] { hSetSymStr("HA", "a longer replacement text", tab); });
    stderrOf([&] { hSetSymStr("HA", sym->val.s, tab); });  // its own text again
    EXPECT_STREQ(sym->val.s, "a longer replacement text");
    EXPECT_EQ(stderrOf([&] { hSetSymInt("HA", 7, tab); }), "");
    EXPECT_EQ(sym->textSize, 0);
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
    EXPECT_STREQ(hFindSymID(tab, 4)->name, "N");

    stderrOf([&] {
        hSetSymStr("O", "x", tab);  // an int symbol holding a text takes part too
        hSetSymStr("C", "x", tab);
        hSetSymPtr("N", &target, tab);
    });
    EXPECT_EQ(stderrOf([&] {  // lookups stay quiet
                  EXPECT_STREQ(hFindSymStr(tab, "x", 1)->name, "O");
                  EXPECT_STREQ(hFindSymStr(tab, "x", 2)->name, "C");
                  EXPECT_EQ(hFindSymStr(tab, "y", 1), nullptr);
                  EXPECT_EQ(hFindSymPtr(tab, &target, 1), hFindSym("N", tab));
              }),
              "");
    hSymTabFree(tab);
}

TEST_F(SymTab, DumpListsBucketsInOrderEachChainFromItsHead) {
    HSymTab* tab = hSymTabAlloc(7);
    hSetSymStr("CB", "beta", tab);
    hSetSymFlt("N", 1.5f, tab);
    hSetSymInt("C", 12, tab);
    hSetSymDbl("D", -2.5, tab);
    testing::internal::CaptureStdout();
    hSymDump(tab);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              " Loc:    1  Depth:   0 Name: N                Value: 1.500000\n"
              " Loc:    4  Depth:   0 Name: C                Value: 12\n"
              " Loc:    4  Depth:   1 Name: CB               Value: beta\n"
              " Loc:    5  Depth:   0 Name: D                Value: -2.500000\n");
    hSymTabFree(tab);
}

}  // namespace

namespace {

// A growing table: however many names it takes, every one is found, the
// newer of two equal names wins, each chain's depths count from its head,
// and freeing symbols afterwards keeps all of that.
TEST_F(SymTab, GrowingTableKeepsLookupsAndChainsRight) {
    HSymTab* tab = hSymTabAllocGrowing(0);
    ASSERT_EQ(tab->grows, 1);
    const int names = 5000;
    for (int i = 0; i < names; i++)
        ASSERT_EQ(hSetSymInt(("atom " + std::to_string(i)).c_str(), i, tab), 0);
    HSym* older = hAddSym("atom 17", HSYM_INT, tab);  // a second "atom 17", newer
    older->val.i = -17;
    EXPECT_EQ(tab->nSyms, names + 1);
    EXPECT_GE(tab->nBuckets, names);  // 253 doubled (plus one) as it filled
    EXPECT_EQ(tab->nBuckets % 2, 1);
    int value = 0, total = 0;
    for (int i = 0; i < names; i++) {
        ASSERT_EQ(hGetSymInt(("atom " + std::to_string(i)).c_str(), tab, &value), 1);
        EXPECT_EQ(value, i == 17 ? -17 : i);
    }
    for (int b = 0; b < tab->nBuckets; b++) {
        int depth = 0;
        for (const HSym* s = tab->buckets[b]; s; s = s->next, depth++) {
            EXPECT_EQ(s->depth, depth);
            EXPECT_EQ(static_cast<int>(s->hash % static_cast<unsigned long>(tab->nBuckets)), b);
            total++;
        }
        EXPECT_LE(depth - 1, tab->maxDepth);
    }
    EXPECT_EQ(total, names + 1);
    EXPECT_EQ(hFindSymID(tab, 1000)->val.i, 999);
    hSymFree(hFindSym("atom 17", tab));  // the newer goes, the older shows again
    ASSERT_EQ(hGetSymInt("atom 17", tab, &value), 1);
    EXPECT_EQ(value, 17);
    hSymFree(hFindSym("atom 4999", tab));
    EXPECT_EQ(hSymExists("atom 4999", tab), 0);
    EXPECT_EQ(tab->nSyms, names - 1);
    hSymTabFree(tab);
}

}  // namespace
