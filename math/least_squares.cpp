#include "math/least_squares.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "math/nr_alloc.h"
#include "math/svd.h"
#include "util/alloc.h"

namespace {

const char kTag[] = "svd";
// Singular values below this fraction of the largest are treated as zero.
constexpr float kRelativeThreshold = 1e-6f;

struct LeastSquaresWork {
    bool built = false;
    int lastM = 0;
    int lastOrder = 0;
    bool decomposed = false;
    float** u = nullptr;  // m x n design, overwritten by the left singular vectors
    // n x max(m, n): the right singular vectors fill the first n columns; the
    // width never drops below n, so a design with fewer rows than unknowns fits.
    float** v = nullptr;
    float* b = nullptr;  // m, right-hand side
    float* w = nullptr;  // n, singular values
    float* c = nullptr;  // n, solution before it is copied out 0-based
    float* p = nullptr;  // n + m, scratch of the decomposition and solution
};

// Row-major copy made by svdLSMatTP; grows, never shrinks. It is kept apart
// from the solver arrays, which may be rebuilt while the copy is in use.
struct TransposedCopy {
    float* data = nullptr;
    int64_t count = 0;
};

LeastSquaresWork work;
TransposedCopy transposed;
float lastMaxW = 0.0f;

int unknowns() { return work.lastOrder + 1; }
int vColumns() { return std::max(work.lastM, unknowns()); }

void freeSolverArrays() {
    int m = work.lastM;
    int n = unknowns();
    free_matrix(work.u, 1, m, 1, n);
    free_matrix(work.v, 1, n, 1, vColumns());
    free_vector(work.b, 1, m);
    free_vector(work.w, 1, n);
    free_vector(work.c, 1, n);
    free_vector(work.p, 1, n + m);
    work = LeastSquaresWork{};
}

// Decomposes the design in u and drops the singular values below the
// relative threshold.
void decomposeDesign() {
    int m = work.lastM;
    int n = unknowns();
    svdcmpUser(work.u, m, n, work.w, work.v, work.p);
    float maxW = 0.0f;
    for (int j = 1; j <= n; j++) maxW = std::max(maxW, std::fabs(work.w[j]));
    lastMaxW = maxW;
    float threshold = kRelativeThreshold * maxW;
    for (int j = 1; j <= n; j++) {
        if (std::fabs(work.w[j]) < threshold) work.w[j] = 0.0f;
    }
    work.decomposed = true;
}

void solveInto(float* x) {
    int n = unknowns();
    svbksbUser(work.u, work.w, work.v, work.lastM, n, work.b, work.c, work.p);
    for (int j = 1; j <= n; j++) x[j - 1] = work.c[j];
}

int solveScaleFactor(const float* a, const float* b, int m, float* x, float* cov) {
    float sumBA = 0.0f;
    float sumAA = 0.0f;
    for (int i = 0; i < m; i++) {
        sumBA += b[i] * a[i];
        sumAA += a[i] * a[i];
    }
    x[0] = sumAA == 0.0f ? 0.0f : sumBA / sumAA;
    if (cov) cov[0] = 1.0f;
    return 0;
}

// Least-squares fit of ys by order + 1 basis functions; fillRow writes the
// basis values at one x into a 1-based design row.
template <class FillRow>
int fitCurve(const float* xs, const float* ys, int m, int order, float* coefficients,
             const char* badArguments, FillRow fillRow) {
    if (!xs || !ys || !coefficients || m < 0 || order < 0) {
        nrerror(badArguments);
        return 1;
    }
    if (svdPolyInit(m, order)) return 1;
    int n = order + 1;
    for (int i = 1; i <= m; i++) {
        fillRow(work.u[i], n, xs[i - 1]);
        work.b[i] = ys[i - 1];
    }
    decomposeDesign();
    solveInto(coefficients);
    return 0;
}

}  // namespace

int svdPolyInit(int m, int order) {
    if (m < 0 || order < 0) {
        nrerror("bad size in svdPolyInit()\n");
        return 1;
    }
    if (work.built && work.lastM == m && work.lastOrder == order) return 0;
    freeSolverArrays();
    work.lastM = m;
    work.lastOrder = order;
    int n = order + 1;
    work.u = matrix(1, m, 1, n);
    work.v = matrix(1, n, 1, vColumns());
    work.b = vector(1, m);
    work.w = vector(1, n);
    work.c = vector(1, n);
    work.p = vector(1, n + m);
    if (!work.u || !work.v || !work.b || !work.w || !work.c || !work.p) {
        freeSolverArrays();
        return 1;
    }
    work.built = true;
    return 0;
}

void svdPolyFree() {
    freeSolverArrays();
    unAlloc64(kTag, transposed.data, transposed.count * 4);
    transposed = TransposedCopy{};
    lastMaxW = 0.0f;
}

float getSvdMaxW() { return lastMaxW; }

int svdLSMat(const float* a, const float* b, int m, int n, float* x, float* cov, int decompose) {
    if (!a || !b || !x || m < 0 || n < 1) {
        nrerror("bad arguments in svdLSMat()\n");
        return 1;
    }
    if (n == 1) return solveScaleFactor(a, b, m, x, cov);
    if (svdPolyInit(m, n - 1)) return 1;
    for (int i = 1; i <= m; i++) work.b[i] = b[i - 1];
    // A fresh workspace holds no decomposition to reuse.
    if (decompose || !work.decomposed) {
        for (int i = 1; i <= m; i++) {
            for (int j = 1; j <= n; j++) work.u[i][j] = a[(i - 1) * n + (j - 1)];
        }
        decomposeDesign();
    }
    svdvarUser(work.v, n, work.w, work.p, cov);
    solveInto(x);
    return 0;
}

int svdLSMatTP(const float* a, const float* b, int m, int n, float* x, float* cov, int decompose) {
    if (!a || m < 0 || n < 1) return svdLSMat(a, b, m, n, x, cov, decompose);
    int64_t count = static_cast<int64_t>(m) * n;
    if (count > transposed.count || !transposed.data) {
        unAlloc64(kTag, transposed.data, transposed.count * 4);
        transposed = TransposedCopy{};
        transposed.data = fltMalloc64(kTag, count);
        if (!transposed.data) return 1;
        transposed.count = count;
    }
    for (int i = 0; i < m; i++) {
        for (int j = 0; j < n; j++) transposed.data[i * n + j] = a[j * m + i];
    }
    return svdLSMat(transposed.data, b, m, n, x, cov, decompose);
}

int svdPoly(const float* xs, const float* ys, int m, int order, float* coefficients) {
    return fitCurve(xs, ys, m, order, coefficients, "bad arguments in svdPoly()\n",
                    [](float* row, int n, float x) {
                        float power = 1.0f;
                        for (int j = 1; j <= n; j++) {
                            row[j] = power;
                            power *= x;
                        }
                    });
}

int svdFunc(const float* xs, const float* ys, int m, int termsMinusOne, float* coefficients,
            float (*basis)(int j, float x)) {
    if (!basis) {
        nrerror("bad arguments in svdFunc()\n");
        return 1;
    }
    return fitCurve(xs, ys, m, termsMinusOne, coefficients, "bad arguments in svdFunc()\n",
                    [basis](float* row, int n, float x) {
                        for (int j = 1; j <= n; j++) row[j] = basis(j, x);
                    });
}
