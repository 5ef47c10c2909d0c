// Growth of the structure's record arrays and pointer lists. Each list grows
// by a fixed step; new slots are fresh records, and with the library's
// verbose mode on every growth is reported.
#pragma once

#include "pdb/pdb_types.h"

constexpr int kAtomListFirst = 4096, kAtomListStep = 1024;
constexpr int kResListFirst = 512, kResListStep = 150;
constexpr int kGroupListFirst = 8, kGroupListStep = 8;
constexpr int kResAtomPtrFirst = 32, kResAtomPtrStep = 8;

// A new record at the end of the structure's array, or null.
PDBAtom* getNextAtom(PDBData* pdb);
PDBResidue* getNextRes(PDBData* pdb);
PDBChain* getNextChain(PDBData* pdb);
PDBSegment* getNextSeg(PDBData* pdb);

// A new slot at the end of a pointer list, or null.
PDBAtom** getNextAtomPtr(PDBAtom*** list, int* count, int* capacity, int firstCapacity, int step);
PDBResidue** getNextResPtr(PDBResidue*** list, int* count, int* capacity, int firstCapacity,
                           int step);
