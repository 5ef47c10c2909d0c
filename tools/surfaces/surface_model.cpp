#include "tools/surfaces/surface_model.h"

#include <algorithm>
#include <cmath>
#include <limits>

const char* const kShiftClasses[kShiftClassCount] = {
    "ALA", "ARG", "ASN", "ASP", "CYS", "cys", "GLN", "GLU", "GLY", "HIS", "his", "ILE",
    "LEU", "LYS", "MET", "PHE", "PRO", "SER", "THR", "TRP", "TYR", "VAL", "xPRO"};

int shiftClassIndex(const std::string& name) {
    for (int i = 0; i < kShiftClassCount; i++) {
        if (name == kShiftClasses[i]) return i;
    }
    return -1;
}

const char* positionSuffix(int position) {
    return position < 0 ? ".prev" : position > 0 ? ".next" : "";
}

bool anglesFor(const TrainingResidue& r, int position, float* phi, float* psi) {
    *phi = position > 0 ? r.nextPhi : r.phi;
    *psi = position < 0 ? r.prevPsi : r.psi;
    return !std::isnan(*phi) && !std::isnan(*psi);
}

namespace {

double median(std::vector<double> values) {
    if (values.empty()) return 0.0;
    std::size_t mid = values.size() / 2;
    std::nth_element(values.begin(), values.begin() + mid, values.end());
    return values[mid];
}

}  // namespace

std::vector<Observation> collectObservations(const std::vector<TrainingResidue>& residues,
                                             const std::vector<int>& foldOf, int atom, int position,
                                             int* excluded) {
    std::vector<double> all;
    for (const TrainingResidue& r : residues) {
        if (!std::isnan(r.secondary[atom])) all.push_back(r.secondary[atom]);
    }
    double centre = median(all);
    std::vector<double> deviations;
    for (double s : all) deviations.push_back(std::fabs(s - centre));
    double limit = 6.0 * 1.4826 * median(deviations);
    std::vector<Observation> observations;
    *excluded = 0;
    for (std::size_t i = 0; i < residues.size(); i++) {
        const TrainingResidue& r = residues[i];
        float s = r.secondary[atom];
        int cls = shiftClassIndex(shiftClass(r));
        if (std::isnan(s) || cls < 0) continue;
        if (std::fabs(s - centre) > limit) {
            (*excluded)++;
            continue;
        }
        Observation o{foldOf[i], cls, false, 0, 0, s};
        o.hasAngles = anglesFor(r, position, &o.phi, &o.psi);
        observations.push_back(o);
    }
    return observations;
}

AtomSurfaces::AtomSurfaces(const Grid& grid, int folds,
                           const std::vector<Observation>& observations)
    : grid_(grid),
      folds_(folds),
      sums_(folds * (kShared + 1), KernelSums(grid.n * grid.n)),
      totals_(kShared + 1, KernelSums(grid.n * grid.n)),
      counts_(kShared + 1, 0) {
    for (const Observation& o : observations) {
        if (!o.hasAngles) continue;
        KernelSums& own = sums_[o.fold * (kShared + 1) + o.cls];
        KernelSums& shared = sums_[o.fold * (kShared + 1) + kShared];
        addObservation(&own, grid_, o.phi, o.psi, o.secondary);
        addObservation(&shared, grid_, o.phi, o.psi, o.secondary);
        counts_[o.cls]++;
        counts_[kShared]++;
    }
    for (int f = 0; f < folds_; f++) {
        for (int c = 0; c <= kShared; c++) totals_[c].add(at(f, c));
    }
}

CellSums AtomSurfaces::sums(int cls, int cell, int leftOut) const {
    CellSums total = totals_[cls].at(cell);
    return leftOut < 0 ? total : total - at(leftOut, cls).at(cell);
}

CellEstimate AtomSurfaces::estimate(int cls, int cell, int leftOut, float prior) const {
    return blendedEstimate(sums(cls, cell, leftOut), sums(kShared, cell, leftOut), prior);
}

CellEstimate AtomSurfaces::sharedEstimate(int cell, int leftOut) const {
    return plainEstimate(sums(kShared, cell, leftOut));
}

std::vector<Prediction> crossPredict(const AtomSurfaces& surfaces,
                                     const std::vector<Observation>& observations, float prior) {
    std::vector<Prediction> predictions;
    predictions.reserve(observations.size());
    for (const Observation& o : observations) {
        if (!o.hasAngles) {
            predictions.push_back({o.secondary, std::numeric_limits<float>::infinity()});
            continue;
        }
        int cell = cellIndex(surfaces.grid(), o.phi, o.psi);
        CellEstimate e = surfaces.estimate(o.cls, cell, o.fold, prior);
        predictions.push_back({o.secondary - e.value, e.density});
    }
    return predictions;
}

Evaluation evaluate(const std::vector<Observation>& observations,
                    const std::vector<Prediction>& predictions, float threshold) {
    Evaluation e;
    double surface = 0, randomCoil = 0;
    for (std::size_t i = 0; i < observations.size(); i++) {
        e.rows++;
        if (predictions[i].density < threshold) continue;
        e.predicted++;
        surface += static_cast<double>(predictions[i].error) * predictions[i].error;
        randomCoil += static_cast<double>(observations[i].secondary) * observations[i].secondary;
    }
    if (e.predicted > 0) {
        e.rms = std::sqrt(surface / e.predicted);
        e.randomCoilRms = std::sqrt(randomCoil / e.predicted);
    }
    return e;
}
