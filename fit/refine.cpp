#include "fit/refine.h"

#include <cmath>
#include <cstdio>

#include "dc/dtab.h"
#include "fit/fit_params.h"
#include "fit/fit_state.h"
#include "fit/start_points.h"
#include "fit/tensor_couplings.h"
#include "fit/tensor_rotation.h"
#include "util/alloc.h"

namespace {

constexpr const char* kTag = "align";

// Each medium's couplings are put on the scale of the first one's.
float mediumScale(float reference, const DTensor& t) {
    if (t.obsRms == 0.0f) return 1.0f;
    return (reference == 0.0f ? 1.0f : reference) / t.obsRms;
}

void keepFittedRotations() {
    for (int t = 0; DTab* dTab = fitTable(t); t++) {
        DTensor& d = dTab->tensor;
        d.rxSolutions[0] = d.rx;
        d.rySolutions[0] = d.ry;
        d.rzSolutions[0] = d.rz;
        d.solutionCount = 1;
    }
}

}  // namespace

int fitDCTarget(int m, int n, float* x, float* residuals) {
    FitState& s = fitState();
    s.dRMS = 0.0f;
    restoreFitCoords();
    float reference = fitTable(0)->tensor.obsRms;
    int index = 0, k = 0;
    for (int t = 0; DTab* dTab = fitTable(t); t++) {
        s.dTab = dTab;
        index = extractTensor(t, &dTab->tensor, x, index);
        applyDCRot(t, &dTab->tensor);
        k = tensor2DC(k, residuals, mediumScale(reference, dTab->tensor));
    }
    s.dTab = fitTable(0);
    for (int i = k; i < m; i++) residuals[i] = 0.0f;
    s.dRMS = k > 0 ? static_cast<float>(std::sqrt(static_cast<double>(s.dRMS) / k)) : 0.0f;
    if (s.verbose > 1) showTensors(k);
    return ++s.evalCount;
}

void showTensors(int n) {
    const FitState& s = fitState();
    for (int t = 0; DTab* dTab = fitTable(t); t++) {
        const DTensor& d = dTab->tensor;
        std::fprintf(stderr,
                     "DC %d Tensor Eval %5d Da: % .4e Dr: % .4e RXYZ: % 8.2f % 8.2f % 8.2f "
                     "N: %d RMS: %8.4f\n",
                     t + 1, s.evalCount + 1, d.da, d.dr, d.rx, d.ry, d.rz, n, s.dRMS);
    }
}

int fitDCAlign2() {
    FitState& s = fitState();
    s.evalCount = 0;
    FitParams params;
    buildFitParams(&params);
    int n = params.n;
    int m = s.dcCount > n ? s.dcCount : n;
    float* covariance = n > 0 ? fltMalloc64(kTag, static_cast<long>(n) * n) : nullptr;
    float* residuals = (n == 0 || covariance) ? fltMalloc64(kTag, m) : nullptr;
    int status = residuals ? runStartPoints(&params, m, residuals, covariance) : 1;
    if (status == 0) keepFittedRotations();
    unAlloc64(kTag, covariance, static_cast<long>(n) * n * 4);
    unAlloc64(kTag, residuals, static_cast<long>(m) * 4);
    return status;
}
