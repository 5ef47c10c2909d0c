// Table files: the self-describing text tables that hold every input and
// output of DC. A file names its columns (VARS), gives each a printf format
// that also decides its type (FORMAT), optional tolerances, a numeric and a
// text null marker, free header lines (REMARK, DATA, #) and one data line per
// row. In memory the values are one float matrix, row after row; integers are
// stored as floats and texts as the index of the text in the column's list of
// distinct texts.
#pragma once

#include <cstdio>

// Column types, from the last character of the column's format.
enum TabVarType { kTabText = 1, kTabInt = 2, kTabReal = 3 };

// Numeric null marker of a file that has no NULLVALUE line.
constexpr int kTabNullDefault = -99999;

// Text written for a null text field.
constexpr const char* kTabNullText = "_NULLTXT";

// One column.
struct TabVar {
    int type;         // kTabText, kTabInt or kTabReal
    float tolerance;  // from TOLERANCE, else 0
    char* name;       // owned ("strDup")
    char* format;     // owned ("strDup"), underscores already turned into blanks
    int textCount;    // distinct texts of a text column
    char** texts;     // owned ("mapText"), textCount + 1 entries, the last null
};

// A whole table as the reader hands it out.
struct TabData {
    float* values;  // rows x columns, row after row ("table")
    int columns;
    int rows;
    TabVar* vars;  // one per column ("table")
};

// Kept header lines: a singly linked list that always ends in one empty node
// (text null). Nodes are tagged "table", texts "strDup".
struct TabHeader {
    char* text;
    TabHeader* next;
};

// Reading. rdTable2 returns 0 or 1 (after a message); on failure every output
// is empty. A file without data lines is an error unless allowEmpty is set,
// when it gives no columns and no rows. With readData 0 only the columns are
// made: values stays null and rows gives the number of data lines. While the
// rows are read, the file's REMARK, DATA and # lines are appended to hdr when
// one is given. Numbers equal to the file's NULLVALUE become nullValue;
// texts equal to its NULLSTRING keep the file's numeric null marker.
int rdTable2(const char* path, float** values, int* columns, int* rows, TabVar** vars,
             TabHeader* hdr, float nullValue, int allowEmpty, int readData);
int rdTable(const char* path, float** values, int* columns, int* rows, TabVar** vars,
            float nullValue);
int rdTable2(const char* path, TabData* table, TabHeader* hdr, float nullValue, int allowEmpty,
             int readData);

// 1 when the line holds a row of values: it has a token and its first token,
// upper-cased, is no keyword and does not begin with "#".
int isDataLine(const char* line);
// Number of data lines of a file; 1 after a message when it cannot be opened.
int cntDataLine(const char* path, int* count);
// Index of text in the column's distinct texts, appending it when new;
// -1 after a message when the list cannot grow.
int mapText(TabVar* var, const char* text);

// Writing; path "-" is standard output. Returns 0, or 1 when the file cannot
// be opened, a text index is bad or a column type is unknown. With skipFlag
// set, rows whose value in column skipColumn is negative are left out.
int wrTable2(const char* path, const float* values, int columns, int rows, const TabVar* vars,
             int nullValue, const TabHeader* hdr, int skipFlag, int skipColumn);
int wrTable(const char* path, const float* values, int columns, int rows, const TabVar* vars,
            int nullValue, const TabHeader* hdr);
// A matrix whose columns are all real, named prefix1, prefix2, ...
int wrTableN(const char* path, const float* values, int columns, int rows, const char* prefix,
             const char* format, int nullValue, const TabHeader* hdr, float tolerance);

// Column lookup without regard to case, from the last column backwards; -1
// when absent.
int getTabVar(const TabVar* vars, int columns, const char* name);
// Prints row[column] with its column's format into text (size bytes).
// getTabVal writes "???" and returns 1 for a bad text index or type;
// fmtTabVar leaves "(Null)" then.
int getTabVal(const float* row, const TabVar* vars, int column, char* text, int size);
char* fmtTabVar(const float* row, const TabVar* vars, int column, char* text, int size);
// Parses the first token of text by the column's type into row[column]; text
// columns go through the distinct-text list. 1 when it does not convert.
int setTabVal(float* row, TabVar* vars, int column, const char* text);

// Header values: the rest of the first "DATA name ..." line from its third
// token (DATA and name compared without regard to case); null when absent.
const char* getTabData(const TabHeader* hdr, const char* name);
float getTabDataR(const TabHeader* hdr, const char* name);
int getTabDataI(const TabHeader* hdr, const char* name);

// Column operations; 0 or 1 after a message.
int addTabVar(TabVar** vars, int* columns, const char* name, const char* format, int type,
              float tolerance);
int chTabVar(TabVar* var, const char* name, const char* format, int type, float tolerance);
// Widens every row of a rows x oldColumns matrix by added zero columns.
int addMatVar(float** values, int rows, int oldColumns, int added);

// Header lists.
TabHeader* hdrInit();
int addHdrLine(const char* text, TabHeader* hdr);
void freeHdr(TabHeader* hdr);

// Frees the matrix, every column's name, format and texts, and the columns.
void freeTab(float* values, TabVar* vars, int columns, int rows);
void freeTab(TabData* table);
