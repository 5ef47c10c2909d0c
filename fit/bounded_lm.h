// The bounded Levenberg-Marquardt trust-region iteration behind fdlsf.
#pragma once

#include <cstdint>

#include "fit/nls_params.h"
#include "fit/nls_state.h"

// One problem as the iteration sees it. x holds a start inside [xlb, xub]
// and receives the solution; fvec and fjac (column-major, leading dimension
// ldfjac) receive the residuals and the Jacobian there. xscale and fscale
// are the checked scalings. wk holds at least m + n reals and iwk 2n integers.
struct LsfProblem {
    LsfResidualFn fcn;
    int64_t m;
    int64_t n;
    float* x;
    const float* xlb;
    const float* xub;
    const float* xscale;
    const float* fscale;
    float* fvec;
    float* fjac;
    int64_t ldfjac;
    float* wk;
    int64_t* iwk;
};

// Internal code of a stop on the absolute function tolerance.
constexpr int kLsfAbsoluteStop = -999;

// Minimises 1/2 ||fscale * F(x)||^2 within the bounds. Convergence on the
// absolute function size, the scaled gradient or the scaled step issues no
// message; the other stops issue WARNING 1..5 (routine "U6LSF ") and five
// steps of length STEPMX issue WARNING 6 without stopping. Returns the
// internal stop code: kLsfAbsoluteStop, 0 for gradient or step convergence
// or a user stop, the message code otherwise, or 1 when the scratch
// matrices cannot be had or the Jacobian routine refused.
int boundedLM(const LsfProblem& p, const LsfOptions& o);
