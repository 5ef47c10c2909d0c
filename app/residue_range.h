// Default residue range of a run, derived from the coupling and shift tables.
#pragma once

#include "app/settings.h"

// Fills an unset first/last residue from the tables' ranges (the coupling
// table's, widened by the shift table's when both are named), orders the
// pair, and lets an unset first structure residue follow the first residue.
void applyResidueRangeDefaults(RunSettings* settings, int dFirst, int dLast, int csFirst,
                               int csLast);
