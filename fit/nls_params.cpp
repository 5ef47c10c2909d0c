#include "fit/nls_params.h"

#include <cmath>

#include "fit/machine_constants.h"
#include "fit/nls_errors.h"

namespace {

float machineEps() {
    int64_t which = 4;
    return amach_(&which);
}

int64_t floatDigits() {
    int64_t which = 7;
    return imach_(&which);
}

// Replaces a vector holding a non-positive entry by ones; true when it did.
bool fixScaling(int64_t count, float* scale) {
    bool bad = false;
    for (int64_t i = 0; i < count; i++) bad = bad || !(scale[i] > 0.0f);
    if (bad) {
        for (int64_t i = 0; i < count; i++) scale[i] = 1.0f;
    }
    return bad;
}

void fixCount(int64_t* value, int64_t fallback, int64_t code, const char* text) {
    if (*value > 0) return;
    e1sti(1, *value);
    e1mes(kNlsWarningFixed, code, text);
    *value = fallback;
}

void fixTolerance(float* value, float fallback, int64_t code, const char* text) {
    if (*value >= 0.0f) return;
    e1str(1, *value);
    e1str(2, fallback);
    e1mes(kNlsWarningFixed, code, text);
    *value = fallback;
}

float scaledNorm(int64_t n, const float* xscale, const float* x) {
    double sum = 0.0;
    for (int64_t i = 0; i < n; i++) {
        double v = static_cast<double>(xscale[i]) * (x ? x[i] : 1.0f);
        sum += v * v;
    }
    return static_cast<float>(std::sqrt(sum));
}

void checkCounts(LsfOptions* o) {
    fixCount(&o->fdigit, floatDigits(), 4,
             "The estimate of the number of good digits in the functions must be positive while "
             "FDIGIT = %(I1) is given.  The algorithm will assume that the function is accurate "
             "to the precision of the arithmetic.");
    fixCount(&o->mxiter, 100, 5,
             "The maximum number of iterations must be positive while MXITER = %(I1) is given.  "
             "The algorithm will use MXITER = 100.");
    fixCount(&o->maxfcn, 400, 6,
             "The maximum number of function evaluations must be positive while MAXFCN = %(I1) is "
             "given.  The algorithm will use MAXFCN = 400.");
    fixCount(&o->maxjac, 100, 7,
             "The maximum number of Jacobian evaluations must be positive while MAXJAC = %(I1) is "
             "given.  The algorithm will use MAXJAC = 100.");
}

void checkTolerances(LsfOptions* o, const float* d) {
    fixTolerance(&o->gradtl, d[0], 8,
                 "The gradient tolerance must be nonnegative while GRADTL = %(R1) is given.  The "
                 "algorithm will use GRADTL = %(R2).");
    fixTolerance(&o->steptl, d[1], 9,
                 "The step tolerance must be nonnegative while STEPTL = %(R1) is given.  The "
                 "algorithm will use STEPTL = %(R2).");
    fixTolerance(&o->rftol, d[2], 10,
                 "The relative function tolerance must be nonnegative while RFTOL = %(R1) is "
                 "given.  The algorithm will use RFTOL = %(R2).");
    fixTolerance(&o->aftol, d[3], 11,
                 "The absolute function tolerance must be nonnegative while AFTOL = %(R1) is "
                 "given.  The algorithm will use AFTOL = %(R2).");
    fixTolerance(&o->falstl, d[4], 12,
                 "The false convergence tolerance must be nonnegative while FALSTL = %(R1) is "
                 "given.  The algorithm will use FALSTL = %(R2).");
}

// STEPMX and DELTA: -999 asks for the computed value silently, any other
// non-positive value is fixed with a warning.
void checkLengths(LsfOptions* o, int64_t n, const float* xguess, const float* xscale) {
    float stepmx =
        1000.0f * std::fmax(scaledNorm(n, xscale, xguess), scaledNorm(n, xscale, nullptr));
    if (!(o->stepmx > 0.0f)) {
        if (o->stepmx != kLsfCompute) {
            e1str(1, o->stepmx);
            e1str(2, stepmx);
            e1mes(kNlsWarningFixed, 13,
                  "The maximum allowable scaled step length must be positive while STEPMX = %(R1) "
                  "is given.  The algorithm will use STEPMX = %(R2).");
        }
        o->stepmx = stepmx;
    }
    if (!(o->delta > 0.0f)) {
        if (o->delta != kLsfCompute) {
            e1str(1, o->delta);
            e1mes(kNlsWarningFixed, 14,
                  "The initial trust region radius must be positive while DELTA = %(R1) is given.  "
                  "The algorithm will use the length of the initial scaled Cauchy step for DELTA.");
        }
        o->delta = 0.0f;
    }
}

}  // namespace

void u4lsf_(int64_t* iparam, float* rparam) {
    float eps = machineEps();
    float twoThirds = std::pow(eps, 0.6666667f);
    iparam[0] = 1;
    iparam[1] = floatDigits();
    iparam[2] = 100;
    iparam[3] = 400;
    iparam[4] = 100;
    iparam[5] = 1;
    rparam[0] = std::sqrt(eps);
    rparam[1] = twoThirds;
    rparam[2] = std::fmax(twoThirds, 1.0e-10f);
    rparam[3] = std::fmax(eps * eps, 1.0e-20f);
    rparam[4] = 100.0f * eps;
    rparam[5] = kLsfCompute;
    rparam[6] = kLsfCompute;
}

LsfOptions checkLsfOptions(int64_t n, int64_t m, const float* xguess, float* xscale, float* fscale,
                           const int64_t* iparam, const float* rparam) {
    int64_t ip[6];
    float rp[7], defaults[7];
    u4lsf_(ip, defaults);
    for (int i = 0; i < 7; i++) rp[i] = defaults[i];
    if (iparam[0] != 0) {
        for (int i = 0; i < 6; i++) ip[i] = iparam[i];
        for (int i = 0; i < 7; i++) rp[i] = rparam[i];
    }
    e1psh("U5LSF ");
    if (fixScaling(n, xscale)) {
        e1mes(kNlsWarningFixed, 2,
              "The values for the scaling matrix, XSCALE, must be positive while at least one "
              "entry is less than or equal to zero. The algorithm will use the identity scaling "
              "matrix for XSCALE.");
    }
    if (fixScaling(m, fscale)) {
        e1mes(kNlsWarningFixed, 3,
              "The values for the diagonal matrix, FSCALE, must be positive while at least one "
              "entry is less than or equal to zero. The algorithm will use the identity scaling "
              "matrix for FSCALE.");
    }
    LsfOptions o{ip[1], ip[2], ip[3], ip[4], ip[5], rp[0],
                 rp[1], rp[2], rp[3], rp[4], rp[5], rp[6]};
    checkCounts(&o);
    checkTolerances(&o, defaults);
    checkLengths(&o, n, xguess, xscale);
    e1pop("U5LSF ");
    return o;
}
