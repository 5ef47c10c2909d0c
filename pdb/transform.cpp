#include "pdb/transform.h"

#include <cmath>
#include <cstdio>

#include "pdb/matrix4.h"

namespace {

struct TransformState {
    float current[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    bool firstUse = true;
};

TransformState state;

void appendAboutCentre(float cx, float cy, float cz, const float* rotation) {
    pdb3dAppendTranslation(-cx, -cy, -cz);
    pdb3dAppendTransform(rotation);
    pdb3dAppendTranslation(cx, cy, cz);
}

bool selectedIn(const PDBAtom& atom, int low, int high) {
    return atom.selected >= low && atom.selected <= high;
}

}  // namespace

float* pdb3dGetCurrentMatrix() { return state.current; }

void pdb3dReset() { m4x4SetIdentity(state.current); }

int pdb3dResetFirst() {
    if (!state.firstUse) return 0;
    state.firstUse = false;
    pdb3dReset();
    return 1;
}

void pdb3dResetState() { state = TransformState{}; }

void pdb3dCopyCurrentMatrix(float* destination) { m4x4Copy(destination, state.current); }

void pdb3dGet4x4(float* destination) { m4x4Copy(destination, state.current); }

void pdb3dGet3x3(float* destination) { m3x3CopyFrom4x4(destination, state.current); }

void pdb3dShow() {
    std::fprintf(stderr, "\n");
    for (int row = 0; row < 4; row++) {
        for (int col = 0; col < 4; col++)
            std::fprintf(stderr, " %9.4f", state.current[4 * row + col]);
        std::fprintf(stderr, "\n");
    }
    std::fprintf(stderr, "\n");
}

void pdb3dAppendTransform(const float* a) { m4x4Mult(a, state.current); }

void pdb3dAppendTranslation(float tx, float ty, float tz) {
    m4x4AppendTranslation(state.current, tx, ty, tz);
}

void pdb3dAppendScale(float sx, float sy, float sz, float cx, float cy, float cz) {
    float scale[16];
    m4x4SetIdentity(scale);
    scale[0] = sx;
    scale[5] = sy;
    scale[10] = sz;
    scale[3] = (1.0f - sx) * cx;
    scale[7] = (1.0f - sy) * cy;
    scale[11] = (1.0f - sz) * cz;
    pdb3dAppendTransform(scale);
}

void pdb3dAppendXRotation0(float degrees) {
    float r[16];
    m4x4SetXRotation(r, degrees);
    pdb3dAppendTransform(r);
}

void pdb3dAppendYRotation0(float degrees) {
    float r[16];
    m4x4SetYRotation(r, degrees);
    pdb3dAppendTransform(r);
}

void pdb3dAppendZRotation0(float degrees) {
    float r[16];
    m4x4SetZRotation(r, degrees);
    pdb3dAppendTransform(r);
}

void pdb3dAppendRotation0(float x, float y, float z) { m4x4AppendRotation(state.current, x, y, z); }

void pdb3dAppendXRotation1(float cx, float cy, float cz, float degrees) {
    float r[16];
    m4x4SetXRotation(r, degrees);
    appendAboutCentre(cx, cy, cz, r);
}

void pdb3dAppendYRotation1(float cx, float cy, float cz, float degrees) {
    float r[16];
    m4x4SetYRotation(r, degrees);
    appendAboutCentre(cx, cy, cz, r);
}

void pdb3dAppendZRotation1(float cx, float cy, float cz, float degrees) {
    float r[16];
    m4x4SetZRotation(r, degrees);
    appendAboutCentre(cx, cy, cz, r);
}

void pdb3dAppendRotation1(float cx, float cy, float cz, float a, float b) {
    pdb3dAppendTranslation(-cx, -cy, -cz);
    pdb3dAppendYRotation0(a);
    pdb3dAppendXRotation0(b);
    pdb3dAppendTranslation(cx, cy, cz);
}

int pdb3dAppendRotation2(float px, float py, float pz, float ux, float uy, float uz,
                         float degrees) {
    double length = std::sqrt(static_cast<double>(ux) * ux + static_cast<double>(uy) * uy +
                              static_cast<double>(uz) * uz);
    if (length == 0.0) return 0;
    // Unit quaternion (w, x, y, z) of the rotation: the half angle's cosine
    // and the axis scaled by its sine.
    double half = degrees * kTruncatedPi / 360.0;
    float s = static_cast<float>(std::sin(half));
    float w = static_cast<float>(std::cos(half));
    float x = static_cast<float>(ux / length) * s;
    float y = static_cast<float>(uy / length) * s;
    float z = static_cast<float>(uz / length) * s;
    float r[16];
    m4x4SetIdentity(r);
    r[0] = 1.0f - 2.0f * (y * y + z * z);
    r[1] = 2.0f * (x * y - w * z);
    r[2] = 2.0f * (x * z + w * y);
    r[4] = 2.0f * (x * y + w * z);
    r[5] = 1.0f - 2.0f * (x * x + z * z);
    r[6] = 2.0f * (y * z - w * x);
    r[8] = 2.0f * (x * z - w * y);
    r[9] = 2.0f * (y * z + w * x);
    r[10] = 1.0f - 2.0f * (x * x + y * y);
    appendAboutCentre(px, py, pz, r);
    return 1;
}

int pdb3dCoordTransform(float* xyz, int n) {
    if (!xyz || n < 1) return 0;
    // The twelve values are read once; the loop then streams through the
    // triples, which keeps it at memory speed for large arrays.
    const float* m = state.current;
    const float m0 = m[0], m1 = m[1], m2 = m[2], m3 = m[3];
    const float m4 = m[4], m5 = m[5], m6 = m[6], m7 = m[7];
    const float m8 = m[8], m9 = m[9], m10 = m[10], m11 = m[11];
    float* end = xyz + 3 * static_cast<long>(n);
    for (float* p = xyz; p < end; p += 3) {
        const float x = p[0], y = p[1], z = p[2];
        p[0] = m0 * x + m1 * y + m2 * z + m3;
        p[1] = m4 * x + m5 * y + m6 * z + m7;
        p[2] = m8 * x + m9 * y + m10 * z + m11;
    }
    return n;
}

int pdb3dCoordTranslation(float* xyz, int n, float tx, float ty, float tz) {
    if (!xyz || n < 1) return 0;
    float* end = xyz + 3 * static_cast<long>(n);
    for (float* p = xyz; p < end; p += 3) {
        p[0] += tx;
        p[1] += ty;
        p[2] += tz;
    }
    return n;
}

void pdb3dXYZTransform(float* x, float* y, float* z) { m4x4TransformPoint(state.current, x, y, z); }

int pdb3dApplyTransform(PDBData* pdb, int low, int high) {
    if (!pdb) return 0;
    int moved = 0;
    for (int i = 0; i < pdb->atomCount; i++) {
        PDBAtom& atom = pdb->atoms[i];
        if (!selectedIn(atom, low, high)) continue;
        m4x4TransformPoint(state.current, &atom.x, &atom.y, &atom.z);
        moved++;
    }
    return moved;
}

int pdb3dApplyTranslation(PDBData* pdb, int low, int high, float tx, float ty, float tz) {
    if (!pdb) return 0;
    if (tx == 0.0f && ty == 0.0f && tz == 0.0f) return pdb->atomCount;
    int moved = 0;
    for (int i = 0; i < pdb->atomCount; i++) {
        PDBAtom& atom = pdb->atoms[i];
        if (!selectedIn(atom, low, high)) continue;
        atom.x += tx;
        atom.y += ty;
        atom.z += tz;
        moved++;
    }
    return moved;
}
