#include "tools/dcplot/search_report.h"

#include <strings.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tools/dcplot/panel.h"
#include "util/fixed_text.h"

namespace {

constexpr int kNoColumn = -1;

struct ReportColumns {
    int count;
    int index, name, res1, rms, dN, dRes1, dResN;
};

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f';
}

// The whole file with a terminating zero; NUL bytes inside count as blanks.
int readWhole(const char* path, TrackedVector<char, "plotText">* text) {
    FILE* in = std::fopen(path, "rb");
    if (!in) {
        std::fprintf(stderr, "dcplot Error: cannot open %s.\n", path);
        return 1;
    }
    char chunk[8192];
    std::size_t got;
    while ((got = std::fread(chunk, 1, sizeof chunk, in)) > 0) {
        text->insert(text->end(), chunk, chunk + got);
    }
    bool failed = std::ferror(in) != 0;
    std::fclose(in);
    if (failed) {
        std::fprintf(stderr, "dcplot Error: cannot read %s.\n", path);
        return 1;
    }
    std::replace(text->begin(), text->end(), '\0', ' ');
    text->push_back('\0');
    return 0;
}

// Cuts the next token out of the text in place; null at the end.
char* nextToken(char** p) {
    char* s = *p;
    while (*s && isBlank(*s)) s++;
    if (!*s) {
        *p = s;
        return nullptr;
    }
    char* start = s;
    while (*s && !isBlank(*s)) s++;
    if (*s) *s++ = '\0';
    *p = s;
    return start;
}

bool firstWordIs(const char* line, const char* word) {
    std::size_t length = std::strlen(word);
    return strncasecmp(line, word, length) == 0 && (isBlank(line[length]) || !line[length]);
}

bool isHeaderLine(const char* line) {
    static const char* const kWords[] = {"FORMAT",    "TOLERANCE",  "REMARK", "DATA",
                                         "NULLVALUE", "NULLSTRING", "END"};
    if (*line == '#') return true;
    for (const char* word : kWords) {
        if (firstWordIs(line, word)) return true;
    }
    return false;
}

// Skips the header lines, keeping the names after VARS (cut in place);
// returns the start of the body. varsLine is null when there is no VARS line.
char* splitHeader(char* text, char** varsLine) {
    *varsLine = nullptr;
    char* line = text;
    while (*line) {
        char* end = std::strchr(line, '\n');
        char* first = line;
        while (first != end && *first && isBlank(*first)) first++;
        bool blank = first == end || !*first;
        if (!blank && !firstWordIs(first, "VARS") && !isHeaderLine(first)) return line;
        if (!blank && firstWordIs(first, "VARS") && !*varsLine) *varsLine = first + 4;
        if (!end) return line + std::strlen(line);
        *end = '\0';
        line = end + 1;
    }
    return line;
}

int findName(char* vars, const char* wanted) {
    int column = 0;
    for (const char* p = vars; *p; column++) {
        while (*p && isBlank(*p)) p++;
        if (!*p) break;
        const char* start = p;
        while (*p && !isBlank(*p)) p++;
        std::size_t length = static_cast<std::size_t>(p - start);
        if (length == std::strlen(wanted) && strncasecmp(start, wanted, length) == 0) {
            return column;
        }
    }
    return kNoColumn;
}

int countNames(const char* vars) {
    int count = 0;
    for (const char* p = vars; *p;) {
        while (*p && isBlank(*p)) p++;
        if (!*p) break;
        count++;
        while (*p && !isBlank(*p)) p++;
    }
    return count;
}

bool findColumns(char* vars, const char* path, ReportColumns* c) {
    c->count = countNames(vars);
    c->index = findName(vars, "INDEX");
    c->name = findName(vars, "P_NAME");
    c->res1 = findName(vars, "P_RES1");
    c->rms = findName(vars, "D_RMS");
    c->dN = findName(vars, "D_N");
    c->dRes1 = findName(vars, "D_RES1");
    c->dResN = findName(vars, "D_RESN");
    const char* names[] = {"INDEX", "P_NAME", "P_RES1", "D_RMS"};
    const int columns[] = {c->index, c->name, c->res1, c->rms};
    for (int i = 0; i < 4; i++) {
        if (columns[i] != kNoColumn) continue;
        std::fprintf(stderr, "dcplot Error: %s has no %s column.\n", path, names[i]);
        return false;
    }
    return true;
}

bool parseNumber(const char* token, const char* column, int row, const char* path, double* value) {
    char* end = nullptr;
    *value = std::strtod(token, &end);
    if (end != token && !*end && isPlottable(*value)) return true;
    std::fprintf(stderr, "dcplot Error: bad number %.40s for %s in row %d of %s.\n", token, column,
                 row, path);
    return false;
}

// Stores the value of one column of the current point.
bool takeValue(const ReportColumns& c, int column, char* token, int row, const char* path,
               SearchPoint* p, SearchReport* report) {
    double value;
    if (column == c.name) p->name = token;
    if (column == c.index) return parseNumber(token, "INDEX", row, path, &p->index);
    if (column == c.res1) return parseNumber(token, "P_RES1", row, path, &p->res1);
    if (column == c.rms) return parseNumber(token, "D_RMS", row, path, &p->rms);
    if (column == c.dN) {
        if (!parseNumber(token, "D_N", row, path, &value)) return false;
        p->dN = value > 0 ? 1 : 0;
    }
    if (row == 1 && column == c.dRes1) copyName(report->tableFirst, token);
    if (row == 1 && column == c.dResN) copyName(report->tableLast, token);
    return true;
}

int readBody(char* body, const ReportColumns& c, const char* path, SearchReport* report) {
    SearchPoint p{};
    p.dN = 1;
    int column = 0;
    for (char* token; (token = nextToken(&body)) != nullptr;) {
        int row = static_cast<int>(report->points.size()) + 1;
        if (!takeValue(c, column, token, row, path, &p, report)) return 1;
        if (++column < c.count) continue;
        p.row = row;
        report->points.push_back(p);
        p = SearchPoint{};
        p.dN = 1;
        column = 0;
    }
    if (column != 0) {
        std::fprintf(stderr, "dcplot Error: %s ends inside row %d (%d of %d values).\n", path,
                     static_cast<int>(report->points.size()) + 1, column, c.count);
        return 1;
    }
    if (report->points.empty()) {
        std::fprintf(stderr, "dcplot Error: %s has no rows.\n", path);
        return 1;
    }
    return 0;
}

bool sameStructure(const SearchPoint& a, const SearchPoint& b) {
    return a.index == b.index && std::strcmp(a.name, b.name) == 0;
}

bool structureBefore(const SearchPoint& a, const SearchPoint& b) {
    if (a.index != b.index) return a.index < b.index;
    return std::strcmp(a.name, b.name) < 0;
}

// Numbers the structures in the order the report first names them. Rows
// are grouped by sorting, so that a report of many structures stays quick.
void groupStructures(SearchReport* report) {
    auto& points = report->points;
    TrackedVector<int, "plotRows"> order(points.size());
    for (std::size_t i = 0; i < order.size(); i++) order[i] = static_cast<int>(i);
    std::stable_sort(order.begin(), order.end(),
                     [&](int a, int b) { return structureBefore(points[a], points[b]); });
    // Group starts in key order; stable sorting puts each group's first row first.
    TrackedVector<int, "plotRows"> starts;
    for (std::size_t i = 0; i < order.size(); i++) {
        if (i == 0 || !sameStructure(points[order[i - 1]], points[order[i]])) {
            starts.push_back(static_cast<int>(i));
        }
    }
    TrackedVector<int, "plotRows"> byFirstRow(starts.size());
    for (std::size_t g = 0; g < starts.size(); g++) byFirstRow[g] = static_cast<int>(g);
    std::sort(byFirstRow.begin(), byFirstRow.end(),
              [&](int a, int b) { return order[starts[a]] < order[starts[b]]; });
    TrackedVector<int, "plotRows"> number(starts.size());
    for (std::size_t k = 0; k < byFirstRow.size(); k++) number[byFirstRow[k]] = static_cast<int>(k);
    for (std::size_t k = 0; k < byFirstRow.size(); k++) {
        const SearchPoint& first = points[order[starts[byFirstRow[k]]]];
        report->structures.push_back(SearchStructure{first.index, first.name, 0, -1});
    }
    for (std::size_t g = 0, i = 0; g < starts.size(); g++) {
        std::size_t end = g + 1 < starts.size() ? starts[g + 1] : order.size();
        for (; i < end; i++) points[order[i]].structure = number[g];
    }
}

// The lowest D_RMS of each structure among its rows with couplings; the
// first such row on ties.
void findBest(SearchReport* report) {
    for (std::size_t i = 0; i < report->points.size(); i++) {
        const SearchPoint& p = report->points[i];
        SearchStructure& s = report->structures[p.structure];
        s.count++;
        if (!p.dN) continue;
        if (s.best < 0 || p.rms < report->points[s.best].rms) s.best = static_cast<int>(i);
    }
}

}  // namespace

int readSearchReport(const char* path, SearchReport* report) {
    if (readWhole(path, &report->text)) return 1;
    char* vars = nullptr;
    char* body = splitHeader(report->text.data(), &vars);
    if (!vars) {
        std::fprintf(stderr, "dcplot Error: %s has no VARS line.\n", path);
        return 1;
    }
    ReportColumns columns;
    if (!findColumns(vars, path, &columns)) return 1;
    if (readBody(body, columns, path, report)) return 1;
    groupStructures(report);
    findBest(report);
    return 0;
}
