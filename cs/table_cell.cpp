#include "cs/table_cell.h"

#include <cstring>

#include "util/table.h"
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
    for (int end = static_cast<int>(std::strlen(name)); end > 0 && name[end - 1] == ' '; end--)
        name[end - 1] = '\0';
}
