#include "math/least_squares.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "support/checks.h"

namespace {

using Floats = std::vector<float>;

// Every test starts without a workspace and must leave the allocation
// balance where it found it once the workspace is freed.
class LeastSquares : public testing::Test {
  protected:
    void SetUp() override {
        svdPolyFree();
        start_ = bytesInUse();
    }
    void TearDown() override {
        svdPolyFree();
        EXPECT_EQ(bytesInUse(), start_);
    }
    int64_t start_ = 0;
};

}  // namespace

TEST_F(LeastSquares, FullRankDesignGivesExactSolutionAndInverseGramCovariance) {
    // A fixed, well-conditioned 7 x 5 design, row by row.
    const Floats a = {1.0f, 0.5f, -0.3f, 0.2f, 0.9f, -0.4f, 1.2f, 0.7f,  -0.5f, 0.1f,  0.3f, -0.8f,
                      1.1f, 0.6f, 0.2f,  0.9f, 0.4f, -0.2f, 1.3f, -0.6f, -0.7f, 0.2f,  0.5f, 0.4f,
                      1.0f, 0.2f, -0.9f, 0.8f, 0.3f, 0.1f,  0.5f, -0.5f, 0.6f,  -0.3f, 0.7f};
    const double xTrue[] = {0.7, -1.2, 0.3, 2.0, -0.4};
    Floats b(7, 0.0f), x(5), cov(25);
    for (int i = 0; i < 7; i++)
        for (int j = 0; j < 5; j++) b[i] += static_cast<float>(a[i * 5 + j] * xTrue[j]);
    ASSERT_EQ(svdLSMat(a.data(), b.data(), 7, 5, x.data(), cov.data(), 1), 0);
    for (int j = 0; j < 5; j++) EXPECT_NEAR(x[j], xTrue[j], 2e-5) << j;

    // cov (A^T A) = I, the product taken in double precision.
    for (int i = 0; i < 5; i++)
        for (int j = 0; j < 5; j++) {
            double sum = 0.0;
            for (int k = 0; k < 5; k++)
                for (int r = 0; r < 7; r++)
                    sum += cov[i * 5 + k] * double(a[r * 5 + k]) * a[r * 5 + j];
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

    // Singular values below 1e-6 of the largest are dropped, larger ones count:
    // diag(1, s) x = (1, 1) gives x = (1, 1 / s) or (1, 0).
    for (auto [small, expected] : {std::pair{1e-4f, 1e4f}, std::pair{1e-8f, 0.0f}}) {
        Floats d = {1, 0, 0, small, 0, 0}, ones = {1, 1, 0};
        ASSERT_EQ(svdLSMat(d.data(), ones.data(), 3, 2, x.data(), nullptr, 1), 0);
        EXPECT_NEAR(x[1], expected, 1e-3f * expected + 1e-6f) << small;
    }

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
    EXPECT_EQ(bytesInUse(), start_);
    EXPECT_EQ(stderrOf([&] { EXPECT_EQ(svdLSMat(a.data(), b.data(), 3, 0, &x, nullptr, 1), 1); }),
              "Utility Error: bad arguments in svdLSMat()\nAborting.\n");
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
