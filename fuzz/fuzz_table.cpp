// Table files: the bytes are written to a scratch file and read the ways DC
// reads tables (with kept header lines, empty tables allowed or not, columns
// only), then every cell and header value is looked up the way callers do
// and the table is written out again.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "fuzz/fuzz_support.h"
#include "util/table.h"
#include "util/token.h"

namespace {

constexpr float kNull = -9999.0f;

void fail(const char* what) {
    dprintf(2, "dc fuzz: %s\n", what);
    std::abort();
}

// Every lookup a caller makes of a table that was read.
void visit(const TabData& tab, const TabHeader* hdr) {
    char text[256];
    for (int c = 0; c < tab.columns; c++) {
        // Looking a column up by its own name must find a column of that name.
        if (!tab.vars[c].name) continue;
        int found = getTabVar(tab.vars, tab.columns, tab.vars[c].name);
        if (found < c) fail("getTabVar misses a column by its own name");
    }
    for (int r = 0; r < tab.rows; r++) {
        const float* row = tab.values + static_cast<int64_t>(r) * tab.columns;
        for (int c = 0; c < tab.columns; c++) {
            getTabVal(row, tab.vars, c, text, sizeof text);
            fmtTabVar(row, tab.vars, c, text, 8);  // a narrow buffer truncates
        }
    }
    for (const TabHeader* h = hdr; h && h->text; h = h->next) {
        if (cntToken(h->text) < 2) continue;
        std::string name = getToken(2, h->text);
        getTabData(hdr, name.c_str());
        getTabDataR(hdr, name.c_str());
        getTabDataI(hdr, name.c_str());
    }
    getTabData(hdr, "N");
    wrTable2("/dev/null", tab.values, tab.columns, tab.rows, tab.vars, static_cast<int>(kNull), hdr,
             0, 0);
}

// Reads the file once with the given switches; a failed read must leave
// every output empty.
void readOnce(const char* path, int allowEmpty, int readData) {
    TabHeader* hdr = hdrInit();
    TabData tab{nullptr, 0, 0, nullptr};
    int status = rdTable2(path, &tab, hdr, kNull, allowEmpty, readData);
    if (status != 0) {
        if (tab.values || tab.vars || tab.columns || tab.rows) fail("failed read left a table");
    } else if (readData) {
        visit(tab, hdr);
    }
    freeTab(&tab);
    freeHdr(hdr);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::quietStreams();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::string path = fuzz::scratchPath("in.tab");
    fuzz::writeFile(path, data, size);
    int64_t start = fuzz::bytesInUse();
    readOnce(path.c_str(), 0, 1);
    readOnce(path.c_str(), 1, 1);
    readOnce(path.c_str(), 1, 0);
    int count = 0;
    cntDataLine(path.c_str(), &count);
    fuzz::checkBalance(start, "table input");
    return 0;
}
