// Switches of the structure library: how chain, segment, alt-loc and
// insertion-code identifiers enter the index keys, whether atom IDs are file
// serial numbers or running counts, and which messages the library prints.
#pragma once

// Each of these returns the previous setting.
int setPDBChainMode(int ignore);
int setPDBSegMode(int ignore);
int setPDBUniqMode(int unique);
int setPDBAtomMode(int full);
int getPDBChainMode();
int getPDBSegMode();
int getPDBUniqMode();
int getPDBAtomMode();

void setPDBVerbose(int verbose, int debug);
int getPDBVerb();
int getPDBDBG();
void setPDBWarn(int on);
int getPDBWarn();

// Back to the start-up settings (for tests).
void resetPDBModes();
