// Writing table files: the header lines, the column description lines, the
// null markers and one line per row.
#include <cstdio>
#include <cstring>

#include "util/alloc.h"
#include "util/table.h"
#include "util/table_format.h"

namespace {

constexpr int kFieldSize = 1024;

void writeHeaderLines(FILE* out, const TabHeader* hdr) {
    for (; hdr && hdr->text; hdr = hdr->next) std::fprintf(out, "%s\n", hdr->text);
}

void writeFormatToken(FILE* out, const char* format) {
    for (const char* p = format ? format : ""; *p; p++) std::fputc(*p == ' ' ? '_' : *p, out);
}

void writeColumnLines(FILE* out, const TabVar* vars, int columns) {
    std::fputs("VARS   ", out);
    for (int c = 0; c < columns; c++) {
        std::fprintf(out, c ? " %s" : "%s", vars[c].name ? vars[c].name : "");
    }
    std::fputs("\nFORMAT ", out);
    for (int c = 0; c < columns; c++) {
        if (c) std::fputc(' ', out);
        writeFormatToken(out, vars[c].format);
    }
    std::fputc('\n', out);
    bool anyTolerance = false;
    for (int c = 0; c < columns; c++) anyTolerance = anyTolerance || vars[c].tolerance != 0.0f;
    if (anyTolerance) {
        std::fputs("TOLERANCE ", out);
        for (int c = 0; c < columns; c++) {
            std::fprintf(out, c ? " %5.2f" : "%5.2f", static_cast<double>(vars[c].tolerance));
        }
        std::fputc('\n', out);
    }
}

bool skipRow(const float* row, int columns, int skipFlag, int skipColumn) {
    return skipFlag && skipColumn >= 0 && skipColumn < columns && row[skipColumn] < 0.0f;
}

// Writes one row; 0, 1 after a bad text (field left out) or 2 after an
// unknown column type (writing must stop).
int writeRow(FILE* out, const float* row, int r, const TabVar* vars, int columns, int nullValue) {
    char field[kFieldSize];
    int status = 0;
    bool first = true;
    for (int c = 0; c < columns; c++) {
        int result = printTabField(field, sizeof field, vars + c, row[c], &nullValue);
        if (result == 2) {
            std::fprintf(stderr, "WrTable Error: bad type.\n");
            std::fprintf(stderr, "Entry %d, %d\n", r, vars[c].type);
            return 2;
        }
        if (result == 1) {
            std::fprintf(stderr, "WrTable Error: bad text.\n");
            std::fprintf(stderr, "Entry %d, ID %d\n", r, tabFloatToInt(row[c]));
            status = 1;
            continue;
        }
        if (!first) std::fputc(' ', out);
        std::fputs(field, out);
        first = false;
    }
    std::fputc('\n', out);
    return status;
}

}  // namespace

int wrTable2(const char* path, const float* values, int columns, int rows, const TabVar* vars,
             int nullValue, const TabHeader* hdr, int skipFlag, int skipColumn) {
    bool toStdout = path && std::strcmp(path, "-") == 0;
    FILE* out = toStdout ? stdout : (path ? std::fopen(path, "w") : nullptr);
    if (!out) {
        std::fprintf(stderr, "File open error: %s\n", path ? path : "");
        return 1;
    }
    if (columns < 0 || (columns > 0 && !vars)) columns = 0;
    if (rows < 0 || !values || columns == 0) rows = 0;
    writeHeaderLines(out, hdr);
    writeColumnLines(out, vars, columns);
    std::fprintf(out, "\nNULLVALUE %d\nNULLSTRING %s\n\n", nullValue, "*");
    int status = 0;
    for (int r = 0; r < rows; r++) {
        const float* row = values + static_cast<int64_t>(r) * columns;
        if (skipRow(row, columns, skipFlag, skipColumn)) continue;
        int result = writeRow(out, row, r, vars, columns, nullValue);
        if (result) status = 1;
        if (result == 2) break;
    }
    bool failed = std::ferror(out) != 0;
    if (toStdout) {
        failed = std::fflush(out) != 0 || failed;
    } else {
        failed = std::fclose(out) != 0 || failed;
    }
    if (failed) {
        std::fprintf(stderr, "WrTable Error writing %s\n", path);
        status = 1;
    }
    return status;
}

int wrTable(const char* path, const float* values, int columns, int rows, const TabVar* vars,
            int nullValue, const TabHeader* hdr) {
    return wrTable2(path, values, columns, rows, vars, nullValue, hdr, 0, 0);
}

int wrTableN(const char* path, const float* values, int columns, int rows, const char* prefix,
             const char* format, int nullValue, const TabHeader* hdr, float tolerance) {
    if (columns < 0) columns = 0;
    auto* vars = static_cast<TabVar*>(
        voidMallocNull64("table", static_cast<int64_t>(columns) * sizeof(TabVar)));
    if (!vars) {
        std::fprintf(stderr, "WrTableN Error allocating variable info.\n");
        return 1;
    }
    int status = 0;
    char name[kFieldSize];
    for (int c = 0; c < columns && !status; c++) {
        std::snprintf(name, sizeof name, "%s%d", prefix ? prefix : "", c + 1);
        vars[c] = TabVar{kTabReal, tolerance, strDup(name), nullptr, 0, nullptr};
        if (!vars[c].name) {
            std::fprintf(stderr, "WrTableN Error allocating variable name.\n");
            status = 1;
            break;
        }
        vars[c].format = strDup(format ? format : "%f");
        if (!vars[c].format) {
            std::fprintf(stderr, "WrTableN Error allocating variable format.\n");
            status = 1;
        }
    }
    if (!status) status = wrTable(path, values, columns, rows, vars, nullValue, hdr);
    freeTab(nullptr, vars, columns, 0);
    return status;
}
