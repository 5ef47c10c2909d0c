#include "pdb/nucleic.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "pdb/lookup.h"
#include "pdb/modes.h"
#include "pdb/reader.h"
#include "pdb/structure.h"
#include "support/run_dc.h"
#include "torsion_check.h"

namespace {

using torsion_check::torsion;

// A purine (1, with N9 and C4) then a pyrimidine (2, with N1 and C2), atoms
// at scattered positions, so each torsion is whatever its atoms give.
std::string dinucleotide() {
    unsigned seed = 12345;
    std::string text;
    char line[128];
    for (int resID = 1; resID <= 2; resID++) {
        for (const char* name : {"P", "O5'", "C5'", "C4'", "C3'", "O3'", "C2'", "C1'", "O4'",
                                 resID == 1 ? "N9" : "N1", resID == 1 ? "C4" : "C2"}) {
            double xyz[3];
            for (double& v : xyz) v = ((seed = seed * 1103515245u + 12345u) >> 8) % 20000 / 1e3;
            std::snprintf(line, sizeof line, "ATOM      1  %-3s %3s A%4d    %8.3f%8.3f%8.3f\n",
                          name, resID == 1 ? "ADE" : "CYT", resID, xyz[0], xyz[1], xyz[2]);
            text += line;
        }
    }
    return text;
}

TEST(NucleicTorsions, BackboneGlycosidicAndRingTorsions) {
    resetPDBModes();
    PDBData pdb;
    pdbNull(&pdb);
    std::string path = scratchDir("nucleic") + "/dinucleotide.pdb";
    writeFile(path, dinucleotide());
    ASSERT_EQ(readPDB(path.c_str(), &pdb, nullptr), 0);
    auto a = [&](int resID, const char* name) { return findAtom(&pdb, resID, name, "A", ""); };
    float v[12];
    auto measure = [&](int resID) {
        return getPDBNAAngles(&pdb, resID, "A", "", &v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6],
                              &v[7], &v[8], &v[9], &v[10], &v[11]);
    };

    EXPECT_EQ(measure(1), 0xFFE);  // no O3' before residue 1: alpha undefined
    EXPECT_EQ(v[0], 9999.0f);
    EXPECT_NEAR(v[5], torsion(a(1, "C3'"), a(1, "O3'"), a(2, "P"), a(2, "O5'")), 1e-3);
    EXPECT_NEAR(v[6], torsion(a(1, "O4'"), a(1, "C1'"), a(1, "N9"), a(1, "C4")), 1e-3);
    EXPECT_NEAR(v[11], torsion(a(1, "C3'"), a(1, "C4'"), a(1, "O4'"), a(1, "C1'")), 1e-3);

    EXPECT_EQ(measure(2), 0xFCF);  // no residue 3: epsilon and zeta undefined
    EXPECT_NEAR(v[0], torsion(a(1, "O3'"), a(2, "P"), a(2, "O5'"), a(2, "C5'")), 1e-3);
    EXPECT_NEAR(v[6], torsion(a(2, "O4'"), a(2, "C1'"), a(2, "N1"), a(2, "C2")), 1e-3);
    EXPECT_EQ(v[4], 9999.0f);

    float chi = 0;
    EXPECT_EQ(getPDBNAAngles(&pdb, 2, "A", "", nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                             &chi, nullptr, nullptr, nullptr, nullptr, nullptr),
              1 << 6);
    EXPECT_EQ(chi, v[6]);
    EXPECT_EQ(measure(7), 0);
    for (float value : v) EXPECT_EQ(value, 9999.0f);
    pdbFree(&pdb);
}

}  // namespace
