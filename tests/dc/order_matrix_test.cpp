// The alignment tensor: the order-matrix fit on a real structure and the
// Euler angles of the tensor frame.
#include "dc/order_matrix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "dc/euler.h"
#include "dc/map_dc.h"
#include "dc_test_util.h"
#include "fit/fit_driver.h"
#include "pdb/pdb_types.h"

namespace {

using namespace dctest;
using reference::basisSum;
using reference::Coefficients;
using reference::coupling;
using reference::methylFactor;

// A methyl group against its carbon: three vectors.
const char kMethylRow[] = "    5    ALA     CB     5    ALA    HB#     0.000     1.600 1.00\n";
// The real table plus a methyl row on the real structure, observations made
// from a known tensor.
class OrderMatrix : public CouplingTest {
  protected:
    static constexpr float kDa = 5e-4f, kDr = 2e-4f;
    const Coefficients truth = reference::coefficients(kDa, kDr, reference::rotation(10, 20, 30));

    void SetUp() override {
        CouplingTest::SetUp();
        load(0, kModelA);
        load(1, kModelA);
        ASSERT_EQ(readText(readFile(kRealTable) + kMethylRow), 0);
        ASSERT_EQ(table.count, 43);
        ASSERT_EQ(buildDC(&pdbs[0], &table, 0, 0, nullptr, 0, 1), table.count);
        for (int i = 0; i < table.count; i++) {
            DCValue& v = table.couplings[i];
            ASSERT_NE(v.di, 0.0f);
            v.dObs = static_cast<float>(coupling(v, truth.data()));
        }
    }
    DCValue& row(int resid, const char* atomJ) {
        for (int i = 0; i < table.count; i++) {
            DCValue& v = table.couplings[i];
            if (v.residI == resid && std::strcmp(v.atomNameJ, atomJ) == 0) return v;
        }
        ADD_FAILURE() << "no row " << resid << " " << atomJ;
        return table.couplings[0];
    }
    int fit() { return fitD(&pdbs[0], &table, 0, 0); }
    std::vector<float> calculated() const {
        std::vector<float> d;
        for (int i = 0; i < table.count; i++) d.push_back(table.couplings[i].dCalc);
        return d;
    }
};

TEST_F(OrderMatrix, RecoversAKnownTensorOnARealStructure) {
    ASSERT_EQ(fit(), table.count);
    EXPECT_EQ(table.svdCount, table.count);
    const DTensor& t = table.tensor;
    for (int k = 0; k < 5; k++) EXPECT_NEAR(t.saupe[k], truth[k], 1e-4 * kDa) << k;
    EXPECT_NEAR(t.da, kDa, 1e-4 * kDa);
    EXPECT_NEAR(t.dr, kDr, 1e-4 * kDa);
    ASSERT_GE(t.solutionCount, 1);
    EXPECT_NEAR(t.rxSolutions[0], 10, 0.05);
    EXPECT_NEAR(t.rySolutions[0], 20, 0.05);
    EXPECT_NEAR(t.rzSolutions[0], 30, 0.05);
    // Every row, glycine HA# pairs and the methyl group included, comes back.
    for (int i = 0; i < table.count; i++) {
        const DCValue& v = table.couplings[i];
        EXPECT_NEAR(v.dCalc, v.dObs, 2e-3 + 1e-4 * std::fabs(v.dObs)) << v.residI << v.atomNameJ;
    }

    // Two identical structures give the same fit.
    Coefficients single;
    std::memcpy(single.data(), t.saupe, sizeof single);
    std::vector<float> singleD = calculated();
    PDBData* list[2] = {&pdbs[0], &pdbs[1]};
    ASSERT_EQ(buildDCN(list, 2, &table, 0, 0, nullptr, 0, 1), table.count);
    ASSERT_EQ(fitDN(list, 2, &table, 0, 0), table.count);
    EXPECT_EQ(table.pdbCount, 2);
    for (int k = 0; k < 5; k++) EXPECT_NEAR(t.saupe[k], single[k], 1e-6 * kDa);
    std::vector<float> pairD = calculated();
    for (int i = 0; i < table.count; i++) EXPECT_NEAR(pairD[i], singleD[i], 1e-4) << i;
}

// Each design row is |DI|/DD times the basis sum (methyl groups also times
// 0.927321); DD = 0 or DI = 0 leave the row unscaled, W = 0 leaves it out.
TEST_F(OrderMatrix, DesignRowsScalingAndExcludedRows) {
    row(6, "H").dd = 0;
    row(7, "H").di = 0;
    DCValue& unused = row(9, "H");
    unused.wTable = 0;
    unused.dObs = 500;
    DCValue& shortRow = row(10, "H");  // H moved 0.005 A from its N
    shortRow.atomsJ[0]->x = shortRow.atomsI[0]->x + 0.003f;
    shortRow.atomsJ[0]->y = shortRow.atomsI[0]->y + 0.004f;
    shortRow.atomsJ[0]->z = shortRow.atomsI[0]->z;

    ASSERT_EQ(fit(), table.count - 1);
    ASSERT_EQ(getSaupeS(&table), table.count - 1);  // refills the design rows
    for (int i = 0; i < table.count; i++) {
        const DCValue& v = table.couplings[i];
        SCOPED_TRACE(testing::Message() << v.residI << " " << v.atomNameJ);
        if (&v == &unused) {
            EXPECT_EQ(v.dCalc, 9999.0f);
            EXPECT_EQ(v.result[5], 0.0f);
            continue;
        }
        bool scaled = v.dd != 0 && v.di != 0;
        double f = (scaled ? std::fabs(v.di) / v.dd : 1.0) * methylFactor(v);
        std::array<double, 5> b = basisSum(v);
        for (int n = 0; n < 5; n++) EXPECT_NEAR(v.result[n], f * b[n], 1e-5 * f);
        EXPECT_EQ(v.result[5], v.countI * v.countJ);
        EXPECT_NEAR(v.dCalc, coupling(v, table.tensor.saupe), 1e-4 + 1e-5 * std::fabs(v.dCalc));
    }
    EXPECT_EQ(row(5, "HB#").result[5], 3);
    EXPECT_EQ(row(4, "HA#").result[5], 2);
}

TEST_F(OrderMatrix, FewerThanFiveCouplingsAreFittedExactly) {
    std::vector<DCValue*> kept = {&row(5, "H"), &row(6, "H"), &row(9, "H")};
    for (int i = 0; i < table.count; i++) table.couplings[i].use = 0;
    for (DCValue* v : kept) v->use = 1;
    ASSERT_EQ(fit(), 3);

    for (DCValue* v : kept) EXPECT_NEAR(v->dCalc, v->dObs, 1e-3);

    // Nothing left to fit: the coefficients stay 0 and nothing is calculated.
    for (int i = 0; i < table.count; i++) table.couplings[i].use = 1;
    ASSERT_EQ(buildDC(&pdbs[0], &table, 0, 0, nullptr, 0, 1), table.count);
    for (int i = 0; i < table.count; i++) table.couplings[i].use = 0;
    EXPECT_EQ(fit(), 0);
    for (int k = 0; k < 5; k++) EXPECT_EQ(table.tensor.saupe[k], 0.0f);
    for (int i = 0; i < table.count; i++) EXPECT_EQ(table.couplings[i].dCalc, 9999.0f);
}

// A build that stops early (a structure without atoms, models of unequal
// atom count) leaves nothing for a fit to read: every coupling comes back
// uncalculated, with no write past the workspace (the stale atom counts of
// the previous build used to be fitted).
TEST_F(OrderMatrix, FailedBuildLeavesNothingToFit) {
    ASSERT_EQ(fit(), table.count);
    PDBData empty;
    pdbNull(&empty);
    std::string shorter = readFile(kModelA);
    shorter.erase(shorter.rfind("ATOM"));
    PDBData* mismatched[2] = {&pdbs[0], load(2, shorter, true)};
    for (int attempt = 0; attempt < 2; attempt++) {
        SCOPED_TRACE(attempt);
        if (attempt == 0) {
            EXPECT_EQ(buildDC(&empty, &table, 0, 0, nullptr, 0, 1), 0);
        } else {
            testing::internal::CaptureStderr();
            EXPECT_EQ(buildDCN(mismatched, 2, &table, 0, 0, nullptr, 0, 1), 0);
            testing::internal::GetCapturedStderr();
        }
        EXPECT_EQ(fitDN(mismatched, 1, &table, 0, 0), 0);
        EXPECT_EQ(table.svdCount, 0);
        for (int i = 0; i < table.count; i++) {
            const DCValue& v = table.couplings[i];
            EXPECT_EQ(v.dCalc, 9999.0f) << i;
            EXPECT_EQ(v.countI + v.countJ, 0) << i;
            EXPECT_FALSE(isUsedDC(v)) << i;
        }
        // The back-calculation steps on their own find nothing either.
        float c[5] = {1e-4f, 0, 0, 0, 0}, e[5] = {1, 1, 1, 1, 1};
        findD(&table, c, e, table.count);
        EXPECT_EQ(getSaupeD(&table), 0);
        EXPECT_EQ(findS(&table, c, e, 0), 0);
    }
    // A good build afterwards fits as before.
    ASSERT_EQ(buildDC(&pdbs[0], &table, 0, 0, nullptr, 0, 1), table.count);
    EXPECT_EQ(fit(), table.count);
}

using reference::Mat3;

struct Angles {
    float psi, theta, phi;
};

struct Extracted {
    int count;
    float psi[8], theta[8], phi[8];
    float principal[3], sorted[3], rotation[4][4], da, dr;
    Angles at(int i) const { return {psi[i], theta[i], phi[i]}; }
};

Extracted extract(const Coefficients& c) {
    Extracted e{};
    e.count = saupe2euler(c.data(), e.psi, e.theta, e.phi, e.principal, e.sorted, e.rotation, &e.da,
                          &e.dr);
    return e;
}

bool sameAngles(Angles a, Angles b, float tolerance = 0.05f) {
    return std::fabs(a.psi - b.psi) < tolerance && std::fabs(a.theta - b.theta) < tolerance &&
           std::fabs(a.phi - b.phi) < tolerance;
}

// Every solution of saupe2euler must give back the same order matrix; with
// distinct principal values that means the generating frame or its turn by
// 180 degrees about one of its axes (the eigenvector signs are free). The
// solutions come smallest angles first.
TEST(EulerAngles, RoundTripThroughTheOrderMatrix) {
    const float da = 1.0e-3f, dr = 3.0e-4f;
    const std::vector<Angles> inputs = {
        {10, 20, 30}, {-45, 30, 120}, {170, -60, -100}, {5, 80, 45}, {-120, -35, 60}};
    for (Angles in : inputs) {
        SCOPED_TRACE(testing::Message() << in.psi << " " << in.theta << " " << in.phi);
        Coefficients c;
        euler2saupe2(c.data(), in.psi, in.theta, in.phi, 0, 0, 0, da, dr);
        Coefficients expected =
            reference::coefficients(da, dr, reference::rotation(in.psi, in.theta, in.phi));
        for (int i = 0; i < 5; i++) EXPECT_NEAR(c[i], expected[i], 1e-8);

        Extracted e = extract(c);
        ASSERT_GE(e.count, 1);
        EXPECT_NEAR(e.da, da, 1e-8);
        EXPECT_NEAR(e.dr, dr, 1e-8);
        for (int s = 0; s < e.count; s++) {
            Angles a = e.at(s);
            EXPECT_TRUE(a.psi > -180 && a.psi <= 180 && a.theta > -180 && a.theta <= 180 &&
                        a.phi > -180 && a.phi <= 180);
            Coefficients back =
                reference::coefficients(e.da, e.dr, reference::rotation(a.psi, a.theta, a.phi));
            for (int i = 0; i < 5; i++) EXPECT_NEAR(back[i], c[i], 2e-6) << "solution " << s;
            if (s > 0) {
                Angles p = e.at(s - 1);
                EXPECT_LE(p.psi * p.psi + p.theta * p.theta + p.phi * p.phi,
                          a.psi * a.psi + a.theta * a.theta + a.phi * a.phi);
            }
        }
    }
    // Where the eigenvector signs fall that way the input itself comes back.
    Extracted first = extract(reference::coefficients(da, dr, reference::rotation(10, 20, 30)));
    EXPECT_TRUE(sameAngles(first.at(0), {10, 20, 30}));
    Extracted second =
        extract(reference::coefficients(da, dr, reference::rotation(170, -60, -100)));
    EXPECT_TRUE(sameAngles(second.at(1), {170, -60, -100}));

    Extracted failed = extract({0, 0, std::numeric_limits<float>::quiet_NaN(), 0, 0});
    EXPECT_EQ(failed.count, 0);  // the diagonalisation never converges
    EXPECT_EQ(failed.da + failed.dr, 0);
}

// At theta = +-90 degrees psi and phi are not separable: the two solutions
// lie 0.256 degrees either side; the identity gives 0 and its equivalent set.
TEST(EulerAngles, GimbalLockAndIdentity) {
    const float near = static_cast<float>(1.5663242 * 180 / M_PI);  // 89.744
    const float far = static_cast<float>(1.5752684 * 180 / M_PI);   // 90.256
    struct Case {
        Angles in, first, second;
    };
    const Case cases[] = {
        {{30, 90, 0}, {30, near, 0}, {30, far, 0}},        // R20 = -1
        {{40, -90, 0}, {-140, -near, 0}, {140, -far, 0}},  // R20 = +1, R02 = -cos 40
        {{0, 0, 0}, {0, 0, 0}, {180, 180, 180}},
    };
    for (const Case& c : cases) {
        Mat3 m = reference::rotation(c.in.psi, c.in.theta, c.in.phi);
        float r[4][4], psi[8], theta[8], phi[8];
        for (int i = 0; i < 4; i++)
            for (int j = 0; j < 4; j++) r[i][j] = i < 3 && j < 3 ? float(m[i][j]) : i == j;
        ASSERT_EQ(rot2euler(r, psi, theta, phi), 2);
        EXPECT_TRUE(sameAngles({psi[0], theta[0], phi[0]}, c.first, 1e-3f)) << c.in.theta;
        EXPECT_TRUE(sameAngles({psi[1], theta[1], phi[1]}, c.second, 1e-3f)) << c.in.theta;
        for (int i = 2; i < 8; i++) EXPECT_EQ(psi[i] + theta[i] + phi[i], 0.0f);
    }
}

}  // namespace
