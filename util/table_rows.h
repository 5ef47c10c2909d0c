// A table file read whole for a reader that goes through it row by row: the
// values with their column descriptions and kept header lines, cells read
// as names, and the check that integer fields hold integers.
#pragma once

#include <cstdint>
#include <initializer_list>

#include "util/fixed_text.h"
#include "util/table.h"

struct TableRows {
    float* values = nullptr;
    int columns = 0;
    int rows = 0;
    TabVar* vars = nullptr;
    TabHeader* hdr = nullptr;

    const float* row(int r) const { return values + static_cast<int64_t>(r) * columns; }
    // The cell of a column, or the fallback for an absent column (index -1).
    float cell(int r, int column, float fallback) const {
        return column < 0 ? fallback : row(r)[column];
    }
    void release() {
        freeTab(values, vars, columns, rows);
        freeHdr(hdr);
    }
};

// The text of a text column's cell, or the cell printed with its column's
// format (leading and trailing blanks dropped) for any other column; cut to
// a record name. A null text cell gives the empty name.
void tabCellName(const TabVar* vars, const float* row, int column, char (&name)[kNameSize]);

// Whether the residue numbers, indices and flags of row r (the given
// columns; -1 for an absent one) lie within +-999,999,999, as an integer
// column's must: a real or text column may hold more, which no int takes.
// False after "DC Error: bad number %g for %s in row %d of %s.\n".
bool integerCellsFit(const TableRows& t, int r, std::initializer_list<int> columns,
                     const char* fileName);
