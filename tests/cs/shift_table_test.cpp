// The shift table: every column and its default, refused tables, glycine
// partners, residue names from the sequence, the surface and random-coil
// shift of each row, selection and statistics.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <tuple>

#include "cs/cs_sequence.h"
#include "cs/random_coil.h"
#include "cs/select_cs.h"
#include "cs/stat_cs.h"
#include "cs/surface_list.h"
#include "shift_test_util.h"
#include "util/keyword.h"

namespace {

using cstest::ShiftTableTest;
class ShiftTable : public ShiftTableTest {};

std::string describe(const CSValue& v) {
    char text[512];
    std::snprintf(text, sizeof text, "%d %d%d%d%d %d %s %s %s %s |%s|%s| %g %g %g %g %g %g %g %g",
                  v.index, v.use, v.mapped, v.listed, v.isPred, v.resID, v.resName, v.name1,
                  v.name3, v.atomName, v.chain, v.seg, v.obs, v.pred, v.rc, v.hm, v.sigma, v.W,
                  v.FC, v.gamma);
    return text;
}

TEST_F(ShiftTable, ColumnsAndTheirDefaults) {
    ASSERT_EQ(readText("VARS RESID RESNAME ATOMNAME SHIFT\nFORMAT %d %s %s %f\n"
                       "3 ALA CA 52.5\n4 XYZ N 120\n"),
              0);
    EXPECT_EQ(describe(row(0)), "1 1111 3 ALA A ALA CA ||| 52.5 9999 9999 9999 9999 1 1 1");
    EXPECT_EQ(describe(row(1)), "2 1111 4 XYZ ? None N ||| 120 9999 9999 9999 9999 1 1 1");
    EXPECT_EQ(table.resMin + table.resMax, 7);
    EXPECT_EQ(table.ignoreChain + table.ignoreSeg, 2);

    // CS_OBS wins over SHIFT; INDEX is rounded; "{}" and "none" are no name.
    ASSERT_EQ(
        readText("VARS INDEX RESID RESNAME ATOMNAME CHAINNAME SEGNAME SHIFT CS_OBS CS_PRED "
                 "SIGMA RC_SHIFT FC W GAMMA\nFORMAT %f %d %s %s %s %s %f %f %f %f %f %f %f %f\n"
                 "7.6 12 ALA CB B PRT 1.0 18.95 19.01 0.2 19.47 0.5 2 3\n"
                 "-2.4 13 ALA N {} none 1.0 120.5 -9 0.5 119 1 1 1\n"),
        0);
    EXPECT_EQ(describe(row(0)),
              "8 1111 12 ALA A ALA CB |B|PRT| 18.95 19.01 19.47 9999 0.2 2 0.5 3");
    EXPECT_EQ(describe(row(1)), "-2 1111 13 ALA A ALA N ||| 120.5 -9 119 9999 0.5 1 1 1");
    EXPECT_EQ(table.ignoreChain + table.ignoreSeg, 0);
}

TEST_F(ShiftTable, NoTableAndRefusedTables) {
    for (const char* none : {"", "None", "NONE"}) EXPECT_EQ(readCS(none, &table), 0);
    EXPECT_EQ(table.rows, nullptr);
    // A residue number or index in a real column beyond any residue number.
    const std::string head = "VARS RESID RESNAME ATOMNAME SHIFT INDEX\nFORMAT %f %s %s %f %f\n";
    ASSERT_EQ(readText(head + "1 ALA CA 50 1\n"), 0);
    EXPECT_EQ(stderrOf([&] { EXPECT_EQ(readText(head + "1 ALA CA 50 1\n2e9 ALA N 1 1\n"), 1); }),
              "DC Error: bad number 2e+09 for RESID in row 2 of " + path + ".\n");
    EXPECT_EQ(table.rows, nullptr);
    EXPECT_EQ(stderrOf([&] { EXPECT_EQ(readText(head + "1 ALA CA 50 -3e9\n"), 1); }),
              "DC Error: bad number -3e+09 for INDEX in row 1 of " + path + ".\n");
}

TEST(ShiftAtomKinds, PredictedKinds) {
    std::string got;
    for (const char* k : {"ALA HN", "ALA ha", "ALA CA", "ALA cb", "ALA C", "ALA N", "GLY HA2",
                          "G ha3", "ALA H", "ALA HA2", "gly HA2", "ALA CG"}) {
        std::string res(k, std::strchr(k, ' '));
        got += std::to_string(isPredCS(res.c_str(), std::strchr(k, ' ') + 1));
    }
    EXPECT_EQ(got, "111111110000");
}

// Each glycine alpha proton is linked to the first other one of the same
// residue number, chain and segment.
TEST_F(ShiftTable, GlycineAlphaProtonsArePartners) {
    ASSERT_EQ(
        readText("VARS RESID RESNAME ATOMNAME CHAINNAME SHIFT\nFORMAT %d %s %s %s %f\n"
                 "5 GLY HA2 A 4.1\n5 GLY HA3 A 3.9\n6 g ha3 A 3.5\n6 G HA2 A 3.7\n"
                 "6 G HA2 A 3.8\n7 ALA HA2 A 4\n7 ALA HA3 A 4\n8 GLY HA2 A 4\n8 GLY HA3 B 4\n"),
        0);
    const int partner[] = {1, 0, 3, 2, 2, -1, -1, -1, -1};
    for (int i = 0; i < 9; i++)
        EXPECT_EQ(row(i).partner, partner[i] < 0 ? nullptr : &row(partner[i])) << i;
}

// The sequence is every DATA SEQUENCE word in order; beyond it a residue is
// named by the one-letter code of its first row, else "None".
TEST_F(ShiftTable, ResidueNamesFromSequenceThenRows) {
    ASSERT_EQ(readText("DATA FIRST_RESID 5\nDATA SEQUENCE MQIFV KTLTG\ndata sequence  kt\n"
                       "VARS RESID RESNAME ATOMNAME SHIFT\nFORMAT %d %s %s %f\n"
                       "4 trp CA 50\n6 ALA CA 50\n17 GLY CA 45\n17 ALA CB 20\n18 XYZ CA 50\n"),
              0);
    CSResIndex index;
    ASSERT_EQ(makeCSResIndex(table.rows, table.count, &index), 0);
    auto name = [&](const CSSeqInfo* seq, int64_t resid) {
        char text[kNameSize];
        csResName(seq, &index, resid, text);
        return std::string(text);
    };
    const std::pair<int64_t, const char*> named[] = {
        {5, "M"},  {6, "Q"},  {16, "t"},    {4, "W"},
        {17, "G"}, {18, "?"}, {19, "None"}, {1000000000, "None"}};
    for (auto [resid, expected] : named) EXPECT_EQ(name(table.seq, resid), expected) << resid;
    EXPECT_EQ(name(nullptr, 6), "A");
    freeCSResIndex(&index);
}

// Candidates in order: the residue type's .prev, .next and own surface, then
// the atom kind's; "xPRO" before a proline (from the sequence, or beyond it
// from the rows) except for glycine; a glycine alpha proton takes the
// surface of its size within the pair (HA2 the larger) when both shifts are
// known; none for an atom not predicted or a surface of another kind. The
// random-coil shift adds the corrections of the neighbours that exist.
TEST_F(ShiftTable, SurfaceAndRandomCoilShiftByNeighbours) {
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
    for (int i = 0; i < 14; i++)
        EXPECT_EQ(row(i).surface ? row(i).surface->name : "-", std::string(expected[i])) << i;
    EXPECT_EQ(row(0).rc, 52.0f + 0.5f - 2.0f + 0.25f);             // - - A P A
    EXPECT_EQ(row(1).rc, 52.0f + 0.5f + 0.0625f - 0.125f + 1.0f);  // A P A G G
    EXPECT_EQ(row(12).rc, 52.0f + 0.5f + 0.0625f - 2.0f);          // A G A P -
    EXPECT_EQ(row(6).rc, 118.0f);                                  // the table's own
    EXPECT_EQ(row(5).rc, 9999.0f);                                 // no entry
}

TEST_F(ShiftTable, SelectionSkipsAndWeights) {
    ASSERT_EQ(readText("VARS RESID RESNAME ATOMNAME SHIFT\nFORMAT %d %s %s %f\n"
                       "1 ALA CA 50\n2 ALA N 120\n3 ALA CA 51\n4 ALA ca 52\n5 ALA HN 8\n"),
              0);
    EXPECT_EQ(selectCS(table.rows, table.count, 2, 4), 3);
    const int skip[] = {3, 5};
    EXPECT_EQ(skipCS(table.rows, table.count, nullptr, 2, 17), 17);
    EXPECT_EQ(skipCS(table.rows, table.count, skip, 2, 17), 2);
    for (int i = 0; i < 5; i++) EXPECT_EQ(row(i).use, i % 2) << i;

    const KeyValue weights[] = {{"CA", 2.5f}, {"hn", 0.5f}, {"None", 9.0f}, {"N", 7.0f}};
    setCSTabW(&table, weights, 4);
    const float expected[] = {2.5f, 1.0f, 2.5f, 2.5f, 0.5f};
    for (int i = 0; i < 5; i++) EXPECT_EQ(row(i).W, expected[i]) << i;
}

// Worked by hand: rows 0, 1 and 5 are summed; row 2 (no prediction) counts
// in the return value only; rows 3 (no observation) and 4 (unused) nowhere.
// Differences are clipped at c times the bound of the row's surface, else
// its sigma (0 and absent count as 1): row 0 to 0.25, row 1 to -0.1, row 5
// kept.
TEST(ShiftStatistics, SumsClippingAndCounts) {
    CSValue rows[6];
    resetCS(rows, 6);
    const float values[6][4] = {{10, 9, 0.5f, 2}, {5, 7, 0, 1}, {3, 9999, 1, 1},
                                {9999, 3, 1, 1},  {1, 2, 1, 1}, {1, 0, 9999, 1}};
    for (int i = 0; i < 6; i++) {
        auto [obs, pred, sigma, w] = values[i];
        std::tie(rows[i].obs, rows[i].pred, rows[i].sigma, rows[i].W) =
            std::tie(obs, pred, sigma, w);
        rows[i].use = i != 4;
    }
    Surface tight{}, loose{};
    tight.bound = 0.2f;
    loose.bound = 4.0f;
    rows[1].surface = &tight;
    rows[5].surface = &loose;
    float rms, chi2, wchi2;
    int n;
    EXPECT_EQ(getStatCS(rows, 6, &rms, &chi2, &wchi2, &n, 0.5f), 4);
    EXPECT_EQ(n, 3);
    EXPECT_FLOAT_EQ(rms, std::sqrt((0.0625f + 0.01f + 1.0f) / 3.0f));
    EXPECT_FLOAT_EQ(chi2, 0.25f + 0.01f + 1.0f);
    EXPECT_FLOAT_EQ(wchi2, 1.0f + 0.01f + 1.0f);
    EXPECT_EQ(getStatCS(rows, 0, &rms, &chi2, &wchi2, &n, 0.0f), 0);
    EXPECT_EQ(rms + static_cast<float>(n), 0.0f);
}

}  // namespace
