// The shift table a simulation run writes, in each layout, and the messages
// of a run whose surfaces or shift table cannot be read.
#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "cs/surface.h"
#include "cs/surface_file.h"
#include "support/run_dc.h"

namespace {

const std::string kHafpA = DC_SHARED_DATA "/hafp_a.pdb";

void writeSurface(const std::string& path, float value, float bound, float threshold) {
    std::vector<float> grid(4, value);
    SurfHeader h{2, 2, -180, 180, -180, 180, 1, bound, threshold};
    ASSERT_EQ(surfWrite2D(path.c_str(), grid.data(), h), 0);
}

// A run folder: the peptide, and surfaces under s/ on which every CA
// secondary shift is 1.5 (density 5, deviation 0.25, bound 0.8), with
// random-coil CA shifts of 55 (L), 57 (F) and 45 (G).
std::string stageRun(const std::string& name) {
    std::string dir = scratchDir(name);
    writeFile(dir + "/p.pdb", readFile(kHafpA));
    std::string s = dir + "/s";
    scratchDir(name + "/s");
    for (const char* type : kSurfResNames) writeSurface(s + "/" + type + ".dat", 1.0f, 0, 0);
    writeSurface(s + "/CA.dat", 1.5f, 0.8f, 0.5f);
    writeSurface(s + "/CA.d.dat", 5.0f, 0.8f, 0.5f);
    writeSurface(s + "/CA.q.dat", 0.25f, 0.8f, 0.5f);
    writeFile(s + "/rc.tab",
              "VARS RESNAME ATOMNAME TYPE OFFSET SHIFT\nFORMAT %s %s %s %d %f\n"
              "L CA RC 0 55\nF CA RC 0 57\nG CA RC 0 45\n");
    writeFile(s + "/homo.tab", "VARS RESNAME ALA\nFORMAT %s %f\nALA 0\n");
    writeFile(dir + "/cs.tab",
              "VARS RESID RESNAME ATOMNAME SHIFT\nFORMAT %4d %1s %4s %8.3f\n"
              "2 L CA 56.000\n3 F CA 9999.000\n4 G CA 44.000\n");
    writeFile(dir + "/chain.tab",
              "VARS RESID RESNAME ATOMNAME CHAINNAME SHIFT\nFORMAT %4d %1s %4s %1s %8.3f\n"
              "2 L CA A 56.000\n3 F CA A 9999.000\n4 G CA A 44.000\n");
    return dir;
}

const char* const kTableHead =
    "REMARK TESSERA Chemical Shift Simulation.\n\n"
    "REMARK CS: %s PDB: p.pdb Residues 1 to 24, 24 total.\n\n"
    "DATA N     2\nDATA RMS   1.803\nDATA Chi2  104.000\nDATA WChi2 104.000\n";

std::string head(const char* table) {
    char text[512];
    std::snprintf(text, sizeof text, kTableHead, table);
    return text;
}

// Predicted = random coil + 1.5; the differences -0.5 and -2.5 over sigma
// 0.25 give chi-square 4 + 100 and RMS sqrt(3.25). With -verb the observed,
// random-coil and difference columns are written; without, the values
// follow the atom name with no blank of their own.
TEST(ShiftReport, TablesInEveryLayout) {
    std::string dir = stageRun("shift_layouts");
    struct Case {
        std::vector<std::string> args;
        std::string table;
    };
    const Case cases[] = {
        {{"-inCS", "cs.tab", "-verb"},
         head("cs.tab") +
             "VARS    RESID RESNAME ATOMNAME CS_OBS SHIFT RC_SHIFT CS_DIFF SIGMA W\n"
             "FORMAT  %4d %4s %4s %9.3f %9.3f %9.3f %9.3f %9.3f %.2f\n\n"
             "    2    L   CA    56.000    56.500    55.000    -0.500     0.250 1.00\n"
             "    3    F   CA  9999.000    58.500    57.000  9999.000     0.250 1.00\n"
             "    4    G   CA    44.000    46.500    45.000    -2.500     0.250 1.00\n"},
        {{"-inCS", "cs.tab"},
         head("cs.tab") + "VARS    RESID RESNAME ATOMNAME SHIFT SIGMA W\n"
                          "FORMAT  %4d %4s %4s %9.3f %9.3f %.2f\n\n"
                          "    2    L   CA   56.500     0.250 1.00\n"
                          "    3    F   CA   58.500     0.250 1.00\n"
                          "    4    G   CA   46.500     0.250 1.00\n"},
        {{"-inCS", "chain.tab", "-verb"},
         head("chain.tab") +
             "VARS    RESID RESNAME ATOMNAME CHAINNAME CS_OBS SHIFT RC_SHIFT CS_DIFF SIGMA W\n"
             "FORMAT  %4d %4s %4s %4s %9.3f %9.3f %9.3f %9.3f %9.3f %.2f\n\n"
             "    2    L   CA    A    56.000    56.500    55.000    -0.500     0.250 1.00\n"
             "    3    F   CA    A  9999.000    58.500    57.000  9999.000     0.250 1.00\n"
             "    4    G   CA    A    44.000    46.500    45.000    -2.500     0.250 1.00\n"},
        {{"-inCS", "chain.tab"},
         head("chain.tab") + "VARS    RESID RESNAME ATOMNAME CHAINNAME SHIFT SIGMA W\n"
                             "FORMAT  %4d %4s %4s %4s %9.3f %9.3f %.2f\n\n"
                             "    2    L   CA    A   56.500     0.250 1.00\n"
                             "    3    F   CA    A   58.500     0.250 1.00\n"
                             "    4    G   CA    A   46.500     0.250 1.00\n"},
    };
    for (const Case& c : cases) {
        std::vector<std::string> args = {"-pdb", "p.pdb", "-sPath", "s", "-outCS", "out.tab"};
        args.insert(args.end(), c.args.begin(), c.args.end());
        DCResult r = runDC(args, {}, dir);
        SCOPED_TRACE(c.args[1] + (c.args.size() > 2 ? " -verb" : ""));
        EXPECT_EQ(r.status, 0);
        EXPECT_EQ(readFile(dir + "/out.tab"), c.table);
        EXPECT_EQ(errBody(r), "REMARK CS: " + c.args[1] +
                                  " PDB: p.pdb Residues 1 to 24, 24 total.\n"
                                  "REMARK CS_N: 2 CS_RMS: 1.803 CS_CHI2: 104.000 CS_WCHI2: "
                                  "104.000\n\n");
    }
}

// Surfaces that cannot be read stop the run before the tables, with the
// message of what failed and the run's own; so does a missing shift table.
TEST(ShiftReport, UnreadableSurfacesAndTablesStopTheRun) {
    std::string dir = stageRun("shift_errors");
    std::string s = dir + "/s";
    auto run = [&](const std::string& table) {
        return runDC({"-pdb", "p.pdb", "-sPath", s, "-inCS", table}, {}, dir);
    };
    DCResult missingTable = run("none.tab");
    EXPECT_EQ(missingTable.status, 1);
    EXPECT_EQ(errBody(missingTable),
              "RdTable File open error: none.tab.\nDC Error Reading CS Values in none.tab\n");

    std::string density = readFile(s + "/CA.d.dat");
    writeFile(s + "/CA.d.dat", density.substr(0, density.size() - 3));
    DCResult truncated = run("cs.tab");
    EXPECT_EQ(truncated.status, 1);
    EXPECT_EQ(errBody(truncated), "CS Error reading data in Phi/Psi Surface " + s +
                                      "/CA.d.dat\nTESSERA Error reading density surface " + s +
                                      "/CA.d.dat\nDC Error Reading Secondary Shift Surfaces.\n");
    writeFile(s + "/CA.d.dat", density);

    std::remove((s + "/TRP.dat").c_str());
    DCResult conformation = run("cs.tab");
    EXPECT_EQ(conformation.status, 1);
    EXPECT_EQ(errBody(conformation), "CS Error reading header in Phi/Psi Surface " + s +
                                         "/TRP.dat\nTESSERA Error reading conformation surface " +
                                         s +
                                         "/TRP.dat\nDC Error Reading Secondary Shift Surfaces.\n");
    EXPECT_EQ(conformation.out, "");
}

}  // namespace
