#include "fit/grid_search.h"

#include <cmath>
#include <cstdio>

#include "dc/dtab.h"
#include "dc/euler.h"
#include "fit/fit_params.h"
#include "fit/fit_state.h"
#include "fit/linear_estimates.h"
#include "fit/tensor_couplings.h"
#include "fit/tensor_rotation.h"
#include "pdb/matrix4.h"

namespace {

struct GridPoint {
    float z = 0.0f, x = 0.0f, y = 0.0f;
    float rms = 0.0f;
    float da = 0.0f, dr = 0.0f;
    bool found = false;
};

// Back-calculates the current table with scale 1; returns the coupling count.
int evaluateTable() {
    FitState& s = fitState();
    s.dRMS = 0.0f;
    return tensor2DC(0, s.dResidual, 1.0f);
}

void estimateMagnitudes(DTensor* t, int n) {
    bool daOpen = isFreeRange(t->daMin, t->daMax);
    bool secondOpen = t->rhMode ? isFreeRange(t->rhMin, t->rhMax) : isFreeRange(t->drMin, t->drMax);
    if (daOpen && secondOpen)
        findDaDrLin(t, n);
    else if (daOpen)
        findDaLin(t, n);
    else if (t->rhMode)
        findRhLin(t, n);
    else
        findDrLin(t, n);
}

bool magnitudesOpen(const DTensor& t) {
    return isFreeRange(t.daMin, t.daMax) ||
           (t.rhMode ? isFreeRange(t.rhMin, t.rhMax) : isFreeRange(t.drMin, t.drMax));
}

float rmsOf(int n) {
    const FitState& s = fitState();
    return n > 0 ? static_cast<float>(std::sqrt(static_cast<double>(s.dRMS) / n)) : 0.0f;
}

// The RMS at one orientation, with the magnitudes estimated first when open.
float evaluatePoint(int t, DTensor* d, float z, float x, float y) {
    applyDCZXYRot(t, d, x, y, z);
    if (magnitudesOpen(*d)) estimateMagnitudes(d, evaluateTable());
    return rmsOf(evaluateTable());
}

void keepIfBetter(GridPoint* best, const DTensor& d, float z, float x, float y, float rms) {
    if (!best->found) {
        // The first point records its Da as the best Dr as well.
        *best = {z, x, y, rms, d.da, d.da, true};
    } else if (rms < best->rms) {
        *best = {z, x, y, rms, d.da, d.dr, true};
    }
}

int gridCount(float range, float step) { return static_cast<int>(1.0f + range / step); }

float gridSpacing(float range, int count) { return count > 1 ? range / (count - 1) : 0.0f; }

GridPoint scan(int t, DTensor* d) {
    const FitState& s = fitState();
    float step = d->gridStep > 0.0f ? d->gridStep : 1.0f;
    int nZ = gridCount(360.0f, step), nX = gridCount(360.0f, step);
    float dZ = gridSpacing(360.0f, nZ), dX = gridSpacing(360.0f, nX);
    GridPoint best;
    int points = 0;
    for (int iz = 0; iz < nZ; iz++) {
        float z = -180.0f + iz * dZ;
        for (int ix = 0; ix < nX; ix++) {
            float x = -180.0f + ix * dX;
            // The Y sampling thins towards X = +-90 and stops beyond.
            int nY = static_cast<int>(1.0 + std::cos(degreesToRadians(x)) * 180.0 / step);
            float dY = gridSpacing(180.0f, nY);
            for (int iy = 0; iy < nY; iy++) {
                float y = iy * dY;
                float rms = evaluatePoint(t, d, z, x, y);
                keepIfBetter(&best, *d, z, x, y, rms);
                points++;
                if (s.verbose > 1)
                    std::fprintf(stderr,
                                 "DC %d Grid ZXY Search %5d.  %2d %2d %2d.   %5.1f %5.1f %5.1f  "
                                 "% .3e % .3e   %8.3f\n",
                                 t + 1, points, iz, ix, iy, z, x, y, d->da, d->dr, rms);
            }
        }
    }
    return best;
}

// Takes the best point's values and turns the molecule there for the last
// back-calculation; without any point the tensor keeps its own values.
void settle(int t, DTensor* d, const GridPoint& best) {
    if (!best.found) {
        applyDCRot(t, d);
        evaluateTable();
        return;
    }
    if (isFreeRange(d->daMin, d->daMax)) d->da = best.da;
    if (isFreeRange(d->drMin, d->drMax)) d->dr = best.dr;
    applyDCZXYRot(t, d, best.x, best.y, best.z);
    evaluateTable();
    float psi[kMaxEulerSolutions], theta[kMaxEulerSolutions], phi[kMaxEulerSolutions];
    if (rot2euler(d->rotation, psi, theta, phi) > 0) {
        d->rx = psi[0];
        d->ry = theta[0];
        d->rz = phi[0];
    } else {
        d->rx = d->ry = d->rz = 0.0f;
    }
}

}  // namespace

int searchDCAlign() {
    FitState& s = fitState();
    for (int t = 0; DTab* dTab = fitTable(t); t++) {
        s.dTab = dTab;
        DTensor* d = &dTab->tensor;
        GridPoint best = scan(t, d);
        settle(t, d, best);
        if (s.verbose > 1)
            std::fprintf(stderr,
                         "DC %d Grid Search Best:  ZXY: %5.1f %5.1f %5.1f XYZ: %5.1f %5.1f %5.1f "
                         "RMS: %8.3f\n",
                         t + 1, best.z, best.x, best.y, d->rx, d->ry, d->rz, best.rms);
    }
    s.dTab = fitTable(0);
    return 0;
}
