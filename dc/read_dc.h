// Reading a coupling table file into a DTab.
#pragma once

#include "dc/dtab.h"

struct TabVar;

// Reads the table; an empty name or "None" reads nothing and succeeds.
// keepTableDI keeps a row's nonzero DI column value as fixed. Returns 0, or
// non-zero after a message.
int readDC(const char* fileName, DTab* dTab, int keepTableDI);

// Column locations of RESID, RESNAME, ATOMNAME, CHAINNAME and SEGNAME with
// the suffix appended; an absent column gives -1. Returns 0.
int getAtomTabLocs(const TabVar* vars, int varCount, const char* suffix, int* residLoc,
                   int* resnameLoc, int* atomnameLoc, int* chainnameLoc, int* segnameLoc);
// Fills what the row holds, names normalised; returns a bit set: 1 residue
// ID, 2 atom name, 4 residue name, 8 chain, 16 segment.
int getAtomTabVals(const TabVar* vars, int varCount, const float* row, int residLoc, int resnameLoc,
                   int atomnameLoc, int chainnameLoc, int segnameLoc, int* resid, char* resname,
                   char* atomname, char* chainname, char* segname);
