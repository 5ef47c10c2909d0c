#include "util/textfile.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "support/run_dc.h"
#include "util/alloc.h"
#include "util/growstr.h"

namespace {

int64_t inUse() {
    int64_t used = 0;
    getMemUsed(&used, nullptr);
    return used;
}

class TextFileTest : public ::testing::Test {
  protected:
    void SetUp() override {
        resetAlloc();
        dir = scratchDir("textfile");
    }
    void TearDown() override {
        EXPECT_EQ(inUse(), 0);
        std::system(("rm -rf '" + dir + "'").c_str());
    }
    std::string dir;
};

TEST_F(TextFileTest, FgetsAllocReadsLinesLongerThanItsChunk) {
    std::string path = dir + "/long.txt";
    std::string longLine(5000, 'q');
    writeFile(path, longLine + "\nlast");
    FILE* stream = std::fopen(path.c_str(), "r");
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

    testing::internal::CaptureStderr();
    EXPECT_EQ(fgetsAlloc(&line, &capacity, stdin, chunk, 2, fixed, 1024), nullptr);
    EXPECT_EQ(fgetsAlloc(&line, &capacity, nullptr, chunk, 8, fixed, 1024), nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "FGetSAlloc Error: Buffer too small.\nFGetSAlloc Error: Null pointer.\n");
}

TEST_F(TextFileTest, GrowableStringsGrowByTheStatedSteps) {
    char fixed[16];
    char* str;
    int capacity = sizeof fixed;
    strAllocInit(&str, fixed, sizeof fixed);
    strcatAlloc(&str, "0123456789ab", fixed, sizeof fixed, &capacity);  // 16 > 12 + 2
    EXPECT_EQ(str, fixed);
    strcatAlloc(&str, "cd", fixed, sizeof fixed, &capacity);  // 16 <= 14 + 2: one step
    EXPECT_EQ(capacity, 16 + 1024);
    std::string big(3000, 'z');
    strcatAlloc(&str, big.c_str(), fixed, sizeof fixed, &capacity);  // a step is not enough
    EXPECT_EQ(capacity, 3014 + 1026);
    strpcatAlloc(&str, ">", fixed, sizeof fixed, &capacity);
    EXPECT_EQ(std::string(str), ">0123456789abcd" + big);
    EXPECT_EQ(inUse(), capacity);
    strAllocFree(&str, fixed, sizeof fixed, &capacity);
}

TEST_F(TextFileTest, ReadsAllLinesWithoutTheirNewlines) {
    std::string path = dir + "/lines.txt";
    std::string longLine(3000, 'L');
    std::string text = "first\n\n" + longLine + "\nno newline";
    writeFile(path, text);
    int count = -1, status = 1;
    char** lines = rdText(path.c_str(), &count, &status);
    ASSERT_NE(lines, nullptr);
    EXPECT_EQ(status, 0);
    ASSERT_EQ(count, 4);
    EXPECT_STREQ(lines[1], "");
    EXPECT_EQ(std::string(lines[2]), longLine);
    EXPECT_STREQ(lines[3], "no newline");
    EXPECT_EQ(lines[4], nullptr);
    freeText(lines);

    long bytes = 0;
    char* block = rdTextC(path.c_str(), &count, &bytes, &status);
    EXPECT_EQ(bytes, static_cast<long>(text.size()) + 1);
    EXPECT_STREQ(block + 7, longLine.c_str());
    freeTextC(block, bytes);
    EXPECT_EQ(cntText(path.c_str(), &count), 0);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(rdText((dir + "/absent").c_str(), &count, &status), nullptr);
    EXPECT_EQ(status, -1);
}

}  // namespace
