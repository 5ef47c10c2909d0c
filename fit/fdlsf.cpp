#include "fit/fdlsf.h"

#include "fit/bounded_lm.h"
#include "fit/nls_errors.h"
#include "fit/nls_params.h"

namespace {

constexpr float kNoBound = 1.0e20f;

int checkArguments(int64_t m, int64_t n, int64_t ldfjac, int64_t ibtype) {
    if (m < 1) {
        e1sti(1, m);
        e1mes(kNlsTerminal, 1,
              "The number of functions must be positive while M = %(I1) is given.");
    } else if (n < 1) {
        e1sti(1, n);
        e1mes(kNlsTerminal, 2,
              "The number of variables must be positive while N = %(I1) is given.");
    } else if (ldfjac < m) {
        e1sti(1, ldfjac);
        e1sti(2, m);
        e1mes(kNlsTerminal, 3,
              "The leading dimension of the Jacobian, FJAC, must be greater than or equal to M "
              "while LDFJAC = %(I1) and M = %(I2) are given.");
    } else if (ibtype < 0 || ibtype > 3) {
        e1sti(1, ibtype);
        e1mes(kNlsTerminal, 4,
              "The value for the type of bounds on the variables, IBTYPE, must be greater than or "
              "equal to zero and less than four while IBTYPE = %(I1) is given.");
    } else {
        return 0;
    }
    return 1;
}

void rewriteBounds(int64_t n, int64_t ibtype, float* xlb, float* xub) {
    for (int64_t i = 0; i < n; i++) {
        if (ibtype == 1) {
            xlb[i] = 0.0f;
            xub[i] = kNoBound;
        } else if (ibtype == 2) {
            xlb[i] = -kNoBound;
            xub[i] = 0.0f;
        } else if (ibtype == 3) {
            xlb[i] = xlb[0];
            xub[i] = xub[0];
        }
    }
}

// Carves the scalings from the workspace (they are checked and may be
// replaced there) and runs the iteration on the rest.
void solve(LsfResidualFn fcn, int64_t m, int64_t n, const float* xguess, const float* xlb,
           const float* xub, const float* xscale, const float* fscale, const int64_t* iparam,
           const float* rparam, float* x, float* fvec, float* fjac, int64_t ldfjac, float* wk,
           int64_t* iwk) {
    float* fs = wk + m + n;
    float* xs = fs + m;
    for (int64_t i = 0; i < m; i++) fs[i] = fscale[i];
    for (int64_t j = 0; j < n; j++) xs[j] = xscale[j];
    LsfOptions options = checkLsfOptions(n, m, xguess, xs, fs, iparam, rparam);
    LsfProblem problem{fcn, m, n, x, xlb, xub, xs, fs, fvec, fjac, ldfjac, wk, iwk};
    boundedLM(problem, options);
}

}  // namespace

void fdlsf(LsfResidualFn fcn, int64_t* m, int64_t* n, float* xguess, int64_t* ibtype, float* xlb,
           float* xub, float* xscale, float* fscale, int64_t* iparam, float* rparam, float* x,
           float* fvec, float* fjac, int64_t* ldfjac, float* wk, int64_t* iwk, int64_t* status) {
    e1psh("B2LSF ");
    setFitStatus(0);
    if (checkArguments(*m, *n, *ldfjac, *ibtype) == 0) {
        rewriteBounds(*n, *ibtype, xlb, xub);
        // A start outside the box is moved onto its nearest bound.
        for (int64_t i = 0; i < *n; i++) {
            x[i] = xguess[i] < xlb[i] ? xlb[i] : xguess[i] > xub[i] ? xub[i] : xguess[i];
        }
        if (n1rty() < kNlsFatal) {
            solve(fcn, *m, *n, xguess, xlb, xub, xscale, fscale, iparam, rparam, x, fvec, fjac,
                  *ldfjac, wk, iwk);
        }
    }
    e1pop("B2LSF ");
    *status = getFitStatus();
}
