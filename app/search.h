// The homology search: slides the table's residue segment along every
// structure of a list, fits at each offset and reports every fit and each
// file's best offset.
#pragma once

#include "app/settings.h"

struct CSTab;
struct DTab;

// Returns the status of the last structure read (0 when it was read), or
// the status of reading the reference or the list when that failed.
int searchDC(DTab* dTab, CSTab* cs, const RunSettings* settings);
