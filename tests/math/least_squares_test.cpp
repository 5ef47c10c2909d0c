#include "math/least_squares.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "util/alloc.h"

namespace {

using Floats = std::vector<float>;

int64_t inUse() {
    int64_t bytes = 0;
    getMemUsed(&bytes, nullptr);
    return bytes;
}

// Every test starts without a workspace and must leave the allocation
// balance where it found it once the workspace is freed.
class LeastSquares : public testing::Test {
  protected:
    void SetUp() override {
        svdPolyFree();
        start_ = inUse();
    }
    void TearDown() override {
        svdPolyFree();
        EXPECT_EQ(inUse(), start_);
    }
    int64_t start_ = 0;
};

// A fixed, well-conditioned 7 x 5 design, row by row.
const Floats kDesign = {1.0f, 0.5f,  -0.3f, 0.2f, 0.9f,  -0.4f, 1.2f,  0.7f, -0.5f,
                        0.1f, 0.3f,  -0.8f, 1.1f, 0.6f,  0.2f,  0.9f,  0.4f, -0.2f,
                        1.3f, -0.6f, -0.7f, 0.2f, 0.5f,  0.4f,  1.0f,  0.2f, -0.9f,
                        0.8f, 0.3f,  0.1f,  0.5f, -0.5f, 0.6f,  -0.3f, 0.7f};

Floats columnMajor(const Floats& a, int m, int n) {
    Floats t(m * n);
    for (int i = 0; i < m; i++)
        for (int j = 0; j < n; j++) t[j * m + i] = a[i * n + j];
    return t;
}

float trigBasis(int j, float x) {
    return j == 1 ? 1.0f : j == 2 ? std::sin(x) : std::cos(x);
}

}  // namespace

TEST_F(LeastSquares, FullRankDesignGivesExactSolutionAndInverseGramCovariance) {
    const double xTrue[] = {0.7, -1.2, 0.3, 2.0, -0.4};
    Floats b(7, 0.0f), x(5), cov(25);
    for (int i = 0; i < 7; i++)
        for (int j = 0; j < 5; j++) b[i] += static_cast<float>(kDesign[i * 5 + j] * xTrue[j]);
    ASSERT_EQ(svdLSMat(kDesign.data(), b.data(), 7, 5, x.data(), cov.data(), 1), 0);
    for (int j = 0; j < 5; j++) EXPECT_NEAR(x[j], xTrue[j], 2e-5) << j;

    // cov (A^T A) = I, the product taken in double precision.
    for (int i = 0; i < 5; i++)
        for (int j = 0; j < 5; j++) {
            double sum = 0.0;
            for (int k = 0; k < 5; k++)
                for (int r = 0; r < 7; r++)
                    sum += cov[i * 5 + k] * double(kDesign[r * 5 + k]) * kDesign[r * 5 + j];
            EXPECT_NEAR(sum, i == j ? 1.0 : 0.0, 1e-4) << i << "," << j;
        }
}

TEST_F(LeastSquares, RankDeficientDesignGivesMinimumNormSolution) {
    // Two identical columns: x1 + x2 = 2 has the minimum-norm solution (1, 1).
    Floats a = {1, 1, 2, 2, 3, 3}, b = {2, 4, 6}, x(2), cov(4);
    ASSERT_EQ(svdLSMat(a.data(), b.data(), 3, 2, x.data(), cov.data(), 1), 0);
    EXPECT_NEAR(x[0], 1.0f, 1e-5);
    EXPECT_NEAR(x[1], 1.0f, 1e-5);
    EXPECT_NEAR(getSvdMaxW(), std::sqrt(28.0), 1e-5);
    // Only the direction (1, 1)/sqrt(2) with w^2 = 28 is left.
    for (float value : cov) EXPECT_NEAR(value, 1.0 / 56.0, 1e-6);

    // Every singular value of an all-zero design is 0: x and cov are zero.
    Floats zero(12, 0.0f), b4 = {1, 2, 3, 4}, x3(3, 9.0f), cov3(9, 9.0f);
    ASSERT_EQ(svdLSMat(zero.data(), b4.data(), 4, 3, x3.data(), cov3.data(), 1), 0);
    EXPECT_EQ(x3, Floats(3, 0.0f));
    EXPECT_EQ(cov3, Floats(9, 0.0f));
    EXPECT_EQ(getSvdMaxW(), 0.0f);
}

TEST_F(LeastSquares, SingleUnknownIsAPlainScaleFactorWithoutWorkspace) {
    Floats a = {1, 2, 3}, b = {2, 4, 6.5f}, zero = {0, 0, 0};
    float x = 0, cov = 0;
    ASSERT_EQ(svdLSMat(a.data(), b.data(), 3, 1, &x, &cov, 1), 0);
    EXPECT_FLOAT_EQ(x, 29.5f / 14.0f);
    EXPECT_EQ(cov, 1.0f);
    ASSERT_EQ(svdLSMat(zero.data(), b.data(), 3, 1, &x, nullptr, 1), 0);
    EXPECT_EQ(x, 0.0f);
    EXPECT_EQ(inUse(), start_);
}

TEST_F(LeastSquares, ReusedDecompositionSolvesWithTheEarlierMatrix) {
    Floats first = {1, 0, 0, 2, 1, 1}, second = {3, 1, -1, 2, 0, 5}, b = {1, 4, 3}, x(2);
    // With no decomposition yet, the given matrix is decomposed after all.
    ASSERT_EQ(svdLSMat(first.data(), b.data(), 3, 2, x.data(), nullptr, 0), 0);
    // Normal equations [[2, 1], [1, 5]] x = (4, 11) give (1, 2).
    EXPECT_NEAR(x[0], 1.0f, 1e-5);
    EXPECT_NEAR(x[1], 2.0f, 1e-5);
    Floats expected = x;
    ASSERT_EQ(svdLSMat(first.data(), b.data(), 3, 2, x.data(), nullptr, 1), 0);
    ASSERT_EQ(svdLSMat(second.data(), b.data(), 3, 2, x.data(), nullptr, 0), 0);
    EXPECT_EQ(x, expected);
}

TEST_F(LeastSquares, ColumnOrderedInputMatchesAndRepeatedSolvesTakeNoMemory) {
    Floats t = columnMajor(kDesign, 7, 5);
    Floats b = {0.3f, -1.0f, 2.2f, 0.4f, 0.0f, -0.7f, 1.5f};
    Floats x(5), xt(5), cov(25), covt(25);
    ASSERT_EQ(svdLSMat(kDesign.data(), b.data(), 7, 5, x.data(), cov.data(), 1), 0);
    ASSERT_EQ(svdLSMatTP(t.data(), b.data(), 7, 5, xt.data(), covt.data(), 1), 0);
    EXPECT_EQ(x, xt);
    EXPECT_EQ(cov, covt);

    setAlloc(1);
    testing::internal::CaptureStderr();
    svdLSMat(kDesign.data(), b.data(), 7, 5, x.data(), cov.data(), 0);
    svdLSMatTP(t.data(), b.data(), 7, 5, xt.data(), nullptr, 1);
    svdPoly(b.data(), b.data(), 7, 4, x.data());
    std::string log = testing::internal::GetCapturedStderr();
    setAlloc(0);
    EXPECT_EQ(log, "");

    // A new size replaces the workspace while the column copy is in use:
    // [[1, 2], [3, 4], [5, 6]] x = (1, 2, 3) is solved exactly by (0, 0.5).
    Floats t2 = columnMajor({1, 2, 3, 4, 5, 6}, 3, 2), b2 = {1, 2, 3}, x2(2);
    ASSERT_EQ(svdLSMatTP(t2.data(), b2.data(), 3, 2, x2.data(), nullptr, 1), 0);
    EXPECT_NEAR(x2[0], 0.0f, 1e-5);
    EXPECT_NEAR(x2[1], 0.5f, 1e-5);
}

TEST_F(LeastSquares, FewerRowsThanUnknownsGiveMinimumNormSolution) {
    // x = A^T (A A^T)^-1 b with A A^T = [[2, 1], [1, 2]]: y = (1/3, 1/3).
    Floats a = {1, 1, 0, 0, 1, 1}, b = {1, 1}, x(3);
    ASSERT_EQ(svdLSMat(a.data(), b.data(), 2, 3, x.data(), nullptr, 1), 0);
    EXPECT_NEAR(x[0], 1.0f / 3, 1e-6);
    EXPECT_NEAR(x[1], 2.0f / 3, 1e-6);
    EXPECT_NEAR(x[2], 1.0f / 3, 1e-6);
}

TEST_F(LeastSquares, CurveFitsRecoverKnownCoefficients) {
    Floats xs, cubic, trig;
    for (float x = -2.0f; x <= 2.0f; x += 0.5f) {
        xs.push_back(x);
        cubic.push_back(1.0f - 2.0f * x + 0.5f * x * x + 0.25f * x * x * x);
        trig.push_back(0.5f + 2.0f * std::sin(x) - std::cos(x));
    }
    int m = static_cast<int>(xs.size());
    Floats c(4), t(3);
    ASSERT_EQ(svdPoly(xs.data(), cubic.data(), m, 3, c.data()), 0);
    const float expectedCubic[] = {1.0f, -2.0f, 0.5f, 0.25f};
    for (int j = 0; j < 4; j++) EXPECT_NEAR(c[j], expectedCubic[j], 1e-5) << j;
    ASSERT_EQ(svdFunc(xs.data(), trig.data(), m, 2, t.data(), trigBasis), 0);
    const float expectedTrig[] = {0.5f, 2.0f, -1.0f};
    for (int j = 0; j < 3; j++) EXPECT_NEAR(t[j], expectedTrig[j], 1e-5) << j;

    testing::internal::CaptureStderr();
    EXPECT_EQ(svdFunc(xs.data(), trig.data(), m, 2, t.data(), nullptr), 1);
    EXPECT_EQ(svdLSMat(xs.data(), trig.data(), m, 0, t.data(), nullptr, 1), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Utility Error: bad arguments in svdFunc()\nAborting.\n"
              "Utility Error: bad arguments in svdLSMat()\nAborting.\n");
}
