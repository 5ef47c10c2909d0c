// Shift prediction and the structure scores, on small surfaces written here
// and on the surfaces built with DC.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "cs/cs_tab.h"
#include "cs/homology.h"
#include "cs/predict_cs.h"
#include "cs/read_cs.h"
#include "cs/structure_scores.h"
#include "cs/surface.h"
#include "cs/surface_file.h"
#include "pdb/backbone.h"
#include "pdb/reader.h"
#include "pdb/structure.h"
#include "support/checks.h"
#include "support/run_dc.h"

namespace {

const std::string kUbq = DC_TEST_DATA "/ubq/1ubq_h.pdb";

// 4 x 4 cells of 90 degrees: cell (ix, iy) holds base + 10 iy + ix + 1, with
// density 5 but 0.1 in the corner cell (threshold 0.5), deviation 0.2 and
// error bound 0.7.
void writeShiftSurface(const std::string& dir, const std::string& name, float base) {
    std::vector<float> value(16), density(16, 5.0f), dev(16, 0.2f);
    for (int iy = 0; iy < 4; iy++) {
        for (int ix = 0; ix < 4; ix++) value[iy * 4 + ix] = base + 10.0f * iy + ix + 1.0f;
    }
    density[0] = 0.1f;
    SurfHeader h{4, 4, -180, 180, -180, 180, 1, 0.7f, 0.5f};
    ASSERT_EQ(surfWrite2D((dir + "/" + name + ".dat").c_str(), value.data(), h), 0);
    ASSERT_EQ(surfWrite2D((dir + "/" + name + ".d.dat").c_str(), density.data(), h), 0);
    ASSERT_EQ(surfWrite2D((dir + "/" + name + ".q.dat").c_str(), dev.data(), h), 0);
}

// A surface directory with every conformation surface, CA surfaces of the
// residue itself (ALA, and xPRO for a residue before a proline), N surfaces
// indexed by the residue before and C surfaces by the residue after.
std::string writeSurfaceDirectory() {
    std::string dir = scratchDir("prediction_surfaces");
    std::vector<float> flat(4, 1.0f);
    SurfHeader conformation{2, 2, -180, 180, -180, 180, 1, 0, 0};
    for (const char* name : kSurfResNames) {
        EXPECT_EQ(surfWrite2D((dir + "/" + name + ".dat").c_str(), flat.data(), conformation), 0);
    }
    writeShiftSurface(dir, "CA.ALA", 0.0f);
    writeShiftSurface(dir, "CA.xPRO", 100.0f);
    writeShiftSurface(dir, "N.ALA.prev", 0.0f);
    writeShiftSurface(dir, "C.ALA.next", 0.0f);
    writeFile(dir + "/rc.tab",
              "VARS RESNAME ATOMNAME TYPE OFFSET SHIFT\nFORMAT %s %s %s %d %f\n"
              "A CA RC 0 50\nA N RC 0 120\nA C RC 0 175\nP CA RC 0 60\nP CA ADJ 1 -2\n");
    writeFile(dir + "/homo.tab", "VARS RESNAME ALA PRO\nFORMAT %s %f %f\nALA 0 3\nPRO 3 0\n");
    return dir;
}

// Residues ALA ALA ALA PRO ALA with chosen angles, each atom 1.5 A along x
// from the last so that the structure reads; the angles are then set.
class Prediction : public testing::Test {
  protected:
    void SetUp() override {
        start_ = bytesInUse();
        dir_ = writeSurfaceDirectory();
        ASSERT_EQ(surfRead(dir_.c_str(), "rc.tab", "homo.tab", 0), 0);
        std::string pdbText;
        const char* names[] = {"ALA", "ALA", "ALA", "PRO", "ALA"};
        int serial = 1;
        for (int r = 0; r < 5; r++) {
            for (const char* atom : {" N  ", " CA ", " C  "}) {
                char line[96];
                std::snprintf(line, sizeof line,
                              "ATOM  %5d %s %s A%4d    %8.3f%8.3f%8.3f  1.00  0.00\n", serial, atom,
                              names[r], r + 1, 1.5f * serial, 0.0f, 0.0f);
                pdbText += line;
                serial++;
            }
        }
        writeFile(dir_ + "/p.pdb", pdbText);
        pdbNull(&pdb);
        ASSERT_EQ(readPDB((dir_ + "/p.pdb").c_str(), &pdb, nullptr), 0);
        const float angles[5][2] = {{-60, -40}, {-120, 120}, {60, 30}, {-70, 150}, {-170, -170}};
        for (int r = 0; r < 5; r++) {
            pdb.residues[r].phi = angles[r][0];
            pdb.residues[r].psi = angles[r][1];
        }
        csTabNull(&cs);
    }
    void TearDown() override {
        csTabFree(&cs);
        pdbFree(&pdb);
        surfFree();
        EXPECT_EQ(bytesInUse(), start_);
    }
    void readRows(const std::string& rows) {
        writeFile(dir_ + "/cs.tab",
                  "DATA FIRST_RESID 1\nDATA SEQUENCE AAAPA\n"
                  "VARS RESID RESNAME ATOMNAME SHIFT\nFORMAT %d %s %s %f\n" +
                      rows);
        ASSERT_EQ(readCS((dir_ + "/cs.tab").c_str(), &cs), 0);
    }
    const CSValue& row(int k) const { return cs.rows[k]; }

    std::string dir_;
    PDBData pdb;
    CSTab cs;
    int64_t start_ = 0;
};

// Each position takes its own angle pair: the residue's own (CA), phi with
// the psi of the residue before (N .prev), the phi of the residue after with
// psi (C .next); a residue before a proline uses the xPRO surface; a chain
// end without the neighbour a surface needs is predicted as random coil with
// the surface's bound as sigma; a cell below the density threshold predicts
// nothing.
TEST_F(Prediction, EachPositionTakesItsAnglePair) {
    readRows("1 A CA 61\n2 A N 130\n1 A N 121\n2 A C 207\n5 A C 176\n3 A CA 9999\n5 A CA 51\n");
    EXPECT_EQ(buildCS(&pdb, &cs, 0, 0, 0), 6);
    EXPECT_EQ(cs.mapped, 6);
    // (-60, -40): cell (1, 1).
    EXPECT_FLOAT_EQ(row(0).pred, 50 + 12);
    EXPECT_FLOAT_EQ(row(0).sigma, 0.2f);
    EXPECT_FLOAT_EQ(row(0).secondary, 12);
    EXPECT_EQ(row(0).compared, 1);
    // phi of residue 2 with psi of residue 1: (-120, -40), cell (0, 1).
    EXPECT_FLOAT_EQ(row(1).pred, 120 + 11);
    // Residue 1 has no residue before it.
    EXPECT_FLOAT_EQ(row(2).pred, 120);
    EXPECT_FLOAT_EQ(row(2).sigma, 0.7f);
    EXPECT_FLOAT_EQ(row(2).secondary, 0);
    // phi of residue 3 with psi of residue 2: (60, 120), cell (2, 3).
    EXPECT_FLOAT_EQ(row(3).pred, 175 + 33);
    EXPECT_FLOAT_EQ(row(4).pred, 175);
    // Before the proline: the xPRO surface at (60, 30), cell (2, 2), on the
    // random coil with the proline's correction, 50 - 2.
    EXPECT_FLOAT_EQ(row(5).pred, 48 + 123);
    EXPECT_EQ(row(5).compared, 0);
    // (-170, -170) lies in the corner cell, whose density is 0.1.
    EXPECT_FLOAT_EQ(row(6).pred, kCSMissing);
    EXPECT_FLOAT_EQ(row(6).sigma, kCSMissing);

    // With the constant-RMS flag every surface prediction has the bound as sigma.
    EXPECT_EQ(buildCS(&pdb, &cs, 0, 0, 1), 6);
    EXPECT_FLOAT_EQ(row(0).sigma, 0.7f);
    // An offset lays row residue r on structure residue r + 1.
    EXPECT_EQ(buildCS(&pdb, &cs, 1, 0, 0), 5);
    EXPECT_FLOAT_EQ(row(0).pred, 50 + 31);
}

// The conformation surface of each residue, xPRO before a proline when the
// flag is set, and its value at the residue's angles as order / value.
TEST_F(Prediction, ConformationSurfacesAndScoresOfResidues) {
    for (int r = 0; r < 5; r++) {
        ASSERT_NE(pdb.residues[r].surface, nullptr);
        EXPECT_STREQ(pdb.residues[r].surface->name, r == 2 ? "xPRO" : r == 3 ? "PRO" : "ALA");
    }
    setPhiPsiSurf(pdb.residues, pdb.resCount, 0);
    EXPECT_STREQ(pdb.residues[2].surface->name, "ALA");
    EXPECT_EQ(updatePDBSurf(&pdb, 2, 4), 0);
    EXPECT_FLOAT_EQ(pdb.residues[1].score, 1.0f);
    EXPECT_FLOAT_EQ(pdb.residues[0].score, 0.0f);  // outside the range
}

// A residue pair the homology table lacks scores 777777 in both residues and
// does not count; the rest give the rms of their values.
TEST_F(Prediction, HomologyScoreOfTwoStretches) {
    PDBData other;
    pdbNull(&other);
    ASSERT_EQ(readPDB((dir_ + "/p.pdb").c_str(), &other, nullptr), 0);
    std::strcpy(other.residues[1].resName, "GLY");
    float rms, lastValue;
    int count;
    // Residues 1-4 against 2-5 of the other: ALA/GLY (missing), ALA/ALA,
    // ALA/PRO, PRO/ALA.
    EXPECT_EQ(getStatHomo(&pdb, &other, 1, 4, "A", "", 2, 0, "A", "", 0, &rms, &lastValue, &count),
              0);
    EXPECT_EQ(count, 3);
    EXPECT_FLOAT_EQ(rms, static_cast<float>(std::sqrt((0.0 + 9.0 + 9.0) / 3.0)));
    EXPECT_FLOAT_EQ(pdb.residues[0].score, 777777.0f);
    EXPECT_FLOAT_EQ(other.residues[1].score, 777777.0f);
    pdbFree(&other);
}

// The homology score of a structure against itself with the project's
// table is 0; its conformation score agrees with the same lookup done here
// on the surface files (nearest cell, -ln(v/m), ln(m) below 1/m, at least 0).
TEST(StructureScores, UbiquitinAgainstItselfOnTheBuiltSurfaces) {
    int64_t start = bytesInUse();
    ASSERT_EQ(surfRead(DC_SURFACE_DIR, "rc.tab", "homo.tab", 0), 0);
    PDBData pdb;
    pdbNull(&pdb);
    ASSERT_EQ(readPDB(kUbq.c_str(), &pdb, nullptr), 0);
    updatePhiPsi(&pdb, pdb.resMin, pdb.resMax);
    float rms, lastValue, mean, minRatio;
    int count;
    getStatHomo(&pdb, &pdb, 1, 76, "A", "", 1, 0, "A", "", 1, &rms, &lastValue, &count);
    EXPECT_EQ(count, 76);
    EXPECT_EQ(rms, 0.0f);

    getStatSurf(&pdb, &pdb, 1, 76, "A", "", 1, 0, "A", "", 0, &mean, &lastValue, &minRatio, &count);
    double sum = 0;
    int expectedCount = 0;
    for (int r = 0; r < pdb.resCount; r++) {
        const PDBResidue& res = pdb.residues[r];
        if (res.phi > 999 || res.psi > 999) continue;
        std::string bytes = readFile(std::string(DC_SURFACE_DIR) + "/" + res.resName + ".dat");
        std::vector<float> words(bytes.size() / 4);
        std::memcpy(words.data(), bytes.data(), bytes.size());
        int n = static_cast<int>(words[99]);
        float m = 0;
        for (std::size_t i = 512; i < words.size(); i++) m = std::fmax(m, words[i]);
        int ix = std::min(n - 1, std::max(0, static_cast<int>(n / 360.0f * (res.phi + 180.0f))));
        int iy = std::min(n - 1, std::max(0, static_cast<int>(n / 360.0f * (res.psi + 180.0f))));
        double v = words[512 + iy * n + ix];
        double score = v >= 1.0 / m ? -std::log(v / m) : std::log(m);
        sum += score > 0 ? score : 0;
        expectedCount++;
    }
    EXPECT_EQ(count, expectedCount);
    EXPECT_NEAR(mean, sum / expectedCount, 1e-5);
    pdbFree(&pdb);
    surfFree();
    EXPECT_EQ(bytesInUse(), start);
}

}  // namespace
