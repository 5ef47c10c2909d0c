// Clean-up of names that come from tables, and the proton test.
#pragma once

// Empties a name of exactly "{}", or "none" or "(Null)" in any case, and
// returns 1; otherwise leaves it and returns 0.
int fixAtomName(char* name);
int fixResName(char* name);
int fixChainName(char* name);
int fixSegName(char* name);

// A name is a proton when its first character after leading digits is H or h.
int isProton(const char* name);

// Copies the non-blank characters of line positions first..last (0-based,
// inclusive) into destination; returns 1 with an empty result when first
// lies beyond the line.
int getSubStr0(char* destination, const char* line, int first, int last);
