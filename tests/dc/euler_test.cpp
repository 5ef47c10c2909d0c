#include "dc/euler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "tensor_reference.h"

namespace {

using reference::Coefficients;
using reference::Mat3;

constexpr double kDegrees = 57.29577957855229;

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

void toRotation4(const Mat3& m, float r[4][4]) {
    for (int i = 0; i < 4; i++)
        for (int j = 0; j < 4; j++) r[i][j] = i < 3 && j < 3 ? static_cast<float>(m[i][j]) : i == j;
}

// Every solution of saupe2euler must give back the same order matrix; with
// distinct principal values that means the generating frame or its turn by
// 180 degrees about one of its axes (the eigenvector signs are free).
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

    // A second rotation is applied after the first.
    Coefficients twice;
    euler2saupe2(twice.data(), 10, 20, 30, -40, 15, 25, da, dr);
    Mat3 both =
        reference::multiply(reference::rotation(-40, 15, 25), reference::rotation(10, 20, 30));
    Coefficients expected = reference::coefficients(da, dr, both);
    for (int i = 0; i < 5; i++) EXPECT_NEAR(twice[i], expected[i], 1e-8);
    Coefficients single, plain;
    euler2saupe(single.data(), 1, 2, 3, 4, 5, 10, 20, 30, da, dr);  // leading five ignored
    euler2saupe2(plain.data(), 10, 20, 30, 0, 0, 0, da, dr);
    EXPECT_EQ(single, plain);
}

TEST(EulerAngles, GimbalLockGivesTheTwoDocumentedSolutions) {
    const float near = static_cast<float>(1.5663242 * kDegrees);  // 89.744
    const float far = static_cast<float>(1.5752684 * kDegrees);   // 90.256
    float r[4][4], psi[8], theta[8], phi[8];

    toRotation4(reference::rotation(30, 90, 0), r);  // R20 = -1
    ASSERT_EQ(rot2euler(r, psi, theta, phi), 2);
    EXPECT_TRUE(sameAngles({psi[0], theta[0], phi[0]}, {30, near, 0}, 1e-3f));
    EXPECT_TRUE(sameAngles({psi[1], theta[1], phi[1]}, {30, far, 0}, 1e-3f));

    toRotation4(reference::rotation(40, -90, 0), r);  // R20 = +1, R02 = -cos 40
    ASSERT_EQ(rot2euler(r, psi, theta, phi), 2);
    EXPECT_TRUE(sameAngles({psi[0], theta[0], phi[0]}, {-140, -near, 0}, 1e-3f));
    EXPECT_TRUE(sameAngles({psi[1], theta[1], phi[1]}, {140, -far, 0}, 1e-3f));
    for (int i = 2; i < 8; i++) EXPECT_EQ(psi[i] + theta[i] + phi[i], 0.0f);
}

TEST(EulerAngles, IdentityGivesZeroThenTheEquivalentSet) {
    float r[4][4], psi[8], theta[8], phi[8];
    toRotation4(reference::rotation(0, 0, 0), r);
    ASSERT_EQ(rot2euler(r, psi, theta, phi), 2);
    EXPECT_TRUE(sameAngles({psi[0], theta[0], phi[0]}, {0, 0, 0}, 1e-4f));
    EXPECT_TRUE(sameAngles({psi[1], theta[1], phi[1]}, {180, 180, 180}, 1e-3f));

    float single[3];
    EXPECT_EQ(rot2euler1(r, &single[0], &single[1], &single[2]), 1);
    EXPECT_TRUE(sameAngles({single[0], single[1], single[2]}, {0, 0, 0}, 1e-4f));
    EXPECT_EQ(eulerTest(r, 0, 0, 0), 1);
    EXPECT_EQ(eulerTest(r, 0.01f, 0, 0), 0);  // 0.01 rad moves R11 and R22 by more than 0.0005
}

// The principal values must be sorted by magnitude with the largest on z,
// and the frame must stay a proper rotation whatever the swaps.
TEST(EulerAngles, SortingKeepsAProperRotation) {
    const float sxx = 6e-4f, syy = -4e-4f, szz = -2e-4f;  // |Sxx| > |Szz|
    Extracted e = extract({szz, sxx - syy, 0, 0, 0});
    ASSERT_GE(e.count, 1);
    EXPECT_FLOAT_EQ(e.principal[0], sxx);
    EXPECT_FLOAT_EQ(e.sorted[0], szz);
    EXPECT_FLOAT_EQ(e.sorted[1], syy);
    EXPECT_FLOAT_EQ(e.sorted[2], sxx);
    EXPECT_FLOAT_EQ(e.da, (sxx - (szz + syy) / 2) / 3);
    EXPECT_FLOAT_EQ(e.dr, (szz - syy) / 3);
    for (int s = 0; s < e.count; s++) {  // each set turns the sorted frame back onto S
        Coefficients back = reference::coefficients(
            e.da, e.dr, reference::rotation(e.psi[s], e.theta[s], e.phi[s]));
        EXPECT_NEAR(back[0], szz, 1e-7);  // gimbal lock: theta is 0.256 degrees off
        EXPECT_NEAR(back[1], sxx - syy, 1e-7);
    }

    float values[3] = {sxx, syy, szz};
    float v[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    eigsrt3By3NegRevTP(values, v);
    const float diag[3] = {sxx, syy, szz};
    for (int row = 0; row < 3; row++) {  // rows are eigenvectors of the sorted values
        for (int k = 0; k < 3; k++) EXPECT_FLOAT_EQ(diag[k] * v[row][k], values[row] * v[row][k]);
    }
    EXPECT_DOUBLE_EQ(reference::determinant(v), 1.0);

    float tie[3] = {1, -1, 2};  // equal magnitudes are exchanged
    float w[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    eigsrt3By3NegRevTP(tie, w);
    EXPECT_EQ(tie[0], -1);
    EXPECT_EQ(tie[1], 1);

    float nan = std::numeric_limits<float>::quiet_NaN();
    Extracted failed = extract({0, 0, nan, 0, 0});  // never converges
    EXPECT_EQ(failed.count, 0);
    EXPECT_EQ(failed.da, 0);
    EXPECT_EQ(failed.dr, 0);
}

// Eigenvalues of a symmetric 3x3 as the roots of its characteristic polynomial.
std::array<double, 3> polynomialRoots(const float m[3][3]) {
    double q = (m[0][0] + m[1][1] + m[2][2]) / 3.0;
    double off = double(m[0][1]) * m[0][1] + double(m[0][2]) * m[0][2] + double(m[1][2]) * m[1][2];
    double p2 = 2 * off;
    for (int i = 0; i < 3; i++) p2 += (m[i][i] - q) * (m[i][i] - q);
    double p = std::sqrt(p2 / 6.0);
    double b[3][3];
    for (int i = 0; i < 3; i++)
        for (int j = 0; j < 3; j++) b[i][j] = (m[i][j] - (i == j ? q : 0.0)) / p;
    double angle = std::acos(std::clamp(reference::determinant(b) / 2, -1.0, 1.0)) / 3.0;
    double high = q + 2 * p * std::cos(angle), low = q + 2 * p * std::cos(angle + 2 * M_PI / 3);
    return {low, 3 * q - high - low, high};
}

TEST(EulerAngles, JacobiAgreesWithThePolynomialRoots) {
    const float matrices[][3][3] = {
        {{2, 1, 0.5f}, {1, -3, 0.25f}, {0.5f, 0.25f, 1}},
        {{1e-4f, -3e-4f, 2e-4f}, {-3e-4f, 5e-4f, 1e-4f}, {2e-4f, 1e-4f, -6e-4f}},
        {{4, 1e-3f, 0}, {1e-3f, 4, 2}, {0, 2, -1}},
    };
    for (const auto& m : matrices) {
        float values[3], vectors[3][3];
        ASSERT_EQ(diag3By3(m, values, vectors), 0);
        std::array<double, 3> roots = polynomialRoots(m);
        std::array<double, 3> found = {values[0], values[1], values[2]};
        std::sort(found.begin(), found.end());
        double scale = std::max(std::fabs(roots[0]), std::fabs(roots[2]));
        for (int i = 0; i < 3; i++) EXPECT_NEAR(found[i], roots[i], 1e-6 * scale);
        for (int k = 0; k < 3; k++) {  // each column an eigenvector of unit length
            double length = 0;
            for (int i = 0; i < 3; i++) {
                double mv = 0;
                for (int j = 0; j < 3; j++) mv += m[i][j] * vectors[j][k];
                EXPECT_NEAR(mv, values[k] * vectors[i][k], 1e-6 * scale);
                length += vectors[i][k] * vectors[i][k];
            }
            EXPECT_NEAR(length, 1.0, 1e-6);
        }
    }
}

}  // namespace
