#include "pdb/select.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "pdb_fixture.h"
#include "support/arg_vector.h"

namespace {

// Residue 1 ALA (N, CA, HB1, 1HB), water 2 named "wat" (O), ligand 3 in
// chain B (H1-H9, H10, HA); atom i is moved to x = i.
class SelectTest : public PDBTest {
  protected:
    void SetUp() override {
        PDBTest::SetUp();
        ASSERT_EQ(
            read(residueText(1, "ALA", 'A', 1, {"N", "CA", "HB1", "1HB "}) +
                 residueText(5, "wat", 'A', 2, {"O"}) +
                 residueText(6, "LIG", 'B', 3,
                             {"H1", "H2", "H3", "H4", "H5", "H6", "H7", "H8", "H9", "H10", "HA"})),
            0);
        for (int i = 0; i < pdb.atomCount; i++) pdb.atoms[i].x = static_cast<float>(i);
        ASSERT_EQ(pdb.atomCount, 16);
    }
    // Selects with the given options; returns the number selected.
    int selectWith(std::vector<std::string> args) {
        ArgVector argv(std::move(args));
        PDBSelect selection;
        pdbSelectNull(&selection);
        getPDBSelectArgs(argv.argc(), argv.argv(), &selection);
        int count = pdbSelect(&pdb, &selection);
        pdbSelectFree(&selection);
        return count;
    }
};

TEST_F(SelectTest, WaterIsRejectedInAnyCaseWhenNotAllowed) {
    PDBSelect selection;
    pdbSelectNull(&selection);
    EXPECT_EQ(pdbSelectTest(4, pdb.atoms + 4, &selection), 1);
    selection.water = 0;
    EXPECT_EQ(pdbSelectTest(4, pdb.atoms + 4, &selection), 0);
    copyName(pdb.atoms[4].resName, "HoH");
    EXPECT_EQ(pdbSelectTest(4, pdb.atoms + 4, &selection), 0);
    EXPECT_EQ(pdbSelectTest(3, pdb.atoms + 3, &selection), 1);
    EXPECT_EQ(selectWith({"-nowater"}), 15);
}

TEST_F(SelectTest, AtomNameClassesAndPatterns) {
    EXPECT_EQ(selectWith({"-atomName", "heavy"}), 3);
    EXPECT_EQ(selectWith({"-atomName", "PROTON"}), 13);
    EXPECT_EQ(selectWith({"-atom", "proton", "ca"}), 14);
    EXPECT_EQ(selectWith({"-atomName", "H#", "-glob"}), 9);
    EXPECT_EQ(pdb.atoms[14].selected, 0);  // H10
    EXPECT_EQ(selectWith({"-atomName", "h#", "-aGlob"}), 9);
    EXPECT_EQ(selectWith({"-atomName", "H#"}), 0);
    EXPECT_EQ(selectWith({"-atomName", "H?", "-glob"}), 10);
    EXPECT_EQ(selectWith({"-chain", "b"}), 11);
    EXPECT_EQ(selectWith({"-resName", "^L", "-rRegex"}), 11);
    EXPECT_EQ(selectWith({"-resName", "ALA", "-atomName", "CA", "N"}), 2);
}

TEST_F(SelectTest, RangesInversionAndSpace) {
    EXPECT_EQ(selectWith({"-r1", "3", "-rN", "2"}), 12);
    EXPECT_EQ(selectWith({"-res", "1"}), 4);
    EXPECT_EQ(selectWith({"-e1", "1", "-eN", "2"}), 2);
    EXPECT_EQ(selectWith({"-res", "1", "-inv", "-id", "7"}), 12);
    EXPECT_EQ(pdb.atoms[0].selected, 0);
    EXPECT_EQ(pdb.atoms[4].selected, 7);
    EXPECT_EQ(selectWith({"-near", "1.5", "-x", "3"}), 3);  // x = 2, 3 and 4
    EXPECT_EQ(pdb.atoms[1].selected, 0);
    EXPECT_EQ(selectWith({"-protein"}), 4);
    EXPECT_EQ(selectWith({"-clear"}), 0);
    EXPECT_EQ(pdbSelectCount(&pdb), 0);
}

}  // namespace
