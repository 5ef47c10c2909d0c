#include "pdb/index.h"

#include <cstdio>
#include <cstring>

#include "cs/structure_scores.h"
#include "pdb/keys.h"
#include "pdb/lists.h"
#include "pdb/lookup.h"
#include "pdb/modes.h"
#include "pdb/records.h"
#include "pdb/residue_types.h"
#include "pdb/structure.h"
#include "util/alloc.h"
#include "util/symtab.h"

namespace {

// The record index stored under key, or -1.
int findIndex(const HSymTab* table, const char* key) {
    const HSym* sym = hFindSym(key, table);
    return sym ? sym->val.i : -1;
}

bool storeIndex(HSymTab* table, const char* key, int index) {
    HSym* sym = hAddSym(key, HSYM_INT, table);
    if (!sym) return false;
    sym->val.i = index;
    return true;
}

void debugKey(const char* what, const char* key) {
    if (getPDBDBG()) std::fprintf(stderr, "PDB inserting %s |%s|\n", what, key);
}

// Looks the key up, or makes a new record with makeRecord and stores its index.
template <class MakeRecord>
int findOrInsert(HSymTab* table, const char* key, const char* what, const char* failure,
                 MakeRecord makeRecord) {
    int index = findIndex(table, key);
    if (index >= 0) return index;
    debugKey(what, key);
    index = makeRecord();
    if (index < 0 || !storeIndex(table, key, index)) {
        std::fprintf(stderr, "%s", failure);
        return -1;
    }
    return index;
}

void warnRedundant(const PDBAtom* atom) {
    if (!getPDBWarn()) return;
    std::fprintf(stderr, "PDB Warning: Redundant Atom Specification.\n");
    std::fprintf(stderr, " ResID: %d AtomName: %s Chain: %s Seg: %s LocID: %s ICode: %s\n",
                 atom->resID, atom->atomName, atom->chain, atom->seg, atom->locID, atom->icode);
}

bool sameResidueKey(const PDBAtom* a, const PDBAtom* b) {
    return a->resID == b->resID && std::strcmp(a->chain, b->chain) == 0 &&
           std::strcmp(a->seg, b->seg) == 0;
}

bool sameGroupKey(const PDBAtom* a, const PDBAtom* b) {
    return std::strcmp(a->chain, b->chain) == 0 && std::strcmp(a->seg, b->seg) == 0;
}

int saveCoordinates(PDBData* pdb) {
    pdb->savedXYZ = fltMalloc64("pdb", static_cast<int64_t>(pdb->atomCapacity) * 3);
    if (!pdb->savedXYZ) {
        std::fprintf(stderr, "PDB Error Allocating PDB coords.\n");
        return 1;
    }
    pdb->savedCount = pdb->atomCapacity;
    storePDBCoords(pdb);
    return 0;
}

void setDefaultNames(PDBData* pdb) {
    const PDBAtom* first = pdb->atoms;
    copyName(pdb->defaultChain, first->chain);
    copyName(pdb->defaultSeg, first->seg);
}

void setResidueRange(PDBData* pdb) {
    pdb->resMin = pdb->resMax = pdb->atoms[0].resID;
    for (int i = 1; i < pdb->atomCount; i++) {
        int resID = pdb->atoms[i].resID;
        if (resID < pdb->resMin) pdb->resMin = resID;
        if (resID > pdb->resMax) pdb->resMax = resID;
    }
}

// While an atom is inserted, the bucket of the atom this many ahead is
// fetched: in a large structure nearly every bucket is a cache miss (a small
// one's table stays in the cache, and the extra key would only cost time).
constexpr int kPrefetchAhead = 16;
constexpr int kPrefetchFromAtoms = 1 << 15;

int indexAtoms(PDBData* pdb) {
    char key[kKeySize];
    bool prefetch = pdb->atomCount >= kPrefetchFromAtoms;
    for (int i = 0; i < pdb->atomCount; i++) {
        if (prefetch && i + kPrefetchAhead < pdb->atomCount) {
            atomKey(key, pdb->atoms + i + kPrefetchAhead);
            hSymPrefetchBucket(hSymHash(key, pdb->atomTable), pdb->atomTable);
        }
        if (insertAtom(pdb, i) < 0) return 1;
    }
    return 0;
}

// Consecutive atoms of one residue share its record without a new lookup.
int indexResidues(PDBData* pdb) {
    int current = -1;
    for (int i = 0; i < pdb->atomCount; i++) {
        PDBAtom* atom = pdb->atoms + i;
        if (current < 0 || !sameResidueKey(atom, atom - 1)) current = insertRes(pdb, atom);
        if (current < 0) return 1;
        if (setResInfo(pdb->residues + current, atom) != 0) return 1;
    }
    for (int r = 0; r < pdb->resCount; r++) {
        PDBResidue* residue = pdb->residues + r;
        for (int a = 0; a < residue->atomCount; a++) residue->atoms[a]->residue = residue;
    }
    return 0;
}

int indexGroups(PDBData* pdb) {
    int chain = -1, seg = -1;
    for (int i = 0; i < pdb->atomCount; i++) {
        PDBAtom* atom = pdb->atoms + i;
        bool same = i > 0 && sameGroupKey(atom, atom - 1);
        if (!same || chain < 0) chain = insertChain(pdb, atom);
        if (chain < 0 || setChainAtomInfo(pdb->chains + chain, atom) != 0) return 1;
        if (!same || seg < 0) seg = insertSeg(pdb, atom);
        if (seg < 0 || setSegAtomInfo(pdb->segs + seg, atom) != 0) return 1;
    }
    return 0;
}

// The residue range of a group, from the residues of its atoms.
void rangeFromAtoms(PDBGroup* group) {
    for (int a = 0; a < group->atomCount; a++) {
        int resID = group->atoms[a]->residue->resID;
        if (a == 0 || resID < group->resMin) group->resMin = resID;
        if (a == 0 || resID > group->resMax) group->resMax = resID;
    }
}

// Points the atoms of every chain (or segment) and their residues back at
// it through the given member, and takes its residue range.
template <class Group>
void linkGroups(Group* groups, int count, Group* PDBAtom::*atomField,
                Group* PDBResidue::*residueField) {
    for (int g = 0; g < count; g++) {
        Group* group = groups + g;
        for (int a = 0; a < group->atomCount; a++) {
            group->atoms[a]->*atomField = group;
            group->atoms[a]->residue->*residueField = group;
        }
        rangeFromAtoms(group);
    }
}

void linkChains(PDBData* pdb) {
    linkGroups(pdb->chains, pdb->chainCount, &PDBAtom::chainRec, &PDBResidue::chainRec);
    linkGroups(pdb->segs, pdb->segCount, &PDBAtom::segRec, &PDBResidue::segRec);
}

int appendGroupResidue(PDBGroup* group, PDBResidue* residue) {
    if (!group) return 0;
    PDBResidue** slot = getNextResPtr(&group->residues, &group->resCount, &group->resCapacity,
                                      kResListFirst, kResListStep);
    if (!slot) return 1;
    *slot = residue;
    return 0;
}

int listGroupResidues(PDBData* pdb) {
    for (int r = 0; r < pdb->resCount; r++) {
        PDBResidue* residue = pdb->residues + r;
        if (appendGroupResidue(residue->chainRec, residue) != 0) return 1;
        if (appendGroupResidue(residue->segRec, residue) != 0) return 1;
    }
    return 0;
}

int buildByRes(PDBGroup* group, const char* failure) {
    if (group->resCount < 1) return 0;
    int64_t slots = static_cast<int64_t>(group->resMax) - group->resMin + 1;
    group->byRes = static_cast<PDBResidue**>(voidMallocNull64("pdb", slots * sizeof(PDBResidue*)));
    if (!group->byRes) {
        std::fprintf(stderr, "%s", failure);
        return 1;
    }
    for (int r = 0; r < group->resCount; r++) {
        PDBResidue* residue = group->residues[r];
        group->byRes[residue->resID - group->resMin] = residue;
    }
    return 0;
}

int buildResidueIndices(PDBData* pdb) {
    for (int c = 0; c < pdb->chainCount; c++) {
        if (buildByRes(pdb->chains + c, "PDB Error Allocating Chain Residue Array.\n")) return 1;
    }
    for (int s = 0; s < pdb->segCount; s++) {
        if (buildByRes(pdb->segs + s, "PDB Error Allocating Seg Residue Array.\n")) return 1;
    }
    return 0;
}

void linkNeighbours(PDBData* pdb) {
    for (int r = 0; r < pdb->resCount; r++) {
        PDBResidue* residue = pdb->residues + r;
        residue->prev = findRes(pdb, residue->resID - 1, residue->chain, residue->seg);
        residue->next = findRes(pdb, residue->resID + 1, residue->chain, residue->seg);
        residue->resType = findResType(residue);
    }
}

}  // namespace

int insertAtom(PDBData* pdb, int atomIndex) {
    PDBAtom* atom = pdb->atoms + atomIndex;
    char key[kKeySize];
    atomKey(key, atom);
    int existing = findIndex(pdb->atomTable, key);
    if (existing >= 0) {
        warnRedundant(atom);
        return existing;
    }
    debugKey("atom", key);
    if (!storeIndex(pdb->atomTable, key, atomIndex)) {
        std::fprintf(stderr, "PDB Atom Symbol Table Error.\n");
        return -1;
    }
    return atomIndex;
}

int insertRes(PDBData* pdb, const PDBAtom* atom) {
    char key[kKeySize];
    resKey(key, atom->resID, atom->chain, atom->seg);
    return findOrInsert(pdb->resTable, key, "residiue", "PDB Residue Symbol Table Error.\n",
                        [&] { return getNextRes(pdb) ? pdb->resCount - 1 : -1; });
}

int insertChain(PDBData* pdb, const PDBAtom* atom) {
    char key[kKeySize];
    chainKey(key, atom->chain, atom->seg);
    return findOrInsert(pdb->chainTable, key, "chain", "PDB Chain Symbol Table Error.\n",
                        [&] { return getNextChain(pdb) ? pdb->chainCount - 1 : -1; });
}

int insertSeg(PDBData* pdb, const PDBAtom* atom) {
    char key[kKeySize];
    segKey(key, atom->seg, atom->chain);
    return findOrInsert(pdb->segTable, key, "segment", "PDB Seg Symbol Table Error.\n",
                        [&] { return getNextSeg(pdb) ? pdb->segCount - 1 : -1; });
}

int indexPDB(PDBData* pdb) {
    if (!pdb || pdb->atomCount < 1) return 0;
    setDefaultNames(pdb);
    if (saveCoordinates(pdb) != 0) return 1;
    setResidueRange(pdb);
    if (indexAtoms(pdb) != 0) return 1;
    if (indexResidues(pdb) != 0) return 1;
    if (indexGroups(pdb) != 0) return 1;
    linkChains(pdb);
    if (listGroupResidues(pdb) != 0) return 1;
    if (buildResidueIndices(pdb) != 0) return 1;
    linkNeighbours(pdb);
    // Each residue's conformation surface, with xPRO before a proline.
    setPhiPsiSurf(pdb->residues, pdb->resCount, 1);
    return 0;
}
