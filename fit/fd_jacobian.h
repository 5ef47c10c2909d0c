// Forward-difference Jacobian of a residual routine.
#pragma once

#include <cstdint>

#include "fit/nls_state.h"

// Fills fjac (column-major, leading dimension ldfjac) with the forward
// differences of fcn at x, where fx = F(x): column j is
// (F(x + h e_j) - F(x)) / h with h = sqrt(epsfcn) * max(|x_j|, 1/xscale_j),
// negated for x_j < 0, and turned the other way when the probe would leave
// [xlb_j, xub_j] and the other side stays inside (bounds may be null). x is
// restored; ftmp holds m values. Returns 0, or 1 after a TERMINAL message
// (routine "F2JAC ") for unusable arguments.
int f2jac_(LsfResidualFn fcn, int64_t* m, int64_t* n, float* x, const float* xscale,
           const float* fx, float epsfcn, float* fjac, int64_t* ldfjac, float* ftmp,
           const float* xlb, const float* xub);
