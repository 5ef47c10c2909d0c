// Command-line argument library. Options are found anywhere in the argument
// vector by exact name, in any order and as often as a caller likes; every
// argument an option consumes is marked, so that checkArgs can report the
// ones nothing consumed.
#pragma once

#include <cstdint>

// Classification.
int isFlag(const char* s);
int isNumber(const char* s);
int flagLoc(int argc, char** argv, const char* name);
int nextFlag(int argc, char** argv, int i);
int nextFlagTerminator(int argc, char** argv, int i);
char* getNthArg(int argc, char** argv, int n);
const char* getProgName();
// 1 when the last lookup failed (option absent or value missing).
int badFlag();
// Whether the option is present, marking it consumed.
bool argPresent(int argc, char** argv, const char* name);

// Single values: the argument right after the option, whatever it looks like.
int intArg(int argc, char** argv, const char* name);
float fltArg(int argc, char** argv, const char* name);
double dblArg(int argc, char** argv, const char* name);
char* strArg(int argc, char** argv, const char* name);
char* ptrArg(int argc, char** argv, const char* name);

// Defaulting forms: store and return 1 when the option has a value, else
// leave the destination untouched and return 0. Text destinations hold 1024 bytes.
int intArgD(int argc, char** argv, const char* name, int* value);
int fltArgD(int argc, char** argv, const char* name, float* value);
int dblArgD(int argc, char** argv, const char* name, double* value);
int strArgD(int argc, char** argv, const char* name, char* value);
int ptrArgD(int argc, char** argv, const char* name, char** value);
int nmrIntArgD(int argc, char** argv, const char* name, int64_t* value);
int logArgD(int argc, char** argv, const char* name, int* value);
int notLogArgD(int argc, char** argv, const char* name, int* value);

// Multi-value forms: every white-space token of the arguments after the
// option, up to the next flag. Allocated arrays carry the tag "listArg" and
// are freed with count x element size.
int* iListArg(int argc, char** argv, const char* name, int* count);
float* rListArg(int argc, char** argv, const char* name, int* count);
float* rListArg2(int argc, char** argv, const char* name, int* count);
char** sListArg(int argc, char** argv, const char* name, int* count);
char** strListArg(int argc, char** argv, const char* name, int* count);
char** ptrListArg(int argc, char** argv, const char* name, int* count);
int intArgDN(int argc, char** argv, const char* name, int* values, int capacity);
int fltArgDN(int argc, char** argv, const char* name, float* values, int capacity);
int charListArg(int argc, char** argv, const char* name, char* text, int capacity);
int strListArgDEnd(int argc, char** argv, const char* name, char* text, int capacity = 1024);
int parseLocList(int argc, char** argv, const char* name, int* flags, int size, int onValue,
                 int offValue);

// Others.
char** copyArgv(int argc, char** argv, const char* name);
void freeArgv(char** argv, int argc);
int envIsTrue(const char* name);
int getFmtCount(const char* format);
int isZFmt(const char* format);
int isAZFmt(const char* format);
void safe_strcpy(char* dst, const char* src);

// Argument bookkeeping. Mode 0 off, 1 FLAGS, 2 ALL, 3 DEBUG; 4 reads the
// mode from NMR_CHECKARGS.
void initArgs(int argc, char** argv, int mode);
int checkArgs(int argc, char** argv);
void nullArgs();
