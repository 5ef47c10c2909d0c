// Homology search speed: a 20-residue N-H coupling segment slid along 1,000
// generated backbones of 100 to 300 residues (helix and strand stretches
// built from bond geometry, N H CA HA C O per residue), timed beside reading
// the same files alone in the same run. The couplings come from a known
// tensor on one stretch of one structure, so the search has a right answer:
// that file's best offset must be the generating one. Times are process CPU
// time; the search's steps are also replayed and timed one by one, to show
// where its time goes. Exits 1 when the search takes more than three times
// the plain reading (readPDB and pdbFree of every file), when the generating
// offset is not found, or when tracked memory is left in use.
#include "app/search.h"

#include <unistd.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include "app/search_report.h"
#include "app/settings.h"
#include "cs/cs_tab.h"
#include "cs/read_cs.h"
#include "cs/structure_scores.h"
#include "dc/dipolar.h"
#include "dc/dtab.h"
#include "dc/euler.h"
#include "dc/map_dc.h"
#include "dc/read_dc.h"
#include "dc/select_dc.h"
#include "fit/fit_driver.h"
#include "fit/fit_state.h"
#include "fit/workspaces.h"
#include "pdb/backbone.h"
#include "pdb/modes.h"
#include "pdb/reader.h"
#include "pdb/structure.h"
#include "synthetic_ensemble.h"
#include "util/alloc.h"

using namespace bench;

namespace {

constexpr int kFiles = 1000;
constexpr int kMinResidues = 100, kMaxResidues = 300;
constexpr int kSegment = 20;       // table residues 1-20
constexpr int kSourceFile = 0;     // the structure the couplings are made on
constexpr int kSourceOffset = 40;  // table residue 1 lies on structure residue 41
constexpr int kReadRepeats = 3;
constexpr double kAllowedRatio = 3.0;

const char* const kResidueNames[] = {"ALA", "LEU", "SER", "GLU", "LYS",
                                     "VAL", "THR", "ASP", "ILE", "ARG"};

double cpuSeconds() {
    timespec t;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
}

struct Vec {
    double x, y, z;
};
Vec operator-(const Vec& a, const Vec& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
Vec operator+(const Vec& a, const Vec& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
Vec operator*(double s, const Vec& a) { return {s * a.x, s * a.y, s * a.z}; }
Vec cross(const Vec& a, const Vec& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
Vec unit(const Vec& a) { return (1.0 / std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z)) * a; }

// The atom d with |cd| = length, angle b-c-d and torsion a-b-c-d in degrees.
Vec place(const Vec& a, const Vec& b, const Vec& c, double length, double angle, double torsion) {
    double th = angle * M_PI / 180, ph = torsion * M_PI / 180;
    Vec bc = unit(c - b), n = unit(cross(b - a, bc)), m = cross(n, bc);
    double along = -length * std::cos(th), across = length * std::sin(th);
    return c + along * bc + across * std::cos(ph) * m + across * std::sin(ph) * n;
}

struct BackboneResidue {
    const char* name;
    Vec n, h, ca, ha, c, o;
};

// A chain of helix and strand stretches (4 to 16 residues each), every phi
// and psi moved up to 12 degrees from the ideal so that no two stretches of
// the same kind lie alike; omega is trans throughout.
std::vector<BackboneResidue> makeChain(int count) {
    std::vector<double> phi(count), psi(count);
    for (int r = 0; r < count;) {
        bool helix = random() % 2 == 0;
        int length = 4 + static_cast<int>(random() % 13);
        for (int k = 0; k < length && r < count; k++, r++) {
            phi[r] = (helix ? -63.0 : -120.0) + uniform(-12, 12);
            psi[r] = (helix ? -42.0 : 130.0) + uniform(-12, 12);
        }
    }
    std::vector<BackboneResidue> chain(count);
    for (int r = 0; r < count; r++) {
        BackboneResidue& res = chain[r];
        res.name = kResidueNames[random() % (sizeof kResidueNames / sizeof *kResidueNames)];
        if (r == 0) {
            res.n = {0, 0, 0};
            res.ca = {1.458, 0, 0};
            res.c = place({0, 1, 0}, res.n, res.ca, 1.525, 111.2, 0);
            res.h = place(res.c, res.ca, res.n, 1.01, 109.5, 180);
        } else {
            const BackboneResidue& prev = chain[r - 1];
            res.n = place(prev.n, prev.ca, prev.c, 1.329, 116.2, psi[r - 1]);
            res.ca = place(prev.ca, prev.c, res.n, 1.458, 121.7, 180);
            res.c = place(prev.c, res.n, res.ca, 1.525, 111.2, phi[r]);
            res.h = place(prev.ca, prev.c, res.n, 1.01, 119.5, 0);
        }
        res.ha = place(res.c, res.n, res.ca, 1.09, 109.5, -118);
        res.o = place(res.n, res.ca, res.c, 1.231, 120.5, psi[r] + 180);
    }
    return chain;
}

bool writeChain(const std::string& path, const std::vector<BackboneResidue>& chain) {
    // Centred, so that the widest chain still fits the coordinate columns.
    Vec centre = {0, 0, 0};
    for (const BackboneResidue& res : chain) centre = centre + res.ca;
    centre = (1.0 / static_cast<double>(chain.size())) * centre;
    FILE* f = std::fopen(path.c_str(), "w");
    if (!f) return false;
    int serial = 1;
    for (size_t r = 0; r < chain.size(); r++) {
        const BackboneResidue& res = chain[r];
        const std::pair<const char*, const Vec*> atoms[] = {{"N", &res.n},   {"H", &res.h},
                                                            {"CA", &res.ca}, {"HA", &res.ha},
                                                            {"C", &res.c},   {"O", &res.o}};
        for (const auto& atom : atoms) {
            Vec p = *atom.second - centre;
            std::fprintf(f,
                         "ATOM  %5d  %-3s %3s A%4d    %8.3f%8.3f%8.3f  1.00  0.00           %c\n",
                         serial++, atom.first, res.name, static_cast<int>(r) + 1, p.x, p.y, p.z,
                         atom.first[0]);
        }
    }
    std::fprintf(f, "END\n");
    return std::fclose(f) == 0;
}

// N-H rows of table residues 1-20 named after structure residues from
// offset + 1, with the given observed values (DD 1, W 1).
bool writeTable(const std::string& path, const std::vector<BackboneResidue>& chain, int offset,
                const std::vector<float>& observed) {
    FILE* f = std::fopen(path.c_str(), "w");
    if (!f) return false;
    std::fprintf(f, "VARS RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J D DD W\n");
    std::fprintf(f, "FORMAT %%5d %%4s %%4s %%5d %%4s %%4s %%8.3f %%6.2f %%4.1f\n\n");
    for (int r = 1; r <= kSegment; r++) {
        const char* name = chain[offset + r - 1].name;
        std::fprintf(f, "%5d %4s %4s %5d %4s %4s %8.3f %6.2f %4.1f\n", r, name, "N", r, name, "H",
                     observed[r - 1], 1.0, 1.0);
    }
    return std::fclose(f) == 0;
}

// The table of couplings back-calculated from a known tensor on the source
// structure at kSourceOffset, with noise of 0.05 Hz.
bool makeCouplingTable(const std::string& dir, const std::vector<BackboneResidue>& source,
                       const std::string& table) {
    std::vector<float> observed(kSegment, 0.0f);
    if (!writeTable(table, source, kSourceOffset, observed)) return false;
    PDBData pdb;
    pdbNull(&pdb);
    DTab tab;
    dTabNull(&tab);
    std::string path = dir + "/s0000.pdb";
    bool ok = readPDB(path.c_str(), &pdb, nullptr) == 0 && readDC(table.c_str(), &tab, 0) == 0 &&
              selectD(tab.couplings, tab.count, 1, kSegment, kSelectMax) == kSegment &&
              buildDC(&pdb, &tab, kSourceOffset, 1, nullptr, 0, 1) == kSegment;
    if (ok) {
        float c[5];
        euler2saupe2(c, 25, -40, 70, 0, 0, 0, 8e-4f, 3e-4f);
        PDBData* list[1] = {&pdb};
        makeCouplings(list, 1, &tab, c);
        for (int i = 0; i < kSegment; i++) observed[i] = tab.couplings[i].dObs;
        ok = writeTable(table, source, kSourceOffset, observed);
    }
    dTabFree(&tab);
    pdbFree(&pdb);
    fitDCFree();
    dipolarFree();
    return ok;
}

// Reads every file (and, with prepare, measures the torsions and surface
// values as the search does for each structure); CPU seconds, or -1.
double readAll(const std::vector<std::string>& paths, bool prepare) {
    double start = cpuSeconds();
    for (const std::string& path : paths) {
        PDBData pdb;
        pdbNull(&pdb);
        int status = readPDB(path.c_str(), &pdb, nullptr);
        if (status == 0 && prepare) {
            if (pdb.resCount > 0) updatePhiPsi(&pdb, pdb.resMin, pdb.resMax);
            updatePDBSurf(&pdb, pdb.resMin, pdb.resMax);
        }
        pdbFree(&pdb);
        if (status != 0) return -1;
    }
    return cpuSeconds() - start;
}

double bestReadSeconds(const std::vector<std::string>& paths, bool prepare) {
    double best = 1e30;
    for (int r = 0; r < kReadRepeats; r++) {
        double t = readAll(paths, prepare);
        if (t < 0) return -1;
        if (t < best) best = t;
    }
    return best;
}

struct SearchFigures {
    double seconds = -1;
    int status = -1;
    int summaries = 0;    // summary lines, one per file searched
    int sourceFirst = 0;  // best structure residue range of the source file
    int sourceLast = 0;
    float sourceRms = -1;  // and its D_RMS
};

// The search as the program runs it with -outS None: settings, tables and
// the process-wide workspaces set up and released as the main routine does.
// The summary lines go to a file while the search runs.
SearchFigures runSearch(const std::string& dir, const std::string& table) {
    SearchFigures f;
    RunSettings s;
    runSettingsNull(&s);
    std::snprintf(s.inName, sizeof s.inName, "%s", table.c_str());
    std::snprintf(s.listName, sizeof s.listName, "%s/pdb.list", dir.c_str());
    std::snprintf(s.pdbDir, sizeof s.pdbDir, "%s", dir.c_str());
    std::snprintf(s.outSName, sizeof s.outSName, "None");
    s.res1 = 1;
    s.resN = kSegment;
    dipolarNull();
    DTab dTab;
    dTabNull(&dTab);
    CSTab cs;
    csTabNull(&cs);
    std::string summaryPath = dir + "/summary.txt";
    if (readDC(s.inName, &dTab, s.keepDI) == 0) {
        std::fflush(stderr);
        int saved = dup(STDERR_FILENO);
        if (saved >= 0 && std::freopen(summaryPath.c_str(), "w", stderr)) {
            double start = cpuSeconds();
            f.status = searchDC(&dTab, &cs, &s);
            f.seconds = cpuSeconds() - start;
            std::fflush(stderr);
            dup2(saved, STDERR_FILENO);
        }
        if (saved >= 0) close(saved);
    }
    csTabFree(&cs);
    dTabFree(&dTab);
    releaseFitWorkspaces();
    runSettingsFree(&s);

    FILE* in = std::fopen(summaryPath.c_str(), "r");
    char line[512], name[256];
    while (in && std::fgets(line, sizeof line, in)) {
        int index, res1, resN, first, last;
        float da, dr, bb, rms;
        if (std::sscanf(line, "%255s %d %d %d %d %d %f %f %f %f", name, &index, &res1, &resN,
                        &first, &last, &da, &dr, &bb, &rms) != 10)
            continue;
        f.summaries++;
        if (index == kSourceFile + 1) f.sourceFirst = first, f.sourceLast = last, f.sourceRms = rms;
    }
    if (in) std::fclose(in);
    return f;
}

// The search's per-offset steps replayed on every structure, each file read
// and prepared once outside the timing. Three passes over a file's offsets:
// selecting and mapping the couplings; the same plus the tensor fit; the
// same plus the row statistics (reportS with no row stream). Each step costs
// the difference between successive passes.
struct StepSeconds {
    double map = 0, fit = 0, statistics = 0;
};

bool replaySteps(const std::vector<std::string>& paths, const std::string& table,
                 StepSeconds* steps) {
    DTab tab;
    dTabNull(&tab);
    CSTab cs;
    csTabNull(&cs);
    bool ok = readDC(table.c_str(), &tab, 0) == 0;
    DTensor given = tab.tensor;
    double passSeconds[3] = {0, 0, 0};
    for (size_t i = 0; i < paths.size() && ok; i++) {
        PDBData pdb;
        pdbNull(&pdb);
        ok = readPDB(paths[i].c_str(), &pdb, nullptr) == 0;
        if (ok && pdb.resCount > 0) updatePhiPsi(&pdb, pdb.resMin, pdb.resMax);
        if (ok) updatePDBSurf(&pdb, pdb.resMin, pdb.resMax);
        int lastOffset = pdb.resCount - kSegment;
        for (int pass = 0; pass < 3 && ok; pass++) {
            double start = cpuSeconds();
            for (int offset = 0; offset <= lastOffset; offset++) {
                int selected = selectD(tab.couplings, tab.count, 1, kSegment, kSelectMax);
                if (buildDC(&pdb, &tab, offset, 1, nullptr, 0, 1) < kSegment) ok = false;
                if (pass == 0) continue;
                tab.tensor = given;
                fitD(&pdb, &tab, kDefaultRetries, 0);
                if (pass == 1) continue;
                // No summary line: the offset never equals lastOffset given here.
                SearchRow row{};
                row.fitNumber = offset + 1;
                row.fileIndex = static_cast<int>(i) + 1;
                row.fileName = "replay";
                row.res1 = 1, row.resN = kSegment, row.segID = 1;
                row.selectedCouplings = selected;
                row.offset = offset, row.lastOffset = -1;
                row.first = offset + 1, row.last = offset + kSegment;
                row.csThresh = 2.0, row.vcThresh = 0.95;
                reportS(nullptr, nullptr, &pdb, &tab, &cs, row);
            }
            passSeconds[pass] += cpuSeconds() - start;
        }
        pdbFree(&pdb);
    }
    steps->map = passSeconds[0];
    steps->fit = passSeconds[1] - passSeconds[0];
    steps->statistics = passSeconds[2] - passSeconds[1];
    resetSearchBest();
    csTabFree(&cs);
    dTabFree(&tab);
    dipolarFree();
    fitDCFree();
    return ok;
}

}  // namespace

int main() {
    char dir[] = "/tmp/dc_bench_searchXXXXXX";
    if (!mkdtemp(dir)) return 1;
    srandom(1);
    setPDBWarn(1);
    int64_t usedBefore = 0, reused = 0;
    getMemUsed(&usedBefore, &reused);

    // The structures, the list naming them and the coupling table.
    std::vector<std::string> paths;
    std::vector<BackboneResidue> source;
    std::string list = std::string(dir) + "/pdb.list", table = std::string(dir) + "/nh.tab";
    FILE* listFile = std::fopen(list.c_str(), "w");
    bool ok = listFile != nullptr;
    long residues = 0, offsets = 0;
    for (int i = 0; i < kFiles && ok; i++) {
        int count = kMinResidues + static_cast<int>(random() % (kMaxResidues - kMinResidues + 1));
        std::vector<BackboneResidue> chain = makeChain(count);
        char name[32];
        std::snprintf(name, sizeof name, "s%04d.pdb", i);
        paths.push_back(std::string(dir) + "/" + name);
        ok = writeChain(paths.back(), chain) && std::fprintf(listFile, "%s\n", name) > 0;
        if (i == kSourceFile) source = chain;
        residues += count;
        offsets += count - kSegment + 1;
    }
    if (listFile && std::fclose(listFile) != 0) ok = false;
    ok = ok && makeCouplingTable(dir, source, table);
    if (!ok) {
        std::printf("FAIL: structures or coupling table not written\n");
        std::string clean = std::string("rm -rf '") + dir + "'";
        std::system(clean.c_str());
        return 1;
    }

    double readSeconds = bestReadSeconds(paths, false);
    double preparedSeconds = bestReadSeconds(paths, true);
    // Best of as many runs as the reading, so both figures are measured alike.
    SearchFigures search = runSearch(dir, table);
    for (int k = 1; k < kReadRepeats; k++) {
        SearchFigures again = runSearch(dir, table);
        if (again.seconds < search.seconds) search = again;
    }
    StepSeconds steps;
    bool replayed = replaySteps(paths, table, &steps);
    int64_t usedAfter = 0;
    getMemUsed(&usedAfter, &reused);

    std::printf(
        "%d structures of %d-%d residues (N H CA HA C O), %ld residues in all; "
        "%d-residue N-H segment\n",
        kFiles, kMinResidues, kMaxResidues, residues, kSegment);
    std::printf(
        "search, rows to None:               %8.3f s CPU  (best of %d; %ld offsets fitted, %.1f us "
        "each)\n",
        search.seconds, kReadRepeats, offsets, 1e6 * search.seconds / static_cast<double>(offsets));
    std::printf("reading alone (readPDB + pdbFree):   %8.3f s CPU  (best of %d)\n", readSeconds,
                kReadRepeats);
    std::printf(
        "reading + torsions + surface values: %8.3f s CPU  (best of %d; the search's "
        "per-file preparation)\n",
        preparedSeconds, kReadRepeats);
    bool found =
        search.sourceFirst == kSourceOffset + 1 && search.sourceLast == kSourceOffset + kSegment;
    std::printf(
        "source file best offset: residues %d-%d (made on %d-%d), D_RMS %.3f Hz; "
        "%d summary lines for %d files\n",
        search.sourceFirst, search.sourceLast, kSourceOffset + 1, kSourceOffset + kSegment,
        search.sourceRms, search.summaries, kFiles);
    std::printf(
        "where the search's time goes (its steps replayed per offset, files read "
        "outside the timing; each step the difference of two passes):\n");
    std::printf("  select + map couplings (selectD, buildDC): %8.3f s CPU\n", steps.map);
    std::printf("  tensor fit (fitD, SVD):                    %8.3f s CPU\n", steps.fit);
    std::printf("  row statistics (reportS, no rows written): %8.3f s CPU\n", steps.statistics);
    std::printf("  reading + preparing the files (above):     %8.3f s CPU\n", preparedSeconds);
    std::printf("tracked bytes in use after freeing everything: %lld\n",
                static_cast<long long>(usedAfter - usedBefore));
    bool valid = replayed && search.status == 0 && search.seconds > 0 && readSeconds > 0 && found &&
                 search.summaries == kFiles && usedAfter == usedBefore;
    if (!valid) std::printf("FAIL: search or reading did not run as expected\n");
    double ratio = readSeconds > 0 ? search.seconds / readSeconds : 0;
    bool met = valid && ratio <= kAllowedRatio;
    std::printf("search / reading alone: %.2f against a target of at most %.1f: %s\n", ratio,
                kAllowedRatio, met ? "target met" : "target MISSED");

    std::string clean = std::string("rm -rf '") + dir + "'";
    if (std::system(clean.c_str()) != 0) return 1;
    return met ? 0 : 1;
}
