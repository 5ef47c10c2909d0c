#include "pdb/chi.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>

#include "pdb/lookup.h"
#include "pdb/measure_atoms.h"
#include "pdb/modes.h"
#include "pdb/reader.h"
#include "pdb/residue_types.h"
#include "pdb/structure.h"
#include "support/run_dc.h"
#include "torsion_check.h"
#include "util/alloc.h"

namespace {

using torsion_check::torsion;

class SideChain : public ::testing::Test {
  protected:
    void SetUp() override {
        resetPDBModes();
        getMemUsed(&start, nullptr);
        pdbNull(&pdb);
    }
    void TearDown() override {
        pdbFree(&pdb);
        int64_t now = 0;
        getMemUsed(&now, nullptr);
        EXPECT_EQ(now, start);
    }
    // hafp_a.pdb with every occurrence of each first text replaced by the second.
    void read(std::initializer_list<std::pair<std::string, std::string>> edits = {}) {
        std::string text = readFile(DC_SHARED_DATA "/hafp_a.pdb");
        for (const auto& [from, to] : edits) {
            for (size_t at = 0; (at = text.find(from, at)) != std::string::npos;) {
                text.replace(at, from.size(), to);
            }
        }
        std::string path = scratchDir("chi") + "/edited.pdb";
        writeFile(path, text);
        ASSERT_EQ(readPDB(path.c_str(), &pdb, nullptr), 0);
    }
    int chi(int resID, const int* wanted, int* count, const char* chain = "A") {
        return getPDBChi(&pdb, resID, chain, "", values, rows, wanted, count);
    }
    double expected(int resID, const char* a, const char* b, const char* c, const char* d) {
        return torsion(findAtom(&pdb, resID, a, "A", ""), findAtom(&pdb, resID, b, "A", ""),
                       findAtom(&pdb, resID, c, "A", ""), findAtom(&pdb, resID, d, "A", ""));
    }
    int64_t start = 0;
    PDBData pdb;
    float values[kMaxChiValues];
    const ChiDef* rows[kMaxChiValues] = {};
};

TEST_F(SideChain, CompleteResiduesGiveTheirMasks) {
    read();
    int count = -1;
    EXPECT_EQ(chi(1, nullptr, &count), 0);  // glycine
    EXPECT_EQ(count, 0);
    for (float v : values) EXPECT_EQ(v, 9999.0f);

    count = -1;
    EXPECT_EQ(chi(2, nullptr, &count), 15);  // leucine
    ASSERT_EQ(count, 4);
    for (int i = 0; i < 4; i++) EXPECT_EQ(rows[i]->chi, i + 1);
    EXPECT_NEAR(values[0], expected(2, "N", "CA", "CB", "CG"), 1e-3);
    EXPECT_NEAR(values[1], expected(2, "CA", "CB", "CG", "CD1"), 1e-3);
    EXPECT_NEAR(values[2], expected(2, "CB", "CG", "CD1", "HD11"), 1e-3);
    EXPECT_NEAR(values[3], expected(2, "CB", "CG", "CD2", "HD21"), 1e-3);
    EXPECT_EQ(values[4], 9999.0f);

    count = -1;
    EXPECT_EQ(chi(6, nullptr, &count), 7);  // isoleucine, through "CD|CD1" and "HD1|HD11"
    ASSERT_EQ(count, 3);
    EXPECT_NEAR(values[0], expected(6, "N", "CA", "CB", "CG1"), 1e-3);
    EXPECT_NEAR(values[1], expected(6, "CA", "CB", "CG1", "CD1"), 1e-3);
    EXPECT_NEAR(values[2], expected(6, "CB", "CG1", "CD1", "HD11"), 1e-3);
}

TEST_F(SideChain, IsoleucineDeltaCarbonNamedCD) {
    read({{" CD1 ILE", " CD  ILE"}, {"HD11 ILE", " HD1 ILE"}});
    ASSERT_NE(findAtom(&pdb, 6, "HD1", "A", ""), nullptr);
    int count = -1;
    EXPECT_EQ(chi(6, nullptr, &count), 7);
    EXPECT_NEAR(values[1], expected(6, "CA", "CB", "CG1", "CD"), 1e-3);
    EXPECT_NEAR(values[2], expected(6, "CB", "CG1", "CD", "HD1"), 1e-3);
}

TEST_F(SideChain, MissingAtomOrResidue) {
    read({{"HD21 LEU", "XD21 LEU"}});
    int count = -1;
    EXPECT_EQ(chi(2, nullptr, &count), 7);
    EXPECT_EQ(count, 4);
    EXPECT_EQ(values[3], 9999.0f);
    count = -1;
    EXPECT_EQ(chi(99, nullptr, &count), 0);
    EXPECT_EQ(count, 0);
    count = -1;
    EXPECT_EQ(chi(2, nullptr, &count, "B"), 0);
    EXPECT_EQ(count, 0);
}

TEST_F(SideChain, WantedChiNumbersInTheGivenOrder) {
    read();
    const int wanted[] = {3, 1, 9};
    int count = 3;
    EXPECT_EQ(chi(2, wanted, &count), 5);
    ASSERT_EQ(count, 2);
    EXPECT_EQ(rows[0]->chi, 3);
    EXPECT_NEAR(values[0], expected(2, "CB", "CG", "CD1", "HD11"), 1e-3);
    EXPECT_NEAR(values[1], expected(2, "N", "CA", "CB", "CG"), 1e-3);

    int many[40];
    for (int& c : many) c = 1;
    count = 40;  // more than the outputs hold: stops at the last slot
    EXPECT_EQ(chi(2, many, &count), 1);
    EXPECT_EQ(count, kMaxChiValues);
    count = 0;
    EXPECT_EQ(chi(2, wanted, &count), 0);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(values[0], 9999.0f);
}

TEST(ChiTable, RowsMatchTheResidueTableAndPrintGrouped) {
    const ChiDef* table = chiTable();
    int rows = 0;
    for (; table[rows].type != 0; rows++) {
        EXPECT_EQ(findResTypeByName(table[rows].resName)->type, table[rows].type) << rows;
    }
    EXPECT_EQ(rows, kChiTableRows);

    testing::internal::CaptureStderr();
    EXPECT_EQ(showPDBChiDef(), 0);
    std::string text = testing::internal::GetCapturedStderr();
    EXPECT_EQ(text.rfind("  1. ALA Chi1      N     CA     CB    HB1\n\n"
                         "  2. ARG Chi1      N     CA     CB     CG\n",
                         0),
              0u);
    EXPECT_NE(text.find("\n 26. ILE Chi2     CA     CB    CG1 CD|CD1\n"
                        " 27. ILE Chi3     CB    CG1 CD|CD1 HD1|HD11\n\n 28. LEU Chi1"),
              std::string::npos);
    std::string last = " 58. VAL Chi3     CA     CB    CG2   HG21\n";
    EXPECT_EQ(text.substr(text.size() - last.size()), last);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 58 + 18);  // 19 residue groups
}

TEST_F(SideChain, AtomMeasuresWithMissingAtoms) {
    read();
    // N (16.305, -5.344, 5.740) and CA (14.965, -5.512, 5.185) of residue 2.
    PDBAtom* n = findAtom(&pdb, 2, "N", "A", "");
    PDBAtom* ca = findAtom(&pdb, 2, "CA", "A", "");
    PDBAtom* c = findAtom(&pdb, 2, "C", "A", "");
    PDBAtom* cb = findAtom(&pdb, 2, "CB", "A", "");
    EXPECT_NEAR(pdbDist(n, ca), 1.4601, 1e-4);
    using torsion_check::at;
    EXPECT_NEAR(pdbAngle(n, ca, c), torsion_check::bend(at(n), at(ca), at(c)), 1e-3);
    EXPECT_NEAR(pdbDihedral(n, ca, cb, c), torsion(n, ca, cb, c), 1e-3);
    EXPECT_EQ(pdbDist(n, nullptr), 0.0f);
    EXPECT_EQ(pdbAngle(nullptr, ca, c), 9999.0f);
    EXPECT_EQ(pdbDihedral(n, ca, nullptr, c), 9999.0f);
}

}  // namespace
