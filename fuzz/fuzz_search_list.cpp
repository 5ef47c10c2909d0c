// The homology search's list file: the bytes are the list, read and searched
// against a scratch folder that holds the six-residue peptide (a.pdb) and a
// copy of it without atoms (e.pdb), with the peptide's coupling table, a
// segment of residues 2 to 6, the reference structure a.pdb and the
// backbone RMSD on. Rows are not written ("None"); the per-file summaries
// go to the silenced standard error.
//
// Inputs with "/" are rejected: a list entry names a file inside the folder
// and nothing else, so no input can make the search read a device or a file
// elsewhere on the machine.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

#include "app/search.h"
#include "app/settings.h"
#include "cs/cs_tab.h"
#include "cs/read_cs.h"
#include "dc/dipolar.h"
#include "dc/dtab.h"
#include "dc/read_dc.h"
#include "fit/workspaces.h"
#include "fuzz/fixtures.h"
#include "fuzz/fuzz_support.h"
#include "pdb/modes.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::quietStreams();
    setPDBWarn(0);
    fuzz::writeFile(fuzz::scratchPath("a.pdb"), fuzz::kPeptidePDB);
    fuzz::writeFile(fuzz::scratchPath("e.pdb"), "REMARK no atoms\nEND\n");
    fuzz::writeFile(fuzz::scratchPath("a.tab"), fuzz::kCouplingTable);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (std::memchr(data, '/', size)) return -1;
    static const std::string list = fuzz::scratchPath("list");
    fuzz::writeFile(list, data, size);
    int64_t start = fuzz::bytesInUse();

    RunSettings s;
    runSettingsNull(&s);
    std::snprintf(s.listName, sizeof s.listName, "%s", list.c_str());
    std::snprintf(s.pdbDir, sizeof s.pdbDir, "%s", fuzz::scratchDir().c_str());
    std::snprintf(s.refName, sizeof s.refName, "%s", fuzz::scratchPath("a.pdb").c_str());
    std::snprintf(s.outSName, sizeof s.outSName, "None");
    s.res1 = 2;
    s.resN = 6;
    s.bbFlag = 1;
    dipolarNull();
    DTab dTab;
    dTabNull(&dTab);
    CSTab cs;
    csTabNull(&cs);
    if (readDC(fuzz::scratchPath("a.tab").c_str(), &dTab, 0) == 0) searchDC(&dTab, &cs, &s);
    csTabFree(&cs);
    dTabFree(&dTab);
    releaseFitWorkspaces();
    runSettingsFree(&s);
    fuzz::checkBalance(start, "search list input");
    return 0;
}
