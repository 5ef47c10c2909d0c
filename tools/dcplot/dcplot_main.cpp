// The dcplot command line: which plot, which input, which output.
#include <cstdio>
#include <cstring>

#include "tools/dcplot/plots.h"
#include "util/token.h"

namespace {

constexpr int kUsageStatus = 2;

struct PlotKind {
    const char* name;
    int (*plot)(const char* inPath, const char* outPath);
};

const PlotKind kKinds[] = {
    {"couplings", plotCouplings},
    {"shifts", plotShifts},
    {"search", plotSearch},
};

void showPlotUsage() {
    static const char* const lines[] = {
        "Usage: dcplot couplings IN.tab OUT.svg",
        "       dcplot shifts    IN.tab OUT.svg",
        "       dcplot search    IN.txt OUT.svg",
        "Draws one of DC's output files as a standalone SVG picture:",
        " couplings  observed vs back-calculated couplings of a DC -outD table",
        "            (written with -verb), one colour per coupling type.",
        " shifts     observed vs predicted shifts of a DC -outCS table",
        "            (written with -verb), one panel per atom kind.",
        " search     D_RMS by first structure residue for every offset of a",
        "            DC -outS search report, one line per structure, best marked.",
    };
    for (const char* line : lines) std::fprintf(stderr, "%s\n", line);
}

}  // namespace

int dcplotMain(int argc, char** argv) {
    if (argc == 4) {
        for (const PlotKind& kind : kKinds) {
            if (std::strcmp(argv[1], kind.name) != 0) continue;
            int status = kind.plot(argv[2], argv[3]);
            freeToken();
            return status;
        }
    }
    showPlotUsage();
    return kUsageStatus;
}
