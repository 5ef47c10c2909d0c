#include "tools/surfaces/random_coil.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "pdb/residue_types.h"
#include "tools/surfaces/training_set.h"
#include "util/alloc.h"
#include "util/symtab.h"
#include "util/table.h"

namespace {

// The neighbour positions of the CSV's correction columns, in their order.
constexpr int kOffsets[4] = {-2, -1, 1, 2};

std::string key(const std::string& residue, const std::string& atom, const char* type, int offset) {
    return residue + "," + atom + "," + type + "," + std::to_string(offset);
}

void addRow(RandomCoilTable* table, const std::string& residue, const std::string& atom,
            const char* type, int offset, float shift) {
    table->rows.push_back({residue, atom, type, offset, shift});
    hSetSymFlt(key(residue, atom, type, offset).c_str(), shift, table->symbols);
}

// The atom names a CSV atom is given under: glycine's alpha protons are HA2
// and HA3 in shift tables, so HA values serve them too.
std::vector<std::string> namesOf(const std::string& atom) {
    if (atom == "HA") return {"HA", "HA2", "HA3"};
    return {atom};
}

bool lookup(const RandomCoilTable& table, const std::string& k, float* value) {
    return hGetSymFlt(k.c_str(), table.symbols, value) == 1;
}

}  // namespace

int readRandomCoil(const char* path, RandomCoilTable* table) {
    std::ifstream in(path);
    std::string line;
    if (!in || !std::getline(in, line)) {
        std::fprintf(stderr, "make_surfaces: cannot read random-coil table %s\n", path);
        return 1;
    }
    table->symbols = hSymTabAlloc(0);
    if (!table->symbols) return 1;
    while (std::getline(in, line)) {
        std::vector<std::string> cells = splitCsv(line);
        if (cells.size() < 7) continue;
        const std::string& residue = cells[0];
        for (const std::string& atom : namesOf(cells[1])) {
            // Only glycine has alpha protons named HA2 and HA3 of its own.
            bool alphaCopy = atom == "HA2" || atom == "HA3";
            if (!cells[2].empty() && (!alphaCopy || residue == "G")) {
                addRow(table, residue, atom, "RC", 0, std::strtof(cells[2].c_str(), nullptr));
            }
            for (int k = 0; k < 4; k++) {
                if (cells[3 + k].empty()) continue;
                addRow(table, residue, atom, "ADJ", kOffsets[k],
                       std::strtof(cells[3 + k].c_str(), nullptr));
            }
        }
    }
    return 0;
}

void freeRandomCoil(RandomCoilTable* table) {
    if (table->symbols) hSymTabFree(table->symbols);
    table->symbols = nullptr;
    table->rows.clear();
}

int writeRandomCoil(const char* path, const RandomCoilTable& table) {
    TabVar* vars = nullptr;
    int columns = 0;
    addTabVar(&vars, &columns, "RESNAME", "%-4s", kTabText, 0.0f);
    addTabVar(&vars, &columns, "ATOMNAME", "%-4s", kTabText, 0.0f);
    addTabVar(&vars, &columns, "TYPE", "%-3s", kTabText, 0.0f);
    addTabVar(&vars, &columns, "OFFSET", "%2d", kTabInt, 0.0f);
    addTabVar(&vars, &columns, "SHIFT", "%9.5f", kTabReal, 0.0f);
    int rows = static_cast<int>(table.rows.size());
    float* values = fltMalloc64("table", static_cast<int64_t>(rows) * columns);
    for (int r = 0; r < rows; r++) {
        const RandomCoilRow& row = table.rows[r];
        float* cells = values + static_cast<int64_t>(r) * columns;
        cells[0] = static_cast<float>(mapText(vars + 0, row.residue.c_str()));
        cells[1] = static_cast<float>(mapText(vars + 1, row.atom.c_str()));
        cells[2] = static_cast<float>(mapText(vars + 2, row.type.c_str()));
        cells[3] = static_cast<float>(row.offset);
        cells[4] = row.shift;
    }
    TabHeader* hdr = hdrInit();
    addHdrLine("REMARK Random-coil shifts (type RC) and neighbour corrections (type ADJ: what",
               hdr);
    addHdrLine("REMARK a residue at OFFSET adds to the atom of the residue it neighbours), ppm.",
               hdr);
    addHdrLine(
        "REMARK Nielsen & Mulder, J. Biomol. NMR 70:141 (2018), tables under the MIT licence.",
        hdr);
    int status = wrTable(path, values, columns, rows, vars, -9999, hdr);
    freeHdr(hdr);
    freeTab(values, vars, columns, rows);
    return status;
}

float randomCoilShift(const RandomCoilTable& table, const std::string names[5], const char* atom) {
    float value;
    if (names[2].empty() || !lookup(table, key(names[2], atom, "RC", 0), &value)) return NAN;
    const int offsets[5] = {-2, -1, 0, 1, 2};
    for (int i = 0; i < 5; i++) {
        float correction;
        if (names[i].empty()) continue;
        if (lookup(table, key(names[i], atom, "ADJ", offsets[i]), &correction)) value += correction;
    }
    return value;
}

void setSecondaryShifts(const RandomCoilTable& table, TrainingResidue* r) {
    auto code = [](const std::string& name) -> std::string {
        if (name.empty()) return "";
        std::string one = getResName1(name.c_str());
        return one == "?" ? "" : one;
    };
    const std::string names[5] = {code(r->prev2), code(r->prev), code(r->name), code(r->next),
                                  code(r->next2)};
    for (int a = 0; a < kAtomKinds; a++) {
        r->randomCoil[a] = randomCoilShift(table, names, kAtomKindNames[a]);
        r->secondary[a] = r->shift[a] - r->randomCoil[a];  // NaN when either is missing
    }
}
