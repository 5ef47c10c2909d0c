// Writing the shift table after prediction: statistics and the sequence as
// header lines, then one row per used row, with or without the observed
// values and the ring-current column, optionally with the canonical shifts
// of each row's surface at the helix, sheet and coil conformations.
#pragma once

#include "cs/cs_tab.h"

// Writes to path, or standard output for an empty or null path or when the
// file cannot be opened (after "TESSERA Error opening output file %s\n").
// remark, when given and not empty, is written as a REMARK line. Returns 0.
int writeCS(const char* path, const CSTab* table, const char* remark, int canonical, int observed);
