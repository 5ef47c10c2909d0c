#include "fit/fdlsf.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "fit/machine_constants.h"
#include "fit/nls_errors.h"
#include "fit/nls_params.h"
#include "support/checks.h"

namespace {

using Floats = std::vector<float>;

int64_t evaluations = 0;

// One direct call of the solver entry with its own option vectors.
struct Lsf {
    int64_t m, ibtype = 0, ldfjac = -1, iparam[6] = {}, status = -1;  // ldfjac -1: m
    Floats x0, lb, ub, x, fvec;
    float rparam[7] = {};
    std::string err;

    Lsf(int64_t m, Floats start, Floats lower, Floats upper)
        : m(m), x0(std::move(start)), lb(std::move(lower)), ub(std::move(upper)) {
        u4lsf_(iparam, rparam);
    }
    int64_t solve(LsfResidualFn fcn) {
        int64_t n = static_cast<int64_t>(x0.size()), ld = ldfjac < 0 ? m : ldfjac;
        int64_t mm = std::max<int64_t>(m, 1), nn = std::max<int64_t>(n, 1);
        Floats xs(nn, 1.0f), fs(mm, 1.0f), fjac(mm * nn), wk(2 * mm + 12 * nn);
        std::vector<int64_t> iwk(2 * nn);
        x.assign(nn, 0.0f), fvec.assign(mm, 0.0f);
        int64_t before = bytesInUse();
        err = stderrOf([&] {
            fdlsf(fcn, &m, &n, x0.data(), &ibtype, lb.data(), ub.data(), xs.data(), fs.data(),
                  iparam, rparam, x.data(), fvec.data(), fjac.data(), &ld, wk.data(), iwk.data(),
                  &status);
        });
        EXPECT_EQ(bytesInUse(), before);
        return status;
    }
};

class Fdlsf : public testing::Test {
  protected:
    void SetUp() override {
        resetNlsState();
        resetNlsErrors();
        evaluations = 0;
    }
};

void shifted(int64_t*, int64_t* n, float* x, float* f) {
    evaluations++;
    for (int64_t j = 0; j < *n; j++) f[j] = x[j] - (j % 2 == 0 ? 3.0f : -3.0f);
}
void plusThree(int64_t*, int64_t*, float* x, float* f) { evaluations++, f[0] = x[0] + 3.0f; }
void farAway(int64_t*, int64_t*, float* x, float* f) { f[0] = x[0] - 100.0f; }
void rosenbrock(int64_t*, int64_t*, float* x, float* f) {
    evaluations++;
    f[0] = 10.0f * (x[1] - x[0] * x[0]), f[1] = 1.0f - x[0];
}
void stopsAfterThree(int64_t* m, int64_t* n, float* x, float* f) {
    rosenbrock(m, n, x, f);
    if (evaluations == 4) setUserStopFlag(1);
}
// Exponential decay against data it cannot match: a minimum above zero.
void decay(int64_t*, int64_t*, float* x, float* f) {
    const float y[4] = {1.0f, 0.5f, 0.4f, 0.05f};
    for (int i = 0; i < 4; i++) f[i] = std::exp(-x[0] * static_cast<float>(i)) - y[i];
}
// Falls towards x = 1 from the left and jumps up beyond it: the iterates
// pile up at a point that is not a minimum.
void cliff(int64_t*, int64_t*, float* x, float* f) { f[0] = x[0] < 1.0f ? 2.0f - x[0] : 5.0f; }

std::string warning(int code, const std::string& lines) {
    return "\n *** WARNING ERROR " + std::to_string(code) + " from U6LSF .\n" + lines;
}

}  // namespace

TEST_F(Fdlsf, DefaultsAndMachineConstantRange) {
    int64_t ip[6];
    float rp[7];
    u4lsf_(ip, rp);
    EXPECT_EQ(std::vector<int64_t>(ip, ip + 6), (std::vector<int64_t>{1, 24, 100, 400, 100, 1}));
    // sqrt(eps), eps^(2/3) twice, eps^2, 100 eps; STEPMX and DELTA left to compute.
    const float expect[7] = {3.4526698e-04f, 2.4221818e-05f, 2.4221818e-05f, 1.4210855e-14f,
                             1.1920929e-05f, -999.0f,        -999.0f};
    for (int i = 0; i < 7; i++) EXPECT_FLOAT_EQ(rp[i], expect[i]) << i;
    int64_t bad = 9;
    float nan = 0.0f;
    EXPECT_EQ(stderrOf([&] { nan = amach_(&bad); }),
              "\n *** TERMINAL ERROR 1 from AMACH .\n"
              " ***          The argument must be between 1 and 8 inclusive. N = 9\n");
    EXPECT_EQ(nan, 1.7011e+38f);
    EXPECT_EQ(getFitStatus(), 1);
}

TEST_F(Fdlsf, ArgumentErrorsStopBeforeAnyEvaluation) {
    struct Case {
        int64_t m, n, ld, ibtype, code;
        const char* text;
    } cases[] = {
        {0, 1, 1, 0, 1,
         " ***          The number of functions must be positive while M = 0 is\n"
         " ***          given.\n"},
        {1, 0, 1, 0, 2,
         " ***          The number of variables must be positive while N = 0 is\n"
         " ***          given.\n"},
        {3, 1, 2, 0, 3,
         " ***          The leading dimension of the Jacobian, FJAC, must be\n"
         " ***          greater than or equal to M while LDFJAC = 2 and M = 3\n"
         " ***          are given.\n"},
        {1, 1, 1, 4, 4,
         " ***          The value for the type of bounds on the variables,\n"
         " ***          IBTYPE, must be greater than or equal to zero and less\n"
         " ***          than four while IBTYPE = 4 is given.\n"},
    };
    for (const Case& c : cases) {
        Lsf lsf(c.m, Floats(c.n, 0.5f), Floats(c.n, 0.0f), Floats(c.n, 1.0f));
        lsf.ldfjac = c.ld, lsf.ibtype = c.ibtype;
        EXPECT_EQ(lsf.solve(plusThree), c.code);
        EXPECT_EQ(lsf.err,
                  "\n *** TERMINAL ERROR " + std::to_string(c.code) + " from B2LSF .\n" + c.text);
        EXPECT_EQ(evaluations, 0);
    }
}

TEST_F(Fdlsf, BoundTypesRewriteTheBounds) {
    Lsf nonNegative(1, {2.0f}, {-7.0f}, {7.0f});
    nonNegative.ibtype = 1;  // x >= 0
    EXPECT_EQ(nonNegative.solve(plusThree), 0);
    EXPECT_TRUE(nonNegative.x[0] == 0.0f && nonNegative.ub[0] == 1e20f) << nonNegative.ub[0];

    Lsf nonPositive(1, {-2.0f}, {-7.0f}, {7.0f});
    nonPositive.ibtype = 2;
    nonPositive.solve(shifted);  // minimum at 3, beyond the upper bound 0
    EXPECT_TRUE(nonPositive.x[0] == 0.0f && nonPositive.lb[0] == -1e20f) << nonPositive.lb[0];

    Lsf likeFirst(2, {0.0f, 0.0f}, {-1.0f, -50.0f}, {1.0f, 50.0f});
    likeFirst.ibtype = 3;
    EXPECT_EQ(likeFirst.solve(shifted), 0);
    EXPECT_TRUE(likeFirst.x == (Floats{1.0f, -1.0f}) && likeFirst.ub[1] == 1.0f);
}

TEST_F(Fdlsf, ToleranceJumpAndUserStops) {
    // Zero residual at the optimum: the absolute function test, no message.
    Lsf exact(2, {0.0f, 0.0f}, {-10.0f, -10.0f}, {10.0f, 10.0f});
    EXPECT_EQ(exact.solve(shifted), 0);
    EXPECT_TRUE(std::fabs(exact.x[0] - 3) < 1e-4 && std::fabs(exact.x[1] + 3) < 1e-4);
    EXPECT_EQ(exact.err, "");

    Lsf gradient(4, {0.1f}, {0.0f}, {10.0f});
    EXPECT_EQ(gradient.solve(decay), 0);
    double rate = gradient.x[0];

    Lsf relative(4, {0.1f}, {0.0f}, {10.0f});
    relative.rparam[0] = relative.rparam[1] = 0.0f;  // no gradient or step stop: only RFTOL
    relative.rparam[2] = 1.0e-3f;
    EXPECT_EQ(relative.solve(decay), 1);
    EXPECT_NEAR(relative.x[0], rate, 1e-3);
    EXPECT_EQ(relative.err,
              warning(1,
                      " ***          RELATIVE FUNCTION CONVERGENCE - Both the scaled actual\n"
                      " ***          and predicted reductions in the function are less than\n"
                      " ***          or equal to the relative function convergence tolerance\n"
                      " ***          RFTOL = 0.001.\n"));

    Lsf jump(1, {0.0f}, {-10.0f}, {10.0f});
    jump.rparam[0] = jump.rparam[1] = jump.rparam[2] = 0.0f;
    EXPECT_EQ(jump.solve(cliff), 2);
    EXPECT_TRUE(jump.x[0] < 1.0f && jump.x[0] > 0.999f) << jump.x[0];
    EXPECT_EQ(jump.err.substr(0, 60), warning(2, " ***          FALSE CONVERGENCE").substr(0, 60));

    // A user stop: start, Jacobian (2), one trial, Jacobian (2), no message.
    evaluations = 0;
    Lsf stopped(2, {-1.2f, 1.0f}, {-5.0f, -5.0f}, {5.0f, 5.0f});
    EXPECT_EQ(stopped.solve(stopsAfterThree), 0);
    EXPECT_EQ(evaluations, 6);
    EXPECT_EQ(stopped.err, "");
}

TEST_F(Fdlsf, LimitsAndLongSteps) {
    struct Case {
        int index;
        int64_t limit, code;
        const char* line;
    } cases[] = {
        {2, 4, 3, " ***           Maximum number of iterations exceeded.\n"},
        {3, 5, 4, " ***           Maximum number of function evaluations exceeded.\n"},
        {4, 3, 5, " ***           Maximum number of Jacobian evaluations exceeded.\n"},
    };
    for (const Case& c : cases) {
        Lsf lsf(2, {-1.2f, 1.0f}, {-5.0f, -5.0f}, {5.0f, 5.0f});
        lsf.iparam[c.index] = c.limit;
        EXPECT_EQ(lsf.solve(rosenbrock), c.code);
        EXPECT_EQ(lsf.err, warning(static_cast<int>(c.code), c.line));
        for (float v : lsf.x) EXPECT_TRUE(std::isfinite(v));
    }

    // The fifth step of length STEPMX warns and the iteration goes on.
    Lsf lsf(1, {0.0f}, {-1000.0f}, {1000.0f});
    lsf.rparam[5] = lsf.rparam[6] = 0.5f;  // STEPMX and DELTA
    lsf.iparam[2] = 8;
    EXPECT_EQ(lsf.solve(farAway), 3);
    // Eight steps of 0.5 in the trust-region metric, which also scales by the
    // Jacobian's column norm (1 here, to the accuracy of the differences).
    EXPECT_NEAR(lsf.x[0], 3.95f, 0.05f);
    EXPECT_EQ(lsf.err,
              warning(6,
                      " ***           Five consecutive steps of length STEPMX have been\n"
                      " ***          taken; either the function is unbounded below, or has a\n"
                      " ***          finite asymptote in some direction, or STEPMX is too\n"
                      " ***          small.\n") +
                  warning(3, " ***           Maximum number of iterations exceeded.\n"));
}

TEST_F(Fdlsf, BadOptionsAreFixedWithAWarningAndTheSolveGoesOn) {
    Lsf lsf(2, {0.0f, 0.0f}, {-10.0f, -10.0f}, {10.0f, 10.0f});
    lsf.iparam[2] = -1, lsf.rparam[0] = -1.0f, lsf.rparam[5] = -2.0f;
    EXPECT_EQ(lsf.solve(shifted), 13);  // the last message issued
    EXPECT_NEAR(lsf.x[0], 3.0f, 1e-4);
    EXPECT_EQ(lsf.err,
              "\n *** WARNING ERROR 5 from U5LSF .\n"
              " ***          The maximum number of iterations must be positive while\n"
              " ***          MXITER = -1 is given.  The algorithm will use MXITER =\n"
              " ***          100.\n"
              "\n *** WARNING ERROR 8 from U5LSF .\n"
              " ***          The gradient tolerance must be nonnegative while GRADTL\n"
              " ***          = -1 is given.  The algorithm will use GRADTL =\n"
              " ***          0.000345267.\n"
              "\n *** WARNING ERROR 13 from U5LSF .\n"
              " ***          The maximum allowable scaled step length must be\n"
              " ***          positive while STEPMX = -2 is given.  The algorithm will\n"
              " ***          use STEPMX = 1414.21.\n");  // 1000 ||XSCALE|| for n = 2

    // IPARAM(1) = 0 takes every default whatever the rest holds.
    Lsf defaults(2, {0.0f, 0.0f}, {-10.0f, -10.0f}, {10.0f, 10.0f});
    defaults.iparam[0] = 0, defaults.iparam[2] = -1;
    EXPECT_EQ(defaults.solve(shifted), 0);
    EXPECT_EQ(defaults.err, "");
}
