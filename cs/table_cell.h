// Cells of the random-coil and homology tables read as names.
#pragma once

#include "util/fixed_text.h"

struct TabVar;

// The text of a text column's cell, or the cell printed with its column's
// format (leading and trailing blanks dropped) for any other column; cut to
// a record name. A null text cell gives the empty name.
void tabCellName(const TabVar* vars, const float* row, int column, char (&name)[kNameSize]);
