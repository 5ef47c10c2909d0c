// TEMPORARY STUB
#pragma once
int strMatch(const char* text, const char* pattern, int mode, int caseSensitive);
int strMatchGlob(const char* text, const char* pattern);
int atomMatch(const char* name, const char* pattern);
int isAtomExpr(const char* name, char* pattern);
char* adjAtomExpr(char* text);
