// The small fixed peptide the coupling and shift targets map their tables
// onto, read once at start-up with its torsion angles measured.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

#include "fuzz/fixtures.h"
#include "fuzz/fuzz_support.h"
#include "pdb/backbone.h"
#include "pdb/modes.h"
#include "pdb/reader.h"
#include "pdb/structure.h"

namespace fuzz {

inline void loadPeptide(PDBData* structure) {
    setPDBWarn(1);
    std::string path = scratchPath("peptide.pdb");
    writeFile(path, kPeptidePDB);
    pdbNull(structure);
    if (readPDB(path.c_str(), structure, nullptr) != 0 || structure->resCount < 1) {
        dprintf(2, "dc fuzz: the fixed structure cannot be read\n");
        std::abort();
    }
    updatePhiPsi(structure, structure->resMin, structure->resMax);
}

}  // namespace fuzz
