// The name matchers: DC's regular expressions, globs, atom-name patterns and
// the mode-driven strMatch. The first byte chooses what runs; the rest is a
// pattern, a newline (or NUL), and the text to match, up to the next NUL.
//
// Where another engine gives the answer for the same syntax, the results are
// compared, and a disagreement is a finding:
// - regular expressions against POSIX extended expressions (regcomp), for
//   patterns built only from the operators both read alike (letters a-c, .,
//   sets of those, groups, |, *, +, ?, ^ and $), on patterns both compile:
//   whether there is a match and where the first one starts, with the text
//   starting a line and not (REG_NOTBOL);
// - a program compiled into a caller's buffer must behave as the one on the
//   heap whenever it fits;
// - globs against fnmatch, for patterns of letters, digits, *, ?, escapes
//   and plain sets ([abc], [a-z], no negation).
// Everything else is run for crashes, hangs and the allocation balance only.
#include <fnmatch.h>
#include <regex.h>
#include <unistd.h>

#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "fuzz/fuzz_support.h"
#include "pdb/name_match.h"
#include "pdb/regex.h"

namespace {

constexpr size_t kMaxCompared = 64;  // longest pattern compared with regcomp

void disagree(const char* what, const std::string& pattern, const std::string& text, int ours,
              int theirs) {
    dprintf(2, "dc fuzz: %s disagree on pattern \"%s\", text \"%s\": DC %d, reference %d\n", what,
            pattern.c_str(), text.c_str(), ours, theirs);
    std::abort();
}

bool isPrintable(const std::string& text) {
    for (unsigned char ch : text) {
        if (ch < 0x20 || ch > 0x7e) return false;
    }
    return true;
}

bool isSetLetter(char ch) { return ch == 'a' || ch == 'b' || ch == 'c' || ch == '.'; }

// The set starting at pattern[i] == '['; true when it uses only members both
// engines read alike, with i moved past its ].
bool comparableSet(const std::string& p, size_t* i) {
    size_t k = *i + 1;
    if (k < p.size() && p[k] == '^') k++;
    if (k < p.size() && (p[k] == ']' || p[k] == '-')) k++;  // stands for itself
    bool afterRange = false;
    while (k < p.size() && p[k] != ']') {
        char ch = p[k];
        if (ch == '-') {
            if (k + 1 < p.size() && p[k + 1] == ']') {  // a last - stands for itself
                k++;
                continue;
            }
            // A range of two letters, low to high, not chained to another.
            char low = p[k - 1], high = k + 1 < p.size() ? p[k + 1] : '\0';
            if (afterRange || !std::islower(static_cast<unsigned char>(low)) ||
                !std::islower(static_cast<unsigned char>(high)) || !isSetLetter(high) ||
                low > high) {
                return false;
            }
            afterRange = true;
            k += 2;
            continue;
        }
        if (!isSetLetter(ch)) return false;
        afterRange = false;
        k++;
    }
    if (k >= p.size()) return false;
    *i = k + 1;
    return true;
}

// True when the pattern uses only what DC and POSIX extended expressions
// read the same way. A quantifier must follow a letter, a dot, a set or a
// group; after ^, $, (, | or another quantifier the two differ or DC refuses.
bool comparableRegex(const std::string& p) {
    if (p.size() > kMaxCompared) return false;
    bool quantifiable = false;
    for (size_t i = 0; i < p.size();) {
        char ch = p[i];
        if (ch == '[') {
            if (!comparableSet(p, &i)) return false;
            quantifiable = true;
            continue;
        }
        if (ch == '*' || ch == '+' || ch == '?') {
            if (!quantifiable) return false;
            quantifiable = false;
        } else if (ch == 'a' || ch == 'b' || ch == 'c' || ch == '.' || ch == ')') {
            quantifiable = true;
        } else if (ch == '(' || ch == '|' || ch == '^' || ch == '$') {
            quantifiable = false;
        } else {
            return false;
        }
        i++;
    }
    return true;
}

// Whether and where the pattern first matches the text, by POSIX; -1 when
// there is no match.
int posixStart(const regex_t* re, const std::string& text, int flags) {
    regmatch_t m[1];
    if (regexec(re, text.c_str(), 1, m, flags) != 0) return -1;
    return static_cast<int>(m[0].rm_so);
}

int ourStart(RegProgram* program, const std::string& text, int lineStart) {
    if (!strRegExec2(program, text.c_str(), lineStart)) return -1;
    return static_cast<int>(program->startp[0] - text.c_str());
}

void fuzzRegex(const std::string& pattern, const std::string& text) {
    RegProgram* program = strRegComp(pattern.c_str());
    if (!program) return;
    int found = strRegExec(program, text.c_str());
    int startBol = ourStart(program, text, 1);
    int startNotBol = ourStart(program, text, 0);
    if ((startBol >= 0) != (found == 1)) {
        disagree("strRegExec and strRegExec2", pattern, text, found, startBol);
    }

    alignas(RegProgram) static unsigned char buffer[1 << 16];
    RegProgram* inPlace = strRegCompInto(pattern.c_str(), buffer, sizeof buffer);
    if (program->bytes <= static_cast<int64_t>(sizeof buffer)) {
        if (!inPlace) disagree("heap and in-place compilation", pattern, text, 1, 0);
        int placed = ourStart(inPlace, text, 1);
        if (placed != startBol) {
            disagree("heap and in-place programs", pattern, text, startBol, placed);
        }
    }
    strRegFree(program);

    if (!comparableRegex(pattern) || !isPrintable(text)) return;
    regex_t re;
    if (regcomp(&re, pattern.c_str(), REG_EXTENDED) != 0) return;
    int reference = posixStart(&re, text, 0);
    int referenceNotBol = posixStart(&re, text, REG_NOTBOL);
    regfree(&re);
    if (startBol != reference) disagree("regex and POSIX", pattern, text, startBol, reference);
    if (startNotBol != referenceNotBol) {
        disagree("regex and POSIX (not at a line start)", pattern, text, startNotBol,
                 referenceNotBol);
    }
}

bool isAlnum(char ch) { return std::isalnum(static_cast<unsigned char>(ch)) != 0; }

bool sameClass(char a, char b) {
    auto cls = [](char ch) {
        unsigned char u = static_cast<unsigned char>(ch);
        return std::isdigit(u) ? 0 : std::islower(u) ? 1 : 2;
    };
    return cls(a) == cls(b);
}

// Letters, digits, *, ?, escapes of those and of the operators, and sets of
// letters, digits and same-class ranges: read alike by DC and fnmatch.
bool comparableGlob(const std::string& p) {
    for (size_t i = 0; i < p.size();) {
        char ch = p[i];
        if (isAlnum(ch) || ch == '*' || ch == '?') {
            i++;
        } else if (ch == '\\') {
            if (i + 1 >= p.size()) return false;
            char next = p[i + 1];
            if (!isAlnum(next) && !std::strchr("*?[]\\", next)) return false;
            i += 2;
        } else if (ch == '[') {
            size_t k = i + 1;
            int items = 0;
            while (k < p.size() && p[k] != ']') {
                if (!isAlnum(p[k])) return false;
                if (k + 2 < p.size() && p[k + 1] == '-' && p[k + 2] != ']') {
                    if (!isAlnum(p[k + 2]) || !sameClass(p[k], p[k + 2]) || p[k] > p[k + 2]) {
                        return false;
                    }
                    k += 3;
                } else {
                    k++;
                }
                items++;
            }
            if (k >= p.size() || items == 0) return false;
            i = k + 1;
        } else {
            return false;
        }
    }
    return true;
}

void fuzzGlob(const std::string& pattern, const std::string& text) {
    int ours = strMatchGlob(text.c_str(), pattern.c_str());
    if (!comparableGlob(pattern) || !isPrintable(text)) return;
    int reference = fnmatch(pattern.c_str(), text.c_str(), 0) == 0 ? 1 : 0;
    if (ours != reference) disagree("glob and fnmatch", pattern, text, ours, reference);
}

void fuzzAtomNames(const std::string& pattern, const std::string& text) {
    atomMatch(text.c_str(), pattern.c_str());
    char form[kAtomExprSize];
    isAtomExpr(pattern.c_str(), form);
    isAtomExpr(pattern.c_str(), form, 16);  // too small for many: left empty
    char copy[kAtomExprSize];
    if (pattern.size() < sizeof copy) {
        std::memcpy(copy, pattern.c_str(), pattern.size() + 1);
        if (adjAtomExpr(copy) >= 0) strMatchRegex(text.c_str(), copy);
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::quietStreams();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    unsigned choice = data[0];
    const char* rest = reinterpret_cast<const char*>(data + 1);
    size_t restSize = size - 1;
    size_t cut = 0;
    while (cut < restSize && rest[cut] != '\n' && rest[cut] != '\0') cut++;
    std::string pattern(rest, cut);
    std::string text;
    if (cut < restSize) {
        const char* t = rest + cut + 1;
        size_t tSize = restSize - cut - 1;
        text.assign(t, strnlen(t, tSize));
    }

    int64_t start = fuzz::bytesInUse();
    resetRegError();
    switch (choice % 4) {
        case 0: fuzzRegex(pattern, text); break;
        case 1: fuzzGlob(pattern, text); break;
        case 2: fuzzAtomNames(pattern, text); break;
        default: {
            static const int modes[] = {kMatchExact, kMatchRegex, kMatchGlob, 0};
            strMatch(text.c_str(), pattern.c_str(), modes[(choice / 4) % 4], (choice / 16) % 2);
            break;
        }
    }
    strGetRegError();
    fuzz::checkBalance(start, "pattern and text");
    return 0;
}
