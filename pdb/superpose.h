// Superposition of a target set of coordinates on a reference set of the
// same length, pair by pair: the rotation about X, Y and Z fitted by the
// bounded least-squares solver, the translation in closed form at every
// evaluation as the mean of reference minus rotated target, and the RMS
// deviation. Limits set here stay for every later superposition.
#pragma once

// Translation (x limits given, y and z sharing the second set) and rotation
// starts and bounds; with fixed set, every value and bound becomes 0 and
// nothing is fitted.
void setAlignLimits(int fixed, float tx, float txMin, float txMax, float tyz, float tyzMin,
                    float tyzMax, float psi, float psiMin, float psiMax, float theta,
                    float thetaMin, float thetaMax, float phi, float phiMin, float phiMax);
// Starts a new superposition: no pairs, results cleared, the rotation
// starting at 0 within its bounds. debug above 1 prints the pairing, above
// 2 each evaluation, above 3 each atom.
void fitAlignInit(int debug);
// Room for n pairs; 0, or 1 after a message.
int fitAlignAlloc(int n);
// Appends one pair; 0, or 1 after a message when the room is used up.
int fitAlignFill(const float reference[3], const float target[3]);
void fitAlignFree();

// Translation := mean of reference - working coordinates, each component
// clamped into its bounds.
void fitAlignCenter();
// The solver's residual routine: the three reference - moved differences
// of every pair at the given angles.
int fitAlignTarget(int m, int n, float* angles, float* residuals);
// Fits the rotation from the current start; returns 0.
int fitAlign2();
// Takes the start angles from the closed-form superposition of the pairs
// (rotation ranges that are open only, clamped into their bounds).
void fitAlignStartClosedForm();
// RMS of the differences of the internal distances; returns 0.
int fitAlignM();
// Translation alone; 0, or 1 when the workspace cannot be made.
int fitTranslateCoords(const float* reference, const float* target, int n, float* tx, float* ty,
                       float* tz, float* rms);
// sqrt(sum |a_i - b_i|^2 / n) over n packed triples; 0 for n = 0.
void getCoordRMS(const float* a, const float* b, int n, float* rms);
// Places the target once more at the result and keeps each pair's distance.
void mapAlignDist();

// Results of the last superposition.
struct AlignResult {
    float psi, theta, phi;
    float tx, ty, tz;
    float aRMS, aMax;
    int atomCount;
};
AlignResult alignResult();
// Distance of pair i after mapAlignDist (0 outside the pairs).
float alignDistance(int i);
// Sets or clears the flag that maps the pair distances after each fit.
void setAlignMapFlag(int on);
