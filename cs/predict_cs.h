// Predicted shifts of the shift table's rows from a structure: the
// secondary shift on the row's surface at the residue's torsion angles (or
// at a neighbour's), plus the random-coil shift.
#pragma once

struct PDBData;
struct CSTab;
struct CSValue;

// Maps every row read onto the structure at resID + offset and predicts it:
// from its surface, and with storedOption also from shifts stored on the
// structure's atoms. Returns the number of rows with a prediction, also
// kept as the table's mapped count.
int buildCS(PDBData* pdb, CSTab* cs, int offset, int storedOption, int constRMS);

// The prediction of one mapped row from its surface: 1 when pred was set.
// With constRMS the surface's error bound stands for its deviation.
int findSurfCS(CSValue* row, int constRMS);

// The prediction of one row from the observed and random-coil shifts stored
// on the structure's atoms: 1 when pred was set.
int findStoredCS(PDBData* pdb, CSTab* cs, CSValue* row, int resID);
