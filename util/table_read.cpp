// Reading table files. The reader makes two passes over the file: the first
// classifies and counts the lines and keeps the VARS, FORMAT and TOLERANCE
// lines, the second converts every data line straight into the matrix. Lines
// of any length are read; ordinary ones never leave a stack buffer, and no
// number costs a heap block.
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "util/alloc.h"
#include "util/growstr.h"
#include "util/table.h"
#include "util/table_format.h"
#include "util/token.h"

namespace {

constexpr int kLineBuffer = 1024;

// Whole lines without their newline; a line longer than the stack buffer
// moves to a heap block that is released with the reader.
class LineReader {
  public:
    explicit LineReader(FILE* stream) : stream_(stream) {
        strAllocInit(&line_, fixed_, sizeof fixed_);
    }
    ~LineReader() { strAllocFree(&line_, fixed_, sizeof fixed_, &capacity_); }
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

    // The next line, or null at the end of the file or after a failure.
    char* next() {
        if (!fgetsAlloc(&line_, &capacity_, stream_, chunk_, sizeof chunk_, fixed_,
                        sizeof fixed_)) {
            return nullptr;
        }
        lineNumber_++;
        std::size_t length = std::strlen(line_);
        if (length > 0 && line_[length - 1] == '\n') line_[length - 1] = '\0';
        return line_;
    }
    // The number, from 1, of the line next() gave last.
    int lineNumber() const { return lineNumber_; }
    // After next() gave null: true when a longer line could not be stored.
    bool outOfMemory() const { return !std::feof(stream_) && !std::ferror(stream_); }
    bool readError() const { return std::ferror(stream_) != 0; }
    void rewind() {
        std::rewind(stream_);
        lineNumber_ = 0;
    }

  private:
    FILE* stream_;
    char fixed_[kLineBuffer];
    char chunk_[kLineBuffer];
    char* line_ = nullptr;
    int capacity_ = kLineBuffer;
    int lineNumber_ = 0;
};

struct FileCloser {
    FILE* file;
    ~FileCloser() {
        if (file) std::fclose(file);
    }
};

struct Span {
    const char* start;
    int length;
};

// The token at or after *p, advancing *p past it; length 0 when none is left.
Span nextToken(const char** p) {
    const char* s = *p;
    while (*s && isWhiteChar(*s)) s++;
    const char* start = s;
    while (*s && !isWhiteChar(*s)) s++;
    *p = s;
    return Span{start, static_cast<int>(s - start)};
}

bool spanIs(Span span, const char* word) {
    return std::strncmp(span.start, word, span.length) == 0 && word[span.length] == '\0';
}

char upperAscii(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

bool spanIsUpper(Span span, const char* word) {
    for (int i = 0; i < span.length; i++) {
        if (upperAscii(span.start[i]) != word[i]) return false;
    }
    return word[span.length] == '\0';
}

// A first token that marks a header, keyword or comment line, in any case.
bool isKeywordToken(Span first) {
    static const char* const kKeywords[] = {"REMARK",     "FORMAT",    "VARS", "TOLERANCE",
                                            "NULLSTRING", "NULLVALUE", "DATA", "END"};
    if (first.start[0] == '#') return true;
    // Most data lines start with a digit or a sign: no keyword starts so.
    if (!std::strchr("RFVTNDE", upperAscii(first.start[0]))) return false;
    for (const char* keyword : kKeywords) {
        if (spanIsUpper(first, keyword)) return true;
    }
    return false;
}

enum class LineKind { kBlank, kVars, kFormat, kTolerance, kNullValue, kNullString, kData, kOther };

LineKind classify(const char* line, Span* first) {
    const char* p = line;
    *first = nextToken(&p);
    if (first->length == 0) return LineKind::kBlank;
    if (spanIs(*first, "VARS")) return LineKind::kVars;
    if (spanIs(*first, "FORMAT")) return LineKind::kFormat;
    if (spanIs(*first, "TOLERANCE")) return LineKind::kTolerance;
    if (spanIs(*first, "NULLVALUE")) return LineKind::kNullValue;
    if (spanIs(*first, "NULLSTRING")) return LineKind::kNullString;
    return isKeywordToken(*first) ? LineKind::kOther : LineKind::kData;
}

// Header lines kept for the caller: comments, DATA and REMARK in any case.
bool isHeaderToken(Span first) {
    return first.start[0] == '#' || spanIsUpper(first, "DATA") || spanIsUpper(first, "REMARK");
}

char* dupSpan(Span span) {
    char* copy = charMalloc64("strDup", static_cast<int64_t>(span.length) + 1);
    if (!copy) return nullptr;
    std::memcpy(copy, span.start, span.length);
    copy[span.length] = '\0';
    return copy;
}

// What the first pass learns; the kept lines are scratch copies.
struct TableScan {
    char* vars = nullptr;
    char* format = nullptr;
    char* tolerance = nullptr;
    char* nullString = nullptr;
    int nullValue = kTabNullDefault;
    bool hasNullValue = false;
    int dataLines = 0;

    TableScan() = default;
    TableScan(const TableScan&) = delete;
    TableScan& operator=(const TableScan&) = delete;
    ~TableScan() {
        strFree(vars);
        strFree(format);
        strFree(tolerance);
        strFree(nullString);
    }
};

// Keeps the first line of its kind; false when the copy fails.
bool keepFirst(char** kept, const char* line) {
    if (*kept) return true;
    *kept = strDup(line);
    return *kept != nullptr;
}

bool scanLine(const char* line, TableScan* scan) {
    Span first;
    switch (classify(line, &first)) {
        case LineKind::kVars: return keepFirst(&scan->vars, line);
        case LineKind::kFormat: return keepFirst(&scan->format, line);
        case LineKind::kTolerance: return keepFirst(&scan->tolerance, line);
        case LineKind::kNullValue: {
            const char* p = first.start + first.length;
            Span value = nextToken(&p);
            char* end = nullptr;
            long number = value.length ? std::strtol(value.start, &end, 10) : 0;
            if (value.length && end != value.start) {
                scan->nullValue = static_cast<int>(number);
                scan->hasNullValue = true;
            }
            return true;
        }
        case LineKind::kNullString: {
            const char* p = first.start + first.length;
            Span value = nextToken(&p);
            if (!value.length) return true;
            char* copy = dupSpan(value);
            if (!copy) return false;
            strFree(scan->nullString);
            scan->nullString = copy;
            return true;
        }
        case LineKind::kData:
            // The row count is an int: a file with more data lines cannot be held.
            if (scan->dataLines == INT_MAX) {
                std::fprintf(stderr, "RdTable error allocating data matrix.\n");
                return false;
            }
            scan->dataLines++;
            return true;
        default: return true;
    }
}

// First pass; 1 after a message when the file cannot be read through.
int scanTable(const char* path, LineReader& reader, TableScan* scan) {
    while (const char* line = reader.next()) {
        if (!scanLine(line, scan)) return 1;
    }
    if (reader.outOfMemory()) return 1;
    if (reader.readError()) {
        std::fprintf(stderr, "RdTable File open error: %s.\n", path);
        return 1;
    }
    return 0;
}

// Token cursor over a kept keyword line, past its keyword; none when absent.
struct LineTokens {
    const char* p = nullptr;
    Span next() {
        if (!p) return Span{"", 0};
        return nextToken(&p);
    }
};

LineTokens tokensAfterKeyword(const char* line) {
    LineTokens tokens{line};
    if (line) tokens.next();
    return tokens;
}

// Fills one column from its VARS, FORMAT and TOLERANCE tokens.
int buildColumn(TabVar* var, Span name, Span format, Span tolerance, const TableScan& scan) {
    var->name = dupSpan(name);
    if (!var->name) {
        std::fprintf(stderr, "RdTable Error allocating var name.\n");
        std::fprintf(stderr, "Name: %.*s\n", name.length, name.start);
        return 1;
    }
    var->format = format.length ? dupSpan(format) : strDup("%f");
    if (!var->format) {
        std::fprintf(stderr, "RdTable Error allocating var format.\n");
        std::fprintf(stderr, "Format: %.*s\n", format.length, format.start);
        return 1;
    }
    fmtFromFile(var->format);
    var->type = getTabVarType(var->format);
    if (!var->type) {
        std::fprintf(stderr, "RdTable Error: bad format %s\n", scan.format);
        return 1;
    }
    var->tolerance = tolerance.length ? std::strtof(tolerance.start, nullptr) : 0.0f;
    return 0;
}

// The column descriptions from the kept lines; 1 after a message.
int buildColumns(const TableScan& scan, TabVar** varsOut, int* columnsOut) {
    int columns = scan.vars ? cntToken(scan.vars) - 1 : 0;
    if (columns < 1) {
        std::fprintf(stderr, "RdTable Error: no variables found.\n");
        return 1;
    }
    bool hasFormat = scan.format && cntToken(scan.format) >= 2;
    if (hasFormat && cntToken(scan.format) != columns + 1) {
        std::fprintf(stderr, "RdTable Error: VARS/FORMAT mismatch:\n");
        std::fprintf(stderr, "%s\n%s\n", scan.vars, scan.format);
        return 1;
    }
    bool hasTolerance = scan.tolerance && cntToken(scan.tolerance) >= 2;
    if (hasTolerance && cntToken(scan.tolerance) != columns + 1) {
        std::fprintf(stderr, "RdTable Error: VARS/TOLERANCE mismatch:\n");
        std::fprintf(stderr, "%s\n%s\n", scan.vars, scan.tolerance);
        return 1;
    }
    auto* vars = static_cast<TabVar*>(
        voidMallocNull64("table", static_cast<int64_t>(columns) * sizeof(TabVar)));
    if (!vars) {
        std::fprintf(stderr, "RdTable Error allocating variable info.\n");
        return 1;
    }
    LineTokens names = tokensAfterKeyword(scan.vars);
    LineTokens formats = tokensAfterKeyword(hasFormat ? scan.format : nullptr);
    LineTokens tolerances = tokensAfterKeyword(hasTolerance ? scan.tolerance : nullptr);
    for (int c = 0; c < columns; c++) {
        if (buildColumn(vars + c, names.next(), formats.next(), tolerances.next(), scan)) {
            freeTab(nullptr, vars, columns, 0);
            return 1;
        }
    }
    *varsOut = vars;
    *columnsOut = columns;
    return 0;
}

uint32_t hashSpan(Span span) {
    uint32_t h = 2166136261u;
    for (int i = 0; i < span.length; i++) {
        h = (h ^ static_cast<unsigned char>(span.start[i])) * 16777619u;
    }
    return h;
}

bool textIs(const char* text, Span span) {
    return std::strncmp(text, span.start, span.length) == 0 && text[span.length] == '\0';
}

// Appends a copy of span to the column's texts, whose list has room for
// capacity entries; a full list grows by doubling, or by exactly one entry
// with exact set. -1 after a message when memory runs out.
int appendText(TabVar* var, Span span, int* capacity, bool exact) {
    int count = var->textCount;
    if (count + 2 > *capacity) {
        int grown = exact ? count + 2 : (*capacity < 8 ? 8 : *capacity * 2);
        void* list = voidReMalloc64("mapText", var->texts, static_cast<int64_t>(grown) * 8,
                                    static_cast<int64_t>(*capacity) * 8);
        if (!list) {
            std::printf("MapText error allocating equiv list.");
            return -1;
        }
        var->texts = static_cast<char**>(list);
        *capacity = grown;
    }
    char* copy = charMalloc64("mapText", static_cast<int64_t>(span.length) + 1);
    if (!copy) {
        std::printf("MapText error allocating equiv text.");
        return -1;
    }
    std::memcpy(copy, span.start, span.length);
    copy[span.length] = '\0';
    var->texts[count] = copy;
    var->texts[count + 1] = nullptr;
    var->textCount = count + 1;
    return count;
}

// Finds a text column's texts by hash while a file is read, so that a column
// of many distinct texts does not make reading quadratic. Meanwhile the
// column's list grows by doubling; finish() trims it to its exact size
// (textCount + 1 entries), which is what freeTab expects. Zero bytes are an
// empty index.
struct TextIndex {
    int* slots;
    int slotCount;
    int listCapacity;

    int find(TabVar* var, Span span) {
        if ((var->textCount + 1) * 2 > slotCount && !rehash(var)) return -1;
        uint32_t mask = static_cast<uint32_t>(slotCount - 1);
        for (uint32_t h = hashSpan(span) & mask;; h = (h + 1) & mask) {
            int index = slots[h];
            if (index < 0) {
                index = appendText(var, span, &listCapacity, false);
                if (index >= 0) slots[h] = index;
                return index;
            }
            if (textIs(var->texts[index], span)) return index;
        }
    }

    bool rehash(const TabVar* var) {
        int grown = slotCount < 16 ? 16 : slotCount * 2;
        int* fresh = intMalloc64("mapText", grown);
        if (!fresh) {
            std::printf("MapText error allocating equiv list.");
            return false;
        }
        for (int i = 0; i < grown; i++) fresh[i] = -1;
        uint32_t mask = static_cast<uint32_t>(grown - 1);
        for (int t = 0; t < var->textCount; t++) {
            const char* text = var->texts[t];
            uint32_t h = hashSpan(Span{text, static_cast<int>(std::strlen(text))}) & mask;
            while (fresh[h] >= 0) h = (h + 1) & mask;
            fresh[h] = t;
        }
        unAlloc64("mapText", slots, static_cast<int64_t>(slotCount) * 4);
        slots = fresh;
        slotCount = grown;
        return true;
    }

    // Releases the index and trims the list; false when trimming failed, in
    // which case the column's texts are released.
    bool finish(TabVar* var) {
        unAlloc64("mapText", slots, static_cast<int64_t>(slotCount) * 4);
        slots = nullptr;
        slotCount = 0;
        int exact = var->textCount + 1;
        if (!var->texts || listCapacity == exact) return true;
        void* list = voidReMalloc64("mapText", var->texts, static_cast<int64_t>(exact) * 8,
                                    static_cast<int64_t>(listCapacity) * 8);
        if (list) {
            var->texts = static_cast<char**>(list);
            return true;
        }
        for (int t = 0; t < var->textCount; t++) strFree2("mapText", var->texts[t]);
        unAlloc64("mapText", var->texts, static_cast<int64_t>(listCapacity) * 8);
        var->texts = nullptr;
        var->textCount = 0;
        return false;
    }
};

// Integer cells beyond this magnitude cannot be a residue number, index or
// count: they are refused rather than stored in a float that cannot hold
// them exactly.
constexpr long kLargestInteger = 999999999;

// Converts data lines into rows.
struct RowParser {
    TabVar* vars;
    int columns;
    float nullReplacement;
    const TableScan* scan;
    TextIndex* indexes;
    const char* path;
    int lineNumber = 0;
    bool badNumber = false;

    float refuse(Span token) {
        std::fprintf(stderr, "RdTable Error: bad number %.*s in line %d of %s.\n", token.length,
                     token.start, lineNumber, path);
        badNumber = true;
        return 0.0f;
    }

    void warn(const char* kind, int column, const char* line) const {
        std::fprintf(stderr, "RdTable Warning: Bad %s-Item %d:\n%s\n", kind, column + 1, line);
    }

    float readInt(Span token, int column, const char* line) {
        char* end = nullptr;
        long value = token.length ? std::strtol(token.start, &end, 10) : 0;
        if (!token.length || end == token.start) {
            warn("I", column, line);
            return 0.0f;
        }
        if (scan->hasNullValue && value == scan->nullValue) return nullReplacement;
        if (value > kLargestInteger || value < -kLargestInteger) return refuse(token);
        return static_cast<float>(value);
    }

    float readReal(Span token, int column, const char* line) {
        char* end = nullptr;
        float value = token.length ? std::strtof(token.start, &end) : 0.0f;
        if (!token.length || end == token.start) {
            warn("F", column, line);
            return 0.0f;
        }
        if (!std::isfinite(value)) return refuse(token);
        if (scan->hasNullValue && value == static_cast<float>(scan->nullValue)) {
            return nullReplacement;
        }
        return value;
    }

    // false after a message when the text could not be stored.
    bool readText(Span token, int column, const char* line, float* cell) {
        if (!token.length) {
            warn("T", column, line);
            *cell = static_cast<float>(scan->nullValue);
            return true;
        }
        if (scan->nullString && textIs(scan->nullString, token)) {
            *cell = static_cast<float>(scan->nullValue);
            return true;
        }
        int index = indexes[column].find(vars + column, token);
        if (index < 0) {
            std::fprintf(stderr, "RdTable Error mapping text.\n");
            return false;
        }
        *cell = static_cast<float>(index);
        return true;
    }

    // 0, or 1 after a message.
    int parse(const char* line, int number, float* row) {
        lineNumber = number;
        const char* p = line;
        for (int c = 0; c < columns; c++) {
            Span token = nextToken(&p);
            switch (vars[c].type) {
                case kTabInt: row[c] = readInt(token, c, line); break;
                case kTabReal: row[c] = readReal(token, c, line); break;
                case kTabText:
                    if (!readText(token, c, line, row + c)) return 1;
                    break;
                default: std::fprintf(stderr, "RdTable Error: bad vartype.\n"); return 1;
            }
            if (badNumber) return 1;
        }
        return 0;
    }
};

// Second pass: rows into values, header lines onto hdr; 1 after a message.
int readRows(LineReader& reader, RowParser& parser, float* values, int rows, TabHeader* hdr) {
    TabHeader* tail = hdr;
    while (tail && tail->text) tail = tail->next;
    int row = 0;
    while (const char* line = reader.next()) {
        Span first;
        LineKind kind = classify(line, &first);
        if (kind == LineKind::kData) {
            if (row == rows) continue;  // the file grew since the first pass
            float* cells = values + static_cast<int64_t>(row) * parser.columns;
            if (parser.parse(line, reader.lineNumber(), cells)) return 1;
            row++;
        } else if (tail && kind == LineKind::kOther && isHeaderToken(first)) {
            if (addHdrLine(line, tail)) return 1;
            tail = tail->next;
        }
    }
    if (reader.outOfMemory()) return 1;
    for (; row < rows; row++) {
        std::memset(values + static_cast<int64_t>(row) * parser.columns, 0,
                    sizeof(float) * parser.columns);
    }
    return 0;
}

// Reads the rows into a new matrix; 1 after a message.
int readMatrix(const char* path, LineReader& reader, const TableScan& scan, TabVar* vars,
               int columns, TabHeader* hdr, float nullReplacement, float** matrixOut) {
    int rows = scan.dataLines;
    float* matrix = fltMalloc64("table", static_cast<int64_t>(rows) * columns);
    if (!matrix) {
        std::fprintf(stderr, "RdTable error allocating data matrix.\n");
        return 1;
    }
    auto* indexes = static_cast<TextIndex*>(
        voidMallocNull64("mapText", static_cast<int64_t>(columns) * sizeof(TextIndex)));
    if (!indexes) {
        std::fprintf(stderr, "RdTable Error mapping text.\n");
        unAlloc64("table", matrix, static_cast<int64_t>(rows) * columns * 4);
        return 1;
    }
    RowParser parser{vars, columns, nullReplacement, &scan, indexes, path};
    reader.rewind();
    int status = readRows(reader, parser, matrix, rows, hdr);
    for (int c = 0; c < columns; c++) {
        if (!indexes[c].finish(vars + c)) status = 1;
    }
    unAlloc64("mapText", indexes, static_cast<int64_t>(columns) * sizeof(TextIndex));
    if (status) {
        unAlloc64("table", matrix, static_cast<int64_t>(rows) * columns * 4);
        return 1;
    }
    *matrixOut = matrix;
    return 0;
}

}  // namespace

int rdTable2(const char* path, float** values, int* columns, int* rows, TabVar** vars,
             TabHeader* hdr, float nullValue, int allowEmpty, int readData) {
    if (values) *values = nullptr;
    if (columns) *columns = 0;
    if (rows) *rows = 0;
    if (vars) *vars = nullptr;
    if (!columns || !rows || !vars || (readData && !values)) return 1;

    FILE* file = path ? std::fopen(path, "r") : nullptr;
    if (!file) {
        std::fprintf(stderr, "RdTable File open error: %s.\n", path ? path : "");
        return 1;
    }
    FileCloser closer{file};
    LineReader reader(file);
    TableScan scan;
    if (scanTable(path, reader, &scan)) return 1;
    if (scan.dataLines == 0) {
        if (allowEmpty) return 0;
        std::fprintf(stderr, "RdTable Error: no entries in %s\n", path);
        return 1;
    }
    TabVar* newVars = nullptr;
    int newColumns = 0;
    if (buildColumns(scan, &newVars, &newColumns)) return 1;
    float* matrix = nullptr;
    if (readData && readMatrix(path, reader, scan, newVars, newColumns, hdr, nullValue, &matrix)) {
        freeTab(nullptr, newVars, newColumns, 0);
        return 1;
    }
    if (values) *values = matrix;
    *columns = newColumns;
    *rows = scan.dataLines;
    *vars = newVars;
    return 0;
}

int rdTable(const char* path, float** values, int* columns, int* rows, TabVar** vars,
            float nullValue) {
    return rdTable2(path, values, columns, rows, vars, nullptr, nullValue, 0, 1);
}

int rdTable2(const char* path, TabData* table, TabHeader* hdr, float nullValue, int allowEmpty,
             int readData) {
    if (!table) return 1;
    return rdTable2(path, &table->values, &table->columns, &table->rows, &table->vars, hdr,
                    nullValue, allowEmpty, readData);
}

int isDataLine(const char* line) {
    if (!line) return 0;
    const char* p = line;
    Span first = nextToken(&p);
    return first.length > 0 && !isKeywordToken(first);
}

int cntDataLine(const char* path, int* count) {
    if (count) *count = 0;
    FILE* file = path ? std::fopen(path, "r") : nullptr;
    if (!file) {
        std::fprintf(stderr, "CntDataLine File open error: %s\n", path ? path : "");
        return 1;
    }
    FileCloser closer{file};
    LineReader reader(file);
    int lines = 0;
    while (const char* line = reader.next()) lines += isDataLine(line);
    if (count) *count = lines;
    return reader.outOfMemory() ? 1 : 0;
}

int mapText(TabVar* var, const char* text) {
    if (!var || !text) return -1;
    for (int t = 0; t < var->textCount; t++) {
        if (std::strcmp(var->texts[t], text) == 0) return t;
    }
    int capacity = var->texts ? var->textCount + 1 : 0;
    return appendText(var, Span{text, static_cast<int>(std::strlen(text))}, &capacity, true);
}
