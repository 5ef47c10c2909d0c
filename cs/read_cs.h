// Reading a chemical-shift table file into a CSTab, and the table's life:
// a null table, every row back to its reset values, and the release.
#pragma once

#include "cs/cs_tab.h"

// Reads the table; an empty name or "None" (any case) leaves an empty table
// and succeeds. Each row gets its defaults, its glycine partner, its
// random-coil shift (when the row has none and a random-coil table is
// loaded) and its shift surface. The table must be null (csTabNull) or hold
// an earlier read, which is released first. Returns 0, or 1 after a message
// (the table is then empty).
int readCS(const char* path, CSTab* table);

// A fresh, empty table.
void csTabNull(CSTab* table);
// Releases the rows, the sequence and the workspace; back to the null state.
void csTabFree(CSTab* table);
// Every row back to its reset values.
void resetCS(CSValue* rows, int count);
// 1 when the atom is a kind that shifts are predicted for: HN, HA, CA, CB, C
// or N (any case), or a glycine's HA2/HA3.
int isPredCS(const char* resName, const char* atomName);
