// Agreement between observed and back-calculated couplings: RMS, chi-square,
// the Q factors and Pearson's R, for one table or a list of tables fitted
// together, and the same for differences between neighbouring couplings.
#pragma once

#include "dc/dtab.h"

// A list of tables is an array of this many slots, the first one filled.
constexpr int kDTabListSize = 32;
// Da scaled to the coupling of an amide N-H pair, in Hz.
constexpr float kDaHN = 21585.2f;

// Adds to the accumulators; returns the rows with use flag and an observation.
int getStatDC2(const DCValue* couplings, int count, float* sumSq, float* sumSqScaled, float* chiSq,
               int* n, float scale);
// rms over the rows with both values; returns as getStatDC2.
int getStatDC(const DCValue* couplings, int count, float* rms, float* chiSq, int* n);
// Over all tables of a list, each scaled to the first table's observed RMS.
int getStatDCN(DTab* const* list, float* rms, float* rmsScaled, float* chiSq, int* nObs);
int getStatDDC2(const DCValue* couplings, int count, float* sumSq, float* sumSqScaled, float* chiSq,
                int* n, float scale);
int getStatDDCN(DTab* const* list, float* rms, float* rmsScaled, float* chiSq, int* nObs);
// Q (over the observed values), Q from Da and rhombicity, and R. The result
// and the count come out at twice the usable rows (both passes count them).
int getStatDCQR(const DTensor* tensor, const DCValue* couplings, int count, float* q, float* qDa,
                float* r, int* n);
// Combined RMS of couplings and of neighbour differences over a list.
int getStatDCScore(DTab* const* list, float* rms, float* rmsDiff, int* nObs);
