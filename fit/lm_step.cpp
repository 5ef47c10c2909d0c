#include "fit/lm_step.h"

#include <cmath>

namespace {

// Cholesky solve of the damped system restricted to the free variables;
// false when the matrix is not positive definite.
bool solveDamped(int64_t n, const int64_t* freeVar, const double* g, const double* d, double lambda,
                 LmStepWork* w, double* p) {
    const double* a = w->normal;
    double* l = w->factor;
    for (int64_t i = 0; i < n; i++) {
        p[i] = 0.0;
        if (!freeVar[i]) continue;
        for (int64_t j = 0; j <= i; j++) {
            if (!freeVar[j]) continue;
            double sum = a[i * n + j] + (i == j ? lambda * d[i] * d[i] : 0.0);
            for (int64_t k = 0; k < j; k++) {
                if (freeVar[k]) sum -= l[i * n + k] * l[j * n + k];
            }
            if (i == j) {
                if (!(sum > 0.0)) return false;
                l[i * n + i] = std::sqrt(sum);
            } else {
                l[i * n + j] = sum / l[j * n + j];
            }
        }
    }
    for (int64_t i = 0; i < n; i++) {  // L y = -g
        if (!freeVar[i]) continue;
        double sum = -g[i];
        for (int64_t k = 0; k < i; k++) {
            if (freeVar[k]) sum -= l[i * n + k] * w->rhs[k];
        }
        w->rhs[i] = sum / l[i * n + i];
    }
    for (int64_t i = n - 1; i >= 0; i--) {  // L^T p = y
        if (!freeVar[i]) continue;
        double sum = w->rhs[i];
        for (int64_t k = i + 1; k < n; k++) {
            if (freeVar[k]) sum -= l[k * n + i] * p[k];
        }
        p[i] = sum / l[i * n + i];
    }
    return true;
}

double scaledLength(int64_t n, const double* d, const double* p) {
    double sum = 0.0;
    for (int64_t i = 0; i < n; i++) sum += d[i] * p[i] * d[i] * p[i];
    return std::sqrt(sum);
}

void copyStep(int64_t n, const double* from, double* to) {
    for (int64_t i = 0; i < n; i++) to[i] = from[i];
}

}  // namespace

double lmStep(int64_t n, const int64_t* freeVar, const double* g, const double* d, double radius,
              LmStepWork* work, double* p) {
    double gnorm = 0.0;
    for (int64_t i = 0; i < n; i++) {
        if (freeVar[i]) gnorm += (g[i] / d[i]) * (g[i] / d[i]);
    }
    gnorm = std::sqrt(gnorm);
    if (!(gnorm > 0.0) || !std::isfinite(gnorm) || !(radius > 0.0)) {
        for (int64_t i = 0; i < n; i++) p[i] = 0.0;
        return 0.0;
    }
    if (solveDamped(n, freeVar, g, d, 0.0, work, p) && scaledLength(n, d, p) <= radius) return 0.0;
    // ||D p(lambda)|| <= ||D^-1 g|| / lambda, so hi is long enough to be inside.
    double lo = 0.0, hi = gnorm / radius;
    double* best = work->rhs + n;
    if (!solveDamped(n, freeVar, g, d, hi, work, best)) {
        for (int64_t i = 0; i < n; i++) best[i] = 0.0;
    }
    double chosen = hi;
    for (int pass = 0; pass < 60; pass++) {
        double lambda = lo > 0.0 ? std::sqrt(lo * hi) : hi * 1.0e-3;
        if (!solveDamped(n, freeVar, g, d, lambda, work, p)) {
            lo = lambda;
            continue;
        }
        double len = scaledLength(n, d, p);
        if (len > radius) {
            lo = lambda;
            continue;
        }
        copyStep(n, p, best);
        chosen = hi = lambda;
        if (len >= 0.995 * radius) break;
    }
    copyStep(n, best, p);
    return chosen;
}
