#include "pdb/select.h"

#include <strings.h>

#include <cmath>
#include <cstdio>
#include <cstring>

#include "pdb/name_match.h"
#include "pdb/names.h"
#include "pdb/residue_types.h"
#include "util/alloc.h"

namespace {

constexpr float kNoLimit = 1.0e30f;

bool isWater(const char* resName) {
    return strcasecmp(resName, "HOH") == 0 || strcasecmp(resName, "WAT") == 0;
}

bool inRange(int value, int first, int last) {
    if (first != kSelectUnset && value < first) return false;
    if (last != kSelectUnset && value > last) return false;
    return true;
}

bool recordTypeAllowed(const PDBAtom* atom, const PDBSelect* s) {
    if (!s->useType) return true;
    return atom->isHetAtm ? s->hetAtmRec != 0 : s->atomRec != 0;
}

// One atom-name entry: the classes "heavy" and "proton", or a pattern.
bool atomEntryMatches(const char* name, const char* entry, int mode) {
    if (strcasecmp(entry, "heavy") == 0) return !isProton(name);
    if (strcasecmp(entry, "proton") == 0) return isProton(name);
    if (mode != kMatchGlob) return strMatch(name, entry, mode, 0) == 1;
    char pattern[kAtomExprSize];
    std::snprintf(pattern, sizeof pattern, "%s", entry);
    adjAtomExpr(pattern, sizeof pattern);
    return strMatch(name, pattern, mode, 0) == 1;
}

bool listMatches(const NameList& list, const char* name, bool atomNames) {
    if (!list.names || list.count < 1) return true;
    for (int i = 0; i < list.count; i++) {
        const char* entry = list.names[i];
        if (!entry) continue;
        if (std::strcmp(entry, "*") == 0) return true;
        bool hit = atomNames ? atomEntryMatches(name, entry, list.mode)
                             : strMatch(name, entry, list.mode, 0) == 1;
        if (hit) return true;
    }
    return false;
}

bool namesMatch(const PDBAtom* atom, const PDBSelect* s) {
    return listMatches(s->atomNames, atom->atomName, true) &&
           listMatches(s->resNames, atom->resName, false) &&
           listMatches(s->chainNames, atom->chain, false) &&
           listMatches(s->segNames, atom->seg, false);
}

bool isSimple(const PDBSelect* s) {
    return !s->atomNames.names && !s->resNames.names && !s->chainNames.names &&
           !s->segNames.names && s->radius <= 0.0f;
}

void debugSelected(const PDBAtom* atom) {
    std::fprintf(stderr, "PDB Select: Res: %3d %4s Atom: %4s Chain: |%s| Seg: |%4s|\n", atom->resID,
                 atom->resName, atom->atomName, atom->chain, atom->seg);
}

void freeNameList(NameList* list) {
    freeStrList(list->names, list->count);
    list->names = nullptr;
    list->count = 0;
}

}  // namespace

void pdbSelectNull(PDBSelect* s) {
    std::memset(s, 0, sizeof *s);
    s->resID = kSelectUnset;
    s->res1 = s->resN = kSelectUnset;
    s->ae1 = s->aeN = kSelectUnset;
    s->atomNames.mode = s->resNames.mode = kMatchExact;
    s->chainNames.mode = s->segNames.mode = kMatchExact;
    s->selectID = 1;
    s->x1 = s->y1 = s->z1 = -kNoLimit;
    s->xn = s->yn = s->zn = kNoLimit;
    s->atomRec = 1;
    s->water = 1;
}

void pdbSelectFree(PDBSelect* s) {
    freeNameList(&s->atomNames);
    freeNameList(&s->resNames);
    freeNameList(&s->chainNames);
    freeNameList(&s->segNames);
}

void pdbSelectAdjust(PDBSelect* s) {
    if (s->resID != kSelectUnset) s->res1 = s->resN = s->resID;
    if (s->res1 != kSelectUnset && s->resN != kSelectUnset && s->res1 > s->resN) {
        int swap = s->res1;
        s->res1 = s->resN;
        s->resN = swap;
    }
    if (s->ae1 != kSelectUnset && s->aeN != kSelectUnset && s->ae1 > s->aeN) {
        int swap = s->ae1;
        s->ae1 = s->aeN;
        s->aeN = swap;
    }
}

int pdbSelectSphere(const PDBAtom* atom, const PDBSelect* s) {
    if (s->radius <= 0.0f) return 1;
    double dx = atom->x - s->x0, dy = atom->y - s->y0, dz = atom->z - s->z0;
    return std::sqrt(dx * dx + dy * dy + dz * dz) <= s->radius;
}

int pdbSelectRegion(const PDBAtom* atom, const PDBSelect* s) {
    return atom->x >= s->x1 && atom->x <= s->xn && atom->y >= s->y1 && atom->y <= s->yn &&
           atom->z >= s->z1 && atom->z <= s->zn;
}

int pdbSelectTest(int index, const PDBAtom* atom, const PDBSelect* s) {
    if (!s) return 1;
    if (!atom) return 0;
    if (!s->water && isWater(atom->resName)) return 0;
    if (!inRange(atom->resID, s->res1, s->resN)) return 0;
    if (s->resID != kSelectUnset && atom->resID != s->resID) return 0;
    if (s->specialClass == kSpecialAminoAcids && !isAminoAcid(atom->resName)) return 0;
    if (!recordTypeAllowed(atom, s)) return 0;
    if (!inRange(index, s->ae1, s->aeN)) return 0;
    if (!namesMatch(atom, s)) return 0;
    return pdbSelectSphere(atom, s) && pdbSelectRegion(atom, s);
}

int pdbSelect1(PDBData* pdb, const PDBSelect* s, int index) {
    if (!pdb || index < 0 || index >= pdb->atomCount) return 0;
    PDBAtom* atom = pdb->atoms + index;
    bool chosen = pdbSelectTest(index, atom, s) != 0;
    if (s && s->invert) chosen = !chosen;
    atom->selected = chosen ? (s ? s->selectID : 1) : 0;
    if (chosen && s && s->dbg) debugSelected(atom);
    return chosen ? 1 : 0;
}

int pdbSelect(PDBData* pdb, const PDBSelect* s) {
    if (!pdb) return 0;
    if (s && s->clear) {
        pdbClearSelection(pdb);
        return 0;
    }
    if (s && s->set) {
        pdbSetSelection(pdb);
        return pdb->atomCount;
    }
    if (s && s->dbg) {
        if (isSimple(s)) {
            std::fprintf(stderr, "TESSERA Info: Simple Selection.\n");
        } else {
            std::fprintf(stderr, "TESSERA Info: Complex Selection Atom %d Res %d Seg %d Chain %d\n",
                         s->atomNames.count, s->resNames.count, s->segNames.count,
                         s->chainNames.count);
        }
    }
    int count = 0;
    for (int i = 0; i < pdb->atomCount; i++) count += pdbSelect1(pdb, s, i);
    return count;
}

int pdbSelectCount(const PDBData* pdb) {
    if (!pdb) return 0;
    int count = 0;
    for (int i = 0; i < pdb->atomCount; i++) count += pdb->atoms[i].selected != 0;
    return count;
}

void pdbClearSelection(PDBData* pdb) {
    for (int i = 0; pdb && i < pdb->atomCount; i++) pdb->atoms[i].selected = 0;
}

void pdbSetSelection(PDBData* pdb) {
    for (int i = 0; pdb && i < pdb->atomCount; i++) pdb->atoms[i].selected = 1;
}

void pdbSetResSelection(PDBResidue* residue, int mark) {
    for (int i = 0; residue && i < residue->atomCount; i++) residue->atoms[i]->selected = mark;
}
