// Coupling table speed: reads a 100,000-row coupling table (25 chains x 2000
// residues, N-H and CA-HA in each, with chain names) and maps it onto the
// matching 200,000-atom structure. Mapping is two atom lookups per coupling
// in the structure's hash index; it must take no heap block per coupling
// (only the one-entry structure list per build) and stay within three times
// the time of the bare lookups.
#include "dc/map_dc.h"

#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "dc/dipolar.h"
#include "dc/dtab.h"
#include "dc/read_dc.h"
#include "pdb/lookup.h"
#include "pdb/reader.h"
#include "pdb/structure.h"
#include "util/alloc.h"
#include "util/growstr.h"
#include "util/token.h"

namespace {

constexpr int kChains = 25;
constexpr int kResidues = 2000;
constexpr int kCouplings = kChains * kResidues * 2;
constexpr int kRepeats = 3;

double seconds(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

char chainName(int c) { return static_cast<char>('A' + c); }

bool writeStructure(const std::string& path) {
    FILE* f = std::fopen(path.c_str(), "w");
    if (!f) return false;
    struct Atom {
        const char* name;
        float dx, dy, dz;
    };
    const Atom atoms[] = {
        {"N", 0, 0, 0}, {"H", 0, 0, 1.02f}, {"CA", 1.46f, 0, 0}, {"HA", 1.46f, 1.09f, 0}};
    int serial = 0;
    for (int c = 0; c < kChains; c++) {
        for (int r = 1; r <= kResidues; r++) {
            for (const Atom& a : atoms) {
                // Serial numbers wrap to stay inside their five columns.
                serial = serial % 99999 + 1;
                std::fprintf(f, "ATOM  %5d  %-3s ALA %c%4d    %8.3f%8.3f%8.3f  1.00  0.00\n",
                             serial, a.name, chainName(c), r, 3.8f * (r % 200) + a.dx,
                             10.0f * c + a.dy, 5.0f * (r / 200) + a.dz);
            }
        }
    }
    return std::fclose(f) == 0;
}

bool writeTable(const std::string& path) {
    FILE* f = std::fopen(path.c_str(), "w");
    if (!f) return false;
    std::fprintf(f,
                 "VARS RESID_I RESNAME_I ATOMNAME_I CHAINNAME_I RESID_J RESNAME_J ATOMNAME_J "
                 "CHAINNAME_J D\nFORMAT %%5d %%4s %%4s %%2s %%5d %%4s %%4s %%2s %%8.3f\n\n");
    for (int c = 0; c < kChains; c++) {
        for (int r = 1; r <= kResidues; r++) {
            std::fprintf(f, "%5d ALA N %c %5d ALA H %c %8.3f\n", r, chainName(c), r, chainName(c),
                         static_cast<float>(r % 41 - 20) * 0.5f);
            std::fprintf(f, "%5d ALA CA %c %5d ALA HA %c %8.3f\n", r, chainName(c), r, chainName(c),
                         static_cast<float>(r % 37 - 18) * 1.5f);
        }
    }
    return std::fclose(f) == 0;
}

// The same atom lookups the mapping makes, and nothing else.
long bareLookups(const PDBData* pdb, const DTab* dTab) {
    long found = 0;
    for (int i = 0; i < dTab->count; i++) {
        const DCValue& v = dTab->couplings[i];
        found += findAtom(pdb, v.residI, v.atomNameI, v.chainI, v.segI) != nullptr;
        found += findAtom(pdb, v.residJ, v.atomNameJ, v.chainJ, v.segJ) != nullptr;
    }
    return found;
}

}  // namespace

int main() {
    char dirTemplate[] = "/tmp/dc_map_dc_XXXXXX";
    if (!mkdtemp(dirTemplate)) {
        std::fprintf(stderr, "map_dc: cannot make a scratch folder\n");
        return 1;
    }
    const std::string dir = dirTemplate;
    const std::string pdbPath = dir + "/chains.pdb", tabPath = dir + "/chains.tab";
    if (!writeStructure(pdbPath) || !writeTable(tabPath)) {
        std::fprintf(stderr, "map_dc: cannot write the inputs\n");
        return 1;
    }

    bool ok = true;
    DTab dTab;
    dTabNull(&dTab);
    double readTime = 1e30;
    for (int k = 0; k < kRepeats && ok; k++) {
        dTabFree(&dTab);
        auto start = std::chrono::steady_clock::now();
        ok = readDC(tabPath.c_str(), &dTab, 0) == 0 && dTab.count == kCouplings;
        double elapsed = seconds(start);
        if (elapsed < readTime) readTime = elapsed;
    }

    PDBData pdb;
    pdbNull(&pdb);
    auto pdbStart = std::chrono::steady_clock::now();
    ok = ok && readPDB(pdbPath.c_str(), &pdb, nullptr) == 0;
    double pdbTime = seconds(pdbStart);

    double mapTime = 1e30, lookupTime = 1e30;
    int mapped = 0;
    int64_t blocks = 0, growth = 0;
    for (int k = 0; k < kRepeats && ok; k++) {
        int64_t before = 0, after = 0;
        getMemUsed(&before, nullptr);
        int64_t blocksBefore = getAllocCount();
        auto start = std::chrono::steady_clock::now();
        mapped = buildDC(&pdb, &dTab, 0, 1, nullptr, 0, 1);
        double elapsed = seconds(start);
        getMemUsed(&after, nullptr);
        blocks = getAllocCount() - blocksBefore;
        // The first build adds the structure list; later ones replace it.
        if (k == 0) growth = after - before;
        if (elapsed < mapTime) mapTime = elapsed;

        start = std::chrono::steady_clock::now();
        ok = bareLookups(&pdb, &dTab) == 2L * kCouplings;
        elapsed = seconds(start);
        if (elapsed < lookupTime) lookupTime = elapsed;
    }

    dTabFree(&dTab);
    pdbFree(&pdb);
    dipolarFree();
    freeToken();
    ctempFree();
    std::remove(pdbPath.c_str());
    std::remove(tabPath.c_str());
    rmdir(dir.c_str());
    int64_t inUse = 0;
    getMemUsed(&inUse, nullptr);
    if (!ok) {
        std::fprintf(stderr, "map_dc: reading or looking up the inputs failed\n");
        return 1;
    }

    double ratio = mapTime / lookupTime;
    bool met = mapped == kCouplings && blocks == 1 && growth == sizeof(PDBData*) && ratio <= 3.0 &&
               inUse == 0;
    std::printf("map_dc: %d couplings, %d chains x %d residues, best of %d\n", kCouplings, kChains,
                kResidues, kRepeats);
    std::printf("  read table      %10.0f couplings/s (%.3f s)\n", kCouplings / readTime, readTime);
    std::printf("  read structure  %10.0f atoms/s (%.3f s)\n", 4.0 * kChains * kResidues / pdbTime,
                pdbTime);
    std::printf("  map (buildDC)   %10.0f couplings/s (%.3f s), %d mapped\n", kCouplings / mapTime,
                mapTime, mapped);
    std::printf("  bare lookups    %10.0f couplings/s (%.3f s)\n", kCouplings / lookupTime,
                lookupTime);
    std::printf("  map/lookup time %.2f (target at most 3)\n", ratio);
    std::printf("  heap blocks taken per build: %ld (the structure list), bytes added: %ld\n",
                static_cast<long>(blocks), static_cast<long>(growth));
    std::printf("  bytes still in use: %ld\n", static_cast<long>(inUse));
    std::printf("  targets: %s\n", met ? "met" : "MISSED");
    return met ? 0 : 1;
}
