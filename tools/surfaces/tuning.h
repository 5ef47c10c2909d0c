// Choosing each atom kind's surfaces by cross-validation over whole proteins:
// which angles index them, the grid, the kernel width, the blend toward the
// residue-independent surface, and the density below which a prediction is
// refused.
#pragma once

#include <vector>

#include "tools/surfaces/surface_model.h"

constexpr int kFolds = 5;

struct SurfaceChoice {
    int atom;
    int position;
    Grid grid;
    float prior;
    float threshold;
    Evaluation cv;  // cross-validated figures of the choice
    int excluded;   // outliers left out of training and figures
};

// The fold of every residue: the proteins (BMRB entries) in order of their
// number, dealt out in turn, so a protein never informs its own prediction.
std::vector<int> foldsByProtein(const std::vector<TrainingResidue>& residues, int folds);

// The surfaces of one atom kind that predict best: the lowest
// cross-validated RMS; then the threshold with the lowest RMS that still
// leaves at least 99 % of the shifts predicted.
SurfaceChoice chooseSurfaces(const std::vector<TrainingResidue>& residues,
                             const std::vector<int>& foldOf, int atom);
