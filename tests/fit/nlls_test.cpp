// Damped least squares (nlls): prepared bounds and steps, the damping rule,
// the stopping count, bounded and valley minima with their covariance, and
// recovery from NaN.
#include "fit/nlls.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "support/checks.h"

namespace {

using Floats = std::vector<float>;

std::vector<Floats> calls;  // every point the residual routine was given
Floats target;              // linear residuals x_i - target_i
Floats script;              // scripted residual value per call (one parameter)

int linear(int m, int n, float* x, float* f) {
    calls.emplace_back(x, x + n);
    for (int i = 0; i < m; i++) f[i] = x[i] - target[i];
    return 0;
}

int scripted(int m, int n, float* x, float* f) {
    calls.emplace_back(x, x + n);
    f[0] = calls.size() <= script.size() ? script[calls.size() - 1] : 100.0f;
    return 0;
}

// Minimum at (-3, 0.5), outside the box x0 >= -1. The parameters are not
// coupled, so clamping x0 leaves the step in x1 as it was computed.
int boxed(int, int, float* x, float* f) {
    f[0] = x[0] + 3.0f, f[1] = 2.0f * (x[1] - 0.5f), f[2] = 0.5f * (x[0] + 3.0f);
    return 0;
}

int rosenbrock(int, int, float* x, float* f) {
    f[0] = 10.0f * (x[1] - x[0] * x[0]), f[1] = 1.0f - x[0];
    return 0;
}

// Not defined for x0 > 2; the unconstrained minimum (4, 1) lies there.
int partial(int, int, float* x, float* f) {
    f[0] = x[0] > 2.0f ? NAN : x[0] - 4.0f, f[1] = x[1] - 1.0f;
    return 0;
}

struct Problem {
    Floats x, lo, hi, step, scale;
    int converge = 3, maxIter = 300;
    double tol1 = 1e-12, tol2 = 1e-12;
};

struct Outcome {
    Floats x, f, cov;
    int status;
};

// Calls nlls, checks that the inputs are untouched and the allocator balanced.
Outcome run(NlsResidualFn fn, int m, const Problem& s) {
    calls.clear();
    Problem in = s;
    int n = static_cast<int>(s.x.size());
    Outcome r{Floats(n), Floats(m), Floats(n * n), 0};
    int64_t before = bytesInUse();
    r.status =
        nlls(fn, m, n, in.x.data(), in.lo.data(), in.hi.data(), in.step.data(), in.scale.data(),
             s.converge, s.maxIter, r.f.data(), r.cov.data(), r.x.data(), s.tol1, s.tol2);
    EXPECT_EQ(bytesInUse(), before);
    EXPECT_TRUE(in.x == s.x && in.lo == s.lo && in.hi == s.hi && in.step == s.step &&
                in.scale == s.scale);
    return r;
}

const float kPow2Step = 1.0f / 1024.0f;  // x + step is exact for x near 7

}  // namespace

TEST(Nlls, PreparedStartProbesAndFirstDampedStep) {
    // p0: bounds (0, 0) are open, scale 0 counts as 1, so the step is 4 / (1 + 50).
    // p1: step 1 is capped at 20e-4 and the start 10 pulled to 10 - 0.002; its
    //     probe is clamped back onto the start, so it cannot move.
    // p2: step 0 becomes 1e-4, start -5 goes to 2; scale 2 gives 1 / (1 + 12.5).
    target = {3.0f, 3.0f, 3.0f};
    Outcome r =
        run(linear, 3, {{7, 10, -5}, {0, -10, 2}, {0, 10, 4}, {kPow2Step, 1, 0}, {0, 1, 2}, 3, 1});
    EXPECT_EQ(r.status, kNllsMaxIter);
    ASSERT_EQ(calls.size(), 5u);  // start, three probes, one trial
    EXPECT_EQ(calls[0], (Floats{7.0f, 10.0f - 20.0f * 1.0e-4f, 2.0f}));
    EXPECT_EQ(calls[1], (Floats{7.0f + kPow2Step, calls[0][1], 2.0f}));
    EXPECT_EQ(calls[2], calls[0]);
    EXPECT_FLOAT_EQ(calls[3][2], 2.0001f);
    EXPECT_NEAR(calls[4][0], 7.0 - 4.0 / 51.0, 1e-5);
    EXPECT_EQ(calls[4][1], calls[0][1]);
    EXPECT_NEAR(calls[4][2], 2.0 + 1.0 / 13.5, 1e-3);
    EXPECT_EQ(r.x, calls[4]);  // the trial is the best point
}

TEST(Nlls, RejectedStepDoublesDampingAcceptedStepHalvesIt) {
    // Calls: 0 start, 1 probe, 2 trial (made worse), 3 probe, 4 trial, 5 probe, 6 trial.
    target = {3.0f};
    auto worseFirstTrial = [](int m, int n, float* x, float* f) {
        linear(m, n, x, f);
        if (calls.size() == 3) f[0] = 1000.0f;
        return 0;
    };
    run(worseFirstTrial, 1, {{7}, {-100}, {100}, {kPow2Step}, {1}, 3, 3});
    ASSERT_EQ(calls.size(), 7u);
    EXPECT_EQ(calls[3][0], 7.0f + kPow2Step);  // the rejected trial was not kept
    const double second = 7.0 - 4.0 / 101.0;   // damping 100
    EXPECT_NEAR(calls[4][0], second, 1e-5);
    EXPECT_NEAR(calls[6][0], second - (second - 3.0) / 51.0, 1e-4);  // back to 50
}

TEST(Nlls, StopsOnTheConvergenceCountOrMaxIter) {
    // Already at the exact minimum: two iterations of zero decrease.
    target = {3.0f, -2.0f};
    Problem s{{3, -2}, {-10, -10}, {10, 10}, {0, 0}, {1, 1}, 2, 300, 1e-6};
    EXPECT_EQ(run(linear, 2, s).status, kNllsAbsolute);
    EXPECT_EQ(calls.size(), 1u + 2u * 3u);

    // Decreases 0.005 (absolute), 4.995 (counts as neither), then 0.03, which
    // relative to the start RMS 10 is below tolerance2 (relative to the
    // previous 5 it would not be). The middle iteration does not reset the
    // count, so the run stops after three. The probe at call 3 has the lowest
    // value of all and is returned.
    script = {10.0f, 20.0f, 9.995f, 1.0f, 5.0f, 20.0f, 4.97f, 20.0f, 4.0f};
    Outcome r = run(scripted, 1, {{0}, {-1}, {1}, {0}, {1}, 2, 300, 0.01, 0.005});
    EXPECT_EQ(r.status, kNllsRelative);
    ASSERT_EQ(calls.size(), 7u);
    EXPECT_EQ(r.x, calls[3]);
    EXPECT_EQ(r.f, Floats{1.0f});
    // The RMS is taken over the m residuals.
    EXPECT_DOUBLE_EQ(residualRms(Floats{3.0f, 4.0f}.data(), 2), std::sqrt(12.5));

    // No parameters: one evaluation and nothing else.
    script = {2.5f};
    EXPECT_EQ(run(scripted, 1, Problem{}).f, Floats{2.5f});
    EXPECT_EQ(calls.size(), 1u);
}

TEST(Nlls, ReachesBoundedAndValleyMinimaWithTheirCovariance) {
    // A step of 2^-13 keeps the differences at x0 = -1 exact.
    const float h = 1.0f / 8192.0f;
    Outcome r = run(boxed, 3, {{0, 0}, {-1, -10}, {1, 10}, {h, h}, {1, 1}});
    EXPECT_EQ(r.x[0], -1.0f);
    EXPECT_NEAR(r.x[1], 0.5f, 1e-4);
    float at[3];
    boxed(3, 2, r.x.data(), at);
    EXPECT_EQ(r.f, Floats(at, at + 3));
    // J = [[1, 0], [0, 2], [0.5, 0]]: J^T J = diag(1.25, 4), inverse diag(0.8, 0.25).
    const double boxedInverse[4] = {0.8, 0.0, 0.0, 0.25};
    for (int i = 0; i < 4; i++) EXPECT_NEAR(r.cov[i], boxedInverse[i], 1e-3) << i;

    r = run(rosenbrock, 2, {{-1.2f, 1}, {-5, -5}, {5, 5}, {0, 0}, {1, 1}, 20, 2000});
    EXPECT_NEAR(r.x[0], 1.0f, 1e-3);
    EXPECT_NEAR(r.x[1], 1.0f, 1e-3);
    // J at (1, 1) = [[-20, 10], [-1, 0]]: J^T J = [[401, -200], [-200, 100]],
    // determinant 100, inverse [[1, 2], [2, 4.01]]; the matrix is ill-conditioned,
    // so the difference Jacobian gets it to about 1 %.
    const double valleyInverse[4] = {1.0, 2.0, 2.0, 4.01};
    for (int i = 0; i < 4; i++) EXPECT_NEAR(r.cov[i], valleyInverse[i], 0.01 * valleyInverse[i]);
}

TEST(Nlls, ZeroBoundsAreOpenAndNaNRegionsAreLeft) {
    target = {5.0f};
    EXPECT_NEAR(run(linear, 1, {{0}, {0}, {0}, {0}, {1}}).x[0], 5.0f, 1e-3);

    // The first probe of x0 lands past 2, so the Jacobian is NaN from the start
    // and stays so near x0 = 2; only the restarts move x1 towards 1.
    Outcome r = run(partial, 2, {{1.99995f, 0}, {-10, -10}, {10, 10}, {0, 0}, {1, 1}, 3, 100});
    for (float v : r.x) EXPECT_TRUE(std::isfinite(v));
    for (float v : r.f) EXPECT_TRUE(std::isfinite(v));
    EXPECT_LE(r.x[0], 2.0f);
    EXPECT_GT(r.x[1], 0.01f);  // 100 probe steps past the start
}
