#include "pdb/name_match.h"

#include <cctype>
#include <cstdint>
#include <cstring>

#include "pdb/regex.h"
#include "util/alloc.h"

namespace {

char upper(char ch) { return static_cast<char>(std::toupper(static_cast<unsigned char>(ch))); }

bool equalIgnoringCase(const char* a, const char* b) {
    for (; *a && *b; a++, b++) {
        if (upper(*a) != upper(*b)) return false;
    }
    return *a == *b;
}

char* upperCopy(const char* text) {
    char* copy = strDup(text);
    if (copy) {
        for (char* p = copy; *p; p++) *p = upper(*p);
    }
    return copy;
}

// Tests ch against the set starting at the [ of pattern and sets length to
// the set's extent. An empty set or one without its ] matches nothing.
bool matchSet(const char* pattern, char ch, int* length) {
    const char* p = pattern + 1;
    bool found = false;
    bool empty = true;
    while (*p && *p != ']') {
        char low = *p;
        if (low == '\\' && p[1]) low = *++p;
        p++;
        char high = low;
        if (*p == '-' && p[1] && p[1] != ']') {
            p++;
            high = *p;
            if (high == '\\' && p[1]) high = *++p;
            p++;
        }
        empty = false;
        unsigned char c = static_cast<unsigned char>(ch);
        if (c >= static_cast<unsigned char>(low) && c <= static_cast<unsigned char>(high)) {
            found = true;
        }
    }
    if (*p != ']') {
        *length = static_cast<int>(p - pattern);
        return false;
    }
    *length = static_cast<int>(p - pattern) + 1;
    return found && !empty && ch != '\0';
}

// Tests ch against the pattern element at pattern (anything but *) and sets
// length to the number of pattern characters the element takes.
bool matchElement(const char* pattern, char ch, int* length) {
    *length = 1;
    switch (*pattern) {
        case '\0': return false;
        case '?': return ch != '\0';
        case '[': return matchSet(pattern, ch, length);
        case '\\':
            if (pattern[1] == '\0') return false;
            *length = 2;
            return ch == pattern[1];
        default: return ch == *pattern;
    }
}

// Length of the regular expression atomMatch builds from pattern.
int64_t atomRegexLength(const char* pattern) {
    int64_t length = 2;  // ^ and $
    for (const char* p = pattern; *p; p++) length += *p == '#' ? 5 : *p == '*' ? 2 : 1;
    return length;
}

}  // namespace

int strMatch(const char* text, const char* pattern, int mode, int caseSensitive) {
    if (!text || !pattern) return 0;
    if (mode == kMatchExact) {
        return caseSensitive ? std::strcmp(text, pattern) == 0 : equalIgnoringCase(text, pattern);
    }
    if (mode != kMatchRegex && mode != kMatchGlob) return 0;
    if (caseSensitive) {
        return mode == kMatchRegex ? strMatchRegex(text, pattern) : strMatchGlob(text, pattern);
    }
    char* upperText = upperCopy(text);
    char* upperPattern = upperText ? upperCopy(pattern) : nullptr;
    int found = 0;
    if (!upperPattern) {
        strRegError("out of memory");
    } else if (mode == kMatchRegex) {
        found = strMatchRegex(upperText, upperPattern);
    } else {
        found = strMatchGlob(upperText, upperPattern);
    }
    strFree(upperPattern);
    strFree(upperText);
    return found;
}

int strMatchGlob(const char* text, const char* pattern) {
    if (!text || !pattern) return 0;
    // After a mismatch the most recent * takes one more character and the
    // rest of the pattern is tried again from there; earlier stars never need
    // to, since the latest one can absorb whatever they would.
    const char* resumePattern = nullptr;
    const char* resumeText = nullptr;
    while (*text) {
        if (*pattern == '*') {
            while (*pattern == '*') pattern++;
            resumePattern = pattern;
            resumeText = text;
            continue;
        }
        int length = 0;
        if (matchElement(pattern, *text, &length)) {
            pattern += length;
            text++;
        } else if (resumePattern) {
            pattern = resumePattern;
            text = ++resumeText;
        } else {
            return 0;
        }
    }
    while (*pattern == '*') pattern++;
    return *pattern == '\0';
}

namespace {

void writeAtomRegex(char* out, const char* pattern) {
    *out++ = '^';
    for (const char* p = pattern; *p; p++) {
        if (*p == '#') {
            std::memcpy(out, "[0-9]", 5);
            out += 5;
        } else if (*p == '*') {
            std::memcpy(out, ".*", 2);
            out += 2;
        } else {
            *out++ = *p;
        }
    }
    *out++ = '$';
    *out = '\0';
}

// Atom-name patterns are short: their expression and program fit on the
// stack, so the atom lookups that try them on every atom of a residue need
// no heap. Longer patterns take the general path.
constexpr int64_t kStackRegex = 256;
constexpr int64_t kStackProgram = 8192;

int atomMatchOnHeap(const char* name, const char* pattern, int64_t length) {
    char* regex = charMalloc64("regex", length + 1);
    if (!regex) {
        strRegError("out of memory");
        return 0;
    }
    writeAtomRegex(regex, pattern);
    int found = strMatchRegex(name, regex);
    unAlloc64("regex", regex, length + 1);
    return found;
}

}  // namespace

int atomMatch(const char* name, const char* pattern) {
    if (!name || !pattern) return 0;
    int64_t length = atomRegexLength(pattern);
    if (length >= kStackRegex) return atomMatchOnHeap(name, pattern, length);
    char regex[kStackRegex];
    writeAtomRegex(regex, pattern);
    alignas(16) char buffer[kStackProgram];
    RegProgram* program = strRegCompInto(regex, buffer, sizeof buffer);
    if (!program) return strMatchRegex(name, regex);
    return strRegExec(program, name);
}

int isAtomExpr(const char* name, char* pattern, int size) {
    if (!name) return 0;
    int type = 0;
    int used = 0;
    bool fits = pattern && size > 0;
    for (const char* p = name; *p; p++) {
        const char* piece = *p == '#' ? "%d" : *p == '*' ? "%s%s" : *p == '%' ? "%%" : nullptr;
        if (*p == '#') type = 1;
        if (*p == '*') type = 2;
        if (!fits) continue;
        int length = piece ? static_cast<int>(std::strlen(piece)) : 1;
        if (used + length >= size) {
            fits = false;
            continue;
        }
        if (piece) {
            std::memcpy(pattern + used, piece, static_cast<size_t>(length));
        } else {
            pattern[used] = *p;
        }
        used += length;
    }
    if (pattern && size > 0) pattern[fits ? used : 0] = '\0';
    return type;
}

int adjAtomExpr(char* text, int size) {
    if (!text) return 0;
    int64_t length = static_cast<int64_t>(std::strlen(text));
    int64_t marks = 0;
    for (const char* p = text; *p; p++) marks += *p == '#';
    if (marks == 0) return 0;
    int64_t grown = length + 4 * marks;
    if (grown + 1 > size) return -1;
    // Rewrite from the end so that every character moves only once.
    text[grown] = '\0';
    for (int64_t from = length - 1, to = grown - 1; from >= 0; from--) {
        if (text[from] == '#') {
            std::memcpy(text + to - 4, "[0-9]", 5);
            to -= 5;
        } else {
            text[to--] = text[from];
        }
    }
    return static_cast<int>(marks);
}
