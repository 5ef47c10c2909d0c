// Order-matrix fit speed: 10,000 couplings on one structure and 500
// couplings on a 20-model ensemble, both generated here (random N-H and
// CA-HA bond directions, couplings from a known tensor with a little noise).
// Reports fits per second, and back-substitutions per second for a new
// right-hand side on the decomposition already made. Exits 1 when a fit
// allocates once the workspaces exist, or misses the generating tensor.
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "dc/dipolar.h"
#include "dc/euler.h"
#include "dc/map_dc.h"
#include "dc/order_matrix.h"
#include "dc/read_dc.h"
#include "fit/fit_driver.h"
#include "math/least_squares.h"
#include "pdb/reader.h"
#include "pdb/structure.h"
#include "synthetic_ensemble.h"
#include "util/alloc.h"

using namespace bench;

namespace {

constexpr double kMinSeconds = 1.5;

struct Figures {
    double fitsPerSecond = 0, solvesPerSecond = 0, maxError = 0;
    int64_t allocations = 0, bytes = 0;
    int used = 0;
};

template <class Work>
double perSecond(Work work) {
    auto start = std::chrono::steady_clock::now();
    long count = 0;
    double spent = 0;
    do {
        for (int i = 0; i < 10; i++) work();
        count += 10;
        spent = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    } while (spent < kMinSeconds);
    return count / spent;
}

Figures measure(PDBData** pdbs, int count, DTab* tab, const float c[5]) {
    Figures f;
    f.used = fitDN(pdbs, count, tab, 0, 0);  // sizes every workspace once
    int64_t allocationsBefore = getAllocCount(), bytesBefore = 0, bytesAfter = 0;
    getMemUsed(&bytesBefore, nullptr);
    f.fitsPerSecond = perSecond([&] { fitDN(pdbs, count, tab, 0, 0); });
    f.allocations = getAllocCount() - allocationsBefore;
    getMemUsed(&bytesAfter, nullptr);
    f.bytes = bytesAfter - bytesBefore;
    for (int k = 0; k < 5; k++) {
        f.maxError =
            std::max(f.maxError, static_cast<double>(std::fabs(tab->tensor.saupe[k] - c[k])));
    }

    // The design of the last fit, solved again for another data set.
    int rows = f.used > 5 ? f.used : 5;
    std::vector<float> rhs(dipolarValues(), dipolarValues() + rows);
    for (float& b : rhs) b = -b;
    float x[5];
    allocationsBefore = getAllocCount();
    f.solvesPerSecond =
        perSecond([&] { svdLSMat(dipolarDesign(), rhs.data(), rows, 5, x, nullptr, 0); });
    f.allocations += getAllocCount() - allocationsBefore;
    for (int k = 0; k < 5; k++) {
        f.maxError =
            std::max(f.maxError, static_cast<double>(std::fabs(x[k] + tab->tensor.saupe[k])));
    }
    return f;
}

bool report(const char* name, const Figures& f, double saupeScale) {
    std::printf("%s: %d couplings, %.1f fits/s, %.0f back-substitutions/s (decomposition reused)\n",
                name, f.used, f.fitsPerSecond, f.solvesPerSecond);
    std::printf("  allocations during the timed fits: %lld (%lld bytes left in use)\n",
                static_cast<long long>(f.allocations), static_cast<long long>(f.bytes));
    std::printf("  largest coefficient error: %.2e (coefficients about %.1e)\n", f.maxError,
                saupeScale);
    bool ok = f.allocations == 0 && f.bytes == 0 && f.maxError < 0.02 * saupeScale;
    if (!ok) std::printf("FAIL: %s\n", name);
    return ok;
}

bool runCase(const char* name, const std::string& dir, int residues, int models) {
    std::vector<Residue> base = makeResidues(residues);
    std::vector<PDBData> structures(models);
    std::vector<PDBData*> list;
    for (int m = 0; m < models; m++) {
        std::string path = dir + "/model" + std::to_string(m) + ".pdb";
        writeStructure(path, base, models > 1 ? 0.15 : 0.0);
        pdbNull(&structures[m]);
        if (readPDB(path.c_str(), &structures[m], nullptr) != 0) return false;
        list.push_back(&structures[m]);
    }
    std::string table = dir + "/couplings.tab";
    writeTable(table, residues, 0.5);
    DTab tab;
    dTabNull(&tab);
    bool ok = readDC(table.c_str(), &tab, 0) == 0 &&
              buildDCN(list.data(), models, &tab, 0, 0, nullptr, 0, 1) == 2 * residues;
    float c[5];
    euler2saupe2(c, 25, -40, 70, 0, 0, 0, 8e-4f, 3e-4f);
    if (ok) {
        makeCouplings(list.data(), models, &tab, c);
        ok = report(name, measure(list.data(), models, &tab, c), 8e-4);
    }
    dTabFree(&tab);
    for (PDBData& s : structures) pdbFree(&s);
    dipolarFree();
    return ok;
}

}  // namespace

int main() {
    char dir[] = "/tmp/dc_bench_fit_svdXXXXXX";
    if (!mkdtemp(dir)) return 1;
    bool ok = runCase("one structure", dir, 5000, 1);
    ok = runCase("20-model ensemble", dir, 250, 20) && ok;
    std::string clean = std::string("rm -rf '") + dir + "'";
    if (std::system(clean.c_str()) != 0) return 1;
    return ok ? 0 : 1;
}
