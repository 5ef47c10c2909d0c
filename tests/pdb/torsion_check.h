// Independent double-precision geometry for checking measured angles: the
// atan2 form of the dihedral (IUPAC sign) and the plain bend angle.
#pragma once

#include <cmath>

#include "pdb/pdb_types.h"

namespace torsion_check {

constexpr double kDegrees = 57.29577951308232;

struct V3 {
    double x, y, z;
};

inline V3 operator-(V3 a, V3 b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline V3 operator+(V3 a, V3 b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline V3 operator*(double s, V3 a) {
    return {s * a.x, s * a.y, s * a.z};
}
inline double dot(V3 a, V3 b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline V3 cross(V3 a, V3 b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline V3 at(const PDBAtom* a) {
    return {a->x, a->y, a->z};
}

inline double torsion(V3 p1, V3 p2, V3 p3, V3 p4) {
    V3 b1 = p2 - p1, b2 = p3 - p2, b3 = p4 - p3;
    double y = std::sqrt(dot(b2, b2)) * dot(b1, cross(b2, b3));
    return std::atan2(y, dot(cross(b1, b2), cross(b2, b3))) * kDegrees;
}

inline double torsion(const PDBAtom* a, const PDBAtom* b, const PDBAtom* c, const PDBAtom* d) {
    return torsion(at(a), at(b), at(c), at(d));
}

inline double bend(V3 a, V3 b, V3 c) {
    V3 u = a - b, w = c - b;
    return std::acos(dot(u, w) / std::sqrt(dot(u, u) * dot(w, w))) * kDegrees;
}

}  // namespace torsion_check
