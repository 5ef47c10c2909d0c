// DC's own small regular-expression engine, used to match atom, residue,
// chain and segment names. A pattern is compiled into a program of nodes and
// run by a backtracking matcher that keeps its choice points on a heap stack
// (no recursion, so long texts cannot exhaust the call stack).
//
// Operators:  ^ start of text   $ end of text   . any character
//             [abc] [a-z] [^a-z] one character of a set (or not of it)
//             ( ) grouping, remembered in startp/endp 1..9   | alternation
//             x? x* x+ zero-or-one, zero-or-more, one-or-more (greedy)
//             \c the character c itself
// A match may start anywhere in the text unless the pattern begins with ^.
// A $ ends its alternative: anything after it other than | or ) is rejected
// as "junk on end", since such a pattern could never match.
//
// Failures are not errors: a bad pattern or a corrupted program yields no
// program or no match and leaves a short text for strGetRegError.
#pragma once

#include <cstdint>

// Number of remembered spans: 0 is the whole match, 1..9 the groups.
constexpr int kRegSubExp = 10;

// Node kinds of a compiled program.
enum RegOp : uint8_t {
    kRegEnd = 1,  // the pattern matched
    kRegBol,      // start of text
    kRegEol,      // end of text
    kRegAny,      // any one character
    kRegAnyOf,    // one character of a 256-bit set in the pool
    kRegExactly,  // a literal run in the pool
    kRegBranch,   // one alternative; next leads to the following alternative
    kRegBack,     // backward link closing a loop
    kRegNothing,  // matches the empty text
    kRegStar,     // a single-character node repeated zero or more times
    kRegPlus,     // a single-character node repeated one or more times
    kRegOpen,     // start of group arg
    kRegClose,    // end of group arg
};

struct RegNode {
    uint8_t op;
    uint8_t arg;     // group number of kRegOpen/kRegClose
    int32_t next;    // offset to the following node, 0 when there is none
    int32_t data;    // pool offset (literal, set) or choice slot (branch, star, plus)
    int32_t length;  // length of a literal run
};

struct RegProgram {
    // Spans of the last successful match: [startp[i], endp[i]) in the text.
    const char* startp[kRegSubExp];
    const char* endp[kRegSubExp];
    uint32_t magic;
    int anchored;  // the pattern can only match at the start of the text
    int nodeCount;
    int choiceCount;   // branch, star and plus nodes, each with a slot for the matcher
    int64_t bytes;     // size of the whole block, for the release
    RegNode* node;     // node[0] is the first node
    const char* pool;  // literal runs and character sets
};

// Compiles a pattern; null (and an error text) on failure. Release with strRegFree.
RegProgram* strRegComp(const char* pattern);
// Compiles into the caller's buffer (aligned for RegProgram) without using
// the heap; null when the pattern is bad or the program needs more than size
// bytes. The program is not released.
RegProgram* strRegCompInto(const char* pattern, void* buffer, int64_t size);
void strRegFree(RegProgram* program);

// Searches text for the first match; 1 when found (startp/endp are then set), else 0.
int strRegExec(RegProgram* program, const char* text);
// As strRegExec; when lineStart is 0 the text does not begin a line, so ^
// never matches (used when continuing a search after an earlier match).
int strRegExec2(RegProgram* program, const char* text, int lineStart);

// Compiles pattern, searches text and releases the program: 1 on a match.
int strMatchRegex(const char* text, const char* pattern);

// Records text as the last error; strGetRegError returns it ("" when none).
void strRegError(const char* text);
const char* strGetRegError();
// Forgets the last error (for tests).
void resetRegError();
