#include "dc/read_dc.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "coupling_test_util.h"

namespace {

using namespace dctest;

class ReadDC : public CouplingTest {};

const float kFixedHN = formulaDI(kGammaH, kGammaN, 1.041f);

// No INDEX, ABS, DI, DD, W, S or FC column: every row takes the defaults.
TEST_F(ReadDC, AbsentColumnsTakeDefaultsAndNamesGiveFixedDI) {
    ASSERT_EQ(readText("DATA DA_REF 12.5\nDATA PHI_REF -30\n"
                       "VARS RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J D\n"
                       "FORMAT %d %s %s %d %s %s %f\n"
                       "5 ALA HN 5 ALA N 3.0\n"
                       "5 ALA CA 5 ALA CB 2.0\n"
                       "6 ALA HB# 6 ALA CB 950\n"
                       "9 ALA HA 9 ALA HB# 4.0\n"
                       "7 ALA HB# 7 ALA HB# -6.0\n"),
              0);
    ASSERT_EQ(table.count, 5);
    const DCValue* v = table.couplings;
    EXPECT_EQ(v[4].index, 5);
    EXPECT_EQ(v[4].use, 1);
    EXPECT_FLOAT_EQ(v[4].w * v[4].dd * v[4].s * v[4].fc, 1.0f);
    EXPECT_FLOAT_EQ(v[4].dCalc, 9999.0f);
    EXPECT_EQ(v[0].bondType, 1);
    EXPECT_EQ(v[0].diFixed, 1);
    EXPECT_FLOAT_EQ(v[0].di, kFixedHN);
    // CA-CB has no fixed geometry: DI stays 0 until a structure is mapped.
    EXPECT_EQ(v[1].bondType, 9);
    EXPECT_EQ(v[1].diFixed, 0);
    EXPECT_FLOAT_EQ(v[1].di, 0.0f);
    EXPECT_EQ(v[2].bondType, 11);
    EXPECT_FLOAT_EQ(v[2].di, formulaDI(kGammaH, kGammaC, 1.117f));
    EXPECT_EQ(v[3].bondType, 8);
    EXPECT_EQ(v[4].bondType, 0);

    EXPECT_EQ(table.minResid, 5);
    EXPECT_EQ(table.maxResid, 9);
    // Plain pairs add 1, one expression 9, two 81, and 45 at the end.
    EXPECT_EQ(table.nvec, 1 + 1 + 9 + 9 + 81 + 45);
    EXPECT_EQ(table.realSize, 9 * table.nvec + 9);
    EXPECT_EQ(table.intSize, table.nvec + 1);
    // The row with D above 900 does not count toward the observed RMS.
    EXPECT_FLOAT_EQ(table.tensor.obsRms, std::sqrt((9.0f + 4.0f + 16.0f + 36.0f) / 4.0f));
    EXPECT_FLOAT_EQ(table.tensor.daRef, 12.5f);
    EXPECT_FLOAT_EQ(table.tensor.rzRef, -30.0f);
    EXPECT_FLOAT_EQ(table.tensor.drRef, 0.0f);
}

TEST_F(ReadDC, KeepDIKeepsOnlyNonzeroTableValues) {
    const std::string text =
        "VARS INDEX RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J D DI ABS W DD S FC\n"
        "FORMAT %d %d %s %s %d %s %s %f %f %f %f %f %f %f\n"
        "11 5 ALA N 5 ALA HN 3.0 -20000 1.7 2.0 0.5 0.8 0.9\n"
        "12 6 ALA N 6 ALA HN 950 0 0 1 1 1 1\n"
        "13 6 ALA CA 6 ALA CB 2.0 1234 0 1 1 1 1\n"
        "14 6 ALA C 6 ALA O 1.0 0 0 1 1 1 1\n";
    struct Expect {
        float di;
        int fixed;
    };
    const Expect keep[] = {{-20000.0f, 1}, {kFixedHN, 1}, {1234.0f, 1}, {0.0f, 0}};
    const Expect plain[] = {{kFixedHN, 1}, {kFixedHN, 1}, {1234.0f, 0}, {0.0f, 0}};
    for (int keepDI : {1, 0}) {
        SCOPED_TRACE(keepDI);
        testing::internal::CaptureStderr();
        ASSERT_EQ(readText(text, keepDI), 0);
        // Oxygen has no magnetic nucleus in the ratio table.
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  "Dipolar Interaction - Unknown atom O.\n");
        ASSERT_EQ(table.count, 4);
        for (int i = 0; i < 4; i++) {
            const DCValue& v = table.couplings[i];
            const Expect& e = keepDI ? keep[i] : plain[i];
            EXPECT_EQ(v.index, 11 + i);
            EXPECT_FLOAT_EQ(v.diTable, e.di);
            EXPECT_FLOAT_EQ(v.di, e.di);
            EXPECT_EQ(v.diFixed, e.fixed);
        }
        const DCValue& first = table.couplings[0];
        EXPECT_EQ(first.absFlag, 1);
        EXPECT_EQ(std::vector<float>({first.w, first.dd, first.s, first.fc}),
                  std::vector<float>({2.0f, 0.5f, 0.8f, 0.9f}));
        // (D W)^2 over the rows with an observation: 36, 4 and 1.
        EXPECT_FLOAT_EQ(table.tensor.obsRms, std::sqrt(41.0f / 3.0f));
        dTabFree(&table);
    }
}

TEST_F(ReadDC, NoObservationGivesZeroRms) {
    ASSERT_EQ(
        readText("VARS RESID_I ATOMNAME_I RESID_J ATOMNAME_J\nFORMAT %d %s %d %s\n3 N 3 HN\n"), 0);
    EXPECT_FLOAT_EQ(table.couplings[0].dObs, 99999.0f);  // no D column
    EXPECT_FLOAT_EQ(table.tensor.obsRms, 0.0f);
}

TEST_F(ReadDC, NoneReadsNothingAndFailuresReturnNonzero) {
    for (const char* name : {"", "None", "NONE"}) EXPECT_EQ(readDC(name, &table, 0), 0);
    EXPECT_EQ(table.count, 0);
    EXPECT_EQ(table.couplings, nullptr);
    EXPECT_EQ(readDC(kRealTable.c_str(), nullptr, 0), 1);

    testing::internal::CaptureStderr();
    EXPECT_NE(readDC("no_such_table.tab", &table, 0), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "RdTable File open error: no_such_table.tab.\n");
    EXPECT_EQ(table.count, 0);
}

TEST_F(ReadDC, RealTableHasTwoBondKindsWithFixedValues) {
    ASSERT_EQ(readDC(kRealTable.c_str(), &table, 0), 0);
    ASSERT_EQ(table.count, 42);
    int nh = 0, caha = 0, groups = 0;
    for (int i = 0; i < table.count; i++) {
        const DCValue& v = table.couplings[i];
        EXPECT_EQ(v.diFixed, 1);
        if (v.bondType == 1) {
            nh++;
            EXPECT_FLOAT_EQ(v.di, formulaDI(kGammaN, kGammaH, 1.041f));
        } else if (v.bondType == 7) {
            caha++;
            EXPECT_FLOAT_EQ(v.di, formulaDI(kGammaC, kGammaH, 1.107f));
            groups += std::string(v.atomNameJ) == "HA#";
        }
    }
    EXPECT_EQ(nh, 21);
    EXPECT_EQ(caha, 21);
    EXPECT_EQ(groups, 5);
    EXPECT_EQ(table.minResid, 2);
    EXPECT_EQ(table.maxResid, 23);
    EXPECT_EQ(table.nvec, 37 + 5 * 9 + 45);
    EXPECT_FLOAT_EQ(table.couplings[0].dd, 0.4f);
}

// Real size 9 x max(structures, request, 1) x NVEC + 9; never shrinks; new
// space is zeroed.
TEST_F(ReadDC, WorkspacesGrowWithTheStructureCount) {
    ASSERT_EQ(readDC(kRealTable.c_str(), &table, 0), 0);
    const int nvec = table.nvec;
    table.realWork[0] = 5.0f;
    ASSERT_EQ(dcWorkAlloc(&table, 3), 0);
    EXPECT_EQ(table.realSize, 27 * nvec + 9);
    EXPECT_EQ(table.intSize, nvec + 1);
    for (int i = 0; i < table.realSize; i++) ASSERT_EQ(table.realWork[i], 0.0f) << i;
    ASSERT_EQ(dcWorkAlloc(&table, 2), 0);
    EXPECT_EQ(table.realSize, 27 * nvec + 9);

    PDBData* a = load(0, kModelA);
    PDBData* list[4] = {a, a, a, a};
    ASSERT_EQ(dTabPDBAlloc(&table, list, 4), 0);
    ASSERT_EQ(dcWorkAlloc(&table, 1), 0);
    EXPECT_EQ(table.realSize, 36 * nvec + 9);
}

}  // namespace
