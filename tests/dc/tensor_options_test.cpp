#include "dc/tensor_options.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "dc/dtab.h"
#include "support/arg_vector.h"
#include "util/args.h"

namespace {

using Range = std::array<float, 3>;  // start value, minimum, maximum

struct Parsed {
    DTensor t;
    std::string err;
    int status;
    Range da() const { return {t.da, t.daMin, t.daMax}; }
    Range dr() const { return {t.dr, t.drMin, t.drMax}; }
    Range rh() const { return {t.rh, t.rhMin, t.rhMax}; }
    Range rx() const { return {t.rx, t.rxMin, t.rxMax}; }
    Range ry() const { return {t.ry, t.ryMin, t.ryMax}; }
    Range rz() const { return {t.rz, t.rzMin, t.rzMax}; }
};

// The tensor of a fresh coupling table after the given options.
Parsed parse(std::vector<std::string> words) {
    ArgVector a(std::move(words));
    DTab table;
    dTabNull(&table);
    nullArgs();
    testing::internal::CaptureStderr();
    int status = getDTensorParams(a.argc(), a.argv(), &table.tensor);
    std::string err = testing::internal::GetCapturedStderr();
    nullArgs();
    return {table.tensor, err, status};
}

const Range kOpenRotation = {45.0f, -180.0f, 180.0f};

TEST(TensorOptions, DefaultsWithoutOptions) {
    Parsed p = parse({});
    EXPECT_EQ(p.status, 0);
    EXPECT_EQ(p.err, "");
    EXPECT_EQ(p.t.method, kMethodSVD);
    EXPECT_EQ(p.t.euler, 1);
    EXPECT_EQ(p.da(), (Range{1.0e-4f, -0.01f, 0.01f}));
    EXPECT_EQ(p.dr(), (Range{1.0e-5f, -0.01f, 0.01f}));
    EXPECT_EQ(p.rh(), (Range{0.1f, 0.0f, 0.6666667f}));
    EXPECT_EQ(p.rx(), kOpenRotation);
    EXPECT_EQ(p.ry(), kOpenRotation);
    EXPECT_EQ(p.rz(), kOpenRotation);
    EXPECT_EQ(p.t.gridStep, 5.0f);
    EXPECT_EQ(p.t.fc, 1.0f);
    EXPECT_EQ(p.t.useAuto + p.t.autoLimits + p.t.rhMode + p.t.rotref, 0);
    EXPECT_EQ(p.t.rotation[2][2], 1.0f);
}

TEST(TensorOptions, StartValuesAndLimitsAreClamped) {
    Parsed p = parse({"-rh", "0.9", "-rhMin", "-0.2", "-rhMax", "5", "-da", "0.05", "-dr", "-1",
                      "-psi", "200", "-thetaMin", "50", "-phiMax", "10"});
    EXPECT_EQ(p.rh(), (Range{0.6666667f, 0.0f, 0.6666667f}));
    EXPECT_EQ(p.t.da, 0.01f);
    EXPECT_EQ(p.t.dr, -0.01f);
    EXPECT_EQ(p.rx(), (Range{180.0f, -180.0f, 180.0f}));
    EXPECT_EQ(p.ry(), (Range{50.0f, 50.0f, 180.0f}));
    EXPECT_EQ(p.rz(), (Range{10.0f, -180.0f, 10.0f}));
    // -rx and -psi set the same angle; the angle name is read last.
    EXPECT_EQ(parse({"-psi", "30", "-rx", "20"}).t.rx, 30.0f);

    // "Auto" (any case) asks for SVD start values and keeps the default.
    p = parse({"-da", "Auto"});
    EXPECT_EQ(p.t.useAuto, 1);
    EXPECT_EQ(p.t.da, 1.0e-4f);
    p = parse({"-daMax", "auto", "-daMin", "-0.02"});
    EXPECT_EQ(p.t.autoLimits + p.t.useAuto, 2);
    EXPECT_EQ(p.da(), (Range{1.0e-4f, -0.02f, 0.01f}));
}

TEST(TensorOptions, ReferencesAndRotref) {
    Parsed p = parse({"-rotref", "-daRef", "2e-4", "-thetaRef", "12", "-rxOff", "3", "-phiAdd",
                      "-7", "-fc", "2", "-gridStep", "10"});
    EXPECT_EQ(p.t.da, 2e-4f);
    EXPECT_EQ(p.t.dr, 0.0f);  // the reference pair replaces both start values
    EXPECT_EQ((Range{p.t.ryRef, p.t.rxOff, p.t.rzAdd}), (Range{12, 3, -7}));
    EXPECT_EQ(p.t.fc, 2.0f);
    EXPECT_EQ(p.t.gridStep, 10.0f);
    EXPECT_EQ(p.rx(), (Range{0, 0, 0}));
    EXPECT_EQ(p.rz(), (Range{0, 0, 0}));
    // Limits read after -rotref open the range again; the start stays at 0.
    EXPECT_EQ(parse({"-rotref", "-psiMin", "-10", "-psiMax", "10"}).rx(), (Range{0, -10, 10}));
    EXPECT_EQ(parse({"-rotref", "-norotref"}).rx(), kOpenRotation);
}

TEST(TensorOptions, MethodsAndPredefinedModes) {
    EXPECT_EQ(parse({"-fixed", "-svd"}).t.method, kMethodFixed);  // list order, not argv order
    EXPECT_EQ(parse({"-nofixed", "-fixed"}).t.method, kMethodFit);
    EXPECT_EQ(parse({"-fit", "-grid"}).t.method, kMethodGrid);
    Parsed p = parse({"-fixed", "-da", "5e-4", "-psi", "10"});
    EXPECT_EQ(p.da(), (Range{5e-4f, 5e-4f, 5e-4f}));
    EXPECT_EQ(p.rx(), (Range{10, 10, 10}));
    EXPECT_EQ(parse({"-fixed", "-grid"}).rx(), kOpenRotation);

    p = parse({"-dadr", "-da", "3e-4", "-dr", "1e-4"});
    EXPECT_EQ(p.t.method, kMethodFit);
    EXPECT_EQ(p.dr(), (Range{1e-4f, 1e-4f, 1e-4f}));
    EXPECT_EQ(p.rx(), kOpenRotation);
    p = parse({"-rotrh", "-rh", "0.2"});
    EXPECT_EQ(p.rh(), (Range{0.2f, 0.2f, 0.2f}));
    EXPECT_EQ(p.rx(), (Range{45, 45, 45}));
}

TEST(TensorOptions, AllParametersFixedMeansAGivenTensor) {
    Parsed p =
        parse({"-rxFixed", "-thetaFixed", "-rzFixed", "-daFixed", "-drFixed", "-da", "2e-4"});
    EXPECT_EQ(p.t.method, kMethodFixed);
    float rh = 1.0e-5f / 2e-4f;
    EXPECT_EQ(p.rh(), (Range{rh, rh, rh}));
    EXPECT_EQ(p.dr(), (Range{1e-5f, 1e-5f, 1e-5f}));
    EXPECT_EQ(p.t.rhMode, 0);
    EXPECT_EQ(p.err, "");

    // With Rh fixed the rhombicity decides Dr.
    p = parse({"-psiFixed", "-ryFixed", "-phiFixed", "-daFixed", "-rhFixed", "-rh", "0.25"});
    EXPECT_EQ(p.t.method, kMethodFixed);
    float dr = 0.25f * 1.0e-4f;
    EXPECT_EQ(p.dr(), (Range{dr, dr, dr}));
    EXPECT_EQ(p.t.rhMode, 1);
    // Three of four fixed: still a fit, but Dr follows the fixed Rh.
    p = parse({"-rxFixed", "-ryFixed", "-rzFixed", "-rhFixed", "-rh", "0.5", "-fit"});
    EXPECT_EQ(p.t.method, kMethodFit);
    EXPECT_EQ(p.t.drMax, 0.5f * 1.0e-4f);
    // A zero Da gives a zero rhombicity rather than a division by zero.
    EXPECT_EQ(parse({"-rxFixed", "-ryFixed", "-rzFixed", "-daFixed", "-drFixed", "-da", "0"}).t.rh,
              0.0f);
}

TEST(TensorOptions, MixingDrAndRhWarnsAndUsesRh) {
    const std::string warning = "DC Tensor Warning: mixed use of Dr and Rhombicity arguments.\n";
    Parsed p = parse({"-dr", "1e-4", "-rh", "0.3"});
    EXPECT_EQ(p.err, warning);
    EXPECT_EQ(p.t.rhMode, 1);
    EXPECT_EQ(parse({"-drMin", "0", "-rhMax", "0.5"}).err, warning);
    p = parse({"-rh", "0.3", "-norhMode"});
    EXPECT_EQ(p.err, "");
    EXPECT_EQ(p.t.rhMode, 1);
    EXPECT_EQ(parse({"-dr", "1e-4", "-norhMode"}).t.rhMode, 0);
}

TEST(TensorOptions, SaupeValuesNeedAllFive) {
    Parsed p = parse({"-saupe", "1e-4", "-2e-4", "3e-4", "-.5", "5", "-pdb", "x"});
    EXPECT_EQ(p.status, 0);
    EXPECT_EQ(p.t.method, kMethodSaupe);
    const float expected[5] = {1e-4f, -2e-4f, 3e-4f, -0.5f, 5.0f};
    EXPECT_TRUE(std::equal(expected, expected + 5, p.t.saupeGiven));

    p = parse({"-saupe", "1", "2", "3", "4", "-pdb", "x"});
    EXPECT_EQ(p.status, 1);
    EXPECT_EQ(p.err, "TESSERA Error: -saupe option requires 5 values.\n");
    p = parse({"-align", "1", "2"});
    EXPECT_EQ(p.status, 1);
    EXPECT_EQ(p.err, "TESSERA Error: -align option requires 5 values.\n");
    EXPECT_EQ(parse({"-saupe"}).status, 1);
}

}  // namespace
