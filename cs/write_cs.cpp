#include "cs/write_cs.h"

#include <cstdio>

#include "cs/cs_sequence.h"
#include "cs/stat_cs.h"
#include "cs/surface.h"

namespace {

bool isPresent(float value) { return value <= 900.0f; }

// The backbone conformations of the canonical columns: helix, sheet, coil.
struct Conformation {
    float phi, psi;
};
constexpr Conformation kCanonical[3] = {{-57.0f, -47.0f}, {-119.0f, 113.0f}, {84.0f, 1.0f}};

struct Layout {
    bool chains, segs, canonical, observed, ringCurrents;
};

bool hasRingCurrents(const CSTab* table) {
    for (int i = 0; i < table->count; i++) {
        if (isPresent(table->rows[i].hm)) return true;
    }
    return false;
}

void writeRingCurrentNote(FILE* out, int mode, bool observed) {
    const char* how = nullptr;
    if (mode == 1) how = " have been added to predicted shifts.\n";
    if (mode == -1 && observed) how = " have been subtracted from observed shifts.\n";
    if (mode == 0) how = " have been calculated but not used.\n";
    if (how) std::fprintf(out, "REMARK Ring Current Shifts%s", how);
}

void writeStatistics(FILE* out, const CSTab* table) {
    float rms, chi2, wchi2;
    int n;
    getStatCS(table->rows, table->count, &rms, &chi2, &wchi2, &n, 0.0f);
    std::fprintf(out, "DATA N     %d\n", n);
    std::fprintf(out, "DATA RMS   %.3f\n", rms);
    std::fprintf(out, "DATA Chi2  %.3f\n", chi2);
    std::fprintf(out, "DATA WChi2 %.3f\n", wchi2);
}

void writeVars(FILE* out, const Layout& layout) {
    std::fprintf(out, "VARS   ");
    std::fprintf(out, " RESID RESNAME ATOMNAME");
    if (layout.chains) std::fprintf(out, " CHAINNAME");
    if (layout.segs) std::fprintf(out, " SEGNAME");
    if (layout.canonical) std::fprintf(out, " ALPHA ALPHA_DEV BETA BETA_DEV COIL COIL_DEV");
    if (layout.ringCurrents) {
        std::fprintf(out, layout.observed ? " CS_OBS SHIFT RC_SHIFT HM_SHIFT CS_DIFF SIGMA W\n"
                                          : " SHIFT HM_SHIFT SIGMA W\n");
    } else {
        std::fprintf(
            out, layout.observed ? " CS_OBS SHIFT RC_SHIFT CS_DIFF SIGMA W\n" : " SHIFT SIGMA W\n");
    }
}

// The canonical part declares five "%9.3f" and one "%.2f" while the rows
// carry six "% 9.3f" values: readers take the header as it stands.
void writeFormats(FILE* out, const Layout& layout) {
    std::fprintf(out, "FORMAT ");
    std::fprintf(out, " %%4d %%4s %%4s");
    if (layout.chains) std::fprintf(out, " %%4s");
    if (layout.segs) std::fprintf(out, " %%4s");
    if (layout.canonical) std::fprintf(out, " %%9.3f %%9.3f %%9.3f %%9.3f %%9.3f %%.2f");
    if (layout.ringCurrents) {
        std::fprintf(out, layout.observed ? " %%9.3f %%9.3f %%9.3f %%9.3f %%9.3f %%9.3f %%.2f\n\n"
                                          : " %%9.3f %%9.3f %%9.3f %%.2f\n\n");
    } else {
        std::fprintf(out, layout.observed ? " %%9.3f %%9.3f %%9.3f %%9.3f %%9.3f %%.2f\n\n"
                                          : " %%9.3f %%9.3f %%.2f\n\n");
    }
}

const char* nameOrNone(const char* name) { return name[0] ? name : "None"; }

// Shift and deviation of the row's surface at each canonical conformation;
// 9999.0 where the surface has too little data there, or there is none.
void writeCanonical(FILE* out, const CSValue& row) {
    for (const Conformation& c : kCanonical) {
        float value = kCSMissing, density = 0.0f, dev = kCSMissing;
        if (row.surface) getSurfVal(row.surface, &value, &density, &dev, c.phi, c.psi);
        if (!row.surface || density < row.surface->threshold) value = dev = kCSMissing;
        std::fprintf(out, " % 9.3f % 9.3f", value, dev);
    }
}

void writeRow(FILE* out, const Layout& layout, const CSValue& row) {
    std::fprintf(out, " %4d %4s %4s", row.resID, row.resName, row.atomName);
    if (layout.chains) std::fprintf(out, " %4s", nameOrNone(row.chain));
    if (layout.segs) std::fprintf(out, " %4s", nameOrNone(row.seg));
    if (layout.canonical) writeCanonical(out, row);
    float d = isPresent(row.obs) && isPresent(row.pred) ? row.obs - row.pred : kCSMissing;
    if (layout.ringCurrents && layout.observed) {
        std::fprintf(out, " % 9.3f % 9.3f % 9.3f % 9.3f % 9.3f %9.3f %.2f\n", row.obs, row.pred,
                     row.rc, row.hm, d, row.sigma, row.W);
    } else if (layout.ringCurrents) {
        std::fprintf(out, "% 9.3f % 9.3f % 9.3f %.2f\n", row.pred, row.hm, row.sigma, row.W);
    } else if (layout.observed) {
        std::fprintf(out, " % 9.3f % 9.3f % 9.3f % 9.3f %9.3f %.2f\n", row.obs, row.pred, row.rc, d,
                     row.sigma, row.W);
    } else {
        std::fprintf(out, "% 9.3f % 9.3f %.2f\n", row.pred, row.sigma, row.W);
    }
}

void writeTable(FILE* out, const CSTab* table, const char* remark, const Layout& layout) {
    std::fprintf(out, "REMARK TESSERA Chemical Shift Simulation.\n");
    if (remark && remark[0]) std::fprintf(out, "\nREMARK %s\n", remark);
    if (layout.ringCurrents) writeRingCurrentNote(out, table->ringMode, layout.observed);
    std::fprintf(out, "\n");
    writeStatistics(out, table);
    writeCSSeqInfo(out, table->seq);
    writeVars(out, layout);
    writeFormats(out, layout);
    for (int i = 0; i < table->count; i++) {
        if (table->rows[i].use) writeRow(out, layout, table->rows[i]);
    }
}

}  // namespace

int writeCS(const char* path, const CSTab* table, const char* remark, int canonical, int observed) {
    if (!table || !table->rows || table->count < 1) return 0;
    Layout layout{table->ignoreChain == 0, table->ignoreSeg == 0, canonical != 0, observed != 0,
                  hasRingCurrents(table)};
    bool toStdout = !path || !path[0];
    FILE* out = toStdout ? stdout : std::fopen(path, "w");
    if (!out) {
        std::fprintf(stderr, "TESSERA Error opening output file %s\n", path);
        out = stdout;
        toStdout = true;
    }
    writeTable(out, table, remark, layout);
    if (toStdout) {
        std::fflush(out);
    } else {
        std::fclose(out);
    }
    return 0;
}
