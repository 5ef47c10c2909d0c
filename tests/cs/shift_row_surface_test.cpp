// What readCS gives each row for its prediction: the shift surface chosen by
// atom kind, residue type and the following residue, and the random-coil
// shift with the corrections of its neighbours, both named from the
// header's sequence and, beyond it, from the table's rows.
#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <sstream>
#include <string>

#include "cs/random_coil.h"
#include "shift_test_util.h"

namespace {

using cstest::ShiftTableTest;

// Residues 3 to 11 are in the sequence; 12 and 13 only in the rows.
const char kTable[] =
    "DATA FIRST_RESID 3\n"
    "DATA SEQUENCE APAGGPAAG\n"
    "VARS RESID RESNAME ATOMNAME SHIFT RC_SHIFT\n"
    "FORMAT %d %s %s %f %f\n"
    "3 ALA CA 52 9999\n"
    "5 ALA CA 52 9999\n"
    "6 GLY HA2 3.5 9999\n"
    "6 GLY HA3 4.0 9999\n"
    "7 GLY HA2 3.9 9999\n"
    "9 ALA HA 4.2 9999\n"
    "9 ALA N 120 118\n"
    "9 ALA CB 19 9999\n"
    "9 ALA CG 20 9999\n"
    "10 ALA HN 8 9999\n"
    "11 GLY HA2 9999 9999\n"
    "11 GLY HA3 3.9 9999\n"
    "12 ALA CA 52 9999\n"
    "13 PRO N 120 9999\n";

const char kRandomCoil[] =
    "VARS RESNAME ATOMNAME TYPE OFFSET SHIFT\n"
    "FORMAT %s %s %s %d %f\n"
    "A CA RC 0 52.0\n"
    "A CA ADJ 0 0.5\n"
    "A CA ADJ -2 0.0625\n"
    "P CA ADJ -1 -0.125\n"
    "P CA ADJ 1 -2.0\n"
    "A CA ADJ 2 0.25\n"
    "G CA ADJ 1 1.0\n"
    "A N RC 0 123.0\n";

class ShiftRowSurface : public ShiftTableTest {
  protected:
    void SetUp() override {
        ShiftTableTest::SetUp();
        cstest::loadSurfaces({
            {"HA.prev", kSurfShiftKind, {}, {}, {}, 0, 0},
            {"CA.ALA", kSurfShiftKind, {}, {}, {}, 0, 0},
            {"CA.ALA.next", kSurfShiftKind, {}, {}, {}, 0, 0},
            {"ca.xpro", kSurfShiftKind, {}, {}, {}, 0, 0},
            {"HA2.GLY", kSurfShiftKind, {}, {}, {}, 0, 0},
            {"HA3.GLY", kSurfShiftKind, {}, {}, {}, 0, 0},
            {"N", kSurfShiftKind, {}, {}, {}, 0, 0},
            {"CB.ALA", kSurfConformationKind, {}, {}, {}, 0, 0},
            {"CG", kSurfShiftKind, {}, {}, {}, 0, 0},
        });
    }
    std::string surfaceOf(int i) { return row(i).surface ? row(i).surface->name : "(none)"; }
};

// In candidate order: .prev, .next and own surface of the residue type,
// then of the atom kind alone; "xPRO" before a proline except for glycine;
// a glycine alpha proton named by the larger (HA2) or smaller (HA3) of the
// pair's shifts; none for an atom that is not predicted or a surface of
// another kind.
TEST_F(ShiftRowSurface, SurfaceByAtomResidueAndNextResidue) {
    ASSERT_EQ(readText(kTable), 0);
    const char* expected[] = {"ca.xpro", "CA.ALA.next", "HA3.GLY", "HA2.GLY", "HA2.GLY",
                              "HA.prev", "N",           "(none)",  "(none)",  "(none)",
                              "HA2.GLY", "HA3.GLY",     "ca.xpro", "N"};
    ASSERT_EQ(table.count, 14);
    for (int i = 0; i < 14; i++) {
        EXPECT_EQ(surfaceOf(i), expected[i])
            << "row " << i << " " << row(i).resID << " " << row(i).atomName;
    }
}

// Sums of exact binary fractions: the random-coil shift of the centre with
// the corrections of the residues two before to two after that exist.
TEST_F(ShiftRowSurface, RandomCoilShiftsFromNeighbourNames) {
    std::string rc = scratchDir("shift_rc") + "/rc.tab";
    writeFile(rc, kRandomCoil);
    ASSERT_EQ(surfReadRC(rc.c_str()), 0);
    ASSERT_EQ(readText(kTable), 0);
    EXPECT_EQ(row(0).rc, 52.0f + 0.5f - 2.0f + 0.25f);             // -- - A P A
    EXPECT_EQ(row(1).rc, 52.0f + 0.5f + 0.0625f - 0.125f + 1.0f);  // A P A G G
    EXPECT_EQ(row(12).rc, 52.0f + 0.5f + 0.0625f - 2.0f);          // A G A P --
    EXPECT_EQ(row(6).rc, 118.0f);                                  // the table's own
    EXPECT_EQ(row(5).rc, 9999.0f);                                 // no HA entry
    EXPECT_EQ(row(13).rc, 9999.0f);                                // no proline entry
}

// The rc.tab entries read independently: "residue,atom,type,offset" to value.
std::map<std::string, double> randomCoilEntries(const std::string& path) {
    std::map<std::string, double> entries;
    std::istringstream lines(readFile(path));
    for (std::string line; std::getline(lines, line);) {
        char res[32], atom[32], type[32];
        int offset;
        double value;
        char rest;
        if (std::sscanf(line.c_str(), "%31s %31s %31s %d %lf %c", res, atom, type, &offset, &value,
                        &rest) != 5) {
            continue;
        }
        entries[std::string(res) + "," + atom + "," + type + "," + std::to_string(offset)] = value;
    }
    return entries;
}

// Ubiquitin's shift table with the surfaces DC is built with: every row
// gets a surface, residues before a proline (Glu 18, Ile 36, Pro 37) the
// xPRO ones, each glycine alpha proton the surface of its size, and every
// row the random-coil shift its sequence neighbours give, as summed here
// from the table file itself.
TEST_F(ShiftRowSurface, UbiquitinRowsWithTheBuiltSurfaces) {
    surfFree();
    ASSERT_EQ(surfRead(DC_SURFACE_DIR, "rc.tab", "None", 0), 0);
    ASSERT_EQ(readCS(DC_TEST_DATA "/ubq/ubq_cs.tab", &table), 0);
    ASSERT_EQ(table.count, 438);
    ASSERT_EQ(table.seq->length, 76);
    std::string sequence = table.seq->letters;
    auto entries = randomCoilEntries(std::string(DC_SURFACE_DIR) + "/rc.tab");
    auto entry = [&](int resid, const CSValue& v, const char* type, int offset, double* sum) {
        if (resid < 1 || resid > 76) return false;
        std::string key = sequence.substr(resid - 1, 1) + "," + v.atomName + "," + type + "," +
                          std::to_string(offset);
        auto found = entries.find(key);
        if (found == entries.end()) return false;
        *sum += found->second;
        return true;
    };
    for (int i = 0; i < table.count; i++) {
        const CSValue& v = row(i);
        SCOPED_TRACE(std::to_string(v.resID) + " " + v.atomName);
        ASSERT_NE(v.surface, nullptr);
        std::string name = v.surface->name;
        bool xpro = v.resID == 18 || v.resID == 36 || v.resID == 37;
        EXPECT_EQ(name.find(std::string(".xPRO")) != std::string::npos, xpro) << name;
        if (v.resID == 10 && std::string(v.atomName).rfind("HA", 0) == 0) {
            EXPECT_EQ(name.substr(0, 7), std::string(v.atomName) + ".GLY");
        }
        double sum = 0.0;
        ASSERT_TRUE(entry(v.resID, v, "RC", 0, &sum));
        entry(v.resID, v, "ADJ", 0, &sum);
        for (int offset : {-2, -1, 1, 2}) entry(v.resID + offset, v, "ADJ", offset, &sum);
        EXPECT_NEAR(v.rc, sum, 1e-4);
    }
}

}  // namespace
