// Fresh records and the copying of an atom's data into the records that own it.
#pragma once

#include "pdb/pdb_types.h"

void atomNull(PDBAtom* atom);
void resNull(PDBResidue* residue);
void chainNull(PDBChain* chain);
void segNull(PDBSegment* seg);

// Copies the working record into the structure's atom at index and widens
// the structure's residue range (the first atom sets it).
void setAtomInfo(PDBData* pdb, PDBAtom* destination, const PDBAtom* source, int index);
// Widens the structure's residue range by atom number index (the first one
// sets it).
void keepResidueRange(PDBData* pdb, const PDBAtom* atom, int index);
// Sets the residue's number and names from the atom and appends the atom to
// the residue's atom list. Returns 0, or 1 when the list cannot grow.
int setResInfo(PDBResidue* residue, PDBAtom* atom);
int setChainAtomInfo(PDBChain* chain, PDBAtom* atom);
int setSegAtomInfo(PDBSegment* seg, PDBAtom* atom);
