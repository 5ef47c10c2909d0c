#include "app/version.h"

#include "util/version.h"

void showVersion(const char* prefix) { writeVersionLines(stdout, prefix); }
