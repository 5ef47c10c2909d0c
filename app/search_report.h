// One row of the homology search report and the per-file best offset with
// its summary line.
#pragma once

#include <cstdio>

struct CSTab;
struct DTab;
struct PDBData;

// Everything a row shows besides the statistics computed here.
struct SearchRow {
    int fitNumber;  // the header is written before fit 1
    int fileIndex;
    const char* fileName;
    int res1, resN;
    int segID;
    int selectedCouplings;
    int predictedShifts;
    int offset, lastOffset;
    int first, last;  // structure residues the segment lies on
    double csThresh, vcThresh;
    float backboneRMS;  // 0 when not computed
};

// Writes the row to out (no row when out is null), keeps the file's best
// offset, and after the file's last offset prints its summary line to
// standard error unless rows go to standard output. Resets the tensor's Da,
// Dr and rotations to 0 first, as the row reports them. Returns 0.
int reportS(FILE* out, PDBData* reference, PDBData* pdb, DTab* dTab, const CSTab* cs,
            const SearchRow& row);
// Forgets the best offset (tests run several searches in one process).
void resetSearchBest();
