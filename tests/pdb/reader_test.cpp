#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "pdb/residue_types.h"
#include "pdb/select.h"
#include "pdb_fixture.h"

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
    EXPECT_EQ(pdb.lastAtom, 5);

    pdbFree(&pdb);  // unique atoms: running serials, no repeated keys
    setPDBUniqMode(1);
    testing::internal::CaptureStderr();
    ASSERT_EQ(read(kModel + "END\n" + kModel), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(pdb.atoms[4].atomID, 5);
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

TEST_F(ReaderTest, FieldsComeFromTheirColumns) {
    std::string line = atomLine(
        {7, "HD21", "ASN", 'B', -12, -1.5f, 22.25f, 1000.125f, "ATOM  ", 'A', "SEGX", "H"});
    put(line, 26, "Q");  // insertion code
    put(line, 54, "  0.50 33.40");
    put(line, 78, "1-");  // charge
    ASSERT_EQ(read(line + atomLine({8, "CA  ", "GLY", 'B', -11, 1, 2, 3, "ATOM  ", ' ', "SEGX"})),
              0);
    EXPECT_EQ(describe(pdb.atoms[0]),
              "7|HD21|A|ASN|B|-12|Q|-1.500 22.250 1000.125|0.50 33.40|SEGX|H|1-|m1 h0");
    EXPECT_STREQ(pdb.atoms[1].atomName, "CA");  // written from column 13, not 14
    EXPECT_EQ(pdb.resMin, -12);
    EXPECT_EQ(pdb.resMax, -11);
    EXPECT_FLOAT_EQ(pdb.savedXYZ[2], 1000.125f);
    const PDBResidue* r = pdb.residues;
    EXPECT_STREQ(r->resType->name, "ASN");
    EXPECT_EQ(r->next, r + 1);
    EXPECT_EQ(r[1].prev, r);
    EXPECT_EQ(pdb.atoms[1].residue, r + 1);
    EXPECT_EQ(pdb.atoms[1].chainRec->byRes[1], r + 1);
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
    const std::string file = std::string(DC_SHARED_DATA) + "/hafp_a.pdb";
    std::ifstream in(file);
    int atoms = 0, residues = 0, first = 0, last = 0;
    for (std::string line; std::getline(in, line);) {
        if (line.compare(0, 4, "ATOM") != 0) continue;
        int resID = std::stoi(line.substr(22, 4));
        if (atoms++ == 0) first = resID;
        if (atoms == 1 || resID != last) residues++;
        last = resID;
    }
    ASSERT_GT(atoms, 0);
    ASSERT_EQ(readPDB(file.c_str(), &pdb, nullptr), 0);
    EXPECT_EQ(pdb.atomCount, atoms);
    EXPECT_EQ(pdb.resCount, residues);
    EXPECT_EQ(pdb.residues[0].resID, first);
    EXPECT_EQ(pdb.residues[pdb.resCount - 1].resID, last);
    EXPECT_STREQ(findAtomN(&pdb, first + 1, "HN|H", "A", "")->atomName, "H");
    PDBAtom* found[9];
    ASSERT_EQ(findBestAtoms(&pdb, first, "", "HA", "A", "", found), 2);
    EXPECT_STREQ(found[1]->atomName, "HA3");
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
}

TEST_F(ReaderTest, VerboseReportsEveryListGrowth) {
    std::string text;
    for (int i = 1; i <= 33; i++) text += residueText(i, "LIG", 'A', 1, {"C"});
    setPDBVerbose(1, 0);
    testing::internal::CaptureStderr();
    ASSERT_EQ(read(text), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "REMARK Expanding Atom List: 4096 atoms max.\n"
              "REMARK Expanding Res List: 512 residues max.\n"
              "REMARK Expanding Atom Index List: 32 atoms max.\n"
              "REMARK Expanding Atom Index List: 40 atoms max.\n"
              "REMARK Expanding Chain List: 8 chains max.\n"
              "REMARK Expanding Atom Index List: 4096 atoms max.\n"
              "REMARK Expanding Seg List: 8 segs max.\n"
              "REMARK Expanding Atom Index List: 4096 atoms max.\n"
              "REMARK Expanding Res Index List: 512 residues max.\n"
              "REMARK Expanding Res Index List: 512 residues max.\n");
    pdbFree(&pdb);

    for (int i = 34; i <= 4097; i++) text += atomLine({i, " C  ", "LIG", 'A', 1 + i / 4});
    setPDBVerbose(0, 0);
    ASSERT_EQ(read(text), 0);
    EXPECT_EQ(pdb.atomCapacity, 4096 + 1024);
    EXPECT_EQ(pdb.resCapacity, 512 + 4 * 150);  // 1018 residues
    EXPECT_EQ(pdb.chains[0].atomCapacity, 4096 + 1024);
    EXPECT_EQ(pdb.savedCount, pdb.atomCapacity);
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
    pdbFree(&pdb);

    setPDBUniqMode(1);
    testing::internal::CaptureStderr();
    ASSERT_EQ(read(pdbText({{1, " N  ", "GLY", 'A', 1, 0, 0, 0, "ATOM  ", 'B'}})), 0);
    std::string err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(err.substr(0, err.find('\n') + 1),
              "PDB inserting atom |atomID=1 resID=1 atomName=N model=1 chain=A seg=None locID=B "
              "icode=None|\n");
}

TEST_F(ReaderTest, CopyNeedsMatchingAtomsAndFirstResidue) {
    PDBData other;
    ASSERT_EQ(read(kModel), 0);
    ASSERT_EQ(read(kModel, nullptr, &other), 0);
    other.atoms[2].x = 70.0f;
    other.atoms[2].selected = 3;
    other.savedXYZ[0] = -5.0f;
    EXPECT_EQ(pdbCopy(&pdb, &other), 0);
    EXPECT_FLOAT_EQ(pdb.atoms[2].x, 70.0f);
    EXPECT_EQ(pdb.atoms[2].selected, 3);
    restorePDBCoords(&pdb);
    EXPECT_FLOAT_EQ(pdb.atoms[0].x, -5.0f);
    pdbFree(&other);

    ASSERT_EQ(read(pdbText({{1, " N  ", "GLY", 'A', 2},
                            {2, " CA ", "GLY", 'A', 2},
                            {3, " N  ", "ALA", 'A', 3}}),
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

}  // namespace
