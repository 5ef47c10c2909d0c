// Fixed-column fields of PDB lines: the text of a column range without its
// blanks, and the number such a field holds. The reader calls these for every
// field of every atom line, so they take the line's length instead of
// measuring it again, and read plain decimals without the general parser.
#pragma once

// Copies the non-blank characters of line positions first..last (0-based,
// inclusive) of a line of length characters into destination, stopping at
// the end of the line; returns 1 with an empty result when first lies
// beyond the line, else 0.
int columnText(char* destination, const char* line, int length, int first, int last);

// The number of the field first..last (cut to its first 32 columns): bit for
// bit what Atof2 and Atoi2 give for the field's text as columnText extracts it.
float columnReal(const char* line, int length, int first, int last);
int columnInt(const char* line, int length, int first, int last);
