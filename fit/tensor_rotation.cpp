#include "fit/tensor_rotation.h"

#include "dc/dtab.h"
#include "fit/fit_state.h"
#include "pdb/transform.h"

namespace {

bool anyNonZero(float x, float y, float z) { return x != 0.0f || y != 0.0f || z != 0.0f; }

// Transforms the working coordinates and keeps the matrix with the tensor.
void finishRotation(DTensor* tensor) {
    FitState& s = fitState();
    pdb3dCoordTransform(s.wCoords, s.coordCount);
    pdb3dCopyCurrentMatrix(&tensor->rotation[0][0]);
}

}  // namespace

void applyDCCurRot(const DTensor* t) { pdb3dAppendRotation0(t->rx, t->ry, t->rz); }

void applyDCAddRot(const DTensor* t) { pdb3dAppendRotation0(t->rxAdd, t->ryAdd, t->rzAdd); }

void applyDCOffRot(const DTensor* t) { pdb3dAppendRotation0(t->rxOff, t->ryOff, t->rzOff); }

void applyDCRefRot(DTensor* t) {
    const DTensor& first = fitTable(0)->tensor;
    t->refSpare[0] = first.rxRef;
    t->refSpare[1] = first.ryRef;
    t->refSpare[2] = first.rzRef;
    applyDCCurRot(&first);
    pdb3dAppendZRotation0(-first.rzRef);
    pdb3dAppendYRotation0(-first.ryRef);
    pdb3dAppendXRotation0(-first.rxRef);
    pdb3dAppendRotation0(t->rxRef, t->ryRef, t->rzRef);
}

void applyDCRot(int tensorIndex, DTensor* t) {
    restoreFitCoords();
    pdb3dReset();
    if (anyNonZero(t->rxOff, t->ryOff, t->rzOff)) applyDCOffRot(t);
    if (fitState().dTabList && tensorIndex > 0 && t->rotref) applyDCRefRot(t);
    if (anyNonZero(t->rx, t->ry, t->rz)) applyDCCurRot(t);
    if (anyNonZero(t->rxAdd, t->ryAdd, t->rzAdd)) applyDCAddRot(t);
    finishRotation(t);
}

void applyDCZXYRot(int tensorIndex, DTensor* t, float x, float y, float z) {
    restoreFitCoords();
    pdb3dReset();
    pdb3dAppendZRotation0(z);
    pdb3dAppendXRotation0(x);
    pdb3dAppendYRotation0(y);
    finishRotation(t);
}
