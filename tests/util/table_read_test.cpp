#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "table_test_support.h"
#include "util/table.h"

namespace {

using Lines = std::vector<std::string>;
using TableRead = TableTest;

TEST_F(TableRead, ColumnsValuesAndHeaderOfATable) {
    // Numbers equal to NULLVALUE take the caller's replacement; a text equal
    // to NULLSTRING keeps the file's own marker. Only the first VARS line
    // counts; a lower-case "vars" line is neither columns nor data.
    ReadTable t(file("t.tab",
                     "REMARK Test table\n# a comment\ndata first_resid 5\n"
                     "vars X Y\nVARS   RESID RESNAME D TAG\nVARS A B\n"
                     "FORMAT _%4d %-4s %8.3f %s\nTOLERANCE 0 0 0.5 0\nNULLVALUE -99\n"
                     "NULLSTRING *\n\n  1 ALA  1.250 x\n  2 GLY -99 *\n#3 ALA 9.0 z\n"
                     "  3 ALA -99.000 y\nEND\n"),
                0.0f);
    ASSERT_EQ(t.status, 0) << t.err;
    EXPECT_EQ(t.err, "");
    ASSERT_EQ(t.tab.columns, 4);
    ASSERT_EQ(t.tab.rows, 3);
    const char* names[] = {"RESID", "RESNAME", "D", "TAG"};
    const char* formats[] = {" %4d", "%-4s", "%8.3f", "%s"};
    int types[] = {kTabInt, kTabText, kTabReal, kTabText};
    float expected[3][4] = {{1, 0, 1.25f, 0}, {2, 1, 0, -99}, {3, 0, 0, 1}};
    for (int c = 0; c < 4; c++) {
        EXPECT_STREQ(t.var(c).name, names[c]);
        EXPECT_STREQ(t.var(c).format, formats[c]);
        EXPECT_EQ(t.var(c).type, types[c]);
        EXPECT_FLOAT_EQ(t.var(c).tolerance, c == 2 ? 0.5f : 0.0f);
        for (int r = 0; r < 3; r++) EXPECT_FLOAT_EQ(t.at(r, c), expected[r][c]) << r << c;
    }
    EXPECT_EQ(t.texts(1), (Lines{"ALA", "GLY"}));
    EXPECT_EQ(t.texts(3), (Lines{"x", "y"}));
    EXPECT_EQ(t.header(),
              (Lines{"REMARK Test table", "# a comment", "data first_resid 5", "#3 ALA 9.0 z"}));
}

TEST_F(TableRead, NullMarkersWithoutNullValueAndTheLastOneCounting) {
    ReadTable none(file("a.tab", "VARS A B\nFORMAT %d %s\nNULLSTRING -\n-99999 -\n"), 0.0f);
    EXPECT_FLOAT_EQ(none.at(0, 0), -99999.0f);  // no NULLVALUE line: not replaced
    EXPECT_FLOAT_EQ(none.at(0, 1), -99999.0f);  // the default marker
    ReadTable last(file("b.tab",
                        "NULLVALUE 7\nNULLSTRING a\nVARS I S\nFORMAT %d %s\n7 b\n"
                        "NULLVALUE 8\nNULLSTRING b\n8 a\n"),
                   -1.0f);
    float expected[] = {7, 8, -1, 0};
    for (int i = 0; i < 4; i++) EXPECT_FLOAT_EQ(last.tab.values[i], expected[i]) << i;
}

TEST_F(TableRead, FormatsDecideTypesAndBadItemsWarn) {
    ReadTable t(file("t.tab",
                     "VARS A B C D E\nFORMAT %-4s %8.3f %e %g %5d\n"
                     "x 1.5e2x -0.125 1e-3 12abc\ny 1 2 3 -7.9\n"));
    EXPECT_EQ(t.err, "");
    int types[] = {kTabText, kTabReal, kTabReal, kTabReal, kTabInt};
    float row[] = {0, 150, -0.125f, 0.001f, 12};
    for (int c = 0; c < 5; c++) {
        EXPECT_EQ(t.var(c).type, types[c]);
        EXPECT_FLOAT_EQ(t.at(0, c), row[c]);
    }
    EXPECT_FLOAT_EQ(t.at(1, 4), -7.0f);

    ReadTable bad(file("u.tab", "VARS I F S\nFORMAT %d %f %s\nabc x\n5 2.5 ok extra\n"), 0.0f);
    ASSERT_EQ(bad.status, 0);
    EXPECT_EQ(bad.err,
              "RdTable Warning: Bad I-Item 1:\nabc x\nRdTable Warning: Bad F-Item 2:\nabc x\n"
              "RdTable Warning: Bad T-Item 3:\nabc x\n");
    float expected[] = {0, 0, kTabNullDefault, 5, 2.5f, 0};
    for (int i = 0; i < 6; i++) EXPECT_FLOAT_EQ(bad.tab.values[i], expected[i]) << i;
}

TEST_F(TableRead, EachReaderErrorHasItsMessageAndStatusOne) {
    const char* const cases[][2] = {
        {"VARS A B\nFORMAT %d %d\n", "RdTable Error: no entries in "},
        {"1 2 3\n", "RdTable Error: no variables found.\n"},
        {"VARS\n1 2\n", "RdTable Error: no variables found.\n"},
        {"VARS A B\nFORMAT %d\n1 2\n",
         "RdTable Error: VARS/FORMAT mismatch:\nVARS A B\nFORMAT %d\n"},
        {"VARS A B\nTOLERANCE 1 2 3\n1 2\n",
         "RdTable Error: VARS/TOLERANCE mismatch:\nVARS A B\nTOLERANCE 1 2 3\n"},
        {"VARS A B\nFORMAT %5d %x\n1 2\n", "RdTable Error: bad format FORMAT %5d %x\n"},
        {"VARS A\nFORMAT %d%s\n1\n", "RdTable Error: bad format FORMAT %d%s\n"},
        {"VARS A\nFORMAT %lx\n1\n", "RdTable Error: bad format FORMAT %lx\n"},
        {"VARS A\nFORMAT %llld\n1\n", "RdTable Error: bad format FORMAT %llld\n"},
        {"VARS A\nFORMAT %*d\n1\n", "RdTable Error: bad format FORMAT %*d\n"},
        {"VARS A\nFORMAT %.1024s\n1\n", "RdTable Error: bad format FORMAT %.1024s\n"},
        {"VARS A\nFORMAT %5.2f_A\n1\n", "RdTable Error: bad format FORMAT %5.2f_A\n"},
    };
    int n = 0;
    for (const auto& c : cases) {
        std::string p = file(std::to_string(n++), c[0]);
        std::string message = c[1];
        if (message.back() != '\n') message.append(p).append("\n");
        ReadTable t(p);
        EXPECT_EQ(t.err, message);
        EXPECT_EQ(t.status, 1) << c[0];
        EXPECT_TRUE(!t.tab.values && !t.tab.vars && !t.tab.columns && !t.tab.rows) << c[0];
    }
    ReadTable missing(path("none"));
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.err, "RdTable File open error: " + path("none") + ".\n");
    ReadTable directory(dir_);
    EXPECT_EQ(directory.err, "RdTable File open error: " + dir_ + ".\n");
}

// Size modifiers say nothing about a column's type, which comes from the
// conversion; the writer prints such columns as if the modifier were absent.
TEST_F(TableRead, SizeModifiersAreAcceptedAndDroppedWhenWriting) {
    ReadTable t(file("m.tab", "VARS A B C D E\nFORMAT %9.3lf %ld %hd %lld %-4ls\n1.5 -2 3 4 x\n"));
    ASSERT_EQ(t.status, 0) << t.err;
    int types[] = {kTabReal, kTabInt, kTabInt, kTabInt, kTabText};
    float row[] = {1.5f, -2, 3, 4, 0};
    for (int c = 0; c < 5; c++) {
        EXPECT_EQ(t.var(c).type, types[c]) << c;
        EXPECT_FLOAT_EQ(t.at(0, c), row[c]) << c;
    }
    ASSERT_EQ(wrTable(path("out").c_str(), t.tab.values, 5, 1, t.tab.vars, -9999, nullptr), 0);
    std::string written = readFile(path("out"));
    EXPECT_NE(written.find("FORMAT %9.3lf %ld %hd %lld %-4ls\n"), std::string::npos) << written;
    EXPECT_NE(written.find("\n    1.500 -2 3 4 x   \n"), std::string::npos) << written;
}

// Numbers that cannot be right stop the read with the line they are on: not
// a number, infinity, and integers a float cannot hold exactly (a residue
// number near the int limit used to become -2147483648 downstream).
TEST_F(TableRead, NumbersThatCannotBeRightAreRefused) {
    const char* const cases[][3] = {
        {"VARS A B\nFORMAT %d %f\n\n1 2\n2 nan\n", "nan", "5"},
        {"VARS A B\nFORMAT %d %f\n1 -INF\n", "-INF", "3"},
        {"VARS A B\nFORMAT %d %f\n1 1e39\n", "1e39", "3"},
        {"VARS A B\nFORMAT %d %f\n# c\n2147483647 1\n", "2147483647", "4"},
        {"VARS A B\nFORMAT %d %f\n-1000000000 1\n", "-1000000000", "3"},
        {"VARS A B\nFORMAT %d %f\n99999999999999999999 1\n", "99999999999999999999", "3"},
    };
    int n = 0;
    for (const auto& c : cases) {
        std::string p = file(std::to_string(n++), c[0]);
        ReadTable t(p);
        EXPECT_EQ(t.err, std::string("RdTable Error: bad number ") + c[1] + " in line " + c[2] +
                             " of " + p + ".\n");
        EXPECT_EQ(t.status, 1) << c[0];
        EXPECT_TRUE(!t.tab.values && !t.tab.vars) << c[0];
    }
    // The largest magnitude still taken, and a null marker beyond it.
    ReadTable edge(file("e",
                        "VARS A\nFORMAT %d\nNULLVALUE 2147483647\n999999999\n-999999999\n"
                        "2147483647\n"),
                   5.0f);
    ASSERT_EQ(edge.status, 0) << edge.err;
    float expected[] = {999999999.0f, -999999999.0f, 5.0f};
    for (int r = 0; r < 3; r++) EXPECT_FLOAT_EQ(edge.at(r, 0), expected[r]) << r;
}

TEST_F(TableRead, TextsMapExactlyInOrderOfFirstAppearance) {
    std::string text = "VARS N K\nFORMAT %s %d\nA 0\nB 0\nA 0\na 0\nAB 0\n";
    for (int i = 0; i < 3000; i++) text.append("n").append(std::to_string(i % 1009)) += " 1\n";
    ReadTable t(file("t.tab", text));
    ASSERT_EQ(t.var(0).textCount, 1013);
    EXPECT_EQ(t.var(0).texts[1013], nullptr);
    float head[] = {0, 1, 0, 2, 3};
    for (int r = 0; r < 5; r++) EXPECT_FLOAT_EQ(t.at(r, 0), head[r]);
    // "n10" sorts before "n2" but comes later.
    for (int i = 0; i < 3000; i++) {
        ASSERT_FLOAT_EQ(t.at(i + 5, 0), 4.0f + i % 1009) << i;
        ASSERT_EQ(t.text(i + 5, 0), std::string("n").append(std::to_string(i % 1009)));
    }
}

TEST_F(TableRead, LinesOfAnyLengthAndGarbage) {
    std::string longText(1 << 20, 'q');
    std::string vars = "VARS", row;
    for (int c = 0; c < 400; c++) {
        vars.append(" C").append(std::to_string(c));
        row.append(std::to_string(c)).append(".5 ");
    }
    ReadTable wide(file("w.tab", "REMARK " + longText + "\n" + vars + "\n" + row + "\n" + row));
    ASSERT_EQ(wide.tab.columns, 400);
    EXPECT_EQ(wide.tab.rows, 2);
    EXPECT_FLOAT_EQ(wide.at(1, 399), 399.5f);
    EXPECT_EQ(wide.header(), (Lines{"REMARK " + longText}));
    ReadTable item(file("l.tab", "VARS S N\nFORMAT %s %d\n" + longText + " 4\n\x01\xff\x7f x\n"));
    EXPECT_EQ(item.texts(0), (Lines{longText, "\x01\xff\x7f"}));
    EXPECT_EQ(item.err, "RdTable Warning: Bad I-Item 2:\n\x01\xff\x7f x\n");

    std::string noise;
    unsigned state = 12345;
    for (int i = 0; i < 65536; i++)
        noise += static_cast<char>((state = state * 1103515245u + 12345u) >> 16);
    ReadTable garbage(file("noise", noise));
    EXPECT_EQ(garbage.status, 1);
    EXPECT_EQ(garbage.err.rfind("RdTable Error", 0), 0u);
}

TEST_F(TableRead, DataLinesAreThoseWithoutKeywordOrComment) {
    for (const char* line : {"1 2 3", "  ALA 2", "ENDS 1", "REMARKS", "VAR 1", "-1", "\xff"})
        EXPECT_EQ(isDataLine(line), 1) << line;
    for (const char* line : {"vars A", "Format %d", "REMARK x", "data X 1", "TOLERANCE 1",
                             "nullString *", "NULLVALUE 1", "End", "#1 2", "  # x", " \t\n", ""})
        EXPECT_EQ(isDataLine(line), 0) << line;
}

}  // namespace
