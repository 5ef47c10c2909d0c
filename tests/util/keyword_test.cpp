#include "util/keyword.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "util/args.h"

namespace {

const KeyValue kModes[] = {{"SVD", 1}, {"Saupe", 2}, {"Fit", 3}, {"grid", 4}, {"NLS", 3}, {"", 0}};

TEST(Keyword, NamesNumbersAndBadValues) {
    float value = -1;
    testing::internal::CaptureStderr();
    EXPECT_EQ(getValByName("-mode", "saupe", kModes, &value), 0);
    EXPECT_FLOAT_EQ(value, 2.0f);
    EXPECT_EQ(getValByName("-mode", "-2.5", kModes, &value), 1);
    EXPECT_FLOAT_EQ(value, -2.5f);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");

    testing::internal::CaptureStderr();
    EXPECT_EQ(getValByName("-mode", "bogus", kModes, &value), -1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Keyword Error: bad value for '-mode'; Valid Options:\n\n"
              "Code Name      Numerical Value\n\n SVD             1\n Saupe           2\n"
              " Fit             3\n grid            4\n NLS             3\n");
    EXPECT_FLOAT_EQ(value, -2.5f);

    for (const char* missing : {static_cast<const char*>(nullptr), "", "-", "+x"}) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(getValByName("-mode", missing, kModes, &value), -1);
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  "Keyword Error: bad or missing value for '-mode'\n");
    }
}

TEST(Keyword, NamesByValue) {
    char name[1024] = "old";
    EXPECT_EQ(getNameByVal(name, kModes, 3), 2);
    EXPECT_STREQ(name, "NLS");
    EXPECT_EQ(getNameByVal(name, kModes, 9), 0);
    EXPECT_STREQ(name, "");
    EXPECT_STREQ(getNameStrByVal(kModes, 3), "Fit");
    EXPECT_STREQ(getNameStrByVal(kModes, 9), "");
}

TEST(Keyword, OptionsReadThroughTheTable) {
    const char* args[] = {"DC", "-mode", "GRID", "-n", "2.9", "-s", "svd", "-last"};
    char** argv = const_cast<char**>(args);
    int argc = 8;
    initArgs(argc, argv, 0);
    float f = -1;
    int i = -1;
    char text[1024] = "";
    EXPECT_EQ(fltStrArgD(argc, argv, "-mode", kModes, &f), 0);
    EXPECT_FLOAT_EQ(f, 4.0f);
    EXPECT_EQ(intStrArgD(argc, argv, "-n", kModes, &i), 1);
    EXPECT_EQ(i, 2);
    EXPECT_EQ(strStrArgD(argc, argv, "-s", kModes, text), 0);
    EXPECT_STREQ(text, "SVD");
    EXPECT_EQ(fltStrArgD(argc, argv, "-absent", kModes, &f), 2);
    EXPECT_FLOAT_EQ(f, 4.0f);

    testing::internal::CaptureStderr();
    EXPECT_EQ(intStrArgD(argc, argv, "-last", kModes, &i), -1);
    EXPECT_EQ(strStrArgD(argc, argv, "-mode", kModes + 4, text), -1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Keyword Error: bad or missing value for '-last'\n"
              "Keyword Error: bad value for '-mode'; Valid Options:\n\n"
              "Code Name      Numerical Value\n\n"
              " NLS             3\n");
    EXPECT_EQ(i, 2);
    EXPECT_STREQ(text, "SVD");
    nullArgs();
}

}  // namespace
