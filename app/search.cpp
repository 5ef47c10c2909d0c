#include "app/search.h"

#include <strings.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "app/search_list.h"
#include "app/search_progress.h"
#include "app/search_report.h"
#include "cs/cs_tab.h"
#include "cs/predict_cs.h"
#include "cs/select_cs.h"
#include "cs/structure_scores.h"
#include "dc/dtab.h"
#include "dc/map_dc.h"
#include "dc/select_dc.h"
#include "fit/fit_driver.h"
#include "pdb/backbone.h"
#include "pdb/reader.h"
#include "pdb/structure.h"
#include "pdb/superpose.h"
#include "pdb/superpose_pdb.h"
#include "util/levels.h"
#include "util/residue_number.h"
#include "util/textfile.h"
#include "util/token.h"

namespace {

constexpr int kMinCouplings = 5;
constexpr const char* kBackboneAtoms = "CA N C";

// Where the rows go: standard output, a file, or nowhere ("None").
struct SearchOutput {
    FILE* stream = nullptr;
    bool owned = false;
};

SearchOutput openOutput(const char* name) {
    if (!name[0]) return {stdout, false};
    if (strcasecmp(name, "None") == 0) return {nullptr, false};
    FILE* f = std::fopen(name, "w");
    if (!f) {
        std::fprintf(stderr, "DC Error opening output file %s\n", name);
        return {stdout, false};
    }
    return {f, true};
}

// Torsions and surface values over the structure's residue range.
void prepareStructure(PDBData* pdb) {
    if (pdb->resCount > 0) updatePhiPsi(pdb, pdb->resMin, pdb->resMax);
    updatePDBSurf(pdb, pdb->resMin, pdb->resMax);
}

// One list line: the file name and, when given, the structure residues the
// search is limited to.
struct ListEntry {
    std::string name;
    int tokens = 0;
    int firstResidue = 0, lastResidue = 0;
};

bool parseListLine(const char* line, ListEntry* entry) {
    if (!isListEntry(line)) return false;
    entry->tokens = cntToken(line);
    entry->name = getToken(1, line);
    if (entry->tokens >= 3) {
        entry->firstResidue = clampResid(getTokenN(2, line));
        entry->lastResidue = clampResid(getTokenN(3, line));
    }
    return true;
}

// "%s/%s" with the directory; a name alone when no directory is set.
std::string structurePath(const char* dir, const std::string& name) {
    return dir[0] ? std::string(dir) + "/" + name : name;
}

// The state one search carries from offset to offset and file to file.
struct SearchRun {
    DTab* dTab;
    CSTab* cs;
    const RunSettings* s;
    PDBData* reference;  // null without -ref
    SearchOutput output;
    DTensor givenTensor;  // every fit starts from the tensor as the options gave it
    int fitNumber = 0;
    int fileIndex = 0;
};

float backboneRMS(SearchRun& run, PDBData* pdb, int first) {
    if (!run.s->bbFlag || !run.reference) return 0.0f;
    fitAlignInit(dbgFlag());
    if (fitAlignPDB(run.reference, pdb, run.s->res1, run.s->resN, first, kBackboneAtoms, 0,
                    verbose()) != 0)
        return 0.0f;
    return alignResult().aRMS;
}

// Lays the segment on structure residues from offset + 1, fits and reports.
void searchOffset(SearchRun& run, PDBData* pdb, const ListEntry& entry, int offset,
                  int lastOffset) {
    const RunSettings* s = run.s;
    selectCS(run.cs->rows, run.cs->count, s->res1, s->resN);
    int selected = selectD(run.dTab->couplings, run.dTab->count, s->res1, s->resN, s->inclMode);
    int shift = clampResid(static_cast<int64_t>(offset) + 1 - s->res1);
    int shifts = buildCS(pdb, run.cs, shift, s->storedShift, s->constRMS);
    int mapped = buildDC(pdb, run.dTab, shift, s->res1, s->weights, s->weightCount, s->fixedDI);
    if (mapped < kMinCouplings) return;
    run.fitNumber++;
    run.dTab->tensor = run.givenTensor;
    fitD(pdb, run.dTab, s->retries, verbose());
    SearchRow row{run.fitNumber,
                  run.fileIndex,
                  entry.name.c_str(),
                  s->res1,
                  s->resN,
                  s->segID,
                  selected,
                  shifts,
                  offset,
                  lastOffset,
                  clampResid(static_cast<int64_t>(offset) + 1),
                  clampResid(static_cast<int64_t>(offset) + s->resN + 1 - s->res1),
                  s->csThresh,
                  s->vcThresh,
                  0.0f};
    row.backboneRMS = backboneRMS(run, pdb, offset + 1);
    reportS(run.output.stream, run.reference, pdb, run.dTab, run.cs, row);
}

// Reads one list entry and searches every offset; returns the read status.
int searchFile(SearchRun& run, const ListEntry& entry) {
    std::string path = structurePath(run.s->pdbDir, entry.name);
    PDBData pdb;
    pdbNull(&pdb);
    // The reader's message for a file it cannot open gets a line of its own.
    if (access(path.c_str(), R_OK) != 0) progressClear();
    int status = readPDB(path.c_str(), &pdb, nullptr);
    if (status != 0) {
        std::fprintf(stderr, "DC Error Reading PDB File %s\n", path.c_str());
        pdbFree(&pdb);
        return status;
    }
    run.fileIndex++;
    prepareStructure(&pdb);
    int64_t length = static_cast<int64_t>(run.s->resN) + 1 - run.s->res1;
    int64_t first = 0, last = pdb.resCount - length;
    if (entry.tokens >= 3) {
        first = static_cast<int64_t>(entry.firstResidue) - 1;
        last = entry.lastResidue - length;
    }
    // Offsets at which no table residue lands on the structure map nothing
    // and give no row: they are not visited, so a list line with a wide
    // residue range costs no more than the structure itself.
    const DTab* t = run.dTab;
    int64_t from = first, to = last;
    int64_t reach = static_cast<int64_t>(run.s->res1) - 1;
    if (t->count == 0) to = from - 1;
    if (from < pdb.resMin - static_cast<int64_t>(t->maxResid) + reach)
        from = pdb.resMin - static_cast<int64_t>(t->maxResid) + reach;
    if (to > pdb.resMax - static_cast<int64_t>(t->minResid) + reach)
        to = pdb.resMax - static_cast<int64_t>(t->minResid) + reach;
    for (int64_t o = from; o <= to; o++)
        searchOffset(run, &pdb, entry, clampResid(o), clampResid(last));
    pdbFree(&pdb);
    return 0;
}

void searchList(SearchRun& run, char** lines, int lineCount, int* status) {
    for (int i = 0; i < lineCount; i++) {
        ListEntry entry;
        if (!parseListLine(lines[i], &entry)) continue;
        *status = searchFile(run, entry);
        progressStructureDone(run.fitNumber);
    }
}

// The file index of the list's first structure: 1, or what
// DC_SEARCH_FIRST_INDEX says, so that a shard of a split list (dc-search)
// numbers its files as the whole list's search would.
int firstFileIndex() {
    const char* text = std::getenv("DC_SEARCH_FIRST_INDEX");
    if (!text || !*text) return 1;
    char* end = nullptr;
    long value = std::strtol(text, &end, 10);
    return (*end || value < 1 || value > kResidLimit) ? 1 : static_cast<int>(value);
}

int countEntries(char** lines, int lineCount) {
    int count = 0;
    for (int i = 0; i < lineCount; i++) {
        ListEntry entry;
        if (parseListLine(lines[i], &entry)) count++;
    }
    return count;
}

// The progress line, unless verbose output or rows share the terminal.
bool showProgress(const SearchOutput& output) {
    if (verbose() > 0) return false;
    return !(output.stream == stdout && isatty(STDOUT_FILENO));
}

}  // namespace

int searchDC(DTab* dTab, CSTab* cs, const RunSettings* s) {
    PDBData reference;
    pdbNull(&reference);
    bool haveReference = s->refName[0] != '\0';
    if (haveReference) {
        int status = readPDB(s->refName, &reference, nullptr);
        if (status != 0) {
            std::fprintf(stderr, "DC Error Reading PDB File %s\n", s->refName);
            pdbFree(&reference);
            return status;
        }
        prepareStructure(&reference);
    }
    int lineCount = 0, status = 0;
    char** lines = rdText(s->listName, &lineCount, &status);
    if (!lines) {
        std::fprintf(stderr, "DC Error Reading List %s\n", s->listName);
        pdbFree(&reference);
        return status != 0 ? status : 1;
    }
    SearchRun run{dTab,        cs, s, haveReference ? &reference : nullptr, openOutput(s->outSName),
                  dTab->tensor};
    // A row reports the tensor's magnitudes and angles as zeros, so the
    // Euler angles of an order-matrix fit would be computed for nothing.
    run.givenTensor.euler = 0;
    run.fileIndex = firstFileIndex() - 1;
    resetSearchBest();
    status = 0;
    progressBegin(showProgress(run.output) ? countEntries(lines, lineCount) : 0);
    searchList(run, lines, lineCount, &status);
    progressEnd();
    if (run.output.owned) std::fclose(run.output.stream);
    freeText(lines);
    pdbFree(&reference);
    return status;
}
