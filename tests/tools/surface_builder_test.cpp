// The shift surface builder on small hand-made training data, and the
// surface directory the build made from the real data.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "pdb/residue_types.h"
#include "support/run_dc.h"
#include "tools/surfaces/homology.h"
#include "tools/surfaces/kernel_surface.h"
#include "tools/surfaces/random_coil.h"
#include "tools/surfaces/surface_model.h"
#include "tools/surfaces/surface_writer.h"
#include "tools/surfaces/training_set.h"
#include "util/table.h"

namespace {

const std::string kShiftData = DC_SHIFT_DATA;
const std::string kSurfaceDir = DC_SURFACE_DIR;
const char* const kCsvHead =
    "bmrb,pdb,chain,resnum,resname,prev,next,phi,psi,prev_psi,next_phi,HN,HA,HA2,HA3,CA,CB,C,N\n";

bool exists(const std::string& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0;
}

std::vector<TrainingResidue> readCsv(const std::string& rows) {
    std::string path = scratchDir("builder_csv") + "/training.csv";
    writeFile(path, kCsvHead + rows);
    std::vector<TrainingResidue> residues;
    EXPECT_EQ(readTraining(path.c_str(), &residues), 0);
    return residues;
}

// Two observations near the cell centred at (-55, -45) of a 10-degree grid
// with a 10-degree kernel: one at (-60, -40) with value 1, 5 degrees off
// on each axis (weight e^-0.25), one at (-50, -30) with value 3 (weight
// e^-1.25). Worked by hand: weight 1.0653056, mean 1.5378828, deviation
// 0.8868189. An observation at phi 175 reaches the cell at -175 across the
// periodic edge, 10 degrees away (weight e^-0.5 = 0.6065307).
TEST(SurfaceBuilder, KernelMeanDensityAndDeviationAtACell) {
    Grid g{36, 10.0f};
    KernelSums sums(36 * 36);
    addObservation(&sums, g, -60.0f, -40.0f, 1.0f);
    addObservation(&sums, g, -50.0f, -30.0f, 3.0f);
    int cell = cellIndex(g, -55.0f, -45.0f);
    EXPECT_EQ(cell, 13 * 36 + 12);
    CellEstimate e = plainEstimate(sums.at(cell));
    EXPECT_NEAR(e.density, 1.0653056, 1e-6);
    EXPECT_NEAR(e.value, 1.5378828, 1e-6);
    EXPECT_NEAR(e.dev, 0.8868189, 1e-6);

    // Drawn toward it with a prior of 2 observations, the first alone gives
    // mean 1.3871331, deviation 0.7901861 and density e^-0.25 + 1.0653056.
    KernelSums own(36 * 36);
    addObservation(&own, g, -60.0f, -40.0f, 1.0f);
    CellEstimate b = blendedEstimate(own.at(cell), sums.at(cell), 2.0f);
    EXPECT_NEAR(b.value, 1.3871331, 1e-6);
    EXPECT_NEAR(b.dev, 0.7901861, 1e-6);
    EXPECT_NEAR(b.density, 1.8441064, 1e-6);

    KernelSums edge(36 * 36);
    addObservation(&edge, g, 175.0f, -45.0f, 2.0f);
    EXPECT_NEAR(plainEstimate(edge.at(cellIndex(g, -175.0f, -45.0f))).density, 0.6065307, 1e-6);
    // Angles on or beyond the edges take the edge cells, as DC looks them up.
    EXPECT_EQ(cellIndex(g, 180.0f, 180.0f), 36 * 36 - 1);
    EXPECT_EQ(cellIndex(g, -200.0f, -180.0f), 0);
}

// Glycine alpha protons are named by size, HA2 the larger; a glycine with
// one of them keeps neither. Neighbours two away are found by number within
// the entry.
TEST(SurfaceBuilder, TrainingRowsGlycineProtonsAndNeighbours) {
    std::vector<TrainingResidue> r = readCsv(
        "1,1ABC,A,10,LYS,,GLY,-60,-40,,-70,8.1,4.2,,,56.1,32.9,176.5,121.0\n"
        "1,1ABC,A,11,GLY,LYS,ALA,-70,-30,-40,-65,8.3,,3.5,4.1,45.2,,173.9,109.5\n"
        "1,1ABC,A,12,ALA,GLY,SER,-65,-42,-30,-80,8.0,4.3,,,52.9,19.0,177.8,123.0\n"
        "1,1ABC,A,13,SER,ALA,LYS,-80,-20,-42,,8.2,4.4,,,58.4,63.9,174.5,116.0\n"
        "2,2XYZ,B,13,GLY,ALA,ALA,80,10,,,8.5,,3.9,,45.0,,174.0,108.0\n");
    ASSERT_EQ(r.size(), 5u);
    EXPECT_FLOAT_EQ(r[1].shift[kHA2], 4.1f);
    EXPECT_FLOAT_EQ(r[1].shift[kHA3], 3.5f);
    EXPECT_TRUE(std::isnan(r[4].shift[kHA2]) && std::isnan(r[4].shift[kHA3]));
    // None two before a chain start, nor from residue 11 of another entry.
    EXPECT_EQ(r[2].prev2 + r[1].next2 + r[0].prev2 + r[3].next2 + r[4].prev2, "LYSSER");
    EXPECT_EQ(shiftClass(r[0]), "LYS");

    // .prev surfaces take (phi, psi of the residue before), .next (phi of the
    // residue after, psi); without those angles there is none.
    float phi, psi;
    ASSERT_TRUE(anglesFor(r[2], -1, &phi, &psi));
    EXPECT_EQ(std::pair(phi, psi), std::pair(-65.0f, -30.0f));
    ASSERT_TRUE(anglesFor(r[2], 1, &phi, &psi));
    EXPECT_EQ(std::pair(phi, psi), std::pair(-80.0f, -42.0f));
    EXPECT_FALSE(anglesFor(r[0], -1, &phi, &psi) || anglesFor(r[3], 1, &phi, &psi));
}

// The residues before a proline are a class of their own: any but glycine
// for shifts, any but glycine and proline for conformations.
TEST(SurfaceBuilder, ResiduesBeforeAProlineAreXPRO) {
    TrainingResidue r;
    r.next = "PRO";
    for (const char* name : {"ALA", "GLY", "PRO"}) {
        r.name = name;
        EXPECT_EQ(shiftClass(r), r.name == "GLY" ? "GLY" : "xPRO") << name;
        EXPECT_EQ(conformationClass(r), r.name == "ALA" ? "xPRO" : r.name) << name;
    }
}

// A surface indexed by the angles of the residue before lands the residue's
// shift at (its phi, the previous psi), in the file named for its class and
// position; the residue-independent set is written beside it.
TEST(SurfaceBuilder, PrevSurfacesAreWrittenAtTheNeighbourAngles) {
    std::string rows;
    for (int i = 0; i < 6; i++) {
        rows += "1,1ABC,A," + std::to_string(20 + 3 * i) +
                ",ALA,GLY,GLY,-100,150,40,-90,8.0,4.3,,,54.53,19.0,177.8,123.0\n";
    }
    std::vector<TrainingResidue> residues = readCsv(rows);
    RandomCoilTable rc;
    ASSERT_EQ(readRandomCoil((kShiftData + "/random_coil.csv").c_str(), &rc), 0);
    for (TrainingResidue& r : residues) setSecondaryShifts(rc, &r);
    freeRandomCoil(&rc);
    float secondary = residues[0].secondary[kCA];
    std::string dir = scratchDir("builder_prev");
    SurfaceChoice choice{kCA, -1, {36, 10.0f}, 1.0f, 0.5f, {}, 0};
    choice.cv.rms = 0.75;
    std::vector<int> folds(residues.size(), 0);
    EXPECT_EQ(writeShiftSurfaces(dir, choice, residues, folds), 6);
    for (const char* file : {"CA.ALA.prev.d.dat", "CA.prev.dat", "CA.prev.q.dat"})
        EXPECT_TRUE(exists(dir + "/" + file)) << file;
    EXPECT_FALSE(exists(dir + "/CA.GLY.prev.dat"));
    std::string bytes = readFile(dir + "/CA.ALA.prev.dat");
    std::vector<float> words(bytes.size() / 4);
    std::memcpy(words.data(), bytes.data(), bytes.size());
    EXPECT_EQ(std::pair(words[153], words[199]), std::pair(0.75f, 0.5f));
    EXPECT_NEAR(words[512 + cellIndex(choice.grid, -100.0f, 40.0f)], secondary, 1e-5);
}

// rc.tab holds each residue's own value (RC, offset 0) and what it adds to a
// neighbour from each position (ADJ); the neighbour corrections add up as the
// shift reader adds them. Worked by hand for ALA CA between LYS, GLY and
// SER, LYS: 52.53002 - 0.02950 - 0.03184 + 0.07846 + 0.01817 = 52.56531;
// for glycine HA2 among alanines: 3.91016 + 0.00652 - 0.00654 - 0.02371 +
// 0.00350 = 3.88993.
TEST(SurfaceBuilder, RandomCoilTableRowsAndNeighbourCorrections) {
    RandomCoilTable rc;
    ASSERT_EQ(readRandomCoil((kShiftData + "/random_coil.csv").c_str(), &rc), 0);
    const std::string alanine[5] = {"K", "G", "A", "S", "K"};
    EXPECT_NEAR(randomCoilShift(rc, alanine, "CA"), 52.56531, 1e-4);
    const std::string glycine[5] = {"A", "A", "G", "A", "A"};
    EXPECT_NEAR(randomCoilShift(rc, glycine, "HA2"), 3.88993, 1e-4);
    EXPECT_NEAR(randomCoilShift(rc, glycine, "HA3"), 3.88993, 1e-4);
    const std::string lone[5] = {"", "", "G", "", ""};
    EXPECT_TRUE(std::isnan(randomCoilShift(rc, lone, "CB")));

    std::string path = scratchDir("builder_rc") + "/rc.tab";
    ASSERT_EQ(writeRandomCoil(path.c_str(), rc), 0);
    freeRandomCoil(&rc);
    TabData t{nullptr, 0, 0, nullptr};
    ASSERT_EQ(rdTable2(path.c_str(), &t, nullptr, 999999.0f, 0, 1), 0);
    std::string rows;  // those of alanine N
    for (int r = 0; r < t.rows; r++) {
        const float* row = t.values + r * t.columns;
        auto text = [&](int c) { return std::string(t.vars[c].texts[static_cast<int>(row[c])]); };
        char line[64];
        std::snprintf(line, sizeof line, "%s %d %.5f,", text(2).c_str(), static_cast<int>(row[3]),
                      row[4]);
        if (text(0) == "A" && text(1) == "N") rows += line;
    }
    freeTab(&t);
    EXPECT_EQ(rows, "RC 0 125.40155,ADJ -2 -0.14051,ADJ -1 -2.31666,ADJ 1 -0.00873,ADJ 2 0.09963,");
}

// d(a,b) = (s(a,a) + s(b,b))/2 - s(a,b) from BLOSUM62: ALA/ARG (4 + 5)/2 + 1,
// TRP/TYR (11 + 7)/2 - 2; a residue against itself 0.
TEST(SurfaceBuilder, HomologyTableCells) {
    HomologyTable h;
    ASSERT_EQ(readHomology((kShiftData + "/blosum62.txt").c_str(), &h), 0);
    ASSERT_EQ(h.names.size(), 21u);
    auto d = [&](const std::string& a, const std::string& b) {
        int i = 0, j = 0;
        while (h.names[i] != a) i++;
        while (h.names[j] != b) j++;
        return h.d[i][j];
    };
    EXPECT_FLOAT_EQ(d("ALA", "ARG"), 5.5f);
    EXPECT_FLOAT_EQ(d("TRP", "TYR"), 7.0f);
    EXPECT_FLOAT_EQ(d("xPRO", "xPRO") + d("LEU", "LEU"), 0.0f);
    EXPECT_FLOAT_EQ(d("xPRO", "TRP"), d("TRP", "xPRO"));

    std::string path = scratchDir("builder_homo") + "/homo.tab";
    ASSERT_EQ(writeHomology(path.c_str(), h), 0);
    TabData t{nullptr, 0, 0, nullptr};
    ASSERT_EQ(rdTable2(path.c_str(), &t, nullptr, 999999.0f, 0, 1), 0);
    EXPECT_EQ(t.rows * 100 + t.columns, 2122);
    const float* tyr = t.values + 18 * t.columns;
    EXPECT_STREQ(t.vars[0].texts[static_cast<int>(tyr[0])], "TYR");
    EXPECT_FLOAT_EQ(tyr[getTabVar(t.vars, t.columns, "TRP")], 7.0f);
    freeTab(&t);
}

// The build's own surface directory: every file DC's loader reads, and
// surfaces that beat random coil in cross-validation for every atom kind,
// for CA, CB and C by at least 35 %.
TEST(SurfaceBuilder, BuiltDirectoryIsCompleteAndBeatsRandomCoil) {
    for (const char* file : {"HA2.GLY.d.dat", "HA.LEU.q.dat", "N.xPRO.prev.dat", "HN.cys.prev.dat"})
        EXPECT_TRUE(exists(kSurfaceDir + "/" + file)) << file;
    std::istringstream report(readFile(kSurfaceDir + "/crossvalidation.txt"));
    int atoms = 0;
    for (std::string line; std::getline(report, line);) {
        if (line.empty() || line[0] == '#' || line.rfind("atom", 0) == 0) continue;
        std::istringstream words(line);
        std::string atom, surface, coverage, gain;
        double grid, width, blend, threshold, rows, excluded, rms, randomCoil;
        words >> atom >> surface >> grid >> width >> blend >> threshold >> rows >> excluded >>
            coverage >> rms >> randomCoil >> gain;
        SCOPED_TRACE(line);
        EXPECT_LT(rms, randomCoil);
        if (atom == "CA" || atom == "CB" || atom == "C") EXPECT_LE(rms, 0.65 * randomCoil);
        EXPECT_GE(std::atof(coverage.c_str()), 99.0);
        atoms++;
    }
    EXPECT_EQ(atoms, 8);
}

}  // namespace
