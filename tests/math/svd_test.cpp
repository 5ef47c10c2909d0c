#include "math/svd.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "math/nr_alloc.h"

namespace {

using Dense = std::vector<double>;

// One decomposition of a row-major m x n matrix, in 1-based arrays.
struct Decomposition {
    int m, n;
    float** u;
    float* w;
    float** v;
    float* rv1;

    Decomposition(const Dense& a, int rows, int columns) : m(rows), n(columns) {
        u = matrix(1, m, 1, n);
        w = vector(1, n);
        v = matrix(1, n, 1, n);
        rv1 = vector(1, n);
        for (int i = 1; i <= m; i++)
            for (int j = 1; j <= n; j++) u[i][j] = static_cast<float>(a[(i - 1) * n + j - 1]);
        EXPECT_EQ(svdcmpUser(u, m, n, w, v, rv1), 0);
    }
    ~Decomposition() {
        free_matrix(u, 1, m, 1, n);
        free_vector(w, 1, n);
        free_matrix(v, 1, n, 1, n);
        free_vector(rv1, 1, n);
    }
    std::vector<double> sortedValues() const {
        std::vector<double> values(w + 1, w + n + 1);
        std::sort(values.begin(), values.end());
        return values;
    }
    // Largest deviation of U diag(w) V^T from a.
    double reconstructionError(const Dense& a) const {
        double worst = 0.0;
        for (int i = 1; i <= m; i++)
            for (int j = 1; j <= n; j++) {
                double sum = 0.0;
                for (int k = 1; k <= n; k++) sum += u[i][k] * w[k] * v[j][k];
                worst = std::max(worst, std::fabs(sum - a[(i - 1) * n + j - 1]));
            }
        return worst;
    }
};

// Eigenvalues of the symmetric n x n matrix s, ascending, by cyclic Jacobi
// rotations in double precision.
std::vector<double> jacobiEigenvalues(Dense s, int n) {
    for (int sweep = 0; sweep < 50; sweep++)
        for (int p = 0; p < n; p++)
            for (int q = p + 1; q < n; q++) {
                if (s[p * n + q] == 0.0) continue;
                double theta = (s[q * n + q] - s[p * n + p]) / (2.0 * s[p * n + q]);
                double t = (theta >= 0 ? 1.0 : -1.0) / (std::fabs(theta) + std::hypot(theta, 1.0));
                double c = 1.0 / std::hypot(t, 1.0);
                double sn = t * c;
                for (int k = 0; k < n; k++) {
                    double kp = s[k * n + p], kq = s[k * n + q];
                    s[k * n + p] = c * kp - sn * kq;
                    s[k * n + q] = sn * kp + c * kq;
                }
                for (int k = 0; k < n; k++) {
                    double pk = s[p * n + k], qk = s[q * n + k];
                    s[p * n + k] = c * pk - sn * qk;
                    s[q * n + k] = sn * pk + c * qk;
                }
            }
    std::vector<double> values(n);
    for (int i = 0; i < n; i++) values[i] = s[i * n + i];
    std::sort(values.begin(), values.end());
    return values;
}

}  // namespace

TEST(SingularValueDecomposition, MatchesIndependentEigenvaluesForEveryShape) {
    const int shapes[][2] = {{6, 4}, {5, 5}, {3, 5}, {8, 1}, {1, 3}, {12, 5}};
    std::mt19937 engine(7);
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    for (const auto& shape : shapes) {
        int m = shape[0];
        int n = shape[1];
        SCOPED_TRACE(testing::Message() << m << " x " << n);
        Dense a(m * n);
        for (double& value : a) value = uniform(engine);
        Decomposition d(a, m, n);

        EXPECT_LT(d.reconstructionError(a), 2e-6 * n * m);
        // V is orthogonal: V^T V = I.
        for (int p = 1; p <= n; p++)
            for (int r = 1; r <= n; r++) {
                double dot = 0.0;
                for (int i = 1; i <= n; i++) dot += d.v[i][p] * d.v[i][r];
                EXPECT_NEAR(dot, p == r ? 1.0 : 0.0, 1e-5);
            }

        Dense gram(n * n, 0.0);
        for (int i = 0; i < n; i++)
            for (int j = 0; j < n; j++)
                for (int k = 0; k < m; k++) gram[i * n + j] += a[k * n + i] * a[k * n + j];
        std::vector<double> eigen = jacobiEigenvalues(gram, n);
        std::vector<double> values = d.sortedValues();
        // With fewer rows than columns the n - m smallest are zero on both sides.
        for (int k = 0; k < n; k++) {
            EXPECT_NEAR(values[k], std::sqrt(std::max(eigen[k], 0.0)), 1e-5) << "value " << k;
        }
    }
}

TEST(SingularValueDecomposition, HandWorkedAndDegenerateMatrices) {
    // A negative 1 x 1 value: the singular value is made positive and V flips.
    Decomposition d1({-3}, 1, 1);
    EXPECT_FLOAT_EQ(d1.w[1], 3.0f);
    EXPECT_FLOAT_EQ(d1.u[1][1] * d1.v[1][1], -1.0f);

    Dense diagonal = {2, 0, 0, 0, -7, 0, 0, 0, 0};
    Decomposition d3(diagonal, 3, 3);
    EXPECT_EQ(d3.sortedValues(), (std::vector<double>{0.0, 2.0, 7.0}));
    EXPECT_LT(d3.reconstructionError(diagonal), 1e-6);

    // Non-finite input never converges: the sweep limit ends the work.
    Decomposition broken({1, NAN, 2, 3, INFINITY, 4}, 3, 2);
}
