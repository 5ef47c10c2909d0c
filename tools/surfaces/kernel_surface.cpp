#include "tools/surfaces/kernel_surface.h"

#include <cmath>

namespace {

// Weights beyond this many widths are left out: below 1e-4 of the centre's.
constexpr float kReach = 4.3f;

float cellWidth(const Grid& g) { return 360.0f / static_cast<float>(g.n); }

// Periodic difference in degrees, in [-180, 180).
double wrap(double degrees) {
    double d = std::fmod(degrees + 180.0, 360.0);
    if (d < 0) d += 360.0;
    return d - 180.0;
}

// The cells within reach of an angle along one axis and their weights.
struct AxisWeights {
    std::vector<int> cells;
    std::vector<double> weights;
};

AxisWeights axisWeights(const Grid& g, float angle) {
    AxisWeights a;
    double width = cellWidth(g);
    int reach = static_cast<int>(std::ceil(kReach * g.sigma / width));
    if (2 * reach + 1 > g.n) reach = (g.n - 1) / 2;
    int home = static_cast<int>(std::floor((angle + 180.0) / width));
    for (int k = home - reach; k <= home + reach; k++) {
        int cell = ((k % g.n) + g.n) % g.n;
        double centre = -180.0 + (cell + 0.5) * width;
        double d = wrap(angle - centre);
        a.cells.push_back(cell);
        a.weights.push_back(std::exp(-d * d / (2.0 * g.sigma * g.sigma)));
    }
    return a;
}

}  // namespace

void KernelSums::add(const KernelSums& other) {
    for (std::size_t i = 0; i < w.size(); i++) {
        w[i] += other.w[i];
        ws[i] += other.ws[i];
        wss[i] += other.wss[i];
    }
}

int cellIndex(const Grid& g, float phi, float psi) {
    auto axis = [&](float angle) {
        int i = static_cast<int>(static_cast<float>(g.n) / 360.0f * (angle + 180.0f));
        return i < 0 ? 0 : i >= g.n ? g.n - 1 : i;
    };
    return axis(psi) * g.n + axis(phi);
}

void addObservation(KernelSums* sums, const Grid& g, float phi, float psi, float value) {
    AxisWeights x = axisWeights(g, phi), y = axisWeights(g, psi);
    double v = value;
    for (std::size_t j = 0; j < y.cells.size(); j++) {
        int row = y.cells[j] * g.n;
        for (std::size_t i = 0; i < x.cells.size(); i++) {
            double w = x.weights[i] * y.weights[j];
            int cell = row + x.cells[i];
            sums->w[cell] += w;
            sums->ws[cell] += w * v;
            sums->wss[cell] += w * v * v;
        }
    }
}

CellEstimate plainEstimate(const CellSums& sums) {
    if (sums.w < 1e-12) return {0.0f, 0.0f, 0.0f};
    double mean = sums.ws / sums.w;
    double variance = std::fmax(0.0, sums.wss / sums.w - mean * mean);
    return {static_cast<float>(mean), static_cast<float>(sums.w),
            static_cast<float>(std::sqrt(variance))};
}

CellEstimate blendedEstimate(const CellSums& own, const CellSums& shared, float prior) {
    CellEstimate s = plainEstimate(shared);
    double w = std::fmax(0.0, own.w), total = w + prior;
    if (total < 1e-12) return s;
    double mean = (own.ws + prior * s.value) / total;
    // Spread of the type's own values about the blended mean, and of the
    // prior's: its own spread and its distance from the mean.
    double ownSquares = own.wss - 2.0 * mean * own.ws + mean * mean * w;
    double priorSquares = prior * (s.dev * s.dev + (s.value - mean) * (s.value - mean));
    double variance = std::fmax(0.0, (ownSquares + priorSquares) / total);
    double density = w + std::fmin(static_cast<double>(prior), static_cast<double>(s.density));
    return {static_cast<float>(mean), static_cast<float>(density),
            static_cast<float>(std::sqrt(variance))};
}
