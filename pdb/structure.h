// Whole-structure operations: reset, table creation, release, copies of
// coordinates, and small per-atom bulk updates.
#pragma once

#include "pdb/pdb_types.h"

constexpr int kAtomTableBuckets = 4111;

void pdbNull(PDBData* pdb);
// Creates whichever of the four index tables are missing; 1 when one cannot be made.
int pdbInit(PDBData* pdb);
void pdbFree(PDBData* pdb);
// Copies every atom's coordinates and selection mark, and the saved coordinates.
int pdbCopy(PDBData* destination, const PDBData* source);
void pdbCopyCoords(float* destination, const float* source, int n);
void storePDBCoords(PDBData* pdb);
void restorePDBCoords(PDBData* pdb);
void pdbClearAuxInfo(PDBData* pdb);
void pdbRenumberAtoms(PDBData* pdb, int base);
void pdbSetTempFactor(PDBData* pdb, int mark, float value);
// Makes the per-atom van der Waals coordinate copy (on request only).
int pdbAllocVDW(PDBData* pdb);
// Makes the bond and neighbour matrices (on request only).
int pdbAllocBonds(PDBData* pdb);
void updateVDWFromPDB(PDBData* pdb);
