#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "support/run_dc.h"

namespace {

const std::string kFixtures = DC_TEST_DATA "/simulation";
const std::string kHafpA = DC_SHARED_DATA "/hafp_a.pdb";
const std::string kHafpB = DC_SHARED_DATA "/hafp_b.pdb";
const std::string kHafpTable = DC_SHARED_DATA "/hafp_nh_caha.tab";

std::string versionLines() {
    return std::string("# DC Dipolar Coupling Calculation. ") + DC_DOC_ADDRESS +
           "\n# Quillon System " + DC_SUITE_VERSION + " Rev " + DC_REVISION + "\n";
}

// A scratch directory holding the small peptide and its coupling tables, so
// that titles hold short relative names.
std::string stagePeptide(const std::string& name) {
    std::string dir = scratchDir(name);
    for (const char* file : {"peptide.pdb", "couplings.tab", "couplings_chain.tab"}) {
        writeFile(dir + "/" + file, readFile(kFixtures + "/" + file));
    }
    return dir;
}

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) out.push_back(line);
    return out;
}

std::vector<std::string> atomLines(const std::string& path) {
    std::vector<std::string> atoms;
    for (const std::string& line : lines(readFile(path))) {
        if (line.rfind("ATOM", 0) == 0) atoms.push_back(line);
    }
    return atoms;
}

double dataValue(const std::string& text, const std::string& key) {
    std::size_t at = text.find("\n" + key + " ");
    return at == std::string::npos ? NAN : std::atof(text.c_str() + at + key.size() + 2);
}

TEST(SimulationRun, OutputTableInBothColumnStyles) {
    std::string dir = stagePeptide("sim_tables");
    DCResult r =
        runDC({"-pdb", "peptide.pdb", "-inD", "couplings.tab", "-skip", "3", "-outD", "out.tab"},
              {}, dir);
    EXPECT_EQ(r.status, 0);
    // Residue 3 is skipped, the row without an observation is never selected,
    // and the residue 7 row is kept although the structure lacks it.
    EXPECT_EQ(r.out, "REMARK 10 Couplings Selected. Mode: Max(ResID I, ResID J) Limits: 1 to 7.\n");
    EXPECT_EQ(errBody(r),
              "REMARK DC: couplings.tab PDB: peptide.pdb Residues 1 to 6, 6 total.\n"
              "REMARK D_N:  9 D_RMS:  0.264 D_CHI2:  0.323\n\n");
    EXPECT_EQ(readFile(dir + "/out.tab"),
              versionLines() + readFile(kFixtures + "/default_columns.tab"));

    // Observed columns, chain and segment names, to standard output; -r1 2
    // leaves out the residue 1 coupling.
    r = runDC({"-pdb", "peptide.pdb", "-inD", "couplings_chain.tab", "-r1", "2", "-verb"}, {}, dir);
    EXPECT_EQ(r.out, "REMARK 11 Couplings Selected. Mode: Max(ResID I, ResID J) Limits: 2 to 7.\n" +
                         versionLines() + readFile(kFixtures + "/verbose_columns.txt"));
    EXPECT_EQ(errBody(r),
              "REMARK DC: couplings_chain.tab PDB: peptide.pdb Residues 1 to 6, 6 total.\n"
              "REMARK D_N:  10 D_RMS:  0.263 D_CHI2:  1.316\n\n");

    // -select with -excl: both residues in 2..4.
    r = runDC({"-pdb", "peptide.pdb", "-inD", "couplings.tab", "-excl", "-select", "2", "to", "4",
               "-outD", "out.tab"},
              {}, dir);
    EXPECT_EQ(r.out, "REMARK 6 Couplings Selected. Mode: (ResID I AND ResID J) Limits: 1 to 7.\n");
    EXPECT_TRUE(r.err.starts_with("REMARK DC Selection ResID Range: 2 to 4\nREMARK DC: "));
    EXPECT_EQ(dataValue(readFile(dir + "/out.tab"), "DATA N"), 6);
}

// The Saupe values of the tensor the couplings were made from (Da 5e-4,
// Dr 1.5e-4, rotations 20, -30, 40): the back-calculated couplings are the
// noise-free ones, and the mirror images are the 180-degree turns about the
// tensor axes. Without Euler extraction the start tensor is reported.
TEST(SimulationRun, TensorBlockOfGivenSaupeValuesAndWithoutEuler) {
    std::string dir = stagePeptide("sim_tensor");
    DCResult r =
        runDC({"-pdb", "peptide.pdb", "-inD", "couplings.tab", "-mirror", "-saupe", "4.262397e-04",
               "2.348459e-04", "3.603953e-05", "6.600825e-04", "4.621352e-04"},
              {}, dir);
    EXPECT_EQ(r.status, 0);
    std::size_t block = r.out.find("\nDATA TENSOR_MODE");
    ASSERT_NE(block, std::string::npos);
    EXPECT_EQ(r.out.substr(block + 1), readFile(kFixtures + "/saupe_mirror.txt"));

    r = runDC({"-pdb", "peptide.pdb", "-inD", "couplings.tab", "-noeuler", "-mirror"}, {}, dir);
    std::size_t from = r.out.find("DATA TENSOR_MODE");
    EXPECT_EQ(r.out.substr(from, r.out.find("VARS", from) - from),
              "DATA TENSOR_MODE SVD (Order Matrix Method)\n\n"
              "DATA SAUPE  4.3463e-04  3.0108e-04  1.0987e-05  6.3523e-04  4.4993e-04\n"
              "DATA S_XYZ  0.0000e+00  0.0000e+00  0.0000e+00\n\n"
              "DATA EULER_SOLUTIONS      0\n\n"
              "DATA Da  1.000000e-04\nDATA Dr  1.000000e-05\n\n"
              "DATA GMag   2.839014e-04\n\n"
              "DATA Da_HN         2.159\nDATA Rhombicity    0.100\n\n");
    EXPECT_EQ(dataValue(r.out, "DATA Q_FACTOR"), 0.140);  // normalised by the start Da
}

using Atoms = std::map<std::pair<int, std::string>, std::array<double, 3>>;

// Atom positions of a PDB file by residue number and atom name.
Atoms readAtoms(const std::string& path) {
    Atoms atoms;
    for (const std::string& l : atomLines(path)) {
        std::istringstream name(l.substr(12, 4));
        std::pair<int, std::string> key(std::atoi(l.substr(22, 4).c_str()), "");
        name >> key.second;
        atoms[key] = {std::atof(l.substr(30, 8).c_str()), std::atof(l.substr(38, 8).c_str()),
                      std::atof(l.substr(46, 8).c_str())};
    }
    return atoms;
}

// The five order-matrix basis terms of a coupling; a glycine HA# coupling
// sums both alpha protons.
std::vector<double> basis(const Atoms& atoms, int res, const std::string& nameI,
                          const std::string& nameJ) {
    std::vector<std::string> names = {nameJ};
    if (nameJ == "HA#") names = {"HA2", "HA3"};
    std::vector<double> b(5, 0.0);
    const auto& a = atoms.at({res, nameI});
    for (const std::string& name : names) {
        const auto& c = atoms.at({res, name});
        double dx = a[0] - c[0], dy = a[1] - c[1], dz = a[2] - c[2];
        double r = std::sqrt(dx * dx + dy * dy + dz * dz);
        double x = dx / r, y = dy / r, z = dz / r;
        const double terms[5] = {0.5 * (3 * z * z - 1), 0.5 * (x * x - y * y), 2 * x * y, 2 * x * z,
                                 2 * y * z};
        for (int k = 0; k < 5; k++) b[k] += terms[k];
    }
    return b;
}

// Solves the 5x5 system by Gauss-Jordan elimination with partial pivoting.
std::vector<double> solve5(std::vector<std::vector<double>> m, std::vector<double> y) {
    for (int c = 0; c < 5; c++) {
        int p = c;
        for (int r = c + 1; r < 5; r++) {
            if (std::fabs(m[r][c]) > std::fabs(m[p][c])) p = r;
        }
        std::swap(m[c], m[p]);
        std::swap(y[c], y[p]);
        for (int r = 0; r < 5; r++) {
            if (r == c) continue;
            double f = m[r][c] / m[c][c];
            for (int k = c; k < 5; k++) m[r][k] -= f * m[c][k];
            y[r] -= f * y[c];
        }
    }
    for (int c = 0; c < 5; c++) y[c] /= m[c][c];
    return y;
}

// The fit must be the least-squares solution of the rows scaled by |DI|/DD.
TEST(SimulationRun, FitAgreesWithAnIndependentLeastSquaresSolution) {
    std::string dir = scratchDir("sim_lsq");
    DCResult r = runDC({"-pdb", kHafpA, "-inD", kHafpTable, "-verb", "-outD", dir + "/fit.tab"});
    ASSERT_EQ(r.status, 0) << r.err;
    std::string table = readFile(dir + "/fit.tab");
    struct Row {
        int res;
        std::string atomI, atomJ;
        double di, dObs, dCalc, dd;
    };
    std::vector<Row> rows;  // the rows with observed and calculated columns
    for (const std::string& l : lines(table.substr(table.find("FORMAT ")))) {
        std::istringstream in(l);
        Row row;
        std::string skip;
        if (in >> row.res >> skip >> row.atomI >> skip >> skip >> row.atomJ >> row.di >> row.dObs >>
            row.dCalc >> skip >> row.dd) {
            rows.push_back(row);
        }
    }
    ASSERT_EQ(rows.size(), 42u);

    Atoms atoms = readAtoms(kHafpA);
    std::vector<std::vector<double>> normal(5, std::vector<double>(5, 0.0)), design;
    std::vector<double> rhs(5, 0.0);
    for (const Row& row : rows) {
        design.push_back(basis(atoms, row.res, row.atomI, row.atomJ));
        double f = std::fabs(row.di) / row.dd;
        for (int p = 0; p < 5; p++) {
            rhs[p] += design.back()[p] * f * row.dObs / row.dd;
            for (int q = 0; q < 5; q++) normal[p][q] += design.back()[p] * design.back()[q] * f * f;
        }
    }
    std::vector<double> c = solve5(normal, rhs);
    for (std::size_t k = 0; k < rows.size(); k++) {
        double d = 0.0;
        for (int p = 0; p < 5; p++) d += c[p] * design[k][p];
        EXPECT_NEAR(rows[k].dCalc, std::fabs(rows[k].di) * d, 0.01)
            << rows[k].res << " " << rows[k].atomI << "-" << rows[k].atomJ;
    }
}

TEST(SimulationRun, ResidueOffsetLaysTheTableOnStructureNumbers) {
    std::string dir = scratchDir("sim_offset");
    std::string shifted;
    for (const std::string& l : atomLines(kHafpA)) {
        char resid[16];
        std::snprintf(resid, sizeof resid, "%4d", std::atoi(l.substr(22, 4).c_str()) + 100);
        shifted += l.substr(0, 22) + resid + l.substr(26) + "\n";
    }
    writeFile(dir + "/shifted.pdb", shifted);

    DCResult plain = runDC({"-pdb", kHafpA, "-inD", kHafpTable, "-verb"});
    DCResult moved = runDC(
        {"-pdb", dir + "/shifted.pdb", "-inD", kHafpTable, "-verb", "-a1", "101", "-r1", "1"});
    EXPECT_NE(moved.out.find(" Residues 101 to 124, 24 total.\n"), std::string::npos);
    EXPECT_EQ(moved.out.substr(moved.out.find("DATA N ")),
              plain.out.substr(plain.out.find("DATA N ")));
}

// Later models are duplicates of the first: every lookup finds model 1.
// (The table leaves out the HA# rows, whose expression also collects the
// alpha protons of the later models.)
TEST(SimulationRun, TwoModelFileFitsItsFirstModel) {
    std::string dir = scratchDir("sim_models");
    std::string table;
    for (const std::string& l : lines(readFile(kHafpTable))) {
        if (l.find("HA#") == std::string::npos) table += l + "\n";
    }
    writeFile(dir + "/plain.tab", table);
    std::vector<std::string> second = atomLines(kHafpB);
    std::string models = "MODEL        1\n";
    for (const std::string& l : atomLines(kHafpA)) models += l + "\n";
    models += "ENDMDL\nMODEL        2\n";
    for (const std::string& l : second) models += l + "\n";
    writeFile(dir + "/two.pdb", models + "ENDMDL\nEND\n");

    DCResult one = runDC({"-pdb", kHafpA, "-inD", dir + "/plain.tab", "-verb"});
    DCResult two = runDC({"-pdb", dir + "/two.pdb", "-inD", dir + "/plain.tab", "-verb"});
    EXPECT_EQ(two.status, 0);
    EXPECT_EQ(two.out.substr(two.out.find("DATA N ")), one.out.substr(one.out.find("DATA N ")));

    const std::string warning = "PDB Warning: Redundant Atom Specification.\n";
    std::vector<std::string> errLines = lines(two.err);
    EXPECT_EQ(std::count(errLines.begin(), errLines.end(), warning.substr(0, warning.size() - 1)),
              static_cast<long>(second.size()));
    EXPECT_TRUE(two.err.starts_with(
        warning + " ResID: 1 AtomName: N Chain: A Seg:  LocID:  ICode: \n" + warning))
        << two.err.substr(0, 300);
}

TEST(SimulationRun, MissingStructureOrTables) {
    std::string dir = stagePeptide("sim_missing");
    DCResult r =
        runDC({"-pdb", "nosuch.pdb", "-inD", "couplings.tab", "-outD", "out.tab"}, {}, dir);
    EXPECT_NE(r.status, 0);
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(errBody(r),
              "PDB Error opening PDB file nosuch.pdb\nDC Error Reading PDB File nosuch.pdb\n");
    EXPECT_EQ(readFile(dir + "/out.tab"), "");

    r = runDC({"-pdb", "nosuch.pdb", "-pdbTitle", "Model"}, {}, dir);
    EXPECT_EQ(errBody(r),
              "PDB Error opening PDB file nosuch.pdb\nDC Error Reading PDB File Model\n");

    // A structure but no tables: nothing selected, only the blank line and
    // the allocation balance on standard error.
    r = runDC({"-pdb", "peptide.pdb"}, {}, dir);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out,
              "REMARK 0 Couplings Selected. Mode: Max(ResID I, ResID J) Limits: 0 to 1000000.\n");
    EXPECT_EQ(r.err, "\nREMARK Memory Allocation Status. Reused: 0 In Use: 0\n");

    // A missing table fails before the structure is read.
    r = runDC({"-pdb", "x.pdb", "-inD", "missing.tab"}, {}, dir);
    EXPECT_NE(r.status, 0);
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(errBody(r),
              "RdTable File open error: missing.tab.\nDC Error Reading D Values in missing.tab\n");
}

// The demonstration data: couplings made from a known tensor with noise.
TEST(SimulationRun, DemoRecoversTheTensorItWasMadeFrom) {
    std::string dir = scratchDir("sim_demo");
    ASSERT_EQ(std::system((std::string(DC_MAKE_DEMO) + " " + dir + " > /dev/null").c_str()), 0);
    DCResult r = runDC(
        {"-pdb", "peptide.pdb", "-inD", "couplings.tab", "-outD", "fitted.tab", "-verb"}, {}, dir);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out,
              "REMARK 32 Couplings Selected. Mode: Max(ResID I, ResID J) Limits: 2 to 18.\n");
    EXPECT_TRUE(std::regex_search(errBody(r), std::regex("\nREMARK D_N:  32 D_RMS:  0\\.\\d{3} ")))
        << r.err;
    std::string table = readFile(dir + "/fitted.tab");
    EXPECT_NEAR(dataValue(table, "DATA Da"), 5.0e-4, 0.03 * 5.0e-4);
    EXPECT_NEAR(dataValue(table, "DATA Rhombicity"), 0.30, 0.03);
}

}  // namespace
