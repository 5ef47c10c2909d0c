#include "dc/statistics.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <vector>

namespace {

struct Row {
    float obs, calc;
    float w = 1, dd = 1;
    int abs = 0, use = 1;
};

std::vector<DCValue> rows(const std::vector<Row>& given) {
    std::vector<DCValue> out(given.size());
    resetDC(out.data(), static_cast<int>(out.size()));
    for (size_t i = 0; i < given.size(); i++) {
        DCValue& v = out[i];
        v.dObs = given[i].obs;
        v.dCalc = given[i].calc;
        v.w = given[i].w;
        v.dd = given[i].dd;
        v.absFlag = given[i].abs;
        v.use = given[i].use;
    }
    return out;
}

// d = 1, -2 (absolute values), 2 with W 2 and DD 0; a missing calculated
// value, an absent D column and an unused row only count (or not) as observed.
TEST(CouplingStatistics, RmsAndChiSquareOfOneTable) {
    std::vector<DCValue> v = rows({{5, 4, 1, 0.5f},
                                   {-10, 12, 1, 1, 1},
                                   {3, 9999},
                                   {99999, 1},
                                   {7, 5, 1, 1, 0, 0},
                                   {2, 1, 2, 0}});
    float rms = -1, chi = -1;
    int n = -1;
    EXPECT_EQ(getStatDC(v.data(), static_cast<int>(v.size()), &rms, &chi, &n), 4);
    EXPECT_EQ(n, 3);
    EXPECT_FLOAT_EQ(rms, std::sqrt(9.0f / 3));  // (1 + 4 + 1 * 2^2) / 3
    EXPECT_FLOAT_EQ(chi, 4 + 4 + 1);            // (1 / 0.5)^2 + (-2)^2 + 1^2 (DD 0: plain)

    std::vector<DCValue> zeroW = rows({{5, 4, 0}, {1, 3, 0}});
    EXPECT_EQ(getStatDC(zeroW.data(), 2, &rms, &chi, &n), 2);
    EXPECT_EQ(rms, 0.0f);
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
    const std::vector<Row> given = {
        {-10, 12, 1, 1, 1}, {4.5f, 3.9f, 0.5f}, {-7.3f, -6.1f, 1, 1, 1},
        {12.2f, 11.0f, 2},  {3.3f, 4.4f},       {-1.6f, -2.9f},
        {8.8f, 7.7f, 1.5f}, {0.4f, 1.2f},       {-4.1f, -3.3f},
        {6.6f, 5.5f},       {99999, 3},         {5, 5, 1, 1, 0, 0},
    };
    std::vector<DCValue> v = rows(given);
    DTensor t;
    dTensorNull(&t, 1);
    t.da = 5e-4f;
    t.dr = -2e-4f;
    float q, qDa, r;
    int n;
    EXPECT_EQ(getStatDCQR(&t, v.data(), static_cast<int>(v.size()), &q, &qDa, &r, &n), 20);
    EXPECT_EQ(n, 20);  // both passes count the 10 rows
    std::array<double, 3> expected = referenceQR(given.data(), 10, t.da, t.dr);
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
