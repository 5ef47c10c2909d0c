// Backbone, glycosidic and sugar-ring torsions of a nucleotide.
#pragma once

#include "pdb/pdb_types.h"

// Measures, in degrees, for residue i:
//   alpha   O3'(i-1) P O5' C5'      beta  P O5' C5' C4'
//   gamma   O5' C5' C4' C3'         delta C5' C4' C3' O3'
//   epsilon C4' C3' O3' P(i+1)      zeta  C3' O3' P(i+1) O5'(i+1)
//   chi     O4' C1' N9 C4 (purines, which have N9) or O4' C1' N1 C2
//   nu0 .. nu4, the sugar ring: C4' O4' C1' C2', O4' C1' C2' C3',
//   C1' C2' C3' C4', C2' C3' C4' O4', C3' C4' O4' C1'.
// Every output starts at 9999.0 and is measured only when its four atoms
// exist; a null output is skipped. Returns a mask with bit k set for the
// k-th output (in the order above) that was measured.
int getPDBNAAngles(const PDBData* pdb, int resID, const char* chain, const char* seg, float* alpha,
                   float* beta, float* gamma, float* delta, float* epsilon, float* zeta, float* chi,
                   float* nu0, float* nu1, float* nu2, float* nu3, float* nu4);
