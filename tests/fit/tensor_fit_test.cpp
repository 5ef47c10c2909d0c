// The nonlinear tensor fit on a real peptide with couplings made from a known
// tensor, checked against closed-form optima and a grid scanned here.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "dc/dc_test_util.h"
#include "dc/euler.h"
#include "dc/fixed_dc.h"
#include "dc/map_dc.h"
#include "dc/statistics.h"
#include "fit/fit_align.h"
#include "fit/fit_driver.h"
#include "fit/fit_state.h"

namespace {

using namespace dctest;
using reference::Mat3;

constexpr float kDa = 5e-4f, kDr = 2e-4f;
constexpr double kPsi = 10, kTheta = 20, kPhi = 30;

// |DI| sum (3z^2 - 1) and |DI| sum 1.5 (x^2 - y^2) over the atom pairs of a
// coupling in the frame turned by rot, in double.
struct Terms {
    double a = 0, r = 0;
};
Terms rotatedTerms(const DCValue& v, const Mat3& rot) {
    Terms t;
    for (int i = 0; i < v.countI; i++)
        for (int j = 0; j < v.countJ; j++) {
            const PDBAtom &p = *v.atomsI[i], &q = *v.atomsJ[j];
            double d[3] = {p.x - q.x, p.y - q.y, p.z - q.z}, u[3];
            double len = std::sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2]);
            for (int k = 0; k < 3; k++)
                u[k] = (rot[k][0] * d[0] + rot[k][1] * d[1] + rot[k][2] * d[2]) / len;
            t.a += 3 * u[2] * u[2] - 1, t.r += 1.5 * (u[0] * u[0] - u[1] * u[1]);
        }
    double f = std::fabs(v.di) * reference::methylFactor(v);
    return {t.a * f, t.r * f};
}

class TensorFit : public CouplingTest {
  protected:
    const reference::Coefficients truth =
        reference::coefficients(kDa, kDr, reference::rotation(kPsi, kTheta, kPhi));

    void SetUp() override {
        CouplingTest::SetUp();
        load(0, kModelA);
        // A methyl group against its carbon adds a coupling of three vectors.
        ASSERT_EQ(readText(readFile(kRealTable) +
                           "    5    ALA     CB     5    ALA    HB#     0.000     1.600 1.00\n"),
                  0);
        ASSERT_EQ(buildDC(&pdbs[0], &table, 0, 0, nullptr, 0, 1), table.count);
        for (int i = 0; i < table.count; i++)
            table.couplings[i].dObs =
                static_cast<float>(reference::coupling(table.couplings[i], truth.data()));
        tensor().method = kMethodFit;
    }
    void TearDown() override {
        fitDCFree();
        CouplingTest::TearDown();
    }
    DTensor& tensor() { return table.tensor; }
    int fit(int retries) { return fitD(&pdbs[0], &table, retries, 0); }
    void reset() {
        dTensorNull(&tensor(), 0);
        tensor().method = kMethodFit;
    }
    void fixRotations(float psi, float theta, float phi) {
        DTensor& t = tensor();
        t.rx = t.rxMin = t.rxMax = psi, t.ry = t.ryMin = t.ryMax = theta;
        t.rz = t.rzMin = t.rzMax = phi;
    }
    double rms() {
        float value, chiSq;
        int n;
        getStatDC(table.couplings, table.count, &value, &chiSq, &n);
        EXPECT_EQ(n, table.count);
        return value;
    }
    // The fitted order matrix equals the generating one.
    void expectTruth() {
        for (int k = 0; k < 5; k++) EXPECT_NEAR(tensor().saupe[k], truth[k], 2e-6) << k;
        for (int i = 0; i < table.count; i++)
            EXPECT_NEAR(table.couplings[i].dCalc, table.couplings[i].dObs, 2e-3) << i;
    }
    // Back-calculated couplings against the order-matrix coefficients c.
    void expectCalc(const reference::Coefficients& c) {
        for (int i = 0; i < table.count; i++)
            EXPECT_NEAR(table.couplings[i].dCalc, reference::coupling(table.couplings[i], c.data()),
                        1e-3)
                << i;
    }
    // Sums over the couplings at fixed angles for the closed-form magnitudes.
    struct Sums {
        double aa = 0, ar = 0, rr = 0, da = 0, dr = 0;
    };
    Sums sumsAt(const Mat3& rot) {
        Sums s;
        for (int i = 0; i < table.count; i++) {
            const DCValue& v = table.couplings[i];
            Terms t = rotatedTerms(v, rot);
            double w2 = v.w * v.w;
            s.aa += w2 * t.a * t.a, s.ar += w2 * t.a * t.r, s.rr += w2 * t.r * t.r;
            s.da += w2 * v.dObs * t.a, s.dr += w2 * v.dObs * t.r;
        }
        return s;
    }
};

TEST_F(TensorFit, RecoversAKnownTensorFromTheSvdStartAndFromTheStartTable) {
    tensor().useAuto = 1;
    EXPECT_EQ(fit(0), table.count);
    EXPECT_EQ(table.svdCount, table.count);
    for (int retries : {0, 17}) {
        if (retries) {
            reset();
            EXPECT_EQ(fit(retries), table.count);
            EXPECT_TRUE(tensor().bestIteration >= 1 && tensor().bestIteration <= 17);
        }
        expectTruth();
        EXPECT_TRUE(std::fabs(tensor().da - kDa) < 1e-7 && std::fabs(tensor().dr - kDr) < 1e-7);
    }
}

TEST_F(TensorFit, RetriesEscapeABadStart) {
    for (int retries : {0, 17}) {
        DTensor& t = tensor();
        t.rx = -150, t.ry = 100, t.rz = 170, t.da = -5e-3f, t.dr = -1e-3f;
        fit(retries);
        if (retries == 0) {
            EXPECT_GT(rms(), 0.5);
        }
    }
    EXPECT_LT(rms(), 1e-3);
    EXPECT_GT(tensor().bestIteration, 1);
}

TEST_F(TensorFit, FixedParametersKeepTheirValuesAndTheRestReachTheOptimum) {
    const float psi = 15, theta = 25, phi = 35;
    Sums s = sumsAt(reference::rotation(psi, theta, phi));

    fixRotations(psi, theta, phi);  // -rot: Da and Dr from the 2x2 normal equations
    fit(17);
    double det = s.aa * s.rr - s.ar * s.ar;
    EXPECT_NEAR(tensor().da, (s.da * s.rr - s.dr * s.ar) / det, 2e-8);
    EXPECT_NEAR(tensor().dr, (s.dr * s.aa - s.da * s.ar) / det, 2e-8);
    EXPECT_TRUE(tensor().rx == psi && tensor().ry == theta && tensor().rz == phi);

    // -rotdr: Da alone. Starts drawn below 1.5 Dr have Dr capped while they
    // are evaluated; the fixed Dr must come back unchanged.
    tensor().dr = tensor().drMin = tensor().drMax = 2.5e-4f;
    tensor().daMin = 0.0f, tensor().daMax = 1e-3f;
    fit(17);
    EXPECT_NEAR(tensor().da, (s.da - 2.5e-4 * s.ar) / s.aa, 2e-8);
    EXPECT_EQ(tensor().dr, 2.5e-4f);

    tensor().rhMode = 1;  // -rotrh: Da along a + Rh r
    tensor().rh = tensor().rhMin = tensor().rhMax = 0.5f;
    fit(17);
    double gg = s.aa + 2 * 0.5 * s.ar + 0.25 * s.rr, dg = s.da + 0.5 * s.dr;
    EXPECT_NEAR(tensor().da, dg / gg, 2e-8);
    EXPECT_EQ(tensor().rh, 0.5f);
    EXPECT_FLOAT_EQ(tensor().dr, 0.5f * tensor().da);

    reset();  // fixed magnitudes or one fixed angle at the truth lead the rest to it
    tensor().da = tensor().daMin = tensor().daMax = kDa;  // -dadr
    tensor().dr = tensor().drMin = tensor().drMax = kDr;
    fit(17);
    expectTruth();
    EXPECT_TRUE(tensor().da == kDa && tensor().dr == kDr);

    reset();
    tensor().rx = tensor().rxMin = tensor().rxMax = kPsi;  // -rxFixed
    fit(17);
    expectTruth();
    EXPECT_EQ(tensor().rx, kPsi);
}

TEST_F(TensorFit, BoundsHold) {
    fixRotations(kPsi, kTheta, kPhi);
    tensor().dr = tensor().drMin = tensor().drMax = kDr;
    tensor().daMax = 3e-4f;  // below the optimum 5e-4
    fit(17);
    EXPECT_EQ(tensor().da, 3e-4f);

    reset();
    tensor().ryMin = 40, tensor().ryMax = 60, tensor().ry = 50;
    tensor().daMin = 1e-4f, tensor().daMax = 4e-4f;
    fit(17);
    const DTensor& t = tensor();
    EXPECT_TRUE(t.ry >= 40 && t.ry <= 60 && t.da >= 1e-4f && t.da <= 4e-4f) << t.ry << " " << t.da;
    EXPECT_TRUE(std::fabs(t.rx) <= 180 && std::fabs(t.rz) <= 180);

    tensor().daMin = 1e-3f, tensor().daMax = 5e-4f;  // limits given upside down
    fit(17);
    EXPECT_EQ(tensor().da, 5e-4f);
}

TEST_F(TensorFit, FixedTensorAgreesWithTheOrderMatrixRoute) {
    DTensor& t = tensor();
    t.method = kMethodFixed;
    t.da = 4e-4f, t.dr = 1e-4f, t.rx = 70, t.ry = -40, t.rz = 120;
    t.daMin = t.daMax = t.da, t.drMin = t.drMax = t.dr;
    t.rxMin = t.rxMax = t.rx, t.ryMin = t.ryMax = t.ry, t.rzMin = t.rzMax = t.rz;
    EXPECT_EQ(fit(17), table.count);
    EXPECT_EQ(t.bestIteration, 0);
    reference::Coefficients c =
        reference::coefficients(4e-4, 1e-4, reference::rotation(70, -40, 120));
    expectCalc(c);
    float coefficients[5];
    EXPECT_EQ(findFixedDC(&table, coefficients, kMethodFixed), table.count);
    for (int k = 0; k < 5; k++) EXPECT_NEAR(coefficients[k], c[k], 1e-9);
    expectCalc(c);

    // Offset rotations act before the tensor's own, additional ones after.
    t.rxOff = 30, t.ryOff = -20, t.rzOff = 10, t.rxAdd = -15, t.ryAdd = 5, t.rzAdd = 40;
    fit(0);
    using reference::multiply, reference::rotation;
    expectCalc(reference::coefficients(
        4e-4, 1e-4,
        multiply(rotation(-15, 5, 40), multiply(rotation(70, -40, 120), rotation(30, -20, 10)))));

    t.da = t.daMin = t.daMax = t.dr = t.drMin = t.drMax = 0.0f;  // a zero tensor gives zeros
    fit(0);
    for (int i = 0; i < table.count; i++) EXPECT_EQ(table.couplings[i].dCalc, 0.0f);
}

TEST_F(TensorFit, GridSearchEndsAtTheBestGridPoint) {
    tensor().method = kMethodGrid;
    tensor().gridStep = 30;
    fit(0);
    // The same grid scanned here, with the closed-form Da and Dr at each point.
    double best = 1e30;
    for (int iz = 0; iz <= 12; iz++)
        for (int ix = 0; ix <= 12; ix++) {
            double x = -180 + 30 * ix;
            int ny = static_cast<int>(1 + std::cos(x * M_PI / 180) * 6);
            for (int iy = 0; iy < ny; iy++) {
                double y = ny > 1 ? iy * 180.0 / (ny - 1) : 0;
                Mat3 rot = reference::multiply(reference::rotation(x, y, 0),
                                               reference::rotation(0, 0, -180 + 30 * iz));
                Sums s = sumsAt(rot);
                double det = s.aa * s.rr - s.ar * s.ar, sum = 0;
                double da = (s.da * s.rr - s.dr * s.ar) / det,
                       dr = (s.dr * s.aa - s.da * s.ar) / det;
                for (int i = 0; i < table.count; i++) {
                    Terms t = rotatedTerms(table.couplings[i], rot);
                    sum += std::pow(table.couplings[i].dObs - da * t.a - dr * t.r, 2);
                }
                best = std::min(best, std::sqrt(sum / table.count));
            }
        }
    EXPECT_NEAR(rms(), best, 1e-3);
    EXPECT_GT(best, 0.01);  // the truth lies between the grid points

    tensor().gridStep = 360;  // no point: the tensor keeps its values
    tensor().da = 2e-4f, tensor().dr = 1e-4f;
    fit(0);
    EXPECT_TRUE(tensor().da == 2e-4f && tensor().dr == 1e-4f);
    EXPECT_LT(rms(), 1e6);
}

TEST_F(TensorFit, DegenerateTablesGiveFiniteResults) {
    for (int i = 0; i < table.count; i++) table.couplings[i].dObs = 0.0f;
    fit(17);
    EXPECT_LT(rms(), 1e-3);
    EXPECT_LT(std::fabs(tensor().da), 1e-6);

    for (int i = 0; i < table.count; i++)  // two couplings, five parameters
        i < 2 ? (void)(table.couplings[i].dObs = 5.0f) : (void)(table.couplings[i].wTable = 0.0f);
    EXPECT_EQ(fit(17), 2);
    for (float v : {tensor().da, tensor().dr, tensor().rx, tensor().ry, tensor().rz})
        EXPECT_TRUE(std::isfinite(v));
    EXPECT_NEAR(table.couplings[0].dCalc, 5.0f, 0.01);
    EXPECT_EQ(table.couplings[2].dCalc, kMissingValue);

    for (int i = 0; i < 2; i++) table.couplings[i].wTable = 0.0f;  // nothing to fit
    EXPECT_EQ(fit(17), 0);
    EXPECT_EQ(table.svdCount, 0);
}

TEST_F(TensorFit, TwoMediaAndTwoModelsFitTogether) {
    load(1, kModelA);
    PDBData* models[2] = {&pdbs[0], &pdbs[1]};
    DTab second;
    dTabNull(&second);
    std::string path = scratchDir("second") + "/in.tab";
    writeFile(path, readFile(kRealTable));
    ASSERT_EQ(readDC(path.c_str(), &second, 1), 0);
    ASSERT_EQ(buildDCN(models, 2, &table, 0, 0, nullptr, 0, 1), table.count);
    ASSERT_EQ(buildDCN(models, 2, &second, 0, 0, nullptr, 0, 1), second.count);
    auto other = reference::coefficients(-3e-4, -1e-4, reference::rotation(-60, 50, 0));
    for (int i = 0; i < second.count; i++)
        second.couplings[i].dObs =
            static_cast<float>(reference::coupling(second.couplings[i], other.data()));
    table.tensor.useAuto = second.tensor.useAuto = 1;
    second.tensor.method = kMethodFit;
    DTab* list[kDTabListSize] = {&table, &second};
    EXPECT_EQ(fitDCAlignN(models, 2, list, 17, 0), table.count + second.count);
    expectTruth();
    for (int k = 0; k < 5; k++) EXPECT_NEAR(second.tensor.saupe[k], other[k], 2e-6) << k;
    dTabFree(&second);
}

}  // namespace
