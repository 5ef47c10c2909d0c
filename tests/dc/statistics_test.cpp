#include "dc/statistics.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <vector>

#include "dc/neighbour_diff.h"

namespace {

struct Row {
    float obs, calc;
    float w = 1, dd = 1;
    int abs = 0, bond = 1, use = 1;
};

std::vector<DCValue> rows(const std::vector<Row>& spec) {
    std::vector<DCValue> out(spec.size());
    resetDC(out.data(), static_cast<int>(out.size()));
    for (size_t i = 0; i < spec.size(); i++) {
        DCValue& v = out[i];
        v.dObs = spec[i].obs;
        v.dCalc = spec[i].calc;
        v.w = spec[i].w;
        v.dd = spec[i].dd;
        v.absFlag = spec[i].abs;
        v.bondType = spec[i].bond;
        v.use = spec[i].use;
    }
    return out;
}

// A table holding the rows, with the given observed RMS.
DTab table(std::vector<DCValue>& values, float obsRms) {
    DTab t;
    dTabNull(&t);
    t.couplings = values.data();
    t.count = static_cast<int>(values.size());
    t.tensor.obsRms = obsRms;
    return t;
}

// d = 1, -2 (absolute values), 2 with W 2 and DD 0; a missing calculated
// value, an absent D column and an unused row only count (or not) as observed.
const std::vector<Row> kMixed = {
    {5, 4, 1, 0.5f}, {-10, 12, 1, 1, 1}, {3, 9999}, {99999, 1}, {7, 5, 1, 1, 0, 1, 0}, {2, 1, 2, 0},
};

TEST(CouplingStatistics, RmsAndChiSquareOfOneTable) {
    std::vector<DCValue> v = rows(kMixed);
    float rms = -1, chi = -1;
    int n = -1;
    EXPECT_EQ(getStatDC(v.data(), static_cast<int>(v.size()), &rms, &chi, &n), 4);
    EXPECT_EQ(n, 3);
    EXPECT_FLOAT_EQ(rms, std::sqrt(9.0f / 3));  // (1 + 4 + 1 * 2^2) / 3
    EXPECT_FLOAT_EQ(chi, 4 + 4 + 1);            // (1 / 0.5)^2 + (-2)^2 + 1^2 (DD 0: plain)

    float sum = 1, scaled = 1;  // accumulates on top of what is there
    chi = 0;
    n = 0;
    EXPECT_EQ(getStatDC2(v.data(), static_cast<int>(v.size()), &sum, &scaled, &chi, &n, 3), 4);
    EXPECT_FLOAT_EQ(sum, 1 + 9);
    EXPECT_FLOAT_EQ(scaled, 1 + 81);

    std::vector<DCValue> zeroW = rows({{5, 4, 0}, {1, 3, 0}});
    EXPECT_EQ(getStatDC(zeroW.data(), 2, &rms, &chi, &n), 2);
    EXPECT_EQ(rms, 0.0f);
}

TEST(CouplingStatistics, TablesOfAListAreScaledToTheFirst) {
    std::vector<DCValue> a = rows({{5, 4}, {3, 9999}}), b = rows({{2, 0}, {1, 1}});
    DTab first = table(a, 2), second = table(b, 4);
    DTab* list[kDTabListSize] = {&first, nullptr, &second};  // empty slots are passed over
    float rms, scaled, chi;
    int nObs;
    EXPECT_EQ(getStatDCN(list, &rms, &scaled, &chi, &nObs), 4);
    EXPECT_EQ(nObs, 4);
    EXPECT_FLOAT_EQ(rms, std::sqrt((1.0f + 4) / 4));  // divided by every observed row
    EXPECT_FLOAT_EQ(scaled, std::sqrt((1.0f + 4 * 0.25f) / 4));
    EXPECT_FLOAT_EQ(chi, 5);

    first.tensor.obsRms = 0;  // reference 1, each table scaled by 1 / its own level
    EXPECT_EQ(getStatDCN(list, &rms, &scaled, &chi, &nObs), 4);
    EXPECT_FLOAT_EQ(scaled, std::sqrt((1.0f + 4 / 16.0f) / 4));
}

TEST(CouplingStatistics, NeighbourDifferences) {
    std::vector<DCValue> v = rows({
        {1, 2},
        {4, 3},
        {8, 8, 1, 1, 0, 1, 0},
        {10, 5},  // run of bond type 1
        {-6, -2, 1, 1, 1, 7},
        {5, 9999, 1, 1, 0, 7},
        {2, -3, 1, 1, 0, 7},  // open last run
    });
    findDDC(v.data(), static_cast<int>(v.size()));
    const float expected[7][2] = {{-9, -3}, {3, 1},       {9999, 9999}, {6, 2},
                                  {6, 2},   {9999, 9999}, {8, -1}};
    for (int i = 0; i < 7; i++) {
        EXPECT_EQ(v[i].dObsDiff, expected[i][0]) << i;
        EXPECT_EQ(v[i].dCalcDiff, expected[i][1]) << i;
    }

    // Differences are compared over sqrt 2; chi-square over 2 DD; no absolute values.
    std::vector<DCValue> d =
        rows({{1, 1, 1, 0.5f}, {1, 1, 1, 0}, {1, 1, 2, 1, 1}, {1, 1}, {1, 9999}});
    const float diffs[5][2] = {{3, 1}, {3, 1}, {-3, 1}, {9999, 0}, {2, 0}};
    for (int i = 0; i < 5; i++) {
        d[i].dObsDiff = diffs[i][0];
        d[i].dCalcDiff = diffs[i][1];
    }
    float sum = 0, scaled = 0, chi = 0;
    int n = 0;
    EXPECT_EQ(getStatDDC2(d.data(), 5, &sum, &scaled, &chi, &n, 0.5f), 4);
    EXPECT_EQ(n, 3);
    EXPECT_FLOAT_EQ(sum, 2 + 2 + 8 * 4);  // (2^2 + 2^2 + (-4)^2 W^2) / 2
    EXPECT_FLOAT_EQ(scaled, sum * 0.25f);
    EXPECT_FLOAT_EQ(chi, 4 + 2 + 4);  // (2 / 1)^2, 2 (DD 0), (-4 / 2)^2

    // Score over a list: both sums divided by the observed rows of the couplings.
    DTab t = table(v, 0);
    DTab* list[kDTabListSize] = {&t};
    float rms, rmsDiff;
    int nObs;
    EXPECT_EQ(getStatDCScore(list, &rms, &rmsDiff, &nObs), 6);
    EXPECT_FLOAT_EQ(rms, std::sqrt((1.0f + 1 + 25 + 16 + 25) / 6));
    EXPECT_FLOAT_EQ(rmsDiff, std::sqrt((18.0f + 2 + 8 + 8 + 40.5f) / 6));
    EXPECT_EQ(getStatDDCN(list, &rms, &rmsDiff, &chi, &nObs), 5);  // rows with a difference
    EXPECT_FLOAT_EQ(rms, std::sqrt(76.5f / 5));
}

// Q, Q from Da and R in double precision over rows that all have both values.
std::array<double, 3> referenceQR(const Row* x, int n, double da, double dr) {
    double dw2 = 0, ow2 = 0, so = 0, sc = 0, soc = 0, sc2 = 0;
    for (int i = 0; i < n; i++) {
        double d = x[i].abs ? std::fabs(x[i].obs) - std::fabs(x[i].calc) : x[i].obs - x[i].calc;
        double o = x[i].obs * x[i].w, c = x[i].calc * x[i].w;
        dw2 += d * x[i].w * d * x[i].w;
        ow2 += o * o, so += o, sc += c, soc += o * c, sc2 += c * c;
    }
    double daHN = da * 21585.2, rh = dr / da;
    double r = (soc - so * sc / n) / std::sqrt((ow2 - so * so / n) * (sc2 - sc * sc / n));
    return {std::sqrt(dw2 / ow2), std::sqrt(5 * dw2 / (daHN * daHN * (4 + 3 * rh * rh) * n)), r};
}

TEST(CouplingStatistics, QFactorsAndCorrelation) {
    const std::vector<Row> spec = {
        {-10, 12, 1, 1, 1}, {4.5f, 3.9f, 0.5f}, {-7.3f, -6.1f, 1, 1, 1},
        {12.2f, 11.0f, 2},  {3.3f, 4.4f},       {-1.6f, -2.9f},
        {8.8f, 7.7f, 1.5f}, {0.4f, 1.2f},       {-4.1f, -3.3f},
        {6.6f, 5.5f},       {99999, 3},         {5, 5, 1, 1, 0, 1, 0},
    };
    std::vector<DCValue> v = rows(spec);
    DTensor t;
    dTensorNull(&t, 1);
    t.da = 5e-4f;
    t.dr = -2e-4f;
    float q, qDa, r;
    int n;
    EXPECT_EQ(getStatDCQR(&t, v.data(), static_cast<int>(v.size()), &q, &qDa, &r, &n), 20);
    EXPECT_EQ(n, 20);  // both passes count the 10 rows
    std::array<double, 3> expected = referenceQR(spec.data(), 10, t.da, t.dr);
    EXPECT_NEAR(q, expected[0], 1e-5 * expected[0]);
    EXPECT_NEAR(qDa, expected[1], 1e-5 * expected[1]);
    EXPECT_NEAR(r, expected[2], 1e-5);

    t.da = 0;  // no alignment: no Q from Da
    getStatDCQR(&t, v.data(), static_cast<int>(v.size()), &q, &qDa, &r, &n);
    EXPECT_EQ(qDa, 0.0f);

    std::vector<DCValue> zeroW = rows({{5, 4, 0}, {1, 3, 0}, {2, 2, 0}});
    t.da = 5e-4f;
    EXPECT_EQ(getStatDCQR(&t, zeroW.data(), 3, &q, &qDa, &r, &n), 6);
    EXPECT_EQ(q + qDa + r, 0.0f);

    std::vector<DCValue> none = rows({{5, 9999}, {99999, 2}});
    EXPECT_EQ(getStatDCQR(&t, none.data(), 2, &q, &qDa, &r, &n), 0);
    EXPECT_EQ(n, 0);
}

}  // namespace
