#include "pdb/transform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>

#include "pdb/matrix4.h"
#include "pdb_fixture.h"

namespace {

struct P {
    float x, y, z;
};

void expectMaps(P from, P to) {
    pdb3dXYZTransform(&from.x, &from.y, &from.z);
    EXPECT_NEAR(from.x, to.x, 1e-5);
    EXPECT_NEAR(from.y, to.y, 1e-5);
    EXPECT_NEAR(from.z, to.z, 1e-5);
}

class CurrentMatrix : public ::testing::Test {
  protected:
    void SetUp() override { pdb3dResetState(); }
    void TearDown() override { pdb3dResetState(); }
};

TEST_F(CurrentMatrix, DegreesUseTheTruncatedPi) {
    // cos(90 degrees) with pi = 3.14159265 is 1.79e-9, not 6e-17.
    pdb3dAppendXRotation0(90);
    const float* m = pdb3dGetCurrentMatrix();
    EXPECT_NEAR(m[5], 1.7948966e-9, 1e-15);
    EXPECT_EQ(m[6], -1.0f);
    EXPECT_EQ(m[9], 1.0f);
}

TEST_F(CurrentMatrix, RotationsApplyXThenYThenZAndAppendsPreMultiply) {
    // (1,2,3): X90 -> (1,-3,2), Y90 -> (2,-3,-1), Z90 -> (3,2,-1).
    pdb3dAppendRotation0(90, 90, 90);
    expectMaps({1, 2, 3}, {3, 2, -1});
    pdb3dReset();
    pdb3dAppendZRotation0(90);
    pdb3dAppendYRotation0(90);
    pdb3dAppendXRotation0(90);
    expectMaps({1, 2, 3}, {3, -2, 1});
    // Translate first, then rotate: the origin goes to (1,0,0), then (0,1,0).
    pdb3dReset();
    pdb3dAppendTranslation(1, 0, 0);
    pdb3dAppendZRotation0(90);
    expectMaps({0, 0, 0}, {0, 1, 0});
    float rotation[16];
    m4x4SetZRotation(rotation, 90);
    pdb3dAppendTransform(rotation);
    expectMaps({0, 0, 0}, {-1, 0, 0});
}

TEST_F(CurrentMatrix, RotationsAboutACentre) {
    struct Case {
        std::function<void()> append;
        P from, to;
    };
    const Case cases[] = {
        {[] { pdb3dAppendZRotation1(1, 1, 0, 90); }, {2, 1, 5}, {1, 2, 5}},
        {[] { pdb3dAppendXRotation1(0, 2, 2, 90); }, {7, 3, 2}, {7, 2, 3}},
        {[] { pdb3dAppendYRotation1(1, 0, 1, 90); }, {1, 4, 2}, {2, 4, 1}},
        // About Y by a first, then about X by b: c + (1,0,0) -> c + (0,1,0).
        {[] { pdb3dAppendRotation1(1, 2, 3, 90, 90); }, {2, 2, 3}, {1, 3, 3}},
        // 120 degrees about (1,1,1) cycles the axes.
        {[] { pdb3dAppendRotation2(0, 0, 0, 1, 1, 1, 120); }, {1, 0, 0}, {0, 1, 0}},
        {[] { pdb3dAppendRotation2(5, 0, 0, 0, 0, 2, 90); }, {6, 0, 0}, {5, 1, 0}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(&c - cases);
        pdb3dReset();
        c.append();
        expectMaps(c.from, c.to);
    }
    // A zero-length axis leaves the matrix as it was.
    pdb3dReset();
    EXPECT_EQ(pdb3dAppendRotation2(1, 1, 1, 0, 0, 0, 45), 0);
    expectMaps({1, 2, 3}, {1, 2, 3});
}

using StructureTransform = PDBTest;

TEST_F(StructureTransform, InverseRotationRestoresTheCoordinates) {
    pdb3dResetState();
    ASSERT_EQ(readShared(), 0);
    auto maxShift = [&] {
        float worst = 0;
        for (int i = 0; i < pdb.atomCount; i++) {
            const PDBAtom& a = pdb.atoms[i];
            const float* saved = pdb.savedXYZ + 3 * i;
            worst = std::max({worst, std::fabs(a.x - saved[0]), std::fabs(a.y - saved[1]),
                              std::fabs(a.z - saved[2])});
        }
        return worst;
    };
    pdb3dAppendTranslation(-3, 4, 1.5f);
    pdb3dAppendRotation0(30, -50, 110);
    EXPECT_EQ(pdb3dApplyTransform(&pdb, 0, 0), pdb.atomCount);
    EXPECT_GT(maxShift(), 1.0f);
    pdb3dReset();
    pdb3dAppendZRotation0(-110);
    pdb3dAppendYRotation0(50);
    pdb3dAppendXRotation0(-30);
    pdb3dAppendTranslation(3, -4, -1.5f);
    pdb3dApplyTransform(&pdb, 0, 0);
    EXPECT_LT(maxShift(), 1e-4f);
    pdb3dResetState();
}

}  // namespace
