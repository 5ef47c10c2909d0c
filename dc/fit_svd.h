// The order-matrix branch of the tensor fit: the five coefficients by SVD (or
// the given Saupe values), the back-calculated couplings, and the principal
// frame with its Euler solutions.
#pragma once

#include "dc/dtab.h"

struct PDBData;

// Returns the number of couplings used (0 when the workspace cannot be made).
int fitDSVD(PDBData** pdbs, int count, DTab* dTab, int unused);
