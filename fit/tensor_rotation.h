// Turns the working coordinates of the fit into a tensor's principal frame.
// Each call starts from the coordinates as read, so rotations never
// accumulate from one evaluation to the next.
#pragma once

struct DTensor;

// Offset, reference (multi-tensor fits), current and additional rotations,
// in that order; the working coordinates are transformed and the matrix is
// stored in the tensor.
void applyDCRot(int tensorIndex, DTensor* tensor);
// Each appends one of the tensor's rotations to the current matrix.
void applyDCCurRot(const DTensor* tensor);
void applyDCAddRot(const DTensor* tensor);
void applyDCOffRot(const DTensor* tensor);
// The rotation relative to the first tensor's reference frame.
void applyDCRefRot(DTensor* tensor);
// Rotation about Z by z, then about X by x, then about Y by y (the grid
// search's order).
void applyDCZXYRot(int tensorIndex, DTensor* tensor, float x, float y, float z);
