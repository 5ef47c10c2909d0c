#include "pdb/superpose.h"

#include <cmath>
#include <cstdio>

#include "fit/nls_opt.h"
#include "pdb/closed_form_superpose.h"
#include "pdb/transform.h"
#include "util/alloc.h"

namespace {

constexpr const char* kTag = "align";
constexpr float kTranslationLimit = 1.0e6f;
constexpr int kMaxIterations = 1000;
constexpr double kTolerance = 1.0e-8;

struct Limits {
    float min, max;
};

struct AlignState {
    float psi = 0, theta = 0, phi = 0;
    Limits psiRange{-180, 180}, thetaRange{-180, 180}, phiRange{-180, 180};
    float psiStart = 0, thetaStart = 0, phiStart = 0;
    float tx = 0, ty = 0, tz = 0;
    Limits txRange{-kTranslationLimit, kTranslationLimit};
    Limits tyRange{-kTranslationLimit, kTranslationLimit};
    Limits tzRange{-kTranslationLimit, kTranslationLimit};
    int fixedFlag = 0;
    int mapTFlag = 0;
    float aRMS = 0, aMax = 0;
    float* refCoords = nullptr;
    float* targetCoords = nullptr;
    float* workCoords = nullptr;
    float* distances = nullptr;
    int atomCount = 0;
    int capacity = 0;
    int debug = 0;
};

AlignState state;

float clampTo(float value, Limits range) {
    if (value < range.min) value = range.min;
    if (value > range.max) value = range.max;
    return value;
}

bool closed(Limits range) { return range.min == range.max; }

bool allRotationsClosed() {
    return closed(state.psiRange) && closed(state.thetaRange) && closed(state.phiRange);
}

void releaseBlocks(int capacity) {
    long bytes = 3L * capacity * static_cast<long>(sizeof(float));
    unAlloc64(kTag, state.refCoords, bytes);
    unAlloc64(kTag, state.targetCoords, bytes);
    unAlloc64(kTag, state.workCoords, bytes);
    unAlloc64(kTag, state.distances, capacity * static_cast<long>(sizeof(float)));
    state.refCoords = state.targetCoords = state.workCoords = state.distances = nullptr;
}

// Moves the working coordinates by the current translation and measures
// every pair; residuals (when given) receive reference - moved.
void measurePairs(float* residuals) {
    AlignState& s = state;
    double sum = 0;
    s.aMax = 0;
    for (int i = 0; i < s.atomCount; i++) {
        float* w = &s.workCoords[3 * i];
        const float* r = &s.refCoords[3 * i];
        w[0] += s.tx, w[1] += s.ty, w[2] += s.tz;
        float dx = r[0] - w[0], dy = r[1] - w[1], dz = r[2] - w[2];
        if (residuals) residuals[3 * i] = dx, residuals[3 * i + 1] = dy, residuals[3 * i + 2] = dz;
        double d2 = static_cast<double>(dx) * dx + static_cast<double>(dy) * dy +
                    static_cast<double>(dz) * dz;
        sum += d2;
        float d = static_cast<float>(std::sqrt(d2));
        if (d > s.aMax) s.aMax = d;
        if (s.debug > 3)
            std::fprintf(stderr, "%d %8.3f %8.3f %8.3f    %8.3f %8.3f %8.3f\n", 3 * i, r[0], r[1],
                         r[2], w[0], w[1], w[2]);
    }
    s.aRMS = s.atomCount > 0 ? static_cast<float>(std::sqrt(sum / s.atomCount)) : 0.0f;
}

// Rotates a fresh copy of the target by the current angles and centres it.
void placeTarget() {
    AlignState& s = state;
    for (int i = 0; i < 3 * s.atomCount; i++) s.workCoords[i] = s.targetCoords[i];
    if (s.fixedFlag) return;
    pdb3dReset();
    pdb3dAppendRotation0(s.psi, s.theta, s.phi);
    pdb3dCoordTransform(s.workCoords, s.atomCount);
    fitAlignCenter();
}

}  // namespace

void setAlignLimits(int fixed, float tx, float txMin, float txMax, float tyz, float tyzMin,
                    float tyzMax, float psi, float psiMin, float psiMax, float theta,
                    float thetaMin, float thetaMax, float phi, float phiMin, float phiMax) {
    AlignState& s = state;
    s.fixedFlag = fixed;
    if (fixed) {
        s.tx = s.ty = s.tz = 0;
        s.txRange = s.tyRange = s.tzRange = {0, 0};
        s.psiStart = s.thetaStart = s.phiStart = 0;
        s.psiRange = s.thetaRange = s.phiRange = {0, 0};
        return;
    }
    s.tx = tx;
    s.ty = s.tz = tyz;
    s.txRange = {txMin, txMax};
    s.tyRange = s.tzRange = {tyzMin, tyzMax};
    s.psiStart = psi, s.thetaStart = theta, s.phiStart = phi;
    s.psiRange = {psiMin, psiMax};
    s.thetaRange = {thetaMin, thetaMax};
    s.phiRange = {phiMin, phiMax};
}

void fitAlignInit(int debug) {
    AlignState& s = state;
    s.atomCount = 0;
    s.debug = debug;
    s.psi = clampTo(s.psiStart, s.psiRange);
    s.theta = clampTo(s.thetaStart, s.thetaRange);
    s.phi = clampTo(s.phiStart, s.phiRange);
    s.aRMS = s.aMax = 0;
}

int fitAlignAlloc(int n) {
    AlignState& s = state;
    if (n <= s.capacity) return 0;
    releaseBlocks(s.capacity);
    s.capacity = 0;
    s.refCoords = fltMalloc64(kTag, 3L * n);
    s.targetCoords = s.refCoords ? fltMalloc64(kTag, 3L * n) : nullptr;
    s.workCoords = s.targetCoords ? fltMalloc64(kTag, 3L * n) : nullptr;
    s.distances = s.workCoords ? fltMalloc64(kTag, n) : nullptr;
    if (!s.distances) {
        releaseBlocks(n);
        std::fprintf(stderr, "TESSERA Error (Align) allocating workspaces.\n");
        return 1;
    }
    s.capacity = n;
    return 0;
}

int fitAlignFill(const float reference[3], const float target[3]) {
    AlignState& s = state;
    if (s.atomCount >= s.capacity) {
        std::fprintf(stderr, "TESSERA Error (Align) workspace overflow.\n");
        return 1;
    }
    for (int k = 0; k < 3; k++) {
        s.refCoords[3 * s.atomCount + k] = reference[k];
        s.targetCoords[3 * s.atomCount + k] = target[k];
    }
    s.atomCount++;
    return 0;
}

void fitAlignFree() {
    releaseBlocks(state.capacity);
    state.capacity = 0;
    state.atomCount = 0;
}

void fitAlignCenter() {
    AlignState& s = state;
    double sum[3] = {0, 0, 0};
    for (int i = 0; i < s.atomCount; i++)
        for (int k = 0; k < 3; k++) sum[k] += s.refCoords[3 * i + k] - s.workCoords[3 * i + k];
    int n = s.atomCount > 0 ? s.atomCount : 1;
    s.tx = clampTo(static_cast<float>(sum[0] / n), s.txRange);
    s.ty = clampTo(static_cast<float>(sum[1] / n), s.tyRange);
    s.tz = clampTo(static_cast<float>(sum[2] / n), s.tzRange);
}

int fitAlignTarget(int m, int n, float* angles, float* residuals) {
    AlignState& s = state;
    s.psi = angles[0], s.theta = angles[1], s.phi = angles[2];
    placeTarget();
    measurePairs(residuals);
    for (int i = 3 * s.atomCount; residuals && i < m; i++) residuals[i] = 0.0f;
    if (s.debug > 2)
        std::fprintf(stderr, "Rot(%.3f %.3f %.3f) T(%.3f %.3f %.3f) RMS(%d): %.4f\n", s.psi,
                     s.theta, s.phi, s.tx, s.ty, s.tz, 3 * s.atomCount, s.aRMS);
    return 0;
}

void fitAlignStartClosedForm() {
    AlignState& s = state;
    if (s.fixedFlag || s.atomCount < 1) return;
    float psi, theta, phi;
    if (closedFormRotation(s.targetCoords, s.refCoords, s.atomCount, &psi, &theta, &phi) != 0)
        return;
    if (!closed(s.psiRange)) s.psi = clampTo(psi, s.psiRange);
    if (!closed(s.thetaRange)) s.theta = clampTo(theta, s.thetaRange);
    if (!closed(s.phiRange)) s.phi = clampTo(phi, s.phiRange);
}

int fitAlign2() {
    AlignState& s = state;
    int limit = (s.fixedFlag || allRotationsClosed()) ? 0 : kMaxIterations;
    float x[3] = {s.psi, s.theta, s.phi};
    float lower[3] = {s.psiRange.min, s.thetaRange.min, s.phiRange.min};
    float upper[3] = {s.psiRange.max, s.thetaRange.max, s.phiRange.max};
    int m = 3 * s.atomCount, nOut = 0, status = 0;
    float *residuals = nullptr, *inverse = nullptr;
    float* result = nlsOpt(fitAlignTarget, m, 3, x, lower, upper, 0, limit, limit, 0, &residuals,
                           &inverse, &nOut, &status, 0, kTolerance);
    if (!result) fitAlignTarget(m, 3, x, nullptr);  // memory ran out: the start stands
    if (s.mapTFlag) mapAlignDist();
    unAlloc64("nls", result, 3L * sizeof(float));
    unAlloc64("nls", residuals, static_cast<long>(m) * sizeof(float));
    unAlloc64("nls", inverse, 9L * sizeof(float));
    return 0;
}

int fitAlignM() {
    AlignState& s = state;
    for (int i = 0; i < 3 * s.atomCount; i++) s.workCoords[i] = s.targetCoords[i];
    fitAlignCenter();
    double sum = 0;
    long pairs = 0;
    s.aMax = 0;
    auto distance = [](const float* p, int i, int j) {
        double dx = p[3 * i] - p[3 * j], dy = p[3 * i + 1] - p[3 * j + 1],
               dz = p[3 * i + 2] - p[3 * j + 2];
        return std::sqrt(dx * dx + dy * dy + dz * dz);
    };
    for (int i = 0; i < s.atomCount; i++) {
        for (int j = i + 1; j < s.atomCount; j++) {
            double d = distance(s.refCoords, i, j) - distance(s.targetCoords, i, j);
            sum += d * d;
            pairs++;
            if (std::fabs(d) > s.aMax) s.aMax = static_cast<float>(std::fabs(d));
        }
    }
    double n = s.atomCount;
    s.aRMS = s.atomCount > 0 ? static_cast<float>(std::sqrt(sum / (0.25 * n * n))) : 0.0f;
    if (s.debug > 0)
        std::fprintf(stderr, "Sum: %f Atoms: %d Count: %ld\n", sum, s.atomCount, pairs);
    return 0;
}

int fitTranslateCoords(const float* reference, const float* target, int n, float* tx, float* ty,
                       float* tz, float* rms) {
    AlignState& s = state;
    *tx = *ty = *tz = *rms = 0.0f;
    s.tx = s.ty = s.tz = s.aRMS = s.aMax = 0.0f;
    s.atomCount = 0;
    pdb3dReset();
    if (n == 0) return 0;
    if (n < 0 || fitAlignAlloc(n) != 0) {
        std::fprintf(stderr, "TESSERA Error initializing alignment workspaces.\n");
        return 1;
    }
    for (int i = 0; i < n; i++) fitAlignFill(&reference[3 * i], &target[3 * i]);
    for (int i = 0; i < 3 * n; i++) s.workCoords[i] = s.targetCoords[i];
    fitAlignCenter();
    measurePairs(nullptr);
    *tx = s.tx, *ty = s.ty, *tz = s.tz, *rms = s.aRMS;
    return 0;
}

void getCoordRMS(const float* a, const float* b, int n, float* rms) {
    *rms = 0.0f;
    if (n <= 0) return;
    double sum = 0;
    for (int i = 0; i < 3 * n; i++)
        sum += (static_cast<double>(a[i]) - b[i]) * (static_cast<double>(a[i]) - b[i]);
    *rms = static_cast<float>(std::sqrt(sum / n));
}

void mapAlignDist() {
    AlignState& s = state;
    placeTarget();
    measurePairs(nullptr);
    for (int i = 0; i < s.atomCount; i++) {
        const float *r = &s.refCoords[3 * i], *w = &s.workCoords[3 * i];
        double dx = r[0] - w[0], dy = r[1] - w[1], dz = r[2] - w[2];
        s.distances[i] = static_cast<float>(std::sqrt(dx * dx + dy * dy + dz * dz));
    }
}

AlignResult alignResult() {
    const AlignState& s = state;
    return {s.psi, s.theta, s.phi, s.tx, s.ty, s.tz, s.aRMS, s.aMax, s.atomCount};
}

float alignDistance(int i) {
    return i >= 0 && i < state.atomCount && state.distances ? state.distances[i] : 0.0f;
}

void setAlignMapFlag(int on) { state.mapTFlag = on; }
