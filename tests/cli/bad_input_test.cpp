// Inputs a user can meet that used to crash DC, lose data without a word or
// take hours: each now gives its message and status, or the right result.
#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "support/run_dc.h"

namespace {

using namespace std::string_literals;

const std::string kHafpA = DC_SHARED_DATA "/hafp_a.pdb";
const std::string kHafpTable = DC_SHARED_DATA "/hafp_nh_caha.tab";

const char* const kCouplingHeader =
    "VARS RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J D DD W\n"
    "FORMAT %d %s %s %d %s %s %f %f %f\n\n";

// The D statistics line of a run.
std::string statLine(const DCResult& r) {
    std::smatch m;
    std::regex line("REMARK D_N:[^\n]*\n");
    return std::regex_search(r.err, m, line) ? m.str(0) : "no statistics line:\n" + r.err;
}

// The lines of a file with line n (from 1) replaced.
std::string withLine(const std::string& text, int n, const std::string& replacement) {
    std::size_t start = 0;
    for (int i = 1; i < n; i++) start = text.find('\n', start) + 1;
    std::size_t end = text.find('\n', start);
    return text.substr(0, start) + replacement + text.substr(end);
}

std::string lineOf(const std::string& text, int n) {
    std::size_t start = 0;
    for (int i = 1; i < n; i++) start = text.find('\n', start) + 1;
    return text.substr(start, text.find('\n', start) - start);
}

// A table of more HB#/HB# rows than the fit workspace can be sized for stops
// with the allocation message (it crashed through a null workspace).
TEST(BadInput, TableTooLargeToFitStopsWithTheAllocationMessage) {
    std::string dir = scratchDir("bad_huge");
    std::string rows;
    rows.reserve(2950000 * 8);
    for (int i = 0; i < 2950000; i++) rows += "HB# HB#\n";
    writeFile(dir + "/huge.tab", "VARS ATOMNAME_I ATOMNAME_J\nFORMAT %s %s\n" + rows);
    DCResult r = runDC({"-pdb", kHafpA, "-inD", "huge.tab"}, {}, dir);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(errBody(r),
              "DC Error Allocating DC Real Workspace.\nDC Error Reading D Values in huge.tab\n");
}

// A NUL byte ends a line's text but not the line: the atom on the next line
// and the table row after a NUL are still read.
TEST(BadInput, NulBytesEndTheTextButNotTheLine) {
    std::string dir = scratchDir("bad_nul");
    std::string pdb = readFile(kHafpA);
    writeFile(dir + "/nul.pdb", withLine(pdb, 60, lineOf(pdb, 60) + "\0"s));
    std::string table = readFile(kHafpTable);
    writeFile(dir + "/nul.tab", withLine(table, 6, lineOf(table, 6) + "\0 junk 1 2 3"s));
    std::vector<std::string> titles = {"-pdbTitle", "P", "-inDTitle", "T"};
    DCResult clean =
        runDC({"-pdb", kHafpA, "-inD", kHafpTable, titles[0], titles[1], titles[2], titles[3]});
    ASSERT_EQ(statLine(clean), "REMARK D_N:  42 D_RMS:  7.925 D_CHI2:  1834.753\n");
    DCResult r =
        runDC({"-pdb", "nul.pdb", "-inD", "nul.tab", titles[0], titles[1], titles[2], titles[3]},
              {}, dir);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(statLine(r), statLine(clean));
    EXPECT_EQ(r.out, clean.out);
}

// Lines of tens of megabytes are read in time linear in their length (they
// took minutes); the test's time limit catches a quadratic reader.
TEST(BadInput, VeryLongLinesAreReadWhole) {
    std::string dir = scratchDir("bad_long");
    std::string longWord(64 << 20, 'x');
    writeFile(dir + "/long.pdb", "REMARK " + longWord + "\n" + readFile(kHafpA));
    std::string table = readFile(kHafpTable);
    writeFile(dir + "/long.tab", "# " + longWord + "\n" + table);
    DCResult r = runDC({"-pdb", "long.pdb", "-inD", "long.tab", "-outD", "/dev/null"}, {}, dir);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(statLine(r), "REMARK D_N:  42 D_RMS:  7.925 D_CHI2:  1834.753\n");
}

// Numbers that cannot be right stop the read with the line they are on,
// instead of a fit of NaNs reported as a perfect one or an out-of-range
// conversion.
TEST(BadInput, NumbersThatCannotBeRightStopTheRun) {
    std::string dir = scratchDir("bad_numbers");
    std::string row = "5 ALA N 5 ALA H 1.0 1.0 1\n";
    struct Case {
        std::string table;
        std::string message;
    };
    const Case cases[] = {
        {row + "6 ILE N 6 ILE H nan 1.0 1\n",
         "RdTable Error: bad number nan in line 5 of t.tab.\n"},
        {row + "6 ILE N 6 ILE H 1.0 inf 1\n",
         "RdTable Error: bad number inf in line 5 of t.tab.\n"},
        {row + "6 ILE N 6 ILE H 1.0 1.0 -Infinity\n",
         "RdTable Error: bad number -Infinity in line 5 of t.tab.\n"},
        {"2147483647 ALA N 5 ALA H 1.0 1.0 1\n",
         "RdTable Error: bad number 2147483647 in line 4 of t.tab.\n"},
    };
    for (const Case& c : cases) {
        writeFile(dir + "/t.tab", kCouplingHeader + c.table);
        DCResult r = runDC({"-pdb", kHafpA, "-inD", "t.tab"}, {}, dir);
        EXPECT_EQ(r.status, 1) << c.table;
        EXPECT_EQ(errBody(r), c.message + "DC Error Reading D Values in t.tab\n") << c.table;
    }
    // Integer fields held in real columns are checked the same way.
    writeFile(dir + "/abs.tab",
              "VARS RESID_I ATOMNAME_I RESID_J ATOMNAME_J D ABS\nFORMAT %f %s %f %s %f %f\n"
              "5 N 5 H 1.0 0\n5 N 5 H 1.0 1e10\n");
    DCResult abs = runDC({"-pdb", kHafpA, "-inD", "abs.tab"}, {}, dir);
    EXPECT_EQ(abs.status, 1);
    EXPECT_EQ(errBody(abs),
              "DC Error: bad number 1e+10 for ABS in row 2 of abs.tab.\n"
              "DC Error Reading D Values in abs.tab\n");

    std::string pdb = readFile(kHafpA);
    std::string atom = lineOf(pdb, 61);
    for (const char* bad : {"     nan", "    -inf", "  1e+999"}) {
        writeFile(dir + "/bad.pdb", withLine(pdb, 61, atom.substr(0, 38) + bad + atom.substr(46)));
        DCResult r = runDC({"-pdb", "bad.pdb", "-inD", kHafpTable}, {}, dir);
        std::string text = std::regex_replace(std::string(bad), std::regex(" "), "");
        EXPECT_EQ(r.status, 1) << bad;
        EXPECT_EQ(errBody(r), "PDB Error: bad number " + text +
                                  " in line 61 of bad.pdb.\nDC Error Reading PDB File bad.pdb\n");
        EXPECT_EQ(r.out, "");
    }
}

// Residue numbers and offsets near the ends of the int range: options are
// clamped to +-999,999,999, and a residue shifted beyond that maps nowhere
// (these overflowed, aborting the sanitizer build, or selected residue 3).
TEST(BadInput, ResidueArithmeticNeverOverflows) {
    std::string dir = scratchDir("bad_resid");
    writeFile(dir + "/t.tab", std::string(kCouplingHeader) +
                                  "999999999 ALA N 999999999 ALA H 1.0 1.0 1\n"
                                  "5 ALA N 5 ALA H 1.0 1.0 1\n");
    for (const std::vector<std::string>& options :
         {std::vector<std::string>{"-a1", "2147483647", "-r1", "-1"},
          std::vector<std::string>{"-a1", "1000", "-r1", "1", "-w", "1", "2"},
          std::vector<std::string>{"-a1", "-2147483648", "-r1", "2147483647"}}) {
        std::vector<std::string> args = {"-pdb", kHafpA, "-inD", "t.tab"};
        args.insert(args.end(), options.begin(), options.end());
        DCResult r = runDC(args, {}, dir);
        EXPECT_EQ(r.status, 0) << options[1];
        EXPECT_EQ(statLine(r), "REMARK D_N:  0 D_RMS:  0.000 D_CHI2:  0.000\n") << options[1];
    }
    DCResult big = runDC({"-pdb", kHafpA, "-inD", "t.tab", "-select", "99999999999"}, {}, dir);
    EXPECT_EQ(big.err.substr(0, big.err.find('\n') + 1), "REMARK DC Selection ResID 999999999\n");
    DCResult wrapped =
        runDC({"-pdb", kHafpA, "-inD", kHafpTable, "-select", "4294967299"}, {}, dir);
    EXPECT_EQ(wrapped.out.substr(0, 30), "REMARK 0 Couplings Selected. M");
}

// A FORMAT with size modifiers reads like one without (it was refused).
TEST(BadInput, FormatsWithSizeModifiersAreRead) {
    std::string dir = scratchDir("bad_formats");
    std::string table = readFile(kHafpTable);
    std::string format = "FORMAT %5ld %6s %6s %5hd %6s %6s %9.3lf %9.3lf %.2Lf";
    writeFile(dir + "/lf.tab", withLine(table, 4, format));
    DCResult r = runDC({"-pdb", kHafpA, "-inD", "lf.tab", "-outD", "out.tab"}, {}, dir);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(statLine(r), "REMARK D_N:  42 D_RMS:  7.925 D_CHI2:  1834.753\n");
}

}  // namespace
