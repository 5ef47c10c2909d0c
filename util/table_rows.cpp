#include "util/table_rows.h"

#include <cmath>
#include <cstdio>
#include <cstring>

#include "util/residue_number.h"
#include "util/table_format.h"

void tabCellName(const TabVar* vars, const float* row, int column, char (&name)[kNameSize]) {
    name[0] = '\0';
    const TabVar& var = vars[column];
    if (var.type == kTabText) {
        int index = tabTextIndex(&var, row[column]);
        if (index >= 0) copyName(name, var.texts[index]);
        return;
    }
    char text[1024];
    if (getTabVal(row, vars, column, text, sizeof text)) return;
    const char* start = text;
    while (*start == ' ') start++;
    copyName(name, start);
    for (int end = static_cast<int>(std::strlen(name)); end > 0 && name[end - 1] == ' '; end--) {
        name[end - 1] = '\0';
    }
}

bool integerCellsFit(const TableRows& t, int r, std::initializer_list<int> columns,
                     const char* fileName) {
    for (int column : columns) {
        if (column < 0) continue;
        float value = t.row(r)[column];
        if (std::fabs(value) <= static_cast<float>(kResidLimit)) continue;
        std::fprintf(stderr, "DC Error: bad number %g for %s in row %d of %s.\n",
                     static_cast<double>(value), t.vars[column].name, r + 1, fileName);
        return false;
    }
    return true;
}
