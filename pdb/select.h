// Atom selection: which atoms of a structure a caller means, by residue
// range, atom entry range, name lists (exact, regular-expression or glob
// match), record type, a sphere or a box in space and special classes.
#pragma once

#include "pdb/name_match.h"  // name match modes kMatchExact, kMatchRegex, kMatchGlob
#include "pdb/pdb_types.h"

constexpr int kSelectUnset = -666666;
constexpr int kSpecialAminoAcids = 4;

struct NameList {
    char** names;  // copies, tag "strDup"; null means any name
    int count;
    int mode;
};

struct PDBSelect {
    int resID;
    int res1, resN;
    int ae1, aeN;
    NameList atomNames, resNames, chainNames, segNames;
    int selectID;
    int invert;
    int specialClass;
    float radius, x0, y0, z0;
    float x1, xn, y1, yn, z1, zn;
    int useType;
    int atomRec;
    int hetAtmRec;
    int water;
    int clear;
    int set;
    int dbg;
    int verb;
};

void pdbSelectNull(PDBSelect* selection);
// Releases the name lists.
void pdbSelectFree(PDBSelect* selection);
// Reads the selection options; -help prints their usage. Returns 0.
int getPDBSelectArgs(int argc, char** argv, PDBSelect* selection);
void showPDBSelectUsage();
// Orders reversed ranges and turns a single residue into a one-residue range.
void pdbSelectAdjust(PDBSelect* selection);

// Whether atom number index passes the selection; a null selection passes all.
int pdbSelectTest(int index, const PDBAtom* atom, const PDBSelect* selection);
// Writes the selection ID into selected atoms and 0 into the rest (honouring
// the invert flag, -clear and -set); returns the number of atoms selected.
int pdbSelect(PDBData* pdb, const PDBSelect* selection);
// The same for atom number index alone; returns 1 when it was selected.
int pdbSelect1(PDBData* pdb, const PDBSelect* selection, int index);
int pdbSelectCount(const PDBData* pdb);
int pdbSelectSphere(const PDBAtom* atom, const PDBSelect* selection);
int pdbSelectRegion(const PDBAtom* atom, const PDBSelect* selection);
void pdbClearSelection(PDBData* pdb);
void pdbSetSelection(PDBData* pdb);
void pdbSetResSelection(PDBResidue* residue, int mark);
