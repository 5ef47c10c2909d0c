#include "fit/nlls.h"

#include <cmath>
#include <cstdlib>

#include "fit/matrix_inverse.h"
#include "util/alloc.h"

namespace {

constexpr const char* kTag = "nlls";
constexpr float kUnbounded = 1.0e17f;
constexpr float kDefaultStep = 1.0e-4f;
constexpr float kStepFraction = 1.0e-4f;
constexpr float kRestartFraction = 0.001f;
constexpr float kStartDamping = 50.0f;

// The arrays of one run, all in one tracked block.
struct NllsWork {
    int m = 0, n = 0;
    float* block = nullptr;
    float *lo, *hi, *step, *scale;      // prepared bounds, steps and scales (n)
    float *cur, *trial, *best, *probe;  // points (n)
    float *grad, *delta;                // n
    float *jtj, *inverse;               // n x n
    float* jac;                         // m x n, column j at j * m
    float *fCur, *fTrial, *fBest;       // m

    long size() const { return 10L * n + 2L * n * n + static_cast<long>(m) * n + 3L * m; }
    bool allocate(int rows, int columns) {
        m = rows;
        n = columns;
        block = fltMalloc64(kTag, size());
        if (!block) return false;
        float* p = block;
        for (float** a : {&lo, &hi, &step, &scale, &cur, &trial, &best, &probe, &grad, &delta}) {
            *a = p;
            p += n;
        }
        jtj = p;
        inverse = p + n * n;
        jac = inverse + n * n;
        fCur = jac + static_cast<long>(m) * n;
        fTrial = fCur + m;
        fBest = fTrial + m;
        return true;
    }
    void release() { unAlloc64(kTag, block, size() * static_cast<long>(sizeof(float))); }
};

float clampTo(float value, float low, float high) {
    if (value < low) value = low;
    if (value > high) value = high;
    return value;
}

void copy(float* to, const float* from, int count) {
    for (int i = 0; i < count; i++) to[i] = from[i];
}

bool allFinite(const float* values, long count) {
    for (long i = 0; i < count; i++)
        if (!std::isfinite(values[i])) return false;
    return true;
}

double uniform01() { return static_cast<double>(random()) / 2147483648.0; }

void nllsPrepare(NllsWork& w, const float* x, const float* min, const float* max, const float* step,
                 const float* scale) {
    for (int i = 0; i < w.n; i++) {
        float lo = min[i], hi = max[i];
        if (lo == 0.0f && hi == 0.0f) lo = -kUnbounded, hi = kUnbounded;
        if (std::isnan(lo)) lo = -kUnbounded;
        if (std::isnan(hi)) hi = kUnbounded;
        // A range given upside down pins the parameter at its maximum, as
        // the tensor options do with the start value.
        if (lo > hi) lo = hi;
        float h = step[i] == 0.0f ? kDefaultStep : step[i];
        if (h > (hi - lo) * kStepFraction) h = (hi - lo) * kStepFraction;
        w.lo[i] = lo;
        w.hi[i] = hi;
        w.step[i] = h;
        w.scale[i] = scale[i] == 0.0f ? 1.0f : scale[i];
        // A start that is not a number begins in the middle of its range.
        float start = std::isnan(x[i]) ? 0.5f * (lo + hi) : x[i];
        w.cur[i] = clampTo(start, lo, hi - h);
    }
}

// The best point moved at random by up to 0.1 % of each range.
void nllsReset(NllsWork& w) {
    for (int i = 0; i < w.n; i++) {
        double u = uniform01();
        w.trial[i] = w.best[i] +
                     static_cast<float>((2.0 * u - 1.0) * kRestartFraction * (w.hi[i] - w.lo[i]));
    }
}

double evaluate(NlsResidualFn fn, NllsWork& w, float* x, float* f) {
    fn(w.m, w.n, x, f);
    return residualRms(f, w.m);
}

// Column j of the forward-difference Jacobian; keeps a probe better than the best.
void nllsJac(NlsResidualFn fn, NllsWork& w, int j, double* bestRms) {
    float* column = w.jac + static_cast<long>(j) * w.m;
    if (w.step[j] == 0.0f) {  // a closed range: the parameter cannot move
        for (int i = 0; i < w.m; i++) column[i] = 0.0f;
        return;
    }
    copy(w.probe, w.cur, w.n);
    w.probe[j] = clampTo(w.cur[j] + w.step[j], w.lo[j], w.hi[j] - w.step[j]);
    // At the upper bound the probe is clamped below the point: dividing by
    // the distance actually moved keeps the column's sign right there.
    float moved = w.probe[j] - w.cur[j];
    double rms = evaluate(fn, w, w.probe, w.fTrial);
    for (int i = 0; i < w.m; i++)
        column[i] = moved == 0.0f ? 0.0f : (w.fTrial[i] - w.fCur[i]) / moved;
    if (rms < *bestRms) {
        *bestRms = rms;
        copy(w.best, w.probe, w.n);
        copy(w.fBest, w.fTrial, w.m);
    }
}

void nllsDelta(NlsResidualFn fn, NllsWork& w, double* bestRms) {
    for (int j = 0; j < w.n; j++) nllsJac(fn, w, j, bestRms);
}

void nllsJTJ(NllsWork& w) {
    for (int a = 0; a < w.n; a++) {
        for (int b = 0; b <= a; b++) {
            const float* ca = w.jac + static_cast<long>(a) * w.m;
            const float* cb = w.jac + static_cast<long>(b) * w.m;
            double sum = 0.0;
            for (int i = 0; i < w.m; i++) sum += static_cast<double>(ca[i]) * cb[i];
            w.jtj[a * w.n + b] = w.jtj[b * w.n + a] = static_cast<float>(sum);
        }
    }
}

void nllsGrad(NllsWork& w) {
    for (int j = 0; j < w.n; j++) {
        const float* column = w.jac + static_cast<long>(j) * w.m;
        double sum = 0.0;
        for (int i = 0; i < w.m; i++) sum += static_cast<double>(column[i]) * w.fCur[i];
        w.grad[j] = static_cast<float>(sum);
    }
}

// The damped normal matrix into inverse, ready to be inverted in place.
void nllsDiag(NllsWork& w, float damping) {
    copy(w.inverse, w.jtj, w.n * w.n);
    for (int i = 0; i < w.n; i++) w.inverse[i * w.n + i] += damping / (w.scale[i] * w.scale[i]);
}

// trial := cur - (damped J^T J)^-1 g; false when anything is not finite.
bool nllsUpdate(NllsWork& w) {
    if (matInv64(w.inverse, w.inverse, w.n) != 0) return false;
    for (int i = 0; i < w.n; i++) {
        double sum = 0.0;
        for (int j = 0; j < w.n; j++)
            sum += static_cast<double>(w.inverse[i * w.n + j]) * w.grad[j];
        w.delta[i] = static_cast<float>(sum);
        w.trial[i] = w.cur[i] - w.delta[i];
    }
    return allFinite(w.jac, static_cast<long>(w.m) * w.n) && allFinite(w.jtj, w.n * w.n) &&
           allFinite(w.grad, w.n) && allFinite(w.inverse, w.n * w.n) && allFinite(w.trial, w.n);
}

void writeCovariance(NllsWork& w, float* covariance) {
    if (!covariance || w.n < 1) return;
    if (matInv64(w.jtj, covariance, w.n) == 0 && allFinite(covariance, w.n * w.n)) return;
    for (int i = 0; i < w.n * w.n; i++) covariance[i] = 0.0f;
}

}  // namespace

double residualRms(const float* f, int m) {
    if (m < 1) return 0.0;
    double sum = 0.0;
    for (int i = 0; i < m; i++) sum += static_cast<double>(f[i]) * f[i];
    return std::sqrt(sum / m);
}

int nlls(NlsResidualFn fn, int m, int n, const float* x, const float* min, const float* max,
         const float* step, const float* scale, int convergeCount, int maxIter, float* residuals,
         float* covariance, float* solution, double tolerance1, double tolerance2) {
    NllsWork w;
    if (!w.allocate(m, n)) return kNllsNoMemory;
    nllsPrepare(w, x, min, max, step, scale);
    double curRms = evaluate(fn, w, w.cur, w.fCur);
    double bestRms = curRms, reference = curRms;
    copy(w.best, w.cur, n);
    copy(w.fBest, w.fCur, m);
    float damping = kStartDamping;
    int status = kNllsMaxIter, count = 0;
    for (int iter = 0; n > 0 && iter < maxIter && count < convergeCount; iter++) {
        nllsDelta(fn, w, &bestRms);
        nllsJTJ(w);
        nllsGrad(w);
        nllsDiag(w, damping);
        bool restart = !nllsUpdate(w);
        if (restart) {
            nllsReset(w);
            reference = bestRms;
        }
        for (int i = 0; i < n; i++) w.trial[i] = clampTo(w.trial[i], w.lo[i], w.hi[i]);
        double trialRms = evaluate(fn, w, w.trial, w.fTrial);
        double decrease = curRms - trialRms;
        if (trialRms > curRms && !restart) {
            damping *= 2.0f;
        } else {
            copy(w.cur, w.trial, n);
            copy(w.fCur, w.fTrial, m);
            curRms = trialRms;
            damping *= 0.5f;
        }
        if (trialRms < bestRms) {
            bestRms = trialRms;
            copy(w.best, w.trial, n);
            copy(w.fBest, w.fTrial, m);
        }
        if (decrease < tolerance1) {
            count++;
            status = kNllsAbsolute;
        } else if (reference != 0.0 && decrease / reference < tolerance2) {
            count++;
            status = kNllsRelative;
        }
    }
    if (n > 0 && count < convergeCount) status = kNllsMaxIter;
    copy(solution, w.best, n);
    copy(residuals, w.fBest, m);
    writeCovariance(w, covariance);
    w.release();
    return n > 0 ? status : kNllsAbsolute;
}
