// Singular value decomposition (Householder bidiagonalisation followed by
// implicit-shift QR sweeps) with its back-substitution and covariance, in
// single precision. Matrices are row-pointer arrays and vectors are pointers,
// all indexed from 1, as made by math/nr_alloc.h.
#pragma once

// Decomposes the m x n matrix a = U * diag(w) * V^T. U overwrites a (m x n),
// the singular values go to w[1..n] and V to v[1..n][1..n]; rv1[1..n] is
// scratch. Values whose magnitude is at most 1e-22 count as zero. Each
// singular value gets at most 1000 sweeps; one that has not converged by then
// is kept as it stands. m may be smaller than n. Returns 0.
int svdcmpUser(float** a, int m, int n, float* w, float** v, float* rv1);

// x[1..n] = V * diag(1/w) * U^T * b[1..m], where a singular value of
// magnitude at most 1e-22 contributes nothing. tmp[1..n] is scratch.
void svbksbUser(float** u, const float* w, float** v, int m, int n, const float* b, float* x,
                float* tmp);

// Covariance of the solution: cov[i * n + j] (0-based, row-major, full and
// symmetric) = sum over k of V[i][k] * V[j][k] / w[k]^2, with 1/w^2 taken as 0
// for a singular value of magnitude at most 1e-22. Nothing is written when
// cov is null. wti[1..n] is scratch.
void svdvarUser(float** v, int n, const float* w, float* wti, float* cov);
