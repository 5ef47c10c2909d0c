// Laying shift rows on a structure: residues, atoms and their mean
// position, the warnings of what is missing, renumbering, and the shifts
// stored on the atoms.
#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <string>

#include "cs/map_cs.h"
#include "cs/select_cs.h"
#include "shift_test_util.h"

namespace {

using cstest::ShiftTableTest;

struct Atom {
    const char* name;
    const char* resName;
    int resID;
    float x, y, z;
};

std::string pdbLines(std::initializer_list<Atom> atoms) {
    std::string text;
    int serial = 1;
    for (const Atom& a : atoms) {
        std::string name = a.name;
        if (name.size() < 4) name = " " + name;
        char line[128];
        std::snprintf(line, sizeof line, "ATOM  %5d %-4s %3s A%4d    %8.3f%8.3f%8.3f  1.00  0.00\n",
                      serial++, name.c_str(), a.resName, a.resID, a.x, a.y, a.z);
        text += line;
    }
    return text;
}

// Alanine 1 and glycine 2 of chain A; the amide proton is named H.
const std::string kStructure = pdbLines({
    {"N", "ALA", 1, 0, 0, 0},
    {"H", "ALA", 1, 0, 1, 0},
    {"CA", "ALA", 1, 1, 0, 0},
    {"HA", "ALA", 1, 1, -1, 0},
    {"CB", "ALA", 1, 1, 1, 0},
    {"HB1", "ALA", 1, 1, 1, 1},
    {"HB2", "ALA", 1, 2, 1, 1},
    {"HB3", "ALA", 1, 3, 1, 4},
    {"C", "ALA", 1, 2, 0, 0},
    {"O", "ALA", 1, 2, 0, 1},
    {"N", "GLY", 2, 3, 0, 0},
    {"H", "GLY", 2, 3, 1, 0},
    {"CA", "GLY", 2, 4, 0, 0},
    {"HA2", "GLY", 2, 0, 2, 0},
    {"HA3", "GLY", 2, 0, 4, 2},
    {"C", "GLY", 2, 5, 0, 0},
});

const char kTable[] =
    "VARS RESID RESNAME ATOMNAME SHIFT RC_SHIFT SIGMA\n"
    "FORMAT %d %s %s %f %f %f\n"
    "1 ALA CA 52.0 52.5 0.5\n"
    "1 ALA HB 1.4 9999 0.1\n"
    "2 GLY HA 3.9 4.0 0.1\n"
    "2 GLY HN 8.0 8.2 0.2\n"
    "3 ALA N 120 119 1\n"
    "1 ALA CG 30 31 1\n"
    "1 ALA C 9999 176 1\n";

std::string detail(int resid, const char* res, const char* atom) {
    char text[160];
    std::snprintf(text, sizeof text,
                  "   ResID: %4d ResName: %4s AtomName: %4s Seg: %4s Chain: %4s\n", resid, res,
                  atom, "", "");
    return text;
}

class ShiftMapping : public ShiftTableTest {
  protected:
    void SetUp() override {
        ShiftTableTest::SetUp();
        loadPDB(kStructure);
        ASSERT_EQ(readText(kTable), 0);
    }
};

TEST_F(ShiftMapping, ResiduesAndAtomsWithTheirWarnings) {
    std::string err = stderrOf([&] { EXPECT_EQ(mapCSResInfo(&pdb, &table, 0), 6); });
    EXPECT_EQ(err, "TESSERA Warning: No Res Map for CS (PDB ResID 3):\n" + detail(3, "ALA", "N"));
    EXPECT_EQ(table.mapped, 6);
    ASSERT_NE(row(2).residue, nullptr);
    EXPECT_EQ(row(2).residue->resID, 2);
    EXPECT_EQ(row(4).residue, nullptr);
    EXPECT_EQ(row(4).mapped, 0);

    // An atom missing from a predicted kind is reported; one of another kind
    // (CG) is not. A name without its own atom takes those sharing its first
    // two letters, and the row sits at their mean position.
    err = stderrOf([&] { EXPECT_EQ(mapCSAtomInfo(&pdb, &table, 0, 1), 4); });
    EXPECT_EQ(err, "TESSERA Warning: No Atom Map for CS (PDB ResID 2):\n" + detail(2, "GLY", "HN") +
                       "TESSERA Warning: No Atom Map for CS (PDB ResID 3):\n" +
                       detail(3, "ALA", "N"));
    EXPECT_EQ(row(0).atomCount, 1);
    EXPECT_STREQ(row(0).atoms[0]->atomName, "CA");
    EXPECT_EQ(row(1).atomCount, 3);
    EXPECT_FLOAT_EQ(row(1).x, 2.0f);
    EXPECT_FLOAT_EQ(row(1).y, 1.0f);
    EXPECT_FLOAT_EQ(row(1).z, 2.0f);
    EXPECT_EQ(row(2).atomCount, 2);
    EXPECT_FLOAT_EQ(row(2).y, 3.0f);
    EXPECT_EQ(row(1).mapped, 1);
    EXPECT_EQ(row(3).mapped + row(4).mapped + row(5).mapped, 0);

    // With the warnings switched off nothing is written.
    setPDBWarn(0);
    err = stderrOf([&] {
        mapCSResInfo(&pdb, &table, 0);
        mapCSAtomInfo(&pdb, &table, 0, 1);
    });
    EXPECT_EQ(err, "");
}

TEST_F(ShiftMapping, OffsetsChainsAndUnusedRows) {
    // Mode 0 maps the used rows only, silently, at resID + offset.
    selectCS(table.rows, table.count, 2, 2);
    std::string err = stderrOf([&] { EXPECT_EQ(mapCSAtomInfo(&pdb, &table, -1, 0), 1); });
    EXPECT_EQ(err, "");
    EXPECT_STREQ(row(2).atoms[0]->atomName, "HA");
    EXPECT_EQ(row(2).atoms[0]->resID, 1);
    EXPECT_EQ(row(0).atomCount, 0);
    EXPECT_EQ(row(0).use, 0);

    // A residue pushed beyond any residue number maps nowhere.
    selectCS(table.rows, table.count, 1, 3);
    err = stderrOf([&] {
        EXPECT_EQ(mapCSResInfo(&pdb, &table, INT_MAX), 0);
        EXPECT_EQ(mapCSAtomInfo(&pdb, &table, INT_MIN, 0), 0);
    });
    EXPECT_EQ(err, "");

    // Once the table names chains, each row is looked up in its own.
    ASSERT_EQ(readText("VARS RESID RESNAME ATOMNAME CHAINNAME SHIFT\nFORMAT %d %s %s %s %f\n"
                       "1 ALA CA A 52\n1 ALA CB B 19\n"),
              0);
    setPDBWarn(0);
    EXPECT_EQ(mapCSResInfo(&pdb, &table, 0), 1);
    EXPECT_EQ(row(1).residue, nullptr);
}

// Rows of listed residues move to the structure residue at the same list
// position; the others drop out.
TEST_F(ShiftMapping, RenumberedRows) {
    const int pdbResIDs[] = {2, 1};
    const int tableResIDs[] = {1, 2};
    std::string err =
        stderrOf([&] { EXPECT_EQ(permuteCSAtoms(&pdb, &table, pdbResIDs, tableResIDs, 2), 3); });
    EXPECT_EQ(err, "");
    EXPECT_EQ(row(0).residue->resID, 2);
    EXPECT_EQ(row(0).atoms[0]->resID, 2);
    EXPECT_EQ(row(1).atomCount, 0);  // glycine has no HB
    EXPECT_EQ(row(1).mapped, 0);
    EXPECT_STREQ(row(2).atoms[0]->atomName, "HA");
    EXPECT_EQ(row(4).use, 0);
    EXPECT_EQ(row(4).residue, nullptr);
    EXPECT_EQ(row(0).use + row(1).use + row(2).use + row(3).use + row(5).use, 5);
}

TEST_F(ShiftMapping, ObservedShiftsStoredOnAtoms) {
    std::string err = stderrOf([&] { EXPECT_EQ(mapCS2PDB(&pdb, &table, 1), 3); });
    EXPECT_EQ(err, "TESSERA Warning: No Random Coil Shift for CS/PDB Map:\n" +
                       detail(1, "ALA", "HB") + "TESSERA Warning: No PDB Map for CS:\n" +
                       detail(2, "GLY", "HN") + "TESSERA Warning: No PDB Map for CS:\n" +
                       detail(3, "ALA", "N"));
    const PDBAtom* ca = row(0).atoms[0];
    EXPECT_EQ(ca->property[0], 52.0f);
    EXPECT_EQ(ca->property[1], 0.5f);
    EXPECT_EQ(ca->property[2], 52.5f);
    for (int k = 0; k < 2; k++) EXPECT_EQ(row(2).atoms[k]->property[0], 3.9f);
    const PDBAtom* carbonyl = findAtom(&pdb, 1, "C", "*", "*");
    ASSERT_NE(carbonyl, nullptr);
    EXPECT_EQ(carbonyl->property[0], kPropertyNotSet);  // no observed shift

    // Mode 0 takes the used rows and reports only the missing random coil.
    selectCS(table.rows, table.count, 1, 1);
    err = stderrOf([&] { EXPECT_EQ(mapCS2PDB(&pdb, &table, 0), 2); });
    EXPECT_EQ(err,
              "TESSERA Warning: No Random Coil Shift for CS/PDB Map:\n" + detail(1, "ALA", "HB"));
}

}  // namespace
