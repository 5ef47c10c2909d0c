#include "fit/workspaces.h"

#include "dc/dipolar.h"
#include "fit/fit_state.h"
#include "pdb/superpose.h"

void releaseFitWorkspaces() {
    dipolarFree();
    fitDCFree();
    fitAlignFree();
}
