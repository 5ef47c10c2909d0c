#include "util/alloc.h"

#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <utility>

#include "support/checks.h"

namespace {

class AllocTest : public ::testing::Test {
  protected:
    void SetUp() override { resetAlloc(); }
    void TearDown() override { resetAlloc(); }

    // Bytes in use and bytes reused.
    static std::pair<int64_t, int64_t> counters() {
        int64_t used = 0, reused = 0;
        getMemUsed(&used, &reused);
        return {used, reused};
    }
    // The log written while body runs, with its run-dependent addresses masked.
    template <class Body>
    static std::string logOf(Body body) {
        setAlloc(1);
        std::string log = stderrOf(body);
        setAlloc(0);
        static const std::regex address("0x[0-9a-f]+|\\(nil\\)");
        return std::regex_replace(log, address, "%p");
    }
};

TEST_F(AllocTest, EachAllocatorLogsItsKindSizeAndBalance) {
    void* b[7];
    EXPECT_EQ(logOf([&] {
                  b[0] = fltMalloc64("listArg", 10);
                  b[1] = intMalloc64("t", 3);
                  b[2] = n64Malloc("t", 3);
                  b[3] = dFltMalloc64("t", 3);
                  b[4] = dIntMalloc64("t", 3);
                  b[5] = charMalloc64("t", 3);
                  b[6] = voidMallocNull64("t", 3);
              }),
              "\n_MEM FLT_ALLOC Name: listArg Alloc: %p Add: 40 Now: 40\n"
              "\n_MEM INT_ALLOC Name: t Alloc: %p Add: 12 Now: 52\n"
              "\n_MEM NMRINT_ALLOC Name: t Alloc: %p Add: 24 Now: 76\n"
              "\n_MEM DBL_ALLOC Name: t Alloc: %p Add: 24 Now: 100\n"
              "\n_MEM LNG_ALLOC Name: t Alloc: %p Add: 24 Now: 124\n"
              "\n_MEM CHR_ALLOC Name: t Alloc: %p Add: 3 Now: 127\n"
              "\n_MEM VOI_ALLOC Name: t Alloc: %p Add: 3 Now: 130\n");
    EXPECT_EQ(static_cast<char*>(b[6])[2], 0);
    EXPECT_EQ(logOf([&] { unAlloc64("listArg", b[0], 40); }),
              "\n_MEM DEALLOC Name: listArg Free: %p Delete: 40 Now: 90 Reused: 0\n");
    const int64_t bytes[] = {40, 12, 24, 24, 24, 3, 3};
    for (int k = 1; k < 7; k++) unAlloc64("t", b[k], bytes[k]);
    EXPECT_EQ(bytesInUse(), 0);
}

TEST_F(AllocTest, ReallocationCountsTheOldSizeAsReused) {
    int* block = intMalloc64("t", 4);
    for (int k = 0; k < 4; k++) block[k] = k + 1;
    EXPECT_EQ(logOf([&] { block = intReMalloc64("t", block, 10, 4); }),
              "\n_MEM INT_RE_AL Name: t Free: %p Alloc: %p Add: 40 Delete: 16 Now: 40\n");
    EXPECT_EQ(block[3], 4);
    EXPECT_EQ(counters(), std::make_pair(int64_t{40}, int64_t{16}));
    unAlloc64("t", block, 40);
    EXPECT_EQ(stderrOf(showAlloc), "REMARK Memory Allocation Status. Reused: 16 In Use: 0\n");
}

TEST_F(AllocTest, NullReleaseRefusedRequestAndContainersKeepTheBalance) {
    char* held = strDup("N H");
    EXPECT_EQ(logOf([] { unAlloc64("dc", nullptr, 99); }),
              "\n_MEM NOOP_AL Name: dc Free: %p Delete: 0 Now: 4 Reused: 0\n");
    EXPECT_EQ(stderrOf([] { EXPECT_EQ(voidMalloc64("t", -1), nullptr); }),
              "Memory allocation failure.\n");
    // Sizes whose byte count does not fit 64 bits are refused, not wrapped.
    const int64_t huge = INT64_MAX / 4 + 1;
    EXPECT_EQ(stderrOf([&] {
                  EXPECT_EQ(fltMalloc64("t", huge), nullptr);
                  EXPECT_EQ(dFltMalloc64("t", INT64_MAX / 8 + 1), nullptr);
                  EXPECT_EQ(MatMalloc64("t", huge, 8), nullptr);
                  EXPECT_EQ(fltReMalloc64("t", nullptr, huge, 0), nullptr);
              }),
              "Memory allocation failure.\nMemory allocation failure.\n"
              "Memory allocation failure.\nMemory allocation failure.\n");
    EXPECT_EQ(bytesInUse(), 4);
    strFree(held);
    {
        TrackedVector<int, "dc"> values(100, 7);
        EXPECT_EQ(bytesInUse(), 400);
    }
    EXPECT_EQ(bytesInUse(), 0);
}

}  // namespace
