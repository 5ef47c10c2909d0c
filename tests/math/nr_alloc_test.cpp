#include "math/nr_alloc.h"

#include <gtest/gtest.h>

#include "util/alloc.h"

namespace {

int64_t inUse() {
    int64_t bytes = 0;
    getMemUsed(&bytes, nullptr);
    return bytes;
}

// Writes a value unique to each position, then reads all back: overlapping
// rows or a short block would show (and the sanitizer build catches overruns).
bool fillsIndependently(float** m, long nrl, long nrh, long ncl, long nch) {
    for (long i = nrl; i <= nrh; i++)
        for (long j = ncl; j <= nch; j++) m[i][j] = static_cast<float>(i * 100 + j);
    bool same = true;
    for (long i = nrl; i <= nrh; i++)
        for (long j = ncl; j <= nch; j++) same = same && m[i][j] == static_cast<float>(i * 100 + j);
    return same;
}

}  // namespace

TEST(RangeAllocation, EveryRangeIsUsableAndFailuresAreReported) {
    int64_t start = inUse();
    const long ranges[][2] = {{1, 10}, {0, 4}, {-3, 2}, {5, 9}, {1, 0}};
    for (const auto& r : ranges) {
        SCOPED_TRACE(testing::Message() << r[0] << ".." << r[1]);
        float** fm = matrix64(r[0], r[1], 2, 4);
        float** fm2 = matrix(1, 3, r[0], r[1]);
        int* iv = ivector(r[0], r[1]);
        ASSERT_TRUE(fm && fm2 && iv);
        EXPECT_TRUE(fillsIndependently(fm, r[0], r[1], 2, 4));
        EXPECT_TRUE(fillsIndependently(fm2, 1, 3, r[0], r[1]));
        for (long k = r[0]; k <= r[1]; k++) iv[k] = 1;
        free_matrix64(fm, r[0], r[1], 2, 4);
        free_matrix(fm2, 1, 3, r[0], r[1]);
        free_ivector(iv, r[0], r[1]);
        EXPECT_EQ(inUse(), start);
    }

    testing::internal::CaptureStderr();
    nrerror("singular matrix\n");
    EXPECT_EQ(vector(5, 1), nullptr);
    EXPECT_EQ(dmatrix64(1, 2, 3, 1), nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Utility Error: singular matrix\nAborting.\n"
              "Memory allocation failure.\n"
              "Utility Error: allocation failure in vector()\nAborting.\n"
              "Memory allocation failure.\n"
              "Utility Error: allocation failure 1 in dmatrix64()\nAborting.\n");
    EXPECT_EQ(inUse(), start);
}
