// The program's version lines, printed by -version and at the head of the
// tables DC writes.
#pragma once

#include <cstdio>

// "<prefix>DC Dipolar Coupling Calculation. <documentation address>" and
// "<prefix>Quillon System <version> Rev <revision>", each with a newline.
void writeVersionLines(FILE* out, const char* prefix);
