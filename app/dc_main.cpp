#include "app/dc_main.h"

#include <cstdio>

#include "app/getparams.h"
#include "app/settings.h"
#include "dc/dtab.h"
#include "pdb/modes.h"
#include "util/alloc.h"
#include "util/args.h"
#include "util/growstr.h"
#include "util/levels.h"
#include "util/token.h"

namespace {

// The reading steps and the run mode. The coupling and shift tables, the
// surfaces and the two modes join here as they are built.
int runSteps(RunSettings* settings, DTab* dTab) { return 0; }

// Everything main owns is released on every path, then the balance is shown.
void cleanUp(RunSettings* settings, DTab* dTab) {
    dTabFree(dTab);
    runSettingsFree(settings);
    freeToken();
    ctempFree();
    showAlloc();
}

}  // namespace

int dcMain(int argc, char** argv) {
    RunSettings settings;
    runSettingsNull(&settings);
    setPDBWarn(1);
    DTab dTab;
    dTabNull(&dTab);

    initArgs(argc, argv, 4);
    int status = getparams(argc, argv, &settings, &dTab);
    if (status == kParamsVersion) return 0;
    if (status != kParamsOk) {
        std::fprintf(stderr, "DC Error extracting arguments.\n");
        status = 1;
    } else {
        checkArgs(argc, argv);
        if (dbgFlag() > 1) setAlloc(1);
        status = runSteps(&settings, &dTab);
    }
    cleanUp(&settings, &dTab);
    return status;
}
