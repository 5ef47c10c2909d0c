#include "tools/surfaces/tuning.h"

#include <map>

namespace {

const int kPositions[] = {-1, 0, 1};
const Grid kGrids[] = {{36, 10.0f}, {36, 15.0f}, {72, 6.0f}, {72, 8.0f}, {72, 12.0f}};
const float kPriors[] = {0.3f, 1.0f, 3.0f, 10.0f, 30.0f};
const float kThresholds[] = {0.0f, 0.01f, 0.03f, 0.1f, 0.3f, 1.0f};
constexpr double kLeastCoverage = 0.99;

}  // namespace

std::vector<int> foldsByProtein(const std::vector<TrainingResidue>& residues, int folds) {
    std::map<int, int> foldOfEntry;
    for (const TrainingResidue& r : residues) foldOfEntry[r.bmrb] = 0;
    int next = 0;
    for (auto& entry : foldOfEntry) entry.second = next++ % folds;
    std::vector<int> foldOf;
    for (const TrainingResidue& r : residues) foldOf.push_back(foldOfEntry[r.bmrb]);
    return foldOf;
}

SurfaceChoice chooseSurfaces(const std::vector<TrainingResidue>& residues,
                             const std::vector<int>& foldOf, int atom) {
    SurfaceChoice best{atom, 0, kGrids[0], kPriors[0], 0.0f, {}, 0};
    best.cv.rms = -1;
    std::vector<Prediction> bestPredictions;
    std::vector<Observation> bestObservations;
    for (int position : kPositions) {
        int excluded = 0;
        std::vector<Observation> observations =
            collectObservations(residues, foldOf, atom, position, &excluded);
        if (observations.empty()) continue;
        for (const Grid& grid : kGrids) {
            AtomSurfaces surfaces(grid, kFolds, observations);
            for (float prior : kPriors) {
                std::vector<Prediction> predictions = crossPredict(surfaces, observations, prior);
                Evaluation e = evaluate(observations, predictions, 0.0f);
                if (best.cv.rms >= 0 && e.rms >= best.cv.rms) continue;
                best = {atom, position, grid, prior, 0.0f, e, excluded};
                bestPredictions = predictions;
                bestObservations = observations;
            }
        }
    }
    for (float threshold : kThresholds) {
        Evaluation e = evaluate(bestObservations, bestPredictions, threshold);
        if (e.predicted < kLeastCoverage * e.rows || e.rms >= best.cv.rms) continue;
        best.threshold = threshold;
        best.cv = e;
    }
    return best;
}
