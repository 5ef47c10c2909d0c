#include "util/growstr.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "support/checks.h"
#include "support/run_dc.h"
#include "util/alloc.h"

namespace {

using namespace std::string_literals;

// Every line of text as fgetsAlloc reads it through a 1024-byte chunk; the
// buffer must return to the fixed one when freed and every heap byte must be
// given back.
std::vector<std::string> readLines(const std::string& text) {
    resetAlloc();
    std::string dir = scratchDir("growstr");
    writeFile(dir + "/in.txt", text);
    FILE* stream = std::fopen((dir + "/in.txt").c_str(), "r");
    char fixed[1024], chunk[1024];
    char* line;
    int capacity = sizeof fixed;
    strAllocInit(&line, fixed, sizeof fixed);
    std::vector<std::string> lines;
    while (fgetsAlloc(&line, &capacity, stream, chunk, 1024, fixed, 1024)) lines.emplace_back(line);
    std::fclose(stream);
    strAllocFree(&line, fixed, sizeof fixed, &capacity);
    EXPECT_EQ(line, fixed);
    EXPECT_EQ(bytesInUse(), 0);
    std::filesystem::remove_all(dir);
    return lines;
}

TEST(GrowStr, FgetsAllocReadsLinesLongerThanItsChunk) {
    std::string longLine(5000, 'q');
    EXPECT_EQ(readLines(longLine + "\nlast"), (std::vector<std::string>{longLine + "\n", "last"}));
}

// A line's text ends at a NUL byte; the line still ends at its newline, so
// the next line is read as the next line, also when the NUL comes after the
// first chunk or the line ends without a newline.
TEST(GrowStr, FgetsAllocEndsTheTextAtANulByte) {
    std::string longHead(3000, 'h');
    std::string text =
        "abc\0def\nnext\n"s + longHead + "\0"s + std::string(5000, 't') + "\n\0\nlast\0x"s;
    EXPECT_EQ(readLines(text), (std::vector<std::string>{"abc", "next\n", longHead, "", "last"}));
}

}  // namespace
