#include "util/symtab.h"

#include <cstdint>
#include <cstdio>
#include <cstring>

#include "util/alloc.h"
#include "util/hash.h"

namespace {

constexpr const char* kTag = "hsym";

// The last symbol ID handed out, program-wide.
int lastID = 0;
// Shared result of hSymVal2Str.
char valueText[1024];

const char* orEmpty(const char* text) { return text ? text : ""; }

// The slot's leading bytes read as T, whatever type was last stored there.
template <class T>
T slotAs(const HVal& val) {
    T out;
    std::memcpy(&out, &val, sizeof out);
    return out;
}

// A symbol made by hAddSym keeps its name right behind the record.
char* inlineName(HSym* sym) { return reinterpret_cast<char*>(sym + 1); }
int64_t symBlockBytes(int64_t nameBytes) { return static_cast<int64_t>(sizeof(HSym)) + nameBytes; }

// Arena blocks start small (a residue or chain table holds a few names) and
// double up to a limit, so a table of a million names needs some hundreds.
constexpr int64_t kArenaFirstBytes = 4 << 10;
constexpr int64_t kArenaMaxBytes = 1 << 20;

}  // namespace

// One block of a growing table's symbols, the symbols following the header.
struct HSymArena {
    HSymArena* next;
    int64_t size;  // bytes of the whole block
    int64_t used;  // bytes handed out, header included
};

namespace {

// The hash a table files its names under: the ELF hash of the documented
// buckets, or for a growing table, whose buckets nobody inspects, 64-bit
// FNV-1a, which keeps the numbered keys of a structure index apart (the ELF
// hash gives a million atom keys fewer than 400,000 distinct values).
unsigned long nameHash(const char* name, const HSymTab* tab) {
    if (!tab->grows) return elfHash(name);
    uint64_t h = 14695981039346656037ULL;
    for (const char* p = name; *p; p++) h = (h ^ static_cast<unsigned char>(*p)) * 1099511628211ULL;
    return static_cast<unsigned long>(h);
}

int64_t roundedUp(int64_t bytes) { return (bytes + 7) & ~static_cast<int64_t>(7); }

// bytes from the table's newest block, or a new block; null when memory runs out.
void* arenaTake(HSymTab* tab, int64_t bytes) {
    bytes = roundedUp(bytes);
    HSymArena* block = tab->arena;
    int64_t header = roundedUp(sizeof(HSymArena));
    if (!block || block->used + bytes > block->size) {
        int64_t size = block ? 2 * block->size : kArenaFirstBytes;
        if (size > kArenaMaxBytes) size = kArenaMaxBytes;
        if (size < header + bytes) size = header + bytes;
        block = static_cast<HSymArena*>(voidMalloc64(kTag, size));
        if (!block) return nullptr;
        block->next = tab->arena;
        block->size = size;
        block->used = header;
        tab->arena = block;
    }
    void* out = reinterpret_cast<char*>(block) + block->used;
    block->used += bytes;
    return out;
}

void arenaFree(HSymTab* tab) {
    for (HSymArena* block = tab->arena; block;) {
        HSymArena* next = block->next;
        unAlloc64(kTag, block, block->size);
        block = next;
    }
    tab->arena = nullptr;
}

bool usable(const HSymTab* tab) { return tab && tab->buckets && tab->nBuckets > 0; }

HSym* findInChain(HSym* head, const char* name, unsigned long hash) {
    for (HSym* sym = head; sym; sym = sym->next) {
        if (sym->hash == hash && std::strcmp(sym->name, name) == 0) return sym;
    }
    return nullptr;
}

int bucketOf(unsigned long hash, int nBuckets) {
    return static_cast<int>(hash % static_cast<unsigned long>(nBuckets));
}

void rehash(HSymTab* tab);

// Puts sym in front of its bucket; everything already there moves one deeper.
void linkAtHead(HSym* sym, HSymTab* tab) {
    HSym*& head = tab->buckets[bucketOf(sym->hash, tab->nBuckets)];
    int deepest = 0;
    for (HSym* other = head; other; other = other->next) deepest = ++other->depth;
    sym->next = head;
    if (head) head->prev = sym;
    head = sym;
    if (deepest > tab->maxDepth) tab->maxDepth = deepest;
    tab->nSyms++;
    if (tab->grows && tab->nSyms > tab->nBuckets) rehash(tab);
}

// Moves every symbol of a growing table (once it holds more symbols than
// buckets) into twice as many buckets (plus
// one, to stay odd). Each old chain is walked from its tail, oldest first,
// and its symbols are put at the heads of their new chains, so equal names
// keep their order. Depths are then the places in the new chains. When the
// new array cannot be had the table simply stays as it is.
void rehash(HSymTab* tab) {
    if (tab->nBuckets > (0x7fffffff - 1) / 2) return;
    int grown = 2 * tab->nBuckets + 1;
    auto* buckets = static_cast<HSym**>(
        voidMallocNull64(kTag, static_cast<int64_t>(grown) * static_cast<int64_t>(sizeof(HSym*))));
    if (!buckets) return;
    for (int b = 0; b < tab->nBuckets; b++) {
        HSym* sym = tab->buckets[b];
        while (sym && sym->next) sym = sym->next;
        while (sym) {
            HSym* older = sym;
            sym = sym->prev;
            HSym*& head = buckets[bucketOf(older->hash, grown)];
            older->prev = nullptr;
            older->next = head;
            if (head) head->prev = older;
            head = older;
        }
    }
    unAlloc64(kTag, tab->buckets,
              static_cast<int64_t>(tab->nBuckets) * static_cast<int64_t>(sizeof(HSym*)));
    tab->buckets = buckets;
    tab->nBuckets = grown;
    for (int b = 0; b < grown; b++) {
        int depth = 0;
        for (HSym* sym = buckets[b]; sym; sym = sym->next) sym->depth = depth++;
        if (depth - 1 > tab->maxDepth) tab->maxDepth = depth - 1;
    }
}

void unlink(HSym* sym) {
    for (HSym* other = sym->next; other; other = other->next) other->depth--;
    if (sym->next) sym->next->prev = sym->prev;
    HSymTab* tab = sym->tab;
    if (sym->prev) {
        sym->prev->next = sym->next;
    } else if (usable(tab)) {
        HSym*& head = tab->buckets[bucketOf(sym->hash, tab->nBuckets)];
        if (head == sym) head = sym->next;
    }
    if (tab) tab->nSyms--;
    sym->next = sym->prev = nullptr;
    sym->hash = 0;
    sym->tab = nullptr;
}

void releaseText(HSym* sym) {
    if (sym->textSize > 0) unAlloc64(kTag, sym->val.s, sym->textSize);
    sym->textSize = 0;
}

// Releases a symbol's text, name and record; it must be unlinked already,
// or belong to a table that is going away.
void releaseSym(HSym* sym) {
    releaseText(sym);
    if (sym->inArena) return;
    if (sym->name == inlineName(sym)) {
        unAlloc64(kTag, sym, symBlockBytes(static_cast<int64_t>(std::strlen(sym->name)) + 1));
        return;
    }
    strFree2(kTag, sym->name);
    unAlloc64(kTag, sym, sizeof(HSym));
}

// The symbol for a new value with a cleared slot. A text it owned is given
// back first, since the slot is about to stop pointing at it.
HSym* clearedSym(const char* name, int type, HSymTab* tab) {
    HSym* sym = hFindOrAddSym(name, type, tab);
    if (!sym) return nullptr;
    releaseText(sym);
    hValNull(&sym->val);
    return sym;
}

template <class Read>
int getValue(const char* name, const HSymTab* tab, Read read) {
    HSym* sym = hFindSym(name, tab);
    if (!sym) return 0;
    read(sym->val);
    return 1;
}

// The n-th symbol (from 1) that satisfies match, buckets in order and each
// chain from its head.
template <class Match>
HSym* nthMatch(const HSymTab* tab, int n, Match match) {
    if (!usable(tab) || n < 1) return nullptr;
    for (int b = 0; b < tab->nBuckets; b++) {
        for (HSym* sym = tab->buckets[b]; sym; sym = sym->next) {
            if (match(sym) && --n == 0) return sym;
        }
    }
    return nullptr;
}

// A text symbol whose slot was overwritten through another setter no longer
// holds a text; its raw slot is shown instead.
const char* textValue(const HSym* sym) {
    if (sym->textSize > 0) return sym->val.s;
    unsigned long raw = slotAs<unsigned long>(sym->val);
    if (raw == 0) return "";
    std::snprintf(valueText, sizeof valueText, "%lu", raw);
    return valueText;
}

}  // namespace

HSymTab* hSymTabAlloc(int nBuckets) {
    if (nBuckets < 1) nBuckets = HSYM_DEFAULT_BUCKETS;
    auto* tab = static_cast<HSymTab*>(voidMalloc64(kTag, sizeof(HSymTab)));
    if (!tab) {
        std::fprintf(stderr, "SymTabAlloc Error allocating table.\n");
        return nullptr;
    }
    hTabNull(tab);
    int64_t bytes = static_cast<int64_t>(nBuckets) * static_cast<int64_t>(sizeof(HSym*));
    tab->buckets = static_cast<HSym**>(voidMallocNull64(kTag, bytes));
    if (!tab->buckets) {
        std::fprintf(stderr, "SymTabAlloc Error allocating memory.\n");
        unAlloc64(kTag, tab, sizeof(HSymTab));
        return nullptr;
    }
    tab->nBuckets = nBuckets;
    return tab;
}

HSymTab* hSymTabAllocGrowing(int nBuckets) {
    HSymTab* tab = hSymTabAlloc(nBuckets);
    if (tab) tab->grows = 1;
    return tab;
}

void hSymTabFree(HSymTab* tab) {
    if (!tab) return;
    if (tab->buckets) {
        for (int b = 0; b < tab->nBuckets; b++) {
            for (HSym* sym = tab->buckets[b]; sym;) {
                HSym* next = sym->next;
                releaseSym(sym);
                sym = next;
            }
        }
        unAlloc64(kTag, tab->buckets,
                  static_cast<int64_t>(tab->nBuckets) * static_cast<int64_t>(sizeof(HSym*)));
    }
    arenaFree(tab);
    unAlloc64(kTag, tab, sizeof(HSymTab));
}

int hSymNameLoc(const char* name, int nBuckets) {
    if (nBuckets < 1) return 0;
    return static_cast<int>(elfHash(orEmpty(name)) % static_cast<unsigned long>(nBuckets));
}

HSym* hAddSym(const char* name, int type, HSymTab* tab) {
    if (!usable(tab)) return nullptr;
    // The symbol and its name in one block: half the allocations, and the
    // name sits beside the record a lookup has just read.
    name = orEmpty(name);
    int64_t nameBytes = static_cast<int64_t>(std::strlen(name)) + 1;
    void* block = tab->grows ? arenaTake(tab, symBlockBytes(nameBytes))
                             : voidMalloc64(kTag, symBlockBytes(nameBytes));
    auto* sym = static_cast<HSym*>(block);
    if (!sym) {
        std::fprintf(stderr, "AddSym Error Allocating Symbol.\n");
        return nullptr;
    }
    hSymNull(sym);
    sym->inArena = tab->grows;
    sym->name = inlineName(sym);
    std::memcpy(sym->name, name, static_cast<size_t>(nameBytes));
    sym->hash = nameHash(sym->name, tab);
    sym->id = ++lastID;
    sym->type = type;
    sym->tab = tab;
    linkAtHead(sym, tab);
    return sym;
}

HSym* hFindOrAddSym(const char* name, int type, HSymTab* tab) {
    HSym* sym = hFindSym(name, tab);
    if (!sym) return hAddSym(name, type, tab);
    if (sym->type != type) {
        std::fprintf(stderr, "Symbol Notice: Type Clash for Symbol %s\n", sym->name);
    }
    return sym;
}

HSym* hFindSym(const char* name, const HSymTab* tab) {
    if (!usable(tab)) return nullptr;
    name = orEmpty(name);
    unsigned long hash = nameHash(name, tab);
    return findInChain(tab->buckets[bucketOf(hash, tab->nBuckets)], name, hash);
}

unsigned long hSymHash(const char* name, const HSymTab* tab) {
    return usable(tab) ? nameHash(orEmpty(name), tab) : 0;
}

void hSymPrefetchBucket(unsigned long hash, const HSymTab* tab) {
    if (usable(tab)) __builtin_prefetch(&tab->buckets[bucketOf(hash, tab->nBuckets)]);
}

int hSymExists(const char* name, const HSymTab* tab) { return hFindSym(name, tab) ? 1 : 0; }

int hSetSymDbl(const char* name, double value, HSymTab* tab) {
    HSym* sym = clearedSym(name, HSYM_DBL, tab);
    if (!sym) return 1;
    sym->val.d = value;
    return 0;
}

int hSetSymFlt(const char* name, float value, HSymTab* tab) {
    HSym* sym = clearedSym(name, HSYM_FLT, tab);
    if (!sym) return 1;
    sym->val.f = value;
    return 0;
}

int hSetSymInt(const char* name, int value, HSymTab* tab) {
    HSym* sym = clearedSym(name, HSYM_INT, tab);
    if (!sym) return 1;
    sym->val.i = value;
    return 0;
}

int hSetSymStr(const char* name, const char* value, HSymTab* tab) {
    HSym* sym = hFindOrAddSym(name, HSYM_STR, tab);
    if (!sym) return 1;
    // Copy before releasing the old text: the new value may be that text.
    char* copy = nullptr;
    long size = 0;
    if (value) {
        size = static_cast<long>(std::strlen(value)) + 1;
        copy = charMalloc64(kTag, size);
        if (!copy) return 1;
        std::memcpy(copy, value, static_cast<size_t>(size));
    }
    releaseText(sym);
    hValNull(&sym->val);
    sym->val.s = copy;
    sym->textSize = size;
    return 0;
}

int hSetSymPtr(const char* name, void* value, HSymTab* tab) {
    HSym* sym = clearedSym(name, HSYM_PTR, tab);
    if (!sym) return 1;
    sym->val.p = value;
    return 0;
}

int hSetSymLong(const char* name, long value, HSymTab* tab) {
    HSym* sym = clearedSym(name, HSYM_LONG, tab);
    if (!sym) return 1;
    sym->val.l = value;
    return 0;
}

int hGetSymDbl(const char* name, const HSymTab* tab, double* value) {
    return getValue(name, tab, [&](const HVal& v) {
        if (value) *value = slotAs<double>(v);
    });
}

int hGetSymFlt(const char* name, const HSymTab* tab, float* value) {
    return getValue(name, tab, [&](const HVal& v) {
        if (value) *value = slotAs<float>(v);
    });
}

int hGetSymInt(const char* name, const HSymTab* tab, int* value) {
    return getValue(name, tab, [&](const HVal& v) {
        if (value) *value = slotAs<int>(v);
    });
}

int hGetSymStr(const char* name, const HSymTab* tab, char** value) {
    return getValue(name, tab, [&](const HVal& v) {
        if (value) *value = slotAs<char*>(v);
    });
}

int hGetSymPtr(const char* name, const HSymTab* tab, void** value) {
    return getValue(name, tab, [&](const HVal& v) {
        if (value) *value = slotAs<void*>(v);
    });
}

int hGetSymLong(const char* name, const HSymTab* tab, long* value) {
    return getValue(name, tab, [&](const HVal& v) {
        if (value) *value = slotAs<long>(v);
    });
}

HSym* hFindSymID(const HSymTab* tab, int id) {
    return nthMatch(tab, 1, [&](const HSym* sym) { return sym->id == id; });
}

HSym* hFindSymInt(const HSymTab* tab, int value, int n) {
    return nthMatch(tab, n, [&](const HSym* sym) { return slotAs<int>(sym->val) == value; });
}

HSym* hFindSymStr(const HSymTab* tab, const char* text, int n) {
    if (!text) return nullptr;
    return nthMatch(tab, n, [&](const HSym* sym) {
        return sym->textSize > 0 && std::strcmp(sym->val.s, text) == 0;
    });
}

HSym* hFindSymPtr(const HSymTab* tab, const void* pointer, int n) {
    return nthMatch(tab, n, [&](const HSym* sym) { return slotAs<void*>(sym->val) == pointer; });
}

const char* hSymVal2Str(const HSym* sym) {
    if (!sym) return "NULL";
    switch (sym->type) {
        case HSYM_DBL:
            std::snprintf(valueText, sizeof valueText, "%f", slotAs<double>(sym->val));
            break;
        case HSYM_FLT:
            std::snprintf(valueText, sizeof valueText, "%f",
                          static_cast<double>(slotAs<float>(sym->val)));
            break;
        case HSYM_INT:
            std::snprintf(valueText, sizeof valueText, "%d", slotAs<int>(sym->val));
            break;
        case HSYM_STR: return textValue(sym);
        case HSYM_LONG:
            std::snprintf(valueText, sizeof valueText, "%ld", slotAs<long>(sym->val));
            break;
        default:
            std::snprintf(valueText, sizeof valueText, "%lu", slotAs<unsigned long>(sym->val));
            break;
    }
    return valueText;
}

void hSymDump(const HSymTab* tab) {
    if (!usable(tab)) return;
    for (int b = 0; b < tab->nBuckets; b++) {
        for (const HSym* sym = tab->buckets[b]; sym; sym = sym->next) {
            std::printf(" Loc: %4d  Depth: %3d Name: %-16s Value: %s\n", b, sym->depth, sym->name,
                        hSymVal2Str(sym));
        }
    }
}

void hSymFree(HSym* sym) {
    if (!sym) return;
    unlink(sym);
    releaseSym(sym);
}

void hSymFreeR(HSym* sym) {
    if (!sym) return;
    // Freeing from the tail leaves no symbol behind the one freed, so no
    // depths need lowering and the chain goes in linear time.
    HSym* last = sym;
    while (last->next) last = last->next;
    for (;;) {
        HSym* before = last->prev;
        bool done = last == sym;
        hSymFree(last);
        if (done) return;
        last = before;
    }
}

char* hNameAlloc(const char* name) {
    char* copy = strDup2(kTag, orEmpty(name));
    if (!copy) std::fprintf(stderr, "NameAlloc Error allocating name.\n");
    return copy;
}

void hValNull(HVal* val) {
    if (val) std::memset(val, 0, sizeof *val);
}

void hSymNull(HSym* sym) {
    if (!sym) return;
    sym->name = nullptr;
    sym->depth = 0;
    sym->id = 0;
    sym->type = 0;
    sym->inArena = 0;
    sym->textSize = 0;
    hValNull(&sym->val);
    sym->next = sym->prev = nullptr;
    sym->tab = nullptr;
}

void hTabNull(HSymTab* tab) {
    if (!tab) return;
    tab->nBuckets = 0;
    tab->nSyms = 0;
    tab->maxDepth = 0;
    tab->buckets = nullptr;
    tab->grows = 0;
    tab->arena = nullptr;
}

int hSymLastID() { return lastID; }

void hSymResetID() { lastID = 0; }
