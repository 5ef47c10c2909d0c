#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "support/run_dc.h"

namespace {

const std::string kProgram = DC_BINARY;

// The run ended by itself (no crash, no sanitizer report) and gave back
// every byte it took.
void expectCleanEnd(const DCResult& r) {
    EXPECT_GE(r.status, 0);
    EXPECT_TRUE(std::regex_search(r.err, std::regex("REMARK Memory Allocation Status\\. "
                                                    "Reused: \\d+ In Use: 0\n$")))
        << r.err.substr(r.err.size() > 2000 ? r.err.size() - 2000 : 0);
}

std::string versionLines(const std::string& prefix) {
    return prefix + "DC Dipolar Coupling Calculation. " + DC_DOC_ADDRESS + "\n" + prefix +
           "Quillon System " + DC_SUITE_VERSION + " Rev " + DC_REVISION + "\n";
}

TEST(CommandLine, HelpWritesBothUsageTextsAndFails) {
    const std::string expected = readFile(DC_TEST_DATA "/help_expected.txt");
    ASSERT_FALSE(expected.empty());
    DCResult r = runDC({"-help"});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err, expected);

    // With argument checking on, the help run is announced and nothing is checked.
    r = runDC({"-help", "-foo"}, {"NMR_CHECKARGS=ALL"});
    EXPECT_EQ(r.err, "Program " + kProgram + ", argument checking enabled.\n" + expected);
}

TEST(CommandLine, VersionLinesGoToStandardOutput) {
    DCResult r = runDC({"-version"});
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out, versionLines("# "));
    EXPECT_EQ(r.err, "");

    r = runDC({"-pdb", "x", "-rversion", "-foo"}, {"NMR_CHECKARGS=ALL"});
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out, versionLines("REMARK "));
    EXPECT_EQ(r.err, "");
}

// The argument check runs before any file is read, so its report opens
// standard error whatever the run does later.
TEST(CommandLine, ArgumentCheckFollowsNmrCheckargs) {
    const std::vector<std::string> args = {"-pdb", "x", "-foo", "3"};
    const std::string warning = "Warning from " + kProgram + ":\n";

    DCResult r = runDC(args, {"NMR_CHECKARGS=ALL"});
    EXPECT_TRUE(
        r.err.starts_with(warning + "  Arguments 3 to 4 may be unknown or unused:\n  ' -foo 3 '\n"))
        << r.err;
    EXPECT_EQ(r.err.find("Warning from", 1), std::string::npos);

    r = runDC(args, {"NMR_CHECKARGS=FLAGS"});
    EXPECT_TRUE(r.err.starts_with(warning + "  Argument 3 may be unknown or unused:\n  ' -foo '\n"))
        << r.err;
    EXPECT_EQ(r.err.find("Arguments"), std::string::npos);

    // An empty value means ALL; unset means no check at all.
    EXPECT_TRUE(runDC(args, {"NMR_CHECKARGS="}).err.starts_with(warning + "  Arguments 3 to 4"));
    r = runDC(args);
    EXPECT_EQ(r.err.find("Warning from"), std::string::npos);
    expectCleanEnd(r);

    r = runDC({"-r1", "-5", "-foo"}, {"NMR_CHECKARGS=debug"});
    EXPECT_TRUE(r.err.starts_with("Debug Info from " + kProgram + ". Original Checksum: "))
        << r.err;
}

TEST(CommandLine, BadArgumentsNeverCrash) {
    for (const char* option : {"-r1", "-pdb", "-w", "-select", "-saupe", "-retry", "-inD"}) {
        SCOPED_TRACE(option);
        expectCleanEnd(runDC({option}));
    }

    std::string huge(100000, 'a');
    DCResult r = runDC({"-select", huge, "-outD", huge, "-foo", huge}, {"NMR_CHECKARGS=ALL"});
    EXPECT_TRUE(r.err.starts_with("DC Error: Too many items for -select option.\n")) << r.err;
    expectCleanEnd(r);

    // More arguments than the checker tracks.
    std::vector<std::string> many = {"-pdb", "x"};
    while (many.size() < 2000) many.push_back("w");
    r = runDC(many, {"NMR_CHECKARGS=ALL"});
    EXPECT_TRUE(
        r.err.starts_with("Warning from " + kProgram + ": not all arguments will be checked.\n"));
    expectCleanEnd(r);
}

}  // namespace
