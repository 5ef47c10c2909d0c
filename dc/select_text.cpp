// The free-text coupling selection of -select.
#include <strings.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "dc/select_dc.h"
#include "util/alloc.h"
#include "util/residue_number.h"
#include "util/token.h"

namespace {

constexpr int kWordSize = 1024;

bool isWord(const char* token, const char* word) { return strcasecmp(token, word) == 0; }
bool isSkipped(const char* token) {
    return isWord(token, "to") || isWord(token, "none") || std::strcmp(token, "-") == 0;
}

// The position of a dash that separates two numbers inside one token; a
// dash at the start is a minus sign.
const char* innerDash(const char* token) {
    return token[0] ? std::strchr(token + 1, '-') : nullptr;
}

struct Filters {
    char chain[kWordSize] = "*";
    char seg[kWordSize] = "*";
};

struct RangeSpec {
    char a[kWordSize];
    char b[kWordSize];
    int tokensUsed;
};

void copyWord(char* dst, const char* src, std::size_t length) {
    if (length > kWordSize - 1) length = kWordSize - 1;
    std::memcpy(dst, src, length);
    dst[length] = '\0';
}

void copyToken(char* dst, int n, const char* text) {
    const char* token = getToken(n, text);
    copyWord(dst, token, std::strlen(token));
}

// Splits a token such as "20-30" (or "first-last") at its inner dash.
void splitAtDash(RangeSpec* spec, const char* token, const char* dash) {
    copyWord(spec->a, token, static_cast<std::size_t>(dash - token));
    copyWord(spec->b, dash + 1, std::strlen(dash + 1));
}

// Reads the residue specification starting at token n: "a", "a-b", "a - b"
// or "a to b". When "a to b" also holds a dash inside a or b, the two
// separators disagree: the dash wins, and the whole "a to b" is used up so
// that its other end is not taken for a residue of its own.
RangeSpec readRange(const char* text, int n, int tokenCount) {
    RangeSpec spec;
    char first[kWordSize], next[kWordSize] = "", last[kWordSize] = "";
    copyToken(first, n, text);
    if (n < tokenCount) copyToken(next, n + 1, text);
    bool joined = (isWord(next, "to") || std::strcmp(next, "-") == 0) && n + 2 <= tokenCount;
    if (joined) copyToken(last, n + 2, text);
    spec.tokensUsed = joined ? 3 : 1;

    bool withTo = joined && isWord(next, "to");
    const char* firstDash = innerDash(first);
    const char* lastDash = withTo ? innerDash(last) : nullptr;
    if (withTo && (firstDash || lastDash)) {
        const char* dashed = firstDash ? first : last;
        std::fprintf(stderr, "DC Select Warning: Bad Range Specification at Location %d: %s\n",
                     firstDash ? n : n + 2, dashed);
        splitAtDash(&spec, dashed, firstDash ? firstDash : lastDash);
        return spec;
    }
    if (firstDash) {
        splitAtDash(&spec, first, firstDash);
        spec.tokensUsed = 1;
        return spec;
    }
    copyWord(spec.a, first, std::strlen(first));
    copyWord(spec.b, joined ? last : first, std::strlen(joined ? last : first));
    return spec;
}

void resolveEnds(RangeSpec* spec, const DCValue* couplings, int count, const Filters& f) {
    for (char* end : {spec->a, spec->b}) {
        getDCSelFirst(end, couplings, count, f.chain, f.seg);
        getDCSelLast(end, couplings, count, f.chain, f.seg);
    }
}

void reportRange(int a, int b, const Filters& f) {
    if (a == b) {
        std::fprintf(stderr, "REMARK DC Selection ResID %d", a);
    } else {
        std::fprintf(stderr, "REMARK DC Selection ResID Range: %d to %d", a, b);
    }
    if (std::strcmp(f.chain, "*") != 0) std::fprintf(stderr, " Chain: %s", f.chain);
    if (std::strcmp(f.seg, "*") != 0) std::fprintf(stderr, " Segment: %s", f.seg);
    std::fprintf(stderr, "\n");
}

}  // namespace

int strSelectD(DCValue* couplings, int count, const char* text, int mode) {
    if (count < 1 || !text || !text[0]) return 0;
    std::size_t length = std::strlen(text);
    char* line = charMalloc64("str", static_cast<int64_t>(length) + 1);
    if (!line) return 0;
    std::memcpy(line, text, length + 1);
    for (char* p = line; *p; p++) {
        if (*p == ',') *p = ' ';
    }
    for (int i = 0; i < count; i++) couplings[i].use = 0;
    Filters filters;
    int result = 0;
    int tokenCount = cntToken(line);
    for (int n = 1; n <= tokenCount;) {
        const char* token = getToken(n, line);
        if (isSkipped(token)) {
            n++;
            continue;
        }
        if ((isWord(token, "chain") || isWord(token, "seg")) && n < tokenCount) {
            char* filter = isWord(token, "chain") ? filters.chain : filters.seg;
            const char* name = getToken(n + 1, line);
            copyWord(filter, name, std::strlen(name));
            n += 2;
            continue;
        }
        RangeSpec spec = readRange(line, n, tokenCount);
        resolveEnds(&spec, couplings, count, filters);
        if (isInteger(spec.a) && isInteger(spec.b)) {
            int a = clampResid(std::strtoll(spec.a, nullptr, 10));
            int b = clampResid(std::strtoll(spec.b, nullptr, 10));
            reportRange(a, b, filters);
            result = selectDRange(couplings, count, a, b, filters.chain, filters.seg, mode);
            n += spec.tokensUsed;
        } else {
            std::fprintf(stderr,
                         "DC Select Warning: Bad Residue Specification Near Location %d: %s\n", n,
                         getToken(n, line));
            n++;
        }
    }
    unAlloc64("str", line, static_cast<int64_t>(length) + 1);
    return result;
}
