// Plain 4x4 homogeneous transformation matrices: 16 floats, row-major, the
// linear part in rows 0-2 / columns 0-2, the translation in column 3 and
// (0, 0, 0, 1) as the last row. Appending a transform pre-multiplies, so
// transforms act on points in the order in which they were appended.
#pragma once

// Angles are in degrees. The conversion deliberately uses pi cut to
// 3.14159265, so that rotations match the values stored in earlier results.
constexpr double kTruncatedPi = 3.14159265;
constexpr double kRadiansToDegrees = 57.29577957855229;

double degreesToRadians(double degrees);

void m4x4Copy(float* destination, const float* source);
// The 3x3 matrix (row by row) into the linear part; the rest is untouched.
void m4x4CopyFrom3x3(float* destination, const float* source3x3);
// The linear part out, 9 values row by row.
void m3x3CopyFrom4x4(float* destination3x3, const float* source);
void m4x4SetZero(float* m);
void m4x4SetIdentity(float* m);
// Transposes m in place.
void m4x4Transpose(float* m);
// m := a * m.
void m4x4Mult(const float* a, float* m);

// Single transforms, each a complete matrix.
void m4x4SetTranslation(float* m, float tx, float ty, float tz);
void m4x4SetXRotation(float* m, float degrees);
void m4x4SetYRotation(float* m, float degrees);
void m4x4SetZRotation(float* m, float degrees);

// m := T * m.
void m4x4AppendTranslation(float* m, float tx, float ty, float tz);
// Appends the rotation about X by x, then about Y by y, then about Z by z:
// m := Rz * Ry * Rx * m.
void m4x4AppendRotation(float* m, float x, float y, float z);

// Maps one point: (m0 x + m1 y + m2 z + m3, m4 x + ..., m8 x + ...).
void m4x4TransformPoint(const float* m, float* x, float* y, float* z);
