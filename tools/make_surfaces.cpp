// Builds DC's surface directory from the shift training data and prints the
// cross-validated accuracy of each atom kind's surfaces.
//
// Usage: make_surfaces DATA_DIR OUT_DIR
//   DATA_DIR holds training.csv, random_coil.csv and blosum62.txt.
#include <cstdio>
#include <string>

#include "tools/surfaces/surface_directory.h"

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: make_surfaces DATA_DIR OUT_DIR\n");
        return 2;
    }
    std::string report;
    if (buildSurfaceDirectory(argv[1], argv[2], &report) != 0) return 1;
    std::fputs(report.c_str(), stdout);
    return 0;
}
