#include "cs/random_coil.h"

#include <gtest/gtest.h>

#include <string>

#include "cs/homology.h"
#include "cs/surface.h"
#include "support/checks.h"
#include "support/run_dc.h"

namespace {

// Random-coil values and neighbour corrections chosen as exact binary
// fractions, so every sum below is exact in single precision.
const char* kRandomCoil =
    "VARS RESNAME ATOMNAME TYPE OFFSET SHIFT\n"
    "FORMAT %s %s %s %d %f\n"
    "NULLVALUE -9999\n"
    "A   CA  RC   0  50.0\n"
    "A   CA  ADJ  0   0.5\n"
    "L   CA  ADJ -2   0.25\n"
    "K   CA  ADJ -1  -1.0\n"
    "P   CA  ADJ  1  -2.0\n"
    "E   CA  ADJ  2   0.125\n"
    "K   CA  RC   0  56.0\n"
    "G   HA3 RC   0   3.75\n"
    "G   HA1 RC   0   4.5\n"
    "G   HA3 ADJ -1  0.25\n"
    "A   HN  RC   0 -9999\n";

class RandomCoil : public testing::Test {
protected:
    void SetUp() override {
        start = bytesInUse();
        dir = scratchDir("random_coil");
    }
    void TearDown() override {
        surfFree();
        EXPECT_EQ(bytesInUse(), start);
    }
    std::string write(const char* name, const std::string& text) {
        writeFile(dir + "/" + name, text);
        return dir + "/" + name;
    }
    int64_t start = 0;
    std::string dir;
};

float lookup(const char* p2, const char* p, const char* c, const char* n, const char* n2,
             const char* atom, int flag, int* found) {
    float value = -1.0f;
    *found = getRandCoilShift(p2, p, c, n, n2, atom, &value, flag);
    return value;
}

TEST_F(RandomCoil, CentreValuePlusEveryNeighbourCorrectionThatExists) {
    ASSERT_EQ(surfReadRC(write("rc.tab", kRandomCoil).c_str()), 0);
    EXPECT_EQ(rcLoaded(), 1);
    int found = 0;
    // 50 + 0.5 (own) + 0.25 (two before) - 1 (before) - 2 (after) + 0.125 (two after)
    EXPECT_EQ(lookup("L", "K", "A", "P", "E", "CA", 1, &found), 47.875f);
    EXPECT_EQ(found, 1);
    // Neighbours without a correction at their offset, absent or empty
    // neighbours add nothing; L corrects only from two before.
    EXPECT_EQ(lookup("K", "L", "A", nullptr, "", "CA", 1, &found), 50.5f);
    EXPECT_EQ(found, 1);
    EXPECT_EQ(lookup(nullptr, nullptr, "K", nullptr, nullptr, "CA", 1, &found), 56.0f);
    // Names are case-sensitive, as the table writes them.
    EXPECT_EQ(lookup(nullptr, nullptr, "a", nullptr, nullptr, "CA", 1, &found), 9999.0f);
    EXPECT_EQ(found, 0);
    // Corrections without a random-coil value of the centre give nothing.
    EXPECT_EQ(lookup("L", "K", "P", "P", "E", "CA", 1, &found), 9999.0f);
    EXPECT_EQ(found, 0);
    EXPECT_EQ(lookup("L", "K", nullptr, "P", "E", "CA", 1, &found), 9999.0f);
    EXPECT_EQ(found, 0);
    // A null cell stays a value above 900: present, but marked absent.
    EXPECT_GT(lookup(nullptr, nullptr, "A", nullptr, nullptr, "HN", 1, &found), 900.0f);
    EXPECT_EQ(found, 1);
}

TEST_F(RandomCoil, GlycineHA1IsLookedUpAsHA3OnlyWithFlagZero) {
    ASSERT_EQ(surfReadRC(write("rc.tab", kRandomCoil).c_str()), 0);
    int found = 0;
    EXPECT_EQ(lookup(nullptr, nullptr, "G", nullptr, nullptr, "HA1", 0, &found), 3.75f);
    EXPECT_EQ(found, 1);
    // The neighbour correction is HA3's too, found after the renaming.
    EXPECT_EQ(lookup(nullptr, "G", "G", nullptr, nullptr, "HA1", 0, &found), 4.0f);
    EXPECT_EQ(lookup(nullptr, nullptr, "gly", nullptr, nullptr, "HA1", 0, &found), 9999.0f);
    EXPECT_EQ(found, 0);  // the rule holds for "gly", whose table has no HA3
    EXPECT_EQ(lookup(nullptr, "G", "G", nullptr, nullptr, "HA1", 1, &found), 4.5f);
}

TEST_F(RandomCoil, MissingColumnsAndFilesAreReported) {
    int found = 1;
    EXPECT_EQ(rcLoaded(), 0);
    EXPECT_EQ(lookup(nullptr, nullptr, "A", nullptr, nullptr, "CA", 1, &found), 9999.0f);
    EXPECT_EQ(found, 0);

    std::string noAtom = write("a.tab", "VARS RESNAME TYPE OFFSET SHIFT\nFORMAT %s %s %d %f\n"
                                        "A RC 0 1.0\n");
    EXPECT_EQ(stderrOf([&] { EXPECT_EQ(surfReadRC(noAtom.c_str()), 1); }),
              "TESSERA RC Error: missing RESNAME/ATOMNAME.\n");
    std::string noOffset = write("b.tab", "VARS RESNAME ATOMNAME TYPE SHIFT\nFORMAT %s %s %s %f\n"
                                          "A CA RC 1.0\n");
    EXPECT_EQ(stderrOf([&] { EXPECT_EQ(surfReadRC(noOffset.c_str()), 1); }),
              "TESSERA RC Error: missing SHIFT/TYPE/OFFSET.\n");
    EXPECT_EQ(rcLoaded(), 0);
    std::string missing = dir + "/none.tab";
    EXPECT_EQ(stderrOf([&] { EXPECT_EQ(surfReadRC(missing.c_str()), 1); }),
              "RdTable File open error: " + missing + ".\n");

    // A failed read drops the table read before it.
    ASSERT_EQ(surfReadRC(write("rc.tab", kRandomCoil).c_str()), 0);
    stderrOf([&] { surfReadRC(noAtom.c_str()); });
    EXPECT_EQ(rcLoaded(), 0);
}

const char* kHomology =
    "VARS RESNAME ALA GLY xPRO NOTE\n"
    "FORMAT %s %f %f %f %s\n"
    "NULLVALUE -9999\n"
    "ALA  0.0  3.5 1.25 x\n"
    "GLY  3.5  0.0 -9999 y\n";

TEST_F(RandomCoil, HomologyValuesByRowAndColumnName) {
    float value = 0.0f;
    EXPECT_EQ(getHomoVal("ALA", "GLY", &value), 0);  // no table yet
    EXPECT_EQ(value, 777777.0f);
    ASSERT_EQ(surfReadHomo(write("homo.tab", kHomology).c_str()), 0);
    EXPECT_EQ(homoLoaded(), 1);
    EXPECT_EQ(getHomoVal("ALA", "GLY", &value), 1);
    EXPECT_EQ(value, 3.5f);
    EXPECT_EQ(getHomoVal("ALA", "xPRO", &value), 1);
    EXPECT_EQ(value, 1.25f);
    EXPECT_EQ(getHomoVal("GLY", "xPRO", &value), 1);  // a null cell: left out of the score
    EXPECT_GT(value, 666666.0f);
    for (auto [a, b] : {std::pair{"ALA", "TRP"}, {"TRP", "ALA"}, {"ala", "GLY"}, {"ALA", "NOTE"}}) {
        EXPECT_EQ(getHomoVal(a, b, &value), 0) << a << "," << b;
        EXPECT_EQ(value, 777777.0f);
    }
}

TEST_F(RandomCoil, HomologyTableWithoutRowsOrResidueNames) {
    std::string empty = write("empty.tab", "VARS RESNAME ALA\nFORMAT %s %f\n");
    EXPECT_EQ(stderrOf([&] { EXPECT_EQ(surfReadHomo(empty.c_str()), 0); }), "");
    EXPECT_EQ(homoLoaded(), 1);
    float value = 0.0f;
    EXPECT_EQ(getHomoVal("ALA", "ALA", &value), 0);

    std::string noName = write("bad.tab", "VARS NAME ALA\nFORMAT %s %f\nALA 1.0\n");
    EXPECT_EQ(stderrOf([&] { EXPECT_EQ(surfReadHomo(noName.c_str()), 1); }),
              "HOMO Error: missing RESNAME.\n");
    EXPECT_EQ(homoLoaded(), 0);
}

}  // namespace
