// The shift path of a simulation run: the bytes are a shift table, read with
// a small fixed set of surfaces loaded, then selected, mapped onto a small
// fixed structure, predicted, scored and written in every layout, and
// released. Run settings (offset, constant RMS, layouts) come from a hash of
// the input, so that the table text stays as written.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "cs/cs_tab.h"
#include "cs/map_cs.h"
#include "cs/predict_cs.h"
#include "cs/read_cs.h"
#include "cs/select_cs.h"
#include "cs/stat_cs.h"
#include "cs/surface.h"
#include "cs/surface_file.h"
#include "cs/write_cs.h"
#include "fuzz/fixed_structure.h"
#include "fuzz/fuzz_support.h"
#include "pdb/backbone.h"
#include "pdb/modes.h"
#include "pdb/reader.h"
#include "pdb/structure.h"

namespace {

PDBData structure;

void writeGrid(const std::string& path, float base, float threshold) {
    std::vector<float> grid(16);
    for (int i = 0; i < 16; i++) grid[i] = base + static_cast<float>(i) * 0.25f;
    SurfHeader h{4, 4, -180, 180, -180, 180, 1, 0.8f, threshold};
    if (surfWrite2D(path.c_str(), grid.data(), h) != 0) std::abort();
}

// Every conformation surface, shift surfaces of each position and of a
// residue type, a random-coil table with neighbour corrections and a
// homology table.
std::string writeSurfaces() {
    std::string dir = fuzz::scratchPath("surfaces");
    std::filesystem::create_directories(dir);
    for (const char* type : kSurfResNames) writeGrid(dir + "/" + type + ".dat", 1.0f, 0.0f);
    for (const char* name : {"CA.ALA", "CA", "N.prev", "C.next", "HA2.GLY", "HN.xPRO.prev"}) {
        std::string base = dir + "/" + name;
        writeGrid(base + ".dat", -1.0f, 0.5f);
        writeGrid(base + ".d.dat", 0.0f, 0.5f);
        writeGrid(base + ".q.dat", 0.1f, 0.5f);
    }
    fuzz::writeFile(dir + "/rc.tab",
                    "VARS RESNAME ATOMNAME TYPE OFFSET SHIFT\nFORMAT %s %s %s %d %f\n"
                    "A CA RC 0 52.5\nA N RC 0 125.4\nG HA2 RC 0 3.9\nG HA3 RC 0 3.9\n"
                    "L C RC 0 177\nP CA ADJ 1 -2\nG N ADJ -1 -1.5\nA CA ADJ 0 0.1\n");
    fuzz::writeFile(dir + "/homo.tab", "VARS RESNAME ALA GLY\nFORMAT %s %f %f\nALA 0 3\nGLY 3 0\n");
    return dir;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::quietStreams();
    std::string surfaces = writeSurfaces();
    if (surfRead(surfaces.c_str(), "rc.tab", "homo.tab", 0) != 0) {
        dprintf(2, "dc fuzz: the fixed surfaces cannot be read\n");
        std::abort();
    }
    fuzz::loadPeptide(&structure);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::string path = fuzz::scratchPath("in.tab");
    fuzz::writeFile(path, data, size);
    uint32_t flags = fuzz::hashBytes(data, size);
    int64_t start = fuzz::bytesInUse();

    CSTab cs;
    csTabNull(&cs);
    if (readCS(path.c_str(), &cs) == 0 && cs.count > 0) {
        int offset = static_cast<int>(flags % 5) - 2;
        int selected = selectCS(cs.rows, cs.count, cs.resMin, cs.resMax);
        static const int skip[] = {3, 5};
        skipCS(cs.rows, cs.count, (flags >> 3) & 1 ? skip : nullptr, 2, selected);
        buildCS(&structure, &cs, offset, 0, (flags >> 4) & 1);
        mapCSAtomInfo(&structure, &cs, offset, (flags >> 5) & 1);
        mapCS2PDB(&structure, &cs, 0);
        for (int layout = 0; layout < 4; layout++) {
            writeCS("/dev/null", &cs, "CS: fuzz PDB: peptide", layout & 1, layout >> 1);
        }
        float rms, chi2, wchi2;
        int n;
        getStatCS(cs.rows, cs.count, &rms, &chi2, &wchi2, &n, 2.0f);
    }
    csTabFree(&cs);
    fuzz::checkBalance(start, "shift table input");
    return 0;
}
