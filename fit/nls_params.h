// Option vectors of the least-squares solver: their defaults, and the check
// that completes them before a solve.
#pragma once

#include <cstdint>

// Value of STEPMX and DELTA that asks the solver to compute them.
constexpr float kLsfCompute = -999.0f;

// Fills IPARAM(1..6) and RPARAM(1..7) (iparam[0..5], rparam[0..6]) with the
// defaults: 1, 24, 100, 400, 100, 1 and sqrt(eps), eps^(2/3),
// max(eps^(2/3), 1e-10), max(eps^2, 1e-20), 100 eps, -999, -999.
void u4lsf_(int64_t* iparam, float* rparam);

// The options of one solve, after checking.
struct LsfOptions {
    int64_t fdigit;
    int64_t mxiter;
    int64_t maxfcn;
    int64_t maxjac;
    int64_t scaling;  // 1: the trust region also scales by the Jacobian's columns
    float gradtl;
    float steptl;
    float rftol;
    float aftol;
    float falstl;
    float stepmx;
    float delta;  // first trust radius; <= 0: the initial scaled Cauchy step
};

// Completes the options for a solve from xguess: IPARAM(1) = 0 takes every
// default; a value out of range is replaced and a WARNING with its fix is
// issued (routine "U5LSF "). xscale[n] and fscale[m] are the solver's own
// copies; a non-positive entry turns the whole vector into ones.
LsfOptions checkLsfOptions(int64_t n, int64_t m, const float* xguess, float* xscale, float* fscale,
                           const int64_t* iparam, const float* rparam);
