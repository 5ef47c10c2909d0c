#include "util/growstr.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "support/checks.h"
#include "support/run_dc.h"
#include "util/alloc.h"

namespace {

// A 5000-character line read through a 1024-byte chunk comes back whole, the
// buffer returns to the fixed one when freed and every heap byte is given back.
TEST(GrowStr, FgetsAllocReadsLinesLongerThanItsChunk) {
    resetAlloc();
    std::string dir = scratchDir("growstr");
    std::string longLine(5000, 'q');
    writeFile(dir + "/long.txt", longLine + "\nlast");
    FILE* stream = std::fopen((dir + "/long.txt").c_str(), "r");
    char fixed[1024], chunk[1024];
    char* line;
    int capacity = sizeof fixed;
    strAllocInit(&line, fixed, sizeof fixed);
    auto next = [&] { return fgetsAlloc(&line, &capacity, stream, chunk, 1024, fixed, 1024); };
    ASSERT_NE(next(), nullptr);
    EXPECT_EQ(std::string(line), longLine + "\n");
    EXPECT_STREQ(next(), "last");
    EXPECT_EQ(next(), nullptr);
    std::fclose(stream);
    strAllocFree(&line, fixed, sizeof fixed, &capacity);
    EXPECT_EQ(line, fixed);
    EXPECT_EQ(bytesInUse(), 0);
    std::filesystem::remove_all(dir);
}

// A line's text ends at a NUL byte; the line still ends at its newline, so
// the next line is read as the next line, also when the NUL comes after the
// first chunk or the line ends without a newline.
TEST(GrowStr, FgetsAllocEndsTheTextAtANulByte) {
    resetAlloc();
    std::string dir = scratchDir("growstr_nul");
    std::string longHead(3000, 'h');
    using namespace std::string_literals;
    std::string text =
        "abc\0def\nnext\n"s + longHead + "\0"s + std::string(5000, 't') + "\n\0\nlast\0x"s;
    writeFile(dir + "/nul.txt", text);
    FILE* stream = std::fopen((dir + "/nul.txt").c_str(), "r");
    char fixed[1024], chunk[1024];
    char* line;
    int capacity = sizeof fixed;
    strAllocInit(&line, fixed, sizeof fixed);
    auto next = [&] { return fgetsAlloc(&line, &capacity, stream, chunk, 1024, fixed, 1024); };
    const char* expected[] = {"abc", "next\n", longHead.c_str(), "", "last"};
    for (const char* want : expected) {
        ASSERT_NE(next(), nullptr) << want;
        EXPECT_EQ(std::string(line), want);
    }
    EXPECT_EQ(next(), nullptr);
    std::fclose(stream);
    strAllocFree(&line, fixed, sizeof fixed, &capacity);
    EXPECT_EQ(bytesInUse(), 0);
    std::filesystem::remove_all(dir);
}

}  // namespace
