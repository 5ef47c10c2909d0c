// Chained hash tables from exact, case-sensitive names to typed values
// (double, float, int, text, pointer, long). The structure index finds its
// residues, atoms, chains and segments through them, and the shift surfaces
// and random-coil values are looked up by name. Every block is counted by
// the tracked allocator under the tag "hsym".
#pragma once

// Value types of a symbol.
constexpr int HSYM_DBL = 1;
constexpr int HSYM_FLT = 2;
constexpr int HSYM_INT = 3;
constexpr int HSYM_STR = 4;
constexpr int HSYM_PTR = 5;
constexpr int HSYM_LONG = 6;

// Buckets of a table asked for with a count below 1.
constexpr int HSYM_DEFAULT_BUCKETS = 253;

// One 8-byte value slot. Each getter reads it as its own type, whatever the
// symbol's type says.
union HVal {
    double d;
    float f;
    int i;
    char* s;
    void* p;
    long l;
};
static_assert(sizeof(HVal) == 8, "the value slot is one 8-byte word");

struct HSymTab;

struct HSym {
    char* name;     // owned copy, kept in the symbol's own block
    int depth;      // symbols inserted in front of this one in its bucket
    int id;         // program-wide, the first symbol ever made has 1
    int type;       // HSYM_DBL ... HSYM_LONG
    int inArena;    // made in its growing table's arena: released with the table
    long textSize;  // bytes of an owned text value (length + 1), else 0
    HVal val;
    HSym* next;
    HSym* prev;
    HSymTab* tab;  // owning table
    // The name's full hash, so that a lookup compares names only when the
    // hashes agree (long chains stay cheap).
    unsigned long hash;
};

struct HSymTab {
    int nBuckets;
    int nSyms;
    int maxDepth;  // deepest chain depth seen since the table was made
    HSym** buckets;
    int grows;  // rehashed into more buckets as it fills (hSymTabAllocGrowing)
    // A growing table makes its symbols in large blocks of its own, so that
    // a million names cost a few allocations; they are released with it.
    struct HSymArena* arena;
};

// Tables. A count below 1 gives HSYM_DEFAULT_BUCKETS buckets.
HSymTab* hSymTabAlloc(int nBuckets);
// A table whose bucket array doubles whenever it holds more symbols than
// buckets, so that lookups stay short however many names it
// gets. Rehashing keeps the newer of two equal names in front and sets every
// depth to the symbol's place in its new chain; bucket numbers and depths
// therefore follow the current bucket count, and names are hashed with a
// 64-bit hash rather than the ELF hash of hSymNameLoc. Its symbols live in blocks of
// the table's own: freeing one unlinks it, its memory goes with the table.
// For index tables whose buckets nobody inspects.
HSymTab* hSymTabAllocGrowing(int nBuckets);
void hSymTabFree(HSymTab* tab);

// Bucket of a name: the ELF hash modulo the bucket count (0 for no buckets).
int hSymNameLoc(const char* name, int nBuckets);

// A new symbol at the head of its bucket, even when the name already exists.
HSym* hAddSym(const char* name, int type, HSymTab* tab);
// The existing symbol (with a notice on standard error when its type differs
// from the one asked for), else a new one.
HSym* hFindOrAddSym(const char* name, int type, HSymTab* tab);

// Lookups: the newest symbol of that name, or null. They never print.
HSym* hFindSym(const char* name, const HSymTab* tab);
int hSymExists(const char* name, const HSymTab* tab);
// For callers that know their next names: the hash a table files a name
// under, and a request to fetch its bucket ahead of the lookup (a large
// table's buckets are rarely in the cache).
unsigned long hSymHash(const char* name, const HSymTab* tab);
void hSymPrefetchBucket(unsigned long hash, const HSymTab* tab);

// Setters: 0 when stored, 1 when the symbol could not be made. A text is
// copied; an earlier owned text of the symbol is released.
int hSetSymDbl(const char* name, double value, HSymTab* tab);
int hSetSymFlt(const char* name, float value, HSymTab* tab);
int hSetSymInt(const char* name, int value, HSymTab* tab);
int hSetSymStr(const char* name, const char* value, HSymTab* tab);
int hSetSymPtr(const char* name, void* value, HSymTab* tab);
int hSetSymLong(const char* name, long value, HSymTab* tab);

// Getters: 1 when the symbol exists (the value is written only when a
// destination is given), 0 otherwise.
int hGetSymDbl(const char* name, const HSymTab* tab, double* value);
int hGetSymFlt(const char* name, const HSymTab* tab, float* value);
int hGetSymInt(const char* name, const HSymTab* tab, int* value);
int hGetSymStr(const char* name, const HSymTab* tab, char** value);
int hGetSymPtr(const char* name, const HSymTab* tab, void** value);
int hGetSymLong(const char* name, const HSymTab* tab, long* value);

// Reverse lookups over the buckets in order, each chain from its head. n
// counts matches from 1; the n-th match or null.
HSym* hFindSymID(const HSymTab* tab, int id);
HSym* hFindSymInt(const HSymTab* tab, int value, int n);
// Only symbols holding an owned text take part.
HSym* hFindSymStr(const HSymTab* tab, const char* text, int n);
HSym* hFindSymPtr(const HSymTab* tab, const void* pointer, int n);

// The value as text, valid until the next call ("NULL" for no symbol).
const char* hSymVal2Str(const HSym* sym);
// One line per symbol to standard output.
void hSymDump(const HSymTab* tab);

// Unlinks and releases one symbol, keeping its table's bookkeeping right.
void hSymFree(HSym* sym);
// Releases a symbol and every symbol behind it in its chain.
void hSymFreeR(HSym* sym);

char* hNameAlloc(const char* name);
void hValNull(HVal* val);
void hSymNull(HSym* sym);
void hTabNull(HSymTab* tab);

// The program-wide symbol ID counter: the last ID handed out, and a reset
// back to 0 so that the next symbol gets ID 1.
int hSymLastID();
void hSymResetID();
