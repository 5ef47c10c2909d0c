#include "app/simulation.h"

#include <cstdio>

#include "dc/dtab.h"
#include "dc/map_dc.h"
#include "dc/select_dc.h"
#include "dc/statistics.h"
#include "dc/write_dc.h"
#include "fit/fit_driver.h"
#include "pdb/backbone.h"
#include "pdb/reader.h"
#include "pdb/structure.h"
#include "util/levels.h"

namespace {

// Chooses the couplings by selection text or residue range, then drops the
// skipped residues; returns how many are selected.
int selectCouplings(DTab* dTab, const RunSettings* s) {
    int selected;
    if (s->selectText[0]) {
        selected = strSelectD(dTab->couplings, dTab->count, s->selectText, s->inclMode);
    } else {
        selected = selectD(dTab->couplings, dTab->count, s->res1, s->resN, s->inclMode);
    }
    return skipD(dTab->couplings, dTab->count, s->skipList, s->skipCount, selected);
}

void reportSelection(int selected, const RunSettings* s) {
    char mode[1024];
    getDCSelectStr(s->inclMode, s->res1, s->resN, mode);
    std::printf("REMARK %d Couplings Selected. Mode: %s.\n", selected, mode);
    // Keeps the line ahead of the REMARK lines on standard error when both
    // streams go to one log.
    std::fflush(stdout);
}

}  // namespace

int reportDC(const char* pdbTitle, const char* dTitle, const PDBData* pdb, const char* dOutName,
             const DTab* dTab, int mirror) {
    bool haveCouplings = dTab && dTab->count > 0;
    if (haveCouplings) {
        char title[4096];
        std::snprintf(title, sizeof title, "DC: %s PDB: %s Residues %d to %d, %d total.", dTitle,
                      pdbTitle, pdb->resMin, pdb->resMax, pdb->resCount);
        writeDC(dOutName, dTab, verbose(), mirror, title);
        std::fprintf(stderr, "REMARK %s\n", title);
        float rms, chiSq;
        int n;
        getStatDC(dTab->couplings, dTab->count, &rms, &chiSq, &n);
        std::fprintf(stderr, "REMARK D_N:  %d D_RMS:  %.3f D_CHI2:  %.3f\n", n, rms, chiSq);
    }
    std::fprintf(stderr, "\n");
    return 0;
}

int simDC(DTab* dTab, const RunSettings* s) {
    PDBData pdb;
    pdbNull(&pdb);
    int status = readPDB(s->pdbName, &pdb, nullptr);
    if (status != 0) {
        std::fprintf(stderr, "DC Error Reading PDB File %s\n", s->pdbTitle);
        pdbFree(&pdb);
        return status;
    }
    if (pdb.resCount > 0) updatePhiPsi(&pdb, pdb.resMin, pdb.resMax);
    int selected = selectCouplings(dTab, s);
    reportSelection(selected, s);
    int offset = s->aRes1 - s->res1;
    buildDC(&pdb, dTab, offset, s->res1, s->weights, s->weightCount, s->fixedDI);
    fitD(&pdb, dTab, s->retries, verbose());
    reportDC(s->pdbTitle, s->inTitle, &pdb, s->outName, dTab, s->mirror);
    pdbFree(&pdb);
    return status;
}
