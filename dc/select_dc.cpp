#include "dc/select_dc.h"

#include <strings.h>

#include <cstdio>
#include <cstring>

#include "util/token.h"

namespace {

bool inRange(int value, int first, int last) { return first <= value && value <= last; }

bool passesMode(const DCValue& v, int first, int last, int mode) {
    int lo = v.residI < v.residJ ? v.residI : v.residJ;
    int hi = v.residI < v.residJ ? v.residJ : v.residI;
    switch (mode) {
        case kSelectBoth: return inRange(v.residI, first, last) && inRange(v.residJ, first, last);
        case kSelectEither: return inRange(v.residI, first, last) || inRange(v.residJ, first, last);
        case kSelectMin: return inRange(lo, first, last);
        default: return inRange(hi, first, last);
    }
}

bool isAny(const char* filter) { return std::strcmp(filter, "*") == 0; }

bool sideMatches(const char* name, const char* filter) {
    return isAny(filter) || strcasecmp(name, filter) == 0;
}

bool filtersMatch(const DCValue& v, const char* chain, const char* seg) {
    bool chainOk = isAny(chain) || sideMatches(v.chainI, chain) || sideMatches(v.chainJ, chain);
    bool segOk = isAny(seg) || sideMatches(v.segI, seg) || sideMatches(v.segJ, seg);
    return chainOk && segOk;
}

// The extreme residue number over the sides matching the filters.
bool extremeResid(const DCValue* couplings, int count, const char* chain, const char* seg,
                  bool largest, int* resid) {
    bool found = false;
    for (int i = 0; i < count; i++) {
        const DCValue& v = couplings[i];
        const int sides[2] = {v.residI, v.residJ};
        const bool matches[2] = {sideMatches(v.chainI, chain) && sideMatches(v.segI, seg),
                                 sideMatches(v.chainJ, chain) && sideMatches(v.segJ, seg)};
        for (int s = 0; s < 2; s++) {
            if (!matches[s]) continue;
            if (!found || (largest ? sides[s] > *resid : sides[s] < *resid)) *resid = sides[s];
            found = true;
        }
    }
    return found;
}

void replaceWord(char* token, const char* word, const DCValue* couplings, int count,
                 const char* chain, const char* seg, bool largest) {
    if (strcasecmp(token, word) != 0) return;
    int resid = 0;
    if (!extremeResid(couplings, count, chain, seg, largest, &resid)) resid = 0;
    std::snprintf(token, 1024, "%d", resid);
}

}  // namespace

int selectD(DCValue* couplings, int count, int first, int last, int mode) {
    int selected = 0;
    for (int i = 0; i < count; i++) {
        DCValue& v = couplings[i];
        v.use = isPresent(v.dObs) && passesMode(v, first, last, mode);
        selected += v.use;
    }
    return selected;
}

int selectDRange(DCValue* couplings, int count, int a, int b, const char* chain, const char* seg,
                 int mode) {
    if (a > b) {
        int swap = a;
        a = b;
        b = swap;
    }
    int inUse = 0;
    for (int i = 0; i < count; i++) {
        DCValue& v = couplings[i];
        if (!isPresent(v.dObs)) continue;
        if (v.use) {
            inUse++;
            continue;
        }
        if (!filtersMatch(v, chain, seg)) continue;
        int lo = v.residI < v.residJ ? v.residI : v.residJ;
        int hi = v.residI < v.residJ ? v.residJ : v.residI;
        bool match;
        switch (mode) {
            case kSelectBoth: match = a <= lo && hi <= b; break;
            case kSelectMin: match = inRange(lo, a, b); break;
            case kSelectEither: match = inRange(lo, a, b) || inRange(hi, a, b); break;
            default: match = inRange(hi, a, b); break;
        }
        if (!match) continue;
        v.use = 1;
        inUse++;
    }
    return inUse;
}

int skipD(DCValue* couplings, int count, const int* residues, int residueCount, int selectedCount) {
    if (!residues || residueCount < 1) return selectedCount;
    int inUse = 0;
    for (int i = 0; i < count; i++) {
        DCValue& v = couplings[i];
        if (!v.use) continue;
        for (int k = 0; k < residueCount; k++) {
            if (v.residI == residues[k] || v.residJ == residues[k]) v.use = 0;
        }
        inUse += v.use;
    }
    return inUse;
}

int getDCSelectStr(int mode, int first, int last, char* buffer) {
    const char* format;
    switch (mode) {
        case kSelectBoth: format = "(ResID I AND ResID J) Limits: %d to %d"; break;
        case kSelectEither: format = "(ResID I OR ResID J) Limits: %d to %d"; break;
        case kSelectMin: format = "Min(ResID I, ResID J) Limits: %d to %d"; break;
        case kSelectMax: format = "Max(ResID I, ResID J) Limits: %d to %d"; break;
        default: std::sprintf(buffer, "Unknown Selection Mode"); return 1;
    }
    std::sprintf(buffer, format, first, last);
    return 0;
}

void getDCSelFirst(char* token, const DCValue* couplings, int count, const char* chain,
                   const char* seg) {
    replaceWord(token, "first", couplings, count, chain, seg, false);
}

void getDCSelLast(char* token, const DCValue* couplings, int count, const char* chain,
                  const char* seg) {
    replaceWord(token, "last", couplings, count, chain, seg, true);
}
