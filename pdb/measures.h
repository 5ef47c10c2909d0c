// Whole-structure measures over the atoms whose selection mark equals a
// given value, and per-atom mass and van der Waals radius.
#pragma once

#include "pdb/pdb_types.h"

// Each returns the number of atoms measured (0 leaves zeros).
int getPDBCenter(const PDBData* pdb, int mark, float* x, float* y, float* z);
int getPDBExtent(const PDBData* pdb, int mark, float* xMin, float* xMax, float* yMin, float* yMax,
                 float* zMin, float* zMax);
int getPDBRadGyr(const PDBData* pdb, int mark, float* radius);
// Sum of the atom masses (each computed once and kept in the atom).
float getPDBMass(PDBData* pdb, int mark);
// Atomic mass in whole mass units.
float getPDBAtomMass(const PDBAtom* atom);
// Van der Waals radius in Angstrom.
float getPDBVDWRadius(const PDBAtom* atom);
