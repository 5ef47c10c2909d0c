// The parameter vector of the tensor refinement: the free rotations and
// magnitudes of every tensor in fit order, each with its kind, bounds,
// difference step and scale.
#pragma once

#include "fit/fit_state.h"

struct DTensor;

// Kinds ("CType") of the entries.
enum FitParamKind {
    kKindDa = 1,
    kKindDr = 2,
    kKindRh = 3,
    kKindRotX = 4,  // first tensor; +3 for the second, +6 for every further one
};

struct FitParams {
    int n;
    int kind[kMaxFitParams];
    float x[kMaxFitParams], min[kMaxFitParams], max[kMaxFitParams];
    float step[kMaxFitParams], scale[kMaxFitParams];
};

// A parameter is free when its limits differ (a NaN limit counts as free).
inline bool isFreeRange(float min, float max) { return !(min == max); }

// Appends the free parameters of every tensor of the fit, clearing each
// tensor's best-trial field.
void buildFitParams(FitParams* params);
// Copies the free parameters of tensor tensorIndex out of x from index on
// (a fixed one keeps the value it had when the vector was built), then keeps
// Dr within the physical range of Da; returns the next index.
int extractTensor(int tensorIndex, DTensor* tensor, const float* x, int index);
