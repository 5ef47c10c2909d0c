// The simulation run: one structure against the coupling (and shift) tables
// already read: select, map, fit, write the back-calculated tables and the
// summary REMARK lines.
#pragma once

#include "app/settings.h"

struct DTab;
struct PDBData;

// Returns the status of reading the structure (0 when it was read); a
// failed fit or write does not change it.
int simDC(DTab* dTab, const RunSettings* settings);
// Writes the back-calculated coupling table and the summary lines. Returns 0.
int reportDC(const char* pdbTitle, const char* dTitle, const PDBData* pdb, const char* dOutName,
             const DTab* dTab, int mirror);
