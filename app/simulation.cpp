#include "app/simulation.h"

#include <cstdio>

#include "cs/cs_tab.h"
#include "cs/predict_cs.h"
#include "cs/select_cs.h"
#include "cs/stat_cs.h"
#include "cs/structure_scores.h"
#include "cs/write_cs.h"
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

int reportDC(const char* pdbTitle, const PDBData* pdb, const ReportTables& t, int mirror) {
    bool haveCouplings = t.dTab && t.dTab->count > 0;
    bool haveShifts = t.cs && t.cs->count > 0;
    char title[4096];
    if (haveCouplings) {
        std::snprintf(title, sizeof title, "DC: %s PDB: %s Residues %d to %d, %d total.", t.dTitle,
                      pdbTitle, pdb->resMin, pdb->resMax, pdb->resCount);
        writeDC(t.dOutName, t.dTab, verbose(), mirror, title);
        std::fprintf(stderr, "REMARK %s\n", title);
    }
    if (haveShifts) {
        std::snprintf(title, sizeof title, "CS: %s PDB: %s Residues %d to %d, %d total.", t.csTitle,
                      pdbTitle, pdb->resMin, pdb->resMax, pdb->resCount);
        writeCS(t.csOutName, t.cs, title, 0, verbose());
        std::fprintf(stderr, "REMARK %s\n", title);
    }
    if (haveCouplings) {
        float rms, chiSq;
        int n;
        getStatDC(t.dTab->couplings, t.dTab->count, &rms, &chiSq, &n);
        std::fprintf(stderr, "REMARK D_N:  %d D_RMS:  %.3f D_CHI2:  %.3f\n", n, rms, chiSq);
    }
    if (haveShifts) {
        float rms, chiSq, weightedChiSq;
        int n;
        getStatCS(t.cs->rows, t.cs->count, &rms, &chiSq, &weightedChiSq, &n, 0.0f);
        std::fprintf(stderr, "REMARK CS_N: %d CS_RMS: %.3f CS_CHI2: %.3f CS_WCHI2: %.3f\n", n, rms,
                     chiSq, weightedChiSq);
    }
    std::fprintf(stderr, "\n");
    return 0;
}

int simDC(DTab* dTab, CSTab* cs, const RunSettings* s) {
    PDBData pdb;
    pdbNull(&pdb);
    int status = readPDB(s->pdbName, &pdb, nullptr);
    if (status != 0) {
        std::fprintf(stderr, "DC Error Reading PDB File %s\n", s->pdbTitle);
        pdbFree(&pdb);
        return status;
    }
    if (pdb.resCount > 0) updatePhiPsi(&pdb, pdb.resMin, pdb.resMax);
    updatePDBSurf(&pdb, pdb.resMin, pdb.resMax);
    int shifts = selectCS(cs->rows, cs->count, s->res1, s->resN);
    skipCS(cs->rows, cs->count, s->skipList, s->skipCount, shifts);
    int selected = selectCouplings(dTab, s);
    reportSelection(selected, s);
    int offset = s->aRes1 - s->res1;
    buildCS(&pdb, cs, offset, s->storedShift, s->constRMS);
    buildDC(&pdb, dTab, offset, s->res1, s->weights, s->weightCount, s->fixedDI);
    fitD(&pdb, dTab, s->retries, verbose());
    ReportTables tables{s->inTitle, s->outName, dTab, s->csTitle, s->outCSName, cs};
    reportDC(s->pdbTitle, &pdb, tables, s->mirror);
    pdbFree(&pdb);
    return status;
}
