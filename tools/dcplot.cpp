// dcplot: SVG pictures of DC's coupling, shift and search output files.
#include "tools/dcplot/plots.h"

int main(int argc, char** argv) { return dcplotMain(argc, argv); }
