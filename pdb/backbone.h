// Backbone torsions of a residue (phi, psi, omega), the virtual CA torsion
// alpha and the CA bend kappa, in degrees. Neighbouring residues are looked
// up with the same chain and segment texts, and there is no bond test: a
// residue missing from the numbering leaves its neighbours' angles
// undefined (9999.0).
#pragma once

#include "pdb/pdb_types.h"

constexpr int kPhiMeasured = 1;
constexpr int kPsiMeasured = 2;

// phi = C(i-1) N CA C, psi = N CA C N(i+1). Both outputs start at 9999.0;
// returns kPhiMeasured | kPsiMeasured for those whose atoms were all found.
int getPDBPhiPsi(const PDBData* pdb, int resID, const char* chain, const char* seg, float* phi,
                 float* psi);
// Stores phi and psi in every residue numbered first-1 .. last+1. Returns 0.
int updatePhiPsi(PDBData* pdb, int first, int last);

// Each sets *value to 9999.0 first and returns 1 when the angle was measured
// (printing "<name> error at <resID>" when the atoms lie so that the angle is
// undefined), 0 when an atom is missing or resID lies outside the structure.
// omega = CA(i-1) C(i-1) N CA.
int getPDBOmega(const PDBData* pdb, int resID, const char* chain, const char* seg, float* value);
// alpha = CA(i-1) CA CA(i+1) CA(i+2).
int getPDBAlpha(const PDBData* pdb, int resID, const char* chain, const char* seg, float* value);
// kappa = the angle at CA of CA(i-2) CA CA(i+2).
int getPDBKappa(const PDBData* pdb, int resID, const char* chain, const char* seg, float* value);
