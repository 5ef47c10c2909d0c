// The in-memory structure: one flat atom array holding every model of a PDB
// file, the residue, chain and segment records built from it, and the four
// hash tables that map key texts to record indices.
#pragma once

#include "util/fixed_text.h"

struct HSymTab;
struct Surface;
struct ResType;
struct PDBResidue;
struct PDBChain;
struct PDBSegment;

constexpr float kAngleUndefined = 9999.0f;
constexpr float kOmegaNotComputed = 777777.0f;
constexpr float kPropertyNotSet = 99999.0f;

struct PDBAtom {
    int atomID;
    void* aux;
    char atomName[kNameSize];
    char locID[kNameSize];
    char resName[kNameSize];
    char chain[kNameSize];
    int resID;
    char icode[kNameSize];
    float x, y, z;
    float occupancy;
    float tempFactor;
    char seg[kNameSize];
    char element[kNameSize];
    char charge[kNameSize];
    int model;
    int selected;
    PDBResidue* residue;
    PDBChain* chainRec;
    PDBSegment* segRec;
    // Free label fields for callers; the reader never fills them. Short, as
    // every atom of a large structure carries them.
    char label[3][4];
    float weight;
    float mass;
    float property[3];
    int isHetAtm;
};

struct PDBResidue {
    int resID;
    int atomCount, atomCapacity;
    void* aux;
    char resName[kNameSize];
    char chain[kNameSize];
    char seg[kNameSize];
    PDBChain* chainRec;
    PDBSegment* segRec;
    PDBResidue* next;
    PDBResidue* prev;
    float phi, psi;
    float omega;
    const ResType* resType;
    Surface* surface;  // conformation surface, set at the end of indexing
    float score;       // the last surface value, homology value or conformation score
    PDBAtom** atoms;
};

// Chains and segments share one shape: atom and residue lists, the residue
// number range and a direct residue-number index.
struct PDBGroup {
    int atomCount, atomCapacity;
    int resCount, resCapacity;
    int resMin, resMax;
    float undefinedMark;
    char chain[kNameSize];
    char seg[kNameSize];
    PDBAtom** atoms;
    PDBResidue** residues;
    PDBResidue** byRes;
};

struct PDBChain : PDBGroup {};
struct PDBSegment : PDBGroup {};

struct PDBData {
    PDBAtom* atoms;
    int atomCount, atomCapacity;
    PDBResidue* residues;
    int resCount, resCapacity;
    PDBChain* chains;
    int chainCount, chainCapacity;
    PDBSegment* segs;
    int segCount, segCapacity;
    float* savedXYZ;
    int savedCount;
    float* vdwXYZ;
    int vdwCount;
    // Bond and neighbour data, made only on request (this program never asks).
    unsigned char* bondMatrix;
    int* neighbourMatrix;
    int* bondCount;
    int* neighbourCount;
    int bondAtomCount;
    HSymTab* atomTable;
    HSymTab* resTable;
    HSymTab* chainTable;
    HSymTab* segTable;
    int modelCount;
    int resMin, resMax;
    int firstAtom, lastAtom;
    char defaultChain[kNameSize];
    char defaultSeg[kNameSize];
};
