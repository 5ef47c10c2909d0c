// Reading DC's search report (-outS). Its layout does not follow the table
// rows: a VARS and a FORMAT line come once, then each row's values run on
// into the next text line (its last four values begin the next line) and
// the last line has no newline. The body is therefore read as one stream of
// values, as many to a row as VARS has names.
#pragma once

#include "util/alloc.h"

struct SearchPoint {
    double index;      // INDEX: the structure's place in the search list
    const char* name;  // P_NAME, inside the report's text
    double res1;       // P_RES1: first structure residue of the offset
    double rms;        // D_RMS
    int dN;            // D_N, couplings that took part; 1 when the report has no D_N
    int row;           // 1-based report row
    int structure;     // index into SearchReport::structures
};

// A structure of the search (one INDEX and P_NAME), in the order of the report.
struct SearchStructure {
    double index;
    const char* name;
    int count;  // its rows
    int best;   // the point of its lowest D_RMS among rows with couplings; -1 if none
};

struct SearchReport {
    TrackedVector<char, "plotText"> text;  // the file, tokens cut out in place
    TrackedVector<SearchPoint, "plotPoints"> points;
    TrackedVector<SearchStructure, "plotStructs"> structures;
    // D_RES1 and D_RESN of the first row, the table's residue range; empty when absent.
    char tableFirst[24] = "";
    char tableLast[24] = "";
};

// 0, or 1 after a "dcplot Error: ..." message.
int readSearchReport(const char* path, SearchReport* report);
