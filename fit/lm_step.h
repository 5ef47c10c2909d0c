// The damped (Levenberg-Marquardt) step of a trust-region iteration.
#pragma once

#include <cstdint>

// Scratch for steps over n variables: two n x n matrices and a vector.
struct LmStepWork {
    double* normal;  // n x n, row-major
    double* factor;  // n x n, row-major
    double* rhs;     // 2n
};

// Solves (A + lambda D^2) p = -g over the variables with freeVar[j] != 0
// (the others get p_j = 0), A = normal (n x n, row-major), D = d. The damping
// lambda >= 0 is chosen so that ||D p|| is within the trust radius (within
// 0.5 % below it when the undamped step is longer). A zero or non-finite gradient
// gives p = 0. Returns the damping used.
double lmStep(int64_t n, const int64_t* freeVar, const double* g, const double* d, double radius,
              LmStepWork* work, double* p);
