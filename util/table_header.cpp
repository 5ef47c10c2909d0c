// Header lists of table files and the DATA values they carry.
#include <strings.h>

#include <cstdio>
#include <cstring>

#include "util/alloc.h"
#include "util/table.h"
#include "util/token.h"

namespace {

TabHeader* newEmptyNode() {
    auto* node = static_cast<TabHeader*>(voidMalloc64("table", sizeof(TabHeader)));
    if (node) *node = TabHeader{nullptr, nullptr};
    return node;
}

const char* skipWhite(const char* p) {
    while (*p && isWhiteChar(*p)) p++;
    return p;
}

const char* skipWord(const char* p) {
    while (*p && !isWhiteChar(*p)) p++;
    return p;
}

// True when the word starting at p, of the given length, equals text
// without regard to case.
bool wordIs(const char* p, std::size_t length, const char* text) {
    return length == std::strlen(text) && strncasecmp(p, text, length) == 0;
}

}  // namespace

TabHeader* hdrInit() { return newEmptyNode(); }

int addHdrLine(const char* text, TabHeader* hdr) {
    if (!hdr) return 1;
    while (hdr->text) hdr = hdr->next;
    TabHeader* tail = newEmptyNode();
    if (!tail) {
        std::fprintf(stderr, "AddHdrLine Error allocating header item.\n");
        return 1;
    }
    char* copy = strDup(text ? text : "");
    if (!copy) {
        unAlloc64("table", tail, sizeof(TabHeader));
        std::fprintf(stderr, "AddHdrLine Error allocating header line.\n");
        return 1;
    }
    hdr->text = copy;
    hdr->next = tail;
    return 0;
}

void freeHdr(TabHeader* hdr) {
    while (hdr) {
        TabHeader* next = hdr->next;
        strFree(hdr->text);
        unAlloc64("table", hdr, sizeof(TabHeader));
        hdr = next;
    }
}

const char* getTabData(const TabHeader* hdr, const char* name) {
    if (!name) return nullptr;
    for (; hdr && hdr->text; hdr = hdr->next) {
        const char* first = skipWhite(hdr->text);
        const char* firstEnd = skipWord(first);
        if (!wordIs(first, firstEnd - first, "DATA")) continue;
        const char* second = skipWhite(firstEnd);
        const char* secondEnd = skipWord(second);
        if (!wordIs(second, secondEnd - second, name)) continue;
        return skipWhite(secondEnd);
    }
    return nullptr;
}

float getTabDataR(const TabHeader* hdr, const char* name) {
    const char* text = getTabData(hdr, name);
    float value = 0.0f;
    if (!text || std::sscanf(text, "%f", &value) != 1) return 0.0f;
    return value;
}

int getTabDataI(const TabHeader* hdr, const char* name) {
    const char* text = getTabData(hdr, name);
    int value = 0;
    if (!text || std::sscanf(text, "%d", &value) != 1) return 0;
    return value;
}
