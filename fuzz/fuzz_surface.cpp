// Surface grid files: the bytes are read as one grid, then as all three
// grids of a shift surface; every grid read is looked up at its corners,
// outside its range and at not-a-number angles, and released.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "cs/surface.h"
#include "fuzz/fuzz_support.h"

namespace {

void lookAround(const Surface& s) {
    const float angles[] = {-1e30f, -180.0f, -0.0f, 179.99f, 180.0f, 1e30f, NAN};
    float value, density, dev;
    for (float phi : angles) {
        for (float psi : angles) getSurfVal(&s, &value, &density, &dev, phi, psi);
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::quietStreams();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::string dir = fuzz::scratchDir();
    for (const char* ending : {".dat", ".d.dat", ".q.dat"})
        fuzz::writeFile(dir + "/in" + ending, data, size);
    int64_t start = fuzz::bytesInUse();

    Surface s;
    surfNull(&s);
    s.value = surfRead2D((dir + "/in.dat").c_str(), "in", &s, kSurfConformationKind);
    if (s.value) lookAround(s);
    surfNull2(&s);

    if (surfReadCS(dir.c_str(), "in", &s) == 0) {
        if (!s.value || !s.density || !s.dev) std::abort();
        lookAround(s);
    }
    surfNull2(&s);
    fuzz::checkBalance(start, "surface input");
    return 0;
}
