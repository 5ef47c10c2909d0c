// The homology search from the command line: the report byte for byte for a
// case whose every number is known (a zero tensor, so each back-calculated
// coupling is 0 and D_RMS is the observed RMS), where rows and summaries go,
// the offsets a list line chooses, files that cannot be read or give no row,
// and ubiquitin's own segment found in ubiquitin.
#include <gtest/gtest.h>

#include <cmath>
#include <regex>
#include <string>
#include <vector>

#include "support/run_dc.h"

namespace {

const std::string kPeptide = DC_SHARED_DATA "/hafp_a.pdb";          // residues 1-24, H on 2-24
const std::string kShort = DC_TEST_DATA "/simulation/peptide.pdb";  // 6 residues
const std::string kUbq = DC_EXAMPLES "/ubq/1ubq_h.pdb";
const std::string kUbqTable = DC_EXAMPLES "/ubq/ubq_nh.tab";
const std::vector<std::string> kZeroTensor = {"-fixed", "-da",    "0", "-dr",  "0", "-psi",
                                              "0",      "-theta", "0", "-phi", "0"};

// N-H couplings of residues 1 to 20, each observed 2.0 Hz with DD 1.
std::string couplingTable() {
    std::string text =
        "VARS RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J D DD W\n"
        "FORMAT %5d %4s %4s %5d %4s %4s %8.3f %6.2f %4.1f\n\n";
    for (int r = 1; r <= 20; r++) {
        char row[96];
        std::snprintf(row, sizeof row, "%5d  XXX    N %5d  XXX    H    2.000   1.00  1.0\n", r, r);
        text += row;
    }
    return text;
}

// A scratch directory with the table, the structures and the list.
std::string stage(const std::string& name, const std::string& list) {
    std::string dir = scratchDir(name);
    writeFile(dir + "/nh.tab", couplingTable());
    writeFile(dir + "/pep.pdb", readFile(kPeptide));
    writeFile(dir + "/short.pdb", readFile(kShort));
    writeFile(dir + "/list", list);
    return dir;
}

DCResult search(const std::string& dir, std::vector<std::string> options) {
    std::vector<std::string> args = {"-inD", "nh.tab", "-list", "list", "-path", dir, "-nobb"};
    args.insert(args.end(), kZeroTensor.begin(), kZeroTensor.end());
    args.insert(args.end(), options.begin(), options.end());
    DCResult r = runDC(args, {}, dir);
    EXPECT_TRUE(endsBalanced(r.err)) << r.err;
    return r;
}

const char kHeader[] =
    "VARS   SEGID INDEX D_RES1 D_RESN D_COUNT CS_COUNT P_NAME P_RES1 P_RESN P_MAXRES  DA DR THETA "
    "PHI   PSI   D_N D_RMS  D_CHI2 CS_N  CS_RMS CS_CHI2 A_RMS  HOMO_N HOMO SURF_N SURF\n"
    "FORMAT %5d   %5d   %3d    %3d    %4d     %4d      %-18s  %3d    %3d    %3d       %.4e %.4e "
    "%7.2f %7.2f %7.2f %3d %10.3f %7.3f  %3d   %10.3f %10.3f %10.3f  %3d %10.3f %3d %10.3f\n\n";

// The row of the peptide at offset o of a segment of the given length, with
// n couplings mapped (zero tensor: D_RMS 2, D_CHI2 4n).
std::string row(int fileIndex, int res1, int resN, int selected, int o, int n) {
    char text[512];
    std::snprintf(
        text, sizeof text,
        "    1 %5d %3d %3d %4d    0 pep.pdb      %3d %3d  24  0.0000e+00  0.0000e+00    0.00"
        "    0.00    0.00 %4d   2.000 %10.2f    0   0.000       0.00      0.000\n"
        "   0      0.000   0      0.000",
        fileIndex, res1, resN, selected, o + 1, o + resN - res1 + 1, n, 4.0 * n);
    return text;
}

TEST(Search, ReportByteForByteAndWhereSummariesGo) {
    std::string dir = stage("search_report", "# peptide\n\npep.pdb\n");
    // Segment 1-6 slides over residues 1-24: offsets 0..18. At offset 0
    // residue 1 has no H, so 5 couplings map and the valid fraction 5/6 keeps
    // that row from being the best; offset 1 is the first with all 6.
    std::string rows;
    for (int o = 0; o <= 18; o++) rows += row(1, 1, 6, 6, o, o == 0 ? 5 : 6);
    const std::string summary =
        "pep.pdb         1    1    6    2    7  0.0000e+00  0.0000e+00     0.00    2.0000   -1.0000"
        "    0.0000    0.0000\n";

    DCResult toFile = search(dir, {"-r1", "1", "-rN", "6", "-outS", "report.txt"});
    EXPECT_EQ(toFile.status, 0);
    EXPECT_EQ(readFile(dir + "/report.txt"), kHeader + rows);
    EXPECT_EQ(toFile.err.rfind(summary, 0), 0u) << toFile.err;

    DCResult none = search(dir, {"-r1", "1", "-rN", "6", "-outS", "nONe"});
    EXPECT_EQ(none.out.find("VARS"), std::string::npos);
    EXPECT_NE(none.err.find(summary), std::string::npos);

    DCResult toStdout = search(dir, {"-r1", "1", "-rN", "6"});
    EXPECT_NE(toStdout.out.find(kHeader + rows), std::string::npos);
    EXPECT_EQ(toStdout.err.find("pep.pdb "), std::string::npos);

    DCResult unwritable = search(dir, {"-r1", "1", "-rN", "6", "-outS", dir + "/no/such/dir"});
    EXPECT_NE(unwritable.err.find("DC Error opening output file " + dir + "/no/such/dir\n"),
              std::string::npos);
    EXPECT_NE(unwritable.out.find(kHeader + rows), std::string::npos);
}

TEST(Search, ListLinesChooseTheOffsets) {
    // "pep.pdb 10 60" with a 20-residue segment tries offsets 9 to 40; rows
    // exist while at least 5 couplings land on residues up to 24 (offsets 9-19).
    std::string dir = stage("search_offsets", "pep.pdb 10 60\nshort.pdb\n");
    DCResult r = search(dir, {"-r1", "1", "-rN", "20", "-outS", "report.txt"});
    std::string rows;
    for (int o = 9; o <= 19; o++) rows += row(1, 1, 20, 20, o, 24 - o);
    EXPECT_EQ(readFile(dir + "/report.txt"), kHeader + rows);
    // Offset 40 gives no row, so no summary; the 6-residue file gives none at all.
    EXPECT_EQ(r.err.find("pep.pdb "), std::string::npos);
    EXPECT_EQ(r.err.find("short.pdb"), std::string::npos);
    EXPECT_EQ(r.status, 0);
}

TEST(Search, UnreadableEmptyAndRenumberedFiles) {
    std::string dir = stage("search_files", "pep.pdb\nmissing.pdb\n");
    DCResult lastMissing = search(dir, {"-r1", "1", "-rN", "6", "-outS", "None"});
    EXPECT_NE(lastMissing.err.find("DC Error Reading PDB File " + dir + "/missing.pdb\n"),
              std::string::npos);
    EXPECT_NE(lastMissing.status, 0);

    // Between good files: one unreadable, one without atoms, one renumbered
    // by 100. Each good file gives the rows it gives alone.
    std::string text = readFile(kPeptide), renumbered;
    for (size_t at = 0, next; at < text.size(); at = next + 1) {
        next = text.find('\n', at);
        std::string line = text.substr(at, next - at);
        char resid[16];
        std::snprintf(resid, sizeof resid, "%4d", 100 + std::atoi(line.substr(22, 4).c_str()));
        if (line.rfind("ATOM", 0) == 0) line.replace(22, 4, resid);
        renumbered += line + "\n";
    }
    writeFile(dir + "/renumbered.pdb", renumbered);
    writeFile(dir + "/empty.pdb", "REMARK no atoms\nEND\n");
    writeFile(dir + "/list", "pep.pdb\nmissing.pdb\nempty.pdb\nrenumbered.pdb\npep.pdb\n");
    DCResult r = search(dir, {"-r1", "1", "-rN", "6", "-outS", "report.txt"});
    EXPECT_EQ(r.status, 0);
    std::string rows;
    for (int file : {1, 4})
        for (int o = 0; o <= 18; o++) rows += row(file, 1, 6, 6, o, o == 0 ? 5 : 6);
    EXPECT_EQ(readFile(dir + "/report.txt"), kHeader + rows);

    writeFile(dir + "/list", "# nothing\n\n");
    DCResult empty = search(dir, {"-r1", "1", "-rN", "6", "-outS", "report.txt"});
    EXPECT_EQ(empty.status, 0);
    EXPECT_EQ(readFile(dir + "/report.txt"), "");
    DCResult noList = runDC({"-inD", "nh.tab", "-list", "absent"}, {}, dir);
    EXPECT_NE(noList.err.find("DC Error Reading List absent\n"), std::string::npos);
    EXPECT_NE(noList.status, 0);
}

TEST(Search, UbiquitinSegmentIsFoundWhereItBelongs) {
    std::string dir = scratchDir("search_ubq");
    writeFile(dir + "/ubq.pdb", readFile(kUbq));
    writeFile(dir + "/pep.pdb", readFile(kPeptide));
    // Four copies of ubiquitin: more than 200 offsets in one search.
    writeFile(dir + "/list", "ubq.pdb\npep.pdb\nubq.pdb\nubq.pdb\nubq.pdb\n");
    DCResult r = runDC({"-inD", kUbqTable, "-r1", "20", "-rN", "39", "-list", "list", "-path", dir,
                        "-ref", "ubq.pdb", "-bb", "-outS", "None"},
                       {}, dir);
    DCResult sim = runDC({"-pdb", kUbq, "-inD", kUbqTable, "-r1", "20", "-rN", "39"});
    std::smatch d;
    ASSERT_TRUE(std::regex_search(sim.err, d, std::regex("D_RMS:  (\\d+\\.\\d+)")));
    std::smatch best;
    ASSERT_TRUE(std::regex_search(
        r.err, best,
        std::regex("ubq\\.pdb +1 +20 +39 +20 +39 +\\S+ +\\S+ +0\\.00 +(\\d+\\.\\d+) ")))
        << r.err;
    EXPECT_NEAR(std::stod(best[1]), std::stod(d[1]), 0.0005);
    EXPECT_TRUE(std::regex_search(r.err, std::regex("\npep\\.pdb +2 +20 +39 ")));
    EXPECT_TRUE(std::regex_search(r.err, std::regex("\nubq\\.pdb +5 +20 +39 +20 +39 ")));
    EXPECT_EQ(r.status, 0);
}

}  // namespace
