// Linear least squares by singular value decomposition over one cached,
// process-wide workspace. The workspace is kept between calls and rebuilt
// only when the problem size changes, and a decomposition can be reused for
// a new right-hand side, because the order-matrix fit solves the same design
// many times. Singular values below 1e-6 times the largest are dropped, so a
// rank-deficient design gives the minimum-norm solution.
#pragma once

// Solves a * x ~ b for x[0..n-1], a given row by row (m rows of n values).
// With decompose 0 the decomposition held in the workspace (the previous
// call's, when the sizes are the same) is reused and only b is new; a is
// decomposed when there is none yet. When cov is given it receives the n x n
// covariance, row-major, from the decomposition used. n = 1 is solved as a
// plain scale factor without the workspace (cov[0] = 1). Returns 0, or 1
// when the workspace cannot be made or the arguments are unusable.
int svdLSMat(const float* a, const float* b, int m, int n, float* x, float* cov, int decompose);

// The same with a given column by column (n columns of m values), through a
// row-major copy kept with the workspace; 1 also when the copy cannot be made.
int svdLSMatTP(const float* a, const float* b, int m, int n, float* x, float* cov, int decompose);

// Largest singular value of the last decomposition made in the workspace.
float getSvdMaxW();

// Fits the polynomial of degree order through the m points (xs, ys);
// coefficients[0..order], constant term first. Returns 0, or 1 on failure.
int svdPoly(const float* xs, const float* ys, int m, int order, float* coefficients);

// Fits sum over j = 1..termsMinusOne+1 of coefficients[j-1] * basis(j, x)
// through the m points. Returns 0, or 1 on failure.
int svdFunc(const float* xs, const float* ys, int m, int termsMinusOne, float* coefficients,
            float (*basis)(int j, float x));

// Makes the workspace for m points and order + 1 unknowns (nothing happens
// when it already has these sizes). Returns 0, or 1 when it cannot be made.
int svdPolyInit(int m, int order);

// Releases the workspace and forgets the last decomposition.
void svdPolyFree();
