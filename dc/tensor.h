// The alignment tensor record: every setting and result of one tensor fit.
#pragma once

// Tensor methods.
enum DTensorMethod {
    kMethodSVD = 1,
    kMethodSaupe = 2,
    kMethodFit = 3,
    kMethodGrid = 4,
    kMethodFixed = 5,
};

constexpr int kEulerSolutions = 8;
constexpr float kRhombicityMax = 0.6666667f;

struct DTensor {
    float daRef, drRef, rhRef;
    float rxRef, ryRef, rzRef;
    float refSpare[3];
    float rxOff, ryOff, rzOff;
    float rxAdd, ryAdd, rzAdd;
    float da, daMin, daMax;
    float dr, drMin, drMax;
    float rh, rhMin, rhMax;
    float gridStep;
    // Each rotation: the angle of Euler solutions 1..8 (the first is the
    // reported one), then the start value and limits.
    float rxSolutions[kEulerSolutions], rx, rxMin, rxMax;
    float rySolutions[kEulerSolutions], ry, ryMin, ryMax;
    float rzSolutions[kEulerSolutions], rz, rzMin, rzMax;
    // Fitted order-matrix coefficients c1..c5, their standard errors, and the
    // five Saupe values given on the command line (-saupe, -align).
    float saupe[5];
    float saupeErr[5];
    float saupeGiven[5];
    float principal[3];
    float sortedPrincipal[3];
    float obsRms;  // RMS of the observed couplings, set when a table is read
    float fc;
    int euler;
    int solutionCount;
    int method;
    int rotref;
    int useAuto;
    int autoLimits;
    int rhMode;
    int modeWord;
    int bestIteration;  // best iteration of the last nonlinear fit
    float rotation[4][4];
};

// Defaults of every setting; with full nonzero also the references, offsets,
// additional rotations, force constant, mode word and rotref.
int dTensorNull(DTensor* tensor, int full);
