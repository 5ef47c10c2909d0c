// The coupling table: its alignment tensor, one record per coupling row, the
// structures the couplings are mapped onto and the fit workspaces.
#pragma once

#include <cstdint>

#include "dc/tensor.h"
#include "util/fixed_text.h"

struct PDBData;
struct PDBAtom;

constexpr int kMaxDCAtoms = 9;
constexpr int kResidUnset = -666666;
// Observed, calculated and interaction values above this count as absent.
constexpr float kMissingLimit = 900.0f;
constexpr float kMissingValue = 9999.0f;
// Whether an observed, calculated or difference value is present.
inline bool isPresent(float value) { return value <= kMissingLimit; }
// D of a table without a D column.
constexpr float kNoDColumn = 99999.0f;

// Bond type codes of an atom pair.
enum BondType {
    kBondOther = 0,
    kBondHN = 1,
    kBondCH = 3,
    kBondNCA = 5,
    kBondCN = 6,
    kBondCAHA = 7,
    kBondHAHB = 8,
    kBondCACB = 9,
    kBondCAC = 10,
    kBondMethyl = 11,
};

struct DCValue {
    int index;
    int absFlag;  // compare absolute values
    int listed;   // set for every row read from a table
    int mapped;   // both atoms (or atom groups) found in the structure
    int use;      // takes part in fits and statistics
    int bondType;
    int residI, residJ;
    char resNameI[kNameSize], resNameJ[kNameSize];
    char atomNameI[kNameSize], atomNameJ[kNameSize];
    char chainI[kNameSize], chainJ[kNameSize];
    char segI[kNameSize], segJ[kNameSize];
    float dObs;
    float dCalc;
    // Differences to the previous coupling of the same bond type (observed,
    // calculated).
    float dObsDiff, dCalcDiff;
    float diTable, di;
    float wTable, w;
    float ddTable, dd;
    float s;
    float fc;
    // The five design-row values S1..S5 of the coupling and its vector count.
    float result[6];
    int diFixed;  // DI from the table or a fixed geometry: never recomputed
    PDBAtom* atomsI[kMaxDCAtoms];
    PDBAtom* atomsJ[kMaxDCAtoms];
    int countI, countJ;
};

struct DTab {
    DTensor tensor;
    DCValue* couplings;  // tag "dc"
    PDBData** pdbs;      // borrowed structures, the array is owned
    int count;
    int pdbCount;
    int workCount;  // used couplings in the fit workspace; cleared with the structure list
    int svdCount;  // couplings that entered the last SVD fit
    int minResid;
    int maxResid;
    int noChainNames;
    int noSegNames;
    int nvec;
    int realSize, intSize;
    float* realWork;
    int* intWork;
};

// A fresh, empty table with the default tensor.
void dTabNull(DTab* dTab);
// Frees what the table owns and returns it to the null state.
void dTabFree(DTab* dTab);
// Every record back to the reset values.
void resetDC(DCValue* values, int count);
// Keeps the list of structures the couplings are mapped onto.
int dTabPDBAlloc(DTab* dTab, PDBData** pdbs, int count);
void dTabPDBFree(DTab* dTab);
// Floats of the real fit workspace for NVEC and a structure count: 9 per
// vector and structure, and 9. Larger than INT_MAX means it cannot be made.
int64_t dcRealWorkSize(int64_t nvec, int64_t structures);
// Sizes the fit workspaces for the given structure count.
int dcWorkAlloc(DTab* dTab, int pdbCount);
