#include "pdb/angles.h"

#include <cmath>

#include "pdb/matrix4.h"

namespace {

// Single-precision vectors use single-precision products and sums, with
// square roots and inverse cosines in double; the double variants use double
// throughout. Real is the type of the stored values.
template <class Real>
struct Vec {
    Real x, y, z;
};

template <class Real>
Vec<Real> difference(const Real* to, const Real* from) {
    return {to[0] - from[0], to[1] - from[1], to[2] - from[2]};
}

template <class Real>
Real dot(const Vec<Real>& a, const Vec<Real>& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

template <class Real>
Vec<Real> cross(const Vec<Real>& a, const Vec<Real>& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

template <class Real>
Real length(const Vec<Real>& a) {
    return static_cast<Real>(std::sqrt(static_cast<double>(dot(a, a))));
}

// The angle between two vectors; 0 or 180 by the sign of their dot product
// when their length product is too small to divide by.
template <class Real>
int vectorAngle(const Vec<Real>& a, const Vec<Real>& b, Real* angle) {
    Real product = length(a) * length(b);
    Real cosine = dot(a, b);
    if (std::fabs(static_cast<double>(product)) < kDegenerateLengthProduct) {
        *angle = cosine < 0 ? Real(180) : Real(0);
        return 1;
    }
    cosine /= product;
    if (cosine > Real(1)) cosine = Real(1);
    if (cosine < Real(-1)) cosine = Real(-1);
    *angle = static_cast<Real>(std::acos(static_cast<double>(cosine)) * kRadiansToDegrees);
    return 0;
}

template <class Real>
bool sameStrictSign(Real a, Real b) {
    return (a > 0 && b > 0) || (a < 0 && b < 0);
}

template <class Real>
int angle3D(const Real* a, const Real* b, const Real* c, Real* angle) {
    return vectorAngle(difference(a, b), difference(c, b), angle);
}

template <class Real>
int dihedral(const Real* p1, const Real* p2, const Real* p3, const Real* p4, Real* angle) {
    Vec<Real> b1 = difference(p2, p1);
    Vec<Real> b2 = difference(p3, p2);
    Vec<Real> b3 = difference(p4, p3);
    Vec<Real> q1 = cross(b1, b2);
    Vec<Real> q2 = cross(b2, b3);
    if (vectorAngle(q1, q2, angle) != 0) return 1;
    // q1 x q2 lies along b2; the angle is positive when, on some axis, both
    // have the same strict sign. A planar trans arrangement (q1 x q2 = 0)
    // therefore comes out as -180.
    Vec<Real> m = cross(q1, q2);
    bool positive =
        sameStrictSign(m.x, b2.x) || sameStrictSign(m.y, b2.y) || sameStrictSign(m.z, b2.z);
    if (!positive) *angle = -*angle;
    return 0;
}

}  // namespace

int get3DAngle(const float* a, const float* b, const float* c, float* angle) {
    return angle3D(a, b, c, angle);
}

int get3DAngleD(const double* a, const double* b, const double* c, double* angle) {
    return angle3D(a, b, c, angle);
}

int getDihedralAngle(const float* p1, const float* p2, const float* p3, const float* p4,
                     float* angle) {
    return dihedral(p1, p2, p3, p4, angle);
}

int getDihedralAngleD(const double* p1, const double* p2, const double* p3, const double* p4,
                      double* angle) {
    return dihedral(p1, p2, p3, p4, angle);
}
