// The sequence a shift table carries in its header: "DATA FIRST_RESID n"
// (the residue number of the first letter, 1 when absent) and one or more
// "DATA SEQUENCE" lines of one-letter codes, read as one text. Residues the
// sequence does not cover are named from the table's own rows.
#pragma once

#include <cstdint>
#include <cstdio>

#include "cs/cs_tab.h"

struct TabHeader;

// Fills seq from the header lines: the first residue and the letters of
// every DATA SEQUENCE line in order, blanks left out (letters stays null
// when there are none). Returns 0, or 1 after
// "TESSERA Error Allocating CS SeqInfo Structure.\n".
int readCSSeqInfo(const TabHeader* hdr, CSSeqInfo* seq);
// Releases the letters; the record is left without a sequence.
void freeCSSeqInfo(CSSeqInfo* seq);
// "DATA FIRST_RESID %d" and the letters as "DATA SEQUENCE" lines of at most
// 50 letters in blank-separated groups of 10; nothing without a sequence.
void writeCSSeqInfo(FILE* out, const CSSeqInfo* seq);

// The table's rows ordered by residue number, for finding the rows of one
// residue without a scan of the whole table.
struct CSResIndex {
    const CSValue* rows;
    int* order;  // row indices by (resID, row), tag "cs"
    int count;
};

// 0, or 1 after "DC Error Allocating CS Workspaces.\n".
int makeCSResIndex(const CSValue* rows, int count, CSResIndex* index);
void freeCSResIndex(CSResIndex* index);
// Position in index->order of the first row of residue resid, or -1.
int firstCSResRow(const CSResIndex* index, int64_t resid);

// The one-letter name of residue resid: the sequence's letter, else the
// one-letter code of the first table row of that residue ("?" for a name
// that is no amino acid), else "None". Written into name (16 bytes).
void csResName(const CSSeqInfo* seq, const CSResIndex* index, int64_t resid, char* name);
