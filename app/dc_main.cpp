#include "app/dc_main.h"

#include <cstdio>

#include "app/getparams.h"
#include "app/residue_range.h"
#include "app/settings.h"
#include "app/simulation.h"
#include "dc/dipolar.h"
#include "dc/dtab.h"
#include "dc/read_dc.h"
#include "pdb/modes.h"
#include "util/alloc.h"
#include "util/args.h"
#include "util/growstr.h"
#include "util/levels.h"
#include "util/token.h"

namespace {

// The residue range of a shift table that holds no rows. Until shift tables
// are read here, every run sees this one, so that a run with neither table
// covers residues 0 to 1000000.
constexpr int kEmptyShiftFirst = 1000000;
constexpr int kEmptyShiftLast = 0;

// The reading steps and the run mode. The shift table, the surfaces and
// the homology search join here as they are built.
int runSteps(RunSettings* settings, DTab* dTab) {
    int status = readDC(settings->inName, dTab, settings->keepDI);
    if (status != 0) {
        std::fprintf(stderr, "DC Error Reading D Values in %s\n", settings->inName);
        return status;
    }
    applyResidueRangeDefaults(settings, dTab->minResid, dTab->maxResid, kEmptyShiftFirst,
                              kEmptyShiftLast);
    if (settings->pdbName[0]) return simDC(dTab, settings);
    return 0;
}

// Everything main owns is released on every path, then the balance is shown.
void cleanUp(RunSettings* settings, DTab* dTab) {
    dTabFree(dTab);
    dipolarFree();
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
    dipolarNull();
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
