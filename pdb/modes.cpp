#include "pdb/modes.h"

namespace {

struct PDBModes {
    int warn = 0;
    int ignoreChain = 0;
    int ignoreSegment = 0;
    int uniqueAtoms = 0;
    int fullAtom = 0;
    int verbose = 0;
    int debug = 0;
};

PDBModes modes;

int exchange(int* field, int value) {
    int old = *field;
    *field = value;
    return old;
}

}  // namespace

int setPDBChainMode(int ignore) { return exchange(&modes.ignoreChain, ignore); }
int setPDBSegMode(int ignore) { return exchange(&modes.ignoreSegment, ignore); }
int setPDBUniqMode(int unique) { return exchange(&modes.uniqueAtoms, unique); }
int setPDBAtomMode(int full) { return exchange(&modes.fullAtom, full); }
int getPDBChainMode() { return modes.ignoreChain; }
int getPDBSegMode() { return modes.ignoreSegment; }
int getPDBUniqMode() { return modes.uniqueAtoms; }
int getPDBAtomMode() { return modes.fullAtom; }

void setPDBVerbose(int verbose, int debug) {
    modes.verbose = verbose;
    modes.debug = debug;
}
int getPDBVerb() { return modes.verbose; }
int getPDBDBG() { return modes.debug; }
void setPDBWarn(int on) { modes.warn = on; }
int getPDBWarn() { return modes.warn; }

void resetPDBModes() { modes = PDBModes{}; }
