#include "fit/initial_estimate.h"

#include <cstdio>

#include "dc/dtab.h"
#include "dc/euler.h"
#include "dc/order_matrix.h"
#include "fit/fit_params.h"
#include "fit/fit_state.h"

namespace {

struct SvdTensor {
    float da, dr, rh;
    float psi[kMaxEulerSolutions], theta[kMaxEulerSolutions], phi[kMaxEulerSolutions];
};

// Da, Dr and the Euler angles of the table's order matrix; false when the
// order matrix or its principal frame cannot be found.
bool svdTensor(DTab* dTab, SvdTensor* out) {
    if (dcWorkAlloc(dTab, dTab->pdbCount) != 0) return false;
    int used, vectors;
    initDCSaupe(dTab, &used, &vectors);
    float c[5], cErr[5], principal[3], sorted[3], rotation[4][4];
    if (findS(dTab, c, cErr, used) != 0) return false;
    int solutions = saupe2euler(c, out->psi, out->theta, out->phi, principal, sorted, rotation,
                                &out->da, &out->dr);
    if (solutions <= 0) return false;
    out->rh = out->da == 0.0f ? 0.0f : out->dr / out->da;
    return true;
}

// Auto limits: [0, 5 Da] or [5 Da, 0], at least 0.01 wide, within [-1, 1].
void setAutoLimits(DTensor* t, float da) {
    if (da > 0.0f) {
        t->daMin = 0.0f;
        t->daMax = 5.0f * da < 0.01f ? 0.01f : 5.0f * da;
    } else if (da < 0.0f) {
        t->daMin = 5.0f * da > -0.01f ? -0.01f : 5.0f * da;
        t->daMax = 0.0f;
    }
    if (t->daMin < -1.0f) t->daMin = -1.0f;
    if (t->daMax > 1.0f) t->daMax = 1.0f;
}

void applyEstimate(DTensor* t, const SvdTensor& e) {
    if (isFreeRange(t->daMin, t->daMax)) t->da = e.da;
    if (t->autoLimits) setAutoLimits(t, e.da);
    if (t->rhMode) {
        if (isFreeRange(t->rhMin, t->rhMax)) t->rh = e.rh;
    } else if (isFreeRange(t->drMin, t->drMax)) {
        t->dr = e.dr;
    }
    if (isFreeRange(t->rxMin, t->rxMax)) t->rx = e.psi[0];
    if (isFreeRange(t->ryMin, t->ryMax)) t->ry = e.theta[0];
    if (isFreeRange(t->rzMin, t->rzMax)) t->rz = e.phi[0];
}

}  // namespace

int estDCAlign() {
    for (int t = 0; DTab* dTab = fitTable(t); t++) {
        DTensor& tensor = dTab->tensor;
        if (!tensor.useAuto) continue;
        SvdTensor estimate;
        if (!svdTensor(dTab, &estimate)) {
            std::fprintf(stderr, "DC Warning: SVD Tensor estimate failed.\n");
            continue;
        }
        applyEstimate(&tensor, estimate);
        if (fitState().verbose > 1)
            std::fprintf(stderr, "Tensor %d Auto-Initialization: % 8.2f % 8.2f % 8.2f\n", t + 1,
                         tensor.rx, tensor.ry, tensor.rz);
    }
    return 0;
}
