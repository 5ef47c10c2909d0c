// Scores of a structure's residues on the conformation surfaces and the
// homology table: each residue's conformation surface, its surface value
// at its own angles, and the homology and conformation scores of one
// stretch of a structure against another (the homology search).
#pragma once

struct PDBData;
struct PDBResidue;

// Gives each of the first count residues the conformation surface of its
// name, "xPRO" with the flag set for a residue other than PRO and GLY
// followed in the array by a PRO. Returns 0.
int setPhiPsiSurf(PDBResidue* residues, int count, int xproFlag);

// The surface value of every residue from first to last at its (phi, psi),
// a non-zero value v taken as order / v, into the residue's score. Returns 0.
int updatePDBSurf(PDBData* pdb, int first, int last);

// Homology score of residues first..last of A against the stretch of B
// from firstB: rms of the table values of the residue pairs found in it;
// every pair's value goes into both residues' scores (777777.0 for a pair
// the table lacks, which does not count). Returns 0.
int getStatHomo(PDBData* a, PDBData* b, int first, int last, const char* chainA, const char* segA,
                int firstB, int spare, const char* chainB, const char* segB, int xproFlag,
                float* rms, float* last1, int* count);

// Conformation score of B's angles on A's conformation surfaces over the
// same pairing: the mean over pairs of -ln(v/m) (ln(m) below 1/m, at least
// 0), m the surface's largest value; minRatio the smallest value/density.
int getStatSurf(PDBData* a, PDBData* b, int first, int last, const char* chainA, const char* segA,
                int firstB, int spare, const char* chainB, const char* segB, int xproFlag,
                float* mean, float* last1, float* minRatio, int* count);
