// Superposition: the RMS after the angle fit against an independent
// closed-form superposition (polar decomposition) on random rigid moves of a
// real backbone, the fixed and bounded modes, the distance-matrix measure,
// and the pairing of structures by residue and atom name.
#include "pdb/superpose.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "dc/dc_test_util.h"
#include "pdb/superpose_pdb.h"
#include "pdb_fixture.h"

namespace {

using Mat = reference::Mat3;

// Least RMS over rotations and translations, independently: the rotation is
// the orthogonal polar factor X of the cross-covariance H, by Newton's
// iteration X <- (X + X^-T) / 2, and the least sum of squares is the sum of
// both centred spreads less twice trace(X^T H).
double closedFormRms(const std::vector<float>& ref, const std::vector<float>& target) {
    int n = static_cast<int>(ref.size() / 3);
    double cr[3] = {}, ct[3] = {}, h[9] = {}, x[9], c[9], sum = 0;
    for (int i = 0; i < 3 * n; i++) cr[i % 3] += ref[i] / n, ct[i % 3] += target[i] / n;
    for (int i = 0; i < 3 * n; i++) {
        sum += std::pow(ref[i] - cr[i % 3], 2) + std::pow(target[i] - ct[i % 3], 2);
        for (int k = 0; k < 3; k++)
            h[3 * (i % 3) + k] += (ref[i] - cr[i % 3]) * (target[i - i % 3 + k] - ct[k]);
    }
    std::copy(h, h + 9, x);
    auto at = [&x](int i, int j) { return x[3 * (i % 3) + j % 3]; };
    for (int it = 0; it < 100; it++) {
        for (int e = 0; e < 9; e++) {  // cofactors: X^-T = C / det X
            int i = e / 3, j = e % 3;
            c[e] = at(i + 1, j + 1) * at(i + 2, j + 2) - at(i + 1, j + 2) * at(i + 2, j + 1);
        }
        double det = x[0] * c[0] + x[1] * c[1] + x[2] * c[2];
        for (int e = 0; e < 9; e++) x[e] = 0.5 * (x[e] + c[e] / det);
    }
    for (int e = 0; e < 9; e++) sum -= 2 * x[e] * h[e];
    return std::sqrt(std::max(sum, 0.0) / n);
}

class Superpose : public testing::Test {
  protected:
    void SetUp() override {
        start_ = bytesInUse();
        pdbNull(&peptide);
        ASSERT_EQ(readPDB(DC_SHARED_DATA "/hafp_a.pdb", &peptide, nullptr), 0);
        for (int i = 0; i < peptide.atomCount; i++) {
            const PDBAtom& a = peptide.atoms[i];
            std::string name = a.atomName;
            if (name == "CA" || name == "N" || name == "C")
                coords.insert(coords.end(), {a.x, a.y, a.z});
        }
        setAlignLimits(0, 0, -1e6f, 1e6f, 0, -1e6f, 1e6f, 0, -180, 180, 0, -180, 180, 0, -180, 180);
    }
    void TearDown() override {
        fitAlignFree();
        pdbFree(&peptide);
        EXPECT_EQ(bytesInUse(), start_);
    }
    // The backbone turned by R = Rz Ry Rx, moved, and given a little noise.
    std::vector<float> moved(double psi, double theta, double phi, double noise) {
        Mat r = reference::rotation(psi, theta, phi);
        std::vector<float> out(coords.size());
        for (size_t i = 0; i < coords.size(); i++) {
            double v = 12.0 * (i % 3 + 1) - 7.0 + noise * (2.0 * std::rand() / RAND_MAX - 1.0);
            for (int k = 0; k < 3; k++) v += r[i % 3][k] * coords[i - i % 3 + k];
            out[i] = static_cast<float>(v);
        }
        return out;
    }
    int pairs() const { return static_cast<int>(coords.size() / 3); }

    PDBData peptide;
    std::vector<float> coords;

  private:
    int64_t start_ = 0;
};

TEST_F(Superpose, AngleFitMatchesTheClosedFormOnRandomMoves) {
    std::srand(7);
    for (int trial = 0; trial < 100; trial++) {
        double a[3];
        for (double& v : a) v = 360.0 * std::rand() / RAND_MAX - 180.0;
        if (trial < 6) a[trial % 3] = trial < 3 ? 179.5 : -179.5;  // near +-180 about each axis
        std::vector<float> target = moved(a[0], a[1], a[2], 0.3);
        ASSERT_EQ(fitAlignCoords(coords.data(), target.data(), pairs(), 0), 0);
        double expected = closedFormRms(coords, target);
        ASSERT_GT(expected, 0.05);
        EXPECT_NEAR(alignResult().aRMS, expected, 1e-3) << trial;
    }
    EXPECT_EQ(alignResult().atomCount, pairs());
}

TEST_F(Superpose, FixedAndBoundedModes) {
    std::vector<float> target = moved(20, -30, 40, 0.0);
    float plain;
    getCoordRMS(coords.data(), target.data(), pairs(), &plain);
    setAlignLimits(1, 5, 0, 9, 5, 0, 9, 5, 0, 9, 5, 0, 9, 5, 0, 9);  // nothing moves
    ASSERT_EQ(fitAlignCoords(coords.data(), target.data(), pairs(), 0), 0);
    EXPECT_FLOAT_EQ(alignResult().aRMS, plain);
    EXPECT_EQ(alignResult().tx, 0.0f);

    // Rotations closed at the true inverse: one evaluation, translation fitted.
    std::vector<float> shifted = moved(0, 0, 0, 0.0);
    setAlignLimits(0, 0, -1e6f, 1e6f, 0, -1e6f, 1e6f, 0, 0, 0, 0, 0, 0, 0, 0, 0);
    ASSERT_EQ(fitAlignCoords(coords.data(), shifted.data(), pairs(), 0), 0);
    EXPECT_LT(alignResult().aRMS, 1e-4);
    EXPECT_NEAR(alignResult().tx, -5.0, 1e-4);
    EXPECT_NEAR(alignResult().tz, -29.0, 1e-4);

    float tx, ty, tz, rms;  // translation only: the shift back
    ASSERT_EQ(fitTranslateCoords(coords.data(), shifted.data(), pairs(), &tx, &ty, &tz, &rms), 0);
    EXPECT_NEAR(tx, -5.0, 1e-4);
    EXPECT_LT(rms, 1e-4);

    // A zero-width translation range pins the translation.
    setAlignLimits(0, 2, 2, 2, 3, 3, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0);
    ASSERT_EQ(fitAlignCoords(coords.data(), shifted.data(), pairs(), 0), 0);
    EXPECT_EQ(alignResult().tx, 2.0f);
    EXPECT_EQ(alignResult().tz, 3.0f);
    getCoordRMS(coords.data(), coords.data(), 0, &plain);
    EXPECT_EQ(plain, 0.0f);
}

TEST_F(Superpose, DistanceMatrixMeasure) {
    std::vector<float> target = moved(50, 60, 70, 0.0);  // rigid: no internal change
    ASSERT_EQ(fitAlignCoords(coords.data(), target.data(), pairs(), 1), 0);
    EXPECT_LT(alignResult().aRMS, 1e-4);
    // Moving one atom by 1 A along a line away from all others changes n - 1
    // distances by ~1; the sum is divided by n^2 / 4.
    std::vector<float> ref = {0, 0, 0, 1, 0, 0, 2, 0, 0}, stretched = {0, 0, 0, 1, 0, 0, 3, 0, 0};
    ASSERT_EQ(fitAlignCoords(ref.data(), stretched.data(), 3, 1), 0);
    EXPECT_NEAR(alignResult().aRMS, std::sqrt(2.0 / 2.25), 1e-6);
    EXPECT_FLOAT_EQ(alignResult().aMax, 1.0f);
    ASSERT_EQ(fitAlignCoords(ref.data(), stretched.data(), 1, 1), 0);
    EXPECT_EQ(alignResult().aRMS, 0.0f);
}

TEST_F(Superpose, StructuresPairByResidueAndAtomName) {
    // The peptide against itself, residues 3..12 on 3..12: RMS 0 over 30 pairs.
    ASSERT_EQ(fitAlignPDB(&peptide, &peptide, 3, 12, 3, "CA N C", 0, 0), 0);
    EXPECT_EQ(alignResult().atomCount, 30);
    EXPECT_LT(alignResult().aRMS, 1e-3);
    // Shifted by one residue the backbones differ; a range beyond the chain pairs nothing.
    ASSERT_EQ(fitAlignPDB(&peptide, &peptide, 3, 12, 4, "CA N C", 0, 0), 0);
    EXPECT_EQ(alignResult().atomCount, 30);
    EXPECT_GT(alignResult().aRMS, 0.1);
    std::string err = stderrOf([&] { fitAlignPDB(&peptide, &peptide, 500, 510, 500, "CA", 0, 2); });
    EXPECT_EQ(err,
              "0 Atoms Selected from Reference.\n0 Atoms Selected from Target.\n"
              "0 Atom Pairs in Current Selection.\n");
    EXPECT_EQ(alignResult().atomCount, 0);
}

}  // namespace
