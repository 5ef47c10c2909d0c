// Reading DC's command line into the run settings.
#pragma once

#include "app/settings.h"
#include "dc/dtab.h"

enum ParamsStatus {
    kParamsOk = 0,       // the run may go on
    kParamsUsage = 1,    // the usage text was printed
    kParamsVersion = 2,  // the version lines were printed; exit 0 at once
};

// Reads every option (and the PDBH_DIR, PDBH_LIST and SURF_DIR environment
// variables) into the settings and the coupling table's tensor.
int getparams(int argc, char** argv, RunSettings* settings, DTab* dTab);
// Appends the words after -select to the selection text.
void readSelectText(int argc, char** argv, char* selectText);
