// Growable strings: a text that lives in a caller's fixed buffer and moves to
// a heap block (tag "str") only when it outgrows it.
#pragma once

#include <cstdio>

void strAllocInit(char** str, char* buffer, int capacity);
// Appends text; *current is the capacity the string has now.
char* strcatAlloc(char** str, const char* text, char* buffer, int capacity, int* current);
char* strcpyAlloc(char** str, const char* text, char* buffer, int capacity, int* current);
char* strpcatAlloc(char** str, const char* text, char* buffer, int capacity, int* current);
// Reads one whole line of any length (newline kept), or null at end of file.
char* fgetsAlloc(char** str, int* current, FILE* stream, char* chunk, int chunkSize, char* buffer,
                 int capacity);
void strAllocFree(char** str, char* buffer, int capacity, int* current);

// A shared scratch text of at least the given length.
char* ctempAlloc(int length);
void ctempFree();
