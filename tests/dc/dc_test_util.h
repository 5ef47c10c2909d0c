// Shared pieces of the coupling tests: the dipolar formula and the order
// matrix of a known tensor worked out independently in double precision,
// tables and structures read from scratch files, and the allocation balance.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <string>

#include "dc/dipolar.h"
#include "dc/dtab.h"
#include "dc/read_dc.h"
#include "pdb/modes.h"
#include "pdb/pdb_types.h"
#include "pdb/reader.h"
#include "pdb/structure.h"
#include "support/run_dc.h"
#include "util/alloc.h"

namespace dctest {

constexpr float kK = 3.356809e-12f;
constexpr float kGammaH = 2.6752e8f;
constexpr float kGammaC = 6.7283e7f;
constexpr float kGammaN = -2.7116e7f;

// K gI gJ / r^3 in single precision, the reciprocal of r^3 taken in double.
inline float formulaDI(float gammaI, float gammaJ, float r) {
    float cube = r * r * r;
    return ((gammaI * kK) * gammaJ) * static_cast<float>(1.0 / static_cast<double>(cube));
}

inline int64_t inUse() {
    int64_t bytes;
    getMemUsed(&bytes, nullptr);
    return bytes;
}

inline const std::string kRealTable = DC_SHARED_DATA "/hafp_nh_caha.tab";
inline const std::string kModelA = DC_SHARED_DATA "/hafp_a.pdb";

// Resets the structure library's switches and remembers the balance; the
// test fails when it does not return to it.
class CouplingTest : public testing::Test {
  protected:
    void SetUp() override {
        resetPDBModes();
        setPDBWarn(1);
        start_ = inUse();
        dTabNull(&table);
        for (PDBData& p : pdbs) pdbNull(&p);
    }
    void TearDown() override {
        dTabFree(&table);
        for (PDBData& p : pdbs) pdbFree(&p);
        dipolarFree();
        EXPECT_EQ(inUse(), start_);
    }

    // Writes text as a table file in a scratch folder and reads it.
    int readText(const std::string& text, int keepDI = 0) {
        std::string path = scratchDir("coupling") + "/in.tab";
        writeFile(path, text);
        return readDC(path.c_str(), &table, keepDI);
    }
    // Reads structure slot k from a file, or from PDB text written to a file.
    PDBData* load(int k, const std::string& pathOrText, bool isText = false) {
        std::string path = pathOrText;
        if (isText) {
            path = scratchDir("structure") + "/in.pdb";
            writeFile(path, pathOrText);
        }
        EXPECT_EQ(readPDB(path.c_str(), &pdbs[k], nullptr), 0) << path;
        return &pdbs[k];
    }

    DTab table;
    PDBData pdbs[3];

  private:
    int64_t start_ = 0;
};

}  // namespace dctest

namespace reference {

using Mat3 = std::array<std::array<double, 3>, 3>;
using Coefficients = std::array<float, 5>;

inline Mat3 multiply(const Mat3& a, const Mat3& b) {
    Mat3 p{};
    for (int i = 0; i < 3; i++)
        for (int j = 0; j < 3; j++)
            for (int k = 0; k < 3; k++) p[i][j] += a[i][k] * b[k][j];
    return p;
}

// Rz(phi) Ry(theta) Rx(psi), in degrees: structure coordinates onto the
// tensor frame.
inline Mat3 rotation(double psi, double theta, double phi) {
    auto axis = [](int n, double degrees) {
        double a = degrees * M_PI / 180.0, c = std::cos(a), s = std::sin(a);
        int i = (n + 1) % 3, j = (n + 2) % 3;
        Mat3 r{};
        r[n][n] = 1.0;
        r[i][i] = r[j][j] = c;
        r[i][j] = -s;
        r[j][i] = s;
        return r;
    };
    return multiply(axis(2, phi), multiply(axis(1, theta), axis(0, psi)));
}

// c1..c5 of S = R^T diag(-Da + 1.5 Dr, -Da - 1.5 Dr, 2 Da) R.
inline Coefficients coefficients(double da, double dr, const Mat3& r) {
    const double d[3] = {-da + 1.5 * dr, -da - 1.5 * dr, 2.0 * da};
    Mat3 s{};
    for (int i = 0; i < 3; i++)
        for (int j = 0; j < 3; j++)
            for (int k = 0; k < 3; k++) s[i][j] += r[k][i] * d[k] * r[k][j];
    return {static_cast<float>(s[2][2]), static_cast<float>(s[0][0] - s[1][1]),
            static_cast<float>(s[0][1]), static_cast<float>(s[0][2]), static_cast<float>(s[1][2])};
}

// The five basis terms of a (unit) vector.
inline std::array<double, 5> basis(double x, double y, double z) {
    return {0.5 * (3 * z * z - 1), 0.5 * (x * x - y * y), 2 * x * y, 2 * x * z, 2 * y * z};
}

// Sum over the row's atom pairs of the basis terms, from the coordinates in
// double precision (a pair closer than 0.01 A is scaled by 100).
inline std::array<double, 5> basisSum(const DCValue& v) {
    std::array<double, 5> sum{};
    for (int a = 0; a < v.countI; a++) {
        for (int b = 0; b < v.countJ; b++) {
            const PDBAtom &i = *v.atomsI[a], &j = *v.atomsJ[b];
            double x = i.x - j.x, y = i.y - j.y, z = i.z - j.z;
            double r = std::sqrt(x * x + y * y + z * z), scale = r < 0.01 ? 100.0 : 1.0 / r;
            std::array<double, 5> t = basis(x * scale, y * scale, z * scale);
            for (int k = 0; k < 5; k++) sum[k] += t[k];
        }
    }
    return sum;
}

inline double methylFactor(const DCValue& v) { return v.countI * v.countJ == 3 ? 0.927321 : 1.0; }

// The coupling the coefficients c give the mapped row.
inline double coupling(const DCValue& v, const float c[5]) {
    std::array<double, 5> b = basisSum(v);
    double d = 0;
    for (int k = 0; k < 5; k++) d += c[k] * b[k];
    return d * std::fabs(v.di) * methylFactor(v);
}

}  // namespace reference
