#include "pdb/structure.h"

#include <cstdio>
#include <cstring>

#include "util/alloc.h"
#include "util/symtab.h"

namespace {

int64_t xyzBytes(int atoms) { return static_cast<int64_t>(atoms) * 3 * sizeof(float); }

template <class Group>
void freeGroups(Group* groups, int count) {
    for (int i = 0; i < count; i++) {
        PDBGroup* g = groups + i;
        unAlloc64("pdb", g->atoms, static_cast<int64_t>(g->atomCapacity) * sizeof(PDBAtom*));
        unAlloc64("pdb", g->residues, static_cast<int64_t>(g->resCapacity) * sizeof(PDBResidue*));
        unAlloc64("pdb", g->byRes,
                  static_cast<int64_t>(g->resMax - g->resMin + 1) * sizeof(PDBResidue*));
    }
}

void freeBonds(PDBData* pdb) {
    int64_t n = pdb->bondAtomCount;
    unAlloc64("pdb", pdb->bondMatrix, n * n);
    unAlloc64("pdb", pdb->neighbourMatrix, n * n * static_cast<int64_t>(sizeof(int)));
    unAlloc64("pdb", pdb->bondCount, n * static_cast<int64_t>(sizeof(int)));
    unAlloc64("pdb", pdb->neighbourCount, n * static_cast<int64_t>(sizeof(int)));
}

void freeTable(HSymTab** table) {
    if (*table) hSymTabFree(*table);
    *table = nullptr;
}

}  // namespace

void pdbNull(PDBData* pdb) {
    std::memset(pdb, 0, sizeof *pdb);
    pdb->firstAtom = -1;
    pdb->lastAtom = -1;
}

int pdbInit(PDBData* pdb) {
    // Index tables grow with the structure, so a lookup costs the same in
    // a peptide and in a million-atom assembly.
    if (!pdb->atomTable) pdb->atomTable = hSymTabAllocGrowing(kAtomTableBuckets);
    if (!pdb->resTable) pdb->resTable = hSymTabAllocGrowing(0);
    if (!pdb->chainTable) pdb->chainTable = hSymTabAllocGrowing(0);
    if (!pdb->segTable) pdb->segTable = hSymTabAllocGrowing(0);
    return pdb->atomTable && pdb->resTable && pdb->chainTable && pdb->segTable ? 0 : 1;
}

void pdbFree(PDBData* pdb) {
    if (!pdb) return;
    freeBonds(pdb);
    unAlloc64("pdb", pdb->atoms, static_cast<int64_t>(pdb->atomCapacity) * sizeof(PDBAtom));
    for (int i = 0; i < pdb->resCount; i++) {
        PDBResidue* residue = pdb->residues + i;
        unAlloc64("pdb", residue->atoms,
                  static_cast<int64_t>(residue->atomCapacity) * sizeof(PDBAtom*));
    }
    unAlloc64("pdb", pdb->residues, static_cast<int64_t>(pdb->resCapacity) * sizeof(PDBResidue));
    freeGroups(pdb->chains, pdb->chainCount);
    unAlloc64("pdb", pdb->chains, static_cast<int64_t>(pdb->chainCapacity) * sizeof(PDBChain));
    freeGroups(pdb->segs, pdb->segCount);
    unAlloc64("pdb", pdb->segs, static_cast<int64_t>(pdb->segCapacity) * sizeof(PDBSegment));
    unAlloc64("pdb", pdb->savedXYZ, xyzBytes(pdb->savedCount));
    unAlloc64("pdb", pdb->vdwXYZ, xyzBytes(pdb->vdwCount));
    freeTable(&pdb->atomTable);
    freeTable(&pdb->resTable);
    freeTable(&pdb->chainTable);
    freeTable(&pdb->segTable);
    pdbNull(pdb);
}

void pdbCopyCoords(float* destination, const float* source, int n) {
    if (!destination || !source || n < 1) return;
    std::memmove(destination, source, static_cast<std::size_t>(xyzBytes(n)));
}

int pdbCopy(PDBData* destination, const PDBData* source) {
    if (!destination || !source) {
        std::fprintf(stderr, "Error (PDBCopy): Null PDB Data.\n");
        return 1;
    }
    if (destination->atomCount != source->atomCount) {
        std::fprintf(stderr, "Error (PDBCopy): Atom Count Mismatch.\n");
        return 1;
    }
    if (destination->resMin != source->resMin) {
        std::fprintf(stderr, "Error (PDBCopy): Residue Count Mismatch.\n");
        return 1;
    }
    for (int i = 0; i < source->atomCount; i++) {
        PDBAtom* to = destination->atoms + i;
        const PDBAtom* from = source->atoms + i;
        to->x = from->x;
        to->y = from->y;
        to->z = from->z;
        to->selected = from->selected;
    }
    int saved =
        source->savedCount < destination->savedCount ? source->savedCount : destination->savedCount;
    pdbCopyCoords(destination->savedXYZ, source->savedXYZ, saved);
    return 0;
}

void storePDBCoords(PDBData* pdb) {
    if (!pdb->savedXYZ || !pdb->atoms) return;
    for (int i = 0; i < pdb->atomCount && i < pdb->savedCount; i++) {
        pdb->savedXYZ[3 * i] = pdb->atoms[i].x;
        pdb->savedXYZ[3 * i + 1] = pdb->atoms[i].y;
        pdb->savedXYZ[3 * i + 2] = pdb->atoms[i].z;
    }
}

void restorePDBCoords(PDBData* pdb) {
    if (!pdb->savedXYZ || !pdb->atoms) return;
    for (int i = 0; i < pdb->atomCount && i < pdb->savedCount; i++) {
        pdb->atoms[i].x = pdb->savedXYZ[3 * i];
        pdb->atoms[i].y = pdb->savedXYZ[3 * i + 1];
        pdb->atoms[i].z = pdb->savedXYZ[3 * i + 2];
    }
}

void pdbClearAuxInfo(PDBData* pdb) {
    for (int i = 0; i < pdb->atomCount; i++) pdb->atoms[i].aux = nullptr;
    for (int i = 0; i < pdb->resCount; i++) pdb->residues[i].aux = nullptr;
}

void pdbRenumberAtoms(PDBData* pdb, int base) {
    for (int i = 0; i < pdb->atomCount; i++) pdb->atoms[i].atomID = base + i + 1;
}

void pdbSetTempFactor(PDBData* pdb, int mark, float value) {
    for (int i = 0; i < pdb->atomCount; i++) {
        if (pdb->atoms[i].selected == mark) pdb->atoms[i].tempFactor = value;
    }
}

int pdbAllocVDW(PDBData* pdb) {
    if (pdb->vdwXYZ) return 0;
    pdb->vdwXYZ = static_cast<float*>(voidMallocNull64("pdb", xyzBytes(pdb->atomCapacity)));
    if (pdb->vdwXYZ) {
        pdb->vdwCount = pdb->atomCapacity;
        return 0;
    }
    std::fprintf(stderr, "PDB Error Allocating VDW coords.\n");
    return 1;
}

int pdbAllocBonds(PDBData* pdb) {
    if (pdb->bondMatrix) return 0;
    int64_t n = pdb->atomCount;
    pdb->bondAtomCount = pdb->atomCount;
    pdb->bondMatrix = static_cast<unsigned char*>(voidMallocNull64("pdb", n * n));
    pdb->neighbourMatrix = static_cast<int*>(voidMallocNull64("pdb", n * n * 4));
    pdb->bondCount = static_cast<int*>(voidMallocNull64("pdb", n * 4));
    pdb->neighbourCount = static_cast<int*>(voidMallocNull64("pdb", n * 4));
    if (pdb->bondMatrix && pdb->neighbourMatrix && pdb->bondCount && pdb->neighbourCount) {
        return 0;
    }
    std::fprintf(stderr, "TESSERA Error Allocating Bond/Neighbor memory.\n");
    freeBonds(pdb);
    pdb->bondMatrix = nullptr;
    pdb->neighbourMatrix = pdb->bondCount = pdb->neighbourCount = nullptr;
    return 1;
}

void updateVDWFromPDB(PDBData* pdb) {
    if (!pdb->vdwXYZ) return;
    for (int i = 0; i < pdb->atomCount && i < pdb->vdwCount; i++) {
        pdb->vdwXYZ[3 * i] = pdb->atoms[i].x;
        pdb->vdwXYZ[3 * i + 1] = pdb->atoms[i].y;
        pdb->vdwXYZ[3 * i + 2] = pdb->atoms[i].z;
    }
}
