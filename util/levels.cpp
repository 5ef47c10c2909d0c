#include "util/levels.h"

namespace {

struct Levels {
    int debug = 0;
    int verbose = 0;
};

Levels levels;

}  // namespace

int dbgFlag() { return levels.debug; }
void setDbgFlag(int level) { levels.debug = level; }
int verbose() { return levels.verbose; }
void setVerbose(int level) { levels.verbose = level; }
