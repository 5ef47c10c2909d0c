// Inverse of a general square matrix.
#pragma once

#include <cstdint>

// Writes the inverse of the n x n matrix a (row-major; column-major works
// the same, giving the inverse in the same layout) to inverse, which may be
// a itself. Gauss-Jordan elimination with partial pivoting in double
// precision. Returns 0, 1 when the matrix is singular (inverse then holds
// no meaningful values), or 2 when the scratch cannot be allocated.
int matInv64(const float* a, float* inverse, int64_t n);
