#include <gtest/gtest.h>

#include <string>

#include "dc/write_dc.h"
#include "dc_test_util.h"
#include "util/fixed_text.h"

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

const char kTable[] =
    "VARS   RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J D DD W\n"
    "FORMAT %5d %6s %6s %5d %6s %6s %9.3f %9.3f %.2f\n\n"
    "    5    ALA      N     5    ALA      H     3.200     0.500 2.00\n"
    "    6    GLY     CA     6    GLY    HA#  9999.000     1.000 1.00\n"
    "    7    LYS      N     7    LYS      H     1.000     0.500 1.00\n"
    "    8    SER      N     8    SER      H    -4.000     0.500 1.00\n";

std::string versionHeader() {
    return std::string("# DC Dipolar Coupling Calculation. ") + DC_DOC_ADDRESS +
           "\n# Quillon System " + DC_SUITE_VERSION + " Rev " + DC_REVISION + "\n\n";
}

// A table after a nonlinear fit, set by hand: row 1 is fitted, row 2 has no
// observation, row 3 is outside the selection, row 4 was not back-calculated.
// Only one side of one row names its chain.
void fillFitResult(DTab* t) {
    DCValue* v = t->couplings;
    v[0].dCalc = 2.95f;
    v[0].w = 1.0f;  // the weights in use differ from the table's
    v[0].dd = 0.25f;
    const float design[6] = {1.0e-4f, -2.0e-4f, 3.5e-5f, 0.0f, 12.5f, 1.0f};
    for (int k = 0; k < 6; k++) v[0].result[k] = design[k];
    v[1].dCalc = 7.5f;
    v[1].result[5] = 2.0f;
    v[2].use = 0;
    copyName(v[0].chainI, "A");  // one chain name: every row shows both columns
    t->noChainNames = 0;
    t->svdCount = 1;

    DTensor& d = t->tensor;
    d.method = kMethodFit;
    d.bestIteration = 7;
    d.rx = 10.0f, d.ry = -20.0f, d.rz = 30.5f;
    d.ryAdd = 5.0f;
    d.daMin = -1.0e-3f, d.daMax = 2.0e-3f;
    d.rhMode = 1;
    d.rhMin = 0.0f, d.rhMax = 0.5f;
    d.rxMin = -90.0f, d.rxMax = 90.0f;
    d.ryMin = -180.0f, d.ryMax = 180.0f;
    d.rzMin = 0.0f, d.rzMax = 45.0f;
    const float saupe[5] = {8.0e-4f, -1.0e-4f, 2.0e-5f, 3.0e-5f, -4.0e-5f};
    for (int k = 0; k < 5; k++) d.saupe[k] = saupe[k];
    d.sortedPrincipal[0] = -1.0e-4f, d.sortedPrincipal[1] = -7.0e-4f;
    d.sortedPrincipal[2] = 8.0e-4f;
    d.solutionCount = 1;
    d.rxSolutions[0] = 10.0f, d.rySolutions[0] = -20.0f, d.rzSolutions[0] = 30.5f;
    d.rotref = 1;
    d.rxRef = 190.0f, d.ryRef = -200.0f, d.rzRef = 0.0f;
    d.refSpare[0] = -540.0f, d.refSpare[1] = 370.0f, d.refSpare[2] = 180.0f;
    d.da = 4.0e-4f, d.dr = -1.0e-4f;
}

class CouplingWriter : public dctest::CouplingTest {};

TEST_F(CouplingWriter, DesignColumnsAfterANonlinearFit) {
    ASSERT_EQ(readText(kTable), 0);
    ASSERT_EQ(table.count, 4);
    fillFitResult(&table);
    std::string dir = scratchDir("writer_design");
    EXPECT_EQ(
        writeDC((dir + "/out.tab").c_str(), &table, kColumnsDesign, 0, "Fit of a test table."), 0);
    std::string expected = readFile(DC_TEST_DATA "/simulation/writer_design.tab");
    ASSERT_FALSE(expected.empty());
    EXPECT_EQ(readFile(dir + "/out.tab"), versionHeader() + expected);
}

TEST_F(CouplingWriter, UnwritableFileIsReported) {
    ASSERT_EQ(readText(kTable), 0);
    std::string dir = scratchDir("writer_failures");
    std::string bad = dir + "/no/such/dir/out.tab";
    CaptureStderr();
    EXPECT_EQ(writeDC(bad.c_str(), &table, kColumnsObserved, 0, "T"), 0);
    EXPECT_EQ(GetCapturedStderr(), "DC Error opening output file " + bad + "\n");
}

}  // namespace
