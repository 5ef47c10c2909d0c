#include "fit/nls_errors.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "fit/bclsf.h"
#include "fit/fd_jacobian.h"
#include "fit/matrix_inverse.h"
#include "fit/nls_opt.h"
#include "fit/nls_params.h"
#include "support/checks.h"

namespace {

class NlsErrors : public testing::Test {
  protected:
    void SetUp() override {
        resetNlsState();
        resetNlsErrors();
        start_ = bytesInUse();
    }
    void TearDown() override { EXPECT_EQ(bytesInUse(), start_); }
    int64_t start_ = 0;
};

// Raises a message from inside the residual routine.
void complaining(int64_t*, int64_t*, float* x, float* f) {
    f[0] = x[0];
    e1mes(kNlsWarning, 42, "Residual routine trouble.");
}
void square(int64_t*, int64_t*, float* x, float* f) { f[0] = x[0] * x[0], f[1] = x[0] * x[1]; }

}  // namespace

TEST_F(NlsErrors, StackFaultsAndSwitchTextsAreReported) {
    // The quoted texts keep their trailing blanks, and so do the names.
    EXPECT_EQ(stderrOf([] { e1pop("B2LSF "); }),
              "\n *** TERMINAL ERROR 1 from E1POP .\n"
              " ***          Error condition in E1POP.  Cannot pop from B2LSF \n"
              " ***          because stack is empty.\n");
    e1psh("U6LSF ");
    EXPECT_EQ(stderrOf([] { e1pop("F2JAC "); }),
              "\n *** TERMINAL ERROR 2 from E1POP .\n"
              " ***          Error condition in E1POP.  F2JAC  does not match the\n"
              " ***          name U6LSF  in the stack.\n");
    EXPECT_EQ(getFitStatus(), 2);
    EXPECT_EQ(n1rty(), kNlsTerminal);
    EXPECT_EQ(stderrOf([] { e1usr_("MAYBE"); }),
              "\n *** TERMINAL ERROR 1 from E1USR .\n"
              " ***          Invalid value for SWITCH in call to E1USR.  SWITCH must\n"
              " ***          be set to 'ON' or 'OFF'.  SWITCH = 'MAYBE' \n");
    // U6LSF is on the stack: 63 more fill it, the 64th is refused.
    EXPECT_EQ(stderrOf([] {
                  for (int i = 0; i < 64; i++) e1psh("DEEP ");
              }),
              "\n *** TERMINAL ERROR 1 from E1PSH .\n"
              " ***          Error condition in E1PSH.  Push would cause stack level\n"
              " ***          to exceed 64. \n");
}

TEST_F(NlsErrors, PrintLevelsAndSilenceStillSetTheStatus) {
    e1psh("U6LSF ");
    EXPECT_EQ(stderrOf([] { e1mes(kNlsNote, 7, "A note."); }), "");  // level 0 by default
    EXPECT_EQ(getFitStatus(), 7);
    EXPECT_EQ(setNlsPrintLevel(kNlsNote, 1), 0);
    EXPECT_EQ(stderrOf([] { e1mes(kNlsNote, 8, "A note."); }),
              "\n *** NOTE ERROR 8 from U6LSF .\n ***          A note.\n");
    setNlsMessageFlag(0);
    EXPECT_EQ(nlsSilentErr(), 1);
    EXPECT_EQ(stderrOf([] { e1mes(kNlsFatal, 9, "Fatal."); }), "");
    EXPECT_EQ(getFitStatus(), 9);
    e1pop("U6LSF ");
}

TEST_F(NlsErrors, DifferenceJacobianNamesTheUserAndRefusesBadNoise) {
    int64_t one = 1;
    float x1 = 2.0f, xs1 = 1.0f, fx1 = 2.0f, jac1 = 0.0f, tmp1 = 0.0f;
    EXPECT_EQ(stderrOf([&] {
                  f2jac_(complaining, &one, &one, &x1, &xs1, &fx1, 1e-7f, &jac1, &one, &tmp1,
                         nullptr, nullptr);
              }),
              "\n *** WARNING ERROR 42 from USER.\n ***          Residual routine trouble.\n");
    EXPECT_NEAR(jac1, 1.0f, 1e-3);

    int64_t m = 2, n = 2, ld = 2;
    float x[2] = {1.5f, -2.0f}, xs[2] = {1.0f, 1.0f}, fx[2], jac[4], tmp[2];
    square(&m, &n, x, fx);
    ASSERT_EQ(f2jac_(square, &m, &n, x, xs, fx, 1.1920929e-7f, jac, &ld, tmp, nullptr, nullptr), 0);
    const float exact[4] = {3.0f, -2.0f, 0.0f, 1.5f};  // column-major
    for (int i = 0; i < 4; i++) EXPECT_NEAR(jac[i], exact[i], 2e-3) << i;
    EXPECT_TRUE(x[0] == 1.5f && x[1] == -2.0f);  // restored after each probe
    EXPECT_EQ(
        stderrOf([&] { f2jac_(square, &m, &n, x, xs, fx, 0.2f, jac, &ld, tmp, nullptr, nullptr); }),
        "\n *** TERMINAL ERROR 4 from F2JAC .\n"
        " ***          The estimate for the relative noise in the function must\n"
        " ***          be between 0.0 and 0.1 while EPSFCN = 0.2 is given.\n");
}

TEST_F(NlsErrors, WorkspaceEntryChecksSizesAndReleasesItsWorkspace) {
    int64_t iparam[6];
    float rparam[7];
    u4lsf_(iparam, rparam);
    int64_t m = 2, n = 2, ld = 2, ibtype = 0, status = -1;
    float x0[2] = {1, 1}, lb[2] = {-5, -5}, ub[2] = {5, 5}, xs[2] = {1, 1}, fs[2] = {1, 1}, x[2],
          fvec[2], fjac[4];
    bclsf(square, &m, &n, x0, &ibtype, lb, ub, xs, fs, iparam, rparam, x, fvec, fjac, &ld, &status);
    EXPECT_EQ(status, 0);
    EXPECT_LT(std::fabs(x[0]), 0.05f);

    m = int64_t{1} << 61;  // a workspace too large to address
    std::string err = stderrOf([&] {
        bclsf(square, &m, &n, x0, &ibtype, lb, ub, xs, fs, iparam, rparam, x, fvec, fjac, &ld,
              &status);
    });
    EXPECT_EQ(status, 3);
    EXPECT_EQ(err,
              "Memory allocation failure.\n"
              "\n *** TERMINAL ERROR 3 from BCLSF .\n"
              " ***          The workspace is based on N and M, where N = 2 and M =\n"
              " ***          2305843009213693952 are given.\n");
}

TEST_F(NlsErrors, MatrixInverseAndSingularMatrix) {
    const float a[9] = {4, 7, 2, 3, 6, 1, 2, 5, 3}, singular[4] = {1, 2, 2, 4};  // det 9 and 0
    const float expect[9] = {13, -11, -5, -7, 8, 2, 3, -6, 3};
    float inv[9];
    ASSERT_EQ(matInv64(a, inv, 3), 0);
    for (int i = 0; i < 9; i++) EXPECT_NEAR(inv[i], expect[i] / 9.0f, 1e-5) << i;
    EXPECT_EQ(matInv64(singular, inv, 2), 1);
}
