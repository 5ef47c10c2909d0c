// The numbered notes written into every simulated coupling table, documenting
// its columns and formulas.
#pragma once

#include <cstdio>

void writeDCNotes(FILE* out);
