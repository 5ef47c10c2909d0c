// What dcplot says and returns for wrong arguments and for inputs it cannot
// plot, that no input crashes it, and that a plot gives back its memory.
#include <gtest/gtest.h>

#include <cstdio>
#include <random>

#include "plot_support.h"
#include "support/checks.h"
#include "support/run_dc.h"
#include "tools/dcplot/plots.h"

namespace {

const char* const kKinds[] = {"couplings", "shifts", "search"};

// DC's coupling and shift tables of ubiquitin in dir, with -verb or without.
void ubqTables(const std::string& dir, const char* verb) {
    std::vector<std::string> d = {"-pdb",       "1ubq_h.pdb", "-inD",
                                  "ubq_nh.tab", "-outD",      dir + "/d.tab"};
    std::vector<std::string> cs = {"-pdb",       "1ubq_h.pdb", "-inCS",
                                   "ubq_cs.tab", "-outCS",     dir + "/cs.tab"};
    for (auto& args : {d, cs}) {
        std::vector<std::string> all = args;
        if (verb[0]) all.push_back(verb);
        ASSERT_EQ(runDC(all, {}, DC_EXAMPLES "/ubq").status, 0);
    }
}

void expectError(const std::vector<std::string>& args, const std::string& message) {
    PlotRun run = runPlot(args);
    EXPECT_EQ(run.status, 1) << message;
    std::size_t last = run.err.rfind("dcplot Error");  // after any message of the table reader
    EXPECT_EQ(last == std::string::npos ? run.err : run.err.substr(last), message);
    EXPECT_EQ(readFile(args[2]), "") << "output written for " << message;
}

TEST(PlotErrors, WrongArgumentsGiveTheUsageAndStatus2) {
    for (std::vector<std::string> args : std::vector<std::vector<std::string>>{
             {}, {"couplings", "a.tab"}, {"plot", "a.tab", "b.svg"}, {"search", "a", "b", "c"}}) {
        PlotRun run = runPlot(args);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.err.rfind("Usage: dcplot couplings IN.tab OUT.svg\n", 0), 0u) << run.err;
    }
}

TEST(PlotErrors, InputsThatCannotBePlottedSayWhy) {
    ScratchDir dir("plot_errors");
    std::string d = dir.path + "/d.tab", cs = dir.path + "/cs.tab", out = dir.path + "/o.svg";
    std::string none = dir.path + "/none", empty = dir.path + "/empty", r = dir.path + "/r.txt";
    for (const char* kind : kKinds) {
        expectError({kind, none, out}, "dcplot Error: cannot open " + none + ".\n");
    }
    ubqTables(dir.path, "");
    expectError({"couplings", d, out},
                "dcplot Error: " + d + " has no observed couplings (run DC with -verb).\n");
    expectError({"shifts", cs, out},
                "dcplot Error: " + cs + " has no observed shifts (run DC with -verb).\n");
    expectError({"search", d, out}, "dcplot Error: " + d + " has no INDEX column.\n");
    writeFile(empty, "");
    expectError({"search", empty, out}, "dcplot Error: " + empty + " has no VARS line.\n");
    expectError({"couplings", empty, out},
                "dcplot Error: " + empty + " is not a readable table.\n");
    writeFile(r, "VARS INDEX P_NAME P_RES1 D_RMS\n1 a 1 2.0 1 a 2 x3\n");
    expectError({"search", r, out},
                "dcplot Error: bad number x3 for D_RMS in row 2 of " + r + ".\n");
    writeFile(r, "VARS INDEX P_NAME P_RES1 D_RMS\n1 a 1 2.0 1 a 2");
    expectError({"search", r, out}, "dcplot Error: " + r + " ends inside row 2 (3 of 4 values).\n");
    writeFile(r, "VARS INDEX P_NAME P_RES1 D_RMS\n1 a 1 2.0\n");
    expectError({"search", r, none + "/o.svg"}, "dcplot Error: cannot write " + none + "/o.svg.\n");
}

// Cut, garbled and odd inputs end in status 0 or 1, never a crash, and what
// is written is well-formed.
TEST(PlotErrors, NoInputCrashesIt) {
    ScratchDir dir("plot_garbage");
    ubqTables(dir.path, "-verb");
    std::string table = readFile(dir.path + "/d.tab"), noise(3000, ' ');
    std::mt19937 random(7);
    for (char& c : noise) c = static_cast<char>(random() % 256);
    std::vector<std::string> inputs = {
        noise,
        table.substr(0, 2500) + noise,
        "VARS ATOMNAME_I ATOMNAME_J D_OBS D CS_OBS SHIFT ATOMNAME\nFORMAT %s %s %f %f %f %f %s\n"
        "\x01& <\"x 1 2 3 4 \xff\n1 2 3 4 5 6 7\n",
        "VARS D_OBS D\nFORMAT %f %f\n-1e30 1e30\n1 1e-320\n5 5\n",
        "VARS INDEX P_NAME P_RES1 D_RMS D_N\n1 \x02\xfe 1e300 1 1\n",
        "VARS INDEX P_NAME P_RES1 D_RMS\n1 a 5 5 1 a 5 5\n"};
    for (std::size_t cut = 100; cut < table.size(); cut += table.size() / 7) {
        inputs.push_back(table.substr(0, cut));
    }
    std::string in = dir.path + "/in", out = dir.path + "/out.svg", error;
    for (const std::string& text : inputs) {
        writeFile(in, text);
        for (const char* kind : kKinds) {
            std::remove(out.c_str());
            PlotRun run = runPlot({kind, in, out});
            EXPECT_TRUE(run.status == 0 || run.status == 1) << kind << " " << run.status;
            // A failure ends with dcplot's own message, not a sanitizer's report.
            std::size_t last = run.err.rfind('\n', run.err.size() - 2) + 1;
            if (run.status == 1) {
                EXPECT_EQ(run.err.compare(last, 14, "dcplot Error: "), 0) << run.err;
            }
            if (run.status == 0) parseXml(readFile(out), &error);
            EXPECT_EQ(error, "") << kind;
        }
    }
}

TEST(PlotErrors, EveryPlotGivesBackItsMemory) {
    ScratchDir dir("plot_memory");
    ubqTables(dir.path, "-verb");
    std::string d = dir.path + "/d.tab", cs = dir.path + "/cs.tab", r = dir.path + "/r.txt";
    writeFile(r, "VARS INDEX P_NAME P_RES1 D_RMS\n1 a 1 2.0 1 a 2 3.0\n");
    std::string out = dir.path + "/o.svg";
    int64_t before = bytesInUse();
    stderrOf([&] {
        EXPECT_EQ(plotCouplings(d.c_str(), out.c_str()) + plotShifts(cs.c_str(), out.c_str()) +
                      plotSearch(r.c_str(), out.c_str()),
                  0);
        EXPECT_EQ(plotCouplings(cs.c_str(), out.c_str()) + plotShifts(d.c_str(), out.c_str()) +
                      plotSearch(d.c_str(), out.c_str()),
                  3);
    });
    EXPECT_EQ(bytesInUse(), before);
}

}  // namespace
