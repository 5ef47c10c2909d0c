// The shift table writer: ring-current columns and notes, the sequence
// lines, chain, segment and canonical columns, and standard output when no
// file can be written. The plain layouts are checked from the command line.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "cs/surface_list.h"
#include "cs/write_cs.h"
#include "shift_test_util.h"

namespace {

// Row 1 has no prediction, row 2 no observation, row 3 is not used.
class ShiftWriter : public cstest::ShiftTableTest {
  protected:
    void SetUp() override {
        ShiftTableTest::SetUp();
        ASSERT_EQ(readText("DATA FIRST_RESID 3\n"
                           "DATA SEQUENCE ACDEFGHIKL MNPQRSTVWY ACDEFGHIKL MNPQRSTVWY\n"
                           "DATA SEQUENCE ACDEFGHIKL MNPQRSTVWYA\n"
                           "VARS RESID RESNAME ATOMNAME SHIFT RC_SHIFT SIGMA W\n"
                           "FORMAT %d %s %s %f %f %f %f\n"
                           "3 ALA CA 52.25 52.5 0.5 2\n4 CYS HN 8.1 9999 9999 1\n"
                           "5 ASP N 9999 116 1.25 1\n6 GLU C 176 176.5 1 1\n"),
                  0);
        row(0).pred = 51.75f;
        row(2).pred = 117.5f;
        row(3).use = 0;
        out = scratchDir("shift_writer") + "/out.tab";
    }
    std::string written(int canonical, int observed, const char* remark = "T.") {
        EXPECT_EQ(writeCS(out.c_str(), &table, remark, canonical, observed), 0);
        return readFile(out);
    }
    std::string out;
};

// A ring-current shift on any row adds its column and a note of how the
// shifts were used; subtracted ones are noted only beside observed values.
// The sequence is written again in lines of five groups of ten.
TEST_F(ShiftWriter, RingCurrentColumnsNotesAndSequence) {
    row(0).hm = 0.125f;
    const std::string head =
        "REMARK TESSERA Chemical Shift Simulation.\n\nREMARK T.\n"
        "REMARK Ring Current Shifts have been calculated but not used.\n"
        "\nDATA N     1\nDATA RMS   0.500\nDATA Chi2  1.000\nDATA WChi2 4.000\n"
        "DATA FIRST_RESID 3\n"
        "DATA SEQUENCE ACDEFGHIKL MNPQRSTVWY ACDEFGHIKL MNPQRSTVWY ACDEFGHIKL\n"
        "DATA SEQUENCE MNPQRSTVWY A\n";
    const std::string observed =
        "VARS    RESID RESNAME ATOMNAME CS_OBS SHIFT RC_SHIFT HM_SHIFT CS_DIFF SIGMA W\n"
        "FORMAT  %4d %4s %4s %9.3f %9.3f %9.3f %9.3f %9.3f %9.3f %.2f\n\n"
        "    3  ALA   CA    52.250    51.750    52.500     0.125     0.500     0.500 2.00\n"
        "    4  CYS   HN     8.100  9999.000  9999.000  9999.000  9999.000  9999.000 1.00\n"
        "    5  ASP    N  9999.000   117.500   116.000  9999.000  9999.000     1.250 1.00\n";
    EXPECT_EQ(written(0, 1), head + observed);
    EXPECT_EQ(written(0, 0), head +
                                 "VARS    RESID RESNAME ATOMNAME SHIFT HM_SHIFT SIGMA W\n"
                                 "FORMAT  %4d %4s %4s %9.3f %9.3f %9.3f %.2f\n\n"
                                 "    3  ALA   CA   51.750     0.125     0.500 2.00\n"
                                 "    4  CYS   HN 9999.000  9999.000  9999.000 1.00\n"
                                 "    5  ASP    N  117.500  9999.000     1.250 1.00\n");
    // No remark line for an empty remark.
    auto top = [&](int mode, int observed) {
        table.ringMode = mode;
        std::string text = written(0, observed, "");
        return text.substr(0, text.find("\nDATA N"));
    };
    const std::string bare = "REMARK TESSERA Chemical Shift Simulation.\n";
    EXPECT_EQ(top(1, 0),
              bare + "REMARK Ring Current Shifts have been added to predicted shifts.\n");
    EXPECT_EQ(top(-1, 1),
              bare + "REMARK Ring Current Shifts have been subtracted from observed shifts.\n");
    EXPECT_EQ(top(-1, 0), bare);
}

// Chain and segment columns once any row names one ("None" when empty);
// canonical columns: the surface's shift and deviation at helix, sheet and
// coil, 9999.0 where its density is below the threshold or there is none.
TEST_F(ShiftWriter, ChainSegmentAndCanonicalColumns) {
    // A 2 x 2 grid over the plane: helix in cell 0, sheet in 2 (density below
    // the threshold), coil in 3 (density at it).
    Surface s{};
    copyName(s.name, "CA.ALA");
    s.kind = kSurfShiftKind;
    s.nx = s.ny = 2;
    s.xmin = s.ymin = -180.0f;
    s.xmax = s.ymax = 180.0f;
    s.threshold = 1.0f;
    const float cells[3][4] = {
        {1.5f, 9, 2.25f, -0.75f}, {10, 2, 0.5f, 1}, {0.25f, 9, 0.5f, 0.125f}};
    float** arrays[3] = {&s.value, &s.density, &s.dev};
    for (int a = 0; a < 3; a++) {
        *arrays[a] = fltMalloc64("cs", 4);
        std::copy(cells[a], cells[a] + 4, *arrays[a]);
    }
    ASSERT_EQ(surfListAlloc(1) + surfListAdd(&s), 0);
    ASSERT_EQ(readText("VARS RESID RESNAME ATOMNAME CHAINNAME SEGNAME SHIFT\n"
                       "FORMAT %d %s %s %s %s %f\n7 ALA CA A {} 53.5\n8 ALA HN {} PROT 8.25\n"),
              0);
    row(0).pred = 53.0f;
    EXPECT_EQ(written(1, 0),
              "REMARK TESSERA Chemical Shift Simulation.\n\nREMARK T.\n\n"
              "DATA N     1\nDATA RMS   0.500\nDATA Chi2  0.250\nDATA WChi2 0.250\n"
              "VARS    RESID RESNAME ATOMNAME CHAINNAME SEGNAME ALPHA ALPHA_DEV BETA BETA_DEV "
              "COIL COIL_DEV SHIFT SIGMA W\n"
              "FORMAT  %4d %4s %4s %4s %4s %9.3f %9.3f %9.3f %9.3f %9.3f %.2f %9.3f %9.3f %.2f\n\n"
              "    7  ALA   CA    A None     1.500     0.250  9999.000  9999.000    -0.750     "
              "0.125   53.000  9999.000 1.00\n"
              "    8  ALA   HN None PROT  9999.000  9999.000  9999.000  9999.000  9999.000  "
              "9999.000 9999.000  9999.000 1.00\n");
}

// The same text goes to standard output after the message when the file
// cannot be opened, or when no file is named; an empty table writes nothing.
TEST_F(ShiftWriter, StandardOutputWhenNoFileCanBeWritten) {
    std::string expected = written(0, 0);
    std::string bad = scratchDir("shift_writer_bad") + "/no/such/dir/out.tab";
    testing::internal::CaptureStdout();
    EXPECT_EQ(stderrOf([&] { writeCS(bad.c_str(), &table, "T.", 0, 0); }),
              "TESSERA Error opening output file " + bad + "\n");
    writeCS("", &table, "T.", 0, 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), expected + expected);
    CSTab empty;
    csTabNull(&empty);
    EXPECT_EQ(writeCS(out.c_str(), &empty, nullptr, 0, 1), 0);
    EXPECT_EQ(readFile(out), expected);
}

}  // namespace
