#include "app/dc_main.h"

#include <cstdio>

#include "app/getparams.h"
#include "app/residue_range.h"
#include "app/search.h"
#include "app/settings.h"
#include "app/simulation.h"
#include "cs/cs_tab.h"
#include "cs/read_cs.h"
#include "cs/surface.h"
#include "dc/dipolar.h"
#include "dc/dtab.h"
#include "dc/read_dc.h"
#include "fit/workspaces.h"
#include "pdb/modes.h"
#include "util/alloc.h"
#include "util/args.h"
#include "util/growstr.h"
#include "util/levels.h"
#include "util/token.h"

namespace {

// The reading steps and the run mode: the simulation run with a structure
// file, else the homology search.
int runSteps(RunSettings* settings, DTab* dTab, CSTab* cs) {
    int status = 0;
    // Surfaces are read only for a shift table, before the tables, so that
    // its rows find their random-coil values and surfaces as they are read.
    if (settings->csName[0]) {
        status = surfRead(settings->surfDir, settings->rcSurfName, settings->homoSurfName, 0);
        if (status != 0) {
            std::fprintf(stderr, "DC Error Reading Secondary Shift Surfaces.\n");
            return status;
        }
    }
    status = readDC(settings->inName, dTab, settings->keepDI);
    if (status != 0) {
        std::fprintf(stderr, "DC Error Reading D Values in %s\n", settings->inName);
        return status;
    }
    status = readCS(settings->csName, cs);
    if (status != 0) {
        std::fprintf(stderr, "DC Error Reading CS Values in %s\n", settings->csTitle);
        return status;
    }
    applyResidueRangeDefaults(settings, dTab->minResid, dTab->maxResid, cs->resMin, cs->resMax);
    if (settings->pdbName[0]) return simDC(dTab, cs, settings);
    return searchDC(dTab, cs, settings);
}

// Everything main owns is released on every path, then the balance is shown.
void cleanUp(RunSettings* settings, DTab* dTab, CSTab* cs) {
    csTabFree(cs);
    dTabFree(dTab);
    releaseFitWorkspaces();
    surfFree();
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
    CSTab cs;
    csTabNull(&cs);

    initArgs(argc, argv, 4);
    int status = getparams(argc, argv, &settings, &dTab);
    if (status == kParamsVersion) return 0;
    if (status != kParamsOk) {
        std::fprintf(stderr, "DC Error extracting arguments.\n");
        status = 1;
    } else {
        checkArgs(argc, argv);
        if (dbgFlag() > 1) setAlloc(1);
        status = runSteps(&settings, &dTab, &cs);
    }
    cleanUp(&settings, &dTab, &cs);
    return status;
}
