// The ELF object-file hash, shared by the symbol tables and str2hash.
#pragma once

unsigned long elfHash(const char* text);
// The hash mapped into low..high inclusive (bounds swapped when reversed).
int str2hash(const char* text, int low, int high);
