// The whole surface directory from the training data: every shift surface
// with its density and deviation, the conformation surfaces, rc.tab,
// homo.tab and the cross-validation report crossvalidation.txt.
#pragma once

#include <string>

// dataDir holds training.csv, random_coil.csv and blosum62.txt. The report
// (one line per atom kind) is also returned. 0, or 1 after a message.
int buildSurfaceDirectory(const std::string& dataDir, const std::string& outDir,
                          std::string* report);
