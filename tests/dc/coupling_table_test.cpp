// The coupling table: dipolar interaction values, reading tables and laying
// them on structures.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "dc/dipolar.h"
#include "dc/map_dc.h"
#include "dc/read_dc.h"
#include "dc_test_util.h"
#include "support/checks.h"

namespace {

using namespace dctest;

// Two atoms of one residue type: residue numbers and names.
struct Pair {
    int residI;
    const char *resName, *atomI;
    int residJ;
    const char* atomJ;
};

struct Result {
    float di = -1.0f;
    int fixed = -1, type = -1, status = -1;
    std::string err;
};

Result classify(const Pair& p, int useFixed, float r) {
    Result out;
    testing::internal::CaptureStderr();
    out.status = findVariableDI(p.residI, p.resName, p.atomI, p.residJ, p.resName, p.atomJ, &out.di,
                                &out.fixed, &out.type, useFixed, r);
    out.err = testing::internal::GetCapturedStderr();
    return out;
}

// Pairs with a fixed bond length use it when fixed geometry is asked for;
// every other pair, and every pair without fixed geometry, uses the distance.
TEST(DipolarValue, BondTypeAndDistanceOfEachPair) {
    struct Case {
        Pair pair;
        int type;
        float gammaI, gammaJ, bond;  // bond 0: no fixed geometry
    };
    const Case cases[] = {
        {{5, "ALA", "HN", 5, "N"}, 1, kGammaH, kGammaN, 1.041f},
        {{5, "ALA", "N", 5, "H"}, 1, kGammaN, kGammaH, 1.041f},
        {{5, "GLY", "HA2", 5, "CA"}, 7, kGammaH, kGammaC, 1.107f},
        {{5, "ALA", "CA", 5, "HA"}, 7, kGammaC, kGammaH, 1.107f},
        {{5, "ALA", "CA", 5, "C"}, 10, kGammaC, kGammaC, 1.525f},
        {{5, "ALA", "N", 5, "CA"}, 5, kGammaN, kGammaC, 1.458f},
        {{10, "ALA", "C", 11, "HN"}, 3, kGammaC, kGammaH, 2.055f},
        {{11, "ALA", "HN", 10, "C"}, 3, kGammaH, kGammaC, 2.055f},
        {{10, "ALA", "C", 11, "N"}, 6, kGammaC, kGammaN, 1.329f},
        {{11, "ALA", "N", 10, "C"}, 6, kGammaN, kGammaC, 1.329f},
        {{7, "VAL", "CG1", 7, "HG1#"}, 11, kGammaC, kGammaH, 1.117f},
        {{7, "ile", "HD1#", 7, "CD1"}, 11, kGammaH, kGammaC, 1.117f},
        {{7, "ILE", "CD", 7, "HD#"}, 11, kGammaC, kGammaH, 1.117f},
        {{7, "ALA", "HB#", 7, "CB"}, 11, kGammaH, kGammaC, 1.117f},
        {{5, "ALA", "HA", 5, "HB3"}, 8, kGammaH, kGammaH, 0},
        {{5, "ALA", "CB", 5, "CA"}, 9, kGammaC, kGammaC, 0},
        {{10, "ALA", "C", 12, "HN"}, 0, kGammaC, kGammaH, 0},
        {{10, "ALA", "HN", 11, "C"}, 0, kGammaH, kGammaC, 0},
        {{11, "ALA", "C", 10, "N"}, 0, kGammaC, kGammaN, 0},
        {{7, "ILE", "HD#", 7, "CD"}, 0, kGammaH, kGammaC, 0},
        {{7, "LEU", "CG1", 7, "HG1#"}, 0, kGammaC, kGammaH, 0},
        {{7, "THR", "CG2", 7, "HG1#"}, 0, kGammaC, kGammaH, 0},
        {{5, "ALA", "1HB", 5, "CA"}, 0, kGammaH, kGammaC, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.pair.resName) + " " + c.pair.atomI + "-" + c.pair.atomJ);
        Result fixed = classify(c.pair, 1, 2.2f);
        EXPECT_EQ(fixed.status, 0);
        EXPECT_EQ(fixed.err, "");
        EXPECT_EQ(fixed.type, c.type);
        EXPECT_EQ(fixed.fixed, c.bond > 0);
        EXPECT_FLOAT_EQ(fixed.di, formulaDI(c.gammaI, c.gammaJ, c.bond > 0 ? c.bond : 2.2f));

        Result measured = classify(c.pair, 0, 1.02f);
        EXPECT_EQ(measured.type, c.type);
        EXPECT_EQ(measured.fixed, 0);
        EXPECT_FLOAT_EQ(measured.di, formulaDI(c.gammaI, c.gammaJ, 1.02f));
    }
    // A zero or tiny distance is clamped to 0.01 Angstrom: factor 1e6.
    const float clamped = ((kGammaH * kK) * kGammaH) * 1.0e6f;
    EXPECT_FLOAT_EQ(classify(cases[14].pair, 1, 0.0f).di, clamped);
    EXPECT_FLOAT_EQ(classify(cases[14].pair, 1, 0.004f).di, clamped);
}

TEST(DipolarValue, UnknownNucleusIsReportedAndCountsAsOne) {
    Result one = classify({3, "ALA", "X1", 3, "N"}, 1, 2.0f);
    EXPECT_EQ(one.status, 1);
    EXPECT_EQ(one.err, "Dipolar Interaction - Unknown atom X1.\n");
    EXPECT_EQ(one.type, 0);
    EXPECT_FLOAT_EQ(one.di, formulaDI(1.0f, kGammaN, 2.0f));

    Result both = classify({3, "ALA", "QB", 3, "7X"}, 1, 2.0f);
    EXPECT_EQ(both.status, 1);
    EXPECT_EQ(both.err,
              "Dipolar Interaction - Unknown atom QB.\nDipolar Interaction - Unknown atom 7X.\n");
    EXPECT_FLOAT_EQ(both.di, formulaDI(1.0f, 1.0f, 2.0f));
}

const float kFixedHN = formulaDI(kGammaH, kGammaN, 1.041f);
const float kFixedCAHA = formulaDI(kGammaC, kGammaH, 1.107f);
const float kFixedMethyl = formulaDI(kGammaC, kGammaH, 1.117f);

class ReadDC : public CouplingTest {};

// No INDEX, ABS, DI, DD, W, S or FC column: every row takes the defaults.
TEST_F(ReadDC, AbsentColumnsTakeDefaultsAndExpressionsWidenNVEC) {
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
    EXPECT_EQ(v[0].diFixed, 1);
    EXPECT_FLOAT_EQ(v[0].di, kFixedHN);
    // CA-CB has no fixed geometry: DI stays 0 until a structure is mapped.
    EXPECT_EQ(v[1].diFixed, 0);
    EXPECT_FLOAT_EQ(v[1].di, 0.0f);

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

TEST_F(ReadDC, NoneReadsNothingAndNoDColumnMeansNoObservation) {
    for (const char* name : {"", "None", "NONE"}) EXPECT_EQ(readDC(name, &table, 0), 0);
    EXPECT_EQ(table.count, 0);
    EXPECT_EQ(table.couplings, nullptr);
    ASSERT_EQ(
        readText("VARS RESID_I ATOMNAME_I RESID_J ATOMNAME_J\nFORMAT %d %s %d %s\n3 N 3 HN\n"), 0);
    EXPECT_FLOAT_EQ(table.couplings[0].dObs, 99999.0f);  // no D column
    EXPECT_FLOAT_EQ(table.tensor.obsRms, 0.0f);
}

// A null text under a null marker no int can hold leaves the name empty; an
// integer field that holds such a marker stops the read with its row.
TEST_F(ReadDC, NullMarkersBeyondTheIntRangeAreNeverConverted) {
    const std::string head =
        "NULLVALUE 2147483647\nNULLSTRING *\nVARS INDEX RESID_I RESNAME_I "
        "ATOMNAME_I RESID_J ATOMNAME_J D\nFORMAT %s %d %s %s %d %s %f\n";
    ASSERT_EQ(readText(head + "a 3 * N 3 H 1.5\n"), 0);
    EXPECT_STREQ(table.couplings[0].resNameI, "");
    EXPECT_EQ(table.couplings[0].index, 0);
    std::string err;
    int status = 0;
    err = stderrOf([&] { status = readText(head + "* 3 ALA N 3 H 1.5\n"); });
    EXPECT_EQ(status, 1);
    EXPECT_EQ(err.substr(0, err.find(" in row")), "DC Error: bad number 2.14748e+09 for INDEX");
}

class MapDC : public CouplingTest {
  protected:
    // DI of a mapped coupling computed here from its atoms' coordinates: the
    // mean distance over all pairs of the two lists.
    static float measuredDI(const DCValue& v, float gammaI, float gammaJ) {
        double sum = 0.0;
        for (int i = 0; i < v.countI; i++) {
            for (int j = 0; j < v.countJ; j++) {
                const PDBAtom *a = v.atomsI[i], *b = v.atomsJ[j];
                double dx = a->x - b->x, dy = a->y - b->y, dz = a->z - b->z;
                sum += std::sqrt(dx * dx + dy * dy + dz * dz);
            }
        }
        return formulaDI(gammaI, gammaJ, static_cast<float>(sum / (v.countI * v.countJ)));
    }
    static void expectNear(float actual, float expected) {
        EXPECT_NEAR(actual, expected, 1e-5f * std::fabs(expected));
    }
};

TEST_F(MapDC, RealTableMapsOntoModelWithFixedOrMeasuredDI) {
    ASSERT_EQ(readDC(kRealTable.c_str(), &table, 0), 0);
    ASSERT_EQ(table.count, 42);
    EXPECT_EQ(table.minResid, 2);
    EXPECT_EQ(table.maxResid, 23);
    EXPECT_EQ(table.nvec, 37 + 5 * 9 + 45);  // five glycine HA# rows
    PDBData* a = load(0, kModelA);
    ASSERT_EQ(buildDC(a, &table, 0, 2, nullptr, 0, 1), 42);
    EXPECT_EQ(table.pdbCount, 1);
    int nh = 0, caha = 0, groups = 0;
    for (int i = 0; i < table.count; i++) {
        const DCValue& v = table.couplings[i];
        SCOPED_TRACE(v.index);
        ASSERT_EQ(v.mapped, 1);
        EXPECT_EQ(v.diFixed, 1);
        EXPECT_EQ(v.atomsI[0]->resID, v.residI);
        if (v.bondType == 1) {
            nh++;
            EXPECT_FLOAT_EQ(v.di, formulaDI(kGammaN, kGammaH, 1.041f));
            EXPECT_STREQ(v.atomsJ[0]->atomName, "H");
        } else {
            ASSERT_EQ(v.bondType, 7);
            caha++;
            EXPECT_FLOAT_EQ(v.di, kFixedCAHA);
            if (std::string(v.atomNameJ) == "HA#") {
                groups++;
                ASSERT_EQ(v.countJ, 2);
                EXPECT_STREQ(v.atomsJ[0]->atomName, "HA2");
                EXPECT_STREQ(v.atomsJ[1]->atomName, "HA3");
            }
        }
    }
    EXPECT_EQ(nh, 21);
    EXPECT_EQ(caha, 21);
    EXPECT_EQ(groups, 5);

    // Without fixed geometry every value comes from the structure's distances.
    ASSERT_EQ(buildDC(a, &table, 0, 2, nullptr, 0, 0), 42);
    for (int i = 0; i < table.count; i++) {
        const DCValue& v = table.couplings[i];
        SCOPED_TRACE(v.index);
        EXPECT_EQ(v.diFixed, 0);
        expectNear(v.di, measuredDI(v, v.bondType == 1 ? kGammaN : kGammaC, kGammaH));
    }
}

// Each build forgets the previous structure list and makes it anew, as the
// allocation log shows: one release and one allocation of the list.
TEST_F(MapDC, RepeatedBuildsReleaseAndRemakeTheStructureList) {
    ASSERT_EQ(readDC(kRealTable.c_str(), &table, 0), 0);
    PDBData* a = load(0, kModelA);
    ASSERT_EQ(buildDC(a, &table, 0, 2, nullptr, 0, 1), 42);
    setAlloc(1);
    std::string log = stderrOf([&] { EXPECT_EQ(buildDC(a, &table, 0, 2, nullptr, 0, 1), 42); });
    setAlloc(0);
    std::size_t release = log.find("_MEM DEALLOC Name: dc");
    std::size_t make = log.find("_MEM VOI_ALLOC Name: dc");
    EXPECT_NE(release, std::string::npos) << log;
    EXPECT_NE(make, std::string::npos) << log;
    EXPECT_LT(release, make) << log;
    EXPECT_NE(log.find(" Delete: 8 "), std::string::npos) << log;
    EXPECT_NE(log.find(" Add: 8 "), std::string::npos) << log;
}

// Residue numbers at the ends of the range: neighbours are recognised without
// overflow, and a residue shifted beyond +-999,999,999 maps nowhere.
TEST_F(MapDC, ResiduesAtTheEndsOfTheRangeNeverOverflow) {
    float di;
    int fixed, bond;
    findVariableDI(INT_MAX, "ALA", "C", INT_MIN, "ALA", "N", &di, &fixed, &bond, 1, 0.0f);
    EXPECT_EQ(bond, 0);
    findVariableDI(INT_MAX - 1, "ALA", "C", INT_MAX, "ALA", "N", &di, &fixed, &bond, 1, 0.0f);
    EXPECT_EQ(bond, 6);
    findVariableDI(INT_MIN + 1, "ALA", "N", INT_MIN, "ALA", "C", &di, &fixed, &bond, 1, 0.0f);
    EXPECT_EQ(bond, 6);

    ASSERT_EQ(readText("VARS RESID_I ATOMNAME_I RESID_J ATOMNAME_J D\nFORMAT %d %s %d %s %f\n"
                       "999999999 N 999999999 H 1.0\n-999999999 N -999999999 H 1.0\n5 N 5 H 1\n"),
              0);
    PDBData* a = load(0, kModelA);
    EXPECT_EQ(buildDC(a, &table, 1, 1, nullptr, 0, 1), 1);
    EXPECT_EQ(buildDC(a, &table, -2000000000, 1, nullptr, 0, 1), 0);
    EXPECT_EQ(mapDCInfo(a, &table, 1999999998, 1), 0);
    float weights[] = {4.0f};
    DCValue far = table.couplings[0];
    far.residI = far.residJ = INT_MAX;
    findDCW(&far, weights, 1, -1);
    EXPECT_EQ(far.w, 1.0f);
    findDCW(&far, weights, 1, INT_MAX);
    EXPECT_EQ(far.w, 2.0f);
    int oldResids[] = {999999999}, newResids[] = {-999999999};
    table.couplings[0].residJ = -999999999;
    EXPECT_EQ(permuteDC(&a, 1, &table, newResids, oldResids, 1, 1), 0);
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

std::string atomLine(int serial, const char* name, char chain, float z) {
    char line[128];
    std::snprintf(line, sizeof line, "ATOM  %5d  %-3s ALA %c   1    %8.3f%8.3f%8.3f  1.00  0.00\n",
                  serial, name, chain, chain == 'A' ? 0.0f : 5.0f, 0.0f, z);
    return line;
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
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "TESSERA Warning: No Atom Map for DC 1 (PDB ResID 40 40):\n"
              "   ResIDI:    3 ResNameI:  PHE AtomNameI:    N SegI:      ChainI:     \n"
              "   ResIDJ:    3 ResNameJ:  PHE AtomNameJ:    H SegJ:      ChainJ:     \n"
              "TESSERA Warning: No Atom Map for DC 2 (PDB ResID 40 41):\n"
              "   ResIDI:    3 ResNameI:  PHE AtomNameI:    C SegI:      ChainI:     \n"
              "   ResIDJ:    4 ResNameJ:  GLY AtomNameJ:    N SegJ:      ChainJ:     \n");
}

}  // namespace
