// Names inside records are fixed 16-byte texts: a longer value is cut to 15
// characters. copyName is the one place that does the cutting.
#pragma once

#include <cstddef>
#include <cstring>

constexpr int kNameSize = 16;

// Copies src into a buffer of size bytes, cut to size - 1 characters.
inline void copyText(char* dst, std::size_t size, const char* src) {
    std::size_t length = src ? std::strlen(src) : 0;
    if (length > size - 1) length = size - 1;
    if (length) std::memcpy(dst, src, length);
    dst[length] = '\0';
}

template <std::size_t N>
inline void copyName(char (&dst)[N], const char* src) {
    copyText(dst, N, src);
}

// Copies one name field into another of the same size whole: the cheap form
// for the hot paths, where the source is known to hold a terminated name.
template <std::size_t N>
inline void copyNameField(char (&dst)[N], const char (&src)[N]) {
    std::memcpy(dst, src, N);
}
