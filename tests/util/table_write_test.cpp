#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "table_test_support.h"
#include "util/table.h"

namespace {

using TableWrite = TableTest;

// RESID (int), NAME (text: ALA, GLY), D (real, tolerance 0.25), two header lines.
struct BuiltTable {
    TabVar* vars = nullptr;
    int columns = 0;
    std::vector<float> values{1, 0, 1.5f, 2, 1, -2.25f, 3, -9999, 7.125f};
    TabHeader* hdr = hdrInit();

    BuiltTable() {
        addTabVar(&vars, &columns, "RESID", "%4d", kTabInt, 0.0f);
        addTabVar(&vars, &columns, "NAME", "%-4s", kTabText, 0.0f);
        addTabVar(&vars, &columns, "D", "%8.3f", kTabReal, 0.25f);
        mapText(&vars[1], "ALA");
        mapText(&vars[1], "GLY");
        addHdrLine("REMARK built", hdr);
        addHdrLine("DATA N 3", hdr);
    }
    ~BuiltTable() {
        freeTab(nullptr, vars, columns, 0);
        freeHdr(hdr);
    }
    int write(const std::string& path, int skipFlag = 0, const TabHeader* header = nullptr) {
        return wrTable2(path.c_str(), values.data(), columns, 3, vars, -9999, header, skipFlag, 0);
    }
};

const char* const kColumnLines =
    "VARS   RESID NAME D\nFORMAT %4d %-4s %8.3f\nTOLERANCE  0.00  0.00  0.25\n\n"
    "NULLVALUE -9999\nNULLSTRING *\n\n";

TEST_F(TableWrite, LayoutOfAWrittenTable) {
    BuiltTable b;
    testing::internal::CaptureStdout();
    EXPECT_EQ(b.write("-", 0, b.hdr), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              std::string("REMARK built\nDATA N 3\n") + kColumnLines +
                  "   1 ALA     1.500\n   2 GLY    -2.250\n   3 _NULLTXT    7.125\n");

    // No TOLERANCE line when all are zero; blanks in formats become underscores.
    ASSERT_EQ(chTabVar(&b.vars[2], "DC", " %7.2f", kTabReal, 0.0f), 0);
    EXPECT_EQ(b.write(path("out.tab")), 0);
    EXPECT_EQ(readFile(path("out.tab"))
                  .rfind("VARS   RESID NAME DC\nFORMAT %4d %-4s _%7.2f\n\nNULLVALUE -9999\n", 0),
              0u);
}

TEST_F(TableWrite, ReadWriteReadKeepsEverything) {
    ReadTable first(file("in.tab",
                         "REMARK first\n# second\nDATA DA_REF 12.5\n"
                         "VARS   RESID RESNAME ATOM D\nFORMAT %4d %-4s _%s %9.3f\n"
                         "TOLERANCE 0 0 0 1.5\nNULLVALUE -9999\nNULLSTRING *\n"
                         "3 PHE N 4.700\n4 GLY H -7.300\n5 PHE N -9999\n"));
    ASSERT_EQ(first.status, 0) << first.err;
    ASSERT_EQ(wrTable(path("copy").c_str(), first.tab.values, first.tab.columns, first.tab.rows,
                      first.tab.vars, -9999, first.hdr),
              0);
    ReadTable second(path("copy"));
    ASSERT_EQ(second.status, 0) << second.err;
    EXPECT_EQ(second.header(), first.header());
    ASSERT_EQ(second.tab.columns, 4);
    ASSERT_EQ(second.tab.rows, 3);
    for (int c = 0; c < 4; c++) {
        EXPECT_STREQ(second.var(c).name, first.var(c).name);
        EXPECT_STREQ(second.var(c).format, first.var(c).format);
        EXPECT_EQ(second.var(c).type, first.var(c).type);
        EXPECT_EQ(second.var(c).tolerance, first.var(c).tolerance);
        EXPECT_EQ(second.texts(c), first.texts(c));
        for (int r = 0; r < 3; r++) EXPECT_EQ(second.at(r, c), first.at(r, c));
    }
    EXPECT_FLOAT_EQ(getTabDataR(second.hdr, "da_ref"), 12.5f);

    // A null text is written as _NULLTXT and so reads back as that text.
    ReadTable nulls(file("n.tab", "VARS S\nFORMAT %s\nNULLVALUE -5\nNULLSTRING ?\na\n?\n"));
    ASSERT_EQ(wrTable(path("n2").c_str(), nulls.tab.values, 1, 2, nulls.tab.vars, -5, nullptr), 0);
    ReadTable back(path("n2"));
    EXPECT_EQ(back.texts(0), (std::vector<std::string>{"a", "_NULLTXT"}));
}

TEST_F(TableWrite, SkipFlagLeavesOutRowsWithANegativeSkipValue) {
    BuiltTable b;
    b.values[3] = -2;
    EXPECT_EQ(b.write(path("skip"), 1), 0);
    EXPECT_EQ(readFile(path("skip")),
              std::string(kColumnLines) + "   1 ALA     1.500\n   3 _NULLTXT    7.125\n");
    EXPECT_EQ(b.write(path("all"), 0), 0);
    EXPECT_NE(readFile(path("all")).find("  -2 GLY "), std::string::npos);
}

TEST_F(TableWrite, FailuresAreReported) {
    BuiltTable b;
    b.values[4] = 7;  // no such text: the field is left out, the rest written
    testing::internal::CaptureStderr();
    EXPECT_EQ(b.write(path("out")), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "WrTable Error: bad text.\nEntry 1, ID 7\n");
    EXPECT_NE(readFile(path("out")).find("   1 ALA     1.500\n   2   -2.250\n   3 _NULLTXT"),
              std::string::npos);

    b.values[4] = 1;
    b.vars[2].type = 9;
    testing::internal::CaptureStderr();
    EXPECT_EQ(b.write(path("out")), 1);
    b.vars[2].type = kTabInt;  // a format that does not fit is never handed to printf
    EXPECT_EQ(b.write(path("out")), 1);
    EXPECT_EQ(b.write(path("missing/out")), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "WrTable Error: bad type.\nEntry 0, 9\nWrTable Error: bad type.\nEntry 0, 2\n"
              "File open error: " +
                  path("missing/out") + "\n");
}

TEST_F(TableWrite, AllRealColumnsWithNumberedNames) {
    float values[] = {1, 2, 3, 4, 5, 6};
    EXPECT_EQ(wrTableN(path("out").c_str(), values, 3, 2, "X", "%.1f", -1, nullptr, 0.5f), 0);
    EXPECT_EQ(readFile(path("out")),
              "VARS   X1 X2 X3\nFORMAT %.1f %.1f %.1f\nTOLERANCE  0.50  0.50  0.50\n\n"
              "NULLVALUE -1\nNULLSTRING *\n\n1.0 2.0 3.0\n4.0 5.0 6.0\n");
}

}  // namespace
