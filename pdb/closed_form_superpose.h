// The rotation that best superimposes one centred point set on another, in
// closed form (Horn's unit quaternion), as rotation angles about X, Y and Z.
#pragma once

// The rotation R = Rz(phi) Ry(theta) Rx(psi) (degrees) that minimises
// sum |(b_i - mean b) - R (a_i - mean a)|^2 over n packed triples: a is
// turned onto b. Returns 0, or 1 for n < 1.
int closedFormRotation(const float* a, const float* b, int n, float* psi, float* theta, float* phi);
