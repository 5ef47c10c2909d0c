#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "table_test_support.h"
#include "util/table.h"

namespace {

using Lines = std::vector<std::string>;
using TableWrite = TableTest;

// An int, a text and a real column; the last row has a null text and number.
const char* const kTable =
    "REMARK built\n# second\nDATA N 3\nVARS   RESID NAME D\nFORMAT %4d %-4s _%7.3f\n"
    "TOLERANCE 0 0 0.25\nNULLVALUE -9999\nNULLSTRING *\n1 ALA 1.5\n2 GLY -2.25\n3 * -9999\n";

TEST_F(TableWrite, WrittenTableHasItsLayoutAndReadsBackTheSame) {
    ReadTable first(file("in.tab", kTable));
    ASSERT_EQ(first.status, 0) << first.err;
    TabData& t = first.tab;
    ASSERT_EQ(wrTable(path("copy").c_str(), t.values, 3, 3, t.vars, -9999, first.hdr), 0);
    EXPECT_EQ(readFile(path("copy")),
              "REMARK built\n# second\nDATA N 3\nVARS   RESID NAME D\nFORMAT %4d %-4s _%7.3f\n"
              "TOLERANCE  0.00  0.00  0.25\n\nNULLVALUE -9999\nNULLSTRING *\n\n"
              "   1 ALA     1.500\n   2 GLY    -2.250\n   3 _NULLTXT  -9999.000\n");

    // A null text is written as _NULLTXT and so reads back as that text.
    ReadTable second(path("copy"));
    EXPECT_EQ(second.header(), first.header());
    ASSERT_EQ(second.tab.columns, 3);
    ASSERT_EQ(second.tab.rows, 3);
    for (int c = 0; c < 3; c++) {
        EXPECT_STREQ(second.var(c).name, first.var(c).name);
        EXPECT_STREQ(second.var(c).format, first.var(c).format);
        EXPECT_EQ(second.var(c).type, first.var(c).type);
        EXPECT_EQ(second.var(c).tolerance, first.var(c).tolerance);
        for (int r = 0; r < 3 - (c == 1); r++) EXPECT_EQ(second.at(r, c), first.at(r, c)) << r << c;
    }
    EXPECT_EQ(second.texts(1), (Lines{"ALA", "GLY", "_NULLTXT"}));

    // No TOLERANCE line when all are zero.
    t.vars[2].tolerance = 0.0f;
    ASSERT_EQ(wrTable(path("copy").c_str(), t.values, 3, 3, t.vars, -9999, nullptr), 0);
    EXPECT_EQ(
        readFile(path("copy")).rfind("VARS   RESID NAME D\nFORMAT %4d %-4s _%7.3f\n\nNULL", 0), 0u);
}

TEST_F(TableWrite, FailuresAreReported) {
    ReadTable in(file("in.tab", kTable));
    TabData& t = in.tab;
    auto write = [&](const std::string& name) {
        return wrTable(path(name).c_str(), t.values, 3, 3, t.vars, -9999, nullptr);
    };
    t.values[4] = 7;  // no such text: the field is left out, the rest written
    EXPECT_EQ(stderrOf([&] { EXPECT_EQ(write("out"), 1); }),
              "WrTable Error: bad text.\nEntry 1, ID 7\n");
    EXPECT_NE(readFile(path("out")).find("   1 ALA     1.500\n   2   -2.250\n   3 _NULLTXT"),
              std::string::npos);

    t.values[4] = 1;
    t.vars[2].type = 9;
    EXPECT_EQ(stderrOf([&] {
                  EXPECT_EQ(write("out"), 1);
                  t.vars[2].type = kTabInt;  // a format that does not fit is never printed
                  EXPECT_EQ(write("out"), 1);
                  EXPECT_EQ(write("missing/out"), 1);
              }),
              "WrTable Error: bad type.\nEntry 0, 9\nWrTable Error: bad type.\nEntry 0, 2\n"
              "File open error: " +
                  path("missing/out") + "\n");
}

}  // namespace
