#include "cs/row_surface.h"

#include <strings.h>

#include <cstdio>
#include <cstring>

#include "cs/read_cs.h"
#include "cs/surface.h"
#include "pdb/residue_types.h"
#include "util/token.h"

namespace {

constexpr int kCandidateSize = 64;

bool isPresent(float value) { return value <= 900.0f; }

// The atom name a surface is looked up by. A glycine's two alpha protons
// are named by size (HA2 the larger shift), as the surfaces are; a row
// whose own or partner shift is missing keeps its name.
const char* surfaceAtomName(const CSValue* row, const char* name3) {
    bool glycineAlpha = std::strcmp(name3, "GLY") == 0 && strncasecmp(row->atomName, "HA", 2) == 0;
    if (!glycineAlpha || !row->partner) return row->atomName;
    float own = row->obs, other = row->partner->obs;
    if (!isPresent(own) || !isPresent(other) || own == other) return row->atomName;
    return own > other ? "HA2" : "HA3";
}

Surface* findShiftSurface(const char* name) {
    Surface* list = getSurfList();
    int count = getSurfCount();
    for (int i = 0; list && i < count; i++) {
        if (list[i].kind == kSurfShiftKind && strcasecmp(list[i].name, name) == 0) return list + i;
    }
    return nullptr;
}

}  // namespace

Surface* getCSSurface(CSValue* row, const char* next) {
    row->surface = nullptr;
    char name3[kNameSize];
    copyName(name3, row->name3);
    raiseStr(name3);
    if (!isPredCS(name3, row->atomName)) return nullptr;
    const char* atom = surfaceAtomName(row, name3);
    bool beforeProline = next && std::strcmp(getResName3(next), "PRO") == 0;
    const char* residue = std::strcmp(name3, "GLY") != 0 && beforeProline ? "xPRO" : name3;
    char candidates[6][kCandidateSize];
    std::snprintf(candidates[0], kCandidateSize, "%s.%s%s", atom, residue, ".prev");
    std::snprintf(candidates[1], kCandidateSize, "%s.%s%s", atom, residue, ".next");
    std::snprintf(candidates[2], kCandidateSize, "%s.%s%s", atom, residue, "");
    std::snprintf(candidates[3], kCandidateSize, "%s%s", atom, ".prev");
    std::snprintf(candidates[4], kCandidateSize, "%s%s", atom, ".next");
    std::snprintf(candidates[5], kCandidateSize, "%s%s", atom, "");
    for (const char* name : candidates) {
        row->surface = findShiftSurface(name);
        if (row->surface) break;
    }
    return row->surface;
}
