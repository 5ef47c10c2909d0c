// The homology table homo.tab: a dissimilarity of residue pairs made from the
// BLOSUM62 substitution scores s, d(a,b) = (s(a,a) + s(b,b))/2 - s(a,b), so
// that a residue against itself scores 0 and the score grows as two residues
// are less alike. "xPRO" (a residue followed by proline) is a residue of any
// type but glycine and proline: its row holds the mean dissimilarity of those
// 18 types to each residue, and 0 against itself.
#pragma once

#include <string>
#include <vector>

struct HomologyTable {
    std::vector<std::string> names;  // three-letter names, then xPRO
    std::vector<std::vector<float>> d;
};

// Reads blosum62.txt and derives the table: 0, or 1 after a message.
int readHomology(const char* path, HomologyTable* table);

// Writes homo.tab (RESNAME and one column per name): 0, or 1 after a message.
int writeHomology(const char* path, const HomologyTable& table);
