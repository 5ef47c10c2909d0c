#include "pdb/backbone.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "pdb/lookup.h"
#include "pdb/modes.h"
#include "pdb/reader.h"
#include "pdb/structure.h"
#include "support/run_dc.h"
#include "torsion_check.h"
#include "util/alloc.h"

namespace {

using namespace torsion_check;

// Natural-extension reference frame: the atom bonded to c at the given
// length, with bond angle b-c-new and torsion a-b-c-new (degrees, IUPAC).
V3 placeAtom(V3 a, V3 b, V3 c, double length, double bondAngle, double dihedral) {
    V3 bc = (1.0 / std::sqrt(dot(c - b, c - b))) * (c - b);
    V3 n = cross(b - a, bc);
    n = (1.0 / std::sqrt(dot(n, n))) * n;
    double theta = bondAngle / kDegrees, phi = dihedral / kDegrees;
    return c + (-length * std::cos(theta) * bc +
                length * std::sin(theta) * std::cos(phi) * cross(n, bc) +
                length * std::sin(theta) * std::sin(phi) * n);
}

struct PhiPsi {
    double phi, psi;
};

const std::vector<PhiPsi> kHelixThenStrand = {{-57, -47},  {-57, -47},  {-57, -47},
                                              {-120, 130}, {-120, 130}, {-120, 130}};

// PDB text of a backbone (N, CA, C, O) with standard bond lengths and
// angles, trans peptide bonds and the given torsions; residue i is numbered
// resIDs[i]. Three decimals at true scale would move a torsion by up to
// 0.04 degrees, and torsions do not change with scale, so the chain is
// written ten times enlarged: the file's angles stay good to 0.005 degrees.
std::string peptideText(const std::vector<int>& resIDs) {
    const double kNCa = 1.458, kCaC = 1.525, kCN = 1.329, kCO = 1.231;
    const double kNCaC = 111.2, kCaCN = 116.2, kCNCa = 121.7, kCaCO = 120.8;
    V3 n{0, 0, 0}, ca{kNCa, 0, 0};
    V3 c = ca + V3{kCaC * std::cos((180 - kNCaC) / kDegrees),
                   kCaC * std::sin((180 - kNCaC) / kDegrees), 0};
    std::string text;
    char line[128];
    int serial = 1;
    for (size_t i = 0; i < resIDs.size(); i++) {
        if (i > 0) {
            V3 nextN = placeAtom(n, ca, c, kCN, kCaCN, kHelixThenStrand[i - 1].psi);
            V3 nextCA = placeAtom(ca, c, nextN, kNCa, kCNCa, 180.0);
            c = placeAtom(c, nextN, nextCA, kCaC, kNCaC, kHelixThenStrand[i].phi);
            n = nextN;
            ca = nextCA;
        }
        V3 o = placeAtom(n, ca, c, kCO, kCaCO, kHelixThenStrand[i].psi + 180.0);
        const std::pair<const char*, V3> atoms[] = {{"N", n}, {"CA", ca}, {"C", c}, {"O", o}};
        for (const auto& [name, p] : atoms) {
            std::snprintf(line, sizeof line,
                          "ATOM  %5d  %-3s ALA A%4d    %8.3f%8.3f%8.3f  1.00  0.00\n", serial++,
                          name, resIDs[i], 10 * p.x, 10 * p.y, 10 * p.z);
            text += line;
        }
    }
    return text;
}

class Backbone : public ::testing::Test {
  protected:
    void SetUp() override {
        resetPDBModes();
        getMemUsed(&start, nullptr);
        pdbNull(&pdb);
    }
    void TearDown() override {
        pdbFree(&pdb);
        int64_t now = 0;
        getMemUsed(&now, nullptr);
        EXPECT_EQ(now, start);
    }
    void read(const std::string& text) {
        std::string path = scratchDir("backbone") + "/peptide.pdb";
        writeFile(path, text);
        ASSERT_EQ(readPDB(path.c_str(), &pdb, nullptr), 0);
    }
    V3 ca(int resID) { return at(findAtom(&pdb, resID, "CA", "A", "")); }
    int64_t start = 0;
    PDBData pdb;
};

TEST_F(Backbone, IdealHelixAndStrandGiveTheirPhiPsiBack) {
    read(peptideText({1, 2, 3, 4, 5, 6}));
    ASSERT_EQ(updatePhiPsi(&pdb, 1, 6), 0);
    ASSERT_EQ(pdb.resCount, 6);
    for (int i = 0; i < 6; i++) {
        SCOPED_TRACE(i);
        const PDBResidue& r = pdb.residues[i];
        EXPECT_NEAR(r.phi, i == 0 ? 9999.0 : kHelixThenStrand[i].phi, 0.01);
        EXPECT_NEAR(r.psi, i == 5 ? 9999.0 : kHelixThenStrand[i].psi, 0.01);
    }
    float phi = 0, psi = 0;
    EXPECT_EQ(getPDBPhiPsi(&pdb, 1, "A", "", &phi, &psi), kPsiMeasured);
    EXPECT_EQ(getPDBPhiPsi(&pdb, 6, "A", "", &phi, &psi), kPhiMeasured);
    EXPECT_EQ(getPDBPhiPsi(&pdb, 3, "A", "", &phi, &psi), kPhiMeasured | kPsiMeasured);
    EXPECT_EQ(getPDBPhiPsi(&pdb, 3, "B", "", &phi, &psi), 0);
    EXPECT_EQ(getPDBPhiPsi(&pdb, 7, "A", "", &phi, &psi), 0);
    EXPECT_EQ(phi + psi, 2 * 9999.0f);

    // Only residues next to the range are updated.
    pdb.residues[0].psi = pdb.residues[5].phi = 5;
    updatePhiPsi(&pdb, 4, 4);
    EXPECT_EQ(pdb.residues[0].psi, 5.0f);
    EXPECT_NEAR(pdb.residues[2].psi, -47.0, 0.01);
    EXPECT_EQ(pdb.residues[5].phi, 5.0f);
}

TEST_F(Backbone, NumberingGapBreaksTheNeighbours) {
    // No residue 4, although the atoms of 3 and 5 are bonded.
    read(peptideText({1, 2, 3, 5, 6, 7}));
    updatePhiPsi(&pdb, 1, 7);
    EXPECT_NEAR(pdb.residues[2].phi, -57.0, 0.01);
    EXPECT_EQ(pdb.residues[2].psi, 9999.0f);
    EXPECT_EQ(pdb.residues[3].phi, 9999.0f);
    EXPECT_NEAR(pdb.residues[3].psi, 130.0, 0.01);
    float omega = 0;
    EXPECT_EQ(getPDBOmega(&pdb, 5, "A", "", &omega), 0);
    EXPECT_EQ(omega, 9999.0f);
}

TEST_F(Backbone, ScanLooksUpResidueZeroOnceMoreAfterTheLastResidue) {
    // Residue 0 with a blank chain is what the cleared slot past the last
    // residue names, so its atoms are looked up a second time.
    std::string text = peptideText({-1, 0, 1});
    for (size_t at = 0; (at = text.find(" A", at)) != std::string::npos;) text[at + 1] = ' ';
    read(text);
    setPDBVerbose(0, 1);
    testing::internal::CaptureStderr();
    updatePhiPsi(&pdb, -1, 1);
    std::string trace = testing::internal::GetCapturedStderr();
    setPDBVerbose(0, 0);
    size_t lookups = 0;
    for (size_t at = 0; (at = trace.find("|0 CA ", at)) != std::string::npos; at++) lookups++;
    EXPECT_EQ(lookups, 2u) << trace;
    EXPECT_NEAR(pdb.residues[1].phi, -57.0, 0.01);
}

TEST_F(Backbone, OmegaAlphaAndKappa) {
    read(peptideText({1, 2, 3, 4, 5, 6}));
    float value = 0;
    EXPECT_EQ(getPDBOmega(&pdb, 1, "A", "", &value), 0);
    EXPECT_EQ(getPDBOmega(&pdb, 2, "A", "", &value), 1);
    EXPECT_NEAR(std::fabs(value), 180.0, 0.01);
    EXPECT_EQ(getPDBAlpha(&pdb, 3, "A", "", &value), 1);
    EXPECT_NEAR(value, torsion(ca(2), ca(3), ca(4), ca(5)), 1e-3);
    EXPECT_EQ(getPDBAlpha(&pdb, 5, "A", "", &value), 0);
    EXPECT_EQ(value, 9999.0f);
    EXPECT_EQ(getPDBKappa(&pdb, 3, "A", "", &value), 1);
    EXPECT_NEAR(value, bend(ca(1), ca(3), ca(5)), 1e-3);
    EXPECT_EQ(getPDBKappa(&pdb, 2, "A", "", &value), 0);
    EXPECT_EQ(getPDBKappa(&pdb, 9, "A", "", &value), 0);
}

TEST_F(Backbone, UndefinedGeometryIsReportedButCountsAsMeasured) {
    // CA atoms on one line: alpha has no plane; kappa is a clean 180.
    std::string text;
    for (int i = 1; i <= 5; i++) {
        char line[128];
        std::snprintf(line, sizeof line, "ATOM  %5d  CA  ALA A%4d    %8.3f   0.000   0.000\n", i, i,
                      3.8 * i);
        text += line;
    }
    read(text);
    float value = 0;
    testing::internal::CaptureStderr();
    EXPECT_EQ(getPDBAlpha(&pdb, 2, "A", "", &value), 1);
    EXPECT_EQ(getPDBKappa(&pdb, 3, "A", "", &value), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "alpha error at 2\n");
    EXPECT_EQ(value, 180.0f);
}

}  // namespace
