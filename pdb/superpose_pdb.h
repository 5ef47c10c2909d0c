// Superposition of structures: atoms paired by residue number and atom name
// between a reference and a target, then superimposed (or compared by their
// internal distances), the RMS deviation left in alignResult(). Each call
// starts afresh (fitAlignInit) and keeps the limits set before.
#pragma once

#include "pdb/pdb_types.h"

// Pairs the atoms named in atomNames (blank-separated, e.g. "CA N C") of
// reference residues refRes1..refResN with those of target residues from
// targetRes1 on (first chain and segment of each), and superimposes them;
// distanceMode compares internal distances instead. verbose above 1 reports
// the counts. 0 on success (also with no pair: nothing is fitted), 1 after
// a message.
int fitAlignPDB(PDBData* reference, PDBData* target, int refRes1, int refResN, int targetRes1,
                const char* atomNames, int distanceMode, int verbose);
// The same over several chains: chain k of the reference against chain k of
// the target, every residue number of the reference chain.
int fitAlignPDBN(PDBData* reference, PDBData* target, const char* const* refChains,
                 const char* const* targetChains, int chainCount, const char* atomNames,
                 int distanceMode, int verbose);
// Plain coordinate arrays, n packed triples each.
int fitAlignCoords(const float* reference, const float* target, int n, int distanceMode);
