// Reading the tables DC writes (-outD, -outCS) for plotting: the whole table
// with its header lines, the columns a plot needs, and which values are
// measurements at all.
#pragma once

#include "util/table_rows.h"

// Reads path into t (release with a TableRelease). 0, or 1 after a
// "dcplot Error: ..." message; t is empty then.
int readPlotTable(const char* path, TableRows* t);

// Gives a table back when it goes out of scope, also when memory runs out
// part way through a plot.
struct TableRelease {
    TableRows* t;
    ~TableRelease() { t->release(); }
};

// The column of that name when it holds numbers; -1 when it is absent.
// -2 after "dcplot Error: column NAME of PATH is not numeric." when it holds texts.
int numericColumn(const TableRows& t, const char* name, const char* path);

// DC writes 9999 where a value is missing (an atom not in the structure, a
// shift with no surface): anything above 900 is no measurement, and neither
// is a value no page can show.
bool isMeasured(float value);

// The text after "DATA name" in the header, trailing blanks dropped and cut
// to size - 1 characters; empty when the table has no such line.
void headerValue(const TableRows& t, const char* name, char* text, int size);

// The last path component, for titles.
const char* baseName(const char* path);
