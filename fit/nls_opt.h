// The program's one entry to the bounded least-squares solver.
#pragma once

#include "fit/nls_state.h"

// Fits the n parameters x (in/out) within [lower, upper] (in/out) so that the
// m residuals of fn have the least sum of squares. A lower bound above its
// upper one is swapped with it in the caller's arrays, and a start outside
// its bounds is replaced there by their midpoint (a NaN bound leaves its side
// open). With no free parameter
// (every lower bound equal to its upper one) or maxIter < 1 the solver is not
// run: fn is evaluated once at the start, *fitStatus is not written, and the
// result holds the start as passed in. Otherwise the solver runs with
// maxIter iterations, maxFcn evaluations and relative function tolerance
// tolerance (false convergence at twice that), *fitStatus receives the code
// of its last message, and fn is evaluated once more at the solution.
// *residuals receives the m residuals there and *inverse an n x n block:
// the inverse of J^T J at the solution when wantInverse is set, else ones.
// *nOut receives n. verbose 1 prints the solver's messages. The result
// vector, the residuals and the inverse belong to the caller (tag "nls");
// the result is null, and so are both outputs, when memory runs out.
// ignored is not used.
float* nlsOpt(NlsResidualFn fn, int m, int n, float* x, float* lower, float* upper, int ignored,
              int maxIter, int maxFcn, int wantInverse, float** residuals, float** inverse,
              int* nOut, int* fitStatus, int verbose, double tolerance);

// Writes the inverse of J^T J (n x n) for the m x n column-major Jacobian j.
// Returns the status of matInv64, or 1 when the temporary cannot be had.
int jtjInv(float* inverse, const float* j, int n, int m);
