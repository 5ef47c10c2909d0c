#include "app/getparams.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "pdb/modes.h"
#include "support/arg_vector.h"
#include "support/checks.h"
#include "util/alloc.h"
#include "util/args.h"
#include "util/levels.h"

namespace {

class GetParamsTest : public ::testing::Test {
  protected:
    void SetUp() override { resetState(); }
    void TearDown() override {
        runSettingsFree(&s);
        EXPECT_EQ(bytesInUse(), 0);
        resetState();
    }
    static void resetState() {
        for (const char* name : {"PDBH_DIR", "PDBH_LIST", "SURF_DIR"}) unsetenv(name);
        resetAlloc();
        nullArgs();
        resetPDBModes();
        setDbgFlag(0);
        setVerbose(0);
    }

    // Reads the options into fresh settings; with checkMode nonzero the
    // argument check runs afterwards and its report is part of err.
    int read(std::vector<std::string> words, int checkMode = 0) {
        runSettingsFree(&s);
        runSettingsNull(&s);
        dTabNull(&table);
        ArgVector a(std::move(words));
        initArgs(a.argc(), a.argv(), checkMode);
        testing::internal::CaptureStderr();
        int status = getparams(a.argc(), a.argv(), &s, &table);
        if (checkMode) checkArgs(a.argc(), a.argv());
        err = testing::internal::GetCapturedStderr();
        nullArgs();
        return status;
    }

    RunSettings s{};
    DTab table;
    std::string err;
};

TEST_F(GetParamsTest, DefaultsWhenNothingIsGiven) {
    EXPECT_EQ(read({}), kParamsOk);
    EXPECT_EQ(err, "");
    EXPECT_STREQ(s.listName, "pdb.list");
    EXPECT_STREQ(s.rcSurfName, "rc.tab");
    EXPECT_STREQ(s.homoSurfName, "homo.tab");
    const int ints[] = {s.res1,     s.resN,        s.aRes1,   s.segID,  s.segStep,
                        s.inclMode, s.bbFlag,      s.fixedDI, s.keepDI, s.mirror,
                        s.constRMS, s.storedShift, s.retries};
    const int expected[] = {-999999, -999999, -999999, 1, 0, 4, 0, 1, 0, 0, 0, 0, 17};
    for (int i = 0; i < 13; i++) EXPECT_EQ(ints[i], expected[i]) << "setting " << i;
    EXPECT_EQ(s.csThresh, 2.0f);
    EXPECT_EQ(s.vcThresh, 0.95f);
}

TEST_F(GetParamsTest, RetryAndLevelsTakeAnOptionalValue) {
    const std::pair<std::vector<std::string>, int> cases[] = {{{"-retry"}, 17},
                                                              {{"-retry", "-pdb", "x"}, 17},
                                                              {{"-retry", "3"}, 3},
                                                              {{"-retry", "3", "-noretry"}, 0},
                                                              {{"-noretry", "-retry"}, 0}};
    for (const auto& [words, retries] : cases) {
        read(words);
        EXPECT_EQ(s.retries, retries) << words.size() << " words";
    }
    read({"-dbg", "-verb", "2"});
    EXPECT_EQ(dbgFlag(), 1);
    EXPECT_EQ(verbose(), 2);
}

TEST_F(GetParamsTest, ValueOptionsAndSwitches) {
    read({"-r1",       "-5",  "-s1",       "7",   "-dN",      "9",    "-rN",  "50",
          "-a1",       "3",   "-sStep",    "2",   "-dStep",   "9",    "-sID", "4",
          "-csThresh", "1.5", "-vcThresh", "0.5", "-inclMin", "-excl"});
    // -r1 is read after -s1, -sStep after -dStep, -excl after -inclMin; -5 is a value.
    const int ints[] = {s.res1, s.resN, s.aRes1, s.segStep, s.segID, s.inclMode};
    const int expected[] = {-5, 50, 3, 2, 4, 3};
    for (int i = 0; i < 6; i++) EXPECT_EQ(ints[i], expected[i]) << "setting " << i;
    EXPECT_EQ(s.csThresh, 1.5f);
    EXPECT_EQ(s.vcThresh, 0.5f);
    read({"-constRMS", "-mirror", "-nofixedDI", "-keepDI", "-ignore", "-bb", "-graph", "-incl"});
    EXPECT_EQ(s.constRMS + s.mirror + s.keepDI + s.bbFlag, 4);
    EXPECT_EQ(s.fixedDI, 0);
    EXPECT_EQ(s.inclMode, 2);
    EXPECT_EQ(getPDBChainMode() + getPDBSegMode(), 2);
    read({"-mirror", "-nomirror", "-keepDI", "-nokeepDI", "-constRMS", "-noconstRMS"});
    EXPECT_EQ(s.mirror + s.keepDI + s.constRMS, 0);
}

TEST_F(GetParamsTest, OptionBeatsEnvironmentBeatsDefault) {
    read({"-pdb", "a.pdb"});
    EXPECT_STREQ(s.surfDir, DC_SURFACE_DIR);  // the surfaces built with DC
    setenv("PDBH_LIST", "env.list", 1);
    setenv("PDBH_DIR", "/env/pdb", 1);
    setenv("SURF_DIR", "/env/surf", 1);
    read({"-list", "opt.list"});
    EXPECT_STREQ(s.listName, "opt.list");
    EXPECT_STREQ(s.pdbDir, "/env/pdb");
    EXPECT_STREQ(s.surfDir, "/env/surf");
    read({"-path", "/opt/pdb", "-sPath", "/opt/surf"});
    EXPECT_STREQ(s.listName, "env.list");
    EXPECT_STREQ(s.pdbDir, "/opt/pdb");
    EXPECT_STREQ(s.surfDir, "/opt/surf");
}

TEST_F(GetParamsTest, FileNamesTitlesAndTheBackboneReport) {
    read({"-pdb", "a.pdb", "-in", "first.tab", "-inD", "d.tab", "-inCS", "cs.tab", "-inCSTitle",
          "Shifts", "-out", "o1", "-outD", "o2"});
    const std::string names[] = {s.pdbName, s.pdbTitle, s.inName, s.inTitle,
                                 s.csName,  s.csTitle,  s.outName};
    const std::string expected[] = {"a.pdb", "a.pdb", "d.tab", "d.tab", "cs.tab", "Shifts", "o2"};
    for (int i = 0; i < 7; i++) EXPECT_EQ(names[i], expected[i]);
    EXPECT_EQ(s.bbFlag, 1);
    read({"-pdbTitle", "Ubiquitin", "-pdb", "u.pdb", "-nobb"});
    EXPECT_STREQ(s.pdbTitle, "Ubiquitin");
    EXPECT_EQ(s.bbFlag, 0);
    // A value missing at the end leaves the setting as it was.
    read({"-r1", "4", "-pdb"});
    EXPECT_EQ(s.bbFlag, 1);
    EXPECT_STREQ(s.pdbName, "");
}

TEST_F(GetParamsTest, SelectionAndListsRunToTheNextFlag) {
    read({"-select", "chain", "A", "1", "to", "10", "-w", "1 0.5", "2", "-skip", "4 7"});
    EXPECT_STREQ(s.selectText, "chain A 1 to 10");
    // The lists belong to the settings, which free them.
    ASSERT_EQ(s.weightCount, 3);
    EXPECT_EQ(s.weights[1], 0.5f);
    ASSERT_EQ(s.skipCount, 2);
    read({"-select", "1", "-", "5", "-pdb", "x"});
    EXPECT_STREQ(s.selectText, "1 - 5");
    EXPECT_EQ(read({"-select"}), kParamsOk);
    EXPECT_STREQ(s.selectText, "");
    EXPECT_EQ(err, "");
}

// 204 words of four characters fill 1019 characters; the 205th would pass
// 1023, so it and the rest stay unconsumed.
TEST_F(GetParamsTest, SelectionStopsBeforeOverflowingItsText) {
    std::vector<std::string> words = {"-select"};
    for (int i = 0; i < 300; i++) words.push_back(std::to_string(1000 + i));
    read(words, 2);
    EXPECT_EQ(std::strlen(s.selectText), 1019u);
    EXPECT_EQ(std::string(s.selectText).substr(1015), "1203");
    std::string unused = "  '";
    for (int i = 204; i < 300; i++) unused.append(" ").append(std::to_string(1000 + i));
    EXPECT_EQ(err,
              "DC Error: Too many items for -select option.\n"
              "Warning from DC:\n  Arguments 206 to 301 may be unknown or unused:\n" +
                  unused + " '\n");

    read({"-select", std::string(100000, 's'), "-pdb", "x"});
    EXPECT_EQ(err, "DC Error: Too many items for -select option.\n");
    EXPECT_STREQ(s.selectText, "");
    EXPECT_STREQ(s.pdbName, "x");
}

}  // namespace
