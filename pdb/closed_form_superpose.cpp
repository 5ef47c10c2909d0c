#include "pdb/closed_form_superpose.h"

#include <cmath>

namespace {

// Eigenvector of the largest eigenvalue of the symmetric 4x4 matrix m, by
// cyclic Jacobi rotations.
void largestEigenvector(double m[4][4], double q[4]) {
    double v[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
    for (int sweep = 0; sweep < 50; sweep++) {
        double off = 0;
        for (int p = 0; p < 4; p++)
            for (int r = p + 1; r < 4; r++) off += m[p][r] * m[p][r];
        if (off < 1e-30) break;
        for (int p = 0; p < 4; p++) {
            for (int r = p + 1; r < 4; r++) {
                if (m[p][r] == 0.0) continue;
                double theta = 0.5 * (m[r][r] - m[p][p]) / m[p][r];
                double t =
                    (theta >= 0 ? 1.0 : -1.0) / (std::fabs(theta) + std::sqrt(theta * theta + 1));
                double c = 1 / std::sqrt(t * t + 1), s = t * c;
                for (int k = 0; k < 4; k++) {
                    double a = m[k][p], b = m[k][r];
                    m[k][p] = c * a - s * b;
                    m[k][r] = s * a + c * b;
                }
                for (int k = 0; k < 4; k++) {
                    double a = m[p][k], b = m[r][k];
                    m[p][k] = c * a - s * b;
                    m[r][k] = s * a + c * b;
                }
                for (int k = 0; k < 4; k++) {
                    double a = v[k][p], b = v[k][r];
                    v[k][p] = c * a - s * b;
                    v[k][r] = s * a + c * b;
                }
            }
        }
    }
    int best = 0;
    for (int k = 1; k < 4; k++)
        if (m[k][k] > m[best][best]) best = k;
    for (int k = 0; k < 4; k++) q[k] = v[k][best];
}

void centroid(const float* p, int n, double c[3]) {
    c[0] = c[1] = c[2] = 0;
    for (int i = 0; i < n; i++)
        for (int k = 0; k < 3; k++) c[k] += p[3 * i + k];
    for (int k = 0; k < 3; k++) c[k] /= n;
}

// Angles (degrees) of R = Rz(phi) Ry(theta) Rx(psi).
void rotationAngles(const double r[3][3], float* psi, float* theta, float* phi) {
    constexpr double kDegrees = 180.0 / M_PI;
    double sinTheta = -r[2][0];
    if (sinTheta > 1) sinTheta = 1;
    if (sinTheta < -1) sinTheta = -1;
    double t = std::asin(sinTheta);
    double cosTheta = std::cos(t);
    double x, z;
    if (cosTheta > 1e-6) {
        x = std::atan2(r[2][1], r[2][2]);
        z = std::atan2(r[1][0], r[0][0]);
    } else {  // gimbal lock: only psi - phi or psi + phi is defined
        x = 0;
        z = std::atan2(-r[0][1], r[1][1]);
    }
    *psi = static_cast<float>(x * kDegrees);
    *theta = static_cast<float>(t * kDegrees);
    *phi = static_cast<float>(z * kDegrees);
}

}  // namespace

int closedFormRotation(const float* a, const float* b, int n, float* psi, float* theta,
                       float* phi) {
    *psi = *theta = *phi = 0.0f;
    if (n < 1) return 1;
    double ca[3], cb[3], s[3][3] = {};
    centroid(a, n, ca);
    centroid(b, n, cb);
    for (int i = 0; i < n; i++)
        for (int j = 0; j < 3; j++)
            for (int k = 0; k < 3; k++) s[j][k] += (a[3 * i + j] - ca[j]) * (b[3 * i + k] - cb[k]);
    double m[4][4] = {
        {s[0][0] + s[1][1] + s[2][2], s[1][2] - s[2][1], s[2][0] - s[0][2], s[0][1] - s[1][0]},
        {s[1][2] - s[2][1], s[0][0] - s[1][1] - s[2][2], s[0][1] + s[1][0], s[2][0] + s[0][2]},
        {s[2][0] - s[0][2], s[0][1] + s[1][0], -s[0][0] + s[1][1] - s[2][2], s[1][2] + s[2][1]},
        {s[0][1] - s[1][0], s[2][0] + s[0][2], s[1][2] + s[2][1], -s[0][0] - s[1][1] + s[2][2]}};
    double q[4];
    largestEigenvector(m, q);
    double w = q[0], x = q[1], y = q[2], z = q[3];
    double r[3][3] = {{w * w + x * x - y * y - z * z, 2 * (x * y - w * z), 2 * (x * z + w * y)},
                      {2 * (x * y + w * z), w * w - x * x + y * y - z * z, 2 * (y * z - w * x)},
                      {2 * (x * z - w * y), 2 * (y * z + w * x), w * w - x * x - y * y + z * z}};
    rotationAngles(r, psi, theta, phi);
    return 0;
}
