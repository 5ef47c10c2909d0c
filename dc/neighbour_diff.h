// Differences between neighbouring couplings, for the statistics of
// differences: within runs of consecutive usable rows of one bond type, each
// row's difference to the previous row (observed and calculated).
#pragma once

#include "dc/dtab.h"

// Rows outside the usable set get 9999 in both difference fields. A run
// closed by a change of bond type has its first row replaced by first minus
// last; the table's last run is left open.
void findDDC(DCValue* couplings, int count);
