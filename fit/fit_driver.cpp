#include "fit/fit_driver.h"

#include "dc/dtab.h"
#include "dc/fit_svd.h"
#include "fit/fit_align.h"

int fitDN(PDBData** pdbs, int count, DTab* dTab, int retries, int verbosity) {
    if (!pdbs || !dTab || count < 1) return 0;
    dTab->svdCount = 0;
    switch (dTab->tensor.method) {
        case kMethodSVD:
        case kMethodSaupe:
        case 6:
        case 7: return fitDSVD(pdbs, count, dTab, retries);
        case kMethodFit:
        case kMethodGrid:
        case kMethodFixed: return fitDCAlign(pdbs, count, dTab, retries, verbosity);
        default: return 0;
    }
}

int fitD(PDBData* pdb, DTab* dTab, int retries, int verbosity) {
    PDBData* list[1] = {pdb};
    return fitDN(pdb ? list : nullptr, 1, dTab, retries, verbosity);
}
