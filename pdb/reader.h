// Reading a PDB coordinate file, all models, into an indexed structure.
#pragma once

#include "pdb/pdb_types.h"

struct PDBSelect;

// Reads the ATOM lines (and HETATM lines when the selection asks for them)
// of the file, or of standard input for an empty path, keeps the atoms that
// pass the selection (all of them without one) and indexes the structure.
// Returns 0, or 1 after a message; a partly read structure is left for the
// caller to free.
int readPDB(const char* path, PDBData* pdb, const PDBSelect* selection);
