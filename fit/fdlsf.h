// Entry of the bounded nonlinear least-squares solver.
#pragma once

#include <cstdint>

#include "fit/nls_state.h"

// Minimises 1/2 sum (FSCALE(i) F_i(X))^2 subject to XLB <= X <= XUB by a
// bounded Levenberg-Marquardt trust-region method with a finite-difference
// Jacobian. Arrays are the one-based vectors of the argument list held from
// index 0: xguess, xlb, xub, xscale, x [n]; fscale, fvec [m]; fjac
// [ldfjac x n] column-major; iparam [6]; rparam [7]; wk [2m + 12n - 1];
// iwk [2n]. ibtype 0 takes the bounds as given; 1, 2 and 3 rewrite them
// (non-negative, non-positive, all as the first). The fit status is reset
// to 0 on entry; status receives the code of the last message issued
// (0 after convergence on the gradient, the step or the function size).
void fdlsf(LsfResidualFn fcn, int64_t* m, int64_t* n, float* xguess, int64_t* ibtype, float* xlb,
           float* xub, float* xscale, float* fscale, int64_t* iparam, float* rparam, float* x,
           float* fvec, float* fjac, int64_t* ldfjac, float* wk, int64_t* iwk, int64_t* status);
