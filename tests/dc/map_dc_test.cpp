#include "dc/map_dc.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "coupling_test_util.h"

namespace {

using namespace dctest;

double distance(const PDBAtom* a, const PDBAtom* b) {
    double dx = a->x - b->x, dy = a->y - b->y, dz = a->z - b->z;
    return std::sqrt(dx * dx + dy * dy + dz * dz);
}

class MapDC : public CouplingTest {
  protected:
    // DI of a mapped coupling computed here from its atoms' coordinates: the
    // mean distance over all pairs of the two lists.
    static float measuredDI(const DCValue& v, float gammaI, float gammaJ) {
        double sum = 0.0;
        for (int i = 0; i < v.countI; i++) {
            for (int j = 0; j < v.countJ; j++) sum += distance(v.atomsI[i], v.atomsJ[j]);
        }
        return formulaDI(gammaI, gammaJ, static_cast<float>(sum / (v.countI * v.countJ)));
    }
    static void expectNear(float actual, float expected) {
        EXPECT_NEAR(actual, expected, 1e-5f * std::fabs(expected));
    }
};

std::string atomLine(int serial, const char* name, char chain, float z) {
    char line[128];
    std::snprintf(line, sizeof line, "ATOM  %5d  %-3s ALA %c   1    %8.3f%8.3f%8.3f  1.00  0.00\n",
                  serial, name, chain, chain == 'A' ? 0.0f : 5.0f, 0.0f, z);
    return line;
}

const float kFixedCAHA = formulaDI(kGammaC, kGammaH, 1.107f);
const float kFixedMethyl = formulaDI(kGammaC, kGammaH, 1.117f);

TEST_F(MapDC, RealTableMapsOntoModelWithFixedOrMeasuredDI) {
    ASSERT_EQ(readDC(kRealTable.c_str(), &table, 0), 0);
    PDBData* a = load(0, kModelA);
    // Couplings named by plain names take no heap block: only the
    // structure list is made (the glycine HA# rows are left out here).
    for (int i = 0; i < table.count; i++) {
        table.couplings[i].use = std::string(table.couplings[i].atomNameJ) != "HA#";
    }
    int64_t blocks = getAllocCount();
    ASSERT_EQ(buildDC(a, &table, 0, 2, nullptr, 0, 1), 37);
    EXPECT_EQ(getAllocCount() - blocks, 1);
    for (int i = 0; i < table.count; i++) table.couplings[i].use = 1;

    ASSERT_EQ(buildDC(a, &table, 0, 2, nullptr, 0, 1), 42);
    EXPECT_EQ(table.pdbCount, 1);
    int groups = 0;
    for (int i = 0; i < table.count; i++) {
        const DCValue& v = table.couplings[i];
        SCOPED_TRACE(v.index);
        ASSERT_EQ(v.mapped, 1);
        EXPECT_EQ(v.diFixed, 1);
        EXPECT_EQ(v.atomsI[0]->resID, v.residI);
        if (v.bondType == 1) {
            EXPECT_FLOAT_EQ(v.di, formulaDI(kGammaN, kGammaH, 1.041f));
            EXPECT_STREQ(v.atomsJ[0]->atomName, "H");
        } else {
            ASSERT_EQ(v.bondType, 7);
            EXPECT_FLOAT_EQ(v.di, kFixedCAHA);
            if (std::string(v.atomNameJ) == "HA#") {
                groups++;
                ASSERT_EQ(v.countJ, 2);
                EXPECT_STREQ(v.atomsJ[0]->atomName, "HA2");
                EXPECT_STREQ(v.atomsJ[1]->atomName, "HA3");
            }
        }
    }
    EXPECT_EQ(groups, 5);

    // Without fixed geometry every value comes from the structure's distances.
    ASSERT_EQ(buildDC(a, &table, 0, 2, nullptr, 0, 0), 42);
    for (int i = 0; i < table.count; i++) {
        const DCValue& v = table.couplings[i];
        SCOPED_TRACE(v.index);
        EXPECT_EQ(v.diFixed, 0);
        EXPECT_TRUE(v.bondType == 1 || v.bondType == 7);
        float gammaI = v.bondType == 1 ? kGammaN : kGammaC;
        expectNear(v.di, measuredDI(v, gammaI, kGammaH));
    }
}

TEST_F(MapDC, ModelsOfUnequalAtomCountMapNothing) {
    ASSERT_EQ(readDC(kRealTable.c_str(), &table, 0), 0);
    // The model without its last atom line (HG of SER 24).
    std::string shorter = readFile(kModelA);
    shorter.erase(shorter.rfind("ATOM"));
    PDBData* list[2] = {load(0, kModelA), load(1, shorter, true)};
    ASSERT_EQ(list[1]->atomCount + 1, list[0]->atomCount);
    testing::internal::CaptureStderr();
    EXPECT_EQ(buildDCN(list, 2, &table, 0, 2, nullptr, 0, 1), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "TESSERA Error: Atom Count Mismatch in PDB List.\n");
    EXPECT_EQ(table.pdbCount, 0);

    list[1] = load(2, DC_SHARED_DATA "/hafp_c.pdb");
    EXPECT_EQ(buildDCN(list, 2, &table, 0, 2, nullptr, 0, 1), 42);
    EXPECT_EQ(table.pdbCount, 2);
    EXPECT_EQ(table.pdbs[1], list[1]);
}

// A table DI under -keepDI and a methyl pair named by its pseudo-proton keep
// their values with fixed DI; without it both are measured, and the methyl
// pair, spelled HB1... in the structure, is no longer recognised as one.
TEST_F(MapDC, FixedSettingDecidesWhatIsRecomputed) {
    ASSERT_EQ(readText("VARS RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J D DI\n"
                       "FORMAT %d %s %s %d %s %s %f %f\n"
                       "5 ALA CB 5 ALA HB# 1.0 0\n"
                       "6 ILE HD1# 6 ILE CD1 1.0 0\n"
                       "5 ALA N 5 ALA H 1.0 -5000\n"
                       "5 ALA CA 5 ALA CB 1.0 0\n"
                       "5 ALA N 5 ALA HN 1.0 0\n",
                       1),
              0);
    PDBData* a = load(0, kModelA);
    ASSERT_EQ(buildDC(a, &table, 0, 1, nullptr, 0, 1), 4);
    const DCValue* v = table.couplings;
    EXPECT_EQ(v[0].countJ, 3);
    EXPECT_FLOAT_EQ(v[0].di, kFixedMethyl);
    EXPECT_EQ(v[0].bondType, 11);
    EXPECT_EQ(v[1].countI, 3);
    EXPECT_FLOAT_EQ(v[1].di, kFixedMethyl);
    EXPECT_FLOAT_EQ(v[2].di, -5000.0f);
    EXPECT_EQ(v[3].bondType, 9);
    EXPECT_EQ(v[3].diFixed, 0);
    expectNear(v[3].di, measuredDI(v[3], kGammaC, kGammaC));
    EXPECT_EQ(v[4].mapped, 0);  // the model names its amide proton H

    ASSERT_EQ(buildDC(a, &table, 0, 1, nullptr, 0, 0), 4);
    EXPECT_EQ(v[0].bondType, 0);
    expectNear(v[0].di, measuredDI(v[0], kGammaC, kGammaH));
    EXPECT_EQ(v[1].bondType, 0);
    expectNear(v[1].di, measuredDI(v[1], kGammaH, kGammaC));
    EXPECT_EQ(v[2].bondType, 1);
    expectNear(v[2].di, measuredDI(v[2], kGammaN, kGammaH));
    for (int i = 0; i < 4; i++) EXPECT_EQ(v[i].diFixed, 0);
}

TEST_F(MapDC, UnmappedCouplingIsReportedInThreeLines) {
    ASSERT_EQ(readText("VARS RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J D\n"
                       "FORMAT %d %s %s %d %s %s %f\n"
                       "5 ALA N 5 ALA H 1.0\n"
                       "5 ALA N 5 ALA HN 2.0\n"),
              0);
    PDBData* a = load(0, kModelA);
    table.couplings[0].use = 0;
    testing::internal::CaptureStderr();
    EXPECT_EQ(mapDCInfo(a, &table, 1, 1), 1);  // offset 1: ILE 6 has N and H
    EXPECT_EQ(table.couplings[0].countI, 1);
    EXPECT_EQ(table.couplings[0].use, 1);
    EXPECT_EQ(mapDCInfo(a, &table, 0, 1), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "TESSERA Warning: No Atom Map for DC 2 (PDB ResID 6 6):\n"
              "   ResIDI:    5 ResNameI:  ALA AtomNameI:    N SegI:      ChainI:     \n"
              "   ResIDJ:    5 ResNameJ:  ALA AtomNameJ:   HN SegJ:      ChainJ:     \n"
              "TESSERA Warning: No Atom Map for DC 2 (PDB ResID 5 5):\n"
              "   ResIDI:    5 ResNameI:  ALA AtomNameI:    N SegI:      ChainI:     \n"
              "   ResIDJ:    5 ResNameJ:  ALA AtomNameJ:   HN SegJ:      ChainJ:     \n");

    // Silent with warn 0 or 2, or with the library's warnings off; warn 0
    // looks up only couplings in use.
    table.couplings[0].use = 0;
    testing::internal::CaptureStderr();
    EXPECT_EQ(mapDCInfo(a, &table, 0, 0), 0);
    EXPECT_EQ(mapDCInfo(a, &table, 0, 2), 1);
    EXPECT_EQ(table.couplings[0].use, 0);
    setPDBWarn(0);
    EXPECT_EQ(mapDCInfo(a, &table, 0, 1), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

// Chain A residue 1 at N-H 1.0 A, chain B residue 1 at 1.1 A; the table is
// numbered from 11 and laid on the structure with offset -10.
TEST_F(MapDC, ChainNamesSwitchTheWholeTable) {
    PDBData* pdb = load(0,
                        atomLine(1, "N", 'A', 0.0f) + atomLine(2, "H", 'A', 1.0f) +
                            atomLine(3, "N", 'B', 0.0f) + atomLine(4, "H", 'B', 1.1f),
                        true);
    ASSERT_EQ(readText("VARS RESID_I ATOMNAME_I RESID_J ATOMNAME_J D\nFORMAT %d %s %d %s %f\n"
                       "11 N 11 H 1.0\n"),
              0);
    const float weights[] = {0.0f};
    ASSERT_EQ(buildDC(pdb, &table, -10, 11, weights, 1, 0), 1);
    const DCValue& plain = table.couplings[0];
    EXPECT_STREQ(plain.atomsI[0]->chain, "A");
    EXPECT_FLOAT_EQ(plain.di, formulaDI(kGammaN, kGammaH, 1.0f));
    EXPECT_FLOAT_EQ(plain.w, 0.0f);
    EXPECT_FLOAT_EQ(plain.dd, 1.0f);
    dTabFree(&table);

    ASSERT_EQ(readText("VARS RESID_I ATOMNAME_I CHAINNAME_I RESID_J ATOMNAME_J CHAINNAME_J D\n"
                       "FORMAT %d %s %s %d %s %s %f\n"
                       "11 N B 11 H B 1.0\n"
                       "11 N {} 11 H {} 1.0\n"),
              0);
    EXPECT_EQ(table.noChainNames, 0);
    ASSERT_EQ(buildDC(pdb, &table, -10, 11, nullptr, 0, 0), 1);
    const DCValue& named = table.couplings[0];
    EXPECT_STREQ(named.atomsJ[0]->chain, "B");
    expectNear(named.di, formulaDI(kGammaN, kGammaH, 1.1f));
    EXPECT_EQ(table.couplings[1].mapped, 0);  // an empty name matches no chain here
}

TEST(ResidueWeights, WScalesByRootAndDDByPlainWeight) {
    DCValue v;
    resetDC(&v, 1);
    v.residI = 5;
    v.residJ = 7;
    v.wTable = 2.0f;
    v.ddTable = 0.5f;
    // weight, W in use, DD in use; the last list is too short to reach k = 7 - 3.
    const float cases[][3] = {{4, 4, 0.125f}, {-4, 4, -0.125f}, {0, 0, 0.5f}, {0.25f, 1, 2}};
    for (const auto& c : cases) {
        const float weights[] = {9, 9, 9, 9, c[0]};
        findDCW(&v, weights, 5, 3);
        EXPECT_EQ(std::vector<float>({v.w, v.dd}), std::vector<float>({c[1], c[2]}));
        findDCW(&v, weights, 4, 3);
        EXPECT_EQ(std::vector<float>({v.w, v.dd}), std::vector<float>({2.0f, 0.5f}));
    }
}

TEST_F(MapDC, PermuteRenumbersOneOrBothResidues) {
    ASSERT_EQ(readText("VARS RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J D\n"
                       "FORMAT %d %s %s %d %s %s %f\n"
                       "3 PHE N 3 PHE H 1.0\n"
                       "3 PHE C 4 GLY N 1.0\n"
                       "9 PHE N 9 PHE H 1.0\n"
                       "3 PHE N 3 PHE H 999\n"),
              0);
    PDBData* a = load(0, kModelA);
    const DCValue* v = table.couplings;
    auto residues = [&](int i) {
        return v[i].mapped ? std::to_string(v[i].atomsI[0]->resID) + " " +
                                 std::to_string(v[i].atomsJ[0]->resID)
                           : std::string("-");
    };
    struct Case {
        std::vector<int> oldIds, newIds;
        int mapped;
        const char* rows[3];
    };
    const Case cases[] = {
        {{3, 4}, {7, 8}, 2, {"7 7", "7 8", "-"}},
        {{4}, {10}, 1, {"-", "9 10", "-"}},       // J renumbered, I keeps the gap
        {{3}, {20}, 2, {"20 20", "20 21", "-"}},  // I renumbered, J keeps the gap
    };
    for (const Case& c : cases) {
        int n = static_cast<int>(c.oldIds.size());
        EXPECT_EQ(permuteDC(&a, 1, &table, c.newIds.data(), c.oldIds.data(), n, 1), c.mapped);
        for (int i = 0; i < 3; i++) {
            EXPECT_EQ(residues(i), c.rows[i]) << "row " << i;
            EXPECT_EQ(v[i].use, residues(i) != "-");
        }
        EXPECT_EQ(v[3].use, 0);  // no observation
        EXPECT_EQ(v[1].bondType, 6);
        EXPECT_FLOAT_EQ(v[1].di, formulaDI(kGammaC, kGammaN, 1.329f));
        EXPECT_FLOAT_EQ(v[0].dCalc, 9999.0f);
    }
    // Renumbered onto residues the model lacks: reported, nothing mapped.
    const int oldIds[] = {3}, newIds[] = {40};
    testing::internal::CaptureStderr();
    EXPECT_EQ(permuteDC(&a, 1, &table, newIds, oldIds, 1, 1), 0);
    std::string err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(err.rfind("TESSERA Warning: No Atom Map for DC 1 (PDB ResID 40 40):\n", 0), 0u);
    EXPECT_NE(err.find("No Atom Map for DC 2 (PDB ResID 40 41):\n"), std::string::npos);
}

}  // namespace
