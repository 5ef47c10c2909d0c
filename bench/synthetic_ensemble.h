// The synthetic coupling data of the fit benchmarks: residues with N-H and
// CA-HA bonds pointing in random directions, models that turn each bond a
// little, the coupling table for them, and couplings made from a known
// tensor with a little noise.
#pragma once

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "dc/dtab.h"
#include "fit/fit_driver.h"

namespace bench {

inline double uniform(double low, double high) {
    return low + (high - low) * (static_cast<double>(random()) / RAND_MAX);
}

struct Direction {
    double x, y, z;
};

inline Direction randomDirection() {
    double z = uniform(-1, 1), a = uniform(0, 2 * M_PI), s = std::sqrt(1 - z * z);
    return {s * std::cos(a), s * std::sin(a), z};
}

// Residue r: N and CA on a grid, H and HA along the given bond directions.
struct Residue {
    double n[3], ca[3];
    Direction nh, caha;
};

inline std::vector<Residue> makeResidues(int count) {
    std::vector<Residue> residues(count);
    for (int r = 0; r < count; r++) {
        Residue& res = residues[r];
        double x = (r % 40) * 3.8, y = (r / 40 % 40) * 3.8, z = (r / 1600) * 3.8;
        res.n[0] = x, res.n[1] = y, res.n[2] = z;
        res.ca[0] = x + 1.2, res.ca[1] = y + 0.7, res.ca[2] = z + 0.3;
        res.nh = randomDirection();
        res.caha = randomDirection();
    }
    return residues;
}

inline void atomLine(FILE* f, int serial, const char* name, int resid, const double* base,
              const Direction* bond, double length) {
    double x = base[0], y = base[1], z = base[2];
    if (bond) x += length * bond->x, y += length * bond->y, z += length * bond->z;
    std::fprintf(f, "ATOM  %5d  %-3s LEU A%4d    %8.3f%8.3f%8.3f  1.00  0.00\n", serial, name,
                 resid, x, y, z);
}

// One model; each H and HA direction turned a little (spread) from the base.
inline void writeStructure(const std::string& path, const std::vector<Residue>& residues, double spread) {
    FILE* f = std::fopen(path.c_str(), "w");
    int serial = 1;
    for (size_t r = 0; r < residues.size(); r++) {
        const Residue& res = residues[r];
        Direction nh = {res.nh.x + uniform(-spread, spread), res.nh.y + uniform(-spread, spread),
                        res.nh.z + uniform(-spread, spread)};
        Direction caha = {res.caha.x + uniform(-spread, spread),
                          res.caha.y + uniform(-spread, spread),
                          res.caha.z + uniform(-spread, spread)};
        int id = static_cast<int>(r) + 1;
        atomLine(f, serial++, "N", id, res.n, nullptr, 0);
        atomLine(f, serial++, "H", id, res.n, &nh, 1.02);
        atomLine(f, serial++, "CA", id, res.ca, nullptr, 0);
        atomLine(f, serial++, "HA", id, res.ca, &caha, 1.09);
    }
    std::fclose(f);
}

// N-H rows with DD nhDD, CA-HA rows with DD 1; W 1 everywhere.
inline void writeTable(const std::string& path, int residues, double nhDD) {
    FILE* f = std::fopen(path.c_str(), "w");
    std::fprintf(f, "VARS RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J D DD W\n");
    std::fprintf(f, "FORMAT %%5d %%4s %%4s %%5d %%4s %%4s %%8.3f %%6.2f %%4.1f\n\n");
    for (int r = 1; r <= residues; r++) {
        std::fprintf(f, "%5d LEU N %5d LEU H 0.0 %.1f 1.0\n", r, r, nhDD);
        std::fprintf(f, "%5d LEU CA %5d LEU HA 0.0 1.0 1.0\n", r, r);
    }
    std::fclose(f);
}

// Couplings back-calculated from the tensor c over every model (the given
// Saupe values route), with noise of 0.05 Hz.
inline void makeCouplings(PDBData** pdbs, int count, DTab* tab, const float c[5]) {
    DTensor start = tab->tensor;
    tab->tensor.method = kMethodSaupe;
    for (int k = 0; k < 5; k++) tab->tensor.saupeGiven[k] = c[k];
    fitDN(pdbs, count, tab, 0, 0);
    for (int i = 0; i < tab->count; i++) {
        DCValue& v = tab->couplings[i];
        v.dObs = v.dCalc + static_cast<float>(uniform(-0.05, 0.05));
    }
    tab->tensor = start;
}

}  // namespace bench
