// The shift surfaces of one atom kind: the training observations, their
// kernel sums by residue class and cross-validation fold, and predictions
// from them made as DC makes them (the cell holding the angles).
#pragma once

#include <string>
#include <vector>

#include "tools/surfaces/kernel_surface.h"
#include "tools/surfaces/training_set.h"

// Residue classes of the shift surfaces, in DC's list order.
constexpr int kShiftClassCount = 23;
extern const char* const kShiftClasses[kShiftClassCount];
int shiftClassIndex(const std::string& name);  // -1 when not in the list

// Which angles a surface is indexed by: -1 (.prev) phi of the residue and psi
// of the one before; 1 (.next) phi of the one after and psi of the residue;
// 0 the residue's own.
const char* positionSuffix(int position);
bool anglesFor(const TrainingResidue& r, int position, float* phi, float* psi);

struct Observation {
    int fold;
    int cls;  // shift class index
    bool hasAngles;
    float phi, psi;
    float secondary;
};

// The observations of one atom kind at one position. Secondary shifts more
// than six robust standard deviations from the median (misassignments,
// referencing errors) are left out; *excluded counts them.
std::vector<Observation> collectObservations(const std::vector<TrainingResidue>& residues,
                                             const std::vector<int>& foldOf, int atom, int position,
                                             int* excluded);

// Kernel sums by fold and class; the last class is the residue-independent one.
class AtomSurfaces {
  public:
    AtomSurfaces(const Grid& grid, int folds, const std::vector<Observation>& observations);
    const Grid& grid() const { return grid_; }
    // Sums at a cell over every fold but `leftOut` (-1: every fold).
    CellSums sums(int cls, int cell, int leftOut) const;
    // Estimate of a class at a cell, blended toward the shared surface.
    CellEstimate estimate(int cls, int cell, int leftOut, float prior) const;
    CellEstimate sharedEstimate(int cell, int leftOut) const;
    bool hasData(int cls) const { return counts_[cls] > 0; }
    static constexpr int kShared = kShiftClassCount;

  private:
    const KernelSums& at(int fold, int cls) const { return sums_[fold * (kShared + 1) + cls]; }
    Grid grid_;
    int folds_;
    std::vector<KernelSums> sums_;
    std::vector<KernelSums> totals_;
    std::vector<int> counts_;
};

// One cross-validated prediction: observed minus predicted secondary shift,
// and the density the prediction stands on (infinite for a residue without
// the angles, which DC predicts as random coil).
struct Prediction {
    float error;
    float density;
};

std::vector<Prediction> crossPredict(const AtomSurfaces& surfaces,
                                     const std::vector<Observation>& observations, float prior);

struct Evaluation {
    int rows = 0;              // observations
    int predicted = 0;         // of them with a prediction (density at or above the threshold)
    double rms = 0;            // of the surface predictions
    double randomCoilRms = 0;  // of random coil alone, on the same rows
};

Evaluation evaluate(const std::vector<Observation>& observations,
                    const std::vector<Prediction>& predictions, float threshold);
