#include "fit/linear_estimates.h"

#include "dc/tensor.h"
#include "fit/fit_state.h"
#include "math/least_squares.h"

namespace {

float clampTo(float value, float low, float high) {
    if (value < low) value = low;
    if (value > high) value = high;
    return value;
}

bool oppositeSigns(float a, float b) { return (a < 0.0f && b > 0.0f) || (a > 0.0f && b < 0.0f); }

// numerator / denominator, or 0 when the denominator is exactly 0.
float ratioOrZero(double numerator, double denominator) {
    return denominator == 0.0 ? 0.0f : static_cast<float>(numerator / denominator);
}

}  // namespace

int findDaLin(DTensor* t, int n) {
    t->da = 0.0f;
    if (n < 1) return 0;
    const FitState& s = fitState();
    double num = 0.0, den = 0.0;
    for (int k = 0; k < n; k++) {
        if (t->rhMode) {
            double g = s.daTerm[k] + t->rh * s.drTerm[k];
            num += s.dTerm[k] * g;
            den += g * g;
        } else {
            num += (s.dTerm[k] - t->dr * s.drTerm[k]) * static_cast<double>(s.daTerm[k]);
            den += static_cast<double>(s.daTerm[k]) * s.daTerm[k];
        }
    }
    t->da = clampTo(ratioOrZero(num, den), t->daMin, t->daMax);
    if (oppositeSigns(t->da, t->dr)) t->da = 0.0f;
    return 0;
}

int findDrLin(DTensor* t, int n) {
    t->dr = 0.0f;
    if (n < 1) return 0;
    const FitState& s = fitState();
    double num = 0.0, den = 0.0;
    for (int k = 0; k < n; k++) {
        num += (s.dTerm[k] - t->da * s.daTerm[k]) * static_cast<double>(s.drTerm[k]);
        den += static_cast<double>(s.drTerm[k]) * s.drTerm[k];
    }
    t->dr = clampTo(ratioOrZero(num, den), t->drMin, t->drMax);
    if (oppositeSigns(t->da, t->dr)) t->dr = 0.0f;
    return 0;
}

int findRhLin(DTensor* t, int n) {
    t->rh = 0.0f;
    if (n < 1) return 0;
    const FitState& s = fitState();
    double num = 0.0, den = 0.0;
    for (int k = 0; k < n; k++) {
        double g = static_cast<double>(t->da) * s.drTerm[k];
        num += (s.dTerm[k] - t->da * s.daTerm[k]) * g;
        den += g * g;
    }
    t->rh = clampTo(ratioOrZero(num, den), t->rhMin, t->rhMax);
    t->dr = t->da * t->rh;
    return 0;
}

int findDaDrLin(DTensor* t, int n) {
    if (n < 1) {
        t->da = t->dr = 0.0f;
        return 0;
    }
    const FitState& s = fitState();
    for (int k = 0; k < n; k++) {
        s.dadrTerm[2 * k] = s.daTerm[k];
        s.dadrTerm[2 * k + 1] = s.drTerm[k];
    }
    float x[2];
    // A failed solution leaves the tensor as it was.
    if (svdLSMat(s.dadrTerm, s.dTerm, n, 2, x, nullptr, 1) != 0) return 0;
    t->da = clampTo(x[0], t->daMin, t->daMax);
    if (t->rhMode) {
        t->rh = clampTo(t->da == 0.0f ? 0.0f : x[1] / t->da, t->rhMin, t->rhMax);
        t->dr = t->da * t->rh;
    } else {
        t->dr = clampTo(x[1], t->drMin, t->drMax);
    }
    return 0;
}
