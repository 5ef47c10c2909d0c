// Out of memory while a plot is made: a message and status 1, not a crash.
#pragma once

using PlotFunction = int (*)(const char* inPath, const char* outPath);

// Runs plot; a failed allocation inside it prints "dcplot Error: out of
// memory." and gives 1.
int runGuarded(PlotFunction plot, const char* inPath, const char* outPath);
