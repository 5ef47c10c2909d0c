#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "table_test_support.h"
#include "util/table.h"

namespace {

using Lines = std::vector<std::string>;
using TableRead = TableTest;

const char* const kSample =
    "REMARK Test table\n# a comment\ndata first_resid 5\n"
    "vars X Y\nVARS   RESID RESNAME D TAG\nVARS A B\n"
    "FORMAT _%4d %-4s %8.3f %s\nTOLERANCE 0 0 0.5 0\nNULLVALUE -99\nNULLSTRING *\n\n"
    "  1 ALA  1.250 x\n  2 GLY -99 *\n#3 ALA 9.0 z\n  3 ALA -99.000 y\nEND\n";

TEST_F(TableRead, ColumnsValuesAndHeaderOfATable) {
    // Numbers equal to NULLVALUE take the caller's replacement; a text equal
    // to NULLSTRING keeps the file's own marker. Only the first VARS line
    // counts; a lower-case "vars" line is neither columns nor data.
    ReadTable t(file("t.tab", kSample), 0.0f);
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
    EXPECT_EQ(t.var(1).texts[2], nullptr);
    EXPECT_EQ(t.header(),
              (Lines{"REMARK Test table", "# a comment", "data first_resid 5", "#3 ALA 9.0 z"}));
    EXPECT_EQ(getTabDataI(t.hdr, "FIRST_RESID"), 5);
}

TEST_F(TableRead, NullMarkersWithoutNullValueAndTheLastOneCounting) {
    ReadTable none(file("a.tab", "VARS A B\nFORMAT %d %s\nNULLSTRING -\n-99999 -\n"), 0.0f);
    ASSERT_EQ(none.status, 0) << none.err;
    EXPECT_FLOAT_EQ(none.at(0, 0), -99999.0f);  // no NULLVALUE line: not replaced
    EXPECT_FLOAT_EQ(none.at(0, 1), -99999.0f);  // the default marker
    ReadTable last(file("b.tab",
                        "NULLVALUE 7\nNULLSTRING a\nVARS I S\nFORMAT %d %s\n7 b\n"
                        "NULLVALUE 8\nNULLSTRING b\n8 a\n"),
                   -1.0f);
    ASSERT_EQ(last.status, 0) << last.err;
    float expected[] = {7, 8, -1, 0};
    for (int i = 0; i < 4; i++) EXPECT_FLOAT_EQ(last.tab.values[i], expected[i]) << i;
}

TEST_F(TableRead, FormatsDecideTypesAndItemsConvertLikeScanf) {
    ReadTable t(file("t.tab",
                     "VARS A B C D E\nFORMAT %-4s %8.3f %e %g %5d\n"
                     "x 1.5e2x -0.125 1e-3 12abc\ny 1 2 3 -7.9\n"));
    ASSERT_EQ(t.status, 0) << t.err;
    EXPECT_EQ(t.err, "");
    int types[] = {kTabText, kTabReal, kTabReal, kTabReal, kTabInt};
    float row[] = {0, 150, -0.125f, 0.001f, 12};
    for (int c = 0; c < 5; c++) {
        EXPECT_EQ(t.var(c).type, types[c]);
        EXPECT_FLOAT_EQ(t.at(0, c), row[c]);
    }
    EXPECT_FLOAT_EQ(t.at(1, 4), -7.0f);
    // A FORMAT line without formats is no FORMAT line: every column is real.
    ReadTable bare(file("u.tab", "VARS A B\nFORMAT\n1 2\n"));
    EXPECT_STREQ(bare.var(1).format, "%f");
    EXPECT_EQ(bare.var(1).type, kTabReal);
}

TEST_F(TableRead, BadItemsWarnAndReadingGoesOn) {
    ReadTable t(file("t.tab", "VARS I F S\nFORMAT %d %f %s\nabc x\n5 2.5 ok extra\n"), 0.0f);
    ASSERT_EQ(t.status, 0);
    EXPECT_EQ(t.err,
              "RdTable Warning: Bad I-Item 1:\nabc x\nRdTable Warning: Bad F-Item 2:\nabc x\n"
              "RdTable Warning: Bad T-Item 3:\nabc x\n");
    ASSERT_EQ(t.tab.rows, 2);
    float expected[] = {0, 0, kTabNullDefault, 5, 2.5f, 0};
    for (int i = 0; i < 6; i++) EXPECT_FLOAT_EQ(t.tab.values[i], expected[i]) << i;
    EXPECT_EQ(t.texts(2), (Lines{"ok"}));
}

TEST_F(TableRead, EachReaderErrorHasItsMessageAndStatusOne) {
    struct Case {
        const char* text;
        const char* message;
    };
    const Case cases[] = {
        {"VARS A B\nFORMAT %d %d\n", "RdTable Error: no entries in "},
        {"1 2 3\n", "RdTable Error: no variables found.\n"},
        {"VARS\n1 2\n", "RdTable Error: no variables found.\n"},
        {"VARS A B\nFORMAT %d\n1 2\n",
         "RdTable Error: VARS/FORMAT mismatch:\nVARS A B\nFORMAT %d\n"},
        {"VARS A B\nTOLERANCE 1 2 3\n1 2\n",
         "RdTable Error: VARS/TOLERANCE mismatch:\nVARS A B\nTOLERANCE 1 2 3\n"},
        {"VARS A B\nFORMAT %5d %x\n1 2\n", "RdTable Error: bad format FORMAT %5d %x\n"},
        {"VARS A\nFORMAT %d%s\n1\n", "RdTable Error: bad format FORMAT %d%s\n"},
        {"VARS A\nFORMAT %ld\n1\n", "RdTable Error: bad format FORMAT %ld\n"},
        {"VARS A\nFORMAT %*d\n1\n", "RdTable Error: bad format FORMAT %*d\n"},
        {"VARS A\nFORMAT %.1024s\n1\n", "RdTable Error: bad format FORMAT %.1024s\n"},
        {"VARS A\nFORMAT %5.2f_A\n1\n", "RdTable Error: bad format FORMAT %5.2f_A\n"},
    };
    int n = 0;
    for (const Case& c : cases) {
        std::string p = file(std::to_string(n++), c.text);
        std::string message = c.message;
        if (message.back() != '\n') message.append(p).append("\n");
        ReadTable t(p);
        EXPECT_EQ(t.err, message);
        EXPECT_EQ(t.status, 1) << c.text;
        EXPECT_TRUE(!t.tab.values && !t.tab.vars && !t.tab.columns && !t.tab.rows) << c.text;
    }
    ReadTable missing(path("none"));
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.err, "RdTable File open error: " + path("none") + ".\n");
    ReadTable directory(dir_);
    EXPECT_EQ(directory.err, "RdTable File open error: " + dir_ + ".\n");
}

TEST_F(TableRead, EmptyTablesAndColumnsOnly) {
    ReadTable allowed(file("e.tab", "REMARK nothing\nVARS A B\nFORMAT %d %s\n"), 0.0f, 1);
    EXPECT_EQ(allowed.status, 0);
    EXPECT_EQ(allowed.err, "");
    EXPECT_TRUE(!allowed.tab.vars && !allowed.tab.columns && !allowed.tab.rows);

    ReadTable columnsOnly(file("t.tab", "VARS A B\nFORMAT %d %s\n1 a\n2 b\n"), 0.0f, 0, 0);
    ASSERT_EQ(columnsOnly.status, 0);
    EXPECT_EQ(columnsOnly.tab.values, nullptr);
    EXPECT_EQ(columnsOnly.tab.columns, 2);
    EXPECT_EQ(columnsOnly.tab.rows, 2);
    EXPECT_EQ(columnsOnly.var(1).type, kTabText);
}

TEST_F(TableRead, TextsMapExactlyInOrderOfFirstAppearance) {
    std::string text = "VARS N K\nFORMAT %s %d\nA 0\nB 0\nA 0\na 0\nAB 0\n";
    for (int i = 0; i < 5000; i++)
        text.append("n").append(std::to_string(i * 7919 % 3001)) += " 1\n";
    ReadTable t(file("t.tab", text));
    ASSERT_EQ(t.status, 0) << t.err;
    ASSERT_EQ(t.var(0).textCount, 3005);
    EXPECT_EQ(t.var(0).texts[3005], nullptr);
    float head[] = {0, 1, 0, 2, 3};
    for (int r = 0; r < 5; r++) EXPECT_FLOAT_EQ(t.at(r, 0), head[r]);
    std::vector<int> firstSeen(3001, -1);
    int next = 4;
    for (int i = 0; i < 5000; i++) {
        int key = i * 7919 % 3001;
        if (firstSeen[key] < 0) firstSeen[key] = next++;
        ASSERT_FLOAT_EQ(t.at(i + 5, 0), static_cast<float>(firstSeen[key])) << i;
        ASSERT_EQ(t.text(i + 5, 0), std::string("n").append(std::to_string(key)));
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
    ASSERT_EQ(wide.status, 0);
    ASSERT_EQ(wide.tab.columns, 400);
    EXPECT_EQ(wide.tab.rows, 2);
    EXPECT_FLOAT_EQ(wide.at(1, 399), 399.5f);
    EXPECT_EQ(wide.header(), (Lines{"REMARK " + longText}));
    ReadTable item(file("l.tab", "VARS S N\nFORMAT %s %d\n" + longText + " 4\n\x01\xff\x7f x\n"));
    ASSERT_EQ(item.status, 0);
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

TEST_F(TableRead, RealCouplingTable) {
    ReadTable t(DC_SHARED_DATA "/hafp_nh_caha.tab");
    ASSERT_EQ(t.status, 0) << t.err;
    EXPECT_EQ(t.tab.columns, 9);
    EXPECT_EQ(t.tab.rows, 42);
    EXPECT_EQ(getTabVar(t.tab.vars, t.tab.columns, "atomname_j"), 5);
    EXPECT_EQ(t.text(0, 1) + t.text(0, 2) + t.text(0, 5), "PHENH");
    EXPECT_FLOAT_EQ(t.at(0, 6), 4.7f);
    EXPECT_FLOAT_EQ(t.at(41, 7), 1.6f);
    EXPECT_EQ(t.header(), (Lines{"REMARK One-bond couplings, converted for testing."}));
}

TEST_F(TableRead, DataLinesAreThoseWithoutKeywordOrComment) {
    const char* data[] = {"1 2 3", "  ALA 2", "ENDS 1", "REMARKS", "VAR 1", "-1", "\xff"};
    const char* other[] = {"vars A",      "Format %d",    "REMARK x",    "data X 1",
                           "TOLERANCE 1", "nullString *", "NULLVALUE 1", "End",
                           "#1 2",        "  # x",        " \t\n",       ""};
    for (const char* line : data) EXPECT_EQ(isDataLine(line), 1) << line;
    for (const char* line : other) EXPECT_EQ(isDataLine(line), 0) << line;
    int count = -1;
    EXPECT_EQ(cntDataLine(file("t.tab", kSample).c_str(), &count), 0);
    EXPECT_EQ(count, 3);
    testing::internal::CaptureStderr();
    EXPECT_EQ(cntDataLine(path("none").c_str(), &count), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "CntDataLine File open error: " + path("none") + "\n");
}

}  // namespace
