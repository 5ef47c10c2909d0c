#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "pdb/atom_list.h"
#include "pdb/names.h"
#include "pdb/records.h"
#include "pdb/residue_types.h"
#include "pdb_fixture.h"

namespace {

// Chain A: GLY 1 (atoms 0-2), ALA 2 with HB1-3 and HN (3-9), SER 3 with two
// alternative CBs (10-12), ligand 4 with H0-H9 (13-22); chain B: TRP 1 (23-24).
class LookupTest : public PDBTest {
  protected:
    void SetUp() override {
        PDBTest::SetUp();
        std::string text =
            residueText(1, "GLY", 'A', 1, {"N", "CA", "H"}) +
            residueText(4, "ALA", 'A', 2, {"N", "CA", "CB", "HB1", "HB2", "HB3", "HN"}) +
            residueText(11, "SER", 'A', 3, {"N"}) +
            pdbText({{12, " CB ", "SER", 'A', 3, 0, 0, 0, "ATOM  ", 'A'},
                     {13, " CB ", "SER", 'A', 3, 0, 0, 0, "ATOM  ", 'B'}}) +
            residueText(20, "LIG", 'A', 4,
                        {"H0", "H1", "H2", "H3", "H4", "H5", "H6", "H7", "H8", "H9"}) +
            residueText(30, "TRP", 'B', 1, {"N", "CA"});
        ASSERT_EQ(read(text), 0);
    }
    PDBResidue* res(int index) { return pdb.residues + index; }
    PDBAtom* atom(int index) { return pdb.atoms + index; }
};

TEST_F(LookupTest, ResiduesChainsAndNeighbours) {
    ASSERT_EQ(pdb.resCount, 5);
    EXPECT_EQ(findRes(&pdb, 1, "A", ""), res(0));
    EXPECT_EQ(findRes(&pdb, 1, "B", ""), res(4));
    EXPECT_EQ(findRes(&pdb, 1, "*", "*"), res(0));  // the first in residue order
    EXPECT_EQ(findRes(&pdb, 3, "B", ""), nullptr);
    EXPECT_EQ(findRes(&pdb, 5, "*", "*"), nullptr);
    EXPECT_STREQ(findResName(&pdb, 2, "A", ""), "ALA");
    EXPECT_STREQ(findResName(&pdb, 0, "A", ""), "");
    EXPECT_EQ(res(1)->prev, res(0));
    EXPECT_EQ(res(1)->next, res(2));
    EXPECT_EQ(res(3)->next, nullptr);
    EXPECT_EQ(res(4)->prev, nullptr);
    EXPECT_EQ(atom(24)->residue, res(4));
    EXPECT_EQ(findChain(&pdb, "B", ""), res(4)->chainRec);
    EXPECT_EQ(res(4)->chainRec->atomCount, 2);
    EXPECT_EQ(findChain(&pdb, "C", ""), nullptr);
}

// Counting residues over a range adds to the count and ends also when the
// range reaches the end of the int range (it never did).
TEST_F(LookupTest, ResidueCountsOverAnyRange) {
    int span = 0, count = 10;
    EXPECT_EQ(getResCount(&pdb, 0, 3, "A", "", &span, &count), 13);
    EXPECT_EQ(span, 4);
    count = 0;
    EXPECT_EQ(getResCount(&pdb, 2, INT_MAX, "*", "*", &span, &count), 3);
    EXPECT_EQ(span, INT_MAX - 1);
    EXPECT_EQ(getResCount(&pdb, INT_MIN, INT_MAX, "B", "", &span, nullptr), 1);
    EXPECT_EQ(span, INT_MAX);
    EXPECT_EQ(getResCount(&pdb, INT_MAX, INT_MIN, "A", "", &span, nullptr), 0);
    EXPECT_EQ(span, INT_MIN);
}

TEST_F(LookupTest, AtomsByNameAndAlternatives) {
    EXPECT_EQ(findAtom(&pdb, 2, "CB", "A", ""), atom(5));
    EXPECT_EQ(findAtom(&pdb, 2, "cb", "A", ""), nullptr);
    EXPECT_EQ(findAtom(&pdb, 1, "CA", "B", ""), atom(24));
    EXPECT_EQ(findAtom(&pdb, 1, "CA", "*", "*"), atom(1));
    // Alternative locations are reached only through the any-chain path.
    EXPECT_EQ(findAtom(&pdb, 3, "CB", "A", ""), nullptr);
    EXPECT_EQ(findAtom(&pdb, 3, "CB", "*", "*"), atom(11));
    EXPECT_EQ(findAtomN(&pdb, 2, "HN|H", "A", ""), atom(9));
    EXPECT_EQ(findAtomN(&pdb, 1, "HN|H", "A", ""), atom(2));
    EXPECT_EQ(findAtomN(&pdb, 1, "QQ | ZZ", "A", ""), nullptr);
}

TEST_F(LookupTest, AtomListsFromExpressionsAndPrefixes) {
    PDBAtom* out[9] = {};
    ASSERT_EQ(findAtomList(&pdb, 2, "HB#", "A", "", out), 3);
    EXPECT_EQ(out[0], atom(6));
    EXPECT_EQ(out[2], atom(8));
    EXPECT_EQ(findAtomList(&pdb, 2, "H*", "*", "*", out), 4);
    EXPECT_EQ(findAtomList(&pdb, 2, "CB", "A", "", out), 1);
    EXPECT_EQ(findAtomList(&pdb, 2, "HB", "A", "", out), 0);
    ASSERT_EQ(findAtomList(&pdb, 4, "H#", "A", "", out), 9);  // ten match, nine are kept
    EXPECT_EQ(out[8], atom(21));

    ASSERT_EQ(findBestAtoms(&pdb, 2, "unused", "HB", "A", "", out), 3);
    EXPECT_EQ(out[1], atom(7));
    EXPECT_EQ(findBestAtoms(&pdb, 2, "", "hb", "*", "*", out), 3);
    EXPECT_EQ(findBestAtoms(&pdb, 2, "", "QB", "A", "", out), 0);
    EXPECT_EQ(findBestAtoms(&pdb, 2, "", "H", "A", "", out), 0);
    EXPECT_EQ(findBestAtoms(&pdb, 1, "", "H", "A", "", out), 1);

    // Pairs (CA 1, CA 2) and (CB 2, CA 2); the two with a missing atom add 0.
    atom(4)->x = 3.0f;
    atom(5)->y = 4.0f;
    PDBAtom* first[2] = {atom(1), atom(5)};
    PDBAtom* second[2] = {atom(4), nullptr};
    float r = 0;
    EXPECT_EQ(findAtomListRad(first, 2, second, 2, &r), 4);
    EXPECT_FLOAT_EQ(r, 2.0f);  // (3 + 5) / 4
}

TEST(ResidueNames, ConversionsCoverAminoAcidsOnly) {
    EXPECT_STREQ(getResName3("w"), "TRP");
    EXPECT_STREQ(getResName3("Gly"), "GLY");
    EXPECT_STREQ(getResName3("dADE"), "None");
    EXPECT_STREQ(getResName1("XYZ"), "?");
    EXPECT_STREQ(getResName1("trp"), "W");
    EXPECT_STREQ(getResName1("ADE"), "?");
    EXPECT_EQ(isAminoAcid("val"), 1);
    EXPECT_EQ(isAminoAcid("URI"), 0);
    EXPECT_EQ(findResTypeByName("rURI")->code, 'T');
    EXPECT_EQ(findResTypeByName("dade")->type, 101);
    EXPECT_STREQ(findResTypeByName("HOH")->name, "None");
}

TEST(Names, PlaceholdersBecomeEmpty) {
    const char* cases[][2] = {{"{}", ""},         {"NONE", ""},   {"(null)", ""},
                              {"None ", "None "}, {"{ }", "{ }"}, {"CA", "CA"}};
    for (const auto& c : cases) {
        char name[16];
        copyName(name, c[0]);
        EXPECT_EQ(fixAtomName(name), c[1][0] != c[0][0]) << c[0];
        EXPECT_STREQ(name, c[1]);
        copyName(name, c[0]);
        EXPECT_EQ(fixSegName(name), c[1][0] != c[0][0]) << c[0];
    }
}

}  // namespace
