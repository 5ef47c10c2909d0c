#include "pdb/residue_types.h"

#include <strings.h>

#include <cstdio>

#include "pdb/pdb_types.h"

namespace {

// The ribo-uridine entry carries the code T, and the deoxy entries share the
// generic type numbers while the ribo entries have their own.
const ResType kResTypes[] = {
    {"ALA", 'A', 1, 1},    {"ARG", 'R', 2, 1},    {"ASN", 'N', 3, 1},    {"ASP", 'D', 4, 1},
    {"CYS", 'C', 5, 1},    {"GLN", 'Q', 6, 1},    {"GLU", 'E', 7, 1},    {"GLY", 'G', 8, 1},
    {"HIS", 'H', 9, 1},    {"ILE", 'I', 10, 1},   {"LEU", 'L', 11, 1},   {"LYS", 'K', 12, 1},
    {"MET", 'M', 13, 1},   {"PHE", 'F', 14, 1},   {"PRO", 'P', 15, 1},   {"SER", 'S', 16, 1},
    {"THR", 'T', 17, 1},   {"TRP", 'W', 18, 1},   {"TYR", 'Y', 19, 1},   {"VAL", 'V', 20, 1},
    {"ADE", 'A', 101, 2},  {"CYT", 'C', 102, 2},  {"GUA", 'G', 103, 2},  {"THY", 'T', 104, 2},
    {"URI", 'U', 105, 2},  {"dADE", 'A', 101, 3}, {"dCYT", 'C', 102, 3}, {"dGUA", 'G', 103, 3},
    {"dTHY", 'T', 104, 3}, {"rADE", 'A', 301, 4}, {"rCYT", 'C', 302, 4}, {"rGUA", 'G', 303, 4},
    {"rURI", 'T', 304, 4}, {"None", 0, 0, 0},
};

bool isTerminator(const ResType* entry) { return entry->resClass == kResClassNone; }

const ResType* findAminoAcid(const char* name) {
    for (const ResType* entry = kResTypes; !isTerminator(entry); entry++) {
        if (entry->resClass == kResClassAminoAcid && strcasecmp(entry->name, name) == 0) {
            return entry;
        }
    }
    return nullptr;
}

char staticName[kNameSize];

}  // namespace

const ResType* findResTypeByName(const char* name) {
    const ResType* entry = kResTypes;
    for (; !isTerminator(entry); entry++) {
        if (name && strcasecmp(entry->name, name) == 0) break;
    }
    return entry;
}

const ResType* findResType(const PDBResidue* residue) {
    return findResTypeByName(residue ? residue->resName : nullptr);
}

int isAminoAcid(const char* name) { return name && findAminoAcid(name) ? 1 : 0; }

const char* getResName1(const char* name) {
    const ResType* entry = name ? findAminoAcid(name) : nullptr;
    std::snprintf(staticName, sizeof staticName, "%c", entry ? entry->code : '?');
    return staticName;
}

const char* getResName3(const char* name) {
    const char* found = "None";
    for (const ResType* entry = kResTypes; name && !isTerminator(entry); entry++) {
        if (entry->resClass != kResClassAminoAcid) continue;
        bool codeMatches = name[0] && !name[1] && (name[0] | 0x20) == (entry->code | 0x20);
        if (strcasecmp(entry->name, name) == 0 || codeMatches) {
            found = entry->name;
            break;
        }
    }
    copyName(staticName, found);
    return staticName;
}
