#include "dc/order_matrix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "dc/dipolar.h"
#include "dc/map_dc.h"
#include "dc/read_dc.h"
#include "fit/fit_driver.h"
#include "pdb/pdb_types.h"
#include "pdb/reader.h"
#include "pdb/structure.h"
#include "support/run_dc.h"
#include "tensor_reference.h"
#include "util/alloc.h"

namespace {

using reference::Coefficients;

const char kStructure[] = DC_SHARED_DATA "/hafp_a.pdb";
const char kTable[] = DC_SHARED_DATA "/hafp_nh_caha.tab";
// A methyl group against its carbon: three vectors.
const char kMethylRow[] = "    5    ALA     CB     5    ALA    HB#     0.000     1.600 1.00\n";
constexpr double kMethyl = 0.927321;

// Sum over the row's atom pairs of the basis terms, from the coordinates in
// double precision (a pair closer than 0.01 A is scaled by 100).
std::array<double, 5> basisSum(const DCValue& v) {
    std::array<double, 5> sum{};
    for (int a = 0; a < v.countI; a++) {
        for (int b = 0; b < v.countJ; b++) {
            const PDBAtom &i = *v.atomsI[a], &j = *v.atomsJ[b];
            double x = i.x - j.x, y = i.y - j.y, z = i.z - j.z;
            double r = std::sqrt(x * x + y * y + z * z), scale = r < 0.01 ? 100.0 : 1.0 / r;
            std::array<double, 5> t = reference::basis(x * scale, y * scale, z * scale);
            for (int k = 0; k < 5; k++) sum[k] += t[k];
        }
    }
    return sum;
}

double methylFactor(const DCValue& v) {
    return v.countI * v.countJ == 3 ? kMethyl : 1.0;
}

// The coupling the coefficients c give the mapped row.
double coupling(const DCValue& v, const float c[5]) {
    std::array<double, 5> b = basisSum(v);
    double d = 0;
    for (int k = 0; k < 5; k++) d += c[k] * b[k];
    return d * std::fabs(v.di) * methylFactor(v);
}

class OrderMatrix : public testing::Test {
  protected:
    static constexpr float kDa = 5e-4f, kDr = 2e-4f;
    const Coefficients truth = reference::coefficients(kDa, kDr, reference::rotation(10, 20, 30));
    PDBData pdb, copy;
    DTab tab;
    int64_t startBytes = 0;

    void SetUp() override {
        getMemUsed(&startBytes, nullptr);
        pdbNull(&pdb);
        pdbNull(&copy);
        dTabNull(&tab);
        ASSERT_EQ(readPDB(kStructure, &pdb, nullptr), 0);
        ASSERT_EQ(readPDB(kStructure, &copy, nullptr), 0);
        std::string path = scratchDir("order_matrix") + "/couplings.tab";
        writeFile(path, readFile(kTable) + kMethylRow);
        ASSERT_EQ(readDC(path.c_str(), &tab, 0), 0);
        ASSERT_EQ(tab.count, 43);
        ASSERT_EQ(buildDC(&pdb, &tab, 0, 0, nullptr, 0, 1), tab.count);
        for (int i = 0; i < tab.count; i++) {
            ASSERT_NE(tab.couplings[i].di, 0.0f);
            tab.couplings[i].dObs = static_cast<float>(coupling(tab.couplings[i], truth.data()));
        }
    }
    void TearDown() override {
        dTabFree(&tab);
        pdbFree(&pdb);
        pdbFree(&copy);
        dipolarFree();
        int64_t inUse = 0;
        getMemUsed(&inUse, nullptr);
        EXPECT_EQ(inUse, startBytes);
    }
    DCValue& row(int resid, const char* atomJ) {
        for (int i = 0; i < tab.count; i++) {
            DCValue& v = tab.couplings[i];
            if (v.residI == resid && std::strcmp(v.atomNameJ, atomJ) == 0) return v;
        }
        ADD_FAILURE() << "no row " << resid << " " << atomJ;
        return tab.couplings[0];
    }
    int fit() { return fitD(&pdb, &tab, 0, 0); }
    std::vector<float> calculated() const {
        std::vector<float> d;
        for (int i = 0; i < tab.count; i++) d.push_back(tab.couplings[i].dCalc);
        return d;
    }
};

TEST_F(OrderMatrix, RecoversAKnownTensorOnARealStructure) {
    ASSERT_EQ(fit(), tab.count);
    EXPECT_EQ(tab.svdCount, tab.count);
    const DTensor& t = tab.tensor;
    for (int k = 0; k < 5; k++) EXPECT_NEAR(t.saupe[k], truth[k], 1e-4 * kDa) << k;
    EXPECT_NEAR(t.da, kDa, 1e-4 * kDa);
    EXPECT_NEAR(t.dr, kDr, 1e-4 * kDa);
    ASSERT_GE(t.solutionCount, 1);
    EXPECT_NEAR(t.rxSolutions[0], 10, 0.05);
    EXPECT_NEAR(t.rySolutions[0], 20, 0.05);
    EXPECT_NEAR(t.rzSolutions[0], 30, 0.05);
    // Every row, glycine HA# pairs and the methyl group included, comes back.
    for (int i = 0; i < tab.count; i++) {
        const DCValue& v = tab.couplings[i];
        EXPECT_NEAR(v.dCalc, v.dObs, 2e-3 + 1e-4 * std::fabs(v.dObs)) << v.residI << v.atomNameJ;
    }
}

TEST_F(OrderMatrix, TwoIdenticalStructuresGiveTheSameFit) {
    ASSERT_EQ(fit(), tab.count);
    Coefficients single;
    std::memcpy(single.data(), tab.tensor.saupe, sizeof single);
    std::vector<float> singleD = calculated();

    PDBData* list[2] = {&pdb, &copy};
    ASSERT_EQ(buildDCN(list, 2, &tab, 0, 0, nullptr, 0, 1), tab.count);
    ASSERT_EQ(fitDN(list, 2, &tab, 0, 0), tab.count);
    EXPECT_EQ(tab.pdbCount, 2);
    for (int k = 0; k < 5; k++) EXPECT_NEAR(tab.tensor.saupe[k], single[k], 1e-6 * kDa);
    std::vector<float> pairD = calculated();
    for (int i = 0; i < tab.count; i++) EXPECT_NEAR(pairD[i], singleD[i], 1e-4) << i;
}

// Each design row is |DI|/DD times the basis sum (methyl groups also times
// 0.927321) against D/DD; DD = 0 or DI = 0 leave the row unscaled.
TEST_F(OrderMatrix, DesignRowsScalingAndExcludedRows) {
    row(6, "H").dd = 0;
    row(7, "H").di = 0;
    DCValue& unused = row(9, "H");
    unused.wTable = 0;
    unused.dObs = 500;
    DCValue& shortRow = row(10, "H");  // H moved 0.005 A from its N
    shortRow.atomsJ[0]->x = shortRow.atomsI[0]->x + 0.003f;
    shortRow.atomsJ[0]->y = shortRow.atomsI[0]->y + 0.004f;
    shortRow.atomsJ[0]->z = shortRow.atomsI[0]->z;

    ASSERT_EQ(fit(), tab.count - 1);
    ASSERT_EQ(getSaupeS(&tab), tab.count - 1);
    const float* rhs = dipolarValues();
    int k = 0;
    for (int i = 0; i < tab.count; i++) {
        const DCValue& v = tab.couplings[i];
        SCOPED_TRACE(testing::Message() << v.residI << " " << v.atomNameJ);
        if (&v == &unused) {
            EXPECT_EQ(v.dCalc, 9999.0f);
            EXPECT_EQ(v.result[5], 0.0f);
            continue;
        }
        bool scaled = v.dd != 0 && v.di != 0;
        double f = (scaled ? std::fabs(v.di) / v.dd : 1.0) * methylFactor(v);
        std::array<double, 5> b = basisSum(v);
        for (int n = 0; n < 5; n++) EXPECT_NEAR(v.result[n], f * b[n], 1e-5 * f);
        EXPECT_EQ(v.result[5], v.countI * v.countJ);
        double expectedRhs = v.di == 0 ? 0 : scaled ? v.dObs / v.dd : v.dObs / std::fabs(v.di);
        EXPECT_NEAR(rhs[k], expectedRhs, 1e-5 * std::fabs(expectedRhs) + 1e-9);
        EXPECT_NEAR(v.dCalc, coupling(v, tab.tensor.saupe), 1e-4 + 1e-5 * std::fabs(v.dCalc));
        k++;
    }
    EXPECT_EQ(row(5, "HB#").result[5], 3);
    EXPECT_EQ(row(4, "HA#").result[5], 2);

    // The direct back-calculation gives the same couplings.
    std::vector<float> before = calculated();
    updateD(&tab, tab.tensor.saupe);
    for (int i = 0; i < tab.count; i++) {
        const DCValue& v = tab.couplings[i];
        EXPECT_NEAR(v.dCalc, before[i], 1e-4 + 1e-5 * std::fabs(before[i])) << i;
        if (&v != &unused) {
            EXPECT_EQ(v.result[5], v.countI * v.countJ + 1);
        }
    }
}

TEST_F(OrderMatrix, GivenSaupeValuesAreBackCalculatedWithoutAFit) {
    for (int method : {2, 6, 7}) {
        tab.tensor.method = method;
        for (int k = 0; k < 5; k++) tab.tensor.saupeGiven[k] = 2 * truth[k];
        ASSERT_EQ(fit(), tab.count);
        for (int k = 0; k < 5; k++) EXPECT_EQ(tab.tensor.saupe[k], 2 * truth[k]);
        EXPECT_NEAR(tab.tensor.da, 2 * kDa, 1e-6 * kDa);
        for (int i = 0; i < tab.count; i++) {
            const DCValue& v = tab.couplings[i];
            EXPECT_NEAR(v.dCalc, 2 * v.dObs, 1e-3 + 1e-5 * std::fabs(v.dObs));
        }
    }
    tab.tensor.method = 8;  // no such method: nothing fitted
    tab.svdCount = 5;
    EXPECT_EQ(fit(), 0);
    EXPECT_EQ(tab.svdCount, 0);
    EXPECT_EQ(fitD(nullptr, &tab, 0, 0), 0);
    EXPECT_EQ(fitDN(nullptr, 1, &tab, 0, 0), 0);
}

// Solves the 3 x 3 system m y = r by Cramer's rule.
std::array<double, 3> solve3(const double m[3][3], const double r[3]) {
    std::array<double, 3> y{};
    for (int c = 0; c < 3; c++) {
        double t[3][3];
        for (int i = 0; i < 3; i++)
            for (int j = 0; j < 3; j++) t[i][j] = j == c ? r[i] : m[i][j];
        y[c] = reference::determinant(t) / reference::determinant(m);
    }
    return y;
}

TEST_F(OrderMatrix, FewerThanFiveCouplingsGiveTheMinimumNormSolution) {
    std::vector<DCValue*> kept = {&row(5, "H"), &row(6, "H"), &row(9, "H")};
    for (int i = 0; i < tab.count; i++) tab.couplings[i].use = 0;
    for (DCValue* v : kept) v->use = 1;
    ASSERT_EQ(fit(), 3);

    // Minimum norm: c = A^T (A A^T)^-1 b over the three scaled rows.
    double a[3][5], b[3], aat[3][3];
    for (int r = 0; r < 3; r++) {
        std::array<double, 5> basis = basisSum(*kept[r]);
        for (int k = 0; k < 5; k++) a[r][k] = basis[k] * std::fabs(kept[r]->di) / kept[r]->dd;
        b[r] = kept[r]->dObs / kept[r]->dd;
    }
    for (int r = 0; r < 3; r++)
        for (int s = 0; s < 3; s++) {
            aat[r][s] = 0;
            for (int k = 0; k < 5; k++) aat[r][s] += a[r][k] * a[s][k];
        }
    std::array<double, 3> y = solve3(aat, b);
    for (int k = 0; k < 5; k++) {
        double expected = a[0][k] * y[0] + a[1][k] * y[1] + a[2][k] * y[2];
        EXPECT_NEAR(tab.tensor.saupe[k], expected, 1e-3 * kDa) << k;
    }
    for (DCValue* v : kept) EXPECT_NEAR(v->dCalc, v->dObs, 1e-3);

    // Nothing left to fit: the coefficients stay 0 and nothing is calculated.
    for (int i = 0; i < tab.count; i++) tab.couplings[i].use = 1;
    ASSERT_EQ(buildDC(&pdb, &tab, 0, 0, nullptr, 0, 1), tab.count);
    for (int i = 0; i < tab.count; i++) tab.couplings[i].use = 0;
    EXPECT_EQ(fit(), 0);
    for (int k = 0; k < 5; k++) EXPECT_EQ(tab.tensor.saupe[k], 0.0f);
    for (int i = 0; i < tab.count; i++) EXPECT_EQ(tab.couplings[i].dCalc, 9999.0f);
}

}  // namespace
