#include "cs/homology.h"

#include <cstdio>

#include "util/symtab.h"
#include "util/table.h"
#include "util/table_rows.h"

namespace {

// A null cell keeps this value, which the homology score leaves out (it
// counts only values up to 666666).
constexpr float kTableNull = 999999.0f;
constexpr float kMissing = 777777.0f;
constexpr int kKeySize = 2 * kNameSize + 2;

HSymTab* homoTable = nullptr;

// "nameA,nameB", each name cut to a record name.
void makeKey(char (&key)[kKeySize], const char* nameA, const char* nameB) {
    char a[kNameSize], b[kNameSize];
    copyName(a, nameA);
    copyName(b, nameB);
    std::snprintf(key, sizeof key, "%s,%s", a, b);
}

// Every numeric cell of every row under (row's RESNAME, column name); text
// columns other than RESNAME hold no values. 0, or 1 when a symbol cannot
// be made.
int storeRows(const float* values, int columns, int rows, const TabVar* vars, int resname,
              HSymTab* table) {
    char name[kNameSize], key[kKeySize];
    for (int r = 0; r < rows; r++) {
        const float* row = values + static_cast<long>(r) * columns;
        tabCellName(vars, row, resname, name);
        for (int c = 0; c < columns; c++) {
            if (c == resname || vars[c].type == kTabText) continue;
            makeKey(key, name, vars[c].name);
            if (hSetSymFlt(key, row[c], table)) return 1;
        }
    }
    return 0;
}

int readTable(const char* path, HSymTab** out) {
    float* values = nullptr;
    TabVar* vars = nullptr;
    int columns = 0, rows = 0;
    if (rdTable2(path, &values, &columns, &rows, &vars, nullptr, kTableNull, 1, 1)) return 1;
    int resname = getTabVar(vars, columns, "RESNAME");
    int status = 0;
    if (rows > 0 && resname < 0) {
        std::fprintf(stderr, "HOMO Error: missing RESNAME.\n");
        status = 1;
    }
    HSymTab* table = status ? nullptr : hSymTabAlloc(0);
    if (!status && (!table || storeRows(values, columns, rows, vars, resname, table))) {
        std::fprintf(stderr, "HOMO Error creating homology table.\n");
        hSymTabFree(table);
        table = nullptr;
        status = 1;
    }
    freeTab(values, vars, columns, rows);
    *out = table;
    return status;
}

}  // namespace

int surfReadHomo(const char* path) {
    homoFree();
    return readTable(path, &homoTable);
}

int getHomoVal(const char* nameA, const char* nameB, float* value) {
    *value = kMissing;
    if (!homoTable) return 0;
    char key[kKeySize];
    makeKey(key, nameA, nameB);
    return hGetSymFlt(key, homoTable, value);
}

int homoLoaded() { return homoTable != nullptr; }

void homoFree() {
    hSymTabFree(homoTable);
    homoTable = nullptr;
}
