#include "fit/fit_state.h"

#include <cstdio>

#include "pdb/pdb_types.h"
#include "pdb/structure.h"
#include "util/alloc.h"

namespace {

FitState state = {};

constexpr const char* kTag = "align";

void releaseBlock(float** block, long count) {
    unAlloc64(kTag, *block, count * static_cast<long>(sizeof(float)));
    *block = nullptr;
}

bool allocateWorkspaces(int coords, int couplings) {
    FitState& s = state;
    s.wCoords = fltMalloc64(kTag, 3L * coords);
    s.aCoords = s.wCoords ? fltMalloc64(kTag, 3L * coords) : nullptr;
    s.dResidual = s.aCoords ? fltMalloc64(kTag, couplings) : nullptr;
    s.dTerm = s.dResidual ? fltMalloc64(kTag, couplings) : nullptr;
    s.daTerm = s.dTerm ? fltMalloc64(kTag, couplings) : nullptr;
    s.drTerm = s.daTerm ? fltMalloc64(kTag, couplings) : nullptr;
    s.dadrTerm = s.drTerm ? fltMalloc64(kTag, 2L * couplings) : nullptr;
    return s.dadrTerm != nullptr;
}

// Releases whatever the partial allocation made; sizes are the requested ones.
void releasePartial(int coords, int couplings) {
    FitState& s = state;
    releaseBlock(&s.wCoords, 3L * coords);
    releaseBlock(&s.aCoords, 3L * coords);
    releaseBlock(&s.dResidual, couplings);
    releaseBlock(&s.dTerm, couplings);
    releaseBlock(&s.daTerm, couplings);
    releaseBlock(&s.drTerm, couplings);
    releaseBlock(&s.dadrTerm, 2L * couplings);
}

// Copies the selected atoms of every structure into aCoords and points their
// auxiliary references at wCoords. 0, or 1 after a message.
int gatherCoords() {
    FitState& s = state;
    int k = 0;
    for (int p = 0; p < s.pdbCount; p++) {
        PDBData* pdb = s.pdbList[p];
        int found = 0;
        for (int a = 0; a < pdb->atomCount; a++) {
            PDBAtom& atom = pdb->atoms[a];
            if (!atom.selected) continue;
            if (k >= s.maxCoords) {
                std::fprintf(stderr, "TESSERA DC Error: Coord List Overflow.\n");
                return 1;
            }
            s.aCoords[3 * k] = atom.x;
            s.aCoords[3 * k + 1] = atom.y;
            s.aCoords[3 * k + 2] = atom.z;
            atom.aux = &s.wCoords[3 * k];
            k++;
            found++;
        }
        if (found != s.atomCount) {
            std::fprintf(stderr, "TESSERA DC Error: Atom Count Mismatch in PDB List (%d %d).\n",
                         s.atomCount, found);
            return 1;
        }
    }
    return 0;
}

}  // namespace

FitState& fitState() { return state; }

DTab* fitTable(int t) {
    if (!state.dTabList) return t == 0 ? state.dTab : nullptr;
    return t < state.tensorCount ? state.dTabList[t] : nullptr;
}

int fitDCAlloc() {
    FitState& s = state;
    int couplings = s.dcCount + kMaxFitParams;
    long coords = static_cast<long>(s.atomCount) * s.pdbCount;
    if (couplings > s.maxCouplings || coords > s.maxCoords) {
        fitDCFree();
        if (coords > 0x7fffffff / 3 || !allocateWorkspaces(static_cast<int>(coords), couplings)) {
            if (coords <= 0x7fffffff / 3) releasePartial(static_cast<int>(coords), couplings);
            std::fprintf(stderr, "TESSERA Error (DC Fit) allocating workspaces.\n");
            return 1;
        }
        s.maxCouplings = couplings;
        s.maxCoords = static_cast<int>(coords);
    }
    s.coordCount = static_cast<int>(coords);
    if (gatherCoords() != 0) return 1;
    restoreFitCoords();
    return 0;
}

int fitDCFree() {
    releasePartial(state.maxCoords, state.maxCouplings);
    state.maxCoords = state.maxCouplings = 0;
    return 0;
}

void restoreFitCoords() { pdbCopyCoords(state.wCoords, state.aCoords, state.coordCount); }
