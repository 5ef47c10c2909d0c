// The process-wide state of the nonlinear tensor fit: the tables and
// structures being fitted, the selected atoms' coordinates (as read and as
// rotated during the fit) and the per-coupling workspaces. One fit runs at a
// time; every fit rebinds the state at its start.
#pragma once

struct DTab;
struct PDBData;

// Spare coupling slots beyond the couplings: the residual vector is padded
// up to the number of parameters (at most this many) without reallocation.
constexpr int kMaxFitParams = 160;

struct FitState {
    int verbose;
    int retryCount;
    DTab* dTab;             // the table (and tensor) being worked on
    DTab* const* dTabList;  // the tables of a multi-tensor fit, or null
    int tensorCount;
    PDBData** pdbList;
    int pdbCount;
    PDBData* pdbInfo;  // the structure being worked on
    int atomCount;     // selected atoms per structure
    int dcCount;       // couplings that take part
    int coordCount;    // atomCount x pdbCount
    int maxCoords, maxCouplings;
    float* wCoords;  // x, y, z per selected atom, rotated during the fit
    float* aCoords;  // the selected atoms as read
    float* dResidual;
    float* dTerm;
    float* daTerm;
    float* drTerm;
    float* dadrTerm;  // two per coupling slot
    float dRMS;
    int evalCount;
};

FitState& fitState();
// The table of tensor t (0 for the only table of a one-tensor fit); null
// past the last one.
DTab* fitTable(int t);

// Sizes the workspaces for the current counts and gathers the selected
// atoms' coordinates, pointing each atom's auxiliary reference at its
// working copy. 0, or 1 after a message.
int fitDCAlloc();
// Releases the workspaces; returns 0.
int fitDCFree();
// Copies the coordinates as read into the working array.
void restoreFitCoords();
