// Back-calculation of the current table's couplings from its tensor's Da and
// Dr on the working coordinates of the fit (already turned into the tensor's
// frame), with the weighted residuals and the terms of the linear estimates.
#pragma once

// Appends the residuals of the current table's used couplings at
// residuals[k...], each weighted by W times scale, and adds their squares to
// the fit's dRMS sum; returns the new k.
int tensor2DC(int k, float* residuals, float scale);
