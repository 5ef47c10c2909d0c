#include "pdb/measure_atoms.h"

#include <cmath>

#include "pdb/angles.h"

namespace {

struct Point {
    float xyz[3];
    explicit Point(const PDBAtom* atom) : xyz{atom->x, atom->y, atom->z} {}
};

}  // namespace

float pdbDist(const PDBAtom* a, const PDBAtom* b) {
    if (!a || !b) return 0.0f;
    float dx = a->x - b->x, dy = a->y - b->y, dz = a->z - b->z;
    return static_cast<float>(std::sqrt(static_cast<double>(dx * dx + dy * dy + dz * dz)));
}

float pdbAngle(const PDBAtom* a, const PDBAtom* b, const PDBAtom* c) {
    if (!a || !b || !c) return kAngleUndefined;
    float angle = kAngleUndefined;
    atomAngle(a, b, c, &angle);
    return angle;
}

float pdbDihedral(const PDBAtom* a, const PDBAtom* b, const PDBAtom* c, const PDBAtom* d) {
    if (!a || !b || !c || !d) return kAngleUndefined;
    float angle = kAngleUndefined;
    atomDihedral(a, b, c, d, &angle);
    return angle;
}

int atomAngle(const PDBAtom* a, const PDBAtom* b, const PDBAtom* c, float* angle) {
    return get3DAngle(Point(a).xyz, Point(b).xyz, Point(c).xyz, angle);
}

int atomDihedral(const PDBAtom* a, const PDBAtom* b, const PDBAtom* c, const PDBAtom* d,
                 float* angle) {
    return getDihedralAngle(Point(a).xyz, Point(b).xyz, Point(c).xyz, Point(d).xyz, angle);
}
