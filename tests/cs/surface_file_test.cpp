#include "cs/surface_file.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "support/checks.h"
#include "support/run_dc.h"

namespace {

// An independent reader of the surface layout: 512 header words, then the
// grid; a file whose word 2 does not read 2.345 is byte-swapped.
struct ReadBack {
    std::vector<float> header, values;
    bool swapped = false;
};

float swapBytes(float value) {
    uint32_t bits;
    std::memcpy(&bits, &value, 4);
    bits = (bits >> 24) | ((bits >> 8) & 0xff00u) | ((bits << 8) & 0xff0000u) | (bits << 24);
    std::memcpy(&value, &bits, 4);
    return value;
}

ReadBack readSurface(const std::string& path) {
    std::string bytes = readFile(path);
    std::vector<float> words(bytes.size() / 4);
    std::memcpy(words.data(), bytes.data(), words.size() * 4);
    ReadBack r;
    r.swapped = words[2] != 2.345f;
    if (r.swapped) {
        for (float& w : words) w = swapBytes(w);
    }
    r.header.assign(words.begin(), words.begin() + 512);
    r.values.assign(words.begin() + 512, words.end());
    return r;
}

// Every header value the loader takes comes back at its word, every other
// word is 0, and the grid follows with phi running fastest; a byte-swapped
// copy reads the same.
TEST(SurfaceFile, WrittenSurfaceReadsBackWordForWord) {
    std::string dir = scratchDir("surface_file");
    std::vector<float> grid(3 * 2);
    for (int iy = 0; iy < 2; iy++) {
        for (int ix = 0; ix < 3; ix++) grid[iy * 3 + ix] = 10.0f * iy + ix + 0.25f;
    }
    SurfHeader h{3, 2, -180.0f, 180.0f, -170.0f, 175.0f, 7, 1.25f, 0.5f};
    ASSERT_EQ(surfWrite2D((dir + "/s.dat").c_str(), grid.data(), h), 0);
    std::string bytes = readFile(dir + "/s.dat");
    ASSERT_EQ(bytes.size(), (512u + 6u) * 4u);
    std::string swapped = bytes;
    for (std::size_t i = 0; i < swapped.size(); i += 4) {
        std::swap(swapped[i], swapped[i + 3]);
        std::swap(swapped[i + 1], swapped[i + 2]);
    }
    writeFile(dir + "/swapped.dat", swapped);

    for (const char* name : {"/s.dat", "/swapped.dat"}) {
        ReadBack r = readSurface(dir + name);
        EXPECT_EQ(r.swapped, std::string(name) == "/swapped.dat");
        std::vector<float> expected(512, 0.0f);
        expected[2] = 2.345f;
        expected[99] = 3;
        expected[219] = 2;
        expected[70] = -180;
        expected[71] = 180;
        expected[72] = -170;
        expected[73] = 175;
        expected[74] = 7;
        expected[153] = 1.25f;
        expected[199] = 0.5f;
        EXPECT_EQ(r.header, expected) << name;
        EXPECT_EQ(r.values, grid) << name;
    }
}

TEST(SurfaceFile, UnwritableFileIsReported) {
    float value = 1;
    SurfHeader h{1, 1, -180, 180, -180, 180, 1, 0, 0};
    std::string path = scratchDir("surface_bad") + "/no/such/dir.dat";
    EXPECT_EQ(stderrOf([&] { EXPECT_EQ(surfWrite2D(path.c_str(), &value, h), 1); }),
              "TESSERA Error writing surface " + path + "\n");
}

}  // namespace
