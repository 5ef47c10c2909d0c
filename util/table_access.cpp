// Looking up columns and reading or setting single values of a table.
#include <strings.h>

#include <cstdio>
#include <cstdlib>

#include "util/table.h"
#include "util/table_format.h"
#include "util/token.h"

int getTabVar(const TabVar* vars, int columns, const char* name) {
    if (!vars || !name) return -1;
    for (int c = columns - 1; c >= 0; c--) {
        if (vars[c].name && strcasecmp(vars[c].name, name) == 0) return c;
    }
    return -1;
}

int getTabVal(const float* row, const TabVar* vars, int column, char* text, int size) {
    if (!text || size < 1) return 1;
    if (row && vars && column >= 0 &&
        printTabField(text, size, vars + column, row[column], nullptr) == 0) {
        return 0;
    }
    std::snprintf(text, size, "???");
    return 1;
}

char* fmtTabVar(const float* row, const TabVar* vars, int column, char* text, int size) {
    if (!text || size < 1) return text;
    if (!row || !vars || column < 0 ||
        printTabField(text, size, vars + column, row[column], nullptr) != 0) {
        std::snprintf(text, size, "(Null)");
    }
    return text;
}

int setTabVal(float* row, TabVar* vars, int column, const char* text) {
    if (!row || !vars || column < 0 || !text || cntToken(text) < 1) return 1;
    TabVar* var = vars + column;
    const char* token = getToken(1, text);
    char* end = nullptr;
    switch (var->type) {
        case kTabInt: {
            long value = std::strtol(token, &end, 10);
            if (end == token) return 1;
            row[column] = static_cast<float>(static_cast<int>(value));
            return 0;
        }
        case kTabReal: {
            float value = std::strtof(token, &end);
            if (end == token) return 1;
            row[column] = value;
            return 0;
        }
        case kTabText: {
            int index = mapText(var, token);
            if (index < 0) return 1;
            row[column] = static_cast<float>(index);
            return 0;
        }
        default: return 1;
    }
}
