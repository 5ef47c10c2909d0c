#include "util/token.h"

#include <gtest/gtest.h>

#include <string>

#include "util/alloc.h"

namespace {

int64_t inUse() {
    int64_t used = 0;
    getMemUsed(&used, nullptr);
    return used;
}

TEST(Token, NumbersTokensFromOneAcrossEveryWhiteSpace) {
    const char* line = " \tRESID_I\v 12\r\n-3.5e1\f x ";
    EXPECT_EQ(cntToken(line), 4);
    EXPECT_STREQ(getToken(1, line), "RESID_I");
    EXPECT_EQ(getTokenI(2, line), 12);
    EXPECT_FLOAT_EQ(getTokenR(3, line), -35.0f);
    EXPECT_EQ(getTokenN(2, line), 12L);
    EXPECT_EQ(badToken(), 0);
    EXPECT_EQ(cntToken(nullptr) + cntToken(" \t\n"), 0);

    // A missing or unconvertible token is empty (or 0) and sets badToken.
    EXPECT_STREQ(getToken(4, "a b c"), "");
    EXPECT_EQ(badToken(), 1);
    EXPECT_STREQ(getToken(3, "a b c"), "c");
    EXPECT_EQ(badToken(), 0);
    EXPECT_EQ(getTokenI(2, "a b c"), 0);
    EXPECT_EQ(badToken(), 1);
}

TEST(Token, QuotedAndSeparatedTokens) {
    const char* line = "DI 'N H' \"C A\" 21585.2 'open";
    EXPECT_EQ(cntTokenS(line), 5);
    EXPECT_STREQ(getTokenS(2, line), "N H");
    EXPECT_STREQ(getTokenS(3, line), "C A");
    EXPECT_STREQ(getTokenS(5, line), "open");
    EXPECT_STREQ(getTokenS(6, line), "");
    EXPECT_EQ(badToken(), 1);
    EXPECT_EQ(cntToken(line), 7);  // plain tokens split the quoted names

    EXPECT_EQ(cntTokenC("20-30", "-"), 2);
    EXPECT_STREQ(getTokenC(2, "20-30", "-"), "30");
    EXPECT_EQ(cntTokenC("--5,,6-", "-,"), 2);
}

TEST(Token, JoinsFindsAndTestsTokens) {
    const char* line = "  REMARK  Da  Dr\tRh  ";
    EXPECT_STREQ(leftToken(2, line), "REMARK Da");
    EXPECT_STREQ(leftToken(9, line), "REMARK Da Dr Rh");
    EXPECT_STREQ(rightToken(3, line), "Dr Rh");
    EXPECT_STREQ(rightToken(5, line), "");
    EXPECT_STREQ(leftToken(2, leftToken(3, line)), "REMARK Da");  // a result joined again
    EXPECT_EQ(findToken("Dr", line), 3);
    EXPECT_EQ(findToken("D", line), 0);
    EXPECT_EQ(getTokenLoc(2, line), 10);
    EXPECT_EQ(getTokenMaxLength(line), 6);
    EXPECT_EQ(strTrimLoc("ab \t\n"), 2);
    EXPECT_TRUE(isInteger(" -12 "));
    EXPECT_FALSE(isInteger("12a"));
    EXPECT_TRUE(isFloat("1.5e-3"));
    EXPECT_FALSE(isFloat("1e"));
    char text[] = "ubiq-1a";
    EXPECT_STREQ(raiseStr(text), "UBIQ-1A");
}

// Lines past the 1024-byte static buffers move to the heap and come back
// whole; after freeToken nothing of the tokenizer stays allocated.
TEST(Token, LongLinesAreReadWholeAndReleased) {
    resetAlloc();
    std::string longToken(1500, 'x');
    std::string line = "a " + longToken + " b";
    EXPECT_EQ(getToken(2, line.c_str()), longToken);
    EXPECT_EQ(getTokenS(2, line.c_str()), longToken);
    EXPECT_EQ(getTokenC(2, line.c_str(), " "), longToken);
    EXPECT_EQ(rightToken(1, line.c_str()), line);

    // 100,000 characters: 20,000 tokens of four digits, each followed by a blank.
    std::string huge;
    for (int i = 0; i < 20000; i++) huge += std::to_string(1000 + i % 9000) + " ";
    ASSERT_EQ(huge.size(), 100000u);
    EXPECT_EQ(cntToken(huge.c_str()), 20000);
    EXPECT_EQ(cntTokenS(huge.c_str()), 20000);
    EXPECT_EQ(cntTokenC(huge.c_str(), " "), 20000);
    EXPECT_EQ(getTokenI(20000, huge.c_str()), 1000 + 19999 % 9000);
    EXPECT_EQ(findToken("1005", huge.c_str()), 6);
    EXPECT_EQ(std::string(leftToken(20000, huge.c_str())) + " ", huge);

    EXPECT_GT(inUse(), 0);
    freeToken();
    EXPECT_EQ(inUse(), 0);
    EXPECT_STREQ(getToken(1, "short line"), "short");
    EXPECT_EQ(inUse(), 0);
}

}  // namespace
