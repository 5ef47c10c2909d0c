#include "tools/surfaces/surface_directory.h"

#include <sys/stat.h>

#include <cstdio>
#include <vector>

#include "tools/surfaces/homology.h"
#include "tools/surfaces/random_coil.h"
#include "tools/surfaces/surface_writer.h"
#include "tools/surfaces/training_set.h"
#include "tools/surfaces/tuning.h"

namespace {

const char* const kReportHead =
    "# Cross-validated shift prediction (5 folds by protein): RMS in ppm of the surface\n"
    "# prediction and of random coil alone on the same shifts; coverage is the share of\n"
    "# observed shifts that get a prediction.\n"
    "atom surf   grid width blend threshold   rows excluded coverage   surface  rndcoil   gain\n";

std::string reportLine(const SurfaceChoice& c) {
    char line[256];
    const char* suffix = positionSuffix(c.position);
    double gain = c.cv.randomCoilRms > 0 ? 100.0 * (1.0 - c.cv.rms / c.cv.randomCoilRms) : 0.0;
    double coverage = 100.0 * c.cv.predicted / (c.cv.rows > 0 ? c.cv.rows : 1);
    std::snprintf(
        line, sizeof line, "%-4s %-6s %4d %5.0f %5.1f %9.2f %6d %8d %8.1f%% %9.3f %9.3f %6.1f%%\n",
        kAtomKindNames[c.atom], suffix[0] ? suffix : "plain", c.grid.n, c.grid.sigma, c.prior,
        c.threshold, c.cv.rows, c.excluded, coverage, c.cv.rms, c.cv.randomCoilRms, gain);
    return line;
}

bool writeText(const std::string& path, const std::string& text) {
    FILE* file = std::fopen(path.c_str(), "w");
    bool ok = file && std::fputs(text.c_str(), file) >= 0;
    if (file && std::fclose(file) != 0) ok = false;
    if (!ok) std::fprintf(stderr, "make_surfaces: cannot write %s\n", path.c_str());
    return ok;
}

// Tunes and writes the surfaces of every atom kind, then the rest.
int writeDirectory(const std::string& out, const std::vector<TrainingResidue>& residues,
                   const RandomCoilTable& randomCoil, const HomologyTable& homology,
                   std::string* report) {
    std::vector<int> foldOf = foldsByProtein(residues, kFolds);
    *report = kReportHead;
    for (int atom = 0; atom < kAtomKinds; atom++) {
        SurfaceChoice choice = chooseSurfaces(residues, foldOf, atom);
        *report += reportLine(choice);
        if (writeShiftSurfaces(out, choice, residues, foldOf) < 0) return 1;
    }
    if (writeConformationSurfaces(out, residues) < 0) return 1;
    if (writeRandomCoil((out + "/rc.tab").c_str(), randomCoil) != 0) return 1;
    if (writeHomology((out + "/homo.tab").c_str(), homology) != 0) return 1;
    return writeText(out + "/crossvalidation.txt", *report) ? 0 : 1;
}

}  // namespace

int buildSurfaceDirectory(const std::string& dataDir, const std::string& outDir,
                          std::string* report) {
    mkdir(outDir.c_str(), 0755);
    std::vector<TrainingResidue> residues;
    RandomCoilTable randomCoil;
    HomologyTable homology;
    int status = 1;
    if (readTraining((dataDir + "/training.csv").c_str(), &residues) == 0 &&
        readRandomCoil((dataDir + "/random_coil.csv").c_str(), &randomCoil) == 0 &&
        readHomology((dataDir + "/blosum62.txt").c_str(), &homology) == 0) {
        for (TrainingResidue& r : residues) setSecondaryShifts(randomCoil, &r);
        status = writeDirectory(outDir, residues, randomCoil, homology, report);
    }
    freeRandomCoil(&randomCoil);
    return status;
}
