// The chemical-shift table: one row per observed (or requested) shift of a
// residue's atom, read from a table file, mapped onto a structure, given its
// predicted shift by the prediction, and written back with statistics.
#pragma once

#include <cstdint>

#include "util/fixed_text.h"

struct PDBAtom;
struct PDBResidue;
struct Surface;

constexpr int kCSMaxAtoms = 9;
constexpr float kCSMissing = 9999.0f;  // values above 900 count as absent

struct CSValue {
    int index;
    int use;
    int mapped;
    int listed;  // 1 after reading
    int isPred;  // a predicted atom kind
    int resID;
    char resName[kNameSize];
    char name1[kNameSize];  // one-letter code ("?" when unknown)
    char name3[kNameSize];  // three-letter name ("None" when unknown)
    char atomName[kNameSize];
    char chain[kNameSize];
    char seg[kNameSize];
    float W, FC;
    float obs, pred, rc, hm, sigma, gamma;
    float spare[2];
    PDBResidue* residue;
    PDBAtom* atoms[kCSMaxAtoms];
    int atomCount;
    float x, y, z;  // mean position of the mapped atoms
    Surface* surface;
    CSValue* partner;  // the other alpha proton of a glycine
    // Written by the prediction.
    int compared;        // both an observed and a predicted shift
    float secondary;     // the secondary shift used, 9999.0 when none
    float surfaceValue;  // a copy of the surface value, 9999.0 when none
    float spareValue;
};

// The header's sequence: DATA FIRST_RESID and the letters of DATA SEQUENCE.
struct CSSeqInfo {
    int firstResid;
    int length;
    char* letters;  // length + 1 bytes, tag "cs"; null when the header has none
};

struct CSTab {
    CSValue* rows;  // tag "cs"
    int count;
    int mapped;
    CSSeqInfo* seq;
    int resMin, resMax;  // 1000000 and 0 when empty
    int ignoreChain, ignoreSeg;
    int ringMode;  // 1 added to predictions, -1 subtracted from observations, 0 unused
    int pcsCount;  // pseudo-contact tensors; none in this program
    float* work;   // 25m^2 + 14m + 7n + 5nm floats, zeroed
    int64_t workSize;
};
