// The solver entry that takes its own workspace.
#pragma once

#include <cstdint>

#include "fit/nls_state.h"

// fdlsf with the real (2m + 12n - 1) and integer (2n) workspaces allocated
// here under the tag "nls" and released before returning. M < 1 and N < 1
// are TERMINAL errors 1 and 2, a workspace that cannot be had TERMINAL
// error 3 (routine "BCLSF "); status receives the fit status.
void bclsf(LsfResidualFn fcn, int64_t* m, int64_t* n, float* xguess, int64_t* ibtype, float* xlb,
           float* xub, float* xscale, float* fscale, int64_t* iparam, float* rparam, float* x,
           float* fvec, float* fjac, int64_t* ldfjac, int64_t* status);
