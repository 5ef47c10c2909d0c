#include "pdb/matrix4.h"

#include <cmath>
#include <cstring>

namespace {

constexpr int kSize = 16;

// The linear part of a single-axis rotation, with cos and sin taken in
// double precision and stored as single.
struct CosSin {
    float c, s;
};

CosSin cosSin(float degrees) {
    double radians = degreesToRadians(degrees);
    return {static_cast<float>(std::cos(radians)), static_cast<float>(std::sin(radians))};
}

}  // namespace

double degreesToRadians(double degrees) { return degrees * kTruncatedPi / 180.0; }

void m4x4Copy(float* destination, const float* source) {
    std::memmove(destination, source, kSize * sizeof(float));
}

void m4x4CopyFrom3x3(float* destination, const float* source3x3) {
    for (int row = 0; row < 3; row++) {
        for (int col = 0; col < 3; col++) destination[4 * row + col] = source3x3[3 * row + col];
    }
}

void m3x3CopyFrom4x4(float* destination3x3, const float* source) {
    for (int row = 0; row < 3; row++) {
        for (int col = 0; col < 3; col++) destination3x3[3 * row + col] = source[4 * row + col];
    }
}

void m4x4SetZero(float* m) {
    for (int i = 0; i < kSize; i++) m[i] = 0.0f;
}

void m4x4SetIdentity(float* m) {
    m4x4SetZero(m);
    m[0] = m[5] = m[10] = m[15] = 1.0f;
}

void m4x4Transpose(float* m) {
    for (int row = 0; row < 4; row++) {
        for (int col = row + 1; col < 4; col++) {
            float upper = m[4 * row + col];
            m[4 * row + col] = m[4 * col + row];
            m[4 * col + row] = upper;
        }
    }
}

void m4x4Mult(const float* a, float* m) {
    float product[kSize];
    for (int row = 0; row < 4; row++) {
        for (int col = 0; col < 4; col++) {
            float sum = 0.0f;
            for (int k = 0; k < 4; k++) sum += a[4 * row + k] * m[4 * k + col];
            product[4 * row + col] = sum;
        }
    }
    m4x4Copy(m, product);
}

void m4x4SetTranslation(float* m, float tx, float ty, float tz) {
    m4x4SetIdentity(m);
    m[3] = tx;
    m[7] = ty;
    m[11] = tz;
}

void m4x4SetXRotation(float* m, float degrees) {
    CosSin r = cosSin(degrees);
    m4x4SetIdentity(m);
    m[5] = r.c;
    m[6] = -r.s;
    m[9] = r.s;
    m[10] = r.c;
}

void m4x4SetYRotation(float* m, float degrees) {
    CosSin r = cosSin(degrees);
    m4x4SetIdentity(m);
    m[0] = r.c;
    m[2] = r.s;
    m[8] = -r.s;
    m[10] = r.c;
}

void m4x4SetZRotation(float* m, float degrees) {
    CosSin r = cosSin(degrees);
    m4x4SetIdentity(m);
    m[0] = r.c;
    m[1] = -r.s;
    m[4] = r.s;
    m[5] = r.c;
}

void m4x4AppendTranslation(float* m, float tx, float ty, float tz) {
    float t[kSize];
    m4x4SetTranslation(t, tx, ty, tz);
    m4x4Mult(t, m);
}

void m4x4AppendRotation(float* m, float x, float y, float z) {
    float r[kSize];
    m4x4SetXRotation(r, x);
    m4x4Mult(r, m);
    m4x4SetYRotation(r, y);
    m4x4Mult(r, m);
    m4x4SetZRotation(r, z);
    m4x4Mult(r, m);
}

void m4x4TransformPoint(const float* m, float* x, float* y, float* z) {
    float px = *x, py = *y, pz = *z;
    *x = m[0] * px + m[1] * py + m[2] * pz + m[3];
    *y = m[4] * px + m[5] * py + m[6] * pz + m[7];
    *z = m[8] * px + m[9] * py + m[10] * pz + m[11];
}
