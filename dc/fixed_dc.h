// Back-calculation of the couplings from a tensor that is given rather than
// fitted: the Saupe values of the options, or Da, Dr and three rotations.
#pragma once

#include "dc/dtab.h"

// Fills c with the order-matrix coefficients of the tensor record (mode 2:
// the given Saupe values; mode 5: Da, Dr (Rh x Da in Rh mode) and the
// rotations; any other mode: a fresh SVD fit) and back-calculates every used
// coupling from them. Returns the number of couplings used (0 when the
// workspace cannot be made).
int findFixedDC(DTab* dTab, float c[5], int mode);
