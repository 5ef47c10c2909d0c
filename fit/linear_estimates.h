// Closed-form tensor magnitudes at a fixed orientation: linear least squares
// of the model dTerm ~ Da daTerm + Dr drTerm over the terms the last
// back-calculation left for couplings 0..n-1. Each writes its estimate into
// the tensor, clamped to the tensor's limits, and returns 0.
#pragma once

struct DTensor;

// Da alone (in Rh mode with Dr following Da through the rhombicity).
int findDaLin(DTensor* tensor, int n);
int findDrLin(DTensor* tensor, int n);
int findRhLin(DTensor* tensor, int n);
// Da and Dr together by SVD (Rh from their ratio in Rh mode).
int findDaDrLin(DTensor* tensor, int n);
