#include "util/growstr.h"

#include <cstring>

#include "util/alloc.h"

namespace {

// Makes room for a text of the given length (terminator excluded).
bool reserve(char** str, int length, char* buffer, int* current, const char* who) {
    if (*current > length + 2) return true;
    int grown = *current + 1024;
    if (grown <= length + 2) grown = length + 1026;
    char* block;
    if (*str == buffer) {
        block = charMalloc64("str", grown);
        if (!block) {
            std::fprintf(stderr, "%s Error: alloc failed.\n", who);
            return false;
        }
        std::memcpy(block, buffer, std::strlen(buffer) + 1);
    } else {
        block = charReMalloc64("str", *str, grown, *current);
        if (!block) {
            std::fprintf(stderr, "%s Error: realloc failed.\n", who);
            return false;
        }
    }
    *str = block;
    *current = grown;
    return true;
}

struct ScratchText {
    char fixed[1024] = {0};
    char* heap = nullptr;
    int heapSize = 0;
};

ScratchText scratch;

}  // namespace

void strAllocInit(char** str, char* buffer, int capacity) {
    *str = buffer;
    if (buffer && capacity > 0) buffer[0] = '\0';
}

char* strcatAlloc(char** str, const char* text, char* buffer, int capacity, int* current) {
    if (!str || !*str || !text || !current) {
        std::fprintf(stderr, "StrCatAlloc Error: Null pointer.\n");
        return nullptr;
    }
    int oldLength = static_cast<int>(std::strlen(*str));
    int addLength = static_cast<int>(std::strlen(text));
    if (!reserve(str, oldLength + addLength, buffer, current, "StrCatAlloc")) return nullptr;
    std::memcpy(*str + oldLength, text, addLength + 1);
    return *str;
}

char* strcpyAlloc(char** str, const char* text, char* buffer, int capacity, int* current) {
    if (!str || !*str || !text || !current) {
        std::fprintf(stderr, "StrCpyAlloc Error: Null pointer.\n");
        return nullptr;
    }
    int length = static_cast<int>(std::strlen(text));
    if (!reserve(str, length, buffer, current, "StrCpyAlloc")) return nullptr;
    std::memmove(*str, text, length + 1);
    return *str;
}

char* strpcatAlloc(char** str, const char* text, char* buffer, int capacity, int* current) {
    if (!str || !*str || !text || !current) {
        std::fprintf(stderr, "StrPCatAlloc Error: Null pointer.\n");
        return nullptr;
    }
    int oldLength = static_cast<int>(std::strlen(*str));
    int addLength = static_cast<int>(std::strlen(text));
    if (!reserve(str, oldLength + addLength, buffer, current, "StrPCatAlloc")) return nullptr;
    std::memmove(*str + addLength, *str, oldLength + 1);
    std::memcpy(*str, text, addLength);
    return *str;
}

char* fgetsAlloc(char** str, int* current, FILE* stream, char* chunk, int chunkSize, char* buffer,
                 int capacity) {
    if (!str || !*str || !current || !stream || !chunk) {
        std::fprintf(stderr, "FGetSAlloc Error: Null pointer.\n");
        return nullptr;
    }
    if (chunkSize < 3) {
        std::fprintf(stderr, "FGetSAlloc Error: Buffer too small.\n");
        return nullptr;
    }
    (*str)[0] = '\0';
    bool readAny = false;
    while (std::fgets(chunk, chunkSize, stream)) {
        readAny = true;
        if (!strcatAlloc(str, chunk, buffer, capacity, current)) return nullptr;
        if (std::strchr(chunk, '\n')) break;
    }
    return readAny ? *str : nullptr;
}

void strAllocFree(char** str, char* buffer, int capacity, int* current) {
    if (str && *str && *str != buffer) unAlloc64("str", *str, *current);
    if (str) *str = buffer;
    if (current) *current = capacity;
}

char* ctempAlloc(int length) {
    if (length < static_cast<int>(sizeof scratch.fixed)) return scratch.fixed;
    if (length < scratch.heapSize) return scratch.heap;
    std::fprintf(stderr, "Expanding to %d\n", length);
    char* block = charMalloc64("ctemp", static_cast<int64_t>(length) + 1);
    if (!block) {
        std::fprintf(stderr, "CTempAlloc memory allocation error.\n");
        return scratch.fixed;
    }
    ctempFree();
    block[0] = '\0';
    scratch.heap = block;
    scratch.heapSize = length + 1;
    return block;
}

void ctempFree() {
    if (scratch.heap) unAlloc64("ctemp", scratch.heap, scratch.heapSize);
    scratch.heap = nullptr;
    scratch.heapSize = 0;
}
