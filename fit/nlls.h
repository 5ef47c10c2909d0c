// The refinement's own damped least squares: a Levenberg-Marquardt iteration
// with a forward-difference Jacobian, box bounds, a random restart near the
// best point when the linear algebra goes non-finite, and a stop after a set
// number of iterations that improved the RMS by less than either tolerance.
#pragma once

#include "fit/nls_state.h"

// How the last nlls run ended.
enum NllsStatus {
    kNllsAbsolute = 1,   // RMS decreases below tolerance1
    kNllsRelative = 2,   // relative decreases below tolerance2
    kNllsMaxIter = -1,   // maxIter iterations done
    kNllsNoMemory = -2,  // a workspace could not be allocated
};

// Minimises the RMS of the m residuals of fn over the n parameters, starting
// from x within [min, max]. A parameter with both bounds 0 (or a NaN bound)
// is unbounded on that side; a step of 0 becomes 1e-4 and every step is
// capped at 1e-4 of the range; a scale of 0 becomes 1. The inputs are not
// changed. solution receives the best point found, residuals its residuals
// and covariance (n x n) the inverse of J^T J at the last Jacobian.
// Returns an NllsStatus.
int nlls(NlsResidualFn fn, int m, int n, const float* x, const float* min, const float* max,
         const float* step, const float* scale, int convergeCount, int maxIter, float* residuals,
         float* covariance, float* solution, double tolerance1, double tolerance2);

// sqrt(sum of squares / m), 0 for m < 1.
double residualRms(const float* residuals, int m);
