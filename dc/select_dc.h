// Which couplings take part in fits, statistics and output: by residue
// range with one of four modes, by a free-text selection (-select), and by a
// list of residues to skip. Each sets the couplings' use flags.
#pragma once

#include "dc/dtab.h"

enum SelectMode {
    kSelectBoth = 1,  // both residues in range
    kSelectEither = 2,
    kSelectMin = 3,  // the smaller residue number in range
    kSelectMax = 4,  // the larger residue number in range
};

// Resets the selection to the couplings with an observation passing the
// mode's test; returns how many are selected.
int selectD(DCValue* couplings, int count, int first, int last, int mode);
// Adds the couplings of residues a..b (and chain, segment unless "*").
int selectDRange(DCValue* couplings, int count, int a, int b, const char* chain, const char* seg,
                 int mode);
// Applies a selection text such as "5 to 10 20-30 chain B 40 to 50 first to
// last"; returns the result of the last range applied (0 when none).
int strSelectD(DCValue* couplings, int count, const char* text, int mode);
// Deselects couplings touching a listed residue; returns the count in use.
int skipD(DCValue* couplings, int count, const int* residues, int residueCount, int selectedCount);
// The report text of a mode and range; 1 for an unknown mode.
int getDCSelectStr(int mode, int first, int last, char* buffer);
// Replace the word "first"/"last" in token by the smallest/largest residue
// number of the table for the chain and segment filters ("0" when none).
void getDCSelFirst(char* token, const DCValue* couplings, int count, const char* chain,
                   const char* seg);
void getDCSelLast(char* token, const DCValue* couplings, int count, const char* chain,
                  const char* seg);
