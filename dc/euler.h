// The principal frame of the alignment tensor: principal values, Da and Dr,
// the rotation from structure coordinates onto the tensor frame and every
// set of Euler angles reproducing it; and the way back from Da, Dr and three
// rotations to the five order-matrix coefficients.
//
// Angles follow R = Rz(phi) Ry(theta) Rx(psi), in degrees; R maps structure
// coordinates onto the tensor frame.
#pragma once

constexpr int kMaxEulerSolutions = 8;

// Returns the number of Euler solutions, 0 when the eigen solver fails.
int saupe2euler(const float c[5], float psi[8], float theta[8], float phi[8], float principal[3],
                float sortedPrincipal[3], float rotation[4][4], float* da, float* dr);
// Cyclic Jacobi on a symmetric 3x3: eigenvalues and eigenvectors (columns).
// Returns 0, or 1 after 50 sweeps without convergence.
int diag3By3(const float matrix[3][3], float values[3], float vectors[3][3]);
// Sorts ascending by magnitude keeping a proper rotation, then transposes.
void eigsrt3By3NegRevTP(float values[3], float vectors[3][3]);
// Sorts largest magnitude first (ties: the later index wins).
void eigsrt3By3(float values[3], float vectors[3][3]);

// Every Euler solution of R (upper 3x3 used), in (-180, 180], smallest
// psi^2 + theta^2 + phi^2 first; returns the count.
int rot2euler(const float r[4][4], float psi[8], float theta[8], float phi[8]);
// One solution, in degrees; returns 1.
int rot2euler1(const float r[4][4], float* psi, float* theta, float* phi);
// 1 when the angles (radians) reproduce R within 0.0005.
int eulerTest(const float r[4][4], float psi, float theta, float phi);

// The coefficients of the tensor with Da, Dr, rotated by (psi, theta, phi)
// and then by (psi2, theta2, phi2).
void euler2saupe2(float c[5], float psi, float theta, float phi, float psi2, float theta2,
                  float phi2, float da, float dr);
void euler2saupe(float c[5], float, float, float, float, float, float psi, float theta, float phi,
                 float da, float dr);
// Normalised inner product of two order matrices.
void getSaupeAngle(const float c1[5], const float c2[5], float* cosine);
// The Euler solutions of rotation 1 followed by rotation 2.
int euler2euler(float psi[8], float theta[8], float phi[8], float psi1, float theta1, float phi1,
                float psi2, float theta2, float phi2);

// The symmetric order matrix of the five coefficients.
void saupeMatrix(const float c[5], float s[3][3]);
