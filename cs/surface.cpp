#include "cs/surface.h"

#include "cs/homology.h"
#include "cs/random_coil.h"
#include "cs/surface_list.h"
#include "util/alloc.h"

const char* const kSurfAtomNames[kSurfAtomKinds] = {"HA", "HA2", "HA3", "CA", "CB", "C", "N", "HN"};

// Lower-case cys and his and the xPRO type (a residue followed by a proline)
// have surfaces of their own.
const char* const kSurfResNames[kSurfResTypes] = {
    "ALA", "ARG", "ASN", "ASP", "CYS", "cys", "GLN", "GLU", "GLY", "HIS", "his", "ILE",
    "LEU", "LYS", "MET", "PHE", "PRO", "SER", "THR", "TRP", "TYR", "VAL", "xPRO"};

namespace {

constexpr const char* kTag = "cs";

struct SurfaceList {
    Surface* records = nullptr;
    int capacity = 0;
    int count = 0;
    int shiftCount = 0;
    int confCount = 0;
    int verbose = 0;
};

SurfaceList list;

int64_t gridBytes(const Surface* s) {
    return static_cast<int64_t>(s->nx) * static_cast<int64_t>(s->ny) *
           static_cast<int64_t>(sizeof(float));
}

void releaseList() {
    for (int i = 0; i < list.count; i++) surfNull2(list.records + i);
    unAlloc64(kTag, list.records, static_cast<int64_t>(list.capacity) * sizeof(Surface));
    list.records = nullptr;
    list.capacity = list.count = list.shiftCount = list.confCount = 0;
}

}  // namespace

int surfListAlloc(int capacity) {
    releaseList();
    if (capacity <= 0) return 0;
    auto* records =
        static_cast<Surface*>(voidMalloc64(kTag, static_cast<int64_t>(capacity) * sizeof(Surface)));
    if (!records) return 1;
    for (int i = 0; i < capacity; i++) surfNull(records + i);
    list.records = records;
    list.capacity = capacity;
    return 0;
}

int surfListAdd(Surface* surface) {
    if (list.count >= list.capacity) return 1;
    list.records[list.count++] = *surface;
    if (surface->kind == kSurfShiftKind) list.shiftCount++;
    if (surface->kind == kSurfConformationKind) list.confCount++;
    surfNull(surface);
    return 0;
}

void surfSetVerbose(int verbose) { list.verbose = verbose; }
int surfVerbose() { return list.verbose; }

Surface* getSurfList() { return list.records; }
int getSurfCount() { return list.count; }
int getShiftSurfCount() { return list.shiftCount; }
int getConfSurfCount() { return list.confCount; }

void surfNull(Surface* surface) {
    if (!surface) return;
    *surface = Surface{};
    surface->kind = kSurfNullKind;
}

// The three arrays of a record always share its grid size (the reader
// refuses a density or deviation grid of another size), so one byte count
// serves all three.
void surfNull2(Surface* surface) {
    if (!surface) return;
    int64_t bytes = gridBytes(surface);
    unAlloc64(kTag, surface->value, bytes);
    unAlloc64(kTag, surface->density, bytes);
    unAlloc64(kTag, surface->dev, bytes);
    surfNull(surface);
}

void surfFree() {
    releaseList();
    list.verbose = 0;
    rcFree();
    homoFree();
}
