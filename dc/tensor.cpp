#include "dc/tensor.h"

namespace {

void setRotationDefaults(float* start, float* min, float* max) {
    *start = 45.0f;
    *min = -180.0f;
    *max = 180.0f;
}

void resetOnlyFields(DTensor* t) {
    t->daRef = t->drRef = t->rhRef = 0.0f;
    t->rxRef = t->ryRef = t->rzRef = 0.0f;
    for (float& v : t->refSpare) v = 0.0f;
    t->rxOff = t->ryOff = t->rzOff = 0.0f;
    t->rxAdd = t->ryAdd = t->rzAdd = 0.0f;
    t->obsRms = 0.0f;
    t->fc = 1.0f;
    t->modeWord = 1;
    t->rotref = 0;
}

}  // namespace

int dTensorNull(DTensor* t, int full) {
    if (!t) return 1;
    if (full) resetOnlyFields(t);
    t->da = 1.0e-4f;
    t->daMin = -0.01f;
    t->daMax = 0.01f;
    t->dr = 1.0e-5f;
    t->drMin = -0.01f;
    t->drMax = 0.01f;
    t->rh = 0.1f;
    t->rhMax = kRhombicityMax;
    t->gridStep = 5.0f;
    for (int i = 0; i < kEulerSolutions; i++) {
        t->rxSolutions[i] = t->rySolutions[i] = t->rzSolutions[i] = 0.0f;
    }
    setRotationDefaults(&t->rx, &t->rxMin, &t->rxMax);
    setRotationDefaults(&t->ry, &t->ryMin, &t->ryMax);
    setRotationDefaults(&t->rz, &t->rzMin, &t->rzMax);
    for (int i = 0; i < 5; i++) t->saupe[i] = t->saupeErr[i] = t->saupeGiven[i] = 0.0f;
    for (int i = 0; i < 3; i++) t->principal[i] = t->sortedPrincipal[i] = 0.0f;
    t->euler = 1;
    t->solutionCount = 0;
    t->method = kMethodSVD;
    t->useAuto = 0;
    t->autoLimits = 0;
    t->rhMode = 0;
    t->bestIteration = 0;
    for (int r = 0; r < 4; r++) {
        for (int c = 0; c < 4; c++) t->rotation[r][c] = r == c ? 1.0f : 0.0f;
    }
    return 0;
}
