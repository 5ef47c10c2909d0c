// Starting values of the nonlinear fit from the order-matrix solution by
// SVD, for every tensor that asks for them (-auto).
#pragma once

// Returns 0 always; a failed estimate warns and leaves that tensor as it was.
int estDCAlign();
