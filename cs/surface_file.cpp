#include "cs/surface_file.h"

#include <cstdio>

namespace {

void fillHeader(float* words, const SurfHeader& h) {
    for (int i = 0; i < kSurfHeaderWords; i++) words[i] = 0.0f;
    words[kSurfWordByteOrder] = kSurfByteOrderMark;
    words[kSurfWordSizeX] = static_cast<float>(h.nx);
    words[kSurfWordSizeY] = static_cast<float>(h.ny);
    words[kSurfWordXMin] = h.xmin;
    words[kSurfWordXMax] = h.xmax;
    words[kSurfWordYMin] = h.ymin;
    words[kSurfWordYMax] = h.ymax;
    words[kSurfWordOrder] = static_cast<float>(h.order);
    words[kSurfWordBound] = h.bound;
    words[kSurfWordThreshold] = h.threshold;
}

}  // namespace

int surfWrite2D(const char* path, const float* values, const SurfHeader& header) {
    FILE* out = path ? std::fopen(path, "wb") : nullptr;
    bool ok = out && header.nx > 0 && header.ny > 0 && values;
    if (ok) {
        float words[kSurfHeaderWords];
        fillHeader(words, header);
        std::size_t count =
            static_cast<std::size_t>(header.nx) * static_cast<std::size_t>(header.ny);
        ok = std::fwrite(words, sizeof(float), kSurfHeaderWords, out) == kSurfHeaderWords &&
             std::fwrite(values, sizeof(float), count, out) == count;
    }
    if (out && std::fclose(out) != 0) ok = false;
    if (!ok) {
        std::fprintf(stderr, "TESSERA Error writing surface %s\n", path ? path : "");
        return 1;
    }
    return 0;
}
