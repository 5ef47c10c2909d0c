#include "fit/bclsf.h"

#include "fit/fdlsf.h"
#include "fit/nls_errors.h"
#include "util/alloc.h"

void bclsf(LsfResidualFn fcn, int64_t* m, int64_t* n, float* xguess, int64_t* ibtype, float* xlb,
           float* xub, float* xscale, float* fscale, int64_t* iparam, float* rparam, float* x,
           float* fvec, float* fjac, int64_t* ldfjac, int64_t* status) {
    e1psh("BCLSF ");
    setFitStatus(0);
    if (*m < 1) {
        e1sti(1, *m);
        e1mes(kNlsTerminal, 1,
              "The number of functions must be positive while M = %(I1) is given.");
    } else if (*n < 1) {
        e1sti(1, *n);
        e1mes(kNlsTerminal, 2,
              "The number of variables must be positive while N = %(I1) is given.");
    } else {
        int64_t wkSize = 2 * *m + 12 * *n - 1;
        float* wk = fltMalloc64("nls", wkSize);
        int64_t* iwk = wk ? n64Malloc("nls", 2 * *n) : nullptr;
        if (iwk) {
            fdlsf(fcn, m, n, xguess, ibtype, xlb, xub, xscale, fscale, iparam, rparam, x, fvec,
                  fjac, ldfjac, wk, iwk, status);
        } else {
            e1sti(1, *n);
            e1sti(2, *m);
            e1mes(kNlsTerminal, 3,
                  "The workspace is based on N and M, where N = %(I1) and M = %(I2) are given.");
        }
        unAlloc64("nls", wk, wk ? wkSize * 4 : 0);
        unAlloc64("nls", iwk, iwk ? 2 * *n * 8 : 0);
    }
    e1pop("BCLSF ");
    *status = getFitStatus();
}
