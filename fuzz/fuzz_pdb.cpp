// PDB coordinate files: the bytes are written to a scratch file, read and
// indexed, the backbone torsions are stored as a simulation run does right
// after reading, and the structure is released.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/fuzz_support.h"
#include "pdb/backbone.h"
#include "pdb/modes.h"
#include "pdb/reader.h"
#include "pdb/structure.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::quietStreams();
    setPDBWarn(1);  // as in a DC run, so that the warning paths run too
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::string path = fuzz::scratchPath("in.pdb");
    fuzz::writeFile(path, data, size);
    int64_t start = fuzz::bytesInUse();
    PDBData pdb;
    pdbNull(&pdb);
    // A failed read may leave a partial structure; it is freed all the same.
    if (readPDB(path.c_str(), &pdb, nullptr) == 0 && pdb.resCount > 0) {
        updatePhiPsi(&pdb, pdb.resMin, pdb.resMax);
    }
    pdbFree(&pdb);
    fuzz::checkBalance(start, "PDB input");
    return 0;
}
