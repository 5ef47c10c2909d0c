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

// DC's coupling and shift tables of ubiquitin, d.tab and cs.tab in a new dir;
// only verbosity 1 and above adds the observed values.
std::string ubqTables(const std::string& name, const char* verbosity) {
    std::string dir = scratchDir(name);
    for (std::string k : {"D", "CS"}) {
        std::string tab = k == "D" ? "nh" : "cs", out = dir + (k == "D" ? "/d.tab" : "/cs.tab");
        std::vector<std::string> args = {"-pdb",     "1ubq_h.pdb", "-in" + k, "ubq_" + tab + ".tab",
                                         "-out" + k, out,          "-verb",   verbosity};
        EXPECT_EQ(runDC(args, {}, DC_EXAMPLES "/ubq").status, 0);
    }
    return dir;
}

void expectError(const std::vector<std::string>& args, const std::string& message) {
    DCResult run = runPlot(args);
    EXPECT_EQ(run.status, 1) << message;
    std::size_t last = run.err.rfind("dcplot Error");  // after any message of the table reader
    EXPECT_EQ(last == std::string::npos ? run.err : run.err.substr(last), message);
    EXPECT_EQ(readFile(args[2]), "") << "output written for " << message;
}

TEST(PlotErrors, WrongArgumentsGiveTheUsageAndStatus2) {
    for (std::vector<std::string> args : std::vector<std::vector<std::string>>{
             {}, {"couplings", "a.tab"}, {"plot", "a.tab", "b.svg"}, {"search", "a", "b", "c"}}) {
        DCResult run = runPlot(args);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.err.rfind("Usage: dcplot couplings IN.tab OUT.svg\n", 0), 0u) << run.err;
    }
}

TEST(PlotErrors, InputsThatCannotBePlottedSayWhy) {
    std::string dir = ubqTables("plot_errors", "0"), d = dir + "/d.tab", cs = dir + "/cs.tab";
    std::string out = dir + "/o.svg", none = dir + "/none", empty = dir + "/empty";
    std::string r = dir + "/r.txt", e = "dcplot Error: ";
    for (const char* kind : kKinds)
        expectError({kind, none, out}, e + "cannot open " + none + ".\n");
    expectError({"couplings", d, out}, e + d + " has no observed couplings (run DC with -verb).\n");
    expectError({"shifts", cs, out}, e + cs + " has no observed shifts (run DC with -verb).\n");
    expectError({"search", d, out}, e + d + " has no INDEX column.\n");
    writeFile(empty, "");
    expectError({"search", empty, out}, e + empty + " has no VARS line.\n");
    expectError({"couplings", empty, out}, e + empty + " is not a readable table.\n");
    writeFile(r, "VARS INDEX P_NAME P_RES1 D_RMS\n1 a 1 2.0 1 a 2 x3\n");
    expectError({"search", r, out}, e + "bad number x3 for D_RMS in row 2 of " + r + ".\n");
    writeFile(r, "VARS INDEX P_NAME P_RES1 D_RMS\n1 a 1 2.0 1 a 2");
    expectError({"search", r, out}, e + r + " ends inside row 2 (3 of 4 values).\n");
    writeFile(r, "VARS INDEX P_NAME P_RES1 D_RMS\n1 a 1 2.0\n");
    expectError({"search", r, none + "/o.svg"}, e + "cannot write " + none + "/o.svg.\n");
}

// Cut, garbled and odd inputs end in status 0 with a well-formed picture or
// in status 1 with dcplot's own message, never a crash or a sanitizer report.
TEST(PlotErrors, NoInputCrashesIt) {
    std::string dir = ubqTables("plot_garbage", "1"), in = dir + "/in", out = dir + "/out.svg";
    std::string table = readFile(dir + "/d.tab"), noise(3000, ' ');
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
    for (const std::string& text : inputs) {
        writeFile(in, text);
        for (const char* kind : kKinds) {
            std::remove(out.c_str());
            DCResult run = runPlot({kind, in, out});
            ASSERT_TRUE(run.status == 0 || run.status == 1) << kind << " " << run.status;
            Svg svg;
            std::size_t last = run.err.rfind('\n', run.err.size() - 2) + 1;
            if (run.status == 0) EXPECT_EQ(parseSvg(readFile(out), &svg), "") << kind;
            if (run.status == 1) EXPECT_EQ(run.err.substr(last, 14), "dcplot Error: ") << run.err;
        }
    }
}

TEST(PlotErrors, EveryPlotGivesBackItsMemory) {
    std::string dir = ubqTables("plot_memory", "1"), d = dir + "/d.tab", cs = dir + "/cs.tab";
    std::string r = dir + "/r.txt", out = dir + "/o.svg";
    writeFile(r, "VARS INDEX P_NAME P_RES1 D_RMS\n1 a 1 2.0 1 a 2 3.0\n");
    writeFile(dir + "/empty", "");
    int64_t before = bytesInUse();
    stderrOf([&] {
        EXPECT_EQ(plotCouplings(d.c_str(), out.c_str()) + plotShifts(cs.c_str(), out.c_str()) +
                      plotSearch(r.c_str(), out.c_str()),
                  0);
        EXPECT_EQ(plotCouplings(cs.c_str(), out.c_str()) + plotShifts(d.c_str(), out.c_str()) +
                      plotSearch(d.c_str(), out.c_str()) +
                      plotCouplings((dir + "/empty").c_str(), out.c_str()),
                  4);
    });
    EXPECT_EQ(bytesInUse(), before);
}

}  // namespace
