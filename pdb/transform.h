// The process-wide current transformation matrix: callers reset it, append
// rotations, translations and scalings (each pre-multiplies, so they act in
// the order appended), then apply it to a structure's atoms, to packed
// x,y,z triples or to one point. Angles are in degrees.
#pragma once

#include "pdb/pdb_types.h"

// The current matrix itself (16 floats, row-major).
float* pdb3dGetCurrentMatrix();
void pdb3dReset();
// Resets to the identity on the first call since start (returns 1); later
// calls do nothing and return 0.
int pdb3dResetFirst();
// Back to the start-up state: identity, and the first-call flag set again.
void pdb3dResetState();

void pdb3dCopyCurrentMatrix(float* destination);
void pdb3dGet4x4(float* destination);
// The linear part, 9 values row by row.
void pdb3dGet3x3(float* destination);
// The four rows on standard error, between empty lines.
void pdb3dShow();

// current := a * current.
void pdb3dAppendTransform(const float* a);
void pdb3dAppendTranslation(float tx, float ty, float tz);
// Scaling by (sx, sy, sz) about the centre (cx, cy, cz).
void pdb3dAppendScale(float sx, float sy, float sz, float cx, float cy, float cz);

// Rotations about one axis through the origin.
void pdb3dAppendXRotation0(float degrees);
void pdb3dAppendYRotation0(float degrees);
void pdb3dAppendZRotation0(float degrees);
// About X by x, then about Y by y, then about Z by z.
void pdb3dAppendRotation0(float x, float y, float z);

// Rotations about one axis through the centre (cx, cy, cz).
void pdb3dAppendXRotation1(float cx, float cy, float cz, float degrees);
void pdb3dAppendYRotation1(float cx, float cy, float cz, float degrees);
void pdb3dAppendZRotation1(float cx, float cy, float cz, float degrees);
// About the centre (cx, cy, cz): about Y by a, then about X by b.
void pdb3dAppendRotation1(float cx, float cy, float cz, float a, float b);
// Rotation by the angle about the axis through the point (px, py, pz) with
// direction (ux, uy, uz), right-handed. Returns 1, or 0 (matrix unchanged)
// for a zero-length direction.
int pdb3dAppendRotation2(float px, float py, float pz, float ux, float uy, float uz, float degrees);

// Applies the current matrix to n packed x,y,z triples in place; returns n,
// or 0 (nothing done) for a null array or n < 1.
int pdb3dCoordTransform(float* xyz, int n);
// Adds (tx, ty, tz) to n packed triples; returns n, or 0 as above.
int pdb3dCoordTranslation(float* xyz, int n, float tx, float ty, float tz);
void pdb3dXYZTransform(float* x, float* y, float* z);

// Moves the atoms whose selection mark lies in [low, high] with the current
// matrix; returns how many were moved.
int pdb3dApplyTransform(PDBData* pdb, int low, int high);
// Translates the atoms whose selection mark lies in [low, high] and returns
// how many were moved; a zero translation touches nothing and returns the
// structure's atom count.
int pdb3dApplyTranslation(PDBData* pdb, int low, int high, float tx, float ty, float tz);
