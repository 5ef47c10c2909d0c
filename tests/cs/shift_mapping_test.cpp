// Laying shift rows on a structure: residues, atoms, warnings, offsets,
// renumbering and the shifts stored on the atoms.
#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <string>

#include "cs/map_cs.h"
#include "cs/select_cs.h"
#include "shift_test_util.h"

namespace {

// Alanine 1 and glycine 2 of chain A, the amide proton named H.
const char* const kStructure =
    "ATOM      1  N   ALA A   1       0.000   0.000   0.000  1.00  0.00\n"
    "ATOM      2  H   ALA A   1       0.000   1.000   0.000  1.00  0.00\n"
    "ATOM      3  CA  ALA A   1       1.000   0.000   0.000  1.00  0.00\n"
    "ATOM      4  HA  ALA A   1       1.000  -1.000   0.000  1.00  0.00\n"
    "ATOM      5  HB1 ALA A   1       1.000   1.000   1.000  1.00  0.00\n"
    "ATOM      6  HB2 ALA A   1       2.000   1.000   1.000  1.00  0.00\n"
    "ATOM      7  HB3 ALA A   1       3.000   1.000   4.000  1.00  0.00\n"
    "ATOM      8  C   ALA A   1       2.000   0.000   0.000  1.00  0.00\n"
    "ATOM      9  CA  GLY A   2       4.000   0.000   0.000  1.00  0.00\n"
    "ATOM     10  HA2 GLY A   2       0.000   2.000   0.000  1.00  0.00\n"
    "ATOM     11  HA3 GLY A   2       0.000   4.000   2.000  1.00  0.00\n"
    "ATOM     12  C   GLY A   2       5.000   0.000   0.000  1.00  0.00\n";

std::string detail(int resid, const char* res, const char* atom) {
    char text[160];
    std::snprintf(text, sizeof text,
                  "   ResID: %4d ResName: %4s AtomName: %4s Seg:      Chain:     \n", resid, res,
                  atom);
    return text;
}

class ShiftMapping : public cstest::ShiftTableTest {
  protected:
    void SetUp() override {
        ShiftTableTest::SetUp();
        std::string file = scratchDir("shift_structure") + "/in.pdb";
        writeFile(file, kStructure);
        ASSERT_EQ(readPDB(file.c_str(), &pdb, nullptr), 0);
        ASSERT_EQ(readText("VARS RESID RESNAME ATOMNAME SHIFT RC_SHIFT SIGMA\n"
                           "FORMAT %d %s %s %f %f %f\n"
                           "1 ALA CA 52.0 52.5 0.5\n1 ALA HB 1.4 9999 0.1\n2 GLY HA 3.9 4.0 0.1\n"
                           "2 GLY HN 8.0 8.2 0.2\n3 ALA N 120 119 1\n1 ALA CG 30 31 1\n"
                           "1 ALA C 9999 176 1\n"),
                  0);
    }
};

// A name without an atom of its own takes those sharing its first two
// letters (HB: HB1-3) and the row sits at their mean; a missing residue, or
// a missing atom of a predicted kind (not CG), is reported.
TEST_F(ShiftMapping, ResiduesAndAtomsWithTheirWarnings) {
    EXPECT_EQ(stderrOf([&] { EXPECT_EQ(mapCSResInfo(&pdb, &table, 0), 6); }),
              "TESSERA Warning: No Res Map for CS (PDB ResID 3):\n" + detail(3, "ALA", "N"));
    EXPECT_EQ(row(2).residue->resID, 2);
    EXPECT_EQ(row(4).mapped, 0);
    EXPECT_EQ(stderrOf([&] { EXPECT_EQ(mapCSAtomInfo(&pdb, &table, 0, 1), 4); }),
              "TESSERA Warning: No Atom Map for CS (PDB ResID 2):\n" + detail(2, "GLY", "HN") +
                  "TESSERA Warning: No Atom Map for CS (PDB ResID 3):\n" + detail(3, "ALA", "N"));
    EXPECT_EQ(row(1).atomCount, 3);
    EXPECT_EQ(row(1).x + 10 * row(1).y + 100 * row(1).z, 2.0f + 10.0f + 200.0f);
    EXPECT_EQ(row(2).atomCount, 2);
    EXPECT_EQ(row(1).mapped + row(3).mapped + row(4).mapped + row(5).mapped, 1);
    setPDBWarn(0);
    EXPECT_EQ(stderrOf([&] { mapCSAtomInfo(&pdb, &table, 0, 1); }), "");
}

TEST_F(ShiftMapping, OffsetsAndRenumbering) {
    // Mode 0 maps the used rows only, silently, at resID + offset.
    selectCS(table.rows, table.count, 2, 2);
    EXPECT_EQ(stderrOf([&] { EXPECT_EQ(mapCSAtomInfo(&pdb, &table, -1, 0), 1); }), "");
    EXPECT_EQ(row(2).atoms[0]->resID, 1);
    EXPECT_EQ(row(0).atomCount, 0);
    // A residue pushed beyond any residue number maps nowhere.
    selectCS(table.rows, table.count, 1, 3);
    EXPECT_EQ(mapCSResInfo(&pdb, &table, INT_MAX) + mapCSAtomInfo(&pdb, &table, INT_MIN, 0), 0);
    // Listed residues move to the structure residue at the same position;
    // residue 3 is not listed and drops out.
    const int pdbResIDs[] = {2, 1}, tableResIDs[] = {1, 2};
    EXPECT_EQ(permuteCSAtoms(&pdb, &table, pdbResIDs, tableResIDs, 2), 3);
    EXPECT_EQ(row(0).atoms[0]->resID, 2);
    EXPECT_EQ(row(2).atoms[0]->resID, 1);
    EXPECT_EQ(row(4).use, 0);
}

TEST_F(ShiftMapping, ObservedShiftsStoredOnAtoms) {
    EXPECT_EQ(stderrOf([&] { EXPECT_EQ(mapCS2PDB(&pdb, &table, 1), 3); }),
              "TESSERA Warning: No Random Coil Shift for CS/PDB Map:\n" + detail(1, "ALA", "HB") +
                  "TESSERA Warning: No PDB Map for CS:\n" + detail(2, "GLY", "HN") +
                  "TESSERA Warning: No PDB Map for CS:\n" + detail(3, "ALA", "N"));
    const float* ca = row(0).atoms[0]->property;
    EXPECT_EQ(ca[0] + 10 * ca[1] + 100 * ca[2], 52.0f + 5.0f + 5250.0f);
    EXPECT_EQ(row(2).atoms[1]->property[0], 3.9f);
    EXPECT_EQ(findAtom(&pdb, 1, "C", "*", "*")->property[0], kPropertyNotSet);  // no shift
    // Mode 0 takes the used rows and reports only the missing random coil.
    selectCS(table.rows, table.count, 1, 1);
    EXPECT_EQ(stderrOf([&] { EXPECT_EQ(mapCS2PDB(&pdb, &table, 0), 2); }),
              "TESSERA Warning: No Random Coil Shift for CS/PDB Map:\n" + detail(1, "ALA", "HB"));
}

}  // namespace
