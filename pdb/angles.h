// Angles between points, in degrees: the bend at a middle point and the
// dihedral of four points. Each returns 0 when the angle is defined, or 1
// when the geometry leaves it undefined (coincident or collinear points);
// the angle is then still set, to 0 or 180 by the direction of the vectors.
// Points are 3 packed coordinates.
#pragma once

// Vectors whose length product is below this count as degenerate.
constexpr double kDegenerateLengthProduct = 1.0e-4;

// The angle at b between b->a and b->c.
int get3DAngle(const float* a, const float* b, const float* c, float* angle);
int get3DAngleD(const double* a, const double* b, const double* c, double* angle);

// The dihedral p1-p2-p3-p4, from -180 to 180.
int getDihedralAngle(const float* p1, const float* p2, const float* p3, const float* p4,
                     float* angle);
int getDihedralAngleD(const double* p1, const double* p2, const double* p3, const double* p4,
                      double* angle);
