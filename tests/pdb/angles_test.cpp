#include "pdb/angles.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

TEST(Dihedral, SignFollowsTheRightHandedTurnAboutTheCentralBond) {
    // p1 on +x, the axis p2 -> p3 along +z, p4 turned by t degrees about it.
    float p1[3] = {1, 0, 0}, p2[3] = {0, 0, 0}, p3[3] = {0, 0, 1}, angle = 0;
    for (double t : {60.0, -60.0, 90.0, -150.0, 179.0}) {
        float p4[3] = {static_cast<float>(std::cos(t * M_PI / 180)),
                       static_cast<float>(std::sin(t * M_PI / 180)), 1};
        EXPECT_EQ(getDihedralAngle(p1, p2, p3, p4, &angle), 0);
        EXPECT_NEAR(angle, t, 1e-3);
        getDihedralAngle(p4, p3, p2, p1, &angle);
        EXPECT_NEAR(angle, t, 1e-3) << "reversed";
    }
    // Planar: for trans the normals' cross product vanishes, no axis has a
    // strictly matching sign, and the angle comes out negative.
    float trans[3] = {-1, 0, 1}, cis[3] = {1, 0, 2};
    EXPECT_EQ(getDihedralAngle(p1, p2, p3, trans, &angle), 0);
    EXPECT_EQ(angle, -180.0f);
    EXPECT_EQ(getDihedralAngle(p1, p2, p3, cis, &angle), 0);
    EXPECT_EQ(angle, 0.0f);
    // Degrees use the factor of pi = 3.14159265, which double precision shows.
    double d1[3] = {1, 0, 0}, d2[3] = {0, 0, 0}, d3[3] = {0, 0, 1}, d4[3] = {-1, 0, 1};
    double angleD = 0;
    EXPECT_EQ(getDihedralAngleD(d1, d2, d3, d4, &angleD), 0);
    EXPECT_NEAR(angleD, -180.0000002057, 1e-9);
}

TEST(Dihedral, CollinearOrTinyArmsAreDegenerate) {
    float p1[3] = {0, 0, -1}, p2[3] = {0, 0, 0}, p3[3] = {0, 0, 1}, p4[3] = {1, 1, 1};
    float angle = 55;
    EXPECT_EQ(getDihedralAngle(p1, p2, p3, p4, &angle), 1);
    EXPECT_EQ(angle, 0.0f);
    // Normals of length 1e-5 and 0.01 pointing apart: 180 by the dot product.
    float q1[3] = {0.001f, 0, 0}, q3[3] = {0, 0, 0.01f}, q4[3] = {-1, 0, 0.01f};
    EXPECT_EQ(getDihedralAngle(q1, p2, q3, q4, &angle), 1);
    EXPECT_EQ(angle, 180.0f);
}

TEST(Angle3D, BendAtTheMiddlePointAndDegenerateArms) {
    float b[3] = {1, 1, 1}, a[3] = {2, 1, 1}, right[3] = {1, 3, 1}, opposite[3] = {-4, 1, 1};
    float angle = 0;
    EXPECT_EQ(get3DAngle(a, b, right, &angle), 0);
    EXPECT_NEAR(angle, 90.0, 1e-5);
    get3DAngle(a, b, opposite, &angle);
    EXPECT_EQ(angle, 180.0f);
    EXPECT_EQ(get3DAngle(b, b, a, &angle), 1);
    EXPECT_EQ(angle, 0.0f);
    float left[3] = {0.999f, 1, 1}, near[3] = {1.002f, 1, 1};  // product 2e-6, opposite
    EXPECT_EQ(get3DAngle(left, b, near, &angle), 1);
    EXPECT_EQ(angle, 180.0f);
    double da[3] = {0, 2, 0}, db[3] = {0, 0, 0}, dc[3] = {1, std::sqrt(3.0), 0};
    double angleD = 0;
    EXPECT_EQ(get3DAngleD(da, db, dc, &angleD), 0);
    EXPECT_NEAR(angleD, 30.0000000343, 1e-9);
}

}  // namespace
