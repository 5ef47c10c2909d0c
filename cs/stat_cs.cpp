#include "cs/stat_cs.h"

#include <cmath>

#include "cs/surface.h"

namespace {

bool isPresent(float value) { return value <= 900.0f; }

// d held within -limit .. limit (limit taken as a size).
float clipped(float d, float limit) {
    limit = std::fabs(limit);
    if (d > limit) return limit;
    if (d < -limit) return -limit;
    return d;
}

}  // namespace

int getStatCS(const CSValue* rows, int n, float* rms, float* chi2, float* wchi2, int* count,
              float clip) {
    float sumSq = 0.0f, chi = 0.0f, weightedChi = 0.0f;
    int observed = 0, summed = 0;
    for (int i = 0; rows && i < n; i++) {
        const CSValue& row = rows[i];
        if (!row.use || !isPresent(row.obs)) continue;
        observed++;
        if (!isPresent(row.pred)) continue;
        float s = row.sigma > 900.0f || row.sigma == 0.0f ? 1.0f : row.sigma;
        float d = row.obs - row.pred;
        if (clip != 0.0f) {
            float bound = row.surface ? row.surface->bound : s;
            d = clipped(d, clip * bound);
        }
        float ratio = d / s;
        float weighted = ratio * row.W;
        sumSq += d * d;
        chi += ratio * ratio;
        weightedChi += weighted * weighted;
        summed++;
    }
    *rms = summed > 0 ? static_cast<float>(std::sqrt(static_cast<double>(sumSq / summed))) : 0.0f;
    *chi2 = chi;
    *wchi2 = weightedChi;
    *count = summed;
    return observed;
}
