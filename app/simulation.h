// The simulation run: one structure against the coupling (and shift) tables
// already read: select, map, fit, write the back-calculated tables and the
// summary REMARK lines.
#pragma once

#include "app/settings.h"

struct CSTab;
struct DTab;
struct PDBData;

// Returns the status of reading the structure (0 when it was read); a
// failed fit or write does not change it.
int simDC(DTab* dTab, CSTab* cs, const RunSettings* settings);

// The tables a report writes: titles, output names and the tables
// themselves; a table that is absent or holds no rows is left out.
struct ReportTables {
    const char* dTitle;
    const char* dOutName;
    const DTab* dTab;
    const char* csTitle;
    const char* csOutName;
    const CSTab* cs;
};

// Writes the back-calculated coupling and shift tables and the summary
// lines. Returns 0.
int reportDC(const char* pdbTitle, const PDBData* pdb, const ReportTables& tables, int mirror);
