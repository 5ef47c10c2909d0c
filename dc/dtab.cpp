#include "dc/dtab.h"

#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "pdb/pdb_types.h"
#include "util/alloc.h"

namespace {

constexpr int kFirstResidStart = 1000000;

int64_t pdbListBytes(int count) { return static_cast<int64_t>(count) * sizeof(PDBData*); }

}  // namespace

void dTabNull(DTab* dTab) {
    if (!dTab) return;
    std::memset(dTab, 0, sizeof *dTab);
    dTensorNull(&dTab->tensor, 1);
    dTab->minResid = kFirstResidStart;
    dTab->maxResid = 0;
    dTab->noChainNames = 1;
    dTab->noSegNames = 1;
}

void dTabFree(DTab* dTab) {
    if (!dTab) return;
    unAlloc64("dc", dTab->couplings, static_cast<int64_t>(dTab->count) * sizeof(DCValue));
    dTabPDBFree(dTab);
    unAlloc64("dc", dTab->realWork, static_cast<int64_t>(dTab->realSize) * sizeof(float));
    unAlloc64("dc", dTab->intWork, static_cast<int64_t>(dTab->intSize) * sizeof(int));
    dTabNull(dTab);
}

void resetDC(DCValue* values, int count) {
    for (int i = 0; values && i < count; i++) {
        DCValue* v = values + i;
        std::memset(v, 0, sizeof *v);
        v->residI = v->residJ = kResidUnset;
        v->dObs = v->dCalc = kMissingValue;
        v->dObsDiff = v->dCalcDiff = kMissingValue;
        v->wTable = v->w = 1.0f;
        v->ddTable = v->dd = 1.0f;
        v->s = 1.0f;
        v->fc = 1.0f;
    }
}

void dTabPDBFree(DTab* dTab) {
    unAlloc64("dc", dTab->pdbs, pdbListBytes(dTab->pdbCount));
    dTab->pdbs = nullptr;
    dTab->pdbCount = 0;
    dTab->workCount = 0;
}

int dTabPDBAlloc(DTab* dTab, PDBData** pdbs, int count) {
    if (!pdbs || count < 1) {
        dTabPDBFree(dTab);
        return 0;
    }
    for (int i = 1; i < count; i++) {
        if (pdbs[i]->atomCount != pdbs[0]->atomCount) {
            std::fprintf(stderr, "TESSERA Error: Atom Count Mismatch in PDB List.\n");
            dTabPDBFree(dTab);
            return 0;
        }
    }
    if (count != dTab->pdbCount) {
        dTabPDBFree(dTab);
        dTab->pdbs = static_cast<PDBData**>(voidMalloc64("dc", pdbListBytes(count)));
        if (!dTab->pdbs) {
            std::fprintf(stderr, "DC Error Allocating PDB List.\n");
            return 1;
        }
        dTab->pdbCount = count;
    }
    for (int i = 0; i < count; i++) dTab->pdbs[i] = pdbs[i];
    return 0;
}

namespace {

// Grows a zero-filled workspace of elements of type T to at least size;
// a workspace is never shrunk. False after the message when it cannot be
// made, also when its size does not fit the int that records it.
template <class T>
bool growWorkspace(T** work, int* current, int64_t size, const char* failure) {
    if (size <= *current) return true;
    if (size > INT_MAX) {
        std::fprintf(stderr, "%s", failure);
        return false;
    }
    unAlloc64("dc", *work, static_cast<int64_t>(*current) * sizeof(T));
    *current = 0;
    *work = static_cast<T*>(voidMallocNull64("dc", static_cast<int64_t>(size) * sizeof(T)));
    if (!*work) {
        std::fprintf(stderr, "%s", failure);
        return false;
    }
    *current = size;
    return true;
}

}  // namespace

int64_t dcRealWorkSize(int64_t nvec, int64_t structures) {
    if (nvec > INT_MAX || structures > INT_MAX) return INT64_MAX;
    int64_t vectors = structures * nvec;
    return vectors > INT_MAX ? vectors : 9 * vectors + 9;
}

int dcWorkAlloc(DTab* dTab, int pdbCount) {
    int64_t structures = pdbCount > 1 ? pdbCount : 1;
    if (dTab->pdbCount > structures) structures = dTab->pdbCount;
    int64_t realSize = dcRealWorkSize(dTab->nvec, structures);
    int64_t intSize = static_cast<int64_t>(dTab->nvec) + 1;
    if (!growWorkspace(&dTab->realWork, &dTab->realSize, realSize,
                       "DC Error Allocating DC Real Workspace.\n")) {
        return 1;
    }
    if (!growWorkspace(&dTab->intWork, &dTab->intSize, intSize,
                       "DC Error Allocating DC Integer Workspace.\n")) {
        return 1;
    }
    return 0;
}
