#include "util/args.h"

#include <gtest/gtest.h>

#include <string>

#include "support/arg_vector.h"
#include "support/checks.h"
#include "util/alloc.h"

namespace {

class ArgsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        nullArgs();
        resetAlloc();
    }
    void TearDown() override { nullArgs(); }
    // What checkArgs writes, and how many reports it counts.
    static std::string checked(ArgVector& a, int expectedReports) {
        return stderrOf([&] { EXPECT_EQ(checkArgs(a.argc(), a.argv()), expectedReports); });
    }
};

std::string report(const std::string& which, const std::string& words) {
    return "Warning from DC:\n  " + which + " may be unknown or unused:\n  ' " + words + " '\n";
}

TEST_F(ArgsTest, ValueIsTheNextArgumentWhateverItLooksLike) {
    for (const char* flag : {"-pdb", "-", "-e5"}) EXPECT_TRUE(isFlag(flag)) << flag;
    for (const char* value : {"-5", "-.5", "-12.3", "5", ""}) EXPECT_FALSE(isFlag(value)) << value;
    ArgVector a({"-r1", "-5", "-rN", "-x", "-r1", "7", "-f", "2.5", "-last"});
    int n = a.argc();
    char** v = a.argv();
    EXPECT_EQ(intArg(n, v, "-r1"), -5);  // the first occurrence is used
    EXPECT_EQ(intArg(n, v, "-rN"), 0);
    EXPECT_EQ(badFlag(), 0);
    EXPECT_FLOAT_EQ(fltArg(n, v, "-f"), 2.5f);
    // Absent, or present with its value missing: the destination is untouched.
    int value = 99;
    EXPECT_EQ(intArgD(n, v, "-last", &value) + intArgD(n, v, "-absent", &value), 0);
    EXPECT_EQ(badFlag(), 1);
    EXPECT_EQ(value, 99);

    std::string huge(100000, 'h');
    ArgVector h({"-pdb", huge});
    char name[1024];
    EXPECT_EQ(strArgD(h.argc(), h.argv(), "-pdb", name), 1);
    EXPECT_EQ(std::string(name), huge.substr(0, 1023));
}

// The lists are the caller's to free; freeing them restores the balance.
TEST_F(ArgsTest, ListsTakeEveryTokenUpToTheNextFlag) {
    ArgVector a({"-w", "1 2\t3", "4", "-skip", "-5", "-.5", "-s", "N H", "CA", "-end"});
    int n = a.argc(), count = 0;
    char** v = a.argv();
    float* weights = rListArg(n, v, "-w", &count);
    ASSERT_EQ(count, 4);
    EXPECT_FLOAT_EQ(weights[3], 4.0f);
    unAlloc64("listArg", weights, 4 * 4);
    int* skip = iListArg(n, v, "-skip", &count);
    ASSERT_EQ(count, 2);  // negative numbers are values, not flags
    EXPECT_EQ(skip[0], -5);
    unAlloc64("listArg", skip, 2 * 4);
    EXPECT_EQ(iListArg(n, v, "-end", &count), nullptr);
    EXPECT_EQ(count, 0);
    char** tokens = sListArg(n, v, "-s", &count);
    ASSERT_EQ(count, 3);
    EXPECT_STREQ(tokens[1], "H");
    freeStrList(tokens, count);
    EXPECT_EQ(bytesInUse(), 0);
}

TEST_F(ArgsTest, CheckArgsReportsUnconsumedRunsOrFlags) {
    // The second -r1 is never looked at; blank arguments never count.
    for (int mode : {2, 1}) {
        ArgVector a({"-pdb", "x", "", "-foo", "3", " \t", "-r1", "1", "-r1", "2"});
        initArgs(a.argc(), a.argv(), mode);
        strArg(a.argc(), a.argv(), "-pdb");
        intArg(a.argc(), a.argv(), "-r1");
        EXPECT_EQ(checked(a, 2),
                  mode == 2
                      ? report("Arguments 4 to 5", "-foo 3") + report("Arguments 9 to 10", "-r1 2")
                      : report("Argument 4", "-foo") + report("Argument 9", "-r1"));
        // Everything is reset afterwards.
        EXPECT_EQ(checked(a, 0), "");
    }
}

TEST_F(ArgsTest, DebugModeListsEveryArgumentThenChecksAsAll) {
    ArgVector a({"-pdb", "x", "-foo"});
    unsigned sum = 0;
    for (char c : std::string("DC-pdbx-foo")) sum += static_cast<unsigned char>(c);
    const std::string s = std::to_string(sum);
    initArgs(a.argc(), a.argv(), 3);
    strArg(a.argc(), a.argv(), "-pdb");
    EXPECT_EQ(checked(a, 1), "Debug Info from DC. Original Checksum: " + s +
                                 " Final Checksum: " + s + ".\n" +
                                 "  0. 1   2 Characters: 'DC'\n"
                                 "  1. 1   4 Characters: '-pdb'\n"
                                 "  2. 1   1 Characters: 'x'\n"
                                 "  3. 0   4 Characters: '-foo'\n" +
                                 report("Argument 3", "-foo"));

    // Arguments changed after initArgs make the check doubtful.
    ArgVector b({"-foo"});
    initArgs(b.argc(), b.argv(), 2);
    b.argv()[1][1] = 'g';
    EXPECT_EQ(checked(b, 1), "Warning from DC: argument checking may not be valid.\n" +
                                 report("Argument 1", "-goo"));
}

TEST_F(ArgsTest, ArgumentsBeyondIndex1022AreNeverMarkedOrReported) {
    std::vector<std::string> words = {"-pdb", "x"};
    for (int i = 3; i < 2000; i++) words.push_back(i == 1500 ? "-late" : "w");
    ArgVector a(words);
    EXPECT_EQ(stderrOf([&] { initArgs(a.argc(), a.argv(), 3); }),
              "Warning from DC: not all arguments will be checked.\n");
    strArg(a.argc(), a.argv(), "-pdb");
    EXPECT_EQ(intArg(a.argc(), a.argv(), "-late"), 0);
    EXPECT_EQ(badFlag(), 0);
    std::string err = checked(a, 1);
    std::string run;
    for (int i = 3; i <= 1022; i++) run += i == 3 ? "w" : " w";
    EXPECT_NE(err.find("1022. 0   1 Characters: 'w'\n"), err.npos);
    EXPECT_EQ(err.find("1023."), err.npos);
    EXPECT_TRUE(err.ends_with(report("Arguments 3 to 1022", run))) << err.substr(0, 200);
}

}  // namespace
