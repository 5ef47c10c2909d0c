#include "dc/write_dc.h"

#include <cstdio>
#include <initializer_list>

#include "dc/dc_notes.h"
#include "dc/dtab.h"
#include "dc/report_tensor.h"
#include "dc/statistics.h"
#include "util/version.h"

namespace {

void writeStatistics(FILE* out, const DTab* dTab) {
    float rms, chiSq, q, qDa, r;
    int n, nQR;
    getStatDC(dTab->couplings, dTab->count, &rms, &chiSq, &n);
    getStatDCQR(&dTab->tensor, dTab->couplings, dTab->count, &q, &qDa, &r, &nQR);
    std::fprintf(out, "DATA N         %d\n", n);
    std::fprintf(out, "DATA N_SVD     %d\n", dTab->svdCount);
    std::fprintf(out, "DATA N_PDB     %d\n", dTab->pdbCount);
    std::fprintf(out, "DATA RMS       %.3f\n", rms);
    std::fprintf(out, "DATA Chi2      %.3f\n\n", chiSq);
    std::fprintf(out, "DATA Q_FACTOR  %.3f\n", qDa);
    std::fprintf(out, "DATA CORR_R    %.3f\n", r);
    std::fprintf(out, "\n");
}

void writeRotations(FILE* out, const DTensor& t) {
    std::fprintf(out, "DATA ROT_XYZ % 8.2f % 8.2f % 8.2f\n", t.rx, t.ry, t.rz);
    std::fprintf(out, "\n");
    std::fprintf(out, "DATA PSI         % 8.2f\n", t.rx);
    std::fprintf(out, "DATA THETA       % 8.2f\n", t.ry);
    std::fprintf(out, "DATA PHI         % 8.2f\n", t.rz);
    if (t.rxAdd == 0.0f && t.ryAdd == 0.0f && t.rzAdd == 0.0f) return;
    std::fprintf(out, "\n");
    std::fprintf(out, "DATA PSI_ADD     % 8.2f\n", t.rxAdd);
    std::fprintf(out, "DATA THETA_ADD   % 8.2f\n", t.ryAdd);
    std::fprintf(out, "DATA PHI_ADD     % 8.2f\n", t.rzAdd);
}

void writeMagnitudeRanges(FILE* out, const DTensor& t) {
    std::fprintf(out, "DATA DA_RANGE    % .4e % .4e\n", t.daMin, t.daMax);
    if (t.rhMode) {
        std::fprintf(out, "DATA RH_RANGE    % .3f      % .3f\n", t.rhMin, t.rhMax);
    } else {
        std::fprintf(out, "DATA DR_RANGE    % .4e % .4e\n", t.drMin, t.drMax);
    }
}

void writeNote13(FILE* out, const char* first, const char* second) {
    std::fprintf(out, "#\n");
    std::fprintf(out, "# 13. %s\n", first);
    std::fprintf(out, "#     %s\n", second);
}

void writeFitMode(FILE* out, const DTensor& t) {
    writeNote13(out, "Values for RX=PSI RY=THETA RZ=PHI are the actual XYZ",
                "rotations applied, also given in ROT_XYZ.");
    std::fprintf(out, "\n");
    std::fprintf(out, "DATA TENSOR_MODE FIT_NONLIN (Variation of Da, Dr or Rh, or Rotations)\n");
    std::fprintf(out, "DATA BEST_ITER   % 8d\n", t.bestIteration);
    std::fprintf(out, "\n");
    writeRotations(out, t);
    std::fprintf(out, "\n");
    writeMagnitudeRanges(out, t);
    std::fprintf(out, "\n");
    std::fprintf(out, "DATA PSI_RANGE   % 8.2f % 8.2f\n", t.rxMin, t.rxMax);
    std::fprintf(out, "DATA THETA_RANGE % 8.2f % 8.2f\n", t.ryMin, t.ryMax);
    std::fprintf(out, "DATA PHI_RANGE   % 8.2f % 8.2f\n", t.rzMin, t.rzMax);
}

void writeGridMode(FILE* out, const DTensor& t) {
    writeNote13(out, "Values for RX=PSI RY=THETA RZ=PHI are extracted from the",
                "grid search rotation matrix, also given in ROT_XYZ.");
    std::fprintf(out, "\n");
    std::fprintf(out, "DATA TENSOR_MODE GRIDSEARCH (Grid Search Over Rotations)\n");
    std::fprintf(out, "\n");
    writeRotations(out, t);
    std::fprintf(out, "\n");
    std::fprintf(out, "DATA GRID_STEP %.1f DEGREES\n", t.gridStep);
    std::fprintf(out, "\n");
    writeMagnitudeRanges(out, t);
    std::fprintf(out, "\n");
}

void writeFixedMode(FILE* out, const DTensor& t) {
    writeNote13(out, "Values for RX=PSI RY=THETA RZ=PHI are the actual",
                "XYZ rotations applied, also given in ROT_XYZ.");
    std::fprintf(out, "\n");
    std::fprintf(out, "DATA TENSOR_MODE FIXED%s",
                 t.rhMode ? " (Fixed Da and Rhombicity, Fixed Rotations)\n"
                          : " (Fixed Da and Dr, Fixed Rotations)\n");
    writeRotations(out, t);
}

void writeTensorMode(FILE* out, const DTensor& t) {
    switch (t.method) {
        case kMethodSVD: std::fprintf(out, "\nDATA TENSOR_MODE SVD (Order Matrix Method)\n"); break;
        case kMethodSaupe:
            std::fprintf(out, "\nDATA TENSOR_MODE SAUPE (Fixed Saupe Values)\n");
            break;
        case kMethodFit: writeFitMode(out, t); break;
        case kMethodGrid: writeGridMode(out, t); break;
        case kMethodFixed: writeFixedMode(out, t); break;
        case 6: std::fprintf(out, "\nDATA TENSOR_MODE STERIC (Zweckstetter Method)\n"); break;
        case 7:
            std::fprintf(out, "\nDATA TENSOR_MODE ELECTROSTATIC (Zweckstetter Method)\n");
            break;
        default: break;
    }
}

struct NameColumns {
    bool chains;
    bool segs;
};

void writeVars(FILE* out, NameColumns names, int style) {
    std::fprintf(out, "VARS   ");
    for (const char* side : {"I", "J"}) {
        std::fprintf(out, " RESID_%s RESNAME_%s ATOMNAME_%s", side, side, side);
        if (names.chains) std::fprintf(out, " CHAINNAME_%s", side);
        if (names.segs) std::fprintf(out, " SEGNAME_%s", side);
    }
    if (style == kColumnsObserved) {
        std::fprintf(out, " DI D_OBS D D_DIFF DD W\n");
    } else if (style <= kColumnsCalculated) {
        std::fprintf(out, " DI D DD W\n");
    } else {
        std::fprintf(out, " DI D_OBS D D_DIFF S1 S2 S3 S4 S5 NVEC DD W\n");
    }
}

void writeFormats(FILE* out, NameColumns names, int style) {
    std::fprintf(out, "FORMAT ");
    for (int side = 0; side < 2; side++) {
        std::fprintf(out, " %%4d %%4s %%4s");
        if (names.chains) std::fprintf(out, " %%4s");
        if (names.segs) std::fprintf(out, " %%4s");
    }
    if (style == kColumnsObserved) {
        std::fprintf(out, " %%9.2f %%9.3f %%9.3f %%9.3f %%.3f %%.3f\n\n");
    } else if (style <= kColumnsCalculated) {
        std::fprintf(out, " %%9.2f %%9.3f %%.3f %%.3f\n\n");
    } else {
        std::fprintf(out, " %%9.2f %%9.3f %%9.3f %%9.3f %%e %%e %%e %%e %%e %%d %%.3f %%.3f\n\n");
    }
}

const char* nameOrNone(const char* name) { return name[0] ? name : "None"; }

void writeSide(FILE* out, NameColumns names, int resid, const char* resName, const char* atomName,
               const char* chain, const char* seg) {
    std::fprintf(out, " %4d %4s %4s", resid, resName, atomName);
    if (names.chains) std::fprintf(out, " %4s", nameOrNone(chain));
    if (names.segs) std::fprintf(out, " %4s", nameOrNone(seg));
}

void writeRow(FILE* out, NameColumns names, int style, const DCValue& v) {
    writeSide(out, names, v.residI, v.resNameI, v.atomNameI, v.chainI, v.segI);
    writeSide(out, names, v.residJ, v.resNameJ, v.atomNameJ, v.chainJ, v.segJ);
    bool bothPresent = isPresent(v.dObs) && isPresent(v.dCalc);
    float diff = bothPresent ? v.dObs - v.dCalc : kMissingValue;
    if (style == kColumnsObserved) {
        std::fprintf(out, " % 9.2f % 9.4f % 9.4f % 9.4f %.3f %.3f\n", v.di, v.dObs, v.dCalc, diff,
                     v.ddTable, v.wTable);
    } else if (style <= kColumnsCalculated) {
        std::fprintf(out, " % 9.2f % 9.4f %.3f %.3f\n", v.di, v.dCalc, v.ddTable, v.wTable);
    } else {
        std::fprintf(out,
                     " % 9.2f % 9.4f % 9.4f % 9.4f % .6e % .6e % .6e % .6e % .6e %d %.3f %.3f\n",
                     v.di, v.dObs, v.dCalc, diff, v.result[0], v.result[1], v.result[2],
                     v.result[3], v.result[4], static_cast<int>(v.result[5]), v.ddTable, v.wTable);
    }
}

void writeTable(FILE* out, const DTab* dTab, int style, int mirror, const char* title) {
    writeVersionLines(out, "# ");
    std::fprintf(out, "\n");
    if (title && title[0]) std::fprintf(out, "# %s\n\n", title);
    writeStatistics(out, dTab);
    writeDCNotes(out);
    writeTensorMode(out, dTab->tensor);
    reportTensor(out, dTab, mirror);
    NameColumns names{dTab->noChainNames == 0, dTab->noSegNames == 0};
    writeVars(out, names, style);
    writeFormats(out, names, style);
    for (int i = 0; i < dTab->count; i++) {
        if (dTab->couplings[i].use) writeRow(out, names, style, dTab->couplings[i]);
    }
}

}  // namespace

int writeDC(const char* fileName, const DTab* dTab, int columnStyle, int mirror,
            const char* title) {
    if (!dTab || !dTab->couplings) return 0;
    bool useStdout = !fileName || !fileName[0];
    FILE* out = useStdout ? stdout : std::fopen(fileName, "w");
    if (!out) {
        std::fprintf(stderr, "DC Error opening output file %s\n", fileName);
        return 0;
    }
    writeTable(out, dTab, columnStyle, mirror, title);
    if (useStdout) {
        std::fflush(out);
    } else {
        std::fclose(out);
    }
    return 0;
}
