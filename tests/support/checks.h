// Small probes shared by the unit tests: the tracked allocator's balance and
// what a piece of code writes to standard error.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "util/alloc.h"

inline int64_t bytesInUse() {
    int64_t used = 0;
    getMemUsed(&used, nullptr);
    return used;
}

template <class Body>
std::string stderrOf(Body body) {
    testing::internal::CaptureStderr();
    body();
    return testing::internal::GetCapturedStderr();
}
