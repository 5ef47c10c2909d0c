#include "pdb/lookup.h"

#include <strings.h>

#include <cctype>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <initializer_list>

#include "pdb/keys.h"
#include "pdb/modes.h"
#include "pdb/name_match.h"
#include "util/symtab.h"

namespace {

struct AtomLookupState {
    int usedResidue = 0;
    PDBResidue* residue = nullptr;
};

AtomLookupState lookupState;

bool isAny(const char* text) { return text && std::strcmp(text, "*") == 0; }

bool bothIgnored() { return getPDBChainMode() && getPDBSegMode(); }

PDBResidue* scanResidues(const PDBData* pdb, int resID) {
    for (int i = 0; i < pdb->resCount; i++) {
        if (pdb->residues[i].resID == resID) return pdb->residues + i;
    }
    return nullptr;
}

int tableIndex(const HSymTab* table, const char* key) {
    const HSym* sym = table ? hFindSym(key, table) : nullptr;
    return sym ? sym->val.i : -1;
}

PDBAtom* atomInResidue(const PDBResidue* residue, const char* atomName) {
    for (int i = 0; residue && i < residue->atomCount; i++) {
        if (std::strcmp(residue->atoms[i]->atomName, atomName) == 0) return residue->atoms[i];
    }
    return nullptr;
}

// Equality of two short texts (names of one to four characters), without a
// library call.
inline bool sameText(const char* a, const char* b) {
    while (*a && *a == *b) a++, b++;
    return *a == *b;
}

// The atom whose index key is the lookup key itself, found without the
// index: the residue at its position in a contiguously numbered structure
// with exactly the chain and segment asked for, and in it the first atom of
// that name, chain and segment with no alternate location or insertion
// code. Null when any of this does not hold (or a key mode is on): the
// index is asked then. The mapping of a search asks this for every coupling
// at every offset.
PDBAtom* directAtom(const PDBData* pdb, int resID, const char* atomName, const char* chain,
                    const char* seg) {
    // A name, chain or segment longer than a record's field matches no
    // record here and takes the index path.
    if (getPDBChainMode() || getPDBSegMode() || getPDBAtomMode() || getPDBUniqMode())
        return nullptr;
    if (pdb->resCount < 1 || resID < pdb->resMin || resID > pdb->resMax) return nullptr;
    int64_t position = static_cast<int64_t>(resID) - pdb->resMin;
    if (position >= pdb->resCount) return nullptr;
    const PDBResidue* residue = pdb->residues + position;
    if (residue->resID != resID || !sameText(residue->chain, chain) || !sameText(residue->seg, seg))
        return nullptr;
    // Every atom of a residue record has its chain and segment, so only the
    // name and the alternate-location and insertion fields are compared.
    for (int i = 0; i < residue->atomCount; i++) {
        PDBAtom* a = residue->atoms[i];
        if (sameText(a->atomName, atomName) && !a->locID[0] && !a->icode[0]) return a;
    }
    return nullptr;
}

bool samePrefix(const char* a, const char* b) {
    return std::toupper(static_cast<unsigned char>(a[0])) ==
               std::toupper(static_cast<unsigned char>(b[0])) &&
           std::toupper(static_cast<unsigned char>(a[1])) ==
               std::toupper(static_cast<unsigned char>(b[1]));
}

}  // namespace

PDBResidue* findRes(const PDBData* pdb, int resID, const char* chain, const char* seg) {
    if (!pdb || pdb->resCount < 1) return nullptr;
    if (resID < pdb->resMin || resID > pdb->resMax) return nullptr;
    if (bothIgnored()) {
        int position = resID - pdb->resMin;
        if (position < pdb->resCount && pdb->residues[position].resID == resID) {
            return pdb->residues + position;
        }
        return scanResidues(pdb, resID);
    }
    if (isAny(chain) && isAny(seg)) return scanResidues(pdb, resID);
    char key[kKeySize];
    resKey(key, resID, chain ? chain : "", seg ? seg : "");
    int index = tableIndex(pdb->resTable, key);
    return index >= 0 ? pdb->residues + index : nullptr;
}

const char* findResName(const PDBData* pdb, int resID, const char* chain, const char* seg) {
    const PDBResidue* residue = findRes(pdb, resID, chain, seg);
    return residue ? residue->resName : "";
}

int getResCount(const PDBData* pdb, int first, int last, const char* chain, const char* seg,
                int* span, int* count) {
    // In 64 bits, so that a range reaching the end of the int range ends.
    int64_t width = static_cast<int64_t>(last) + 1 - first;
    if (span)
        *span = width > INT_MAX ? INT_MAX : width < INT_MIN ? INT_MIN : static_cast<int>(width);
    int found = count ? *count : 0;
    // No residue lies outside the structure's range, so only its part of
    // the range is looked at.
    int64_t from = pdb && first < pdb->resMin ? pdb->resMin : first;
    int64_t to = pdb && last > pdb->resMax ? pdb->resMax : last;
    for (int64_t resID = from; resID <= to; resID++) {
        if (findRes(pdb, static_cast<int>(resID), chain, seg)) found++;
    }
    if (count) *count = found;
    return found;
}

PDBAtom* findAtom(const PDBData* pdb, int resID, const char* atomName, const char* chain,
                  const char* seg) {
    lookupState = AtomLookupState{};
    if (!pdb || !atomName) return nullptr;
    if (bothIgnored() || (isAny(chain) && isAny(seg))) {
        lookupState.usedResidue = 1;
        lookupState.residue = findRes(pdb, resID, chain, seg);
        PDBAtom* atom = atomInResidue(lookupState.residue, atomName);
        if (atom) return atom;
    }
    if (chain && seg && !getPDBDBG()) {
        if (PDBAtom* atom = directAtom(pdb, resID, atomName, chain, seg)) return atom;
    }
    char key[kKeySize];
    atomLookupKey(key, resID, atomName, chain ? chain : "", seg ? seg : "");
    if (getPDBDBG()) std::fprintf(stderr, "PDB finding   |%s|\n", key);
    int index = tableIndex(pdb->atomTable, key);
    return index >= 0 ? pdb->atoms + index : nullptr;
}

PDBAtom* findAtomN(const PDBData* pdb, int resID, const char* names, const char* chain,
                   const char* seg) {
    if (!names) return nullptr;
    char words[1024];
    std::snprintf(words, sizeof words, "%s", names);
    for (char* p = words; *p; p++) {
        if (*p == '|') *p = ' ';
    }
    char* save = nullptr;
    for (char* word = strtok_r(words, " \t", &save); word; word = strtok_r(nullptr, " \t", &save)) {
        PDBAtom* atom = findAtom(pdb, resID, word, chain, seg);
        if (atom) return atom;
    }
    return nullptr;
}

int findAtomList(const PDBData* pdb, int resID, const char* atomExpr, const char* chain,
                 const char* seg, PDBAtom** out) {
    PDBAtom* atom = findAtom(pdb, resID, atomExpr, chain, seg);
    if (atom) {
        out[0] = atom;
        return 1;
    }
    char pattern[1024];
    if (!atomExpr || !isAtomExpr(atomExpr, pattern)) return 0;
    const PDBResidue* residue = findRes(pdb, resID, chain, seg);
    int count = 0;
    for (int i = 0; residue && i < residue->atomCount && count < kMaxAtomMatches; i++) {
        if (atomMatch(residue->atoms[i]->atomName, atomExpr)) out[count++] = residue->atoms[i];
    }
    return count;
}

int findBestAtoms(const PDBData* pdb, int resID, const char* unused, const char* atomName,
                  const char* chain, const char* seg, PDBAtom** out) {
    PDBAtom* atom = findAtom(pdb, resID, atomName, chain, seg);
    if (atom) {
        out[0] = atom;
        return 1;
    }
    if (!atomName || std::strlen(atomName) < 2) return 0;
    const PDBResidue* residue =
        lookupState.usedResidue ? lookupState.residue : findRes(pdb, resID, chain, seg);
    int count = 0;
    for (int i = 0; residue && i < residue->atomCount && count < kMaxAtomMatches; i++) {
        const char* name = residue->atoms[i]->atomName;
        if (std::strlen(name) >= 2 && samePrefix(name, atomName)) out[count++] = residue->atoms[i];
    }
    return count;
}

PDBChain* findChain(const PDBData* pdb, const char* chain, const char* seg) {
    if (!pdb) return nullptr;
    char key[kKeySize];
    chainKey(key, chain ? chain : "", seg ? seg : "");
    int index = tableIndex(pdb->chainTable, key);
    return index >= 0 ? pdb->chains + index : nullptr;
}

PDBSegment* findSeg(const PDBData* pdb, const char* seg, const char* chain) {
    if (!pdb) return nullptr;
    char key[kKeySize];
    segKey(key, seg ? seg : "", chain ? chain : "");
    int index = tableIndex(pdb->segTable, key);
    return index >= 0 ? pdb->segs + index : nullptr;
}

int pdbSameSeg(const PDBAtom* a1, const PDBAtom* a2, const PDBAtom* a3, const PDBAtom* a4) {
    if (!a1 || !a2 || !a3 || !a4) return 0;
    for (const PDBAtom* other : {a2, a3, a4}) {
        if (strcasecmp(other->chain, a1->chain) != 0) return 0;
        if (strcasecmp(other->seg, a1->seg) != 0) return 0;
    }
    return 1;
}

int lastAtomLookupUsedResidue() { return lookupState.usedResidue; }
PDBResidue* lastAtomLookupResidue() { return lookupState.residue; }
void resetAtomLookup() { lookupState = AtomLookupState{}; }
