// Small utilities on arrays of atom pointers (a missing atom is a null slot).
#pragma once

#include "pdb/pdb_types.h"

// Index of the first empty slot when atom is null; -1 otherwise or when full.
int findAtomInList(const PDBAtom* atom, PDBAtom* const* list, int n);
// Appends atom unless already listed; 1 when appended.
int incrAtomList(PDBAtom* atom, PDBAtom** list, int* count);
// 1 when the first list and the second list each have an empty slot.
int atomListExclTest(PDBAtom* const* list1, int n1, PDBAtom* const* list2, int n2);
// Mean position of the n atoms; returns n, or 0 for an empty list.
int findAtomListPos(PDBAtom* const* list, int n, float* x, float* y, float* z);
// Mean distance over all pairs of one atom of each list; a pair with a
// missing atom adds 0 but counts in the divisor. Returns the pair count.
int findAtomListRad(PDBAtom* const* list1, int n1, PDBAtom* const* list2, int n2, float* r);
