#include <strings.h>
#include <sys/stat.h>

#include <cstdint>
#include <cstdio>

#include "cs/homology.h"
#include "cs/random_coil.h"
#include "cs/surface.h"
#include "cs/surface_list.h"
#include "util/alloc.h"

namespace {

constexpr const char* kTag = "cs";
constexpr int kPathSize = 4096;

// The position passes of shift surfaces, in reading order.
constexpr int kPasses = 3;
constexpr const char* kSuffixes[kPasses] = {".prev", ".next", ""};
constexpr int kPositions[kPasses] = {-1, 1, 0};

struct Path {
    char text[kPathSize];
    // "dir/name" + ending; a path too long for any file system stays cut
    // and is then simply not found.
    Path(const char* dir, const char* name, const char* ending) {
        std::snprintf(text, sizeof text, "%s/%s%s", dir, name, ending);
    }
};

bool exists(const char* path) {
    struct stat st;
    return stat(path, &st) == 0;
}

// Calls visit(name, position) for every shift surface name, in reading
// order: per pass, every residue type with every atom kind, then every atom
// kind alone. Stops when visit returns false.
template <class Visit>
bool forEachShiftName(Visit visit) {
    char name[kNameSize];
    for (int p = 0; p < kPasses; p++) {
        for (const char* residue : kSurfResNames) {
            for (const char* atom : kSurfAtomNames) {
                std::snprintf(name, sizeof name, "%s.%s%s", atom, residue, kSuffixes[p]);
                if (!visit(name, kPositions[p])) return false;
            }
        }
        for (const char* atom : kSurfAtomNames) {
            std::snprintf(name, sizeof name, "%s%s", atom, kSuffixes[p]);
            if (!visit(name, kPositions[p])) return false;
        }
    }
    return true;
}

int countFiles(const char* dir) {
    int count = 0;
    auto countOne = [&](const char* name) {
        if (exists(Path(dir, name, ".dat").text)) count++;
        return true;
    };
    forEachShiftName([&](const char* name, int) { return countOne(name); });
    for (const char* residue : kSurfResNames) countOne(residue);
    countOne("zero");
    return count;
}

bool add(Surface* s, const char* message, const char* path) {
    if (surfListAdd(s) == 0) return true;
    surfNull2(s);
    std::fprintf(stderr, message, path);
    return false;
}

bool readShiftSurfaces(const char* dir) {
    return forEachShiftName([&](const char* name, int position) {
        Path path(dir, name, ".dat");
        if (!exists(path.text)) return true;
        if (surfVerbose()) std::fprintf(stderr, "TESSERA Surface: %s\n", path.text);
        Surface s;
        surfNull(&s);
        if (surfReadCS(dir, name, &s)) return false;
        s.position = position;
        return add(&s, "TESSERA Error reading shift surface %s\n", path.text);
    });
}

// A grid read on its own into a new list record.
bool readGridSurface(const char* dir, const char* name, int kind, const char* message) {
    Path path(dir, name, ".dat");
    Surface s;
    surfNull(&s);
    s.value = surfRead2D(path.text, name, &s, kind);
    if (!s.value) {
        std::fprintf(stderr, message, path.text);
        return false;
    }
    return add(&s, message, path.text);
}

bool readConformationSurfaces(const char* dir) {
    for (const char* residue : kSurfResNames) {
        if (!readGridSurface(dir, residue, kSurfConformationKind,
                             "TESSERA Error reading conformation surface %s\n")) {
            return false;
        }
    }
    return true;
}

bool readNullSurface(const char* dir) {
    if (!exists(Path(dir, "zero", ".dat").text)) return true;
    return readGridSurface(dir, "zero", kSurfNullKind, "TESSERA Error reading null surface %s\n");
}

// A directory holding none of the surface files gives an empty list.
bool readSurfaces(const char* dir) {
    int count = countFiles(dir);
    if (surfListAlloc(count)) {
        std::fprintf(stderr, "TESSERA Error Allocating Surface List.\n");
        return false;
    }
    if (count == 0) return true;
    return readShiftSurfaces(dir) && readConformationSurfaces(dir) && readNullSurface(dir);
}

bool named(const char* name) { return name && strcasecmp(name, "None") != 0; }

bool readTables(const char* dir, const char* rcName, const char* homoName) {
    if (named(rcName)) {
        Path path(dir, rcName, "");
        if (surfReadRC(path.text)) {
            std::fprintf(stderr, "CS Error reading random coil table %s\n", path.text);
            return false;
        }
    }
    if (named(homoName)) {
        Path path(dir, homoName, "");
        if (surfReadHomo(path.text)) {
            std::fprintf(stderr, "CS Error reading homology table %s\n", path.text);
            return false;
        }
    }
    return true;
}

// Reads one grid of a shift surface into its slot of s. The density and
// deviation grids must lie on the value grid: a lookup finds all three at
// one cell index.
bool readGrid(const char* path, const char* name, Surface* s, float* Surface::*slot) {
    Surface part;
    surfNull(&part);
    float* grid = surfRead2D(path, name, &part, kSurfShiftKind);
    if (!grid) return false;
    bool sameGrid = part.nx == s->nx && part.ny == s->ny && part.xmin == s->xmin &&
                    part.xmax == s->xmax && part.ymin == s->ymin && part.ymax == s->ymax;
    if (s->value && !sameGrid) {
        unAlloc64(kTag, grid,
                  static_cast<int64_t>(part.nx) * part.ny * static_cast<int64_t>(sizeof(float)));
        return false;
    }
    part.value = s->value;
    part.density = s->density;
    part.dev = s->dev;
    part.*slot = grid;
    *s = part;
    return true;
}

}  // namespace

int surfRead(const char* dir, const char* rcName, const char* homoName, int verbose) {
    if (!dir) dir = "";
    surfFree();
    surfSetVerbose(verbose);
    bool ok = readSurfaces(dir) && readTables(dir, rcName, homoName);
    surfSetVerbose(0);
    return ok ? 0 : 1;
}

// The three grids are read into a record of their own, which replaces the
// caller's (giving back any grids it held) only when all three were read.
int surfReadCS(const char* dir, const char* name, Surface* surface) {
    struct Grid {
        const char* ending;
        float* Surface::*slot;
        const char* message;
    };
    static const Grid grids[] = {
        {".dat", &Surface::value, "TESSERA Error reading shift surface %s\n"},
        {".d.dat", &Surface::density, "TESSERA Error reading density surface %s\n"},
        {".q.dat", &Surface::dev, "TESSERA Error reading dev surface %s\n"},
    };
    if (!surface) return 1;
    if (!dir) dir = "";
    if (!name) name = "";
    Surface s;
    surfNull(&s);
    for (const Grid& g : grids) {
        Path path(dir, name, g.ending);
        if (!readGrid(path.text, name, &s, g.slot)) {
            std::fprintf(stderr, g.message, path.text);
            surfNull2(&s);
            return 1;
        }
    }
    surfNull2(surface);
    *surface = s;
    return 0;
}
