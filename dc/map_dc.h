// Tying couplings to the atoms of one or more structures, with per-residue
// weights and dipolar interaction values.
#pragma once

#include "dc/dtab.h"

struct PDBData;

// Looks up both atom lists of one coupling at residues residI and residJ;
// with warn 1 (and the structure library's warnings on) an unmapped coupling
// is reported in three lines. Returns 1.
int findDCAtoms(const PDBData* pdb, const DTab* dTab, DCValue* value, int residI, int residJ,
                int warn);
// Scales W (by the square root of the weight) and DD (divided by the plain
// weight) with the weight of the coupling's larger residue number.
void findDCW(DCValue* value, const float* weights, int weightCount, int firstResid);

// Maps every used coupling onto the first structure at RESID + residOffset
// and sets its DI; returns the number mapped.
int buildDCN(PDBData** pdbs, int count, DTab* dTab, int residOffset, int firstResid,
             const float* weights, int weightCount, int useFixed);
int buildDC(PDBData* pdb, DTab* dTab, int residOffset, int firstResid, const float* weights,
            int weightCount, int useFixed);
// Looks atoms up only; returns the number of couplings with both lists filled.
int mapDCInfoN(PDBData** pdbs, int count, DTab* dTab, int residOffset, int warn);
int mapDCInfo(PDBData* pdb, DTab* dTab, int residOffset, int warn);
// Maps couplings after renumbering residues oldResids[k] as newResids[k];
// returns the number mapped.
int permuteDC(PDBData** pdbs, int count, DTab* dTab, const int* newResids, const int* oldResids,
              int residCount, int useFixed);
