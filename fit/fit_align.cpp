#include "fit/fit_align.h"

#include <cstdio>

#include "dc/dtab.h"
#include "dc/euler.h"
#include "dc/order_matrix.h"
#include "dc/statistics.h"
#include "fit/fit_state.h"
#include "fit/grid_search.h"
#include "fit/initial_estimate.h"
#include "fit/refine.h"
#include "pdb/pdb_types.h"
#include "pdb/select.h"
#include "pdb/structure.h"

namespace {

void bindStructures(PDBData** pdbs, int count, int retries, int verbose) {
    FitState& s = fitState();
    s.pdbList = pdbs;
    s.pdbCount = count;
    s.pdbInfo = pdbs[0];
    s.retryCount = retries;
    s.verbose = verbose;
}

// Marks atom a of the first structure and its counterparts in the others.
void markAtom(const PDBAtom* atom) {
    const FitState& s = fitState();
    long index = atom - s.pdbList[0]->atoms;
    for (int m = 0; m < s.pdbCount; m++) s.pdbList[m]->atoms[index].selected = 1;
}

// Marks the atoms of the coupling's pairs; false when no pair is present.
bool markCoupling(const DCValue& v) {
    bool marked = false;
    for (int a = 0; a < v.countI; a++) {
        for (int b = 0; b < v.countJ; b++) {
            if (!v.atomsI[a] || !v.atomsJ[b]) continue;
            markAtom(v.atomsI[a]);
            markAtom(v.atomsJ[b]);
            marked = true;
        }
    }
    return marked;
}

// Selects the atoms of every used coupling of every table; true when any
// table asks for the grid search.
bool selectFitAtoms() {
    FitState& s = fitState();
    for (int m = 0; m < s.pdbCount; m++) {
        pdbClearSelection(s.pdbList[m]);
        pdbClearAuxInfo(s.pdbList[m]);
    }
    bool grid = false;
    for (int t = 0; DTab* dTab = fitTable(t); t++) {
        if (dTab->tensor.method == kMethodGrid) grid = true;
        for (int i = 0; i < dTab->count; i++) {
            const DCValue& v = dTab->couplings[i];
            if (isUsedDC(v) && markCoupling(v)) s.dcCount++;
        }
    }
    s.atomCount = pdbSelectCount(s.pdbList[0]);
    return grid;
}

// The order matrix of the fitted Da, Dr and rotations, and its principal
// frame again. The fitted Da and Dr stay as they are.
void deriveSaupe(DTensor* t) {
    euler2saupe2(t->saupe, t->rx, t->ry, t->rz, 0.0f, 0.0f, 0.0f, t->da, t->dr);
    float da, dr;
    t->solutionCount = saupe2euler(t->saupe, t->rxSolutions, t->rySolutions, t->rzSolutions,
                                   t->principal, t->sortedPrincipal, t->rotation, &da, &dr);
}

}  // namespace

int fitDCAlignI() {
    FitState& s = fitState();
    s.atomCount = s.dcCount = 0;
    if (estDCAlign() != 0) {
        std::fprintf(stderr, "TESSERA Error finding initial alignment.\n");
        return -1;
    }
    bool grid = selectFitAtoms();
    if (s.verbose > 1)
        std::fprintf(stderr, "Couplings: %d Structures: %d Atoms Per Structure Selected: %d\n",
                     s.dcCount, s.pdbCount, s.atomCount);
    if (s.atomCount == 0 || s.dcCount == 0) return 0;
    if (fitDCAlloc() != 0) {
        std::fprintf(stderr, "TESSERA Error initializing alignment workspaces.\n");
        return -1;
    }
    if (grid && searchDCAlign() != 0) {
        std::fprintf(stderr, "TESSERA Error in DC Alignment Tensor Grid Search.\n");
        return -1;
    }
    if (!grid && fitDCAlign2() != 0) {
        std::fprintf(stderr, "TESSERA Error Fitting DC Alignment Tensor.\n");
        return -1;
    }
    for (int t = 0; DTab* dTab = fitTable(t); t++) deriveSaupe(&dTab->tensor);
    return s.dcCount;
}

int fitDCAlign(PDBData** pdbs, int count, DTab* dTab, int retries, int verbose) {
    if (!pdbs || !dTab) return 0;
    if (count < 1) {
        std::fprintf(stderr, "TESSERA DC-Fit Error: PDB Count is Less Than 1.\n");
        return 0;
    }
    FitState& s = fitState();
    bindStructures(pdbs, count, retries, verbose);
    s.dTab = dTab;
    s.dTabList = nullptr;
    s.tensorCount = 1;
    int fitted = fitDCAlignI();
    if (fitted < 0) fitted = 0;
    dTab->svdCount = fitted;
    return fitted;
}

int fitDCAlignN(PDBData** pdbs, int count, DTab* const* tables, int retries, int verbose) {
    if (!pdbs || !tables || !tables[0] || count < 1) return 0;
    FitState& s = fitState();
    bindStructures(pdbs, count, retries, verbose);
    s.dTab = tables[0];
    s.dTabList = tables;
    s.tensorCount = 0;
    while (s.tensorCount < kDTabListSize && tables[s.tensorCount]) s.tensorCount++;
    int fitted = fitDCAlignI();
    return fitted < 0 ? 0 : fitted;
}
