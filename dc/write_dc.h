// Writing the simulated coupling table: statistics, notes, the tensor mode
// and report as header lines, then one row per coupling in use.
#pragma once

struct DTab;

// Column styles: observed and calculated; calculated only; with the design rows.
enum DCColumnStyle { kColumnsCalculated = 0, kColumnsObserved = 1, kColumnsDesign = 2 };

// Writes to fileName, or standard output for an empty name. Returns 0.
int writeDC(const char* fileName, const DTab* dTab, int columnStyle, int mirror, const char* title);
