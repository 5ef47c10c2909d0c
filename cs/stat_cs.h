// How well the predicted shifts of the used rows agree with the observed.
#pragma once

#include "cs/cs_tab.h"

// Over the used rows with an observed and a predicted shift: the RMS of
// obs - pred, chi-square with each row's sigma (1.0 when absent or 0) and
// the same with each term weighted by W. With clip c not 0 each difference
// is first held within c times the bound of the row's surface (its sigma
// without one). count is the number of rows summed; the return value the
// number of used rows with an observed shift.
int getStatCS(const CSValue* rows, int n, float* rms, float* chi2, float* wchi2, int* count,
              float clip);
