#include "app/search_report.h"

#include "app/search_progress.h"
#include "cs/cs_tab.h"
#include "cs/stat_cs.h"
#include "cs/structure_scores.h"
#include "dc/dtab.h"
#include "dc/statistics.h"
#include "pdb/pdb_types.h"

namespace {

constexpr float kNoBest = 99999.0f;

struct BestOffset {
    int fileIndex = -1;
    float dRms, csPerShift, backboneRMS, homology, surface, da, dr;
    int first, last;
};
BestOffset best;

struct RowStats {
    int dN = 0, csN = 0, homoN = 0, surfN = 0;
    float dRms = 0, dChi2 = 0, csRms = 0, csChi2 = 0, csWChi2 = 0, homo = 0, surf = 0;
};

RowStats rowStats(PDBData* reference, PDBData* pdb, const DTab* dTab, const CSTab* cs,
                  const SearchRow& row) {
    RowStats s;
    getStatDC(dTab->couplings, dTab->count, &s.dRms, &s.dChi2, &s.dN);
    getStatCS(cs->rows, cs->count, &s.csRms, &s.csChi2, &s.csWChi2, &s.csN, 0.0f);
    float second, minRatio;
    getStatHomo(reference, pdb, row.res1, row.resN, "*", "*", row.first, 0, "*", "*", 1, &s.homo,
                &second, &s.homoN);
    getStatSurf(reference, pdb, row.res1, row.resN, "*", "*", row.first, 0, "*", "*", 1, &s.surf,
                &second, &minRatio, &s.surfN);
    return s;
}

void writeHeader(FILE* out) {
    std::fprintf(out, "VARS   %s %s %s\n",
                 "SEGID INDEX D_RES1 D_RESN D_COUNT CS_COUNT P_NAME P_RES1 P_RESN P_MAXRES",
                 " DA DR THETA PHI   PSI   D_N D_RMS  D_CHI2 CS_N  CS_RMS CS_CHI2 A_RMS",
                 " HOMO_N HOMO SURF_N SURF");
    std::fprintf(out, "FORMAT %s %s %s\n\n",
                 "%5d   %5d   %3d    %3d    %4d     %4d      %-18s  %3d    %3d    %3d     ",
                 " %.4e %.4e %7.2f %7.2f %7.2f %3d %10.3f %7.3f  %3d   %10.3f %10.3f %10.3f",
                 " %3d %10.3f %3d %10.3f");
}

// Three pieces: the row's last four values begin the next text line.
void writeRow(FILE* out, const PDBData* pdb, const DTensor& t, const SearchRow& row,
              const RowStats& s) {
    std::fprintf(out, "%5d %5d %3d %3d %4d %4d %-12s %3d %3d %3d % .4e % .4e %7.2f %7.2f %7.2f",
                 row.segID, row.fileIndex, row.res1, row.resN, row.selectedCouplings,
                 row.predictedShifts, row.fileName, row.first, row.last, pdb->resCount, t.da, t.dr,
                 t.ry, t.rz, t.rx);
    std::fprintf(out, " %4d %7.3f %10.2f %4d %7.3f %10.2f %10.3f\n", s.dN, s.dRms, s.dChi2, s.csN,
                 s.csRms, s.csChi2, row.backboneRMS);
    std::fprintf(out, " %3d %10.3f %3d %10.3f", s.homoN, s.homo, s.surfN, s.surf);
}

void startFile(const SearchRow& row) {
    best = {};
    best.fileIndex = row.fileIndex;
    best.dRms = best.csPerShift = best.homology = best.surface = kNoBest;
    best.backboneRMS = best.da = best.dr = 0.0f;
    best.first = row.first;
    best.last = row.last;
}

void keepIfBest(const DTensor& t, const SearchRow& row, const RowStats& s) {
    double valid =
        row.selectedCouplings > 0 ? static_cast<double>(s.dN) / row.selectedCouplings : 0.0;
    double csPerShift = s.csN > 0 ? static_cast<double>(s.csChi2) / s.csN : -1.0;
    if (valid < row.vcThresh || row.csThresh < csPerShift || !(s.dRms < best.dRms)) return;
    best.dRms = s.dRms;
    best.first = row.first;
    best.last = row.last;
    best.csPerShift = static_cast<float>(csPerShift);
    best.backboneRMS = row.backboneRMS;
    best.homology = s.homo;
    best.surface = s.surf;
    best.da = t.da;
    best.dr = t.dr;
}

void writeSummary(const SearchRow& row) {
    std::fprintf(stderr, "%-12s %4d %4d %4d %4d %4d % .4e % .4e %8.2f %9.4f %9.4f %9.4f %9.4f\n",
                 row.fileName, row.fileIndex, row.res1, row.resN, best.first, best.last, best.da,
                 best.dr, best.backboneRMS, best.dRms, best.csPerShift, best.homology,
                 best.surface);
}

}  // namespace

void resetSearchBest() { best = {}; }

int reportS(FILE* out, PDBData* reference, PDBData* pdb, DTab* dTab, const CSTab* cs,
            const SearchRow& row) {
    DTensor& t = dTab->tensor;
    t.da = t.dr = t.rx = t.ry = t.rz = 0.0f;
    RowStats s = rowStats(reference, pdb, dTab, cs, row);
    if (out) {
        if (row.fitNumber == 1) writeHeader(out);
        writeRow(out, pdb, t, row, s);
    }
    if (row.fileIndex != best.fileIndex) startFile(row);
    keepIfBest(t, row, s);
    if (row.offset == row.lastOffset && out != stdout) {
        progressClear();
        writeSummary(row);
    }
    return 0;
}
