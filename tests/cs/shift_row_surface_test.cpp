// What readCS gives each row for its prediction: the shift surface chosen by
// atom kind, residue type and the following residue, and the random-coil
// shift with the corrections of its sequence neighbours.
#include <gtest/gtest.h>

#include <string>

#include "cs/random_coil.h"
#include "cs/surface_list.h"
#include "shift_test_util.h"

namespace {

class ShiftRowSurface : public cstest::ShiftTableTest {};

// Candidates in order: the residue type's .prev, .next and own surface, then
// the atom kind's; "xPRO" before a proline (from the sequence, or beyond it
// from the rows) except for glycine; a glycine alpha proton takes the
// surface of its size within the pair (HA2 the larger) when both shifts are
// known; none for an atom not predicted or a surface of another kind. The
// random-coil shift adds the corrections of the neighbours that exist.
TEST_F(ShiftRowSurface, SurfaceAndRandomCoilShiftByNeighbours) {
    const char* names[] = {"HA.prev", "CA.ALA", "CA.ALA.next", "ca.xpro", "HA2.GLY",
                           "HA3.GLY", "N",      "CB.ALA",      "CG"};
    ASSERT_EQ(surfListAlloc(9), 0);
    for (const char* name : names) {
        Surface s;
        surfNull(&s);
        copyName(s.name, name);
        s.kind = std::string(name) == "CB.ALA" ? kSurfConformationKind : kSurfShiftKind;
        ASSERT_EQ(surfListAdd(&s), 0);
    }
    std::string rc = scratchDir("shift_rc") + "/rc.tab";
    writeFile(rc,
              "VARS RESNAME ATOMNAME TYPE OFFSET SHIFT\nFORMAT %s %s %s %d %f\n"
              "A CA RC 0 52.0\nA CA ADJ 0 0.5\nA CA ADJ -2 0.0625\nP CA ADJ -1 -0.125\n"
              "P CA ADJ 1 -2.0\nA CA ADJ 2 0.25\nG CA ADJ 1 1.0\n");
    ASSERT_EQ(surfReadRC(rc.c_str()), 0);
    ASSERT_EQ(readText("DATA FIRST_RESID 3\nDATA SEQUENCE APAGGPAAG\n"
                       "VARS RESID RESNAME ATOMNAME SHIFT RC_SHIFT\nFORMAT %d %s %s %f %f\n"
                       "3 ALA CA 52 9999\n5 ALA CA 52 9999\n6 GLY HA2 3.5 0\n6 GLY HA3 4 0\n"
                       "7 GLY HA2 3.9 0\n9 ALA HA 4.2 9999\n9 ALA N 120 118\n9 ALA CB 19 0\n"
                       "9 ALA CG 20 0\n10 ALA HN 8 0\n11 GLY HA2 9999 0\n11 GLY HA3 3.9 0\n"
                       "12 ALA CA 52 9999\n13 PRO N 120 0\n"),
              0);
    const char* expected[] = {"ca.xpro", "CA.ALA.next", "HA3.GLY", "HA2.GLY", "HA2.GLY",
                              "HA.prev", "N",           "-",       "-",       "-",
                              "HA2.GLY", "HA3.GLY",     "ca.xpro", "N"};
    ASSERT_EQ(table.count, 14);
    for (int i = 0; i < 14; i++) {
        EXPECT_EQ(row(i).surface ? row(i).surface->name : "-", std::string(expected[i])) << i;
    }
    EXPECT_EQ(row(0).rc, 52.0f + 0.5f - 2.0f + 0.25f);             // - - A P A
    EXPECT_EQ(row(1).rc, 52.0f + 0.5f + 0.0625f - 0.125f + 1.0f);  // A P A G G
    EXPECT_EQ(row(12).rc, 52.0f + 0.5f + 0.0625f - 2.0f);          // A G A P -
    EXPECT_EQ(row(6).rc, 118.0f);                                  // the table's own
    EXPECT_EQ(row(5).rc, 9999.0f);                                 // no entry
}

// Ubiquitin with the surfaces and random-coil table DC is built with: every
// row finds both, the residues before a proline (18, 36, 37) the xPRO
// surfaces.
TEST_F(ShiftRowSurface, UbiquitinRowsWithTheBuiltSurfaces) {
    ASSERT_EQ(surfRead(DC_SURFACE_DIR, "rc.tab", "None", 0), 0);
    ASSERT_EQ(readCS(DC_TEST_DATA "/ubq/ubq_cs.tab", &table), 0);
    ASSERT_EQ(table.count, 438);
    for (int i = 0; i < table.count; i++) {
        const CSValue& v = row(i);
        ASSERT_NE(v.surface, nullptr) << v.resID << " " << v.atomName;
        bool xpro = v.resID == 18 || v.resID == 36 || v.resID == 37;
        EXPECT_EQ(std::string(v.surface->name).find(".xPRO") != std::string::npos, xpro)
            << v.surface->name;
        EXPECT_LT(v.rc, 900.0f) << v.resID << " " << v.atomName;
    }
}

}  // namespace
