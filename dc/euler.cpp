#include "dc/euler.h"

#include <cmath>
#include <utility>

#include "pdb/transform.h"

namespace {

constexpr double kPi = 3.14159265;
constexpr double kDegrees = 57.29577957855229;
constexpr float kGimbal = 0.99999f;
constexpr float kSmallCos = 0.005f;
constexpr float kGimbalTheta1 = 1.5663242f;
constexpr float kGimbalTheta2Low = 1.5752684f;
constexpr float kGimbalTheta2High = 4.7079167f;
constexpr int kMaxSweeps = 50;

float clampUnit(float value) {
    if (value > kGimbal) return kGimbal;
    if (value < -kGimbal) return -kGimbal;
    return value;
}

float fasin(float value) { return static_cast<float>(std::asin(static_cast<double>(value))); }
float facos(float value) { return static_cast<float>(std::acos(static_cast<double>(value))); }
float fcos(float value) { return static_cast<float>(std::cos(static_cast<double>(value))); }
float fsin(float value) { return static_cast<float>(std::sin(static_cast<double>(value))); }
float fsqrt(float value) { return static_cast<float>(std::sqrt(static_cast<double>(value))); }

struct Solutions {
    float* psi;
    float* theta;
    float* phi;
    int count = 0;

    void add(float p, float t, float f) {
        if (count >= kMaxEulerSolutions) return;
        psi[count] = p;
        theta[count] = t;
        phi[count] = f;
        count++;
    }
};

// The single solution when cos(theta) is too small to divide by.
void addGimbal(Solutions* out, const float r[4][4], float theta, bool positivePsi) {
    float psi = facos(clampUnit(r[0][2]));
    out->add(positivePsi ? psi : -psi, theta, 0.0f);
}

// The four candidate (psi, phi) pairs for one theta, kept when they pass.
void addCandidates(Solutions* out, const float r[4][4], float theta) {
    float cosTheta = fcos(theta);
    float psiA = fasin(clampUnit(r[2][1] / cosTheta));
    float psiB = static_cast<float>(kPi - psiA);
    float phiA = fasin(clampUnit(r[1][0] / cosTheta));
    float phiB = static_cast<float>(kPi - phiA);
    const float pairs[4][2] = {{psiA, phiA}, {psiB, phiA}, {psiA, phiB}, {psiB, phiB}};
    for (const auto& pair : pairs) {
        if (eulerTest(r, pair[0], theta, pair[1])) out->add(pair[0], theta, pair[1]);
    }
}

void addForTheta(Solutions* out, const float r[4][4], float theta, bool positivePsi) {
    if (std::fabs(fcos(theta)) > kSmallCos) {
        addCandidates(out, r, theta);
    } else {
        addGimbal(out, r, theta, positivePsi);
    }
}

float wrapDegrees(float degrees) {
    while (degrees > 180.0f) degrees -= 360.0f;
    while (degrees <= -180.0f) degrees += 360.0f;
    return degrees;
}

float norm(const Solutions& s, int i) {
    return s.psi[i] * s.psi[i] + s.theta[i] * s.theta[i] + s.phi[i] * s.phi[i];
}

void swapSolutions(Solutions* s, int i, int j) {
    std::swap(s->psi[i], s->psi[j]);
    std::swap(s->theta[i], s->theta[j]);
    std::swap(s->phi[i], s->phi[j]);
}

void jacobiRotate(float a[3][3], int i, int j, int k, int l, float s, float tau) {
    float g = a[i][j], h = a[k][l];
    a[i][j] = g - s * (h + g * tau);
    a[k][l] = h + s * (g - h * tau);
}

// One Jacobi rotation annihilating a[p][q].
void annihilate(float a[3][3], float v[3][3], float d[3], float z[3], int p, int q, float g) {
    float h = d[q] - d[p];
    float t;
    if (std::fabs(h) + g == std::fabs(h)) {
        t = a[p][q] / h;
    } else {
        float theta = 0.5f * h / a[p][q];
        t = 1.0f / (std::fabs(theta) + fsqrt(1.0f + theta * theta));
        if (theta < 0.0f) t = -t;
    }
    float c = 1.0f / fsqrt(1.0f + t * t);
    float s = t * c;
    float tau = s / (1.0f + c);
    h = t * a[p][q];
    z[p] -= h;
    z[q] += h;
    d[p] -= h;
    d[q] += h;
    a[p][q] = 0.0f;
    for (int j = 0; j < p; j++) jacobiRotate(a, j, p, j, q, s, tau);
    for (int j = p + 1; j < q; j++) jacobiRotate(a, p, j, j, q, s, tau);
    for (int j = q + 1; j < 3; j++) jacobiRotate(a, p, j, q, j, s, tau);
    for (int j = 0; j < 3; j++) jacobiRotate(v, j, p, j, q, s, tau);
}

void swapColumns(float v[3][3], int i, int j, bool negateIntoI) {
    for (int k = 0; k < 3; k++) {
        float intoI = v[k][j], intoJ = v[k][i];
        v[k][i] = negateIntoI ? -intoI : intoI;
        v[k][j] = intoJ;
    }
}

void rotationFromTransform(float r[3][3], float psi, float theta, float phi, float psi2,
                           float theta2, float phi2) {
    pdb3dReset();
    pdb3dAppendRotation0(psi, theta, phi);
    if (psi2 != 0.0f || theta2 != 0.0f || phi2 != 0.0f) pdb3dAppendRotation0(psi2, theta2, phi2);
    const float* m = pdb3dGetCurrentMatrix();
    for (int i = 0; i < 3; i++) {
        for (int j = 0; j < 3; j++) r[i][j] = m[4 * i + j];
    }
}

float innerProduct(const float a[3][3], const float b[3][3]) {
    float sum = 0.0f;
    for (int i = 0; i < 3; i++) {
        for (int j = 0; j < 3; j++) sum += a[i][j] * b[i][j];
    }
    return sum;
}

}  // namespace

void saupeMatrix(const float c[5], float s[3][3]) {
    s[0][0] = -0.5f * (c[0] - c[1]);
    s[1][1] = -0.5f * (c[0] + c[1]);
    s[2][2] = c[0];
    s[0][1] = s[1][0] = c[2];
    s[0][2] = s[2][0] = c[3];
    s[1][2] = s[2][1] = c[4];
}

int diag3By3(const float matrix[3][3], float values[3], float vectors[3][3]) {
    float a[3][3], b[3], z[3];
    for (int i = 0; i < 3; i++) {
        for (int j = 0; j < 3; j++) {
            a[i][j] = matrix[i][j];
            vectors[i][j] = i == j ? 1.0f : 0.0f;
        }
        b[i] = values[i] = a[i][i];
        z[i] = 0.0f;
    }
    for (int sweep = 1; sweep <= kMaxSweeps; sweep++) {
        float sm = std::fabs(a[0][1]) + std::fabs(a[0][2]) + std::fabs(a[1][2]);
        if (sm == 0.0f) return 0;
        float threshold = sweep < 4 ? 0.2f * sm / 9.0f : 0.0f;
        for (int p = 0; p < 2; p++) {
            for (int q = p + 1; q < 3; q++) {
                float g = 100.0f * std::fabs(a[p][q]);
                if (sweep > 4 && std::fabs(values[p]) + g == std::fabs(values[p]) &&
                    std::fabs(values[q]) + g == std::fabs(values[q])) {
                    a[p][q] = 0.0f;
                } else if (std::fabs(a[p][q]) > threshold) {
                    annihilate(a, vectors, values, z, p, q, g);
                }
            }
        }
        for (int i = 0; i < 3; i++) {
            b[i] += z[i];
            values[i] = b[i];
            z[i] = 0.0f;
        }
    }
    return 1;
}

void eigsrt3By3NegRevTP(float values[3], float vectors[3][3]) {
    for (int i = 0; i < 2; i++) {
        for (int j = i + 1; j < 3; j++) {
            if (std::fabs(values[i]) < std::fabs(values[j])) continue;
            std::swap(values[i], values[j]);
            // The column moving forward changes sign so the matrix stays a
            // proper rotation.
            swapColumns(vectors, i, j, true);
        }
    }
    for (int i = 0; i < 3; i++) {
        for (int j = i + 1; j < 3; j++) std::swap(vectors[i][j], vectors[j][i]);
    }
}

void eigsrt3By3(float values[3], float vectors[3][3]) {
    for (int i = 0; i < 2; i++) {
        int k = i;
        for (int j = i + 1; j < 3; j++) {
            if (std::fabs(values[j]) >= std::fabs(values[k])) k = j;
        }
        if (k == i) continue;
        std::swap(values[i], values[k]);
        swapColumns(vectors, i, k, false);
    }
}

int eulerTest(const float r[4][4], float psi, float theta, float phi) {
    float cp = fcos(psi), sp = fsin(psi);
    float ct = fcos(theta), st = fsin(theta);
    float cf = fcos(phi), sf = fsin(phi);
    const float expected[6] = {ct * cf,
                               cf * st * sp - sf * cp,
                               cf * st * cp + sf * sp,
                               sf * st * sp + cf * cp,
                               sf * st * cp - cf * sp,
                               ct * cp};
    const float given[6] = {r[0][0], r[0][1], r[0][2], r[1][1], r[1][2], r[2][2]};
    for (int i = 0; i < 6; i++) {
        if (std::fabs(expected[i] - given[i]) > 0.0005f) return 0;
    }
    return 1;
}

int rot2euler1(const float r[4][4], float* psi, float* theta, float* phi) {
    float t = -fasin(clampUnit(r[2][0]));
    if (r[2][0] < -kGimbal) t = kGimbalTheta1;
    if (r[2][0] > kGimbal) t = -kGimbalTheta1;
    float ct = fcos(t);
    double p, f;
    if (std::fabs(ct) > kSmallCos) {
        p = std::atan2(-r[2][1] / ct, r[2][2] / ct);
        f = std::atan2(r[1][0] / ct, r[0][0] / ct);
    } else {
        p = 0.0;
        f = -std::atan2(r[0][1], r[1][1]);
    }
    *psi = static_cast<float>(p * kDegrees);
    *theta = static_cast<float>(t * kDegrees);
    *phi = static_cast<float>(f * kDegrees);
    return 1;
}

int rot2euler(const float r[4][4], float psi[8], float theta[8], float phi[8]) {
    for (int i = 0; i < kMaxEulerSolutions; i++) psi[i] = theta[i] = phi[i] = 0.0f;
    Solutions out{psi, theta, phi};
    float s = r[2][0];
    if (s < -kGimbal) {
        out.add(facos(clampUnit(r[0][2])), kGimbalTheta1, 0.0f);
        addGimbal(&out, r, kGimbalTheta2Low, kGimbalTheta2Low > 0.0f);
    } else if (s > kGimbal) {
        out.add(-facos(clampUnit(r[0][2])), -kGimbalTheta1, 0.0f);
        addGimbal(&out, r, kGimbalTheta2High, kGimbalTheta2High > 0.0f);
    } else {
        float theta1 = -fasin(s);
        float theta2 = static_cast<float>(kPi - theta1);
        addForTheta(&out, r, theta1, fasin(s) < 0.0f);
        addForTheta(&out, r, theta2, theta2 > 0.0f);
    }
    if (out.count == 0) {
        rot2euler1(r, psi, theta, phi);
        out.count = 1;
    } else {
        for (int i = 0; i < out.count; i++) {
            psi[i] = static_cast<float>(psi[i] * kDegrees);
            theta[i] = static_cast<float>(theta[i] * kDegrees);
            phi[i] = static_cast<float>(phi[i] * kDegrees);
        }
    }
    for (int i = 0; i < out.count; i++) {
        psi[i] = wrapDegrees(psi[i]);
        theta[i] = wrapDegrees(theta[i]);
        phi[i] = wrapDegrees(phi[i]);
    }
    for (int i = 0; i < out.count; i++) {
        for (int j = i + 1; j < out.count; j++) {
            if (norm(out, j) < norm(out, i)) swapSolutions(&out, i, j);
        }
    }
    return out.count;
}

int saupe2euler(const float c[5], float psi[8], float theta[8], float phi[8], float principal[3],
                float sortedPrincipal[3], float rotation[4][4], float* da, float* dr) {
    for (int i = 0; i < kMaxEulerSolutions; i++) psi[i] = theta[i] = phi[i] = 0.0f;
    *da = *dr = 0.0f;
    float s[3][3], values[3], vectors[3][3];
    saupeMatrix(c, s);
    if (diag3By3(s, values, vectors) != 0) return 0;
    float local[4][4] = {{0}};
    for (int i = 0; i < 3; i++) {
        principal[i] = values[i];
        for (int j = 0; j < 3; j++) rotation[i][j] = vectors[i][j];
    }
    float sorted[3][3];
    for (int i = 0; i < 3; i++) {
        for (int j = 0; j < 3; j++) sorted[i][j] = vectors[i][j];
    }
    eigsrt3By3NegRevTP(values, sorted);
    for (int i = 0; i < 3; i++) {
        sortedPrincipal[i] = values[i];
        for (int j = 0; j < 3; j++) local[i][j] = sorted[i][j];
    }
    local[3][3] = 1.0f;
    *da = (values[2] - (values[0] + values[1]) / 2.0f) / 3.0f;
    *dr = (values[0] - values[1]) / 3.0f;
    return rot2euler(local, psi, theta, phi);
}

void euler2saupe2(float c[5], float psi, float theta, float phi, float psi2, float theta2,
                  float phi2, float da, float dr) {
    const float d[3] = {-da + 1.5f * dr, -da - 1.5f * dr, 2.0f * da};
    float r[3][3];
    rotationFromTransform(r, psi, theta, phi, psi2, theta2, phi2);
    float s[3][3];
    for (int i = 0; i < 3; i++) {
        for (int j = 0; j < 3; j++) {
            float sum = 0.0f;
            for (int k = 0; k < 3; k++) sum += r[k][i] * d[k] * r[k][j];
            s[i][j] = sum;
        }
    }
    c[0] = s[2][2];
    c[1] = s[0][0] - s[1][1];
    c[2] = s[0][1];
    c[3] = s[0][2];
    c[4] = s[1][2];
}

void euler2saupe(float c[5], float, float, float, float, float, float psi, float theta, float phi,
                 float da, float dr) {
    euler2saupe2(c, psi, theta, phi, 0.0f, 0.0f, 0.0f, da, dr);
}

void getSaupeAngle(const float c1[5], const float c2[5], float* cosine) {
    float a[3][3], b[3][3];
    saupeMatrix(c1, a);
    saupeMatrix(c2, b);
    float ab = innerProduct(a, b);
    *cosine = ab;
    float norms = innerProduct(a, a) * innerProduct(b, b);
    if (norms == 0.0f) return;
    *cosine = ab / fsqrt(norms);
}

int euler2euler(float psi[8], float theta[8], float phi[8], float psi1, float theta1, float phi1,
                float psi2, float theta2, float phi2) {
    pdb3dReset();
    pdb3dAppendRotation0(psi1, theta1, phi1);
    pdb3dAppendRotation0(psi2, theta2, phi2);
    const float* m = pdb3dGetCurrentMatrix();
    float r[4][4];
    for (int i = 0; i < 4; i++) {
        for (int j = 0; j < 4; j++) r[i][j] = m[4 * i + j];
    }
    return rot2euler(r, psi, theta, phi);
}
