#include "pdb/keys.h"

#include <cstdio>
#include <cstring>

#include "pdb/modes.h"
#include "pdb/pdb_types.h"

namespace {

const char* chainPart(const char* chain) { return getPDBChainMode() ? "" : chain; }
const char* segPart(const char* seg) { return getPDBSegMode() ? "" : seg; }

char firstOrBlank(const char* text) { return text[0] ? text[0] : ' '; }

// The three-character identifier field of an atom key: alt-loc, insertion
// code and chain, right-justified together (or one column each in full-atom
// mode); all blank when chains are ignored, so alt-locs are ignored too.
void idField(char* field, std::size_t size, const char* locID, const char* icode,
             const char* chain) {
    if (getPDBChainMode()) {
        std::snprintf(field, size, "   ");
    } else if (getPDBAtomMode()) {
        std::snprintf(field, size, "%c%c%c", firstOrBlank(locID), firstOrBlank(icode),
                      firstOrBlank(chain));
    } else {
        char joined[3 * kNameSize];
        std::snprintf(joined, sizeof joined, "%s%s%s", locID, icode, chain);
        std::snprintf(field, size, "%3s", joined);
    }
}

void normalAtomKey(char* key, int resID, const char* atomName, const char* locID,
                   const char* icode, const char* chain, const char* seg) {
    char field[3 * kNameSize + 1];
    idField(field, sizeof field, locID, icode, chain);
    std::snprintf(key, kKeySize, "%d %-4s %s %-4s", resID, atomName, field, segPart(seg));
}

const char* valueOrNone(const char* text) { return text[0] ? text : "None"; }

void uniqueAtomKey(char* key, const PDBAtom* atom) {
    std::snprintf(key, kKeySize,
                  "atomID=%d resID=%d atomName=%s model=%d chain=%s seg=%s locID=%s icode=%s",
                  atom->atomID, atom->resID, atom->atomName, atom->model,
                  valueOrNone(chainPart(atom->chain)), valueOrNone(segPart(atom->seg)),
                  valueOrNone(atom->locID), valueOrNone(atom->icode));
}

}  // namespace

void resKey(char* key, int resID, const char* chain, const char* seg) {
    std::snprintf(key, kKeySize, "%d %-2s %-4s", resID, chainPart(chain), segPart(seg));
}

void chainKey(char* key, const char* chain, const char* seg) {
    std::snprintf(key, kKeySize, "%-2s %-4s", chainPart(chain), segPart(seg));
}

void segKey(char* key, const char* seg, const char* chain) {
    std::snprintf(key, kKeySize, "%-4s %-2s", segPart(seg), chainPart(chain));
}

void atomKey(char* key, const PDBAtom* atom) {
    if (getPDBUniqMode()) {
        uniqueAtomKey(key, atom);
        return;
    }
    normalAtomKey(key, atom->resID, atom->atomName, atom->locID, atom->icode, atom->chain,
                  atom->seg);
}

void atomLookupKey(char* key, int resID, const char* atomName, const char* chain,
                   const char* seg) {
    normalAtomKey(key, resID, atomName, "", "", chain, seg);
}
