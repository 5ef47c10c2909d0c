// Which shift rows take part in mapping, statistics and output, and the
// weights of atom kinds.
#pragma once

#include "cs/cs_tab.h"

struct KeyValue;

// Uses exactly the rows with first <= resID <= last; returns how many.
int selectCS(CSValue* rows, int count, int first, int last);
// Stops using the rows of the listed residues; returns the used rows kept,
// or otherwise when there is no list.
int skipCS(CSValue* rows, int count, const int* residues, int residueCount, int otherwise);
// Walks the (atom name, weight) pairs up to a null name or "None" and gives
// every row of that atom name (any case) the weight.
void setCSTabW(CSTab* table, const KeyValue* weights, int weightCount);
