#include "util/token.h"

#include <cstdio>
#include <cstring>

#include "util/alloc.h"

namespace {

// One shared result buffer: static while results fit, heap when they do not.
struct TokenBuffer {
    char fixed[1024] = {0};
    char* heap = nullptr;
    int64_t heapSize = 0;

    char* text() { return heap ? heap : fixed; }

    // Room for length characters plus the terminator, or null.
    char* reserve(int64_t length) {
        if (length < static_cast<int64_t>(sizeof fixed) && !heap) return fixed;
        if (length < heapSize) return heap;
        char* block = charMalloc64("token", length + 1);
        if (!block) {
            std::fprintf(stderr, "GetToken: Memory Allocation Failure.\n");
            return nullptr;
        }
        release();
        heap = block;
        heapSize = length + 1;
        return heap;
    }

    void release() {
        if (heap) unAlloc64("token", heap, heapSize);
        heap = nullptr;
        heapSize = 0;
    }

    char* store(const char* start, int64_t length) {
        char* out = reserve(length);
        if (!out) return clear();
        std::memmove(out, start, length);
        out[length] = '\0';
        return out;
    }

    char* clear() {
        char* out = text();
        out[0] = '\0';
        return out;
    }
};

struct TokenizerState {
    TokenBuffer plain, quoted, custom, joined;
    int bad = 0;
};

TokenizerState tok;

struct Span {
    const char* start;
    int64_t length;
};

// The next token at or after *p split at white space, advancing *p past it;
// length -1 when the line has no more tokens.
Span nextPlain(const char** p) {
    const char* q = *p;
    while (*q && isWhiteChar(*q)) q++;
    if (!*q) return {nullptr, -1};
    const char* start = q;
    while (*q && !isWhiteChar(*q)) q++;
    *p = q;
    return {start, q - start};
}

// Finds token n (1-based) split at white space; length -1 when absent.
Span findPlain(int n, const char* line) {
    if (!line || n < 1) return {nullptr, -1};
    const char* p = line;
    for (int i = 1;; i++) {
        Span span = nextPlain(&p);
        if (span.length < 0 || i == n) return span;
    }
}

bool isSeparator(char c, const char* separators) { return c && std::strchr(separators, c); }

Span nextCustom(const char** p, const char* separators) {
    const char* q = *p;
    while (*q && isSeparator(*q, separators)) q++;
    if (!*q) return {nullptr, -1};
    const char* start = q;
    while (*q && !isSeparator(*q, separators)) q++;
    *p = q;
    return {start, q - start};
}

Span findCustom(int n, const char* line, const char* separators) {
    if (!line || !separators || n < 1) return {nullptr, -1};
    const char* p = line;
    for (int i = 1;; i++) {
        Span span = nextCustom(&p, separators);
        if (span.length < 0 || i == n) return span;
    }
}

// Quoted tokens: a token opening with a quote runs to the matching quote
// (or to the end of the line); the span excludes the quotes.
Span findQuoted(int n, const char* line, int* count) {
    *count = 0;
    if (!line) return {nullptr, -1};
    const char* p = line;
    Span found{nullptr, -1};
    while (true) {
        while (*p && isWhiteChar(*p)) p++;
        if (!*p) return found;
        Span span;
        if (*p == '"' || *p == '\'') {
            char quote = *p++;
            span.start = p;
            while (*p && *p != quote) p++;
            span.length = p - span.start;
            if (*p) p++;
        } else {
            span.start = p;
            while (*p && !isWhiteChar(*p)) p++;
            span.length = p - span.start;
        }
        ++*count;
        if (*count == n) found = span;
    }
}

char* storeSpan(TokenBuffer& buffer, Span span) {
    if (span.length < 0) {
        tok.bad = 1;
        return buffer.clear();
    }
    tok.bad = 0;
    return buffer.store(span.start, span.length);
}

// Joins tokens first to last (1-based, inclusive) with single blanks, walking
// the line once to measure and once to copy, so long lines stay linear.
char* joinTokens(int first, int last, const char* line) {
    int64_t total = 0;
    const char* p = line ? line : "";
    for (int i = 1; i <= last; i++) {
        Span span = nextPlain(&p);
        if (span.length < 0) break;
        if (i >= first) total += span.length + (i > first ? 1 : 0);
    }
    char* out = tok.joined.reserve(total);
    if (!out) return tok.joined.clear();
    char* end = out;
    p = line ? line : "";
    for (int i = 1; i <= last; i++) {
        Span span = nextPlain(&p);
        if (span.length < 0) break;
        if (i < first) continue;
        if (i > first) *end++ = ' ';
        std::memmove(end, span.start, span.length);
        end += span.length;
    }
    *end = '\0';
    return out;
}

}  // namespace

bool isWhiteChar(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f';
}

int cntToken(const char* line) {
    if (!line) return 0;
    int count = 0;
    const char* p = line;
    while (*p) {
        while (*p && isWhiteChar(*p)) p++;
        if (!*p) break;
        count++;
        while (*p && !isWhiteChar(*p)) p++;
    }
    return count;
}

char* getToken(int n, const char* line) { return storeSpan(tok.plain, findPlain(n, line)); }

int getTokenI(int n, const char* line) {
    int value = 0;
    const char* text = getToken(n, line);
    if (tok.bad || std::sscanf(text, "%d", &value) != 1) {
        tok.bad = 1;
        return 0;
    }
    return value;
}

float getTokenR(int n, const char* line) {
    float value = 0;
    const char* text = getToken(n, line);
    if (tok.bad || std::sscanf(text, "%f", &value) != 1) {
        tok.bad = 1;
        return 0;
    }
    return value;
}

long getTokenN(int n, const char* line) {
    long value = 0;
    const char* text = getToken(n, line);
    if (tok.bad || std::sscanf(text, "%ld", &value) != 1) {
        tok.bad = 1;
        return 0;
    }
    return value;
}

int cntTokenS(const char* line) {
    int count;
    findQuoted(0, line, &count);
    return count;
}

char* getTokenS(int n, const char* line) {
    int count;
    return storeSpan(tok.quoted, findQuoted(n, line, &count));
}

int cntTokenC(const char* line, const char* separators) {
    if (!line || !separators) return 0;
    int count = 0;
    const char* p = line;
    while (nextCustom(&p, separators).length >= 0) count++;
    return count;
}

char* getTokenC(int n, const char* line, const char* separators) {
    return storeSpan(tok.custom, findCustom(n, line, separators));
}

char* leftToken(int n, const char* line) {
    int count = cntToken(line);
    return joinTokens(1, n < count ? n : count, line);
}

char* rightToken(int n, const char* line) {
    return joinTokens(n < 1 ? 1 : n, cntToken(line), line);
}

int findToken(const char* text, const char* line) {
    if (!text || !line) return 0;
    int64_t length = static_cast<int64_t>(std::strlen(text));
    const char* p = line;
    for (int i = 1;; i++) {
        Span span = nextPlain(&p);
        if (span.length < 0) return 0;
        if (span.length == length && std::strncmp(span.start, text, length) == 0) return i;
    }
}

int getTokenLoc(int n, const char* line) {
    Span span = findPlain(n, line);
    return span.length < 0 ? -1 : static_cast<int>(span.start - line);
}

int getTokenMaxLength(const char* line) {
    if (!line) return 0;
    int64_t longest = 0;
    const char* p = line;
    for (Span span = nextPlain(&p); span.length >= 0; span = nextPlain(&p)) {
        if (span.length > longest) longest = span.length;
    }
    return static_cast<int>(longest);
}

int strTrimLoc(const char* text) {
    if (!text) return 0;
    int length = static_cast<int>(std::strlen(text));
    while (length > 0 && isWhiteChar(text[length - 1])) length--;
    return length;
}

namespace {

const char* skipWhite(const char* p) {
    while (*p && isWhiteChar(*p)) p++;
    return p;
}

const char* skipDigits(const char* p, int* count) {
    while (*p >= '0' && *p <= '9') {
        p++;
        ++*count;
    }
    return p;
}

}  // namespace

int isInteger(const char* text) {
    if (!text) return 0;
    const char* p = skipWhite(text);
    if (*p == '+' || *p == '-') p++;
    int digits = 0;
    p = skipDigits(p, &digits);
    return digits > 0 && *skipWhite(p) == '\0';
}

int isFloat(const char* text) {
    if (!text) return 0;
    const char* p = skipWhite(text);
    if (*p == '+' || *p == '-') p++;
    int digits = 0;
    p = skipDigits(p, &digits);
    if (*p == '.') p = skipDigits(p + 1, &digits);
    if (digits == 0) return 0;
    if (*p == 'e' || *p == 'E') {
        p++;
        if (*p == '+' || *p == '-') p++;
        int exponentDigits = 0;
        p = skipDigits(p, &exponentDigits);
        if (exponentDigits == 0) return 0;
    }
    return *skipWhite(p) == '\0';
}

char* raiseStr(char* text) {
    if (!text) return text;
    for (char* p = text; *p; p++) {
        if (*p >= 'a' && *p <= 'z') *p = static_cast<char>(*p - 'a' + 'A');
    }
    return text;
}

int istrlen(const char* text) { return text ? static_cast<int>(std::strlen(text)) : 0; }

int badToken() { return tok.bad; }

void freeToken() {
    tok.plain.release();
    tok.quoted.release();
    tok.custom.release();
    tok.joined.release();
}
