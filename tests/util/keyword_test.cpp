#include "util/keyword.h"

#include <gtest/gtest.h>

#include <string>

#include "support/checks.h"

namespace {

const KeyValue kModes[] = {{"SVD", 1}, {"Fit", 3}, {"svd2", 1}, {"", 0}};

// A value that does not begin with a letter is a number (result 1), read as
// far as it goes; a name is looked up in any case (result 0); anything else
// lists the valid names (result -1).
TEST(Keywords, ValuesAreNumbersOrNamesOfTheTable) {
    struct Case {
        const char* text;
        int result;
        float value;
    };
    const Case cases[] = {{"2.5", 1, 2.5f}, {"-3", 1, -3.0f}, {"_3", 1, 0.0f},
                          {".5x", 1, 0.5f}, {"fit", 0, 3.0f}, {"SVD2", 0, 1.0f}};
    for (const Case& c : cases) {
        float value = -99.0f;
        std::string err = stderrOf(
            [&] { EXPECT_EQ(getValByName("-m", c.text, kModes, &value), c.result) << c.text; });
        EXPECT_EQ(err, "") << c.text;
        EXPECT_EQ(value, c.value) << c.text;
    }
    float value = -99.0f;
    EXPECT_EQ(stderrOf([&] { EXPECT_EQ(getValByName("-m", "grid", kModes, &value), -1); }),
              "Keyword Error: bad value for '-m'; Valid Options:\n\n"
              "Code Name      Numerical Value\n\n"
              " SVD             1\n Fit             3\n svd2            1\n");
    EXPECT_EQ(stderrOf([&] { EXPECT_EQ(getValByName("-m", "", kModes, &value), -1); }),
              "Keyword Error: bad or missing value for '-m'\n");
    EXPECT_EQ(value, -99.0f);
}

}  // namespace
