// Comparing atom, residue, chain and segment names with patterns: exact,
// regular-expression and glob matching, and the atom-name conventions in
// which # stands for one numeral and * for any run of characters.
#pragma once

// Match modes of a name field.
constexpr int kMatchExact = 1;
constexpr int kMatchRegex = 2;
constexpr int kMatchGlob = 3;

// Size of the name and pattern buffers the atom-expression helpers assume.
constexpr int kAtomExprSize = 1024;

// 1 when text matches pattern in the given mode: exact compares whole texts,
// regex searches text for the pattern, glob must consume the whole text.
// Without caseSensitive both are compared in upper case. Any other mode, a
// null argument or a failed copy ("out of memory" left for strGetRegError)
// gives 0.
int strMatch(const char* text, const char* pattern, int mode, int caseSensitive);

// Glob matching of the whole text: * any run (also none), ? one character,
// [abc] or [a-z] one character of the set, \c the character c. An empty set,
// a set without its ] and a trailing \ match nothing.
int strMatchGlob(const char* text, const char* pattern);

// 1 when the atom name matches the whole pattern, where # is one numeral and
// * any run of characters; the other characters are read as a regular
// expression. "HB#" matches HB1 but neither HB12 nor 1HB1.
int atomMatch(const char* name, const char* pattern);

// Classifies an atom-name expression: 0 for a plain name, 1 when it holds a
// #, 2 when it holds a * (the later of the two in the text decides). When
// pattern is given it receives a printf-style form of the name (# as %d, * as
// %s%s); it is left empty when that would not fit in size bytes.
int isAtomExpr(const char* name, char* pattern, int size = kAtomExprSize);

// Rewrites every # in text as [0-9] in place, text having room for size
// bytes. Returns the number of # rewritten, or -1 (text unchanged) when the
// result would not fit.
int adjAtomExpr(char* text, int size = kAtomExprSize);
