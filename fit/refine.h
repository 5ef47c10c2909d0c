// The nonlinear refinement of one or more alignment tensors: Da and Dr (or
// the rhombicity) and three rotations, fitted to the observed couplings by
// the damped least squares of nlls from one or many start points.
#pragma once

// Refines every tensor of the fit; the fitted values end in the tensors.
// 0, or 1 when a workspace cannot be allocated.
int fitDCAlign2();
// The residual routine: writes the parameters into the tensors, turns the
// molecule into each tensor's frame and back-calculates the couplings.
// Residuals past the couplings up to m are 0. Returns the number of
// evaluations so far and sets the fit's dRMS.
int fitDCTarget(int m, int n, float* x, float* residuals);
// The current tensors on standard error (progress output of the fit).
void showTensors(int n);
