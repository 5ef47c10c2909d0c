#include <sys/stat.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "cs/surface.h"
#include "cs/surface_file.h"
#include "cs/surface_list.h"
#include "util/alloc.h"
#include "util/table_format.h"

namespace {

constexpr const char* kTag = "cs";
constexpr int64_t kHeaderBytes = kSurfHeaderWords * static_cast<int64_t>(sizeof(float));
// The largest grid side a float holds exactly; a real surface is far smaller,
// and the file size bounds the grid long before this.
constexpr float kMaxSide = 16777216.0f;

struct FileCloser {
    FILE* file;
    ~FileCloser() {
        if (file) std::fclose(file);
    }
};

float swapBytes(float value) {
    uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    bits = (bits >> 24) | ((bits >> 8) & 0xff00u) | ((bits << 8) & 0xff0000u) | (bits << 24);
    std::memcpy(&value, &bits, sizeof bits);
    return value;
}

void swapAll(float* words, int64_t count) {
    for (int64_t i = 0; i < count; i++) words[i] = swapBytes(words[i]);
}

bool inFileOrder(const float* words) {
    return words[kSurfWordZero] == 0.0f && words[kSurfWordByteOrder] == kSurfByteOrderMark;
}

// A grid size: a positive whole number.
bool sideOf(float word, int* n) {
    if (!(word >= 1.0f && word <= kMaxSide) || word != std::floor(word)) return false;
    *n = static_cast<int>(word);
    return true;
}

// An axis must have a finite, non-empty range, or every lookup would
// divide by zero.
bool axisOk(float low, float high) {
    return std::isfinite(low) && std::isfinite(high) && low != high;
}

struct GridHeader {
    SurfHeader h;
    bool swapped;
};

// The header of an opened surface file, in either byte order; false when it
// is short or says something a surface cannot mean.
bool readHeader(FILE* file, GridHeader* g) {
    float words[kSurfHeaderWords];
    if (std::fread(words, sizeof(float), kSurfHeaderWords, file) != kSurfHeaderWords) return false;
    g->swapped = !inFileOrder(words);
    if (g->swapped) {
        swapAll(words, kSurfHeaderWords);
        if (!inFileOrder(words)) return false;
    }
    SurfHeader& h = g->h;
    h.xmin = words[kSurfWordXMin];
    h.xmax = words[kSurfWordXMax];
    h.ymin = words[kSurfWordYMin];
    h.ymax = words[kSurfWordYMax];
    h.bound = words[kSurfWordBound];
    h.threshold = words[kSurfWordThreshold];
    float order = words[kSurfWordOrder];
    h.order = tabFloatToInt(order);
    return sideOf(words[kSurfWordSizeX], &h.nx) && sideOf(words[kSurfWordSizeY], &h.ny) &&
           axisOk(h.xmin, h.xmax) && axisOk(h.ymin, h.ymax) && std::isfinite(h.bound) &&
           std::isfinite(h.threshold) && std::isfinite(order);
}

// Reads count values after the header; false when the file ends early or a
// value is not a finite number.
bool readValues(FILE* file, float* values, int64_t count, bool swapped) {
    if (std::fread(values, sizeof(float), static_cast<size_t>(count), file) !=
        static_cast<size_t>(count)) {
        return false;
    }
    if (swapped) swapAll(values, count);
    for (int64_t i = 0; i < count; i++) {
        if (!std::isfinite(values[i])) return false;
    }
    return true;
}

void fillRecord(Surface* s, const char* name, const SurfHeader& h, const float* values,
                int64_t count, int kind) {
    float low = values[0], high = values[0], sum = 0.0f;
    for (int64_t i = 0; i < count; i++) {
        if (values[i] < low) low = values[i];
        if (values[i] > high) high = values[i];
        sum += values[i];
    }
    s->min = low;
    s->max = high;
    s->avg = sum / static_cast<float>(count);
    copyName(s->name, name);
    s->nx = h.nx;
    s->ny = h.ny;
    s->xmin = h.xmin;
    s->xmax = h.xmax;
    s->ymin = h.ymin;
    s->ymax = h.ymax;
    s->bound = h.bound;
    s->threshold = h.threshold;
    s->order = h.order;
    s->kind = kind;
}

float* headerError(const char* path) {
    std::fprintf(stderr, "CS Error reading header in Phi/Psi Surface %s\n", path);
    return nullptr;
}

float* dataError(const char* path) {
    std::fprintf(stderr, "CS Error reading data in Phi/Psi Surface %s\n", path);
    return nullptr;
}

}  // namespace

// Only regular files are opened: a directory has no header and a named pipe
// could wait for a writer for ever. The grid is checked against the file's
// size before any memory is taken for it.
float* surfRead2D(const char* path, const char* name, Surface* surface, int kind) {
    if (!path) path = "";
    if (surfVerbose()) std::fprintf(stderr, "TESSERA Reading surface %s\n", path);
    struct stat st;
    if (stat(path, &st) != 0 || !S_ISREG(st.st_mode)) return headerError(path);
    FileCloser closer{std::fopen(path, "rb")};
    GridHeader g;
    if (!closer.file || !readHeader(closer.file, &g)) return headerError(path);
    int64_t count = static_cast<int64_t>(g.h.nx) * g.h.ny;
    int64_t held =
        (static_cast<int64_t>(st.st_size) - kHeaderBytes) / static_cast<int64_t>(sizeof(float));
    if (count > held) return dataError(path);
    float* values = fltMalloc64(kTag, count);
    if (!values) {
        std::fprintf(stderr, "CS Error allocating Phi/Psi Surface %s\n", path);
        return nullptr;
    }
    if (!readValues(closer.file, values, count, g.swapped)) {
        unAlloc64(kTag, values, count * static_cast<int64_t>(sizeof(float)));
        return dataError(path);
    }
    if (surface) fillRecord(surface, name ? name : "", g.h, values, count, kind);
    return values;
}
