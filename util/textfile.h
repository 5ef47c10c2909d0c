// Plain text files read as lists of lines.
#pragma once

#include <cstdio>

// All lines of a file without their newline, as copies in a list that ends
// with a null entry (list tag "rdText", copies "strDup"). Status -1 and null
// when the file cannot be opened or memory runs out.
char** rdText(const char* path, int* lineCount, int* status);
// Lines of an open stream up to end of file or a line equal (ignoring case) to
// stopText, which is kept; with echo on each line is also written to stderr.
char** rdText2(FILE* stream, int* lineCount, const char* stopText, int echo, int* status);
// The whole file as one block (tag "rdText") of consecutive zero-terminated lines.
char* rdTextC(const char* path, int* lineCount, long* bytes, int* status);
// Number of newline-terminated lines; returns 1 when the file cannot be opened.
int cntText(const char* path, int* count);
// count empty texts of 1024 bytes each, in a list ending with a null entry.
char** buildList(int count);
void freeList(char** list, int count);
// Releases a list from rdText or rdText2.
void freeText(char** list);
// Releases a block from rdTextC.
void freeTextC(char* block, long bytes);
