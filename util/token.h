// White-space tokenizer with 1-based token numbers, used by every text reader.
// Results live in shared buffers that stay valid until the next call of the
// same kind; they start in static storage and move to the heap (tag "token")
// only for longer lines.
#pragma once

#include <cstdint>

int cntToken(const char* line);
char* getToken(int n, const char* line);
int getTokenI(int n, const char* line);
float getTokenR(int n, const char* line);
long getTokenN(int n, const char* line);

// Tokens that may be quoted with " or ' to hold blanks (quotes removed).
int cntTokenS(const char* line);
char* getTokenS(int n, const char* line);

// Tokens split at any of the given separator characters.
int cntTokenC(const char* line, const char* separators);
char* getTokenC(int n, const char* line, const char* separators);

// Tokens 1 to n, or n to the last, joined with single blanks.
char* leftToken(int n, const char* line);
char* rightToken(int n, const char* line);

// 1-based number of the first token equal to text, 0 when none is.
int findToken(const char* text, const char* line);
// Character offset at which token n starts, -1 when there is no such token.
int getTokenLoc(int n, const char* line);
int getTokenMaxLength(const char* line);
// Length of the text without its trailing white space.
int strTrimLoc(const char* text);

int isInteger(const char* text);
int isFloat(const char* text);
char* raiseStr(char* text);
int istrlen(const char* text);

// 1 when the last token lookup failed (missing token or failed conversion).
int badToken();
// Releases every heap buffer of the tokenizer.
void freeToken();

bool isWhiteChar(char c);
