// Key texts of the structure index. The indexer stores records under these
// texts and the lookups rebuild the same texts, so both go through here.
#pragma once

#include <cstddef>

struct PDBAtom;

constexpr std::size_t kKeySize = 256;

// "%d %-2s %-4s": residue number, chain, segment (ignored fields are blank).
void resKey(char* key, int resID, const char* chain, const char* seg);
// "%-2s %-4s" of chain and segment; an ignored field is empty.
void chainKey(char* key, const char* chain, const char* seg);
// "%-4s %-2s" of segment and chain; an ignored field is empty.
void segKey(char* key, const char* seg, const char* chain);
// The key an atom is stored under, in the current key mode.
void atomKey(char* key, const PDBAtom* atom);
// The key findAtom searches: no alt-loc, no insertion code.
void atomLookupKey(char* key, int resID, const char* atomName, const char* chain, const char* seg);
