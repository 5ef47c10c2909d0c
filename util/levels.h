// Program-wide debug and verbosity levels (-dbg, -verb), read by many parts
// of DC to decide which progress lines to write.
#pragma once

int dbgFlag();
void setDbgFlag(int level);
int verbose();
void setVerbose(int level);
