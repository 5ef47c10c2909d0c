#include "util/args.h"

#include <gtest/gtest.h>

#include <string>

#include "support/arg_vector.h"
#include "util/alloc.h"

namespace {

class ArgsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        nullArgs();
        resetAlloc();
    }
    void TearDown() override { nullArgs(); }
    static int64_t inUse() {
        int64_t used = 0;
        getMemUsed(&used, nullptr);
        return used;
    }
    // What checkArgs writes, and how many reports it counts.
    static std::string checked(ArgVector& a, int expectedReports) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(checkArgs(a.argc(), a.argv()), expectedReports);
        return testing::internal::GetCapturedStderr();
    }
};

std::string report(const std::string& which, const std::string& words) {
    return "Warning from DC:\n  " + which + " may be unknown or unused:\n  ' " + words + " '\n";
}

TEST_F(ArgsTest, FlagsAreDashesNotFollowedByDigitOrPoint) {
    for (const char* flag : {"-pdb", "-", "-e5"}) EXPECT_TRUE(isFlag(flag)) << flag;
    for (const char* value : {"-5", "-.5", "-12.3", "5", ""}) EXPECT_FALSE(isFlag(value)) << value;
    EXPECT_TRUE(isNumber("1e3"));
    EXPECT_FALSE(isNumber("abc"));
    ArgVector a({"-w", "1", "-2", "--", "-x"});
    EXPECT_EQ(nextFlag(a.argc(), a.argv(), 1), 4);
    EXPECT_EQ(nextFlag(a.argc(), a.argv(), 5), 6);
    EXPECT_EQ(nextFlagTerminator(a.argc(), a.argv(), 1), 4);
    EXPECT_EQ(getNthArg(a.argc(), a.argv(), 6), nullptr);
    EXPECT_EQ(flagLoc(-1, a.argv(), "-w"), 0);
    EXPECT_EQ(badFlag(), 1);
}

TEST_F(ArgsTest, ValueIsTheNextArgumentWhateverItLooksLike) {
    ArgVector a({"-r1", "-5", "-rN", "-x", "-r1", "7", "-n", "12abc", "-f", "2.5", "-big",
                 "12345678901", "-last"});
    int n = a.argc();
    char** v = a.argv();
    EXPECT_EQ(intArg(n, v, "-r1"), -5);  // the first occurrence is used
    EXPECT_EQ(intArg(n, v, "-rN"), 0);
    EXPECT_EQ(badFlag(), 0);
    EXPECT_EQ(intArg(n, v, "-n"), 12);
    EXPECT_FLOAT_EQ(fltArg(n, v, "-f"), 2.5f);
    EXPECT_STREQ(strArg(n, v, "-n"), "12abc");
    int64_t big = 0;
    EXPECT_EQ(nmrIntArgD(n, v, "-big", &big), 1);
    EXPECT_EQ(big, 12345678901LL);

    // Absent, or present with its value missing: the destination is untouched.
    int value = 99;
    EXPECT_EQ(intArgD(n, v, "-last", &value) + intArgD(n, v, "-absent", &value), 0);
    EXPECT_EQ(badFlag(), 1);
    EXPECT_EQ(value, 99);
    EXPECT_EQ(strArg(n, v, "-last"), nullptr);
    EXPECT_EQ(logArgD(n, v, "-last", &value), 1);
    EXPECT_EQ(value, 1);

    std::string huge(100000, 'h');
    ArgVector h({"-pdb", huge});
    char name[1024];
    EXPECT_EQ(strArgD(h.argc(), h.argv(), "-pdb", name), 1);
    EXPECT_EQ(std::string(name), huge.substr(0, 1023));
}

TEST_F(ArgsTest, ListsTakeEveryTokenUpToTheNextFlag) {
    ArgVector a({"-w", "1 2\t3", "4", "-skip", "-5", "-.5", "-s", "N H", "CA", "-one", "7 8", "9",
                 "-loc", "3 5-7", "10-9", "0 99", "-end"});
    int n = a.argc();
    char** v = a.argv();
    int count = 0;
    float* weights = rListArg(n, v, "-w", &count);
    ASSERT_EQ(count, 4);
    EXPECT_FLOAT_EQ(weights[3], 4.0f);
    int* skip = iListArg(n, v, "-skip", &count);
    ASSERT_EQ(count, 2);  // negative numbers are values, not flags
    EXPECT_EQ(skip[0], -5);
    EXPECT_EQ(inUse(), 6 * 4);
    unAlloc64("listArg", weights, 4 * 4);
    unAlloc64("listArg", skip, 2 * 4);
    EXPECT_EQ(iListArg(n, v, "-end", &count), nullptr);
    EXPECT_EQ(count, 0);

    char** tokens = sListArg(n, v, "-s", &count);
    ASSERT_EQ(count, 3);
    EXPECT_STREQ(tokens[1], "H");
    freeStrList(tokens, count);
    EXPECT_EQ(inUse(), 0);

    int values[2];
    EXPECT_EQ(intArgDN(n, v, "-one", values, 2), 2);
    EXPECT_EQ(intArgDN(n, v, "-absent", values, 2), -1);
    char text[6];
    EXPECT_EQ(charListArg(n, v, "-one", text, sizeof text), 2);
    EXPECT_STREQ(text, "7 8 9");
    EXPECT_EQ(charListArg(n, v, "-w", text, sizeof text), 1);
    int flags[10];
    EXPECT_EQ(parseLocList(n, v, "-loc", flags, 10, 1, 0), 6);
    const int expected[10] = {0, 0, 1, 0, 1, 1, 1, 0, 1, 1};
    for (int i = 0; i < 10; i++) EXPECT_EQ(flags[i], expected[i]) << "entry " << i + 1;
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
        EXPECT_STREQ(getProgName(), "program");
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
    testing::internal::CaptureStderr();
    initArgs(a.argc(), a.argv(), 3);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
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
