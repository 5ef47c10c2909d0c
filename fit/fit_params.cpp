#include "fit/fit_params.h"

#include <cmath>

#include "dc/dtab.h"

namespace {

constexpr float kRotationStep = 0.01f;
constexpr float kMagnitudeStep = 1.0e-7f;
constexpr float kRhombicityStep = 1.0e-5f;

void append(FitParams* p, int kind, float x, float min, float max, float step) {
    if (!isFreeRange(min, max) || p->n >= kMaxFitParams) return;
    int i = p->n++;
    p->kind[i] = kind;
    // A start outside its limits (an SVD estimate, limits given upside
    // down) is raised to the minimum, then lowered to the maximum.
    if (x < min) x = min;
    if (x > max) x = max;
    p->x[i] = x;
    p->min[i] = min;
    p->max[i] = max;
    p->step[i] = step;
    p->scale[i] = 1.0f;
}

int rotationKind(int tensorIndex) { return kKindRotX + 3 * (tensorIndex < 2 ? tensorIndex : 2); }

// Dr takes the sign of Da (zero counts as positive) and at most two thirds
// of its size, so the rhombicity stays within 0..2/3.
void keepPhysical(DTensor* t) {
    if ((t->da < 0.0f) != (t->dr < 0.0f)) t->dr = -t->dr;
    float cap = 2.0f * t->da / 3.0f;
    if (t->da != 0.0f && std::fabs(t->dr) > std::fabs(cap)) t->dr = cap;
}

// The values each tensor had when the parameter vector was built. A fixed
// parameter is taken from here at every evaluation, so that the sign and
// size rules for Dr never change a value the user fixed.
struct GivenValues {
    float rx, ry, rz, da, dr, rh;
};
GivenValues given[kMaxFitParams];

}  // namespace

void buildFitParams(FitParams* p) {
    p->n = 0;
    for (int t = 0; DTab* dTab = fitTable(t); t++) {
        DTensor& d = dTab->tensor;
        if (t < kMaxFitParams) given[t] = {d.rx, d.ry, d.rz, d.da, d.dr, d.rh};
        d.bestIteration = 0;
        int kind = rotationKind(t);
        append(p, kind, d.rx, d.rxMin, d.rxMax, kRotationStep);
        append(p, kind + 1, d.ry, d.ryMin, d.ryMax, kRotationStep);
        append(p, kind + 2, d.rz, d.rzMin, d.rzMax, kRotationStep);
        append(p, kKindDa, d.da, d.daMin, d.daMax, kMagnitudeStep);
        if (d.rhMode)
            append(p, kKindRh, d.rh, d.rhMin, d.rhMax, kRhombicityStep);
        else
            append(p, kKindDr, d.dr, d.drMin, d.drMax, kMagnitudeStep);
    }
}

int extractTensor(int tensorIndex, DTensor* t, const float* x, int index) {
    const GivenValues& g = given[tensorIndex < kMaxFitParams ? tensorIndex : 0];
    struct Field {
        float* value;
        float min, max, given;
    } fields[5] = {{&t->rx, t->rxMin, t->rxMax, g.rx},
                   {&t->ry, t->ryMin, t->ryMax, g.ry},
                   {&t->rz, t->rzMin, t->rzMax, g.rz},
                   {&t->da, t->daMin, t->daMax, g.da},
                   {&t->dr, t->drMin, t->drMax, g.dr}};
    if (t->rhMode) fields[4] = {&t->rh, t->rhMin, t->rhMax, g.rh};
    for (Field& f : fields) {
        bool free = isFreeRange(f.min, f.max) && index < kMaxFitParams;
        *f.value = free ? x[index++] : f.given;
    }
    if (t->rhMode) t->dr = t->rh * t->da;
    keepPhysical(t);
    return index;
}
