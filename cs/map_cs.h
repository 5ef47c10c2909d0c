// Tying shift rows to a structure: each row's residue, its atoms (the atom
// named, or those sharing the name's first two characters) with their mean
// position, and the observed shifts stored on the atoms. Chains and
// segments are the structure's defaults when the table names none.
#pragma once

#include "cs/cs_tab.h"

struct PDBData;

// Finds the row's residue at resID: row->residue, and the mapped flag set to
// whether it was found. A miss is reported in two lines when warn is 1 and
// the structure library's warnings are on. Returns the mapped flag.
int findCSRes(const PDBData* pdb, const CSTab* table, CSValue* row, int resID, int warn);
// findCSRes at resID + offset for every used row, with warnings; returns the
// table's mapped count, the rows with a residue.
int mapCSResInfo(const PDBData* pdb, CSTab* table, int offset);

// Finds the row's atoms at resID (at most nine) and their mean position;
// with none the mapped flag is cleared and, when warn is 1, warnings are on
// and the atom is a predicted kind, the miss is reported. Returns the atom
// count.
int findCSAtoms(const PDBData* pdb, const CSTab* table, CSValue* row, int resID, int warn);
// findCSAtoms at resID + offset: with mode 1 for every row (each is marked
// used first) and with warnings, with mode 0 for the used rows only.
// Returns the number of rows with atoms.
int mapCSAtomInfo(const PDBData* pdb, CSTab* table, int offset, int mode);
// Uses only the rows whose resID is listed in tableResIDs and maps each onto
// the structure residue at the same list position, without warnings.
// Returns the number of rows with atoms.
int permuteCSAtoms(const PDBData* pdb, CSTab* table, const int* pdbResIDs, const int* tableResIDs,
                   int count);
// Stores obs, sigma and rc of every considered row (as in mapCSAtomInfo)
// with an observed shift in the three property values of its atoms. Returns
// the number of rows whose atoms were found.
int mapCS2PDB(PDBData* pdb, CSTab* table, int mode);
