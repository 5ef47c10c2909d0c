#include "math/svd.h"

#include <cmath>

namespace {

// Absolute limit below which a scale, norm or matrix element counts as zero.
constexpr float kTiny = 1e-22f;
constexpr int kMaxSweeps = 1000;

bool isZero(float value) { return std::fabs(value) <= kTiny; }

float rootD(float value) { return static_cast<float>(std::sqrt(static_cast<double>(value))); }

// sqrt(a^2 + b^2); the double intermediate cannot overflow for float inputs.
float hypotD(float a, float b) {
    double da = a;
    double db = b;
    return static_cast<float>(std::sqrt(da * da + db * db));
}

float withSign(float magnitude, float sign) {
    return sign >= 0.0f ? std::fabs(magnitude) : -std::fabs(magnitude);
}

// Applies the plane rotation (c, s) to columns p and q of rows 1..rows.
void rotateColumns(float** mat, int rows, int p, int q, float c, float s) {
    for (int j = 1; j <= rows; j++) {
        float y = mat[j][p];
        float z = mat[j][q];
        mat[j][p] = y * c + z * s;
        mat[j][q] = z * c - y * s;
    }
}

// Householder reflection zeroing column i below the diagonal; returns the
// new diagonal element.
float reflectColumn(float** a, int m, int n, int i) {
    float scale = 0.0f;
    for (int k = i; k <= m; k++) scale += std::fabs(a[k][i]);
    if (scale <= kTiny) return 0.0f;
    float s = 0.0f;
    for (int k = i; k <= m; k++) {
        a[k][i] /= scale;
        s += a[k][i] * a[k][i];
    }
    float f = a[i][i];
    float g = -withSign(rootD(s), f);
    float h = f * g - s;
    a[i][i] = f - g;
    for (int j = i + 1; j <= n; j++) {
        float sum = 0.0f;
        for (int k = i; k <= m; k++) sum += a[k][i] * a[k][j];
        float factor = sum / h;
        for (int k = i; k <= m; k++) a[k][j] += factor * a[k][i];
    }
    for (int k = i; k <= m; k++) a[k][i] *= scale;
    return scale * g;
}

// Householder reflection zeroing row i right of the superdiagonal; returns
// the new superdiagonal element. rv1[i+1..n] serves as scratch.
float reflectRow(float** a, int m, int n, int i, float* rv1) {
    int l = i + 1;
    float scale = 0.0f;
    for (int k = l; k <= n; k++) scale += std::fabs(a[i][k]);
    if (scale <= kTiny) return 0.0f;
    float s = 0.0f;
    for (int k = l; k <= n; k++) {
        a[i][k] /= scale;
        s += a[i][k] * a[i][k];
    }
    float f = a[i][l];
    float g = -withSign(rootD(s), f);
    float h = f * g - s;
    a[i][l] = f - g;
    for (int k = l; k <= n; k++) rv1[k] = a[i][k] / h;
    for (int j = l; j <= m; j++) {
        float sum = 0.0f;
        for (int k = l; k <= n; k++) sum += a[j][k] * a[i][k];
        for (int k = l; k <= n; k++) a[j][k] += sum * rv1[k];
    }
    for (int k = l; k <= n; k++) a[i][k] *= scale;
    return scale * g;
}

// Reduces a to upper bidiagonal form: diagonal in w, superdiagonal in
// rv1[2..n] (rv1[1] = 0); the reflections stay stored in a.
void bidiagonalise(float** a, int m, int n, float* w, float* rv1) {
    rv1[1] = 0.0f;
    for (int i = 1; i <= n; i++) {
        w[i] = i <= m ? reflectColumn(a, m, n, i) : 0.0f;
        if (i < n) {
            float super = i <= m ? reflectRow(a, m, n, i, rv1) : 0.0f;
            rv1[i + 1] = super;
        }
    }
}

// Builds V from the stored row reflections.
void accumulateRight(float** a, int n, float** v, const float* rv1) {
    float g = 0.0f;
    int l = n + 1;
    for (int i = n; i >= 1; i--) {
        if (i < n) {
            if (!isZero(g)) {
                // Two divisions rather than one avoid a possible underflow.
                for (int j = l; j <= n; j++) v[j][i] = (a[i][j] / a[i][l]) / g;
                for (int j = l; j <= n; j++) {
                    float s = 0.0f;
                    for (int k = l; k <= n; k++) s += a[i][k] * v[k][j];
                    for (int k = l; k <= n; k++) v[k][j] += s * v[k][i];
                }
            }
            for (int j = l; j <= n; j++) v[i][j] = v[j][i] = 0.0f;
        }
        v[i][i] = 1.0f;
        g = rv1[i];
        l = i;
    }
}

// Builds U in place of a from the stored column reflections.
void accumulateLeft(float** a, int m, int n, const float* w) {
    for (int i = m < n ? m : n; i >= 1; i--) {
        int l = i + 1;
        float g = w[i];
        for (int j = l; j <= n; j++) a[i][j] = 0.0f;
        if (!isZero(g)) {
            g = 1.0f / g;
            for (int j = l; j <= n; j++) {
                float s = 0.0f;
                for (int k = l; k <= m; k++) s += a[k][i] * a[k][j];
                float f = (s / a[i][i]) * g;
                for (int k = i; k <= m; k++) a[k][j] += f * a[k][i];
            }
            for (int j = i; j <= m; j++) a[j][i] *= g;
        } else {
            for (int j = i; j <= m; j++) a[j][i] = 0.0f;
        }
        a[i][i] += 1.0f;
    }
}

// Finds the start l of the unreduced block ending at k. Returns true when
// rv1[l] is negligible (the block splits there), false when w[l-1] is
// negligible and rv1[l] still has to be cancelled.
bool findBlock(const float* w, const float* rv1, int k, int* l) {
    for (int i = k; i >= 1; i--) {
        *l = i;
        // rv1[1] is always zero; testing i == 1 also stops the search for
        // non-finite input, where that comparison fails.
        if (i == 1 || std::fabs(rv1[i]) < kTiny) return true;
        if (std::fabs(w[i - 1]) < kTiny) return false;
    }
    return true;
}

// With w[l-1] zero, rotates rv1[l..k] away into rows of U.
void cancelSuperdiagonal(float** a, int m, float* w, float* rv1, int l, int k) {
    int nm = l - 1;
    float c = 0.0f;
    float s = 1.0f;
    for (int i = l; i <= k; i++) {
        float f = s * rv1[i];
        rv1[i] = c * rv1[i];
        if (std::fabs(f) < kTiny) break;
        float g = w[i];
        float h = hypotD(f, g);
        w[i] = h;
        h = 1.0f / h;
        c = g * h;
        s = -f * h;
        rotateColumns(a, m, nm, i, c, s);
    }
}

// One implicit-shift QR sweep over the block l..k, shift taken from the
// trailing 2 x 2 minor.
void qrSweep(float** a, int m, int n, float* w, float** v, float* rv1, int l, int k) {
    float x = w[l];
    int nm = k - 1;
    float y = w[nm];
    float z = w[k];
    float g = rv1[nm];
    float h = rv1[k];
    float f = ((y - z) * (y + z) + (g - h) * (g + h)) / (2.0f * h * y);
    g = hypotD(f, 1.0f);
    f = ((x - z) * (x + z) + h * ((y / (f + withSign(g, f))) - h)) / x;
    float c = 1.0f;
    float s = 1.0f;
    for (int j = l; j <= nm; j++) {
        int i = j + 1;
        g = rv1[i];
        y = w[i];
        h = s * g;
        g = c * g;
        z = hypotD(f, h);
        rv1[j] = z;
        c = f / z;
        s = h / z;
        f = x * c + g * s;
        g = g * c - x * s;
        h = y * s;
        y *= c;
        rotateColumns(v, n, j, i, c, s);
        z = hypotD(f, h);
        w[j] = z;
        if (!isZero(z)) {
            z = 1.0f / z;
            c = f * z;
            s = h * z;
        }
        f = c * g + s * y;
        x = c * y - s * g;
        rotateColumns(a, m, j, i, c, s);
    }
    rv1[l] = 0.0f;
    rv1[k] = f;
    w[k] = x;
}

void diagonalise(float** a, int m, int n, float* w, float** v, float* rv1) {
    for (int k = n; k >= 1; k--) {
        for (int sweep = 1; sweep <= kMaxSweeps; sweep++) {
            int l = k;
            if (!findBlock(w, rv1, k, &l)) cancelSuperdiagonal(a, m, w, rv1, l, k);
            if (l == k) {
                if (w[k] < 0.0f) {
                    w[k] = -w[k];
                    for (int j = 1; j <= n; j++) v[j][k] = -v[j][k];
                }
                break;
            }
            qrSweep(a, m, n, w, v, rv1, l, k);
        }
    }
}

}  // namespace

int svdcmpUser(float** a, int m, int n, float* w, float** v, float* rv1) {
    if (n < 1 || m < 0) return 0;
    bidiagonalise(a, m, n, w, rv1);
    accumulateRight(a, n, v, rv1);
    accumulateLeft(a, m, n, w);
    diagonalise(a, m, n, w, v, rv1);
    return 0;
}

void svbksbUser(float** u, const float* w, float** v, int m, int n, const float* b, float* x,
                float* tmp) {
    for (int j = 1; j <= n; j++) {
        float s = 0.0f;
        if (!isZero(w[j])) {
            for (int i = 1; i <= m; i++) s += u[i][j] * b[i];
            s /= w[j];
        }
        tmp[j] = s;
    }
    for (int j = 1; j <= n; j++) {
        float s = 0.0f;
        for (int k = 1; k <= n; k++) s += v[j][k] * tmp[k];
        x[j] = s;
    }
}

void svdvarUser(float** v, int n, const float* w, float* wti, float* cov) {
    if (!cov) return;
    for (int k = 1; k <= n; k++) wti[k] = isZero(w[k]) ? 0.0f : 1.0f / (w[k] * w[k]);
    for (int i = 1; i <= n; i++) {
        for (int j = 1; j <= i; j++) {
            float sum = 0.0f;
            for (int k = 1; k <= n; k++) sum += v[i][k] * v[j][k] * wti[k];
            cov[(i - 1) * n + (j - 1)] = sum;
            cov[(j - 1) * n + (i - 1)] = sum;
        }
    }
}
