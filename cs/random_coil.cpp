#include "cs/random_coil.h"

#include <strings.h>

#include <cstdio>
#include <cstring>

#include "util/symtab.h"
#include "util/table.h"
#include "util/table_format.h"
#include "util/table_rows.h"

namespace {

constexpr float kTableNull = 999999.0f;
constexpr float kNotFound = 9999.0f;
constexpr int kKeySize = 4 * kNameSize + 16;

HSymTab* rcTable = nullptr;

// "residue,atom,type,offset", every name cut to a record name so that the
// table's names and a caller's match the same way.
void makeKey(char (&key)[kKeySize], const char* residue, const char* atom, const char* type,
             int offset) {
    char r[kNameSize], a[kNameSize], t[kNameSize];
    copyName(r, residue);
    copyName(a, atom);
    copyName(t, type);
    std::snprintf(key, sizeof key, "%s,%s,%s,%d", r, a, t, offset);
}

struct Columns {
    int resname, atomname, type, offset, shift;
};

bool findColumns(const TabVar* vars, int columns, Columns* c) {
    c->resname = getTabVar(vars, columns, "RESNAME");
    c->atomname = getTabVar(vars, columns, "ATOMNAME");
    c->type = getTabVar(vars, columns, "TYPE");
    c->offset = getTabVar(vars, columns, "OFFSET");
    c->shift = getTabVar(vars, columns, "SHIFT");
    if (c->resname < 0 || c->atomname < 0) {
        std::fprintf(stderr, "TESSERA RC Error: missing RESNAME/ATOMNAME.\n");
        return false;
    }
    if (c->shift < 0 || c->type < 0 || c->offset < 0) {
        std::fprintf(stderr, "TESSERA RC Error: missing SHIFT/TYPE/OFFSET.\n");
        return false;
    }
    return true;
}

// Stores every row under its key: 0, or 1 when a symbol cannot be made.
int storeRows(const float* values, int columns, int rows, const TabVar* vars, const Columns& c,
              HSymTab* table) {
    char residue[kNameSize], atom[kNameSize], type[kNameSize], key[kKeySize];
    for (int r = 0; r < rows; r++) {
        const float* row = values + static_cast<long>(r) * columns;
        tabCellName(vars, row, c.resname, residue);
        tabCellName(vars, row, c.atomname, atom);
        tabCellName(vars, row, c.type, type);
        makeKey(key, residue, atom, type, tabFloatToInt(row[c.offset]));
        if (hSetSymFlt(key, row[c.shift], table)) return 1;
    }
    return 0;
}

int readTable(const char* path, HSymTab** out) {
    float* values = nullptr;
    TabVar* vars = nullptr;
    int columns = 0, rows = 0;
    if (rdTable2(path, &values, &columns, &rows, &vars, nullptr, kTableNull, 0, 1)) return 1;
    Columns c;
    int status = findColumns(vars, columns, &c) ? 0 : 1;
    HSymTab* table = status ? nullptr : hSymTabAlloc(0);
    if (!status && (!table || storeRows(values, columns, rows, vars, c, table))) {
        std::fprintf(stderr, "CSURF Error creating secondary shift table.\n");
        hSymTabFree(table);
        table = nullptr;
        status = 1;
    }
    freeTab(values, vars, columns, rows);
    *out = table;
    return status;
}

bool isGlycine(const char* name) {
    return strcasecmp(name, "G") == 0 || strcasecmp(name, "GLY") == 0;
}

bool present(const char* name) { return name && name[0]; }

// Adds the entry of (residue, atom, type, offset) to *value when it exists.
bool addEntry(const char* residue, const char* atom, const char* type, int offset, float* value) {
    if (!present(residue)) return false;
    char key[kKeySize];
    makeKey(key, residue, atom, type, offset);
    float entry;
    if (!hGetSymFlt(key, rcTable, &entry)) return false;
    *value += entry;
    return true;
}

}  // namespace

int surfReadRC(const char* path) {
    rcFree();
    return readTable(path, &rcTable);
}

int rcLoaded() { return rcTable != nullptr; }

int getRandCoilShift(const char* prev2, const char* prev, const char* centre, const char* next,
                     const char* next2, const char* atom, float* value, int flag) {
    *value = kNotFound;
    if (!rcTable || !present(centre) || !atom) return 0;
    if (flag == 0 && isGlycine(centre) && std::strcmp(atom, "HA1") == 0) atom = "HA3";
    float sum = 0.0f;
    if (!addEntry(centre, atom, "RC", 0, &sum)) return 0;
    addEntry(centre, atom, "ADJ", 0, &sum);
    addEntry(prev2, atom, "ADJ", -2, &sum);
    addEntry(prev, atom, "ADJ", -1, &sum);
    addEntry(next, atom, "ADJ", 1, &sum);
    addEntry(next2, atom, "ADJ", 2, &sum);
    *value = sum;
    return 1;
}

void rcFree() {
    hSymTabFree(rcTable);
    rcTable = nullptr;
}
