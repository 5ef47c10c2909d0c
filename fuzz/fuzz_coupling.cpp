// The coupling path of a simulation run: the bytes are a coupling table,
// read and then selected, mapped onto a small fixed structure, fitted and
// written out as a simulation run does it, and released.
//
// Run settings a user would give on the command line (selection mode, DI
// from fixed geometry or from distances, keeping the table's DI, weights,
// output columns, mirror solutions, the tensor method) are taken from a hash
// of the input, so that every combination is reached without changing the
// table text. The nonlinear methods run with few start points and a coarse
// grid, to keep each input fast.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

#include "app/residue_range.h"
#include "app/settings.h"
#include "dc/dipolar.h"
#include "dc/dtab.h"
#include "dc/map_dc.h"
#include "dc/read_dc.h"
#include "dc/select_dc.h"
#include "dc/statistics.h"
#include "dc/write_dc.h"
#include "fit/fit_driver.h"
#include "fit/fit_state.h"
#include "fuzz/fixed_structure.h"
#include "fuzz/fuzz_support.h"
#include "pdb/backbone.h"
#include "pdb/modes.h"
#include "pdb/reader.h"
#include "pdb/structure.h"

namespace {

// Residue range of the missing shift table, as a run without -inCS sees it.
constexpr int kNoShiftFirst = 1000000;
constexpr int kNoShiftLast = 0;

PDBData structure;

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::quietStreams();
    fuzz::loadPeptide(&structure);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::string path = fuzz::scratchPath("in.tab");
    fuzz::writeFile(path, data, size);
    uint32_t flags = fuzz::hashBytes(data, size);
    int64_t start = fuzz::bytesInUse();

    RunSettings s;
    runSettingsNull(&s);
    std::snprintf(s.inName, sizeof s.inName, "%s", path.c_str());
    s.inclMode = 1 + static_cast<int>(flags % 4);
    s.fixedDI = (flags >> 2) & 1;
    s.keepDI = (flags >> 3) & 1;
    s.mirror = (flags >> 4) & 1;
    int columnStyle = static_cast<int>((flags >> 5) % 3);
    static const float weights[] = {1.0f, 0.5f, 2.0f, 0.0f};
    bool weighted = (flags >> 7) & 1;
    static const int methods[] = {kMethodSVD, kMethodFit, kMethodGrid, kMethodFixed};
    int method = methods[(flags >> 8) % 4];

    DTab dTab;
    dTabNull(&dTab);
    if (readDC(s.inName, &dTab, s.keepDI) == 0) {
        applyResidueRangeDefaults(&s, dTab.minResid, dTab.maxResid, kNoShiftFirst, kNoShiftLast);
        int selected = selectD(dTab.couplings, dTab.count, s.res1, s.resN, s.inclMode);
        skipD(dTab.couplings, dTab.count, s.skipList, s.skipCount, selected);
        buildDC(&structure, &dTab, s.aRes1 - s.res1, s.res1, weighted ? weights : nullptr,
                weighted ? 4 : 0, s.fixedDI);
        dTab.tensor.method = method;
        dTab.tensor.useAuto = (flags >> 10) & 1;
        dTab.tensor.gridStep = 60.0f;
        fitD(&structure, &dTab, 2, 0);
        if (dTab.count > 0) {
            writeDC("/dev/null", &dTab, columnStyle, s.mirror, "DC: fuzz PDB: peptide");
            float rms, chiSq;
            int n;
            getStatDC(dTab.couplings, dTab.count, &rms, &chiSq, &n);
        }
    }
    dTabFree(&dTab);
    dipolarFree();
    fitDCFree();
    runSettingsFree(&s);
    fuzz::checkBalance(start, "coupling table input");
    return 0;
}
