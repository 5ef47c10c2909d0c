#include "cs/map_cs.h"

#include <cstdint>
#include <cstdio>

#include "pdb/atom_list.h"
#include "pdb/lookup.h"
#include "pdb/modes.h"
#include "pdb/pdb_types.h"
#include "util/residue_number.h"

namespace {

void warnDetail(const CSValue* row) {
    std::fprintf(stderr, "   ResID: %4d ResName: %4s AtomName: %4s Seg: %4s Chain: %4s\n",
                 row->resID, row->resName, row->atomName, row->seg, row->chain);
}

const char* lookupChain(const PDBData* pdb, const CSTab* table, const CSValue* row) {
    return table->ignoreChain ? pdb->defaultChain : row->chain;
}

const char* lookupSeg(const PDBData* pdb, const CSTab* table, const CSValue* row) {
    return table->ignoreSeg ? pdb->defaultSeg : row->seg;
}

void clearAtoms(CSValue* row) {
    for (PDBAtom*& atom : row->atoms) atom = nullptr;
    row->atomCount = 0;
    row->x = row->y = row->z = 0.0f;
}

// Whether the row takes part: mode 1 takes every row and marks it used.
bool considered(CSValue* row, int mode) {
    if (mode == 1) row->use = 1;
    return row->use != 0;
}

// The row's atoms at its residue plus offset; a residue beyond the numbers
// a structure can have has none.
int atomsAtOffset(const PDBData* pdb, const CSTab* table, CSValue* row, int64_t offset, int warn) {
    int resID;
    row->mapped = 1;
    if (shiftResid(row->resID, offset, &resID)) return findCSAtoms(pdb, table, row, resID, warn);
    clearAtoms(row);
    row->mapped = 0;
    return 0;
}

int findListed(const int* list, int count, int resID) {
    for (int k = 0; list && k < count; k++) {
        if (list[k] == resID) return k;
    }
    return -1;
}

}  // namespace

int findCSRes(const PDBData* pdb, const CSTab* table, CSValue* row, int resID, int warn) {
    row->residue =
        pdb ? findRes(pdb, resID, lookupChain(pdb, table, row), lookupSeg(pdb, table, row))
            : nullptr;
    row->mapped = row->residue != nullptr;
    if (!row->mapped && warn == 1 && getPDBWarn()) {
        std::fprintf(stderr, "TESSERA Warning: No Res Map for CS (PDB ResID %d):\n", resID);
        warnDetail(row);
    }
    return row->mapped;
}

int mapCSResInfo(const PDBData* pdb, CSTab* table, int offset) {
    int mapped = 0;
    for (int i = 0; table && i < table->count; i++) {
        CSValue* row = table->rows + i;
        if (!row->use) continue;
        int resID;
        if (shiftResid(row->resID, offset, &resID)) {
            findCSRes(pdb, table, row, resID, 1);
        } else {
            row->residue = nullptr;
            row->mapped = 0;
        }
        if (row->residue) mapped++;
    }
    if (table) table->mapped = mapped;
    return mapped;
}

int findCSAtoms(const PDBData* pdb, const CSTab* table, CSValue* row, int resID, int warn) {
    clearAtoms(row);
    if (pdb) {
        row->atomCount =
            findBestAtoms(pdb, resID, row->resName, row->atomName, lookupChain(pdb, table, row),
                          lookupSeg(pdb, table, row), row->atoms);
        findAtomListPos(row->atoms, row->atomCount, &row->x, &row->y, &row->z);
    }
    if (row->atomCount > 0) return row->atomCount;
    row->mapped = 0;
    if (warn == 1 && getPDBWarn() && row->isPred) {
        std::fprintf(stderr, "TESSERA Warning: No Atom Map for CS (PDB ResID %d):\n", resID);
        warnDetail(row);
    }
    return 0;
}

int mapCSAtomInfo(const PDBData* pdb, CSTab* table, int offset, int mode) {
    int found = 0;
    for (int i = 0; table && i < table->count; i++) {
        CSValue* row = table->rows + i;
        if (!considered(row, mode)) continue;
        if (atomsAtOffset(pdb, table, row, offset, mode == 1 ? 1 : 0) > 0) found++;
    }
    return found;
}

int permuteCSAtoms(const PDBData* pdb, CSTab* table, const int* pdbResIDs, const int* tableResIDs,
                   int count) {
    int found = 0;
    for (int i = 0; table && i < table->count; i++) {
        CSValue* row = table->rows + i;
        row->residue = nullptr;
        clearAtoms(row);
        int k = findListed(tableResIDs, count, row->resID);
        row->use = k >= 0;
        row->mapped = 0;
        if (k < 0) continue;
        findCSRes(pdb, table, row, pdbResIDs[k], 0);
        if (findCSAtoms(pdb, table, row, pdbResIDs[k], 0) > 0) found++;
    }
    return found;
}

int mapCS2PDB(PDBData* pdb, CSTab* table, int mode) {
    int matched = 0;
    for (int i = 0; table && i < table->count; i++) {
        CSValue* row = table->rows + i;
        if (!considered(row, mode) || row->obs > 900.0f) continue;
        row->mapped = 1;
        if (findCSAtoms(pdb, table, row, row->resID, 0) > 0) {
            for (int k = 0; k < row->atomCount; k++) {
                row->atoms[k]->property[0] = row->obs;
                row->atoms[k]->property[1] = row->sigma;
                row->atoms[k]->property[2] = row->rc;
            }
            matched++;
            if (row->rc > 900.0f) {
                std::fprintf(stderr, "TESSERA Warning: No Random Coil Shift for CS/PDB Map:\n");
                warnDetail(row);
            }
        } else if (row->isPred && getPDBWarn() && mode == 1) {
            std::fprintf(stderr, "TESSERA Warning: No PDB Map for CS:\n");
            warnDetail(row);
        }
    }
    return matched;
}
