#include <gtest/gtest.h>

#include <bit>
#include <climits>
#include <cstring>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "pdb/columns.h"
#include "pdb/keys.h"
#include "pdb/records.h"
#include "pdb/select.h"
#include "pdb_fixture.h"
#include "util/number_text.h"

namespace {

using ReaderTest = PDBTest;

const std::string kModel = pdbText({{1, " N  ", "GLY", 'A', 1, 1, 2, 3},
                                    {2, " CA ", "GLY", 'A', 1, 4, 5, 6},
                                    {3, " N  ", "ALA", 'A', 2, 7, 8, 9}});

TEST_F(ReaderTest, LaterModelsRepeatTheFirstModelsKeys) {
    setPDBWarn(1);
    testing::internal::CaptureStderr();
    ASSERT_EQ(read("MODEL 1\n" + kModel + "ENDMDL\nMODEL 2\n" + kModel + "ENDMDL\nEND\n"), 0);
    std::string expected;
    for (const char* id : {"1 AtomName: N", "1 AtomName: CA", "2 AtomName: N"}) {
        expected += "PDB Warning: Redundant Atom Specification.\n ResID: ";
        expected += std::string(id) + " Chain: A Seg:  LocID:  ICode: \n";
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), expected);
    ASSERT_EQ(pdb.atomCount, 6);
    EXPECT_EQ(pdb.modelCount, 2);
    EXPECT_EQ(pdb.resCount, 2);
    EXPECT_EQ(describe(pdb.atoms[4]), "2|CA||GLY|A|1||4.000 5.000 6.000|1.00 0.00||||m2 h0");
    EXPECT_EQ(findAtom(&pdb, 1, "CA", "A", ""), pdb.atoms + 1);
    EXPECT_EQ(findAtom(&pdb, 1, "CA", "*", "*"), pdb.atoms + 1);
    EXPECT_EQ(pdb.residues[0].atomCount, 4);  // both models' atoms
}

TEST_F(ReaderTest, HetatmNeedsTheSwitchAndMarksEveryLaterAtom) {
    std::string text = pdbText({{1, " N  ", "GLY", 'A', 1},
                                {2, " ZN ", "ZN", 'A', 2, 0, 0, 0, "HETATM"},
                                {3, " N  ", "ALA", 'A', 3},
                                {12345, " O  ", "HOH", 'A', 4, 0, 0, 0, "HETATM"},
                                {5, " O  ", "HOH", 'A', 5, 0, 0, 0, "hetatm"}});
    ASSERT_EQ(read(text), 0);
    ASSERT_EQ(pdb.atomCount, 2);
    EXPECT_EQ(pdb.atoms[1].resID, 3);
    EXPECT_EQ(pdb.atoms[1].isHetAtm, 0);
    pdbFree(&pdb);

    PDBSelect selection;
    pdbSelectNull(&selection);
    selection.hetAtmRec = 1;
    ASSERT_EQ(read(text, &selection), 0);
    ASSERT_EQ(pdb.atomCount, 4);  // a serial touching the keyword hides the record
    EXPECT_EQ(pdb.atoms[0].isHetAtm, 0);
    for (int i = 1; i < 4; i++) EXPECT_EQ(pdb.atoms[i].isHetAtm, 1) << i;
    EXPECT_EQ(pdb.atoms[3].resID, 5);
}

TEST_F(ReaderTest, IgnoreModeMergesChainsIntoOneResidue) {
    setPDBChainMode(1);
    setPDBSegMode(1);
    ASSERT_EQ(
        read(residueText(1, "ALA", 'A', 5, {"N", "CA"}) + residueText(3, "GLY", 'A', 6, {"N"}) +
             residueText(4, "SER", 'B', 5, {"N", "CA"}) + residueText(6, "THR", 'B', 2, {"N"})),
        0);
    ASSERT_EQ(pdb.resCount, 3);
    EXPECT_EQ(pdb.chainCount, 1);
    EXPECT_EQ(pdb.residues[0].atomCount, 4);
    EXPECT_STREQ(pdb.residues[0].resName, "SER");  // names follow the residue's last atom
    EXPECT_EQ(findRes(&pdb, 5, "B", ""), pdb.residues);
    EXPECT_EQ(findRes(&pdb, 2, "A", "x"), pdb.residues + 2);  // slot 0 holds 5: scanned
    EXPECT_EQ(findRes(&pdb, 6, "*", "*"), pdb.residues + 1);
    EXPECT_EQ(findAtom(&pdb, 5, "CA", "B", ""), pdb.atoms + 1);
}

TEST_F(ReaderTest, SharedStructureFileIndexesEveryResidue) {
    std::ifstream in(DC_SHARED_DATA "/hafp_a.pdb");
    int atoms = 0, residues = 0, first = 0, last = 0;
    for (std::string line; std::getline(in, line);) {
        if (line.compare(0, 4, "ATOM") != 0) continue;
        int resID = std::stoi(line.substr(22, 4));
        if (atoms++ == 0) first = resID;
        if (atoms == 1 || resID != last) residues++;
        last = resID;
    }
    ASSERT_GT(atoms, 0);
    ASSERT_EQ(readShared(), 0);
    EXPECT_EQ(pdb.atomCount, atoms);
    EXPECT_EQ(pdb.resCount, residues);
    EXPECT_EQ(pdb.residues[0].resID, first);
    EXPECT_EQ(pdb.residues[pdb.resCount - 1].resID, last);
}

TEST_F(ReaderTest, MalformedInputNeverBreaksTheStructure) {
    std::string letters = atomLine({9, " CB ", "ALA", 'A', 1, 1, 2, 3});
    put(letters, 22, "  x1");
    put(letters, 30, "  abc.d  1.0e2xy");
    std::string binary = "ATOM  \x01\x02\xff\x80\x7f garbage\t\x1b[0m\r\n";
    binary += std::string("ATOM      3  C\0  ALA A   1\n", 27);
    const std::string huge(1 << 20, 'X');
    const std::string texts[] = {
        "", "REMARK nothing\nTER\nEND\n", "ATOM\natom      1  N\n" + letters + binary,
        "ATOM  " + huge + "\n" + huge + "\nREMARK " + huge + "\n" + kModel};
    const int atoms[] = {0, 0, 5, 4};
    for (int t = 0; t < 4; t++) {
        ASSERT_EQ(read(texts[t]), 0) << t;
        EXPECT_EQ(pdb.atomCount, atoms[t]) << t;
        EXPECT_EQ(findRes(&pdb, pdb.resMin, "*", "*") != nullptr, atoms[t] > 0) << t;
        if (t == 2) {
            EXPECT_EQ(describe(pdb.atoms[2]),
                      "9|CB||ALA|A|0||0.000 100.000 3.000|1.00 0.00||||m1 h0");
            EXPECT_STREQ(pdb.atoms[4].atomName, "C");
        }
        pdbFree(&pdb);
        EXPECT_EQ(bytesInUse(), start) << t;
    }
    testing::internal::CaptureStderr();
    EXPECT_EQ(readPDB("/nonexistent/none.pdb", &pdb, nullptr), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "PDB Error opening PDB file /nonexistent/none.pdb\n");
    pdbFree(&pdb);
    // A directory is no structure file, even where it opens for reading.
    testing::internal::CaptureStderr();
    EXPECT_EQ(readPDB("/", &pdb, nullptr), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "PDB Error opening PDB file /\n");
    pdbFree(&pdb);
}

TEST_F(ReaderTest, ListsGrowPastTheirFirstSize) {
    std::string text;
    for (int i = 1; i <= 4097; i++) text += atomLine({i, " C  ", "LIG", 'A', 1 + i / 4});
    ASSERT_EQ(read(text), 0);
    EXPECT_EQ(pdb.atomCapacity, 4096 + 1024);
    EXPECT_EQ(pdb.resCount, 1025);
    EXPECT_EQ(findAtom(&pdb, 1025, "C", "A", ""), pdb.atoms + 4095);  // the first of two
}

TEST_F(ReaderTest, DebugPrintsTheKeysItInsertsAndSearches) {
    setPDBVerbose(0, 1);
    testing::internal::CaptureStderr();
    ASSERT_EQ(read(pdbText({{1, " N  ", "GLY", 'A', 1}})), 0);
    findAtom(&pdb, 1, "N", "A", "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "PDB inserting atom |1 N      A     |\n"
              "PDB inserting residiue |1 A      |\n"
              "PDB inserting chain |A      |\n"
              "PDB inserting segment |     A |\n"
              "PDB finding   |1 N      A     |\n");
}

TEST_F(ReaderTest, CopyNeedsMatchingAtomsAndFirstResidue) {
    PDBData other;
    ASSERT_EQ(read(kModel), 0);
    ASSERT_EQ(read(kModel, nullptr, &other), 0);
    other.atoms[2].x = 70.0f;
    other.savedXYZ[0] = -5.0f;
    EXPECT_EQ(pdbCopy(&pdb, &other), 0);
    EXPECT_FLOAT_EQ(pdb.atoms[2].x, 70.0f);
    restorePDBCoords(&pdb);
    EXPECT_FLOAT_EQ(pdb.atoms[0].x, -5.0f);
    pdbFree(&other);

    ASSERT_EQ(
        read(residueText(1, "GLY", 'A', 2, {"N", "CA"}) + residueText(3, "ALA", 'A', 3, {"N"}),
             nullptr, &other),
        0);
    testing::internal::CaptureStderr();
    EXPECT_EQ(pdbCopy(&pdb, &other), 1);
    EXPECT_EQ(pdbCopy(nullptr, &other), 1);
    other.atomCount = 2;
    EXPECT_EQ(pdbCopy(&pdb, &other), 1);
    other.atomCount = 3;
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Error (PDBCopy): Residue Count Mismatch.\n"
              "Error (PDBCopy): Null PDB Data.\n"
              "Error (PDBCopy): Atom Count Mismatch.\n");
    pdbFree(&other);
}

// Atom keys "%d %-4s %3s %-4s" (alt-loc, insertion code and chain joined;
// one column each in full-atom mode) and residue keys "%d %-2s %-4s", with
// ignored chains or segments left blank.
TEST(Keys, TextsInEveryKeyMode) {
    struct Atom {
        int resID;
        const char *name, *locID, *icode, *chain;
    } atoms[] = {{-12, "HD21", "A", "", "B"},
                 {INT_MIN, "ABCDEFGHIJKLMNO", "AB", "CD", "E"},
                 {1, "CA", "", "", ""}};
    const char* keys[4][3][2] = {{{"-12 HD21  AB SG  ", "-12 B  SG  "},
                                  {"-2147483648 ABCDEFGHIJKLMNO ABCDE SG  ", "-2147483648 E  SG  "},
                                  {"1 CA       SG  ", "1    SG  "}},
                                 {{"-12 HD21     SG  ", "-12    SG  "},  // chains ignored
                                  {"-2147483648 ABCDEFGHIJKLMNO     SG  ", "-2147483648    SG  "},
                                  {"1 CA       SG  ", "1    SG  "}},
                                 {{"-12 HD21  AB     ", "-12 B      "},  // segments ignored
                                  {"-2147483648 ABCDEFGHIJKLMNO ABCDE     ", "-2147483648 E      "},
                                  {"1 CA           ", "1        "}},
                                 {{"-12 HD21 A B SG  ", "-12 B  SG  "},  // full atom
                                  {"-2147483648 ABCDEFGHIJKLMNO ACE SG  ", "-2147483648 E  SG  "},
                                  {"1 CA       SG  ", "1    SG  "}}};
    for (int mode = 0; mode < 4; mode++) {
        resetPDBModes();
        setPDBChainMode(mode == 1);
        setPDBSegMode(mode == 2);
        setPDBAtomMode(mode == 3);
        for (int i = 0; i < 3; i++) {
            PDBAtom atom;
            atomNull(&atom);
            atom.resID = atoms[i].resID;
            copyName(atom.atomName, atoms[i].name);
            copyName(atom.locID, atoms[i].locID);
            copyName(atom.icode, atoms[i].icode);
            copyName(atom.chain, atoms[i].chain);
            copyName(atom.seg, "SG");
            char key[kKeySize];
            atomKey(key, &atom);
            EXPECT_STREQ(key, keys[mode][i][0]) << mode;
            resKey(key, atom.resID, atom.chain, "SG");
            EXPECT_STREQ(key, keys[mode][i][1]) << mode;
        }
    }
    resetPDBModes();
    char key[kKeySize];  // lookups may be handed names of any length: cut like snprintf
    atomLookupKey(key, 1, std::string(300, 'N').c_str(), "A", "");
    EXPECT_EQ(std::strlen(key), kKeySize - 1);
}

// Numeric columns read exactly as Atof2 and Atoi2 read the field's text.
TEST(Columns, NumbersAgreeWithTheGeneralParsers) {
    std::mt19937 random(7);
    const char alphabet[] = " 0123456789.-+eEx\t";
    std::uniform_int_distribution<int> pick(0, sizeof alphabet - 2), size(0, 8);
    std::uniform_real_distribution<float> value(-9999.0f, 9999.0f);
    std::vector<std::string> fields = {"-0.000",
                                       "-2147483648",
                                       "16777217",
                                       "1e40",
                                       "-.5",
                                       ".",
                                       "9007199254740993",
                                       "  1 2 . 5",
                                       "0.1000000000000000055511151231257827"};
    for (int i = 0; i < 20000; i++) {
        char field[32];
        std::snprintf(field, sizeof field, "%8.3f", value(random));
        if (i % 2) {
            field[size(random)] = '\0';
            for (char* c = field; *c; c++) *c = alphabet[pick(random)];
        }
        fields.push_back(field);
    }
    for (const std::string& field : fields) {
        std::string text = field.substr(0, 32);  // numeric fields are cut at 32 columns
        std::erase_if(text, [](char c) { return c == ' ' || c == '\t'; });
        int length = static_cast<int>(field.size());
        float real = columnReal(field.c_str(), length, 0, length - 1);
        EXPECT_EQ(std::bit_cast<uint32_t>(real), std::bit_cast<uint32_t>(Atof2(text.c_str())))
            << "|" << field << "|";
        EXPECT_EQ(columnInt(field.c_str(), length, 0, length - 1), Atoi2(text.c_str())) << field;
    }
}

}  // namespace

namespace {

// Growth as it shows: with the library's verbose mode every growth line of
// the stated steps; without it, a structure of one-atom segments holds
// little memory (a 4096-slot atom list per chain and segment would be 64 kB
// each).
TEST_F(ReaderTest, VerboseGrowthLinesAndSmallListsOtherwise) {
    std::string text;
    for (int i = 1; i <= 6145; i++) text += atomLine({i % 100000, " C  ", "LIG", 'A', 1 + i / 8});
    setPDBVerbose(1, 0);
    testing::internal::CaptureStderr();
    ASSERT_EQ(read(text), 0);
    std::string err = testing::internal::GetCapturedStderr();
    setPDBVerbose(0, 0);
    EXPECT_NE(err.find("REMARK Expanding Atom List: 4096 atoms max.\n"
                       "REMARK Expanding Atom List: 5120 atoms max.\n"
                       "REMARK Expanding Atom List: 6144 atoms max.\n"
                       "REMARK Expanding Atom List: 7168 atoms max.\n"),
              std::string::npos);
    EXPECT_NE(err.find("REMARK Expanding Atom Index List: 4096 atoms max.\n"), std::string::npos);
    EXPECT_EQ(pdb.atomCapacity, 7168);
    pdbFree(&pdb);
    pdbNull(&pdb);

    text.clear();
    for (int i = 1; i <= 2000; i++) {
        AtomSpec spec{i, " CA ", "ALA", 'A', i};
        char seg[8];
        std::snprintf(seg, sizeof seg, "%04X", i);
        spec.seg = seg;
        text += atomLine(spec);
    }
    int64_t before = bytesInUse();
    ASSERT_EQ(read(text), 0);
    EXPECT_EQ(pdb.segCount, 2000);
    EXPECT_LT(bytesInUse() - before, 8 << 20);
}

}  // namespace
