// Double-precision reference for the alignment tensor tests: rotations built
// as products of single-axis rotations, and the order-matrix coefficients of
// a tensor given by Da, Dr and a rotation, computed without DC's own code.
#pragma once

#include <array>
#include <cmath>

namespace reference {

using Mat3 = std::array<std::array<double, 3>, 3>;
using Coefficients = std::array<float, 5>;

inline Mat3 multiply(const Mat3& a, const Mat3& b) {
    Mat3 p{};
    for (int i = 0; i < 3; i++)
        for (int j = 0; j < 3; j++)
            for (int k = 0; k < 3; k++) p[i][j] += a[i][k] * b[k][j];
    return p;
}

template <class Matrix>
double determinant(const Matrix& a) {
    return a[0][0] * (a[1][1] * a[2][2] - a[1][2] * a[2][1]) -
           a[0][1] * (a[1][0] * a[2][2] - a[1][2] * a[2][0]) +
           a[0][2] * (a[1][0] * a[2][1] - a[1][1] * a[2][0]);
}

// Rotation about one axis (0 x, 1 y, 2 z) by the given degrees.
inline Mat3 axisRotation(int axis, double degrees) {
    double a = degrees * M_PI / 180.0, c = std::cos(a), s = std::sin(a);
    int i = (axis + 1) % 3, j = (axis + 2) % 3;
    Mat3 r{};
    r[axis][axis] = 1.0;
    r[i][i] = r[j][j] = c;
    r[i][j] = -s;
    r[j][i] = s;
    return r;
}

// Rz(phi) Ry(theta) Rx(psi): structure coordinates onto the tensor frame.
inline Mat3 rotation(double psi, double theta, double phi) {
    return multiply(axisRotation(2, phi), multiply(axisRotation(1, theta), axisRotation(0, psi)));
}

// c1..c5 of S = R^T diag(-Da + 1.5 Dr, -Da - 1.5 Dr, 2 Da) R.
inline Coefficients coefficients(double da, double dr, const Mat3& r) {
    const double d[3] = {-da + 1.5 * dr, -da - 1.5 * dr, 2.0 * da};
    Mat3 s{};
    for (int i = 0; i < 3; i++)
        for (int j = 0; j < 3; j++)
            for (int k = 0; k < 3; k++) s[i][j] += r[k][i] * d[k] * r[k][j];
    return {static_cast<float>(s[2][2]), static_cast<float>(s[0][0] - s[1][1]),
            static_cast<float>(s[0][1]), static_cast<float>(s[0][2]), static_cast<float>(s[1][2])};
}

// The five basis terms of a (unit) vector.
inline std::array<double, 5> basis(double x, double y, double z) {
    return {0.5 * (3 * z * z - 1), 0.5 * (x * x - y * y), 2 * x * y, 2 * x * z, 2 * y * z};
}

}  // namespace reference
