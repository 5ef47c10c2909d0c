#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "support/run_dc.h"

namespace {

const std::regex kCleanEnd("REMARK Memory Allocation Status\\. Reused: \\d+ In Use: 0\n$");

TEST(CouplingTableRun, MissingTableFailsBeforeTheStructureIsRead) {
    std::string dir = scratchDir("missing_table");
    DCResult r = runDC({"-pdb", "x.pdb", "-inD", "missing.tab"}, {}, dir);
    EXPECT_NE(r.status, 0);
    EXPECT_EQ(r.out, "");
    EXPECT_TRUE(
        r.err.starts_with("RdTable File open error: missing.tab.\n"
                          "DC Error Reading D Values in missing.tab\n"
                          "REMARK Memory Allocation Status."))
        << r.err;
    EXPECT_TRUE(std::regex_search(r.err, kCleanEnd)) << r.err;
}

// The simulation maps its couplings without warnings: a coupling naming an
// atom the structure lacks (HN where the model says H) is left out of the
// statistics silently, and every other coupling is still used.
TEST(CouplingTableRun, UnmappedCouplingIsLeftOutSilently) {
    std::string dir = scratchDir("unmapped_coupling");
    std::string table = readFile(DC_SHARED_DATA "/hafp_nh_caha.tab");
    ASSERT_FALSE(table.empty());
    writeFile(dir + "/in.tab",
              table + "    5    ALA      N     5    ALA     HN     1.000     0.400 1.00\n");
    DCResult r = runDC({"-pdb", DC_SHARED_DATA "/hafp_a.pdb", "-inD", "in.tab", "-outD", "out.tab"},
                       {}, dir);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out,
              "REMARK 43 Couplings Selected. Mode: Max(ResID I, ResID J) Limits: 2 to 23.\n");
    EXPECT_EQ(r.err.find("No Atom Map"), std::string::npos) << r.err;
    EXPECT_NE(r.err.find("REMARK D_N:  42 "), std::string::npos) << r.err;
    EXPECT_TRUE(std::regex_search(r.err, kCleanEnd)) << r.err;
}

}  // namespace
