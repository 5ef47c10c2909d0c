// Shift prediction speed: a 5,000-residue structure (copies of ubiquitin
// with their own residue numbers) and a shift table of its backbone atoms,
// predicted from the surfaces built with DC. The prediction (torsions,
// conformation values, mapping and lookup of every row) must cost less than
// reading the structure, measured in the same run.
#include <chrono>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "cs/cs_tab.h"
#include "cs/predict_cs.h"
#include "cs/read_cs.h"
#include "cs/structure_scores.h"
#include "cs/surface.h"
#include "pdb/backbone.h"
#include "pdb/reader.h"
#include "pdb/structure.h"
#include "util/alloc.h"

namespace {

constexpr int kCopies = 66;  // of 76 residues: 5,016 residues
constexpr int kRepeats = 3;

double seconds(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

std::string readText(const std::string& path) {
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

// Copy k of ubiquitin's atom lines, residues renumbered from 100 k + 1.
void writeStructure(const std::string& ubq, const std::string& path) {
    std::ofstream out(path);
    std::istringstream lines(ubq);
    int serial = 1;
    for (int k = 0; k < kCopies; k++) {
        lines.clear();
        lines.seekg(0);
        for (std::string line; std::getline(lines, line);) {
            if (line.rfind("ATOM", 0) != 0 || line.size() < 54) continue;
            int resid = std::stoi(line.substr(22, 4)) + 100 * k;
            char head[32];
            std::snprintf(head, sizeof head, "ATOM  %5d", serial++ % 100000);
            char number[8];
            std::snprintf(number, sizeof number, "%4d", resid);
            out << head << line.substr(11, 11) << number << line.substr(26) << "\n";
        }
    }
}

// A shift of every backbone atom kind of every residue.
void writeShifts(const std::string& path) {
    const char* sequence =
        "MQIFVKTLTGKTITLEVEPSDTIENVKAKIQDKEGIPPDQQRLIFAGKQLEDGRTLSDYNIQKESTLHLVLRLRGG";
    std::ofstream out(path);
    out << "VARS RESID RESNAME ATOMNAME SHIFT\nFORMAT %5d %1s %4s %8.3f\n";
    for (int k = 0; k < kCopies; k++) {
        for (int i = 0; i < 76; i++) {
            for (const char* atom : {"N", "HN", "CA", "HA", "CB", "C"}) {
                out << 100 * k + i + 1 << " " << sequence[i] << " " << atom << " 50.0\n";
            }
        }
    }
}

}  // namespace

int main() {
    const std::string dir = "/tmp";
    writeStructure(readText(DC_UBQ_PDB), dir + "/dc_bench_5000.pdb");
    writeShifts(dir + "/dc_bench_5000_cs.tab");
    if (surfRead(DC_SURFACE_DIR, "rc.tab", "homo.tab", 0) != 0) return 1;
    CSTab cs;
    csTabNull(&cs);
    if (readCS((dir + "/dc_bench_5000_cs.tab").c_str(), &cs) != 0) return 1;

    double readTime = 1e30, predictTime = 1e30;
    int residues = 0, predicted = 0;
    for (int k = 0; k < kRepeats; k++) {
        PDBData pdb;
        pdbNull(&pdb);
        auto start = std::chrono::steady_clock::now();
        if (readPDB((dir + "/dc_bench_5000.pdb").c_str(), &pdb, nullptr) != 0) return 1;
        double elapsed = seconds(start);
        if (elapsed < readTime) readTime = elapsed;

        start = std::chrono::steady_clock::now();
        updatePhiPsi(&pdb, pdb.resMin, pdb.resMax);
        updatePDBSurf(&pdb, pdb.resMin, pdb.resMax);
        predicted = buildCS(&pdb, &cs, 0, 0, 0);
        elapsed = seconds(start);
        if (elapsed < predictTime) predictTime = elapsed;
        residues = pdb.resCount;
        pdbFree(&pdb);
    }
    int rows = cs.count;
    csTabFree(&cs);
    surfFree();
    int64_t inUse = 0;
    getMemUsed(&inUse, nullptr);
    bool met = predictTime < readTime && predicted > 0 && inUse == 0;
    std::printf("shift_predict: %d residues, %d shift rows, %d predicted, best of %d\n", residues,
                rows, predicted, kRepeats);
    std::printf("  read structure   %.4f s\n", readTime);
    std::printf("  predict shifts   %.4f s (target: less than reading)\n", predictTime);
    std::printf("  bytes still in use: %ld\n", static_cast<long>(inUse));
    std::printf("  targets: %s\n", met ? "met" : "MISSED");
    return met ? 0 : 1;
}
