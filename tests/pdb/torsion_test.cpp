#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "pdb/backbone.h"
#include "pdb/chi.h"
#include "pdb/measure_atoms.h"
#include "pdb_fixture.h"

namespace {

// Natural-extension reference frame: the atom bonded to c at the given
// length, with bond angle b-c-new and torsion a-b-c-new (degrees, IUPAC).
V3 placeAtom(V3 a, V3 b, V3 c, double length, double bondAngle, double dihedral) {
    V3 bc = (c - b) * (1.0 / std::sqrt(dot(c - b, c - b)));
    V3 n = cross(b - a, bc);
    n = n * (1.0 / std::sqrt(dot(n, n)));
    double theta = bondAngle / kDegrees, phi = dihedral / kDegrees;
    return c + bc * (-length * std::cos(theta)) +
           cross(n, bc) * (length * std::sin(theta) * std::cos(phi)) +
           n * (length * std::sin(theta) * std::sin(phi));
}

const double kPhi[] = {-57, -57, -57, -120, -120, -120}, kPsi[] = {-47, -47, -47, 130, 130, 130};

// PDB text of a backbone (N, CA, C, O) with standard bond lengths and
// angles, trans peptide bonds, a helix then a strand; residue i is numbered
// resIDs[i]. Three decimals at true scale would move a torsion by up to
// 0.04 degrees, and torsions do not change with scale, so the chain is
// written ten times enlarged: the file's angles stay good to 0.005 degrees.
std::string peptideText(const std::vector<int>& resIDs) {
    const double kNCa = 1.458, kCaC = 1.525, kCN = 1.329, kCO = 1.231;
    const double kNCaC = 111.2, kCaCN = 116.2, kCNCa = 121.7, kCaCO = 120.8;
    V3 n{0, 0, 0}, ca{kNCa, 0, 0};
    V3 c =
        ca + V3{std::cos((180 - kNCaC) / kDegrees), std::sin((180 - kNCaC) / kDegrees), 0} * kCaC;
    std::string text;
    char line[128];
    for (size_t i = 0; i < resIDs.size(); i++) {
        if (i > 0) {
            V3 nextN = placeAtom(n, ca, c, kCN, kCaCN, kPsi[i - 1]);
            V3 nextCA = placeAtom(ca, c, nextN, kNCa, kCNCa, 180.0);
            c = placeAtom(c, nextN, nextCA, kCaC, kNCaC, kPhi[i]);
            n = nextN;
            ca = nextCA;
        }
        V3 o = placeAtom(n, ca, c, kCO, kCaCO, kPsi[i] + 180.0);
        const std::pair<const char*, V3> atoms[] = {{"N", n}, {"CA", ca}, {"C", c}, {"O", o}};
        for (const auto& [name, p] : atoms) {
            std::snprintf(line, sizeof line, "ATOM      1  %-3s ALA A%4d    %8.3f%8.3f%8.3f\n",
                          name, resIDs[i], 10 * p.x, 10 * p.y, 10 * p.z);
            text += line;
        }
    }
    return text;
}

using Backbone = PDBTest;

TEST_F(Backbone, IdealHelixAndStrandGiveTheirPhiPsiBack) {
    ASSERT_EQ(read(peptideText({1, 2, 3, 4, 5, 6})), 0);
    ASSERT_EQ(updatePhiPsi(&pdb, 1, 6), 0);
    ASSERT_EQ(pdb.resCount, 6);
    for (int i = 0; i < 6; i++) {
        EXPECT_NEAR(pdb.residues[i].phi, i == 0 ? 9999.0 : kPhi[i], 0.01) << i;
        EXPECT_NEAR(pdb.residues[i].psi, i == 5 ? 9999.0 : kPsi[i], 0.01) << i;
    }
    // Only residues first - 1 to last + 1 are updated.
    pdb.residues[1].psi = pdb.residues[2].psi = pdb.residues[5].phi = 5;
    updatePhiPsi(&pdb, 4, 4);
    EXPECT_EQ(pdb.residues[1].psi, 5.0f);
    EXPECT_NEAR(pdb.residues[2].psi, -47.0, 0.01);
    EXPECT_EQ(pdb.residues[5].phi, 5.0f);
}

TEST_F(Backbone, NumberingGapBreaksTheNeighbours) {
    // No residue 4, although the atoms of 3 and 5 are bonded.
    ASSERT_EQ(read(peptideText({1, 2, 3, 5, 6, 7})), 0);
    updatePhiPsi(&pdb, 1, 7);
    EXPECT_NEAR(pdb.residues[2].phi, -57.0, 0.01);
    EXPECT_EQ(pdb.residues[2].psi, 9999.0f);
    EXPECT_EQ(pdb.residues[3].phi, 9999.0f);
    EXPECT_NEAR(pdb.residues[3].psi, 130.0, 0.01);
}

class SideChain : public PDBTest {
  protected:
    int chi(int resID, const int* wanted, int* count, const char* chain = "A") {
        return getPDBChi(&pdb, resID, chain, "", values, rows, wanted, count);
    }
    double expected(int resID, const char* a, const char* b, const char* c, const char* d) {
        return torsion(findAtom(&pdb, resID, a, "A", ""), findAtom(&pdb, resID, b, "A", ""),
                       findAtom(&pdb, resID, c, "A", ""), findAtom(&pdb, resID, d, "A", ""));
    }
    float values[kMaxChiValues];
    const ChiDef* rows[kMaxChiValues] = {};
};

TEST_F(SideChain, CompleteResiduesGiveTheirMasks) {
    ASSERT_EQ(readShared(), 0);
    int count = -1;
    EXPECT_EQ(chi(1, nullptr, &count), 0);  // glycine
    EXPECT_EQ(count, 0);
    EXPECT_EQ(values[0], 9999.0f);

    count = -1;
    EXPECT_EQ(chi(2, nullptr, &count), 15);  // leucine
    ASSERT_EQ(count, 4);
    EXPECT_EQ(rows[3]->chi, 4);
    EXPECT_NEAR(values[0], expected(2, "N", "CA", "CB", "CG"), 1e-3);
    EXPECT_NEAR(values[1], expected(2, "CA", "CB", "CG", "CD1"), 1e-3);
    EXPECT_NEAR(values[2], expected(2, "CB", "CG", "CD1", "HD11"), 1e-3);
    EXPECT_NEAR(values[3], expected(2, "CB", "CG", "CD2", "HD21"), 1e-3);
    EXPECT_EQ(values[4], 9999.0f);

    count = -1;
    EXPECT_EQ(chi(6, nullptr, &count), 7);  // isoleucine, through "CD|CD1" and "HD1|HD11"
    ASSERT_EQ(count, 3);
    EXPECT_NEAR(values[0], expected(6, "N", "CA", "CB", "CG1"), 1e-3);
    EXPECT_NEAR(values[1], expected(6, "CA", "CB", "CG1", "CD1"), 1e-3);
    EXPECT_NEAR(values[2], expected(6, "CB", "CG1", "CD1", "HD11"), 1e-3);

    const int wanted[] = {3, 1, 9};
    count = 3;
    EXPECT_EQ(chi(2, wanted, &count), 5);
    ASSERT_EQ(count, 2);
    EXPECT_EQ(rows[0]->chi, 3);
    EXPECT_NEAR(values[1], expected(2, "N", "CA", "CB", "CG"), 1e-3);
}

TEST_F(SideChain, FirstAlternativeNamesAndMissingAtoms) {
    ASSERT_EQ(
        readShared({{" CD1 ILE", " CD  ILE"}, {"HD11 ILE", " HD1 ILE"}, {"HD21 LEU", "XD21 LEU"}}),
        0);
    int count = -1;
    EXPECT_EQ(chi(6, nullptr, &count), 7);
    EXPECT_NEAR(values[2], expected(6, "CB", "CG1", "CD", "HD1"), 1e-3);
    count = -1;
    EXPECT_EQ(chi(2, nullptr, &count), 7);
    EXPECT_EQ(count, 4);
    EXPECT_EQ(values[3], 9999.0f);
    count = -1;
    EXPECT_EQ(chi(2, nullptr, &count, "B"), 0);
    EXPECT_EQ(count, 0);

    PDBAtom* n = findAtom(&pdb, 2, "N", "A", "");
    PDBAtom* ca = findAtom(&pdb, 2, "CA", "A", "");
    PDBAtom* c = findAtom(&pdb, 2, "C", "A", "");
    EXPECT_NEAR(pdbDist(n, ca), 1.4601,
                1e-4);  // (16.305, -5.344, 5.740) to (14.965, -5.512, 5.185)
    EXPECT_NEAR(pdbAngle(n, ca, c), bend(at(n), at(ca), at(c)), 1e-3);
    EXPECT_EQ(pdbDist(n, nullptr), 0.0f);
    EXPECT_EQ(pdbAngle(nullptr, ca, c), 9999.0f);
}

}  // namespace
