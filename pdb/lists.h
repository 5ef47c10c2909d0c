// Growth of the structure's record arrays and pointer lists. New slots are
// fresh records. With the library's verbose mode on each list starts at its
// first size and grows by its step, every growth reported; otherwise lists
// grow geometrically and the pointer lists start small.
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
