// The shift table writer: the four column layouts, the chain and segment
// columns, the canonical shifts of each row's surface, the sequence lines
// and where the table goes when its file cannot be written.
#include <gtest/gtest.h>

#include <string>

#include "cs/write_cs.h"
#include "shift_test_util.h"

namespace {

using cstest::ShiftTableTest;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

const char kTable[] =
    "REMARK written by hand\n"
    "DATA FIRST_RESID 3\n"
    "DATA SEQUENCE ACDEFGHIKL MNPQRSTVWY ACDEFGHIKL MNPQRSTVWY\n"
    "DATA SEQUENCE ACDEFGHIKL MNPQRSTVWYA\n"
    "VARS RESID RESNAME ATOMNAME SHIFT RC_SHIFT SIGMA W\n"
    "FORMAT %d %s %s %f %f %f %f\n"
    "3 ALA CA 52.25 52.5 0.5 2\n"
    "4 CYS HN 8.1 9999 9999 1\n"
    "5 ASP N 9999 116 1.25 1\n"
    "6 GLU C 176 176.5 1 1\n";

// Row 1 has no prediction, row 2 no observation, row 3 is not used.
const char kHead[] =
    "REMARK TESSERA Chemical Shift Simulation.\n"
    "\n"
    "REMARK Fit of a test table.\n";
const char kStatistics[] =
    "\n"
    "DATA N     1\n"
    "DATA RMS   0.500\n"
    "DATA Chi2  1.000\n"
    "DATA WChi2 4.000\n"
    "DATA FIRST_RESID 3\n"
    "DATA SEQUENCE ACDEFGHIKL MNPQRSTVWY ACDEFGHIKL MNPQRSTVWY ACDEFGHIKL\n"
    "DATA SEQUENCE MNPQRSTVWY A\n";

class ShiftWriter : public ShiftTableTest {
  protected:
    void SetUp() override {
        ShiftTableTest::SetUp();
        ASSERT_EQ(readText(kTable), 0);
        ASSERT_EQ(table.count, 4);
        row(0).pred = 51.75f;
        row(2).pred = 117.5f;
        row(3).pred = 177.0f;
        row(3).use = 0;
        out = scratchDir("shift_writer") + "/out.tab";
    }
    std::string written(int canonical, int observed, const char* remark = "Fit of a test table.") {
        EXPECT_EQ(writeCS(out.c_str(), &table, remark, canonical, observed), 0);
        return readFile(out);
    }
    std::string out;
};

TEST_F(ShiftWriter, LayoutsWithoutRingCurrents) {
    EXPECT_EQ(written(0, 1),
              std::string(kHead) + kStatistics +
                  "VARS    RESID RESNAME ATOMNAME CS_OBS SHIFT RC_SHIFT CS_DIFF SIGMA W\n"
                  "FORMAT  %4d %4s %4s %9.3f %9.3f %9.3f %9.3f %9.3f %.2f\n\n"
                  "    3  ALA   CA    52.250    51.750    52.500     0.500     0.500 2.00\n"
                  "    4  CYS   HN     8.100  9999.000  9999.000  9999.000  9999.000 1.00\n"
                  "    5  ASP    N  9999.000   117.500   116.000  9999.000     1.250 1.00\n");
    EXPECT_EQ(written(0, 0, ""), std::string("REMARK TESSERA Chemical Shift Simulation.\n") +
                                          kStatistics +
                                          "VARS    RESID RESNAME ATOMNAME SHIFT SIGMA W\n"
                                          "FORMAT  %4d %4s %4s %9.3f %9.3f %.2f\n\n"
                                          "    3  ALA   CA   51.750     0.500 2.00\n"
                                          "    4  CYS   HN 9999.000  9999.000 1.00\n"
                                          "    5  ASP    N  117.500     1.250 1.00\n");
}

// A ring-current shift on any row adds its column, and the note of how it
// was applied.
TEST_F(ShiftWriter, LayoutsWithRingCurrents) {
    row(0).hm = 0.125f;
    table.ringMode = 1;
    EXPECT_EQ(written(0, 1),
              std::string(kHead) +
                  "REMARK Ring Current Shifts have been added to predicted shifts.\n" +
                  kStatistics +
                  "VARS    RESID RESNAME ATOMNAME CS_OBS SHIFT RC_SHIFT HM_SHIFT CS_DIFF SIGMA W\n"
                  "FORMAT  %4d %4s %4s %9.3f %9.3f %9.3f %9.3f %9.3f %9.3f %.2f\n\n"
                  "    3  ALA   CA    52.250    51.750    52.500     0.125     0.500     0.500 "
                  "2.00\n"
                  "    4  CYS   HN     8.100  9999.000  9999.000  9999.000  9999.000  9999.000 "
                  "1.00\n"
                  "    5  ASP    N  9999.000   117.500   116.000  9999.000  9999.000     1.250 "
                  "1.00\n");
    table.ringMode = 0;
    EXPECT_EQ(written(0, 0), std::string(kHead) +
                                 "REMARK Ring Current Shifts have been calculated but not used.\n" +
                                 kStatistics +
                                 "VARS    RESID RESNAME ATOMNAME SHIFT HM_SHIFT SIGMA W\n"
                                 "FORMAT  %4d %4s %4s %9.3f %9.3f %9.3f %.2f\n\n"
                                 "    3  ALA   CA   51.750     0.125     0.500 2.00\n"
                                 "    4  CYS   HN 9999.000  9999.000  9999.000 1.00\n"
                                 "    5  ASP    N  117.500  9999.000     1.250 1.00\n");

    // Subtracted from the observed shifts: noted only where they are shown.
    table.ringMode = -1;
    auto head = [&](int observed) {
        std::string text = written(0, observed);
        return text.substr(0, text.find("\nDATA N"));
    };
    EXPECT_EQ(head(1),
              std::string(kHead) +
                  "REMARK Ring Current Shifts have been subtracted from observed shifts.\n");
    EXPECT_EQ(head(0), std::string(kHead));
}

// Chain and segment columns appear once any row names one ("None" for an
// empty name); the canonical columns hold the row surface's shift and
// deviation at the helix, sheet and coil points, 9999.0 where its density
// is below the threshold or the row has no surface.
TEST_F(ShiftWriter, ChainSegmentAndCanonicalColumns) {
    cstest::loadSurfaces({{"CA.ALA",
                           kSurfShiftKind,
                           {1.5f, 9.0f, 2.25f, -0.75f},
                           {10.0f, 0.0f, 0.5f, 3.0f},
                           {0.25f, 9.0f, 0.5f, 0.125f},
                           0.4f,
                           1.0f}});
    ASSERT_EQ(readText("VARS RESID RESNAME ATOMNAME CHAINNAME SEGNAME SHIFT\n"
                       "FORMAT %d %s %s %s %s %f\n"
                       "7 ALA CA A {} 53.5\n"
                       "8 ALA HN {} PROT 8.25\n"),
              0);
    ASSERT_NE(row(0).surface, nullptr);
    row(0).pred = 53.0f;
    EXPECT_EQ(written(1, 0),
              std::string(kHead) +
                  "\n"
                  "DATA N     1\n"
                  "DATA RMS   0.500\n"
                  "DATA Chi2  0.250\n"
                  "DATA WChi2 0.250\n"
                  "VARS    RESID RESNAME ATOMNAME CHAINNAME SEGNAME ALPHA ALPHA_DEV BETA BETA_DEV "
                  "COIL COIL_DEV SHIFT SIGMA W\n"
                  "FORMAT  %4d %4s %4s %4s %4s %9.3f %9.3f %9.3f %9.3f %9.3f %.2f %9.3f %9.3f "
                  "%.2f\n\n"
                  "    7  ALA   CA    A None     1.500     0.250  9999.000  9999.000    -0.750     "
                  "0.125   53.000  9999.000 1.00\n"
                  "    8  ALA   HN None PROT  9999.000  9999.000  9999.000  9999.000  9999.000  "
                  "9999.000 9999.000  9999.000 1.00\n");
}

TEST_F(ShiftWriter, StandardOutputWhenNoFileCanBeWritten) {
    std::string expected = written(0, 0);
    std::string bad = scratchDir("shift_writer_bad") + "/no/such/dir/out.tab";
    CaptureStdout();
    std::string err =
        stderrOf([&] { EXPECT_EQ(writeCS(bad.c_str(), &table, "Fit of a test table.", 0, 0), 0); });
    EXPECT_EQ(GetCapturedStdout(), expected);
    EXPECT_EQ(err, "TESSERA Error opening output file " + bad + "\n");

    CaptureStdout();
    EXPECT_EQ(writeCS("", &table, "Fit of a test table.", 0, 0), 0);
    EXPECT_EQ(GetCapturedStdout(), expected);

    // An empty table writes nothing at all.
    CSTab empty;
    csTabNull(&empty);
    EXPECT_EQ(writeCS(out.c_str(), &empty, nullptr, 0, 1), 0);
    EXPECT_EQ(readFile(out), expected);
}

}  // namespace
