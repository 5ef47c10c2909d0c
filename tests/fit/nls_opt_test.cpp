#include "fit/nls_opt.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "fit/nls_errors.h"
#include "support/checks.h"
#include "util/alloc.h"

namespace {

using Floats = std::vector<float>;

int evaluations = 0;
int outsideBox = 0;  // evaluations of farQuadratic beyond [-1, 1]^2

// What one call handed back, copied out so the blocks can be released.
struct Fit {
    Floats x, residuals, inverse;
    int status = -1, nOut = -1;
};

class NlsOpt : public testing::Test {
  protected:
    void SetUp() override {
        resetNlsState();
        resetNlsErrors();
        evaluations = outsideBox = 0;
    }

    // Runs nlsOpt, copies its outputs, releases them and checks the balance.
    static Fit run(NlsResidualFn fn, int m, Floats& x, Floats& lo, Floats& hi, int maxIter = 200,
                   int maxFcn = 800, int inverse = 0, int verbose = 0) {
        int64_t before = bytesInUse();
        Fit fit;
        int n = static_cast<int>(x.size());
        float *res = nullptr, *inv = nullptr;
        float* out = nlsOpt(fn, m, n, x.data(), lo.data(), hi.data(), 5, maxIter, maxFcn, inverse,
                            &res, &inv, &fit.nOut, &fit.status, verbose, 1.0e-6);
        fit.x.assign(out, out + n), fit.residuals.assign(res, res + m);
        fit.inverse.assign(inv, inv + n * n);
        unAlloc64("nls", out, n * 4), unAlloc64("nls", res, m * 4);
        unAlloc64("nls", inv, n * n * 4);
        EXPECT_EQ(bytesInUse(), before);
        for (float v : fit.x) EXPECT_TRUE(std::isfinite(v));
        return fit;
    }
};

// Minimum at (3, -2): outside the box [-1, 1]^2, so the fit ends on a corner.
int farQuadratic(int, int, float* x, float* f) {
    if (std::fabs(x[0]) > 1.0f || std::fabs(x[1]) > 1.0f) outsideBox++;
    f[0] = x[0] - 3.0f, f[1] = 2.0f * (x[1] + 2.0f);
    f[2] = 0.5f * (x[0] - 3.0f) + 0.1f * (x[1] + 2.0f);
    return 0;
}

int rosenbrock(int, int, float* x, float* f) {
    f[0] = 10.0f * (x[1] - x[0] * x[0]), f[1] = 1.0f - x[0];
    return 0;
}

// A straight line through noisy points: a known least-squares line, minimum not zero.
int line(int m, int, float* x, float* f) {
    const float y[6] = {1.1f, 2.9f, 5.2f, 6.8f, 9.1f, 11.0f};
    for (int i = 0; i < m; i++) f[i] = x[0] + x[1] * static_cast<float>(i) - y[i];
    return 0;
}

// One residual, two parameters: any point of the line x0 + x1 = 1 is a minimum.
int underdetermined(int, int, float* x, float* f) {
    f[0] = x[0] + x[1] - 1.0f;
    return 0;
}

// The same value whatever the parameters: no gradient at all.
float flatValue = 0.0f;
int flat(int m, int, float*, float* f) {
    for (int i = 0; i < m; i++) f[i] = flatValue;
    return 0;
}

int separable(int, int, float* x, float* f) {
    evaluations++;
    f[0] = x[0] - 2.0f, f[1] = x[1] - 3.0f;
    return 0;
}

}  // namespace

TEST_F(NlsOpt, BoundsHoldTheResultAndTheDifferenceProbes) {
    Floats x = {0.0f, 0.0f}, lo = {-1.0f, -1.0f}, hi = {1.0f, 1.0f};
    Fit fit = run(farQuadratic, 3, x, lo, hi);
    EXPECT_EQ(fit.x, (Floats{1.0f, -1.0f}));
    EXPECT_EQ(fit.status, 0);
    EXPECT_EQ(fit.nOut, 2);
    EXPECT_EQ(outsideBox, 0);    // Jacobian steps turn away from the bound
    for (int i = 0; i < 3; i++)  // the residuals are those of the result
        EXPECT_FLOAT_EQ(fit.residuals[i], (Floats{-2.0f, 2.0f, -0.9f}[i]));

    // A fixed parameter keeps its value while the other moves.
    x = {0.0f, 0.5f}, lo = {-10.0f, 0.5f}, hi = {10.0f, 0.5f};
    fit = run(separable, 2, x, lo, hi);
    EXPECT_NEAR(fit.x[0], 2.0f, 1e-3);
    EXPECT_EQ(fit.x[1], 0.5f);

    // A NaN bound is free and open on its side: the fit stops at the other.
    x = {0.0f, 0.0f}, lo = {NAN, -10.0f}, hi = {1.5f, 10.0f};
    fit = run(separable, 2, x, lo, hi);
    EXPECT_EQ(x[0], 0.0f);
    EXPECT_EQ(fit.x[0], 1.5f);
    EXPECT_NEAR(fit.x[1], 3.0f, 1e-3);
}

TEST_F(NlsOpt, LineFitAndRosenbrockReachTheirKnownMinima) {
    // Normal equations for t = 0..5: Stt = 17.5, Sty = 34.85, mean y = 36.1 / 6.
    const double slope = 34.85 / 17.5, intercept = 36.1 / 6.0 - slope * 2.5;
    Floats x = {0.0f, 0.0f}, lo = {-100.0f, -100.0f}, hi = {100.0f, 100.0f};
    Fit fit = run(line, 6, x, lo, hi, 200, 800, 1);
    EXPECT_NEAR(fit.x[0], intercept, 5e-4);
    EXPECT_NEAR(fit.x[1], slope, 5e-4);
    EXPECT_TRUE(fit.status == 0 || fit.status == 1) << fit.status;
    // (J^T J)^-1 for the design [1 t]: [[St2, -St], [-St, 6]] / (6 St2 - St^2).
    const double det = 6.0 * 55.0 - 15.0 * 15.0, inverse[4] = {55 / det, -15 / det, 0, 6 / det};
    for (int i : {0, 1, 3}) EXPECT_NEAR(fit.inverse[i], inverse[i], 2e-3) << i;

    x = {-1.2f, 1.0f}, lo = {-5.0f, -5.0f}, hi = {5.0f, 5.0f};
    fit = run(rosenbrock, 2, x, lo, hi);
    EXPECT_NEAR(fit.x[0], 1.0f, 1e-3);
    EXPECT_NEAR(fit.x[1], 1.0f, 2e-3);
    EXPECT_EQ(fit.status, 0);
}

TEST_F(NlsOpt, MoreParametersThanResidualsAndDegenerateProblemsGiveNoNaN) {
    Floats x = {0.0f, 0.0f}, lo = {-5.0f, -5.0f}, hi = {5.0f, 5.0f};
    Fit fit = run(underdetermined, 1, x, lo, hi);
    EXPECT_NEAR(fit.x[0] + fit.x[1], 1.0f, 1e-4);

    // Without a gradient the start is the answer, with status 0.
    for (float value : {2.0f, 0.0f}) {
        flatValue = value;
        x = {0.3f, -0.7f};
        fit = run(flat, 3, x, lo, hi, 200, 800, 1);
        EXPECT_EQ(fit.x, (Floats{0.3f, -0.7f}));
        EXPECT_EQ(fit.status, 0);
        EXPECT_EQ(fit.residuals, Floats(3, value));
        for (float v : fit.inverse) EXPECT_TRUE(std::isfinite(v));
    }
}

TEST_F(NlsOpt, ClosedOrZeroIterationRunsEvaluateOnceAtTheAdjustedStart) {
    // Reversed bounds are swapped; 9 lies outside [-2, 4] and moves to the
    // midpoint in the caller's array; -1 on its bound is kept. The result
    // holds the start as passed, the status is left unwritten.
    Floats x = {9.0f, -1.0f}, lo = {4.0f, -1.0f}, hi = {-2.0f, 3.0f};
    Fit fit = run(separable, 2, x, lo, hi, 0, 800, 1);
    EXPECT_EQ(lo, (Floats{-2.0f, -1.0f}));
    EXPECT_EQ(hi, (Floats{4.0f, 3.0f}));
    EXPECT_EQ(x, (Floats{1.0f, -1.0f}));
    EXPECT_EQ(fit.x, (Floats{9.0f, -1.0f}));
    EXPECT_EQ(fit.residuals, (Floats{-1.0f, -4.0f}));  // at the adjusted start
    EXPECT_EQ(fit.inverse, Floats(4, 1.0f));
    EXPECT_EQ(fit.status, -1);
    EXPECT_EQ(evaluations, 1);

    // A closed range with iterations allowed is still a single evaluation.
    x = {5.0f, 2.0f}, lo = hi = {1.0f, 2.0f};
    EXPECT_EQ(run(separable, 2, x, lo, hi).x[0], 5.0f);
    EXPECT_EQ(evaluations, 2);
}

TEST_F(NlsOpt, LimitsGiveTheirCodesAndSilenceHidesOnlyTheText) {
    Floats x = {-1.2f, 1.0f}, lo = {-5.0f, -5.0f}, hi = {5.0f, 5.0f};
    Fit fit;
    EXPECT_EQ(stderrOf([&] { fit = run(rosenbrock, 2, x, lo, hi, 2, 800); }), "");
    EXPECT_EQ(fit.status, 3);

    x = {-1.2f, 1.0f};
    EXPECT_EQ(stderrOf([&] { fit = run(rosenbrock, 2, x, lo, hi, 200, 3, 0, 1); }),
              "\n *** WARNING ERROR 4 from U6LSF .\n"
              " ***           Maximum number of function evaluations exceeded.\n");
    EXPECT_EQ(fit.status, 4);
}

namespace {

int depth = 0;
float innerResult = 0.0f;

int innermost(int, int, float* x, float* f) {
    f[0] = x[0] + 1.0f;
    return 0;
}

// Each level runs nlsOpt one level deeper from inside its residual routine;
// the second level has a closed range so that it evaluates only once.
int nested(int, int, float* x, float* f) {
    f[0] = x[0] - 2.0f;
    if (depth >= 2) return 0;
    depth++;
    float lo = depth == 1 ? 0.0f : -10.0f, hi = depth == 1 ? 0.0f : 10.0f, start = 0.0f,
          *res = nullptr, *inv = nullptr;
    int nOut = 0, status = 0;
    float* out = nlsOpt(depth == 1 ? nested : innermost, 1, 1, &start, &lo, &hi, 5, 50, 200, 0,
                        &res, &inv, &nOut, &status, 0, 1e-6);
    if (depth-- == 2) innerResult = out[0];
    unAlloc64("nls", out, 4), unAlloc64("nls", res, 4), unAlloc64("nls", inv, 4);
    return 0;
}

}  // namespace

TEST_F(NlsOpt, ThirdNestedCallWarnsAndStillSolves) {
    Floats x = {0.0f}, lo = {-10.0f}, hi = {10.0f};
    Fit fit;
    std::string err = stderrOf([&] { fit = run(nested, 1, x, lo, hi); });
    EXPECT_NE(err.find("NLSOpt Error: nest level too high: 3\n"), std::string::npos);
    EXPECT_EQ(err.find("level too high: 2"), std::string::npos);
    EXPECT_NEAR(innerResult, -1.0f, 1e-4);
    EXPECT_NEAR(fit.x[0], 2.0f, 1e-4);  // the outer routine was restored after each inner call
    EXPECT_EQ(nlsSilentErr(), 0);       // and so was the message flag
}
