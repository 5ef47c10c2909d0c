// The start points of the refinement: the start as given, sixteen tabulated
// orientations, and random draws within the bounds; the best solution wins.
#pragma once

struct FitParams;

// Rotation angles about X, Y and Z (degrees) of start orientations 1..16.
struct StartOrientation {
    int entry;
    float x, y, z;
};
constexpr int kStartOrientations = 16;
extern const StartOrientation dcEulerList[kStartOrientations];

// Runs nlls once (fewer than 2 retries) or once per trial, and leaves the
// tensors at the best solution, its residuals in residuals[0..m-1].
// 0, or 1 when the solver's workspace cannot be allocated.
int runStartPoints(FitParams* params, int m, float* residuals, float* covariance);
// Adjusts the start vector x for trial t (0 keeps it as given).
void adjDCTrial(int trial, const FitParams* params, float* x);
// One line per parameter of trial t on standard error.
void showDCTrial(int trial, const FitParams* params, const float* x);
// Writes the trial number into the best-trial field of every tensor.
void setDCBestIter(int trial);
