// Finding residues and atoms of an indexed structure by residue number,
// chain and segment ("*" for either means any) and by atom names, lists of
// alternative names, name patterns and two-letter name prefixes.
#pragma once

#include "pdb/pdb_types.h"

constexpr int kMaxAtomMatches = 9;

PDBResidue* findRes(const PDBData* pdb, int resID, const char* chain, const char* seg);
// The residue's name, or an empty text when there is no such residue.
const char* findResName(const PDBData* pdb, int resID, const char* chain, const char* seg);
// span = last + 1 - first; adds to *count the residue numbers first..last
// that exist and returns the new count.
int getResCount(const PDBData* pdb, int first, int last, const char* chain, const char* seg,
                int* span, int* count);

PDBAtom* findAtom(const PDBData* pdb, int resID, const char* atomName, const char* chain,
                  const char* seg);
// The first atom found among alternative names separated by "|" or blanks.
PDBAtom* findAtomN(const PDBData* pdb, int resID, const char* names, const char* chain,
                   const char* seg);
// Atoms named by a plain name or a "#"/"*" expression, at most nine.
int findAtomList(const PDBData* pdb, int resID, const char* atomExpr, const char* chain,
                 const char* seg, PDBAtom** out);
// Atoms named exactly, or else those sharing the name's first two characters.
int findBestAtoms(const PDBData* pdb, int resID, const char* unused, const char* atomName,
                  const char* chain, const char* seg, PDBAtom** out);

PDBChain* findChain(const PDBData* pdb, const char* chain, const char* seg);
PDBSegment* findSeg(const PDBData* pdb, const char* seg, const char* chain);

// 1 when all four atoms exist and share the first one's chain and segment.
int pdbSameSeg(const PDBAtom* a1, const PDBAtom* a2, const PDBAtom* a3, const PDBAtom* a4);

// What the last findAtom left behind: whether it searched through the
// residue, and the residue it found there.
int lastAtomLookupUsedResidue();
PDBResidue* lastAtomLookupResidue();
void resetAtomLookup();
