#include "cs/surface.h"

namespace {

// The cell of an angle along one axis: the integer part of its scaled
// distance from the axis start, clamped to the grid. The clamp is done
// before the conversion, so an angle far outside the range (or a NaN) can
// never overflow the integer.
int cellOf(float angle, float low, float high, int n) {
    float t = static_cast<float>(n) / (high - low) * (angle - low);
    if (!(t >= 1.0f)) return 0;  // below the second cell, or NaN
    if (t >= static_cast<float>(n)) return n - 1;
    return static_cast<int>(t);
}

}  // namespace

void getSurfVal(const Surface* surface, float* value, float* density, float* dev, float phi,
                float psi) {
    if (!surface || surface->nx <= 0 || surface->ny <= 0) return;
    int ix = cellOf(phi, surface->xmin, surface->xmax, surface->nx);
    int iy = cellOf(psi, surface->ymin, surface->ymax, surface->ny);
    long cell = static_cast<long>(iy) * surface->nx + ix;
    if (surface->value && value) *value = surface->value[cell];
    if (surface->density && density) *density = surface->density[cell];
    if (surface->dev && dev) *dev = surface->dev[cell];
}
