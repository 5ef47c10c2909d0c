// Shift prediction and the structure scores, on small surfaces written here.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "cs/predict_cs.h"
#include "cs/structure_scores.h"
#include "cs/surface.h"
#include "cs/surface_file.h"
#include "pdb/reader.h"
#include "pdb/structure.h"
#include "shift_test_util.h"
#include "support/checks.h"

namespace {

// 4 x 4 cells of 90 degrees: cell (ix, iy) holds base + 10 iy + ix + 1, with
// density 5 but 0.1 in the corner cell (threshold 0.5), deviation 0.2 and
// error bound 0.7.
void writeShiftSurface(const std::string& dir, const std::string& name, float base) {
    std::vector<float> value(16), density(16, 5.0f), dev(16, 0.2f);
    for (int i = 0; i < 16; i++) value[i] = base + 10.0f * (i / 4) + i % 4 + 1.0f;
    density[0] = 0.1f;
    SurfHeader h{4, 4, -180, 180, -180, 180, 1, 0.7f, 0.5f};
    for (auto [ending, grid] : {std::pair{".dat", &value}, {".d.dat", &density}, {".q.dat", &dev}})
        ASSERT_EQ(surfWrite2D((dir + "/" + name + ending).c_str(), grid->data(), h), 0);
}

// A surface directory with every conformation surface (2 x 2 cells holding
// 4, 3, 0.125 and 2), CA surfaces of the residue itself (ALA, and xPRO for a
// residue before a proline), N surfaces indexed by the residue before and C
// surfaces by the residue after.
std::string writeSurfaceDirectory() {
    std::string dir = scratchDir("prediction_surfaces");
    const float cells[4] = {4, 3, 0.125f, 2};
    SurfHeader conformation{2, 2, -180, 180, -180, 180, 1, 0, 0};
    for (const char* name : kSurfResNames) {
        EXPECT_EQ(surfWrite2D((dir + "/" + name + ".dat").c_str(), cells, conformation), 0);
    }
    for (const char* name : {"CA.ALA", "N.ALA.prev", "C.ALA.next"}) writeShiftSurface(dir, name, 0);
    writeShiftSurface(dir, "CA.xPRO", 100.0f);
    writeFile(dir + "/rc.tab",
              "VARS RESNAME ATOMNAME TYPE OFFSET SHIFT\nFORMAT %s %s %s %d %f\n"
              "A CA RC 0 50\nA N RC 0 120\nA C RC 0 175\nP CA RC 0 60\nP CA ADJ 1 -2\n");
    writeFile(dir + "/homo.tab", "VARS RESNAME ALA PRO\nFORMAT %s %f %f\nALA 0 3\nPRO 4 0\n");
    return dir;
}

// Residues ALA ALA ALA PRO ALA with chosen angles, each atom 1.5 A along x
// from the last so that the structure reads; the angles are then set.
class Prediction : public cstest::ShiftTableTest {
  protected:
    void SetUp() override {
        ShiftTableTest::SetUp();
        dir_ = writeSurfaceDirectory();
        ASSERT_EQ(surfRead(dir_.c_str(), "rc.tab", "homo.tab", 0), 0);
        std::string pdbText;
        for (int serial = 1; serial <= 15; serial++) {
            char line[96];
            std::snprintf(line, sizeof line, "ATOM  %5d %.4s %s A%4d    %8.3f   0.000   0.000\n",
                          serial, &" N   CA  C  "[4 * ((serial - 1) % 3)],
                          (serial - 1) / 3 == 3 ? "PRO" : "ALA", (serial + 2) / 3, 1.5f * serial);
            pdbText += line;
        }
        writeFile(dir_ + "/p.pdb", pdbText);
        ASSERT_EQ(readPDB((dir_ + "/p.pdb").c_str(), &pdb, nullptr), 0);
        const float angles[5][2] = {{-60, -40}, {-120, 120}, {60, 30}, {-70, 150}, {-170, -170}};
        for (int r = 0; r < 5; r++) {
            pdb.residues[r].phi = angles[r][0];
            pdb.residues[r].psi = angles[r][1];
        }
    }
    // The sequence counts from residue 1 when the table names no first one.
    void readRows(const std::string& rows) {
        ASSERT_EQ(readText("DATA SEQUENCE AAAPA\nVARS RESID RESNAME ATOMNAME SHIFT\n"
                           "FORMAT %d %s %s %f\n" +
                           rows),
                  0);
    }

    std::string dir_;
};

// Each position takes its own angle pair: the residue's own (CA), phi with
// the psi of the residue before (N .prev), the phi of the residue after with
// psi (C .next); a residue before a proline uses the xPRO surface; a chain
// end without the neighbour a surface needs is predicted as random coil with
// the surface's bound as sigma; a cell below the density threshold predicts
// nothing.
TEST_F(Prediction, EachPositionTakesItsAnglePair) {
    readRows("1 A CA 61\n2 A N 130\n1 A N 121\n2 A C 207\n5 A C 176\n3 A CA 9999\n5 A CA 51\n");
    EXPECT_EQ(buildCS(&pdb, &table, 0, 0, 0), 6);
    // (-60, -40): cell (1, 1).
    EXPECT_FLOAT_EQ(row(0).pred, 50 + 12);
    EXPECT_FLOAT_EQ(row(0).sigma, 0.2f);
    // phi of residue 2 with psi of residue 1: (-120, -40), cell (0, 1).
    EXPECT_FLOAT_EQ(row(1).pred, 120 + 11);
    // Residue 1 has no residue before it.
    EXPECT_FLOAT_EQ(row(2).pred, 120);
    EXPECT_FLOAT_EQ(row(2).sigma, 0.7f);
    // phi of residue 3 with psi of residue 2: (60, 120), cell (2, 3).
    EXPECT_FLOAT_EQ(row(3).pred, 175 + 33);
    EXPECT_FLOAT_EQ(row(4).pred, 175);
    // Before the proline: the xPRO surface at (60, 30), cell (2, 2), on the
    // random coil with the proline's correction, 50 - 2.
    EXPECT_FLOAT_EQ(row(5).pred, 48 + 123);
    // (-170, -170) lies in the corner cell, whose density is 0.1.
    EXPECT_FLOAT_EQ(row(6).pred, kCSMissing);
    EXPECT_FLOAT_EQ(row(6).sigma, kCSMissing);

    // With the constant-RMS flag every surface prediction has the bound as sigma.
    EXPECT_EQ(buildCS(&pdb, &table, 0, 0, 1), 6);
    EXPECT_FLOAT_EQ(row(0).sigma, 0.7f);
    // An offset lays row residue r on structure residue r + 1.
    EXPECT_EQ(buildCS(&pdb, &table, 1, 0, 0), 5);
    EXPECT_FLOAT_EQ(row(0).pred, 50 + 31);
}

// The conformation surface of each residue (xPRO before a proline when the
// flag is set), worked by hand: the residues sit in cells 0, 2, 3, 2, 0.
// updatePDBSurf scores order / value; the conformation score is -ln(v/m),
// or ln(m) below 1/m (m = 4): 0, ln 4, ln 2, ln 4, 0. A residue pair the
// homology table lacks scores 777777 in both residues and does not count;
// the rest give the rms of their values.
TEST_F(Prediction, StructureScores) {
    for (int r = 0; r < 5; r++) {
        ASSERT_NE(pdb.residues[r].surface, nullptr);
        EXPECT_STREQ(pdb.residues[r].surface->name, r == 2 ? "xPRO" : r == 3 ? "PRO" : "ALA");
    }
    setPhiPsiSurf(pdb.residues, pdb.resCount, 0);
    EXPECT_STREQ(pdb.residues[2].surface->name, "ALA");
    EXPECT_EQ(updatePDBSurf(&pdb, 2, 4), 0);
    EXPECT_EQ(pdb.residues[0].score, 0.0f);  // outside the range
    EXPECT_EQ(pdb.residues[1].score, 8.0f);
    EXPECT_EQ(pdb.residues[2].score, 0.5f);

    float mean, lastValue, minRatio, rms;
    int count;
    getStatSurf(&pdb, &pdb, 1, 5, "A", "", 1, 0, "A", "", 0, &mean, &lastValue, &minRatio, &count);
    EXPECT_EQ(count, 5);
    EXPECT_FLOAT_EQ(mean, static_cast<float>(std::log(2.0)));
    EXPECT_EQ(minRatio, 0.125f);  // the value itself, without a density
    EXPECT_EQ(lastValue, 0.0f);

    // Residues 1-4 against 2-5 with residue 2 renamed: ALA/GLY and GLY/ALA
    // (missing), ALA/PRO (3) and PRO/ALA (4).
    std::strcpy(pdb.residues[1].resName, "GLY");
    EXPECT_EQ(getStatHomo(&pdb, &pdb, 1, 4, "A", "", 2, 0, "A", "", 0, &rms, &lastValue, &count),
              0);
    EXPECT_EQ(count, 2);
    EXPECT_FLOAT_EQ(rms, static_cast<float>(std::sqrt(12.5)));
    EXPECT_EQ(pdb.residues[0].score, 777777.0f);
    EXPECT_EQ(pdb.residues[4].score, 4.0f);
}

}  // namespace
