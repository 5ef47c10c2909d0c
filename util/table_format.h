// Column formats of table files: checking a printf format, turning it into
// and out of its file spelling, and printing one value with it.
#pragma once

#include "util/table.h"

// Column type of a printf format (kTabText, kTabInt or kTabReal, from its
// last character), or 0 unless the format holds exactly one conversion and
// that conversion ends the format. Only flags, width and precision (each
// below 1024, the size of a printed field) and a size modifier (h, hh, l, ll,
// L; dropped when printing) are accepted inside the conversion, so a format
// read from a file can never make printf look for an argument it was not
// given.
int getTabVarType(const char* format);

// Underscores in a file's FORMAT token stand for blanks; in place.
void fmtFromFile(char* format);

// Prints value with the column's format into field (size bytes). Integer
// columns print the value as an int, real columns as a double, text columns
// the text at the stored index; with nullValue given, a text value equal to
// it prints kTabNullText. Returns 0, 1 for a bad text index (field left
// empty) or 2 for an unknown column type or a format that does not fit it.
int printTabField(char* field, int size, const TabVar* var, float value, const int* nullValue);

// The float as an int, clamped to the int range (NaN gives 0).
int tabFloatToInt(float value);
// The text index stored in value, or -1 when it is none of var's texts.
int tabTextIndex(const TabVar* var, float value);
