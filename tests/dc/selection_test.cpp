#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "dc/dtab.h"
#include "dc/select_dc.h"
#include "util/alloc.h"
#include "util/fixed_text.h"

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

struct Row {
    int i, j;
    const char* chain;
    const char* seg;
    float d;
};

std::vector<DCValue> makeCouplings(const std::vector<Row>& rows) {
    std::vector<DCValue> v(rows.size());
    resetDC(v.data(), static_cast<int>(v.size()));
    for (std::size_t k = 0; k < rows.size(); k++) {
        v[k].residI = rows[k].i;
        v[k].residJ = rows[k].j;
        copyName(v[k].chainI, rows[k].chain);
        copyName(v[k].chainJ, rows[k].chain);
        copyName(v[k].segI, rows[k].seg);
        copyName(v[k].segJ, rows[k].seg);
        v[k].dObs = rows[k].d;
    }
    return v;
}

std::set<int> selected(const std::vector<DCValue>& v) {
    std::set<int> rows;
    for (std::size_t k = 0; k < v.size(); k++) {
        if (v[k].use) rows.insert(static_cast<int>(k));
    }
    return rows;
}

// Pairs chosen so that every mode keeps a different set for the range 3..4;
// row 4 has no observation and row 5 lies outside.
const std::vector<Row> kPairs = {{3, 3, "", "", 1.0f},     {2, 3, "", "", 1.0f},
                                 {4, 6, "", "", 1.0f},     {1, 5, "", "", 1.0f},
                                 {3, 4, "", "", 99999.0f}, {6, 7, "", "", 1.0f}};

TEST(CouplingSelection, RangeModesTestTheirResidues) {
    std::vector<DCValue> v = makeCouplings(kPairs);
    const int n = static_cast<int>(v.size());
    EXPECT_EQ(selectD(v.data(), n, 3, 4, kSelectBoth), 1);
    EXPECT_EQ(selected(v), (std::set<int>{0}));
    EXPECT_EQ(selectD(v.data(), n, 3, 4, kSelectEither), 3);
    EXPECT_EQ(selected(v), (std::set<int>{0, 1, 2}));
    EXPECT_EQ(selectD(v.data(), n, 3, 4, kSelectMin), 2);
    EXPECT_EQ(selected(v), (std::set<int>{0, 2}));
    EXPECT_EQ(selectD(v.data(), n, 3, 4, kSelectMax), 2);
    EXPECT_EQ(selected(v), (std::set<int>{0, 1}));
    EXPECT_EQ(selectD(v.data(), n, 3, 4, 9), 2);  // an unknown mode tests as 4
    EXPECT_EQ(selected(v), (std::set<int>{0, 1}));
    // The whole range still leaves out the row without an observation.
    EXPECT_EQ(selectD(v.data(), n, -100, 100, kSelectBoth), 5);
    EXPECT_EQ(v[4].use, 0);

    // A single residue: both ends in mode 1, either end in mode 2.
    CaptureStderr();
    EXPECT_EQ(strSelectD(v.data(), n, "3", kSelectBoth), 1);
    EXPECT_EQ(selected(v), (std::set<int>{0}));
    EXPECT_EQ(strSelectD(v.data(), n, "3", kSelectEither), 2);
    EXPECT_EQ(selected(v), (std::set<int>{0, 1}));
    EXPECT_EQ(GetCapturedStderr(), "REMARK DC Selection ResID 3\nREMARK DC Selection ResID 3\n");
}

TEST(CouplingSelection, ModeTextsForTheReport) {
    char text[1024];
    const char* expected[] = {
        "(ResID I AND ResID J) Limits: 2 to 30", "(ResID I OR ResID J) Limits: 2 to 30",
        "Min(ResID I, ResID J) Limits: 2 to 30", "Max(ResID I, ResID J) Limits: 2 to 30"};
    for (int mode = 1; mode <= 4; mode++) {
        EXPECT_EQ(getDCSelectStr(mode, 2, 30, text), 0);
        EXPECT_STREQ(text, expected[mode - 1]);
    }
    EXPECT_EQ(getDCSelectStr(0, 2, 30, text), 1);
    EXPECT_STREQ(text, "Unknown Selection Mode");
}

TEST(CouplingSelection, SkipListDropsCouplingsTouchingAResidue) {
    std::vector<DCValue> v = makeCouplings(kPairs);
    const int n = static_cast<int>(v.size());
    int count = selectD(v.data(), n, 1, 7, kSelectEither);
    ASSERT_EQ(count, 5);
    EXPECT_EQ(skipD(v.data(), n, nullptr, 0, 42), 42);  // no list: count passed through
    const int skip[] = {3, 7};
    EXPECT_EQ(skipD(v.data(), n, skip, 2, count), 2);
    EXPECT_EQ(selected(v), (std::set<int>{2, 3}));
}

// Chain A and B, segments S1 and S2; the last row has no observation but
// still counts for "first" and "last".
const std::vector<Row> kChains = {
    {3, 3, "A", "S1", 1.0f},   {8, 8, "A", "S1", 1.0f},   {15, 15, "A", "S1", 1.0f},
    {25, 25, "A", "S1", 1.0f}, {35, 35, "A", "S1", 1.0f}, {45, 45, "A", "S1", 1.0f},
    {2, 2, "B", "S2", 1.0f},   {12, 12, "B", "S2", 1.0f}, {25, 25, "B", "S2", 1.0f},
    {45, 45, "B", "S2", 1.0f}, {55, 55, "B", "S2", 1.0f}, {60, 60, "B", "S2", 99999.0f}};

struct TextCase {
    const char* text;
    std::set<int> rows;
    const char* messages;
};

TEST(CouplingSelection, SelectionTextsSelectTheUnionOfTheirRanges) {
    const TextCase cases[] = {
        {"5 to 10 20 to 30 chain B 40-50",
         {1, 3, 8, 9},
         "REMARK DC Selection ResID Range: 5 to 10\n"
         "REMARK DC Selection ResID Range: 20 to 30\n"
         "REMARK DC Selection ResID Range: 40 to 50 Chain: B\n"},
        {"chain A 1-20 chain b 1 - 20",
         {0, 1, 2, 6, 7},
         "REMARK DC Selection ResID Range: 1 to 20 Chain: A\n"
         "REMARK DC Selection ResID Range: 1 to 20 Chain: b\n"},
        {"first to last",
         {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10},
         "REMARK DC Selection ResID Range: 2 to 60\n"},
        {"chain A FIRST to Last",
         {0, 1, 2, 3, 4, 5},
         "REMARK DC Selection ResID Range: 3 to 45 Chain: A\n"},
        {"chain C first-last", {}, "REMARK DC Selection ResID 0 Chain: C\n"},
        {"10 to 5", {1}, "REMARK DC Selection ResID Range: 10 to 5\n"},
        {"seg S2 none 12,25",
         {7, 8},
         "REMARK DC Selection ResID 12 Segment: S2\nREMARK DC Selection ResID 25 Segment: S2\n"},
        {"x-y", {}, "DC Select Warning: Bad Residue Specification Near Location 1: x-y\n"},
        // A bad word is skipped alone, so "x" is reported again on its own.
        {"8 to x 45",
         {5, 9},
         "DC Select Warning: Bad Residue Specification Near Location 1: 8\n"
         "DC Select Warning: Bad Residue Specification Near Location 3: x\n"
         "REMARK DC Selection ResID 45\n"},
        // A dash and "to" together: the dash separates, the far end is dropped.
        {"3-8 to 25",
         {0, 1},
         "DC Select Warning: Bad Range Specification at Location 1: 3-8\n"
         "REMARK DC Selection ResID Range: 3 to 8\n"},
        {"2 to 12-15",
         {2, 7},
         "DC Select Warning: Bad Range Specification at Location 3: 12-15\n"
         "REMARK DC Selection ResID Range: 12 to 15\n"},
    };
    std::vector<DCValue> v = makeCouplings(kChains);
    const int n = static_cast<int>(v.size());
    int64_t before, after, reused;
    getMemUsed(&before, &reused);
    for (const TextCase& c : cases) {
        selectD(v.data(), n, 0, 100, kSelectMax);  // everything in use beforehand
        CaptureStderr();
        strSelectD(v.data(), n, c.text, kSelectBoth);
        EXPECT_EQ(GetCapturedStderr(), c.messages) << c.text;
        EXPECT_EQ(selected(v), c.rows) << c.text;
    }
    getMemUsed(&after, &reused);
    EXPECT_EQ(after, before);

    // The result is the count in use after the last range; 0 when none applied.
    CaptureStderr();
    EXPECT_EQ(strSelectD(v.data(), n, "3 to 8 20 to 30", kSelectBoth), 4);
    EXPECT_EQ(strSelectD(v.data(), n, "x-y", kSelectBoth), 0);
    GetCapturedStderr();
    // An empty text or table changes nothing.
    selectD(v.data(), n, 0, 100, kSelectMax);
    EXPECT_EQ(strSelectD(v.data(), n, "", kSelectBoth), 0);
    EXPECT_EQ(strSelectD(v.data(), 0, "3", kSelectBoth), 0);
    EXPECT_EQ(selected(v).size(), 11u);
}

TEST(CouplingSelection, RangeAddsToTheSelectionWithChainAndSegmentFilters) {
    std::vector<Row> rows = kChains;
    rows.push_back({20, 30, "A", "S1", 1.0f});
    std::vector<DCValue> v = makeCouplings(rows);
    const int n = static_cast<int>(v.size());
    for (DCValue& c : v) c.use = 0;
    // Reversed ends, either-residue mode: 20..30 catches the 20-30 pair and
    // both residue 25 rows.
    EXPECT_EQ(selectDRange(v.data(), n, 30, 20, "*", "*", kSelectEither), 3);
    // Row 12 (A 20-30) counts again; chain b matches case-insensitively.
    EXPECT_EQ(selectDRange(v.data(), n, 40, 60, "b", "*", kSelectBoth), 5);
    EXPECT_EQ(selected(v), (std::set<int>{3, 8, 9, 10, 12}));
    // Segment S1 with mode 1 needs both ends inside; mode 3 only the smaller.
    for (DCValue& c : v) c.use = 0;
    EXPECT_EQ(selectDRange(v.data(), n, 20, 25, "*", "S1", kSelectBoth), 1);
    EXPECT_EQ(selectDRange(v.data(), n, 20, 25, "*", "s1", kSelectMin), 2);
    EXPECT_EQ(selected(v), (std::set<int>{3, 12}));
}

TEST(CouplingSelection, FirstAndLastFollowTheFilters) {
    std::vector<Row> rows = {{7, 30, "A", "", 1.0f}, {12, 4, "B", "", 1.0f}};
    std::vector<DCValue> v = makeCouplings(rows);
    copyName(v[1].chainI, "A");  // only its I side (12) is in chain A
    struct Pick {
        bool last;
        const char* word;
        const char* chain;
        const char* result;
    };
    const Pick picks[] = {
        {false, "first", "*", "4"}, {true, "LAST", "*", "30"},    {false, "first", "B", "4"},
        {true, "last", "B", "4"},   {true, "last", "a", "30"},    {false, "First", "A", "7"},
        {false, "first", "Z", "0"}, {false, "last", "*", "last"}, {true, "17", "*", "17"}};
    for (const Pick& p : picks) {
        char token[1024];
        copyText(token, sizeof token, p.word);
        (p.last ? getDCSelLast : getDCSelFirst)(token, v.data(), 2, p.chain, "*");
        EXPECT_STREQ(token, p.result) << p.word << " " << p.chain;
    }
}

}  // namespace
