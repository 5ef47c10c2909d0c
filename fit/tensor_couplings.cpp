#include "fit/tensor_couplings.h"

#include <cmath>
#include <cstdio>

#include "dc/dtab.h"
#include "dc/order_matrix.h"
#include "fit/fit_state.h"
#include "pdb/pdb_types.h"

namespace {

constexpr float kShortDistance = 0.01f;

// The atom of structure m standing at the same index as atom in the first.
const PDBAtom* atomIn(int m, const PDBAtom* atom) {
    const FitState& s = fitState();
    if (m == 0) return atom;
    return s.pdbList[m]->atoms + (atom - s.pdbList[0]->atoms);
}

// The two geometric terms of one coupling summed over its atom pairs and
// structures, each pair weighted by f: a = sum (3z^2 - 1), r = sum 1.5 (x^2 - y^2).
struct CouplingTerms {
    float a = 0.0f, r = 0.0f;
    bool present = false;
};

CouplingTerms sumTerms(const DCValue& v, float f) {
    const FitState& s = fitState();
    CouplingTerms terms;
    for (int m = 0; m < s.pdbCount; m++) {
        for (int i = 0; i < v.countI; i++) {
            for (int j = 0; j < v.countJ; j++) {
                if (!v.atomsI[i] || !v.atomsJ[j]) continue;
                const float* pi = static_cast<const float*>(atomIn(m, v.atomsI[i])->aux);
                const float* pj = static_cast<const float*>(atomIn(m, v.atomsJ[j])->aux);
                if (!pi || !pj) continue;
                float x = pi[0] - pj[0], y = pi[1] - pj[1], z = pi[2] - pj[2];
                float d = static_cast<float>(std::sqrt(static_cast<double>(x * x + y * y + z * z)));
                if (d < kShortDistance) d = kShortDistance;
                x /= d;
                y /= d;
                z /= d;
                terms.a += f * (3.0f * z * z - 1.0f);
                terms.r += 1.5f * f * (x * x - y * y);
                terms.present = true;
            }
        }
    }
    return terms;
}

}  // namespace

int tensor2DC(int k, float* residuals, float scale) {
    FitState& s = fitState();
    DTab* dTab = s.dTab;
    const float da = dTab->tensor.da, dr = dTab->tensor.dr;
    const int structures = dTab->pdbCount > 1 ? dTab->pdbCount : 1;
    for (int i = 0; i < dTab->count; i++) {
        DCValue& v = dTab->couplings[i];
        v.dCalc = kMissingValue;
        if (!isUsedDC(v)) continue;
        float f =
            (v.countI * v.countJ == 3 ? kMethylFactor : 1.0f) / static_cast<float>(structures);
        CouplingTerms t = sumTerms(v, std::fabs(v.di) * f);
        if (!t.present) continue;
        v.dCalc = da * t.a + dr * t.r;
        float w = v.w * scale;
        float diff = v.dObs - v.dCalc;
        s.dRMS += (diff * w) * (diff * w);
        if (s.verbose > 2)
            std::fprintf(stderr, " DC %3d % 8.3f % 8.3f % 8.3f % 7.4f\n", k, v.dObs, v.dCalc, diff,
                         w);
        s.dTerm[k] = v.dObs * w;
        s.daTerm[k] = w * t.a;
        s.drTerm[k] = w * t.r;
        residuals[k] = diff * w;
        k++;
    }
    return k;
}
