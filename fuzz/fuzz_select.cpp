// Selection texts (-select): the bytes, up to the first NUL and at most as
// long as the run settings' text buffer holds, select couplings of a fixed
// table with chain and segment names. The count returned must be the number
// of couplings left in use, since DC reports it as the selection's size.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "app/settings.h"
#include "dc/dtab.h"
#include "dc/read_dc.h"
#include "dc/select_dc.h"
#include "fuzz/fixtures.h"
#include "fuzz/fuzz_support.h"

namespace {

DTab table;

int countInUse() {
    int n = 0;
    for (int i = 0; i < table.count; i++) n += table.couplings[i].use != 0;
    return n;
}

void fail(const char* what, int reported, int counted) {
    dprintf(2, "dc fuzz: %s: reported %d, %d in use\n", what, reported, counted);
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::quietStreams();
    std::string path = fuzz::scratchPath("chain.tab");
    fuzz::writeFile(path, fuzz::kChainCouplingTable);
    dTabNull(&table);
    if (readDC(path.c_str(), &table, 0) != 0 || table.count < 1) {
        dprintf(2, "dc fuzz: the fixed coupling table cannot be read\n");
        std::abort();
    }
    fuzz::releaseSharedBuffers();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    char text[kTextSize];
    size_t length = size < kTextSize - 1 ? size : kTextSize - 1;
    std::memcpy(text, data, length);
    text[length] = '\0';
    // The mode comes from the length, so that the text stays plain text.
    int mode = 1 + static_cast<int>(size % 4);

    int64_t start = fuzz::bytesInUse();
    for (int i = 0; i < table.count; i++) table.couplings[i].use = 0;
    int selected = strSelectD(table.couplings, table.count, text, mode);
    if (selected != countInUse()) fail("selection count", selected, countInUse());

    static const int skipped[] = {3, 5};
    int left = skipD(table.couplings, table.count, skipped, 2, selected);
    if (left != countInUse()) fail("count after skipping", left, countInUse());

    char report[1024];
    getDCSelectStr(mode, table.minResid, table.maxResid, report);
    fuzz::checkBalance(start, "selection text");
    return 0;
}
