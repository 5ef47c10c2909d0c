// The shift table: reading every column and its default, glycine partners,
// the header's sequence, row selection and the fit statistics.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "cs/cs_sequence.h"
#include "cs/read_cs.h"
#include "cs/select_cs.h"
#include "cs/stat_cs.h"
#include "cs/surface.h"
#include "shift_test_util.h"
#include "util/keyword.h"
#include "util/table.h"

namespace {

using cstest::ShiftTableTest;

class ShiftTable : public ShiftTableTest {};

TEST_F(ShiftTable, ColumnsAbsentTakeTheirDefaults) {
    ASSERT_EQ(readText("VARS RESID RESNAME ATOMNAME SHIFT\n"
                       "FORMAT %4d %4s %4s %8.3f\n"
                       "   3 ALA   CA  52.500\n"
                       "   4 XYZ   N  120.000\n"),
              0);
    ASSERT_EQ(table.count, 2);
    const CSValue& a = row(0);
    EXPECT_EQ(a.index, 1);
    EXPECT_EQ(a.use + a.mapped + a.listed + a.isPred, 4);
    EXPECT_EQ(a.resID, 3);
    EXPECT_STREQ(a.resName, "ALA");
    EXPECT_STREQ(a.name1, "A");
    EXPECT_STREQ(a.name3, "ALA");
    EXPECT_STREQ(a.atomName, "CA");
    EXPECT_STREQ(a.chain, "");
    EXPECT_STREQ(a.seg, "");
    EXPECT_EQ(a.obs, 52.5f);
    for (float absent : {a.pred, a.rc, a.hm, a.sigma}) EXPECT_EQ(absent, 9999.0f);
    for (float one : {a.W, a.FC, a.gamma}) EXPECT_EQ(one, 1.0f);
    EXPECT_EQ(a.residue, nullptr);
    EXPECT_EQ(a.atomCount, 0);
    EXPECT_EQ(a.partner, nullptr);
    EXPECT_EQ(row(1).index, 2);
    EXPECT_STREQ(row(1).name1, "?");
    EXPECT_STREQ(row(1).name3, "None");

    EXPECT_EQ(table.resMin, 3);
    EXPECT_EQ(table.resMax, 4);
    EXPECT_EQ(table.ignoreChain, 1);
    EXPECT_EQ(table.ignoreSeg, 1);
    EXPECT_EQ(table.pcsCount, 0);
    ASSERT_EQ(table.workSize, 14);
    for (int k = 0; k < 14; k++) EXPECT_EQ(table.work[k], 0.0f);
    ASSERT_NE(table.seq, nullptr);
    EXPECT_EQ(table.seq->letters, nullptr);
    EXPECT_EQ(table.seq->firstResid, 1);
}

TEST_F(ShiftTable, EveryColumnIsReadAndCSObsWinsOverShift) {
    ASSERT_EQ(readText("VARS INDEX RESID RESNAME ATOMNAME CHAINNAME SEGNAME SHIFT CS_OBS CS_PRED "
                       "SIGMA RC_SHIFT FC W GAMMA\n"
                       "FORMAT %6.1f %4d %4s %4s %2s %4s %8.3f %8.3f %8.3f %6.2f %8.3f %5.2f "
                       "%5.2f %5.2f\n"
                       "7.6 12 ALA CB B PRT 1.0 18.950 19.010 0.20 19.470 0.50 2.00 3.00\n"
                       "-2.4 13 ALA N {} none 1.0 120.5 -9999 0.5 119 1 1 1\n"),
              0);
    const CSValue& a = row(0);
    EXPECT_EQ(a.index, 8);  // rounded
    EXPECT_EQ(row(1).index, -2);
    EXPECT_STREQ(a.chain, "B");
    EXPECT_STREQ(a.seg, "PRT");
    EXPECT_STREQ(row(1).chain, "");
    EXPECT_STREQ(row(1).seg, "");
    EXPECT_EQ(table.ignoreChain, 0);
    EXPECT_EQ(table.ignoreSeg, 0);
    EXPECT_EQ(a.obs, 18.95f);
    EXPECT_EQ(a.pred, 19.01f);
    EXPECT_EQ(a.sigma, 0.2f);
    EXPECT_EQ(a.rc, 19.47f);
    EXPECT_EQ(a.FC, 0.5f);
    EXPECT_EQ(a.W, 2.0f);
    EXPECT_EQ(a.gamma, 3.0f);
    EXPECT_EQ(row(1).obs, 120.5f);
}

TEST_F(ShiftTable, NoTableAndRefusedTables) {
    for (const char* none : {"", "None", "NONE"}) {
        EXPECT_EQ(readCS(none, &table), 0);
        EXPECT_EQ(table.count, 0);
        EXPECT_EQ(table.rows, nullptr);
    }
    std::string missing = scratchDir("shift_missing") + "/no.tab";
    std::string err = stderrOf([&] { EXPECT_EQ(readCS(missing.c_str(), &table), 1); });
    EXPECT_EQ(err, "RdTable File open error: " + missing + ".\n");

    // A residue number or index held in a real column beyond what a residue
    // number can be stops the read and leaves nothing behind.
    const char* header = "VARS RESID RESNAME ATOMNAME SHIFT INDEX\nFORMAT %f %s %s %f %f\n";
    ASSERT_EQ(readText(std::string(header) + "1 ALA CA 50 1\n1 ALA N 120 1\n"), 0);
    EXPECT_EQ(table.count, 2);
    err = stderrOf(
        [&] { EXPECT_EQ(readText(std::string(header) + "1 ALA CA 50 1\n2e9 ALA N 120 1\n"), 1); });
    EXPECT_EQ(err, "DC Error: bad number 2e+09 for RESID in row 2 of " + path + ".\n");
    EXPECT_EQ(table.count, 0);
    EXPECT_EQ(table.rows, nullptr);
    err = stderrOf([&] { EXPECT_EQ(readText(std::string(header) + "1 ALA CA 50 -3e9\n"), 1); });
    EXPECT_EQ(err, "DC Error: bad number -3e+09 for INDEX in row 1 of " + path + ".\n");
    EXPECT_EQ(table.rows, nullptr);
}

TEST(ShiftAtomKinds, PredictedKinds) {
    struct Case {
        const char *res, *atom;
        int predicted;
    };
    const Case cases[] = {
        {"ALA", "HN", 1},  {"ALA", "ha", 1},  {"ALA", "CA", 1},   {"ALA", "cb", 1},
        {"ALA", "C", 1},   {"ALA", "N", 1},   {"ALA", "H", 0},    {"ALA", "HA2", 0},
        {"ALA", "CG", 0},  {"GLY", "HA2", 1}, {"GLY", "ha3", 1},  {"G", "HA2", 1},
        {"gly", "HA2", 0}, {"GLY", "HB", 0},  {nullptr, "CA", 1}, {"GLY", nullptr, 0},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(isPredCS(c.res, c.atom), c.predicted)
            << (c.res ? c.res : "null") << " " << (c.atom ? c.atom : "null");
    }
}

// Each glycine alpha proton is linked to the other of the same residue
// (number, chain and segment), whichever comes first in the table.
TEST_F(ShiftTable, GlycineAlphaProtonsArePartners) {
    ASSERT_EQ(readText("VARS RESID RESNAME ATOMNAME CHAINNAME SHIFT\n"
                       "FORMAT %d %s %s %s %f\n"
                       "5 GLY HA2 A 4.10\n"
                       "5 GLY HA3 A 3.90\n"
                       "6 g   ha3 A 3.50\n"
                       "6 G   CA  A 45.0\n"
                       "6 G   HA2 A 3.70\n"
                       "6 G   HA2 A 3.80\n"
                       "7 ALA HA2 A 4.00\n"
                       "7 ALA HA3 A 4.00\n"
                       "8 GLY HA2 A 4.00\n"
                       "8 GLY HA3 B 4.00\n"),
              0);
    EXPECT_EQ(row(0).partner, &row(1));
    EXPECT_EQ(row(1).partner, &row(0));
    EXPECT_EQ(row(2).partner, &row(4));
    EXPECT_EQ(row(3).partner, nullptr);
    EXPECT_EQ(row(4).partner, &row(2));
    EXPECT_EQ(row(5).partner, &row(2));
    for (int i : {6, 7, 8, 9}) EXPECT_EQ(row(i).partner, nullptr) << i;
    EXPECT_EQ(row(0).isPred + row(1).isPred + row(4).isPred, 3);
    EXPECT_EQ(row(6).isPred, 0);
}

// The sequence is every DATA SEQUENCE word in order; a residue it does not
// cover takes the one-letter code of its first table row, and "None" when
// the table has no row of that residue.
TEST_F(ShiftTable, ResidueNamesFromSequenceThenRows) {
    ASSERT_EQ(readText("REMARK shifts\n"
                       "DATA FIRST_RESID 5\n"
                       "DATA SEQUENCE MQIFV KTLTG\n"
                       "data sequence  kt\n"
                       "VARS RESID RESNAME ATOMNAME SHIFT\n"
                       "FORMAT %d %s %s %f\n"
                       "4 trp CA 50\n"
                       "6 ALA CA 50\n"
                       "17 GLY CA 45\n"
                       "17 ALA CB 20\n"
                       "18 XYZ CA 50\n"),
              0);
    ASSERT_NE(table.seq, nullptr);
    EXPECT_EQ(table.seq->firstResid, 5);
    ASSERT_EQ(table.seq->length, 12);
    EXPECT_STREQ(table.seq->letters, "MQIFVKTLTGkt");

    CSResIndex index;
    ASSERT_EQ(makeCSResIndex(table.rows, table.count, &index), 0);
    auto name = [&](const CSSeqInfo* seq, int64_t resid) {
        char text[kNameSize];
        csResName(seq, &index, resid, text);
        return std::string(text);
    };
    EXPECT_EQ(name(table.seq, 5), "M");
    EXPECT_EQ(name(table.seq, 6), "Q");  // the sequence wins over the row
    EXPECT_EQ(name(table.seq, 16), "t");
    EXPECT_EQ(name(table.seq, 4), "W");
    EXPECT_EQ(name(table.seq, 17), "G");
    EXPECT_EQ(name(table.seq, 18), "?");
    EXPECT_EQ(name(table.seq, 19), "None");
    EXPECT_EQ(name(table.seq, 1000000000), "None");
    EXPECT_EQ(name(nullptr, 6), "A");
    EXPECT_EQ(name(nullptr, 5), "None");
    freeCSResIndex(&index);

    TabHeader* hdr = hdrInit();
    CSSeqInfo seq{};
    addHdrLine("DATA FIRST_RESID", hdr);
    addHdrLine("DATA SEQUENCE AC", hdr);
    ASSERT_EQ(readCSSeqInfo(hdr, &seq), 0);
    EXPECT_EQ(seq.firstResid, 1);  // no number: the sequence starts at 1
    EXPECT_STREQ(seq.letters, "AC");
    freeCSSeqInfo(&seq);
    freeHdr(hdr);
}

TEST_F(ShiftTable, SelectionSkipsAndWeights) {
    ASSERT_EQ(readText("VARS RESID RESNAME ATOMNAME SHIFT\nFORMAT %d %s %s %f\n"
                       "1 ALA CA 50\n2 ALA N 120\n3 ALA CA 51\n4 ALA ca 52\n5 ALA HN 8\n"),
              0);
    EXPECT_EQ(selectCS(table.rows, table.count, 2, 4), 3);
    EXPECT_EQ(row(0).use + row(4).use, 0);
    EXPECT_EQ(skipCS(table.rows, table.count, nullptr, 0, 17), 17);
    const int skip[] = {3, 5};
    EXPECT_EQ(skipCS(table.rows, table.count, skip, 0, 17), 17);
    EXPECT_EQ(skipCS(table.rows, table.count, skip, 2, 17), 2);
    EXPECT_EQ(row(1).use + row(3).use, 2);
    EXPECT_EQ(row(2).use, 0);

    const KeyValue weights[] = {{"CA", 2.5f}, {"hn", 0.5f}, {"None", 9.0f}, {"N", 7.0f}};
    setCSTabW(&table, weights, 4);
    const float expected[] = {2.5f, 1.0f, 2.5f, 2.5f, 0.5f};
    for (int i = 0; i < 5; i++) EXPECT_EQ(row(i).W, expected[i]) << i;
    setCSTabW(&table, weights + 3, 1);
    EXPECT_EQ(row(1).W, 7.0f);
}

// Statistics worked by hand: only used rows with both shifts are summed;
// a used row with an observed shift counts in the return value.
TEST(ShiftStatistics, SumsClippingAndCounts) {
    CSValue rows[6];
    resetCS(rows, 6);
    struct Values {
        float obs, pred, sigma, W;
        int use;
    };
    const Values values[6] = {
        {10.0f, 9.0f, 0.5f, 2.0f, 1},    // d 1, d/s 2, weighted 4
        {5.0f, 7.0f, 0.0f, 1.0f, 1},     // sigma 0 counts as 1: d -2
        {3.0f, 9999.0f, 1.0f, 1.0f, 1},  // no prediction: counted only
        {9999.0f, 3.0f, 1.0f, 1.0f, 1},  // no observation
        {1.0f, 2.0f, 1.0f, 1.0f, 0},     // not used
        {1.0f, 0.0f, 9999.0f, 1.0f, 1},  // no sigma: 1
    };
    for (int i = 0; i < 6; i++) {
        rows[i].obs = values[i].obs;
        rows[i].pred = values[i].pred;
        rows[i].sigma = values[i].sigma;
        rows[i].W = values[i].W;
        rows[i].use = values[i].use;
    }
    float rms = -1, chi2 = -1, wchi2 = -1;
    int n = -1;
    EXPECT_EQ(getStatCS(rows, 6, &rms, &chi2, &wchi2, &n, 0.0f), 4);
    EXPECT_EQ(n, 3);
    EXPECT_FLOAT_EQ(rms, std::sqrt(6.0f / 3.0f));
    EXPECT_FLOAT_EQ(chi2, 4.0f + 4.0f + 1.0f);
    EXPECT_FLOAT_EQ(wchi2, 16.0f + 4.0f + 1.0f);

    // Clipping at c times the bound of the row's surface, else its sigma.
    Surface tight{}, loose{};
    tight.bound = 0.2f;
    loose.bound = 4.0f;
    rows[1].surface = &tight;
    rows[5].surface = &loose;
    EXPECT_EQ(getStatCS(rows, 6, &rms, &chi2, &wchi2, &n, 0.5f), 4);
    // Row 0: d 1 -> 0.25 (0.5 x sigma 0.5); row 1: -2 -> -0.1; row 5: 1 kept.
    EXPECT_EQ(n, 3);
    EXPECT_FLOAT_EQ(rms, std::sqrt((0.0625f + 0.01f + 1.0f) / 3.0f));
    EXPECT_FLOAT_EQ(chi2, 0.25f + 0.01f + 1.0f);
    EXPECT_FLOAT_EQ(wchi2, 1.0f + 0.01f + 1.0f);

    EXPECT_EQ(getStatCS(rows, 0, &rms, &chi2, &wchi2, &n, 0.0f), 0);
    EXPECT_EQ(rms, 0.0f);
    EXPECT_EQ(n, 0);
}

}  // namespace
