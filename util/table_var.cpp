// Column descriptions of tables: adding, changing, widening and freeing.
#include <cstdio>
#include <cstring>

#include "util/alloc.h"
#include "util/table.h"

namespace {

int64_t varBytes(int columns) { return static_cast<int64_t>(columns) * sizeof(TabVar); }

void freeTexts(TabVar* var) {
    if (!var->texts) return;
    for (int i = 0; i < var->textCount; i++) strFree2("mapText", var->texts[i]);
    unAlloc64("mapText", var->texts, (static_cast<int64_t>(var->textCount) + 1) * 8);
    var->texts = nullptr;
    var->textCount = 0;
}

}  // namespace

int addTabVar(TabVar** vars, int* columns, const char* name, const char* format, int type,
              float tolerance) {
    if (!vars || !columns || *columns < 0) return 1;
    int count = *columns;
    char* newName = strDup(name);
    if (!newName) {
        std::fprintf(stderr, "AddTabVar Error reallocating variable name.\n");
        return 1;
    }
    char* newFormat = strDup(format);
    if (!newFormat) {
        std::fprintf(stderr, "AddTabVar Error reallocating variable format.\n");
        strFree(newName);
        return 1;
    }
    void* grown = voidReMalloc64("table", *vars, varBytes(count + 1), varBytes(count));
    if (!grown) {
        std::fprintf(stderr, "Error reallocating table variables.\n");
        strFree(newName);
        strFree(newFormat);
        return 1;
    }
    *vars = static_cast<TabVar*>(grown);
    (*vars)[count] = TabVar{type, tolerance, newName, newFormat, 0, nullptr};
    *columns = count + 1;
    return 0;
}

int chTabVar(TabVar* var, const char* name, const char* format, int type, float tolerance) {
    if (!var) return 1;
    char* newName = strDup(name);
    if (!newName) {
        std::fprintf(stderr, "ChTabVar Error allocating NAME.\n");
        return 1;
    }
    char* newFormat = strDup(format);
    if (!newFormat) {
        std::fprintf(stderr, "ChTabVar Error allocating FMT.\n");
        strFree(newName);
        return 1;
    }
    strFree(var->name);
    strFree(var->format);
    var->name = newName;
    var->format = newFormat;
    var->type = type;
    var->tolerance = tolerance;
    return 0;
}

int addMatVar(float** values, int rows, int oldColumns, int added) {
    if (!values || rows < 0 || oldColumns < 0 || added < 0) return 1;
    int newColumns = oldColumns + added;
    int64_t cells = static_cast<int64_t>(rows) * newColumns;
    float* wide = fltMalloc64("table", cells);
    if (!wide) return 1;
    const float* old = *values;
    for (int64_t r = 0; r < rows; r++) {
        float* to = wide + r * newColumns;
        if (old && oldColumns > 0)
            std::memcpy(to, old + r * oldColumns, oldColumns * sizeof(float));
        for (int c = oldColumns; c < newColumns; c++) to[c] = 0.0f;
    }
    unAlloc64("table", *values, static_cast<int64_t>(rows) * oldColumns * 4);
    *values = wide;
    return 0;
}

void freeTab(float* values, TabVar* vars, int columns, int rows) {
    unAlloc64("table", values, static_cast<int64_t>(rows) * columns * 4);
    if (!vars) return;
    for (int c = 0; c < columns; c++) {
        strFree(vars[c].name);
        strFree(vars[c].format);
        freeTexts(vars + c);
    }
    unAlloc64("table", vars, varBytes(columns));
}

void freeTab(TabData* table) {
    if (!table) return;
    freeTab(table->values, table->vars, table->columns, table->rows);
    *table = TabData{nullptr, 0, 0, nullptr};
}
