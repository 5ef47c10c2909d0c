#include "tools/dcplot/memory_guard.h"

#include <cstdio>
#include <new>

int runGuarded(PlotFunction plot, const char* inPath, const char* outPath) {
    try {
        return plot(inPath, outPath);
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "dcplot Error: out of memory.\n");
        return 1;
    }
}
