#include <gtest/gtest.h>

#include <cstdint>
#include <set>
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
    float d;
    const char *chain = "", *seg = "";
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

// Pairs chosen so that every mode keeps a different set for the range 3..4,
// given as numbers or as text; row 4 has no observation and row 5 lies outside.
TEST(CouplingSelection, RangeModesSkipListsAndTheirReportTexts) {
    std::vector<DCValue> v =
        makeCouplings({{3, 3, 1}, {2, 3, 1}, {4, 6, 1}, {1, 5, 1}, {3, 4, 99999}, {6, 7, 1}});
    const int n = static_cast<int>(v.size());
    struct Case {
        int mode;
        std::set<int> rows;
        const char* text;
    };
    const Case cases[] = {
        {kSelectBoth, {0}, "(ResID I AND ResID J) Limits: 2 to 30"},
        {kSelectEither, {0, 1, 2}, "(ResID I OR ResID J) Limits: 2 to 30"},
        {kSelectMin, {0, 2}, "Min(ResID I, ResID J) Limits: 2 to 30"},
        {kSelectMax, {0, 1}, "Max(ResID I, ResID J) Limits: 2 to 30"},
        {9, {0, 1}, "Unknown Selection Mode"},  // an unknown mode selects as Max
    };
    for (const Case& c : cases) {
        EXPECT_EQ(selectD(v.data(), n, 3, 4, c.mode), static_cast<int>(c.rows.size()));
        EXPECT_EQ(selected(v), c.rows) << c.mode;
        CaptureStderr();  // the same range as selection text
        EXPECT_EQ(strSelectD(v.data(), n, "3 to 4", c.mode), static_cast<int>(c.rows.size()));
        GetCapturedStderr();
        EXPECT_EQ(selected(v), c.rows) << c.mode;
        char text[1024];
        EXPECT_EQ(getDCSelectStr(c.mode, 2, 30, text), c.mode == 9);
        EXPECT_STREQ(text, c.text);
    }
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

    // A skip list drops every coupling touching one of its residues.
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
    {3, 3, 1, "A", "S1"},   {8, 8, 1, "A", "S1"},   {15, 15, 1, "A", "S1"},
    {25, 25, 1, "A", "S1"}, {35, 35, 1, "A", "S1"}, {45, 45, 1, "A", "S1"},
    {2, 2, 1, "B", "S2"},   {12, 12, 1, "B", "S2"}, {25, 25, 1, "B", "S2"},
    {45, 45, 1, "B", "S2"}, {55, 55, 1, "B", "S2"}, {60, 60, 99999, "B", "S2"}};

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
}

}  // namespace
