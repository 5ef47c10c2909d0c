#include "tools/surfaces/training_set.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <utility>

const char* const kAtomKindNames[kAtomKinds] = {"HA", "HA2", "HA3", "CA", "CB", "C", "N", "HN"};

namespace {

float numberOrNaN(const std::string& text) {
    if (text.empty()) return NAN;
    char* end = nullptr;
    float value = std::strtof(text.c_str(), &end);
    return end == text.c_str() || !std::isfinite(value) ? NAN : value;
}

// Column positions by name; -1 when absent.
struct Columns {
    std::map<std::string, int> at;
    int operator[](const std::string& name) const {
        auto found = at.find(name);
        return found == at.end() ? -1 : found->second;
    }
};

std::string field(const std::vector<std::string>& cells, int column) {
    return column >= 0 && column < static_cast<int>(cells.size()) ? cells[column] : "";
}

void orderGlycineProtons(TrainingResidue* r) {
    float a = r->shift[kHA2], b = r->shift[kHA3];
    if (std::isnan(a) || std::isnan(b)) {
        r->shift[kHA2] = r->shift[kHA3] = NAN;
        return;
    }
    r->shift[kHA2] = std::fmax(a, b);
    r->shift[kHA3] = std::fmin(a, b);
}

TrainingResidue residueOf(const std::vector<std::string>& cells, const Columns& c) {
    TrainingResidue r;
    r.bmrb = std::atoi(field(cells, c["bmrb"]).c_str());
    r.entry =
        field(cells, c["bmrb"]) + ":" + field(cells, c["pdb"]) + ":" + field(cells, c["chain"]);
    r.resnum = std::atoi(field(cells, c["resnum"]).c_str());
    r.name = field(cells, c["resname"]);
    r.prev = field(cells, c["prev"]);
    r.next = field(cells, c["next"]);
    r.phi = numberOrNaN(field(cells, c["phi"]));
    r.psi = numberOrNaN(field(cells, c["psi"]));
    r.prevPsi = numberOrNaN(field(cells, c["prev_psi"]));
    r.nextPhi = numberOrNaN(field(cells, c["next_phi"]));
    for (int a = 0; a < kAtomKinds; a++) {
        r.shift[a] = numberOrNaN(field(cells, c[kAtomKindNames[a]]));
        r.randomCoil[a] = r.secondary[a] = NAN;
    }
    if (r.name == "GLY") orderGlycineProtons(&r);
    return r;
}

}  // namespace

std::vector<std::string> splitCsv(const std::string& line) {
    std::vector<std::string> cells(1);
    for (char c : line) {
        if (c == ',') {
            cells.emplace_back();
        } else if (c != '\r' && c != '\n') {
            cells.back() += c;
        }
    }
    return cells;
}

int readTraining(const char* path, std::vector<TrainingResidue>* residues) {
    std::ifstream in(path);
    std::string line;
    if (!in || !std::getline(in, line)) {
        std::fprintf(stderr, "make_surfaces: cannot read training set %s\n", path);
        return 1;
    }
    Columns columns;
    std::vector<std::string> names = splitCsv(line);
    for (int i = 0; i < static_cast<int>(names.size()); i++) columns.at[names[i]] = i;
    for (const char* needed : {"bmrb", "resnum", "resname", "phi", "psi"}) {
        if (columns[needed] < 0) {
            std::fprintf(stderr, "make_surfaces: no column %s in %s\n", needed, path);
            return 1;
        }
    }
    residues->clear();
    while (std::getline(in, line)) {
        if (line.empty()) continue;
        TrainingResidue r = residueOf(splitCsv(line), columns);
        if (r.name.empty() || std::isnan(r.phi) || std::isnan(r.psi)) continue;
        residues->push_back(r);
    }
    findSecondNeighbours(residues);
    return 0;
}

void findSecondNeighbours(std::vector<TrainingResidue>* residues) {
    std::map<std::pair<std::string, int>, const TrainingResidue*> byNumber;
    for (const TrainingResidue& r : *residues) byNumber[{r.entry, r.resnum}] = &r;
    auto nameAt = [&](const TrainingResidue& r, int step) -> std::string {
        auto found = byNumber.find({r.entry, r.resnum + step});
        return found == byNumber.end() ? "" : found->second->name;
    };
    for (TrainingResidue& r : *residues) {
        r.prev2 = r.prev.empty() ? "" : nameAt(r, -2);
        r.next2 = r.next.empty() ? "" : nameAt(r, 2);
    }
}

std::string shiftClass(const TrainingResidue& r) {
    return r.name != "GLY" && r.next == "PRO" ? "xPRO" : r.name;
}

std::string conformationClass(const TrainingResidue& r) {
    return r.name != "GLY" && r.name != "PRO" && r.next == "PRO" ? "xPRO" : r.name;
}
