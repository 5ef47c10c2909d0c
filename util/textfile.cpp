#include "util/textfile.h"

#include <strings.h>

#include <cstring>

#include "util/alloc.h"
#include "util/growstr.h"

namespace {

constexpr int kListGrowth = 256;

void dropNewline(char* line) {
    std::size_t length = std::strlen(line);
    if (length > 0 && line[length - 1] == '\n') line[length - 1] = '\0';
}

struct LineList {
    char** items = nullptr;
    int count = 0;
    int capacity = 0;

    bool append(const char* line) {
        if (count + 1 >= capacity) {
            int grown = capacity + kListGrowth;
            void* block = voidReMalloc64("rdText", items, static_cast<int64_t>(grown) * 8,
                                         static_cast<int64_t>(capacity) * 8);
            if (!block) return false;
            items = static_cast<char**>(block);
            capacity = grown;
        }
        char* copy = strDup(line);
        if (!copy) return false;
        items[count++] = copy;
        items[count] = nullptr;
        return true;
    }

    void discard() {
        for (int i = 0; i < count; i++) strFree(items[i]);
        if (items) unAlloc64("rdText", items, static_cast<int64_t>(capacity) * 8);
        items = nullptr;
        count = capacity = 0;
    }
};

// Reads lines into list until end of file or the stop text; false on memory failure.
bool readLines(FILE* stream, LineList& list, const char* stopText, int echo) {
    char fixed[1024];
    char chunk[1024];
    char* line;
    int capacity = sizeof fixed;
    strAllocInit(&line, fixed, sizeof fixed);
    bool ok = true;
    while (fgetsAlloc(&line, &capacity, stream, chunk, sizeof chunk, fixed, sizeof fixed)) {
        if (echo) std::fputs(line, stderr);
        dropNewline(line);
        if (!list.append(line)) {
            ok = false;
            break;
        }
        if (stopText && strcasecmp(line, stopText) == 0) break;
    }
    strAllocFree(&line, fixed, sizeof fixed, &capacity);
    return ok;
}

}  // namespace

char** rdText2(FILE* stream, int* lineCount, const char* stopText, int echo, int* status) {
    if (lineCount) *lineCount = 0;
    if (status) *status = -1;
    if (!stream) return nullptr;
    LineList list;
    if (!readLines(stream, list, stopText, echo)) {
        list.discard();
        return nullptr;
    }
    int count = list.count;
    if (count == 0) {
        // An empty list still ends with its null entry.
        char** empty = static_cast<char**>(voidMalloc64("rdText", 8));
        if (!empty) return nullptr;
        empty[0] = nullptr;
        if (status) *status = 0;
        return empty;
    }
    void* block = voidReMalloc64("rdText", list.items, (static_cast<int64_t>(count) + 1) * 8,
                                 static_cast<int64_t>(list.capacity) * 8);
    if (!block) {
        list.discard();
        return nullptr;
    }
    if (lineCount) *lineCount = count;
    if (status) *status = 0;
    return static_cast<char**>(block);
}

char** rdText(const char* path, int* lineCount, int* status) {
    if (lineCount) *lineCount = 0;
    if (status) *status = -1;
    FILE* stream = path ? std::fopen(path, "r") : nullptr;
    if (!stream) return nullptr;
    char** list = rdText2(stream, lineCount, nullptr, 0, status);
    std::fclose(stream);
    return list;
}

void freeText(char** list) {
    if (!list) return;
    int count = 0;
    while (list[count]) strFree(list[count++]);
    unAlloc64("rdText", list, (static_cast<int64_t>(count) + 1) * 8);
}

char* rdTextC(const char* path, int* lineCount, long* bytes, int* status) {
    if (lineCount) *lineCount = 0;
    if (bytes) *bytes = 0;
    if (status) *status = -1;
    int count = 0;
    char** lines = rdText(path, &count, status);
    if (!lines) return nullptr;
    long total = 0;
    for (int i = 0; i < count; i++) total += static_cast<long>(std::strlen(lines[i])) + 1;
    char* block = charMalloc64("rdText", total > 0 ? total : 1);
    if (!block) {
        freeText(lines);
        if (status) *status = -1;
        return nullptr;
    }
    char* end = block;
    for (int i = 0; i < count; i++) {
        std::size_t length = std::strlen(lines[i]) + 1;
        std::memcpy(end, lines[i], length);
        end += length;
    }
    freeText(lines);
    if (lineCount) *lineCount = count;
    if (bytes) *bytes = total > 0 ? total : 1;
    if (status) *status = 0;
    return block;
}

void freeTextC(char* block, long bytes) { unAlloc64("rdText", block, bytes); }

int cntText(const char* path, int* count) {
    if (count) *count = 0;
    FILE* stream = path ? std::fopen(path, "r") : nullptr;
    if (!stream) return 1;
    int lines = 0;
    int c;
    while ((c = std::fgetc(stream)) != EOF) {
        if (c == '\n') lines++;
    }
    std::fclose(stream);
    if (count) *count = lines;
    return 0;
}

char** buildList(int count) {
    if (count < 0) return nullptr;
    char** list =
        static_cast<char**>(voidMalloc64("rdText", (static_cast<int64_t>(count) + 1) * 8));
    if (!list) return nullptr;
    for (int i = 0; i <= count; i++) list[i] = nullptr;
    for (int i = 0; i < count; i++) {
        list[i] = static_cast<char*>(voidMallocNull64("rdText", 1024));
        if (!list[i]) {
            freeList(list, i);
            return nullptr;
        }
    }
    return list;
}

void freeList(char** list, int count) {
    if (!list) return;
    for (int i = 0; i < count; i++) unAlloc64("rdText", list[i], 1024);
    unAlloc64("rdText", list, (static_cast<int64_t>(count) + 1) * 8);
}
