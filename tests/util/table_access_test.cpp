#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "table_test_support.h"
#include "util/table.h"

namespace {

using TableAccess = TableTest;

// Columns I (int), S (text), R (real) and a second "i" column.
struct Columns {
    TabVar* vars = nullptr;
    int count = 0;
    Columns() {
        addTabVar(&vars, &count, "I", "%5d", kTabInt, 0.0f);
        addTabVar(&vars, &count, "S", "|%-4s", kTabText, 0.0f);
        addTabVar(&vars, &count, "R", "%.2e", kTabReal, 1.0f);
        addTabVar(&vars, &count, "i", "%d", kTabInt, 0.0f);
    }
    ~Columns() { freeTab(nullptr, vars, count, 0); }
};

TEST_F(TableAccess, ColumnsAreFoundByNameAndValuesPrintWithTheirFormat) {
    Columns c;
    EXPECT_EQ(getTabVar(c.vars, c.count, "I"), 3);  // any case, the last one
    EXPECT_EQ(getTabVar(c.vars, c.count, "r"), 2);
    EXPECT_EQ(getTabVar(c.vars, 2, "R"), -1);
    ASSERT_EQ(mapText(&c.vars[1], "ab"), 0);
    ASSERT_EQ(mapText(&c.vars[1], "cd"), 1);
    ASSERT_EQ(mapText(&c.vars[1], "ab"), 0);
    float row[] = {-3.7f, 1, 12345.678f, 2};
    char text[1024];
    EXPECT_EQ(getTabVal(row, c.vars, 0, text, sizeof text), 0);
    EXPECT_STREQ(text, "   -3");
    EXPECT_EQ(getTabVal(row, c.vars, 1, text, sizeof text), 0);
    EXPECT_STREQ(text, "|cd  ");
    EXPECT_EQ(getTabVal(row, c.vars, 2, text, sizeof text), 0);
    EXPECT_STREQ(text, "1.23e+04");
    EXPECT_STREQ(fmtTabVar(row, c.vars, 1, text, sizeof text), "|cd  ");

    row[1] = 2;  // one past the last text
    EXPECT_EQ(getTabVal(row, c.vars, 1, text, sizeof text), 1);
    EXPECT_STREQ(text, "???");
    EXPECT_STREQ(fmtTabVar(row, c.vars, 1, text, sizeof text), "(Null)");
    c.vars[0].type = 7;
    EXPECT_EQ(getTabVal(row, c.vars, 0, text, sizeof text), 1);
    EXPECT_STREQ(text, "???");
    c.vars[0].type = kTabInt;

    char small[4];
    EXPECT_EQ(getTabVal(row, c.vars, 2, small, sizeof small), 0);
    EXPECT_STREQ(small, "1.2");
}

TEST_F(TableAccess, SetValueParsesByColumnType) {
    Columns c;
    float row[] = {0, 0, 0, 0};
    EXPECT_EQ(setTabVal(row, c.vars, 0, "  42 rest"), 0);
    EXPECT_FLOAT_EQ(row[0], 42.0f);
    EXPECT_EQ(setTabVal(row, c.vars, 0, "x42"), 1);
    EXPECT_FLOAT_EQ(row[0], 42.0f);
    EXPECT_EQ(setTabVal(row, c.vars, 2, "-1.5e1"), 0);
    EXPECT_FLOAT_EQ(row[2], -15.0f);
    EXPECT_EQ(setTabVal(row, c.vars, 2, ""), 1);
    EXPECT_EQ(setTabVal(row, c.vars, 1, "GLY"), 0);
    EXPECT_EQ(setTabVal(row, c.vars, 1, "ALA x"), 0);
    EXPECT_FLOAT_EQ(row[1], 1.0f);
    EXPECT_EQ(setTabVal(row, c.vars, 1, "GLY"), 0);
    EXPECT_FLOAT_EQ(row[1], 0.0f);
    ASSERT_EQ(c.vars[1].textCount, 2);
    EXPECT_STREQ(c.vars[1].texts[1], "ALA");
    EXPECT_EQ(c.vars[1].texts[2], nullptr);
}

TEST_F(TableAccess, HeaderListAndItsDataValues) {
    TabHeader* hdr = hdrInit();
    for (const char* line : {"REMARK DATA X 1", "DATA", "data title Hello  world", "DATA N 7",
                             "DATA N 8", "Data DA_REF -3.25 Hz", "DATAX N 9"}) {
        ASSERT_EQ(addHdrLine(line, hdr), 0);
    }
    addHdrLine("# last", hdr->next);  // any node of the list will do
    std::vector<std::string> lines;
    const TabHeader* h = hdr;
    for (; h->text; h = h->next) lines.emplace_back(h->text);
    EXPECT_EQ(lines.size(), 8u);
    EXPECT_EQ(lines.back(), "# last");
    EXPECT_EQ(h->next, nullptr);
    EXPECT_STREQ(getTabData(hdr, "TITLE"), "Hello  world");
    EXPECT_EQ(getTabDataI(hdr, "n"), 7);
    EXPECT_FLOAT_EQ(getTabDataR(hdr, "da_ref"), -3.25f);
    EXPECT_EQ(getTabData(hdr, "X"), nullptr);
    EXPECT_EQ(getTabDataI(hdr, "missing"), 0);
    EXPECT_FLOAT_EQ(getTabDataR(hdr, "title"), 0.0f);
    freeHdr(hdr);
}

TEST_F(TableAccess, AddedColumnsAndWidenedRowsWriteAndReadBack) {
    TabVar* vars = nullptr;
    int columns = 0;
    float* values = fltMalloc64("table", 2);
    values[0] = 1;
    values[1] = 2;
    ASSERT_EQ(addTabVar(&vars, &columns, "A", "%d", kTabInt, 0.0f), 0);
    ASSERT_EQ(addTabVar(&vars, &columns, "B", "%s", kTabText, 0.0f), 0);
    ASSERT_EQ(addMatVar(&values, 2, 1, 2), 0);
    ASSERT_EQ(addTabVar(&vars, &columns, "C", "%f", kTabReal, 0.0f), 0);
    ASSERT_EQ(chTabVar(&vars[2], "Z", "%6.1f", kTabReal, 2.0f), 0);
    ASSERT_EQ(setTabVal(values, vars, 1, "x"), 0);
    ASSERT_EQ(setTabVal(values + 3, vars, 1, "y"), 0);
    ASSERT_EQ(setTabVal(values + 3, vars, 2, "2.5"), 0);
    std::string out = path("out.tab");
    ASSERT_EQ(wrTable(out.c_str(), values, columns, 2, vars, -1, nullptr), 0);
    freeTab(values, vars, columns, 2);
    EXPECT_EQ(readFile(out),
              "VARS   A B Z\nFORMAT %d %s %6.1f\nTOLERANCE  0.00  0.00  2.00\n\n"
              "NULLVALUE -1\nNULLSTRING *\n\n1 x    0.0\n2 y    2.5\n");
}

}  // namespace
