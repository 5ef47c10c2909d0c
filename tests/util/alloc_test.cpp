#include "util/alloc.h"

#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <utility>

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
    static int64_t inUse() { return counters().first; }
    // The log written while body runs, with its run-dependent addresses masked.
    template <class Body>
    static std::string logOf(Body body) {
        setAlloc(1);
        testing::internal::CaptureStderr();
        body();
        setAlloc(0);
        static const std::regex address("0x[0-9a-f]+|\\(nil\\)");
        return std::regex_replace(testing::internal::GetCapturedStderr(), address, "%p");
    }
};

TEST_F(AllocTest, EachAllocatorLogsItsKindSizeAndBalance) {
    float* f;
    int* i;
    int64_t* n;
    double* d;
    long* l;
    char* c;
    void* v;
    EXPECT_EQ(logOf([&] {
                  f = fltMalloc64("listArg", 10);
                  i = intMalloc64("t", 3);
                  n = n64Malloc("t", 3);
                  d = dFltMalloc64("t", 3);
                  l = dIntMalloc64("t", 3);
                  c = charMalloc64("t", 3);
                  v = voidMallocNull64("t", 3);
              }),
              "\n_MEM FLT_ALLOC Name: listArg Alloc: %p Add: 40 Now: 40\n"
              "\n_MEM INT_ALLOC Name: t Alloc: %p Add: 12 Now: 52\n"
              "\n_MEM NMRINT_ALLOC Name: t Alloc: %p Add: 24 Now: 76\n"
              "\n_MEM DBL_ALLOC Name: t Alloc: %p Add: 24 Now: 100\n"
              "\n_MEM LNG_ALLOC Name: t Alloc: %p Add: 24 Now: 124\n"
              "\n_MEM CHR_ALLOC Name: t Alloc: %p Add: 3 Now: 127\n"
              "\n_MEM VOI_ALLOC Name: t Alloc: %p Add: 3 Now: 130\n");
    EXPECT_EQ(static_cast<char*>(v)[2], 0);
    EXPECT_EQ(logOf([&] { unAlloc64("listArg", f, 40); }),
              "\n_MEM DEALLOC Name: listArg Free: %p Delete: 40 Now: 90 Reused: 0\n");
    const std::pair<void*, int64_t> rest[] = {{i, 12}, {n, 24}, {d, 24}, {l, 24}, {c, 3}, {v, 3}};
    for (auto [block, bytes] : rest) unAlloc64("t", block, bytes);
    EXPECT_EQ(inUse(), 0);
}

TEST_F(AllocTest, ReallocationCountsTheOldSizeAsReused) {
    int* block = intMalloc64("t", 4);
    for (int k = 0; k < 4; k++) block[k] = k + 1;
    EXPECT_EQ(logOf([&] { block = intReMalloc64("t", block, 10, 4); }),
              "\n_MEM INT_RE_AL Name: t Free: %p Alloc: %p Add: 40 Delete: 16 Now: 40\n");
    EXPECT_EQ(block[3], 4);
    EXPECT_EQ(counters(), std::make_pair(int64_t{40}, int64_t{16}));
    // Growing from no block at all reuses nothing.
    float* fresh = fltReMalloc64("t", nullptr, 5, 0);
    EXPECT_EQ(counters(), std::make_pair(int64_t{60}, int64_t{16}));
    unAlloc64("t", fresh, 20);
    unAlloc64("t", block, 40);
    testing::internal::CaptureStderr();
    showAlloc();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "REMARK Memory Allocation Status. Reused: 16 In Use: 0\n");
}

TEST_F(AllocTest, NullReleaseAndRefusedRequestChangeNothing) {
    char* held = charMalloc64("t", 7);
    EXPECT_EQ(logOf([] { unAlloc64("dc", nullptr, 99); }),
              "\n_MEM NOOP_AL Name: dc Free: %p Delete: 0 Now: 7 Reused: 0\n");
    testing::internal::CaptureStderr();
    EXPECT_EQ(voidMalloc64("t", -1), nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Memory allocation failure.\n");
    EXPECT_EQ(inUse(), 7);
    unAlloc64("t", held, 7);
}

TEST_F(AllocTest, CopiesMatricesAndContainersBalanceToZero) {
    char** list = static_cast<char**>(voidMallocNull64("strDup", 2 * 8));
    list[0] = strDup("N H");
    EXPECT_STREQ(list[0], "N H");
    EXPECT_EQ(inUse(), 16 + 4);
    freeStrList(list, 1);

    float** m = MatMalloc64("svd", 3, 4);
    ASSERT_NE(m, nullptr);
    m[2][3] = 1.5f;
    EXPECT_EQ(m[0][11], 1.5f);  // rows lie in one block
    MatFree64("svd", m, 3, 4);
    {
        TrackedVector<int, "dc"> values(100, 7);
        EXPECT_EQ(inUse(), 400);
    }
    EXPECT_EQ(inUse(), 0);
}

}  // namespace
