// Writing a structure, or its selected atoms, as a PDB coordinate file.
#pragma once

#include "pdb/pdb_types.h"

struct PDBSelect;

// Writes to path (standard output for an empty path): the version REMARK
// (none when remark is "None", the version and "REMARK <remark>" for any
// other text), the atom lines, MODEL/ENDMDL framing for several models in
// unique-atom mode, and END when endFlag is set. A null structure writes
// nothing. Returns 0, or 1 when the file cannot be opened.
int writePDB(const char* path, const PDBData* pdb, const PDBSelect* selection, int endFlag,
             const char* remark);
// The atom's PDB line without its newline; returns its length.
int getPDBAtomStr(const PDBAtom* atom, char* text);
