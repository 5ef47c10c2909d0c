// Residue arithmetic that cannot overflow. Residue numbers read from tables
// lie within +-kResidLimit and option values are clamped to it, so the
// difference of two of them fits an int; a residue number plus such an
// offset is computed in 64 bits, and one that falls outside the limit is no
// residue at all.
#pragma once

#include <cstdint>

constexpr int kResidLimit = 999999999;

inline int clampResid(int64_t value) {
    if (value > kResidLimit) return kResidLimit;
    if (value < -kResidLimit) return -kResidLimit;
    return static_cast<int>(value);
}

// resid + offset in *shifted; false (and *shifted untouched) when the sum
// lies outside +-kResidLimit.
inline bool shiftResid(int resid, int64_t offset, int* shifted) {
    int64_t sum = static_cast<int64_t>(resid) + offset;
    if (sum > kResidLimit || sum < -kResidLimit) return false;
    *shifted = static_cast<int>(sum);
    return true;
}
