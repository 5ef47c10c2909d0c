// Indexing a read structure: the hash keys of atoms, residues, chains and
// segments, the records built from them, their back-references and the
// residue neighbours.
#pragma once

#include "pdb/pdb_types.h"

// Returns 0, or 1 after a message; a structure without atoms is left as is.
int indexPDB(PDBData* pdb);

// Index of the record holding the atom's key: the existing one, or a new
// one. -1 after a message when the table fails.
int insertAtom(PDBData* pdb, int atomIndex);
int insertRes(PDBData* pdb, const PDBAtom* atom);
int insertChain(PDBData* pdb, const PDBAtom* atom);
int insertSeg(PDBData* pdb, const PDBAtom* atom);
