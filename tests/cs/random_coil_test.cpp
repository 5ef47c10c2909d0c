#include "cs/random_coil.h"

#include <gtest/gtest.h>

#include <string>

#include "cs/homology.h"
#include "cs/surface.h"
#include "support/checks.h"
#include "support/run_dc.h"

namespace {

// Exact binary fractions, so every sum below is exact in single precision.
const char* kRandomCoil =
    "VARS RESNAME ATOMNAME TYPE OFFSET SHIFT\nFORMAT %s %s %s %d %f\nNULLVALUE -9999\n"
    "A CA RC 0 50.0\nA CA ADJ 0 0.5\nL CA ADJ -2 0.25\nK CA ADJ -1 -1.0\nP CA ADJ 1 -2.0\n"
    "E CA ADJ 2 0.125\nK CA RC 0 56.0\nG HA3 RC 0 3.75\nG HA1 RC 0 4.5\nG HA3 ADJ -1 0.25\ngly HA3 "
    "RC 0 3.0\n";

class Tables : public testing::Test {
  protected:
    void SetUp() override { start = bytesInUse(); }
    void TearDown() override {
        surfFree();  // releases both tables
        EXPECT_EQ(bytesInUse(), start);
    }
    std::string write(const char* name, const std::string& text) {
        writeFile(dir + "/" + name, text);
        return dir + "/" + name;
    }
    int64_t start = 0;
    std::string dir = scratchDir("random_coil");
};

float rc(const char* p2, const char* p, const char* c, const char* n, const char* n2,
         const char* atom, int flag = 1, int found = 1) {
    float value = -1.0f;
    EXPECT_EQ(getRandCoilShift(p2, p, c, n, n2, atom, &value, flag), found) << c << " " << atom;
    return value;
}

TEST_F(Tables, RandomCoilShiftIsTheCentreValuePlusEveryNeighbourCorrection) {
    EXPECT_EQ(rc(nullptr, nullptr, "A", nullptr, nullptr, "CA", 1, 0), 9999.0f);  // no table
    ASSERT_EQ(surfReadRC(write("rc.tab", kRandomCoil).c_str()), 0);
    EXPECT_EQ(rcLoaded(), 1);
    // 50 + 0.5 (own) + 0.25 (two before) - 1 (before) - 2 (after) + 0.125 (two after)
    EXPECT_EQ(rc("L", "K", "A", "P", "E", "CA"), 47.875f);
    // A correction counts only at its own offset; absent and empty names add nothing.
    EXPECT_EQ(rc("K", "L", "A", nullptr, "", "CA"), 50.5f);
    // No random-coil value of the centre (or a name in another case): not found.
    EXPECT_EQ(rc("L", "K", "P", "P", "E", "CA", 1, 0), 9999.0f);
    EXPECT_EQ(rc(nullptr, nullptr, "a", nullptr, nullptr, "CA", 1, 0), 9999.0f);
    EXPECT_EQ(rc(nullptr, nullptr, nullptr, nullptr, nullptr, "CA", 1, 0), 9999.0f);
    // Glycine HA1 is HA3 with flag 0 ("G" or "GLY", any case), with HA3's
    // corrections; flag 1 keeps HA1.
    EXPECT_EQ(rc(nullptr, "G", "G", nullptr, nullptr, "HA1", 0), 4.0f);
    EXPECT_EQ(rc(nullptr, "G", "G", nullptr, nullptr, "HA1", 1), 4.5f);
    EXPECT_EQ(rc(nullptr, nullptr, "gly", nullptr, nullptr, "HA1", 0), 3.0f);
}

TEST_F(Tables, RandomCoilTableErrors) {
    std::string noAtom =
        write("a.tab", "VARS RESNAME TYPE OFFSET SHIFT\nFORMAT %s %s %d %f\nA RC 0 1\n");
    std::string noOffset =
        write("b.tab", "VARS RESNAME ATOMNAME TYPE SHIFT\nFORMAT %s %s %s %f\nA CA RC 1\n");
    std::string missing = dir + "/none.tab";
    EXPECT_EQ(stderrOf([&] { EXPECT_EQ(surfReadRC(noOffset.c_str()), 1); }),
              "TESSERA RC Error: missing SHIFT/TYPE/OFFSET.\n");
    EXPECT_EQ(stderrOf([&] { EXPECT_EQ(surfReadRC(missing.c_str()), 1); }),
              "RdTable File open error: " + missing + ".\n");
    ASSERT_EQ(surfReadRC(write("rc.tab", kRandomCoil).c_str()), 0);
    // A failed read drops the table read before it.
    EXPECT_EQ(stderrOf([&] { EXPECT_EQ(surfReadRC(noAtom.c_str()), 1); }),
              "TESSERA RC Error: missing RESNAME/ATOMNAME.\n");
    EXPECT_EQ(rcLoaded(), 0);
}

TEST_F(Tables, HomologyValuesByRowAndColumnName) {
    float v = 0.0f;
    EXPECT_EQ(getHomoVal("ALA", "GLY", &v), 0);  // no table
    EXPECT_EQ(v, 777777.0f);
    ASSERT_EQ(surfReadHomo(write("h.tab",
                                 "VARS RESNAME ALA GLY NOTE\nFORMAT %s %f %f %s\n"
                                 "NULLVALUE -9999\nALA 0.0 3.5 x\nGLY 1.25 -9999 y\n")
                               .c_str()),
              0);
    EXPECT_EQ(getHomoVal("ALA", "GLY", &v), 1);
    EXPECT_EQ(v, 3.5f);
    EXPECT_EQ(getHomoVal("GLY", "ALA", &v), 1);
    EXPECT_EQ(v, 1.25f);
    EXPECT_EQ(getHomoVal("GLY", "GLY", &v), 1);  // a null cell: kept out of the score
    EXPECT_GT(v, 666666.0f);
    for (auto [a, b] : {std::pair{"ALA", "TRP"}, {"ala", "GLY"}, {"ALA", "NOTE"}}) {
        EXPECT_EQ(getHomoVal(a, b, &v), 0) << a << "," << b;
        EXPECT_EQ(v, 777777.0f);
    }
    // A table without rows loads empty; one without RESNAME fails.
    EXPECT_EQ(
        stderrOf([&] { EXPECT_EQ(surfReadHomo(write("e.tab", "VARS RESNAME ALA\n").c_str()), 0); }),
        "");
    EXPECT_EQ(homoLoaded(), 1);
    EXPECT_EQ(getHomoVal("ALA", "GLY", &v), 0);
    std::string bad = write("bad.tab", "VARS NAME ALA\nFORMAT %s %f\nALA 1.0\n");
    EXPECT_EQ(stderrOf([&] { EXPECT_EQ(surfReadHomo(bad.c_str()), 1); }),
              "HOMO Error: missing RESNAME.\n");
    EXPECT_EQ(homoLoaded(), 0);
}

}  // namespace
