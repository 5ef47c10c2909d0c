#include "dc/map_dc.h"

#include <cmath>
#include <cstdint>
#include <cstdio>

#include "dc/dipolar.h"
#include "pdb/lookup.h"
#include "pdb/modes.h"
#include "pdb/pdb_types.h"
#include "util/residue_number.h"

namespace {

void warnUnmapped(const DCValue* v, int residI, int residJ) {
    std::fprintf(stderr, "TESSERA Warning: No Atom Map for DC %d (PDB ResID %d %d):\n", v->index,
                 residI, residJ);
    std::fprintf(stderr, "   ResIDI: %4d ResNameI: %4s AtomNameI: %4s SegI: %4s ChainI: %4s\n",
                 v->residI, v->resNameI, v->atomNameI, v->segI, v->chainI);
    std::fprintf(stderr, "   ResIDJ: %4d ResNameJ: %4s AtomNameJ: %4s SegJ: %4s ChainJ: %4s\n",
                 v->residJ, v->resNameJ, v->atomNameJ, v->segJ, v->chainJ);
}

// Clears what a previous mapping left in the coupling.
void clearMapping(DCValue* v) {
    v->mapped = 0;
    v->dCalc = kMissingValue;
    v->dObsDiff = kMissingValue;
    v->di = v->diTable;
    v->w = v->wTable;
    v->dd = v->ddTable;
    v->result[0] = v->result[1] = 0.0f;
    v->result[2] = v->result[3] = v->result[4] = v->result[5] = 0.0f;
    v->countI = v->countJ = 0;
}

// The structure residues of a coupling at a residue offset; false when
// either lies outside the residue numbers a structure can have.
bool shiftedResids(const DCValue* v, int64_t offset, int* residI, int* residJ) {
    return shiftResid(v->residI, offset, residI) && shiftResid(v->residJ, offset, residJ);
}

int findOld(const int* oldResids, int residCount, int resid) {
    for (int k = 0; k < residCount; k++) {
        if (oldResids[k] == resid) return k;
    }
    return -1;
}

}  // namespace

int findDCAtoms(const PDBData* pdb, const DTab* dTab, DCValue* v, int residI, int residJ,
                int warn) {
    const char* chainI = dTab->noChainNames ? pdb->defaultChain : v->chainI;
    const char* chainJ = dTab->noChainNames ? pdb->defaultChain : v->chainJ;
    const char* segI = dTab->noSegNames ? pdb->defaultSeg : v->segI;
    const char* segJ = dTab->noSegNames ? pdb->defaultSeg : v->segJ;
    v->countI = findAtomList(pdb, residI, v->atomNameI, chainI, segI, v->atomsI);
    v->countJ = findAtomList(pdb, residJ, v->atomNameJ, chainJ, segJ, v->atomsJ);
    v->mapped = v->countI > 0 && v->countJ > 0;
    if (!v->mapped && warn == 1 && getPDBWarn()) warnUnmapped(v, residI, residJ);
    return 1;
}

void findDCW(DCValue* v, const float* weights, int weightCount, int firstResid) {
    v->w = v->wTable;
    v->dd = v->ddTable;
    if (!weights || weightCount < 1) return;
    int64_t k = static_cast<int64_t>(v->residI > v->residJ ? v->residI : v->residJ) - firstResid;
    if (k < 0 || k >= weightCount) return;
    v->w = v->wTable * static_cast<float>(std::sqrt(std::fabs(static_cast<double>(weights[k]))));
    // The uncertainty is divided by the plain weight while W takes its root.
    if (weights[k] != 0.0f) v->dd = v->ddTable / weights[k];
}

int buildDCN(PDBData** pdbs, int count, DTab* dTab, int residOffset, int firstResid,
             const float* weights, int weightCount, int useFixed) {
    if (!dTab) return 0;
    // Every build starts from nothing, so one that stops early leaves no
    // structure and no atom a later fit could read.
    dTabPDBFree(dTab);
    for (int i = 0; dTab->couplings && i < dTab->count; i++) clearMapping(dTab->couplings + i);
    if (!pdbs || count < 1 || !pdbs[0] || !dTab->couplings || !pdbs[0]->atoms) return 0;
    if (dTabPDBAlloc(dTab, pdbs, count) != 0 || dTab->pdbCount < 1) return 0;
    int mapped = 0;
    for (int i = 0; i < dTab->count; i++) {
        DCValue* v = dTab->couplings + i;
        int residI, residJ;
        if (!v->use || !shiftedResids(v, residOffset, &residI, &residJ)) continue;
        findDCAtoms(pdbs[0], dTab, v, residI, residJ, 0);
        if (!v->mapped) continue;
        if (weights && weightCount > 0) findDCW(v, weights, weightCount, firstResid);
        findDCDI(v, residI, residJ, useFixed);
        mapped++;
    }
    return mapped;
}

int buildDC(PDBData* pdb, DTab* dTab, int residOffset, int firstResid, const float* weights,
            int weightCount, int useFixed) {
    PDBData* list[1] = {pdb};
    return buildDCN(pdb ? list : nullptr, 1, dTab, residOffset, firstResid, weights, weightCount,
                    useFixed);
}

int mapDCInfoN(PDBData** pdbs, int count, DTab* dTab, int residOffset, int warn) {
    if (!dTab || !pdbs || count < 1 || !pdbs[0] || !dTab->couplings) return 0;
    int found = 0;
    for (int i = 0; i < dTab->count; i++) {
        DCValue* v = dTab->couplings + i;
        v->mapped = 0;
        v->countI = v->countJ = 0;
        if (warn == 1) v->use = 1;
        int residI, residJ;
        if (!warn && !v->use) continue;
        if (!shiftedResids(v, residOffset, &residI, &residJ)) continue;
        findDCAtoms(pdbs[0], dTab, v, residI, residJ, warn);
        if (v->countI > 0 && v->countJ > 0) found++;
    }
    return found;
}

int mapDCInfo(PDBData* pdb, DTab* dTab, int residOffset, int warn) {
    PDBData* list[1] = {pdb};
    return mapDCInfoN(pdb ? list : nullptr, 1, dTab, residOffset, warn);
}

int permuteDC(PDBData** pdbs, int count, DTab* dTab, const int* newResids, const int* oldResids,
              int residCount, int useFixed) {
    if (!dTab || !pdbs || count < 1 || !pdbs[0] || !dTab->couplings) return 0;
    int mapped = 0;
    for (int i = 0; i < dTab->count; i++) {
        DCValue* v = dTab->couplings + i;
        v->mapped = v->use = 0;
        v->dCalc = kMissingValue;
        for (float& result : v->result) result = 0.0f;
        if (!isPresent(v->dObs)) continue;
        int kI = findOld(oldResids, residCount, v->residI);
        int kJ = findOld(oldResids, residCount, v->residJ);
        if (kI < 0 && kJ < 0) continue;
        // A residue that was not renumbered keeps its separation from the other.
        int newI = kI >= 0 ? newResids[kI] : 0;
        int newJ = kJ >= 0 ? newResids[kJ] : 0;
        if (kI < 0 && !shiftResid(v->residI, static_cast<int64_t>(newJ) - v->residJ, &newI)) continue;
        if (kJ < 0 && !shiftResid(v->residJ, static_cast<int64_t>(newI) - v->residI, &newJ)) continue;
        v->use = 1;
        findDCAtoms(pdbs[0], dTab, v, newI, newJ, 1);
        if (!v->mapped) continue;
        findDCDI(v, newI, newJ, useFixed);
        mapped++;
    }
    return mapped;
}
