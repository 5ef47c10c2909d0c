#include <gtest/gtest.h>

#include <cmath>

#include "cs/surface.h"

namespace {

// A 4 x 3 grid over phi -180..180 (90 degrees a cell) and psi -90..90 (60
// degrees a cell) whose value names its cell: 10 * row + column.
struct Grid {
    float value[12], density[12], dev[12];
    Surface s;
    Grid() {
        surfNull(&s);
        for (int i = 0; i < 12; i++) {
            value[i] = static_cast<float>(10 * (i / 4) + i % 4);
            density[i] = 100.0f + value[i];
            dev[i] = 200.0f + value[i];
        }
        s.value = value;
        s.density = density;
        s.dev = dev;
        s.nx = 4;
        s.ny = 3;
        s.xmin = -180.0f;
        s.xmax = 180.0f;
        s.ymin = -90.0f;
        s.ymax = 90.0f;
    }
    float at(float phi, float psi) {
        float v = -1.0f;
        getSurfVal(&s, &v, nullptr, nullptr, phi, psi);
        return v;
    }
};

TEST(SurfaceValue, NearestCellClampedAtTheEdgesWithoutWrapAround) {
    Grid g;
    EXPECT_EQ(g.at(-180.0f, -90.0f), 0.0f);
    EXPECT_EQ(g.at(-90.1f, -30.1f), 0.0f);
    EXPECT_EQ(g.at(-90.0f, -30.0f), 11.0f);  // a cell begins at its lower edge
    EXPECT_EQ(g.at(179.9f, 89.9f), 23.0f);
    EXPECT_EQ(g.at(180.0f, 0.0f), 13.0f);   // phi 180: the last column
    EXPECT_EQ(g.at(-200.0f, 0.0f), 10.0f);  // phi -200: the first, not the last
    EXPECT_EQ(g.at(200.0f, -100.0f), 3.0f);
    EXPECT_EQ(g.at(1e30f, -1e30f), 3.0f);  // far outside: still the edge cell
    EXPECT_EQ(g.at(NAN, NAN), 0.0f);
}

TEST(SurfaceValue, OutputsOfMissingArraysAreLeftAlone) {
    Grid g;
    float v = -1.0f, d = -1.0f, q = -1.0f;
    getSurfVal(&g.s, &v, &d, &q, 100.0f, 60.0f);
    EXPECT_EQ(v, 23.0f);
    EXPECT_EQ(d, 123.0f);
    EXPECT_EQ(q, 223.0f);
    g.s.density = nullptr;
    g.s.dev = nullptr;
    v = d = q = -1.0f;
    getSurfVal(&g.s, &v, &d, &q, -100.0f, -60.0f);
    EXPECT_EQ(v, 0.0f);
    EXPECT_EQ(d, -1.0f);
    EXPECT_EQ(q, -1.0f);
    surfNull(&g.s);  // a cleared record has no grid: nothing is written
    getSurfVal(&g.s, &v, &d, &q, 0.0f, 0.0f);
    EXPECT_EQ(v, 0.0f);
}

}  // namespace
