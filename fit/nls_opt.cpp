#include "fit/nls_opt.h"

#include <cmath>
#include <cstdint>
#include <cstdio>

#include "fit/fdlsf.h"
#include "fit/matrix_inverse.h"
#include "fit/nls_params.h"
#include "util/alloc.h"

namespace {

// Blocks of one call, in the order they are taken.
struct NlsBlocks {
    int64_t m = 0, n = 0;
    float* inverse = nullptr;
    float* residuals = nullptr;
    float* jacobian = nullptr;
    float* xscale = nullptr;
    float* fscale = nullptr;
    float* result = nullptr;
    float* wk = nullptr;
    int64_t* iwk = nullptr;

    int64_t wkSize() const { return 2 * m + 12 * n - 1 > 0 ? 2 * m + 12 * n - 1 : 0; }
};

bool allocate(NlsBlocks* b) {
    b->inverse = fltMalloc64("nls", b->n * b->n);
    b->residuals = b->inverse ? fltMalloc64("nls", b->m) : nullptr;
    b->jacobian = b->residuals ? fltMalloc64("nls", b->m * b->n) : nullptr;
    b->xscale = b->jacobian ? fltMalloc64("nls", b->n) : nullptr;
    b->fscale = b->xscale ? fltMalloc64("nls", b->m) : nullptr;
    b->result = b->fscale ? fltMalloc64("nls", b->n) : nullptr;
    b->wk = b->result ? fltMalloc64("nls", b->wkSize()) : nullptr;
    b->iwk = b->wk ? n64Malloc("nls", 2 * b->n) : nullptr;
    return b->iwk != nullptr;
}

void freeTemporaries(NlsBlocks* b) {
    unAlloc64("nls", b->jacobian, b->m * b->n * 4);
    unAlloc64("nls", b->xscale, b->n * 4);
    unAlloc64("nls", b->fscale, b->m * 4);
    unAlloc64("nls", b->wk, b->wkSize() * 4);
    unAlloc64("nls", b->iwk, 2 * b->n * 8);
}

void freeOutputs(NlsBlocks* b) {
    unAlloc64("nls", b->inverse, b->n * b->n * 4);
    unAlloc64("nls", b->residuals, b->m * 4);
    unAlloc64("nls", b->result, b->n * 4);
    b->inverse = b->residuals = b->result = nullptr;
}

// Puts every start within its bounds, swapping reversed bounds first;
// returns the number of free parameters.
int placeStart(int n, float* x, float* lower, float* upper) {
    int free = 0;
    for (int i = 0; i < n; i++) {
        if (lower[i] > upper[i]) {
            float t = lower[i];
            lower[i] = upper[i];
            upper[i] = t;
        }
        // A NaN bound leaves its side open rather than making the start NaN.
        bool below = x[i] < lower[i] || (std::isnan(x[i]) && !std::isnan(lower[i]));
        bool above = x[i] > upper[i] || (std::isnan(x[i]) && !std::isnan(upper[i]));
        if (below || above) x[i] = 0.5f * (lower[i] + upper[i]);
        if (lower[i] != upper[i]) free++;
    }
    return free;
}

void runSolver(NlsBlocks* b, float* x, float* lower, float* upper, int maxIter, int maxFcn,
               double tolerance, int* fitStatus) {
    int64_t iparam[6];
    float rparam[7];
    u4lsf_(iparam, rparam);
    iparam[1] = 16;
    iparam[2] = maxIter;
    iparam[3] = maxFcn;
    rparam[2] = static_cast<float>(tolerance);
    rparam[4] = 2.0f * rparam[2];
    int64_t m = b->m, n = b->n, ld = b->m, ibtype = 0, status = 0;
    fdlsf(resWrap, &m, &n, x, &ibtype, lower, upper, b->xscale, b->fscale, iparam, rparam,
          b->result, b->residuals, b->jacobian, &ld, b->wk, b->iwk, &status);
    *fitStatus = static_cast<int>(status);
}

}  // namespace

float* nlsOpt(NlsResidualFn fn, int m, int n, float* x, float* lower, float* upper, int ignored,
              int maxIter, int maxFcn, int wantInverse, float** residuals, float** inverse,
              int* nOut, int* fitStatus, int verbose, double tolerance) {
    NlsGlobals saved = saveNlsGlobals();
    int level = enterNlsNest();
    if (level > 2) std::fprintf(stderr, "NLSOpt Error: nest level too high: %d\n", level);
    setNlsMessageFlag(verbose);
    setUserStopFlag(0);
    setNlsResidual(fn);
    *nOut = n;
    NlsBlocks b;
    b.m = m > 0 ? m : 0;
    b.n = n > 0 ? n : 0;
    if (allocate(&b)) {
        for (int i = 0; i < n; i++) b.result[i] = x[i];
        for (int64_t i = 0; i < b.n; i++) b.xscale[i] = 1.0f;
        for (int64_t i = 0; i < b.m; i++) b.fscale[i] = 1.0f;
        for (int64_t i = 0; i < b.m * b.n; i++) b.jacobian[i] = 1.0f;
        for (int64_t i = 0; i < b.n * b.n; i++) b.inverse[i] = 1.0f;
        int free = placeStart(n, x, lower, upper);
        if (free == 0 || maxIter < 1) {
            if (m >= 0) fn(m, n, x, b.residuals);
        } else {
            runSolver(&b, x, lower, upper, maxIter, maxFcn, tolerance, fitStatus);
            fn(m, n, b.result, b.residuals);
            if (wantInverse) jtjInv(b.inverse, b.jacobian, n, m);
        }
    } else {
        freeOutputs(&b);
    }
    freeTemporaries(&b);
    *residuals = b.residuals;
    *inverse = b.inverse;
    setUserStopFlag(0);
    restoreNlsGlobals(saved);
    leaveNlsNest();
    return b.result;
}

int jtjInv(float* inverse, const float* j, int n, int m) {
    float* normal = fltMalloc64("jtj", static_cast<int64_t>(n) * n);
    if (!normal) return 1;
    for (int a = 0; a < n; a++) {
        for (int c = 0; c < n; c++) {
            float sum = 0.0f;
            for (int i = 0; i < m; i++) {
                sum += j[static_cast<int64_t>(a) * m + i] * j[static_cast<int64_t>(c) * m + i];
            }
            normal[a * n + c] = sum;
        }
    }
    int status = matInv64(normal, inverse, n);
    unAlloc64("jtj", normal, static_cast<int64_t>(n) * n * 4);
    return status;
}
