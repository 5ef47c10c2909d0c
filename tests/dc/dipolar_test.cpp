#include "dc/dipolar.h"

#include <gtest/gtest.h>

#include <string>

#include "coupling_test_util.h"

namespace {

using namespace dctest;

struct Pair {
    int residI;
    const char* resName;
    const char* atomI;
    int residJ;
    const char* atomJ;
};

struct Result {
    float di = -1.0f;
    int fixed = -1, type = -1, status = -1;
    std::string err;
};

Result classify(const Pair& p, int useFixed, float r) {
    Result out;
    testing::internal::CaptureStderr();
    out.status = findVariableDI(p.residI, p.resName, p.atomI, p.residJ, p.resName, p.atomJ, &out.di,
                                &out.fixed, &out.type, useFixed, r);
    out.err = testing::internal::GetCapturedStderr();
    return out;
}

TEST(DipolarValue, FixedGeometryPairsInEitherOrder) {
    struct Case {
        Pair pair;
        int type;
        float gammaI, gammaJ, r, rounded;
    };
    const Case cases[] = {
        {{5, "ALA", "HN", 5, "N"}, 1, kGammaH, kGammaN, 1.041f, -21585.2f},
        {{5, "ALA", "N", 5, "H"}, 1, kGammaN, kGammaH, 1.041f, -21585.2f},
        {{5, "GLY", "HA2", 5, "CA"}, 7, kGammaH, kGammaC, 1.107f, 44539.5f},
        {{5, "ALA", "CA", 5, "HA"}, 7, kGammaC, kGammaH, 1.107f, 44539.5f},
        {{5, "ALA", "CA", 5, "C"}, 10, kGammaC, kGammaC, 1.525f, 4284.8f},
        {{5, "ALA", "N", 5, "CA"}, 5, kGammaN, kGammaC, 1.458f, -1976.0f},
        {{10, "ALA", "C", 11, "HN"}, 3, kGammaC, kGammaH, 2.055f, 6962.3f},
        {{11, "ALA", "HN", 10, "C"}, 3, kGammaH, kGammaC, 2.055f, 6962.3f},
        {{10, "ALA", "C", 11, "N"}, 6, kGammaC, kGammaN, 1.329f, -2609.1f},
        {{11, "ALA", "N", 10, "C"}, 6, kGammaN, kGammaC, 1.329f, -2609.1f},
        {{7, "VAL", "CG1", 7, "HG1#"}, 11, kGammaC, kGammaH, 1.117f, 43354.0f},
        {{7, "ile", "HD1#", 7, "CD1"}, 11, kGammaH, kGammaC, 1.117f, 43354.0f},
        {{7, "ILE", "CD", 7, "HD#"}, 11, kGammaC, kGammaH, 1.117f, 43354.0f},
        {{7, "ALA", "HB#", 7, "CB"}, 11, kGammaH, kGammaC, 1.117f, 43354.0f},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.pair.atomI) + "-" + c.pair.atomJ);
        Result fixed = classify(c.pair, 1, 0.0f);
        EXPECT_EQ(fixed.status, 0);
        EXPECT_EQ(fixed.type, c.type);
        EXPECT_EQ(fixed.fixed, 1);
        EXPECT_FLOAT_EQ(fixed.di, formulaDI(c.gammaI, c.gammaJ, c.r));
        EXPECT_NEAR(fixed.di, c.rounded, 0.06f);
        EXPECT_EQ(fixed.err, "");

        // The same pair without fixed geometry: from the distance, not fixed.
        Result measured = classify(c.pair, 0, 1.02f);
        EXPECT_EQ(measured.type, c.type);
        EXPECT_EQ(measured.fixed, 0);
        EXPECT_FLOAT_EQ(measured.di, formulaDI(c.gammaI, c.gammaJ, 1.02f));
    }
}

TEST(DipolarValue, PairsWithoutFixedGeometryUseTheDistance) {
    struct Case {
        Pair pair;
        int type;
        float gammaI, gammaJ;
    };
    const Case cases[] = {
        {{5, "ALA", "HA", 5, "HB3"}, 8, kGammaH, kGammaH},
        {{5, "ALA", "CB", 5, "CA"}, 9, kGammaC, kGammaC},
        {{10, "ALA", "C", 12, "HN"}, 0, kGammaC, kGammaH},
        {{10, "ALA", "HN", 11, "C"}, 0, kGammaH, kGammaC},
        {{11, "ALA", "C", 10, "N"}, 0, kGammaC, kGammaN},
        {{7, "ILE", "HD#", 7, "CD"}, 0, kGammaH, kGammaC},
        {{7, "LEU", "CG1", 7, "HG1#"}, 0, kGammaC, kGammaH},
        {{5, "ALA", "1HB", 5, "CA"}, 0, kGammaH, kGammaC},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.pair.atomI) + "-" + c.pair.atomJ);
        Result r = classify(c.pair, 1, 2.2f);
        EXPECT_EQ(r.status, 0);
        EXPECT_EQ(r.type, c.type);
        EXPECT_EQ(r.fixed, 0);
        EXPECT_FLOAT_EQ(r.di, formulaDI(c.gammaI, c.gammaJ, 2.2f));
    }
    // A zero or tiny distance is clamped to 0.01 Angstrom: factor 1e6.
    const float clamped = ((kGammaH * kK) * kGammaH) * 1.0e6f;
    EXPECT_FLOAT_EQ(classify(cases[0].pair, 1, 0.0f).di, clamped);
    EXPECT_FLOAT_EQ(classify(cases[0].pair, 1, 0.004f).di, clamped);
}

TEST(DipolarValue, UnknownNucleusIsReportedAndCountsAsOne) {
    Result one = classify({3, "ALA", "X1", 3, "N"}, 1, 2.0f);
    EXPECT_EQ(one.status, 1);
    EXPECT_EQ(one.err, "Dipolar Interaction - Unknown atom X1.\n");
    EXPECT_EQ(one.type, 0);
    EXPECT_FLOAT_EQ(one.di, formulaDI(1.0f, kGammaN, 2.0f));

    Result both = classify({3, "ALA", "QB", 3, "7X"}, 1, 2.0f);
    EXPECT_EQ(both.status, 1);
    EXPECT_EQ(both.err,
              "Dipolar Interaction - Unknown atom QB.\nDipolar Interaction - Unknown atom 7X.\n");
    EXPECT_FLOAT_EQ(both.di, formulaDI(1.0f, 1.0f, 2.0f));
}

TEST(DipolarValue, FixedFormReturnsBondTypeBeforeFlag) {
    float di = 0.0f;
    int first = -1, second = -1;
    EXPECT_EQ(findFixedDI(10, "GLY", "C", 11, "GLY", "N", &di, &first, &second), 0);
    EXPECT_EQ(first, 6);
    EXPECT_EQ(second, 1);
    EXPECT_FLOAT_EQ(di, formulaDI(kGammaC, kGammaN, 1.329f));
}

TEST(DipolarValue, MethylPairsNeedTheResidueAndAPseudoProton) {
    EXPECT_EQ(isDCMethyl("val", "HG2#", "CG2"), 1);
    EXPECT_EQ(isDCMethyl("MET", "CE", "HE#"), 1);
    for (const char* name : {"HD1", "HD#"}) EXPECT_EQ(isDCMethyl("ILE", name, "CD"), 0);
    EXPECT_EQ(isDCMethyl("THR", "CG2", "HG1#"), 0);
    EXPECT_EQ(isDCMethyl("ALA", "NB", "HB#"), 0);
    EXPECT_EQ(isDCMethyl("GLY", "CB", "HB#"), 0);
}

TEST(DipolarValue, WorkspaceGrowsToAtLeastFiveAndIsFreed) {
    int64_t start = inUse();
    dipolarNull();
    ASSERT_EQ(dipolarInit(2), 0);
    EXPECT_EQ(dipolarSize(), 5);
    EXPECT_EQ(inUse() - start, (5 * 6 + 6) * 4);
    ASSERT_EQ(dipolarInit(40), 0);
    EXPECT_EQ(dipolarSize(), 40);
    EXPECT_EQ(inUse() - start, (5 * 41 + 41) * 4);
    float* design = dipolarDesign();
    ASSERT_EQ(dipolarInit(39), 0);  // smaller request: kept as it is
    EXPECT_EQ(dipolarDesign(), design);
    EXPECT_EQ(dipolarSize(), 40);
    dipolarFree();
    EXPECT_EQ(dipolarSize(), 0);
    EXPECT_EQ(dipolarDesign(), nullptr);
    EXPECT_EQ(inUse(), start);
}

}  // namespace
