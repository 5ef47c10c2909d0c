#include "util/hash.h"

unsigned long elfHash(const char* text) {
    unsigned long h = 0;
    for (const char* p = text; p && *p; p++) {
        // Each character enters as a signed 8-bit value, as the format demands.
        h = (h << 4) + static_cast<unsigned long>(static_cast<long>(static_cast<signed char>(*p)));
        unsigned long g = h & 0xF0000000UL;
        if (g) h = (h & 0x0FFFFFFFUL) ^ (g >> 24);
    }
    return h;
}

int str2hash(const char* text, int low, int high) {
    if (low > high) {
        int swap = low;
        low = high;
        high = swap;
    }
    if (!text || !*text) return low;
    unsigned long span = static_cast<unsigned long>(static_cast<long>(high) - low) + 1;
    return static_cast<int>(low + static_cast<long>(elfHash(text) % span));
}
