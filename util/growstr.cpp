#include "util/growstr.h"

#include <climits>
#include <cstdint>
#include <cstring>

#include "util/alloc.h"

namespace {

// The longest text a growable string holds: its capacity is an int.
constexpr int64_t kLongestText = INT_MAX - 1026;

// Makes room for a text of the given length (terminator excluded), keeping
// the first `keep` bytes when the text moves out of the caller's buffer.
// A string grows by 1024 bytes, or to the length and 1026 more; with
// doubling set it grows at least to twice its capacity, so that a text built
// up piece by piece is copied a bounded number of times whatever the
// allocator does with a growing block.
bool reserve(char** str, int64_t length, int keep, char* buffer, int* current, const char* who,
             bool doubling = false) {
    if (*current > length + 2) return true;
    if (length > kLongestText) {
        std::fprintf(stderr, "%s Error: alloc failed.\n", who);
        return false;
    }
    int64_t grown = static_cast<int64_t>(*current) + 1024;
    if (doubling && grown < 2 * static_cast<int64_t>(*current))
        grown = 2 * static_cast<int64_t>(*current);
    if (grown > kLongestText + 1026) grown = kLongestText + 1026;
    if (grown <= length + 2) grown = length + 1026;
    char* block;
    if (*str == buffer) {
        block = charMalloc64("str", grown);
        if (!block) {
            std::fprintf(stderr, "%s Error: alloc failed.\n", who);
            return false;
        }
        std::memcpy(block, buffer, keep);
        block[keep] = '\0';
    } else {
        block = charReMalloc64("str", *str, grown, *current);
        if (!block) {
            std::fprintf(stderr, "%s Error: realloc failed.\n", who);
            return false;
        }
    }
    *str = block;
    *current = static_cast<int>(grown);
    return true;
}

// Appends add bytes of text to a string of known length, growing it by
// doubling: the line reader's own buffer.
bool appendBytes(char** str, int64_t* length, const char* text, int add, char* buffer,
                 int* current) {
    if (!reserve(str, *length + add, static_cast<int>(*length), buffer, current, "StrCatAlloc",
                 true)) {
        return false;
    }
    std::memcpy(*str + *length, text, add);
    *length += add;
    (*str)[*length] = '\0';
    return true;
}

// Reads up to size - 1 bytes into chunk, stopping after a newline. Gives
// the number of bytes read, or size - 1 when a NUL byte hides where a read
// without a newline stopped (the text ends at that NUL either way); *newline
// tells whether the read ended with a newline. The chunk is cleared first,
// so that a newline found behind a NUL byte is one this read consumed.
int readChunk(FILE* stream, char* chunk, int size, bool* newline) {
    *newline = false;
    std::memset(chunk, 0, static_cast<size_t>(size));
    if (!std::fgets(chunk, size, stream)) return 0;
    size_t text = std::strlen(chunk);
    if (text > 0 && chunk[text - 1] == '\n') {
        *newline = true;
        return static_cast<int>(text);
    }
    const void* end = std::memchr(chunk + text, '\n', static_cast<size_t>(size - 1) - text);
    if (end) {
        *newline = true;
        return static_cast<int>(static_cast<const char*>(end) - chunk) + 1;
    }
    return size - 1;
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
    std::size_t oldLength = std::strlen(*str);
    std::size_t addLength = std::strlen(text);
    if (!reserve(str, static_cast<int64_t>(oldLength + addLength), static_cast<int>(oldLength),
                 buffer, current, "StrCatAlloc")) {
        return nullptr;
    }
    std::memcpy(*str + oldLength, text, addLength + 1);
    return *str;
}

char* strcpyAlloc(char** str, const char* text, char* buffer, int capacity, int* current) {
    if (!str || !*str || !text || !current) {
        std::fprintf(stderr, "StrCpyAlloc Error: Null pointer.\n");
        return nullptr;
    }
    int length = static_cast<int>(std::strlen(text));
    if (!reserve(str, length, 0, buffer, current, "StrCpyAlloc")) return nullptr;
    std::memmove(*str, text, length + 1);
    return *str;
}

char* strpcatAlloc(char** str, const char* text, char* buffer, int capacity, int* current) {
    if (!str || !*str || !text || !current) {
        std::fprintf(stderr, "StrPCatAlloc Error: Null pointer.\n");
        return nullptr;
    }
    std::size_t oldLength = std::strlen(*str);
    std::size_t addLength = std::strlen(text);
    if (!reserve(str, static_cast<int64_t>(oldLength + addLength), static_cast<int>(oldLength),
                 buffer, current, "StrPCatAlloc")) {
        return nullptr;
    }
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
    // The length is carried along, so a long line costs time in proportion
    // to its length. The text ends at a NUL byte; the rest of the line, up
    // to its newline, is read and dropped.
    int64_t length = 0;
    bool readAny = false, textEnded = false, newline = false;
    while (!newline) {
        int n = readChunk(stream, chunk, chunkSize, &newline);
        if (n == 0) break;
        readAny = true;
        if (textEnded) continue;
        int text = static_cast<int>(strnlen(chunk, n));
        textEnded = text < n;
        if (!appendBytes(str, &length, chunk, text, buffer, current)) return nullptr;
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
