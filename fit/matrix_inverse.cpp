#include "fit/matrix_inverse.h"

#include <cmath>
#include <utility>

#include "util/alloc.h"

namespace {

// Gauss-Jordan on [a | I] held as two n x n blocks; false when singular.
bool eliminate(double* a, double* b, int64_t n) {
    for (int64_t k = 0; k < n; k++) {
        int64_t pivot = k;
        for (int64_t i = k + 1; i < n; i++) {
            if (std::fabs(a[i * n + k]) > std::fabs(a[pivot * n + k])) pivot = i;
        }
        double head = a[pivot * n + k];
        if (head == 0.0 || !std::isfinite(head)) return false;
        for (int64_t j = 0; j < n; j++) {
            std::swap(a[k * n + j], a[pivot * n + j]);
            std::swap(b[k * n + j], b[pivot * n + j]);
        }
        for (int64_t j = 0; j < n; j++) {
            a[k * n + j] /= head;
            b[k * n + j] /= head;
        }
        for (int64_t i = 0; i < n; i++) {
            double factor = a[i * n + k];
            if (i == k || factor == 0.0) continue;
            for (int64_t j = 0; j < n; j++) {
                a[i * n + j] -= factor * a[k * n + j];
                b[i * n + j] -= factor * b[k * n + j];
            }
        }
    }
    return true;
}

}  // namespace

int matInv64(const float* a, float* inverse, int64_t n) {
    if (n < 1) return 0;
    double* work = dFltMalloc64("matInv", 2 * n * n);
    if (!work) return 2;
    double* b = work + n * n;
    for (int64_t i = 0; i < n * n; i++) {
        work[i] = a[i];
        b[i] = 0.0;
    }
    for (int64_t i = 0; i < n; i++) b[i * n + i] = 1.0;
    bool ok = eliminate(work, b, n);
    if (ok) {
        for (int64_t i = 0; i < n * n; i++) inverse[i] = static_cast<float>(b[i]);
    }
    unAlloc64("matInv", work, 2 * n * n * static_cast<int64_t>(sizeof(double)));
    return ok ? 0 : 1;
}
