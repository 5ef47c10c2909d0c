#include "tools/dcplot/table_input.h"

#include <cstdio>
#include <cstring>

#include "tools/dcplot/panel.h"
#include "util/fixed_text.h"

namespace {

constexpr float kMissingAbove = 900.0f;
constexpr float kNullValue = 9999.0f;

}  // namespace

int readPlotTable(const char* path, TableRows* t) {
    *t = TableRows{};
    FILE* probe = std::fopen(path, "r");
    if (!probe) {
        std::fprintf(stderr, "dcplot Error: cannot open %s.\n", path);
        return 1;
    }
    std::fclose(probe);
    t->hdr = hdrInit();
    if (!t->hdr) return 1;
    if (rdTable2(path, &t->values, &t->columns, &t->rows, &t->vars, t->hdr, kNullValue, 0, 1) !=
        0) {
        t->release();
        *t = TableRows{};
        std::fprintf(stderr, "dcplot Error: %s is not a readable table.\n", path);
        return 1;
    }
    return 0;
}

int numericColumn(const TableRows& t, const char* name, const char* path) {
    int column = getTabVar(t.vars, t.columns, name);
    if (column < 0 || t.vars[column].type != kTabText) return column;
    std::fprintf(stderr, "dcplot Error: column %s of %s is not numeric.\n", name, path);
    return -2;
}

bool isMeasured(float value) { return isPlottable(value) && value <= kMissingAbove; }

void headerValue(const TableRows& t, const char* name, char* text, int size) {
    copyText(text, size, getTabData(t.hdr, name));
    for (int end = static_cast<int>(std::strlen(text)); end > 0; end--) {
        char c = text[end - 1];
        if (c != ' ' && c != '\t' && c != '\r') break;
        text[end - 1] = '\0';
    }
}

const char* baseName(const char* path) {
    const char* slash = std::strrchr(path, '/');
    return slash ? slash + 1 : path;
}
