// Kernel-smoothed surfaces over the periodic phi/psi plane. A grid has n
// cells per axis over [-180, 180); an observation at (phi, psi) adds to each
// cell centre c a weight w = exp(-d^2 / 2 sigma^2), d the periodic distance,
// so that w is 1 at the observation itself and the summed weight of a cell
// counts observations. Cells are looked up as DC looks them up: the cell
// holding the angles, without interpolation.
#pragma once

#include <vector>

struct Grid {
    int n;        // cells per axis
    float sigma;  // kernel width, degrees
};

// The sums at one cell: weight, weighted value, weighted square.
struct CellSums {
    double w = 0, ws = 0, wss = 0;
    CellSums operator-(const CellSums& other) const {
        return {w - other.w, ws - other.ws, wss - other.wss};
    }
};

// The sums of one set of observations over a grid.
struct KernelSums {
    std::vector<double> w, ws, wss;
    explicit KernelSums(int cells = 0) : w(cells), ws(cells), wss(cells) {}
    CellSums at(int cell) const { return {w[cell], ws[cell], wss[cell]}; }
    void add(const KernelSums& other);
};

// The cell of (phi, psi), by DC's lookup rule on a grid from -180 to 180.
int cellIndex(const Grid& g, float phi, float psi);

// Adds one observation to the sums.
void addObservation(KernelSums* sums, const Grid& g, float phi, float psi, float value);

// What a surface holds at one cell: the value, the density (summed kernel
// weight) and the deviation (weighted standard deviation).
struct CellEstimate {
    float value, density, dev;
};

// The residue-independent estimate of the sums alone; 0 where there is no weight.
CellEstimate plainEstimate(const CellSums& sums);

// A residue type's estimate drawn toward the residue-independent one as if
// that were `prior` further observations, so that a type with little data
// near a cell takes the shared shape. The density counts the type's own
// weight and the prior, the prior for at most as much as the shared surface
// has there, so that a region no residue visits stays empty.
CellEstimate blendedEstimate(const CellSums& own, const CellSums& shared, float prior);
