#include "pdb/writer.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

#include "pdb/select.h"
#include "pdb_fixture.h"

namespace {

using WriterTest = PDBTest;

const std::string kVersion =
    std::string("REMARK TESSERA ") + DC_PDB_LIB_VERSION + " Rev " + DC_REVISION + "\n";

TEST_F(WriterTest, ShortNamesStartOneColumnLater) {
    std::string hd21 =
        atomLine({12345, "HD21", "ASN", ' ', -7, -123.456f, 0, 999.999f, "ATOM  ", 'B', "AB", "H"});
    put(hd21, 26, "Q");
    put(hd21, 54, "  0.50100.00");
    put(hd21, 78, "1+");
    ASSERT_EQ(read(atomLine({2, "CA  ", "ALA", 'A', 2, 1.5f, -2.25f, 10}) + hd21), 0);
    pdb.atoms[0].tempFactor = 12.5f;
    pdb.atoms[0].element[0] = 'C';
    pdb.atoms[1].isHetAtm = 1;
    char text[512];
    ASSERT_EQ(getPDBAtomStr(pdb.atoms, text), 80);
    EXPECT_STREQ(
        text, "ATOM      2  CA  ALA A   2       1.500  -2.250  10.000  1.00 12.50           C  ");
    ASSERT_EQ(getPDBAtomStr(pdb.atoms + 1, text), 80);
    EXPECT_STREQ(
        text, "HETATM12345 HD21BASN    -7Q   -123.456   0.000 999.999  0.50100.00        AB H1+");
}

TEST_F(WriterTest, WrittenFileReadsBackToTheSameAtoms) {
    setPDBUniqMode(1);
    std::string text = pdbText({{1, " N  ", "GLY", 'A', -3, 1.25f, -2.5f, 3},
                                {2, "HD21", "ASN", 'B', 7, 0, 0, 0, "ATOM  ", 'A', "S1", "H"},
                                {3, " CA ", "ASN", 'B', 7, 0, 0, 0, "ATOM  ", ' ', "S1"},
                                {4, "ZN  ", "ZN", 'B', 8, 0, 0, 0, "HETATM", ' ', "", "ZN"}});
    text[text.find(" CA  ASN B   7") + 14] = 'X';  // insertion code
    PDBSelect hetatm;
    pdbSelectNull(&hetatm);
    hetatm.hetAtmRec = 1;
    ASSERT_EQ(read(text + "ENDMDL\n" + text, &hetatm), 0);
    ASSERT_EQ(pdb.atomCount, 8);
    pdb.atoms[0].x = 1.23456f;
    pdb.atoms[1].tempFactor = 7.891f;
    const std::string out = path("out.pdb");
    ASSERT_EQ(writePDB(out.c_str(), &pdb, nullptr, 1, nullptr), 0);

    PDBData back;
    ASSERT_EQ(readPDB(out.c_str(), &back, &hetatm), 0);
    ASSERT_EQ(back.atomCount, 8);
    EXPECT_EQ(back.modelCount, 2);
    for (int i = 0; i < 8; i++) EXPECT_EQ(describe(back.atoms[i]), describe(pdb.atoms[i])) << i;
    EXPECT_EQ(describe(back.atoms[6]), "7|CA||ASN|B|7|X|0.000 0.000 0.000|1.00 0.00|S1|||m2 h1");
    EXPECT_FLOAT_EQ(back.atoms[0].x, 1.235f);
    pdbFree(&back);
}

TEST_F(WriterTest, RemarksModelFramingAndEnd) {
    ASSERT_EQ(read(pdbText({{1, " N  ", "GLY", 'A', 1, 1, 2, 3}, {2, " CA ", "GLY", 'A', 2}}) +
                   "END\n" + pdbText({{1, " N  ", "GLY", 'A', 1}, {2, " CA ", "GLY", 'A', 2}})),
              0);
    const std::string out = path("out.pdb");
    std::string atoms[4];
    for (int i = 0; i < 4; i++) {
        char text[512];
        getPDBAtomStr(pdb.atoms + i, text);
        atoms[i] = std::string(text) + "\n";
    }
    const std::string all = atoms[0] + atoms[1] + atoms[2] + atoms[3];
    struct Case {
        const char* remark;
        int end;
        std::string expected;
    } cases[] = {{nullptr, 0, kVersion + all},
                 {"none", 1, all + "END\n"},
                 {"Made here", 0, kVersion + "REMARK Made here\n" + all}};
    for (const Case& c : cases) {
        ASSERT_EQ(writePDB(out.c_str(), &pdb, nullptr, c.end, c.remark), 0);
        EXPECT_EQ(readFile(out), c.expected) << c.end;
    }

    setPDBUniqMode(1);  // only now are models framed
    ASSERT_EQ(writePDB(out.c_str(), &pdb, nullptr, 1, "None"), 0);
    EXPECT_EQ(readFile(out), "MODEL        1\n" + atoms[0] + atoms[1] + "ENDMDL\nMODEL        2\n" +
                                 atoms[2] + atoms[3] + "ENDMDL\nEND\n");
    PDBSelect selection;
    pdbSelectNull(&selection);
    selection.res1 = selection.resN = 2;
    ASSERT_EQ(writePDB(out.c_str(), &pdb, &selection, 0, "None"), 0);
    EXPECT_EQ(readFile(out),
              "MODEL        1\n" + atoms[1] + "ENDMDL\nMODEL        2\n" + atoms[3] + "ENDMDL\n");
}

TEST_F(WriterTest, OpenFailureAndMissingStructure) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(writePDB("/nonexistent/out.pdb", &pdb, nullptr, 1, nullptr), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "PDB Error opening PDB file /nonexistent/out.pdb\n");
    const std::string out = path("never.pdb");
    EXPECT_EQ(writePDB(out.c_str(), nullptr, nullptr, 1, nullptr), 0);
    EXPECT_EQ(access(out.c_str(), F_OK), -1);
}

}  // namespace
