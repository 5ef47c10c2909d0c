// The simulation run with a shift table: ubiquitin's backbone shifts
// predicted from the surfaces built with DC, checked row by row against the
// same lookup done here from the structure's coordinates and the surface
// files, and the report's lines and table layouts.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <cstring>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "support/run_dc.h"

namespace {

const std::string kUbqDir = DC_EXAMPLES "/ubq";
const std::string kSurfaces = DC_SURFACE_DIR;

std::vector<std::string> words(const std::string& line) {
    std::istringstream in(line);
    std::vector<std::string> out;
    for (std::string w; in >> w;) out.push_back(w);
    return out;
}

bool exists(const std::string& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0;
}

struct Vec {
    double x, y, z;
};
Vec minus(Vec a, Vec b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
Vec cross(Vec a, Vec b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
double dot(Vec a, Vec b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

// The dihedral angle a-b-c-d in degrees.
double dihedral(Vec a, Vec b, Vec c, Vec d) {
    Vec b1 = minus(b, a), b2 = minus(c, b), b3 = minus(d, c);
    Vec n1 = cross(b1, b2), n2 = cross(b2, b3);
    double norm = std::sqrt(dot(b2, b2));
    double y = dot(cross(n1, n2), {b2.x / norm, b2.y / norm, b2.z / norm});
    return std::atan2(y, dot(n1, n2)) * 180.0 / M_PI;
}

// Backbone torsions of every residue of a one-chain PDB file; 9999 where a
// neighbour is missing.
struct Torsions {
    std::map<int, double> phi, psi;
};

Torsions torsionsOf(const std::string& pdbText) {
    std::map<int, std::map<std::string, Vec>> atoms;
    std::istringstream in(pdbText);
    for (std::string line; std::getline(in, line);) {
        if (line.rfind("ATOM", 0) != 0) continue;
        std::string name = words(line.substr(12, 4))[0];
        int resid = std::stoi(line.substr(22, 4));
        atoms[resid][name] = {std::stod(line.substr(30, 8)), std::stod(line.substr(38, 8)),
                              std::stod(line.substr(46, 8))};
    }
    Torsions t;
    for (auto& [r, a] : atoms) {
        t.phi[r] = t.psi[r] = 9999;
        if (atoms.count(r - 1) && atoms[r - 1].count("C")) {
            t.phi[r] = dihedral(atoms[r - 1]["C"], a["N"], a["CA"], a["C"]);
        }
        if (atoms.count(r + 1) && atoms[r + 1].count("N")) {
            t.psi[r] = dihedral(a["N"], a["CA"], a["C"], atoms[r + 1]["N"]);
        }
    }
    return t;
}

// One grid cell of a surface file, as the lookup takes it.
float surfaceCell(const std::string& path, double phi, double psi) {
    std::string bytes = readFile(path);
    std::vector<float> w(bytes.size() / 4);
    std::memcpy(w.data(), bytes.data(), bytes.size());
    int nx = static_cast<int>(w[99]), ny = static_cast<int>(w[219]);
    auto cell = [](int n, float lo, float hi, double angle) {
        int i =
            static_cast<int>(static_cast<float>(n) / (hi - lo) * (static_cast<float>(angle) - lo));
        return i < 0 ? 0 : i >= n ? n - 1 : i;
    };
    int ix = cell(nx, w[70], w[71], phi), iy = cell(ny, w[72], w[73], psi);
    return w[512 + iy * nx + ix];
}

float threshold(const std::string& path) {
    std::string bytes = readFile(path);
    float value;
    std::memcpy(&value, bytes.data() + 199 * 4, 4);
    return value;
}

const std::map<char, std::string> kThreeLetter = {
    {'A', "ALA"}, {'R', "ARG"}, {'N', "ASN"}, {'D', "ASP"}, {'C', "CYS"},
    {'Q', "GLN"}, {'E', "GLU"}, {'G', "GLY"}, {'H', "HIS"}, {'I', "ILE"},
    {'L', "LEU"}, {'K', "LYS"}, {'M', "MET"}, {'F', "PHE"}, {'P', "PRO"},
    {'S', "SER"}, {'T', "THR"}, {'W', "TRP"}, {'Y', "TYR"}, {'V', "VAL"}};

// The random-coil table of the surface directory.
std::map<std::string, float> randomCoilTable() {
    std::map<std::string, float> table;
    std::istringstream in(readFile(kSurfaces + "/rc.tab"));
    for (std::string line; std::getline(in, line);) {
        std::vector<std::string> w = words(line);
        if (w.size() != 5 || (w[2] != "RC" && w[2] != "ADJ")) continue;
        table[w[0] + "," + w[1] + "," + w[2] + "," + w[3]] = std::stof(w[4]);
    }
    return table;
}

struct ShiftRow {
    int resid;
    char code;
    std::string atom;
    float obs;
};

// Ubiquitin's shifts predicted by the same lookup, computed here: the random
// coil with its neighbour corrections from the sequence, plus the secondary
// shift at the cell of the angles the chosen surface is indexed by.
float expectedPrediction(const ShiftRow& row, const std::vector<ShiftRow>& rows,
                         const std::string& sequence, const Torsions& t,
                         const std::map<std::string, float>& rc) {
    auto letter = [&](int r) -> std::string {
        return r >= 1 && r <= static_cast<int>(sequence.size()) ? std::string(1, sequence[r - 1])
                                                                : "";
    };
    float randomCoil = rc.at(letter(row.resid) + "," + row.atom + ",RC,0");
    const int offsets[] = {-2, -1, 1, 2};
    for (int k : offsets) {
        auto found = rc.find(letter(row.resid + k) + "," + row.atom + ",ADJ," + std::to_string(k));
        if (found != rc.end()) randomCoil += found->second;
    }
    std::string atom = row.atom;
    if (row.code == 'G' && (atom == "HA2" || atom == "HA3")) {
        for (const ShiftRow& other : rows) {
            if (other.resid != row.resid || other.atom == atom || other.atom.rfind("HA", 0) != 0)
                continue;
            if (row.obs > other.obs) atom = "HA2";
            if (row.obs < other.obs) atom = "HA3";
        }
    }
    std::string name = kThreeLetter.at(row.code);
    std::string next = letter(row.resid + 1);
    if (name != "GLY" && next == "P") name = "xPRO";
    std::string chosen;
    for (const std::string& candidate : {atom + "." + name + ".prev", atom + "." + name + ".next",
                                         atom + "." + name, atom + ".prev", atom + ".next", atom}) {
        if (exists(kSurfaces + "/" + candidate + ".dat")) {
            chosen = candidate;
            break;
        }
    }
    EXPECT_FALSE(chosen.empty()) << row.resid << " " << row.atom;
    int position = chosen.find(".prev") != std::string::npos   ? -1
                   : chosen.find(".next") != std::string::npos ? 1
                                                               : 0;
    int phiOf = row.resid + (position > 0 ? 1 : 0), psiOf = row.resid - (position < 0 ? 1 : 0);
    double phi = t.phi.count(phiOf) ? t.phi.at(phiOf) : 9999;
    double psi = t.psi.count(psiOf) ? t.psi.at(psiOf) : 9999;
    if (phi > 999 || psi > 999) return randomCoil;
    std::string base = kSurfaces + "/" + chosen;
    if (surfaceCell(base + ".d.dat", phi, psi) < threshold(base + ".dat")) return 9999.0f;
    return randomCoil + surfaceCell(base + ".dat", phi, psi);
}

// Every row of ubiquitin's shift table is predicted as computed here, and
// the statistics line agrees with the written table.
TEST(ShiftRun, UbiquitinShiftsMatchAnIndependentLookup) {
    std::string dir = scratchDir("shift_ubq");
    for (const char* file : {"1ubq_h.pdb", "ubq_cs.tab", "ubq_nh.tab"}) {
        writeFile(dir + "/" + file, readFile(kUbqDir + "/" + file));
    }
    DCResult r =
        runDC({"-pdb", "1ubq_h.pdb", "-inCS", "ubq_cs.tab", "-outCS", "out.tab", "-verb"}, {}, dir);
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "REMARK 0 Couplings Selected. Mode: Max(ResID I, ResID J) Limits: 1 to 76.\n");

    std::string sequence;
    std::vector<ShiftRow> rows;
    std::istringstream table(readFile(dir + "/ubq_cs.tab"));
    for (std::string line; std::getline(table, line);) {
        std::vector<std::string> w = words(line);
        if (w.size() >= 3 && w[0] == "DATA" && w[1] == "SEQUENCE") {
            for (std::size_t i = 2; i < w.size(); i++) sequence += w[i];
        } else if (w.size() == 4 && std::isdigit(static_cast<unsigned char>(w[0][0]))) {
            rows.push_back({std::stoi(w[0]), w[1][0], w[2], std::stof(w[3])});
        }
    }
    Torsions t = torsionsOf(readFile(dir + "/1ubq_h.pdb"));
    std::map<std::string, float> rc = randomCoilTable();

    std::istringstream out(readFile(dir + "/out.tab"));
    int k = 0, predicted = 0;
    double squares = 0;
    for (std::string line; std::getline(out, line);) {
        std::vector<std::string> w = words(line);
        if (w.size() != 9 || !std::isdigit(static_cast<unsigned char>(w[0][0]))) continue;
        ASSERT_LT(k, static_cast<int>(rows.size()));
        const ShiftRow& row = rows[k++];
        SCOPED_TRACE(line);
        ASSERT_EQ(std::stoi(w[0]), row.resid);
        float pred = std::stof(w[4]);
        EXPECT_NEAR(pred, expectedPrediction(row, rows, sequence, t, rc), 6e-4);
        if (pred > 900) continue;
        predicted++;
        squares += (row.obs - pred) * (row.obs - pred);
    }
    EXPECT_EQ(k, static_cast<int>(rows.size()));
    std::string body = errBody(r);
    EXPECT_EQ(body.substr(0, body.find('\n') + 1),
              "REMARK CS: ubq_cs.tab PDB: 1ubq_h.pdb Residues 1 to 76, 76 total.\n");
    std::smatch stats;
    ASSERT_TRUE(std::regex_search(body, stats, std::regex("REMARK CS_N: (\\d+) CS_RMS: ([0-9.]+)")))
        << body;
    EXPECT_EQ(std::stoi(stats[1]), predicted);
    EXPECT_NEAR(std::stod(stats[2]), std::sqrt(squares / predicted), 2e-3);
}

// With couplings as well: both titles, then both statistics lines, in that
// order, then an empty line.
TEST(ShiftRun, CouplingsAndShiftsReportInTheirOrder) {
    std::string dir = scratchDir("shift_both");
    for (const char* file : {"1ubq_h.pdb", "ubq_cs.tab", "ubq_nh.tab"}) {
        writeFile(dir + "/" + file, readFile(kUbqDir + "/" + file));
    }
    DCResult r = runDC({"-pdb", "1ubq_h.pdb", "-inD", "ubq_nh.tab", "-inCS", "ubq_cs.tab", "-outD",
                        "d.tab", "-outCS", "cs.tab"},
                       {}, dir);
    ASSERT_EQ(r.status, 0) << r.err;
    std::regex order(
        "REMARK DC: ubq_nh.tab PDB: 1ubq_h.pdb Residues 1 to 76, 76 total.\n"
        "REMARK CS: ubq_cs.tab PDB: 1ubq_h.pdb Residues 1 to 76, 76 total.\n"
        "REMARK D_N:  \\d+ D_RMS:  [0-9.]+ D_CHI2:  [0-9.]+\n"
        "REMARK CS_N: \\d+ CS_RMS: [0-9.]+ CS_CHI2: [0-9.]+ CS_WCHI2: [0-9.]+\n\n");
    EXPECT_TRUE(std::regex_match(errBody(r), order)) << errBody(r);
}

}  // namespace
