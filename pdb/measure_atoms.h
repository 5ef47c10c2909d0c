// Distance, bend angle and dihedral of given atoms. A missing (null) atom
// gives distance 0 and angle 9999.0.
#pragma once

#include "pdb/pdb_types.h"

float pdbDist(const PDBAtom* a, const PDBAtom* b);
// The angle at b of a-b-c, in degrees.
float pdbAngle(const PDBAtom* a, const PDBAtom* b, const PDBAtom* c);
// The dihedral a-b-c-d, in degrees.
float pdbDihedral(const PDBAtom* a, const PDBAtom* b, const PDBAtom* c, const PDBAtom* d);

// The same two angles of atoms that exist, returning the status of the angle
// formula (0 defined, 1 degenerate geometry) for callers that report it.
int atomAngle(const PDBAtom* a, const PDBAtom* b, const PDBAtom* c, float* angle);
int atomDihedral(const PDBAtom* a, const PDBAtom* b, const PDBAtom* c, const PDBAtom* d,
                 float* angle);
