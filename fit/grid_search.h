// The grid search over orientations (-grid): the molecule is turned through
// a grid of rotations about Z, X and Y; at each orientation Da and Dr (or
// the rhombicity) follow in closed form, and the orientation with the lowest
// RMS is the result.
#pragma once

// Searches every tensor of the fit; the best values end in the tensors and
// the couplings hold their back-calculated values there. Returns 0.
int searchDCAlign();
