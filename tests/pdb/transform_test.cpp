#include "pdb/transform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>

#include "pdb/matrix4.h"
#include "pdb/modes.h"
#include "pdb/reader.h"
#include "pdb/structure.h"
#include "util/alloc.h"

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

void expectCurrentEquals(const float* m, double tolerance = 0) {
    for (int i = 0; i < 16; i++) EXPECT_NEAR(pdb3dGetCurrentMatrix()[i], m[i], tolerance) << i;
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
    float plain[16];
    m4x4SetIdentity(plain);
    m4x4AppendRotation(plain, 90, 90, 90);
    expectCurrentEquals(plain);

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
    float rotation[16], translation[16];
    m4x4SetZRotation(rotation, 90);
    m4x4SetTranslation(translation, 1, 0, 0);
    pdb3dReset();
    pdb3dAppendTransform(rotation);
    pdb3dAppendTransform(translation);
    expectMaps({1, 0, 0}, {1, 1, 0});
    m4x4Mult(translation, rotation);  // rotation := translation * rotation
    expectCurrentEquals(rotation);

    pdb3dReset();
    pdb3dAppendRotation0(0, 0, 0);
    m4x4SetIdentity(plain);
    expectCurrentEquals(plain);
}

TEST_F(CurrentMatrix, RotationsAndScalingAboutACentre) {
    struct Case {
        std::function<void()> append;
        P from, to;
    };
    const Case cases[] = {
        {[] { pdb3dAppendZRotation1(1, 1, 0, 90); }, {2, 1, 5}, {1, 2, 5}},
        {[] { pdb3dAppendZRotation1(1, 1, 0, 90); }, {1, 1, 0}, {1, 1, 0}},
        {[] { pdb3dAppendXRotation1(0, 2, 2, 90); }, {7, 3, 2}, {7, 2, 3}},
        {[] { pdb3dAppendYRotation1(1, 0, 1, 90); }, {1, 4, 2}, {2, 4, 1}},
        // About Y by a first, then about X by b: c + (1,0,0) -> c + (0,1,0).
        {[] { pdb3dAppendRotation1(1, 2, 3, 90, 90); }, {2, 2, 3}, {1, 3, 3}},
        // 120 degrees about (1,1,1) cycles the axes.
        {[] { pdb3dAppendRotation2(0, 0, 0, 1, 1, 1, 120); }, {1, 0, 0}, {0, 1, 0}},
        {[] { pdb3dAppendRotation2(5, 0, 0, 0, 0, 2, 90); }, {6, 0, 0}, {5, 1, 0}},
        {[] { pdb3dAppendScale(2, 3, 4, 1, 1, 1); }, {2, 2, 2}, {3, 4, 5}},
        {[] { pdb3dAppendScale(2, 3, 4, 1, 1, 1); }, {0, 0, 0}, {-1, -2, -3}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(&c - cases);
        pdb3dReset();
        c.append();
        expectMaps(c.from, c.to);
    }

    pdb3dReset();
    pdb3dAppendTranslation(1, 2, 3);
    float before[16];
    pdb3dGet4x4(before);
    EXPECT_EQ(pdb3dAppendRotation2(1, 1, 1, 0, 0, 0, 45), 0);
    expectCurrentEquals(before);
}

TEST_F(CurrentMatrix, ResetFirstAndShow) {
    pdb3dAppendTranslation(1, 0, 0);
    EXPECT_EQ(pdb3dResetFirst(), 1);
    EXPECT_EQ(pdb3dGetCurrentMatrix()[3], 0.0f);
    pdb3dAppendTranslation(1.5f, -2, 0.00004f);
    EXPECT_EQ(pdb3dResetFirst(), 0);
    testing::internal::CaptureStderr();
    pdb3dShow();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "\n"
              "    1.0000    0.0000    0.0000    1.5000\n"
              "    0.0000    1.0000    0.0000   -2.0000\n"
              "    0.0000    0.0000    1.0000    0.0000\n"
              "    0.0000    0.0000    0.0000    1.0000\n"
              "\n");
}

TEST_F(CurrentMatrix, PackedTriples) {
    float xyz[6] = {1, 0, 0, 0, 1, 0};
    pdb3dAppendZRotation0(90);
    pdb3dAppendTranslation(0, 0, 1);
    EXPECT_EQ(pdb3dCoordTransform(nullptr, 2), 0);
    EXPECT_EQ(pdb3dCoordTransform(xyz, 0), 0);
    EXPECT_EQ(xyz[0], 1.0f);
    EXPECT_EQ(pdb3dCoordTransform(xyz, 2), 2);
    const float rotated[6] = {0, 1, 1, -1, 0, 1};
    for (int i = 0; i < 6; i++) EXPECT_NEAR(xyz[i], rotated[i], 1e-6) << i;
    EXPECT_EQ(pdb3dCoordTranslation(xyz, -1, 1, 1, 1), 0);
    EXPECT_EQ(pdb3dCoordTranslation(xyz, 1, 1, 2, 3), 1);
    EXPECT_NEAR(xyz[2], 4.0f, 1e-6);
    EXPECT_NEAR(xyz[3], -1.0f, 1e-6);
}

class StructureTransform : public CurrentMatrix {
  protected:
    void SetUp() override {
        CurrentMatrix::SetUp();
        resetPDBModes();
        getMemUsed(&start, nullptr);
        pdbNull(&pdb);
        ASSERT_EQ(readPDB(DC_SHARED_DATA "/hafp_a.pdb", &pdb, nullptr), 0);
    }
    void TearDown() override {
        pdbFree(&pdb);
        int64_t now = 0;
        getMemUsed(&now, nullptr);
        EXPECT_EQ(now, start);
        CurrentMatrix::TearDown();
    }
    float shift(int i) const {
        const float* saved = pdb.savedXYZ + 3 * i;
        const PDBAtom& a = pdb.atoms[i];
        return std::max(
            {std::fabs(a.x - saved[0]), std::fabs(a.y - saved[1]), std::fabs(a.z - saved[2])});
    }
    float maxShift() const {
        float worst = 0;
        for (int i = 0; i < pdb.atomCount; i++) worst = std::max(worst, shift(i));
        return worst;
    }
    int64_t start = 0;
    PDBData pdb;
};

TEST_F(StructureTransform, InverseRotationRestoresTheCoordinates) {
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
}

TEST_F(StructureTransform, OnlyAtomsMarkedInTheBoundsMove) {
    for (int i = 0; i < pdb.atomCount; i++) pdb.atoms[i].selected = i % 4;
    pdb3dAppendTranslation(10, 0, 0);
    EXPECT_EQ(pdb3dApplyTransform(&pdb, 1, 2), (pdb.atomCount + 2) / 4 + (pdb.atomCount + 1) / 4);
    for (int i = 0; i < pdb.atomCount; i++) {
        EXPECT_NEAR(shift(i), (i % 4 == 1 || i % 4 == 2) ? 10.0f : 0.0f, 1e-5) << i;
    }
    restorePDBCoords(&pdb);
    EXPECT_EQ(pdb3dApplyTranslation(&pdb, 3, 3, 0, 0, 0), pdb.atomCount);
    EXPECT_EQ(maxShift(), 0.0f);
    EXPECT_EQ(pdb3dApplyTranslation(&pdb, 3, 3, 0, -2, 0), pdb.atomCount / 4);
    EXPECT_NEAR(shift(3), 2.0f, 1e-5);
    EXPECT_EQ(shift(4), 0.0f);
}

}  // namespace
