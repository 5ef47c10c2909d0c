#include "pdb/modes.h"

namespace {

struct PDBModes {
    int warn = 0;
    int ignoreChain = 0;
    int ignoreSegment = 0;
};

PDBModes modes;

}  // namespace

void setPDBWarn(int on) { modes.warn = on; }
int getPDBWarn() { return modes.warn; }
void setPDBChainMode(int ignore) { modes.ignoreChain = ignore; }
int getPDBChainMode() { return modes.ignoreChain; }
void setPDBSegMode(int ignore) { modes.ignoreSegment = ignore; }
int getPDBSegMode() { return modes.ignoreSegment; }
void resetPDBModes() { modes = PDBModes{}; }
