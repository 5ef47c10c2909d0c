// The alignment (Saupe order) matrix by linear least squares: the five
// coefficients c1..c5 fitted to the mapped couplings, and every coupling
// back-calculated from them. Sxx = -(c1 - c2)/2, Syy = -(c1 + c2)/2,
// Szz = c1, Sxy = c3, Sxz = c4, Syz = c5.
#pragma once

#include "dc/dtab.h"

// A coupling whose pseudo-atom stands for three methyl protons is scaled by this.
constexpr float kMethylFactor = 0.927321f;

// A coupling takes part in the fit: use flag, an observation, W != 0 and
// atoms on both sides.
bool isUsedDC(const DCValue& value);

// Fills the fit workspace with the unit vectors of every used coupling over
// the table's structures; returns the used and vector-slot counts.
void initDCSaupe(DTab* dTab, int* usedCount, int* vectorCount);
// The least-squares coefficients and their standard errors; 1 when the
// workspace cannot be made.
int findS(DTab* dTab, float c[5], float cErr[5], int usedCount);
// Back-calculated couplings and their propagated errors into the workspace.
void findD(DTab* dTab, const float c[5], const float cErr[5], int usedCount);
// Copies the back-calculated couplings (averaged over structures) into the
// records; returns the number copied.
int getSaupeD(DTab* dTab);
// Copies each used coupling's design row and vector count into its records.
int getSaupeS(DTab* dTab);
// Back-calculates from given coefficients on the first structure directly.
void updateD(DTab* dTab, const float c[5]);
