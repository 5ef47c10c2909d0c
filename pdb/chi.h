// Side-chain torsions chi1 .. chi7 from a constant table of atom
// quadruples per residue type.
#pragma once

#include "pdb/pdb_types.h"

constexpr int kMaxChiValues = 30;
constexpr int kChiTableRows = 58;

// One torsion of one residue type. An atom field may list alternative names
// separated by "|". The flag and the atom list name the atoms on one side of
// the central bond (1: they move with the fourth atom; 0: they are the
// backbone side), for setting the torsion by rotating that side.
struct ChiDef {
    int type;  // residue type number of the canonical residue table
    const char* resName;
    int chi;
    const char* atoms[4];
    int flag;
    const char* atomList;
};

// The table rows in order, followed by a row of type 0.
const ChiDef* chiTable();

// Measures the side-chain torsions of a residue. All kMaxChiValues values
// start at 9999.0. With *count < 0 every row of the residue's type is
// measured; with *count > 0 the rows of the wanted[0 .. *count-1] chi
// numbers, in that order; with *count == 0 nothing. Values and rows (when
// rows is not null) are filled consecutively and *count becomes the number
// of rows taken. Returns the mask of chi numbers whose four atoms were all
// found (bit chi-1); a missing residue or unknown type gives *count = 0 and 0.
int getPDBChi(const PDBData* pdb, int resID, const char* chain, const char* seg, float* values,
              const ChiDef** rows, const int* wanted, int* count);

// Prints the table on standard error, one line per row. Returns 0.
int showPDBChiDef();
