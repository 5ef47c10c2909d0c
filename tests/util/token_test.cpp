#include "util/token.h"

#include <gtest/gtest.h>

#include <string>

#include "support/checks.h"
#include "util/alloc.h"

namespace {

TEST(Token, NumbersTokensFromOneAcrossEveryWhiteSpace) {
    const char* line = " \tRESID_I\v 12\r\n-3.5e1\f x ";
    EXPECT_EQ(cntToken(line), 4);
    EXPECT_STREQ(getToken(1, line), "RESID_I");
    EXPECT_EQ(getTokenI(2, line), 12);
    EXPECT_FLOAT_EQ(getTokenR(3, line), -35.0f);
    EXPECT_EQ(badToken(), 0);
    EXPECT_EQ(cntToken(nullptr) + cntToken(" \t\n"), 0);

    // A missing or unconvertible token is empty (or 0) and sets badToken.
    EXPECT_STREQ(getToken(4, "a b c"), "");
    EXPECT_EQ(badToken(), 1);
    EXPECT_STREQ(getToken(3, "a b c"), "c");
    EXPECT_EQ(badToken(), 0);
    EXPECT_EQ(getTokenI(2, "a b c"), 0);
    EXPECT_EQ(badToken(), 1);
    EXPECT_EQ(strTrimLoc("ab \t\n"), 2);
    EXPECT_TRUE(isInteger(" -12 "));
    EXPECT_FALSE(isInteger("12a"));
}

TEST(Token, QuotedTokens) {
    const char* line = "DI 'N H' \"C A\" 21585.2 'open";
    EXPECT_EQ(cntTokenS(line), 5);
    EXPECT_STREQ(getTokenS(2, line), "N H");
    EXPECT_STREQ(getTokenS(3, line), "C A");
    EXPECT_STREQ(getTokenS(5, line), "open");
    EXPECT_STREQ(getTokenS(6, line), "");
    EXPECT_EQ(badToken(), 1);
    EXPECT_EQ(cntToken(line), 7);  // plain tokens split the quoted names
}

// Lines past the 1024-byte static buffers move to the heap and come back
// whole; after freeToken nothing of the tokenizer stays allocated.
TEST(Token, LongLinesAreReadWholeAndReleased) {
    resetAlloc();
    std::string longToken(1500, 'x');
    std::string line = "a " + longToken + " b";
    EXPECT_EQ(getToken(2, line.c_str()), longToken);
    EXPECT_EQ(getTokenS(2, line.c_str()), longToken);

    // 100,000 characters: 20,000 tokens of four digits, each followed by a blank.
    std::string huge;
    for (int i = 0; i < 20000; i++) huge += std::to_string(1000 + i % 9000) + " ";
    EXPECT_EQ(cntToken(huge.c_str()), 20000);
    EXPECT_EQ(cntTokenS(huge.c_str()), 20000);
    EXPECT_EQ(getTokenI(20000, huge.c_str()), 1000 + 19999 % 9000);
    EXPECT_EQ(std::string(leftToken(20000, huge.c_str())) + " ", huge);

    freeToken();
    EXPECT_EQ(bytesInUse(), 0);
}

}  // namespace
