#include <fcntl.h>
#include <strings.h>
#include <unistd.h>

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "tools/search_shards/shards.h"

namespace {

const char kAllocationLine[] = "REMARK Memory Allocation Status.";
const char kReadError[] = "DC Error Reading PDB File ";

bool readWhole(const std::string& path, std::string* text) {
    FILE* in = std::fopen(path.c_str(), "rb");
    if (!in) return false;
    text->clear();
    char buffer[65536];
    for (size_t n; (n = std::fread(buffer, 1, sizeof buffer, in)) > 0;) text->append(buffer, n);
    std::fclose(in);
    return true;
}

std::vector<std::string> splitLines(const std::string& text) {
    std::vector<std::string> lines;
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

inline bool isWhite(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

struct Token {
    size_t start, end;
};

std::vector<Token> tokensOf(const std::string& line) {
    std::vector<Token> tokens;
    size_t i = 0;
    while (i < line.size()) {
        while (i < line.size() && isWhite(line[i])) i++;
        if (i >= line.size()) break;
        size_t start = i;
        while (i < line.size() && !isWhite(line[i])) i++;
        tokens.push_back({start, i});
    }
    return tokens;
}

bool isInteger(const std::string& text) {
    size_t i = text[0] == '-' ? 1 : 0;
    if (i >= text.size()) return false;
    for (; i < text.size(); i++)
        if (!std::isdigit(static_cast<unsigned char>(text[i]))) return false;
    return true;
}

// Rewrites the right-aligned integer field (at least width columns) that
// ends with token t as value + offset.
void shiftField(std::string* line, const Token& t, int width, int offset) {
    int value = std::atoi(line->substr(t.start, t.end - t.start).c_str()) + offset;
    size_t length = t.end - t.start;
    size_t field = length > static_cast<size_t>(width) ? length : static_cast<size_t>(width);
    char text[32];
    std::snprintf(text, sizeof text, "%*d", width, value);
    line->replace(t.end - field, field, text);
}

// A per-file summary line: name, five integers, then Da and Dr in %e.
bool isSummary(const std::string& line, std::vector<Token>* tokens) {
    *tokens = tokensOf(line);
    if (tokens->size() != 13) return false;
    for (int i = 1; i <= 5; i++)
        if (!isInteger(line.substr((*tokens)[i].start, (*tokens)[i].end - (*tokens)[i].start)))
            return false;
    for (int i = 6; i <= 7; i++)
        if (line.substr((*tokens)[i].start, (*tokens)[i].end - (*tokens)[i].start).find('e') ==
            std::string::npos)
            return false;
    return true;
}

// One shard's output, checked and with its file indices moved on by offset.
struct Shard {
    int entries = 0;
    int filesRead = 0;
    int status = 0;
    int firstIndex = 1;                 // the file index its search started at
    std::string report;                 // path of the shard's report
    std::vector<std::string> messages;  // standard error lines, in order
    std::vector<bool> isSummary;
};

int countEntries(const std::string& dir) {
    std::string list;
    if (!readWhole(dir + "/list", &list)) return -1;
    return static_cast<int>(splitLines(list).size());
}

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

// The end of token number n (from 0) of the text from p to end, its start in
// *start; null when the text has fewer tokens.
const char* nthToken(const char* p, const char* end, int n, const char** start) {
    for (int t = 0; p < end; t++) {
        while (p < end && isBlank(*p)) p++;
        if (p >= end) break;
        *start = p;
        while (p < end && !isBlank(*p)) p++;
        if (t == n) return p;
    }
    return nullptr;
}

// Writes one text line of a report body (with its newline, if any) with
// its file index moved on by offset. The index is the second value of a
// row, and a row starts each text line after the first one's four trailing
// values of the row before; only the "%5d" index field is rewritten.
void writeRowLine(FILE* out, const std::string& line, bool first, int offset) {
    const char* p = line.data();
    const char* stop = p + line.size();
    const char* start = nullptr;
    const char* e = offset == 0 ? nullptr : nthToken(p, stop, first ? 1 : 5, &start);
    if (!e) {
        std::fwrite(p, 1, line.size(), out);
        return;
    }
    long length = e - start;
    const char* field = e - (length > 5 ? length : 5);
    std::fwrite(p, 1, static_cast<size_t>(field - p), out);
    std::fprintf(out, "%5d", std::atoi(start) + offset);
    std::fwrite(e, 1, static_cast<size_t>(stop - e), out);
}

// Reads one line with its newline (none at the end of the file) into line;
// false at the end of the file.
bool readLine(FILE* in, std::string* line) {
    line->clear();
    char buffer[4096];
    while (std::fgets(buffer, sizeof buffer, in)) {
        line->append(buffer);
        if (!line->empty() && line->back() == '\n') return true;
    }
    return !line->empty();
}

// Copies the bytes of in from offset on to out, in the kernel where it can.
void copyRest(int in, off_t offset, int out) {
    loff_t from = offset;
    for (;;) {
        ssize_t n = copy_file_range(in, &from, out, nullptr, 1 << 30, 0);
        if (n > 0) continue;
        if (n == 0) return;
        break;  // not between these files: copy by hand
    }
    char buffer[1 << 16];
    for (ssize_t n; (n = pread(in, buffer, sizeof buffer, from)) > 0; from += n) {
        for (ssize_t done = 0; done < n;) {
            ssize_t w = write(out, buffer + done, static_cast<size_t>(n - done));
            if (w <= 0) return;
            done += w;
        }
    }
}

// A shard whose indices are already right: its header (when none was
// written yet) and its rows as they stand.
void copyReport(FILE* out, const std::string& path, bool* headerDone) {
    int in = open(path.c_str(), O_RDONLY);
    if (in < 0) return;
    char head[1 << 16];
    ssize_t n = pread(in, head, sizeof head, 0);
    off_t body = 0;
    if (n >= 4 && std::memcmp(head, "VARS", 4) == 0) {
        const void* blank = memmem(head, static_cast<size_t>(n), "\n\n", 2);
        body = blank ? static_cast<const char*>(blank) - head + 2 : n;
        if (!*headerDone) std::fwrite(head, 1, static_cast<size_t>(body), out);
        *headerDone = true;
    }
    std::fflush(out);
    copyRest(in, body, fileno(out));
    close(in);
}

// Streams a shard's report to out: its header (the VARS and FORMAT lines
// and the blank line) only when no header was written yet, then its rows
// with their file indices moved on by offset.
void writeReport(FILE* out, const std::string& path, int offset, bool* headerDone) {
    FILE* in = std::fopen(path.c_str(), "r");
    if (!in) return;
    std::string line;
    bool inHeader = false, firstLine = true, firstRowLine = true;
    while (readLine(in, &line)) {
        if (firstLine && line.compare(0, 4, "VARS") == 0) inHeader = true;
        firstLine = false;
        if (inHeader) {
            if (!*headerDone) std::fwrite(line.data(), 1, line.size(), out);
            if (line == "\n") {
                inHeader = false;
                *headerDone = true;
            }
            continue;
        }
        writeRowLine(out, line, firstRowLine, offset);
        firstRowLine = false;
    }
    std::fclose(in);
}

// Reads shard k; false (after naming it) when it did not run to its end.
bool readShard(const std::string& work, int k, Shard* s) {
    std::string dir = shardDir(work, k), err, status;
    FILE* in = nullptr;
    s->entries = countEntries(dir);
    const char* why = nullptr;
    if (s->entries < 0)
        why = "no list";
    else if (!readWhole(dir + "/status", &status) || status.empty())
        why = "no exit status";
    else if (!readWhole(dir + "/stderr.txt", &err))
        why = "no standard error file";
    else if (err.find(kAllocationLine) == std::string::npos)
        why = "its search did not finish";
    else if (!(in = std::fopen((dir + "/report.txt").c_str(), "r")))
        why = "no report";
    if (in) std::fclose(in);
    if (why) {
        std::fprintf(stderr, "dc-search-merge Error: shard %d (%s) failed: %s.\n", k, dir.c_str(),
                     why);
        return false;
    }
    s->status = std::atoi(status.c_str());
    s->report = dir + "/report.txt";
    std::string first;
    if (readWhole(dir + "/first_index", &first) && std::atoi(first.c_str()) > 0)
        s->firstIndex = std::atoi(first.c_str());
    int readErrors = 0;
    for (const std::string& line : splitLines(err)) {
        if (line.compare(0, sizeof kAllocationLine - 1, kAllocationLine) == 0) continue;
        if (line.compare(0, sizeof kReadError - 1, kReadError) == 0) readErrors++;
        std::vector<Token> tokens;
        s->isSummary.push_back(isSummary(line, &tokens));
        s->messages.push_back(line);
    }
    // The blank line before the allocation line ends every run's output.
    while (!s->messages.empty() && s->messages.back().empty()) {
        s->messages.pop_back();
        s->isSummary.pop_back();
    }
    s->filesRead = s->entries - readErrors;
    return true;
}

struct Output {
    FILE* stream = nullptr;
    bool owned = false;
};

Output openOutput(const std::string& name) {
    if (name.empty()) return {stdout, false};
    if (strcasecmp(name.c_str(), "None") == 0) return {nullptr, false};
    FILE* f = std::fopen(name.c_str(), "w");
    if (!f) {
        std::fprintf(stderr, "DC Error opening output file %s\n", name.c_str());
        return {stdout, false};
    }
    return {f, true};
}

// The first shard's report, right as it stands, becomes the output file
// itself (renamed, not copied) when both lie on one file system; the rest
// is appended. False (output untouched) when it cannot be moved.
bool moveFirstReport(Output* out, const std::string& report, const std::string& outName,
                     bool* headerDone) {
    char head[4] = {0, 0, 0, 0};
    FILE* in = std::fopen(report.c_str(), "r");
    if (!in) return false;
    size_t n = std::fread(head, 1, sizeof head, in);
    std::fclose(in);
    std::fclose(out->stream);
    bool moved = std::rename(report.c_str(), outName.c_str()) == 0;
    // Opened for update, not append, so that the kernel can copy into it.
    out->stream = std::fopen(outName.c_str(), moved ? "r+" : "w");
    if (out->stream && moved) std::fseek(out->stream, 0, SEEK_END);
    if (!out->stream) {
        out->owned = false;
        return moved;
    }
    if (moved) *headerDone = n == 4 && std::memcmp(head, "VARS", 4) == 0;
    return moved;
}

}  // namespace

int mergeShards(const std::string& work, int n, const std::string& outName, bool consume) {
    std::vector<Shard> shards(static_cast<size_t>(n));
    for (int k = 1; k <= n; k++)
        if (!readShard(work, k, &shards[static_cast<size_t>(k - 1)])) return 1;
    Output out = openOutput(outName);
    bool headerDone = false;
    bool firstMoved = consume && out.owned && shards[0].firstIndex == 1 &&
                      moveFirstReport(&out, shards[0].report, outName, &headerDone);
    int offset = 0, status = 0;
    for (Shard& s : shards) {
        // The shard numbered its files from firstIndex; the whole list's
        // search reaches it at offset + 1.
        int shift = offset + 1 - s.firstIndex;
        bool moved = firstMoved && &s == &shards[0];
        if (out.stream && !moved && shift == 0)
            copyReport(out.stream, s.report, &headerDone);
        else if (out.stream && !moved)
            writeReport(out.stream, s.report, shift, &headerDone);
        for (size_t i = 0; i < s.messages.size(); i++) {
            std::string line = s.messages[i];
            if (s.isSummary[i]) {
                if (out.stream == stdout) continue;
                std::vector<Token> tokens = tokensOf(line);
                int shift = offset + 1 - s.firstIndex;
                if (shift != 0) shiftField(&line, tokens[1], 4, shift);
            }
            std::fprintf(stderr, "%s\n", line.c_str());
        }
        offset += s.filesRead;
        if (s.entries > 0) status = s.status;
    }
    if (out.owned) std::fclose(out.stream);
    return status;
}
