// The plots dcplot makes. Each reads one of DC's output files and writes a
// standalone SVG file; 0, or 1 after a "dcplot Error: ..." message, in which
// case no output file is made unless writing it failed part way.
#pragma once

// Observed against back-calculated couplings from a DC -outD table written
// with -verb, one colour per coupling type, with the line y = x.
int plotCouplings(const char* inPath, const char* outPath);

// Observed against predicted shifts from a DC -outCS table written with
// -verb, one panel per atom kind.
int plotShifts(const char* inPath, const char* outPath);

// D_RMS against the first structure residue of every offset in a DC -outS
// search report, one line per structure, its lowest D_RMS marked.
int plotSearch(const char* inPath, const char* outPath);

// The command line: dcplot couplings|shifts|search IN OUT. Returns the exit
// status: 0, 1 after an error, 2 after the usage text for wrong arguments.
int dcplotMain(int argc, char** argv);
