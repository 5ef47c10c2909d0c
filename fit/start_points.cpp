#include "fit/start_points.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "dc/dtab.h"
#include "fit/fit_params.h"
#include "fit/nlls.h"
#include "fit/refine.h"

const StartOrientation dcEulerList[kStartOrientations] = {
    {1, 0, 0, 0},   {2, 0, 45, 0},   {3, 0, 90, 0},    {4, 90, 0, 0},
    {5, 90, 45, 0}, {6, 90, 90, 0},  {7, 0, 0, 45},    {8, 0, 45, 45},
    {9, 0, 90, 45}, {10, 90, 0, 45}, {11, 90, 45, 45}, {12, 90, 90, 45},
    {13, 0, 0, 90}, {14, 0, 45, 90}, {15, 90, 0, 90},  {16, 90, 45, 90},
};

namespace {

constexpr int kConvergeCount = 2;
constexpr int kMaxIterations = 200;
constexpr double kTolerance1 = 1.0e-4;
constexpr double kTolerance2 = 1.0e-6;

float clampTo(float value, float low, float high) {
    if (value < low) value = low;
    if (value > high) value = high;
    return value;
}

float drawWithin(float min, float max) {
    double u = static_cast<double>(random()) / 2147483648.0;
    return static_cast<float>(u * (max - min) + min);
}

// The tabulated angle for a rotation of the first or second tensor, or
// nothing (false) for every other kind.
bool tabulatedAngle(int trial, int kind, float* angle) {
    if (kind < kKindRotX || kind > kKindRotX + 5) return false;
    const StartOrientation& o = dcEulerList[trial - 1];
    int axis = (kind - kKindRotX) % 3;
    *angle = axis == 0 ? o.x : axis == 1 ? o.y : o.z;
    return true;
}

void copy(float* to, const float* from, int n) {
    for (int i = 0; i < n; i++) to[i] = from[i];
}

int refine(FitParams* p, int m, const float* start, float* residuals, float* covariance,
           float* solution) {
    return nlls(fitDCTarget, m, p->n, start, p->min, p->max, p->step, p->scale, kConvergeCount,
                kMaxIterations, residuals, covariance, solution, kTolerance1, kTolerance2);
}

}  // namespace

void adjDCTrial(int trial, const FitParams* p, float* x) {
    if (trial == 0) return;
    for (int i = 0; i < p->n; i++) {
        // Nothing can be drawn from a closed range or one with an open side.
        if (p->min[i] == p->max[i]) continue;
        float angle;
        if (trial <= kStartOrientations && tabulatedAngle(trial, p->kind[i], &angle))
            x[i] = angle;
        else if (std::isfinite(p->min[i]) && std::isfinite(p->max[i]))
            x[i] = drawWithin(p->min[i], p->max[i]);
        x[i] = clampTo(x[i], p->min[i], p->max[i]);
    }
}

void showDCTrial(int trial, const FitParams* p, const float* x) {
    for (int i = 0; i < p->n; i++) {
        const char* format;
        switch (p->kind[i]) {
            case kKindDa:
            case kKindDr:
                format = "Trial: %4d CType: %2d: Init: % .3e Min: % .3e Max: % .3e\n";
                break;
            case kKindRh:
                format = "Trial: %4d CType: %2d: Init: %10.4f Min: %10.4f Max: %10.4f\n";
                break;
            default: format = "Trial: %4d CType: %2d: Init: % 10.2f Min: % 10.2f Max: % 10.2f\n";
        }
        std::fprintf(stderr, format, trial + 1, p->kind[i], x[i], p->min[i], p->max[i]);
    }
}

void setDCBestIter(int trial) {
    for (int t = 0; DTab* dTab = fitTable(t); t++) dTab->tensor.bestIteration = trial;
}

int runStartPoints(FitParams* p, int m, float* residuals, float* covariance) {
    const FitState& s = fitState();
    float solution[kMaxFitParams], best[kMaxFitParams], start[kMaxFitParams];
    if (s.retryCount < 2) {
        if (refine(p, m, p->x, residuals, covariance, solution) == kNllsNoMemory) return 1;
        fitDCTarget(m, p->n, solution, residuals);
        return 0;
    }
    fitDCTarget(m, p->n, p->x, residuals);
    double bestRms = residualRms(residuals, m);
    copy(best, p->x, p->n);
    for (int t = 0; t < s.retryCount; t++) {
        copy(start, p->x, p->n);
        adjDCTrial(t, p, start);
        if (s.verbose >= 2) showDCTrial(t, p, start);
        if (refine(p, m, start, residuals, covariance, solution) == kNllsNoMemory) return 1;
        double rms = residualRms(residuals, m);
        if (rms < bestRms) {
            setDCBestIter(t + 1);
            copy(best, solution, p->n);
            bestRms = rms;
        }
    }
    fitDCTarget(m, p->n, best, residuals);
    return 0;
}
