// Switches of the structure library: how chain and segment identifiers are
// treated when structures are indexed, and whether reader warnings are shown.
#pragma once

void setPDBWarn(int on);
int getPDBWarn();
void setPDBChainMode(int ignore);
int getPDBChainMode();
void setPDBSegMode(int ignore);
int getPDBSegMode();
// Back to the start-up settings (for tests).
void resetPDBModes();
