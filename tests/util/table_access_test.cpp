#include <gtest/gtest.h>

#include <string>

#include "table_test_support.h"
#include "util/table.h"

namespace {

using TableAccess = TableTest;

TEST_F(TableAccess, ColumnsAreFoundByNameAndValuesPrintWithTheirFormat) {
    TabVar* vars = nullptr;
    int count = 0;
    addTabVar(&vars, &count, "I", "%5d", kTabInt, 0.0f);
    addTabVar(&vars, &count, "S", "|%-4s", kTabText, 0.0f);
    addTabVar(&vars, &count, "R", "%.2e", kTabReal, 1.0f);
    addTabVar(&vars, &count, "i", "%d", kTabInt, 0.0f);
    EXPECT_EQ(getTabVar(vars, count, "I"), 3);  // any case, the last one
    EXPECT_EQ(getTabVar(vars, count, "r"), 2);
    EXPECT_EQ(getTabVar(vars, 2, "R"), -1);
    mapText(&vars[1], "ab");
    mapText(&vars[1], "cd");
    float row[] = {-3.7f, 1, 12345.678f, 2};
    const char* printed[] = {"   -3", "|cd  ", "1.23e+04"};
    char text[1024];
    for (int c = 0; c < 3; c++) {
        EXPECT_EQ(getTabVal(row, vars, c, text, sizeof text), 0);
        EXPECT_STREQ(text, printed[c]);
    }
    char small[4];
    EXPECT_EQ(getTabVal(row, vars, 2, small, sizeof small), 0);
    EXPECT_STREQ(small, "1.2");

    row[1] = 2;  // one past the last text
    EXPECT_EQ(getTabVal(row, vars, 1, text, sizeof text), 1);
    EXPECT_STREQ(text, "???");
    vars[0].type = 7;
    EXPECT_EQ(getTabVal(row, vars, 0, text, sizeof text), 1);
    EXPECT_STREQ(text, "???");
    freeTab(nullptr, vars, count, 0);
}

TEST_F(TableAccess, HeaderDataValuesIgnoreCase) {
    TabHeader* hdr = hdrInit();
    for (const char* line : {"REMARK DATA X 1", "DATA", "data title Hello  world", "DATA N 7",
                             "DATA N 8", "Data DA_REF -3.25 Hz", "DATAX N 9"}) {
        ASSERT_EQ(addHdrLine(line, hdr), 0);
    }
    EXPECT_STREQ(getTabData(hdr, "TITLE"), "Hello  world");
    EXPECT_EQ(getTabDataI(hdr, "n"), 7);
    EXPECT_FLOAT_EQ(getTabDataR(hdr, "da_ref"), -3.25f);
    EXPECT_EQ(getTabData(hdr, "X"), nullptr);
    EXPECT_EQ(getTabDataI(hdr, "missing"), 0);
    EXPECT_FLOAT_EQ(getTabDataR(hdr, "title"), 0.0f);
    freeHdr(hdr);
}

}  // namespace
