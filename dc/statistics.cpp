#include "dc/statistics.h"

#include <cmath>

#include "dc/neighbour_diff.h"

namespace {

constexpr float kSqrt2 = 1.4142136f;

float root(float value) { return static_cast<float>(std::sqrt(static_cast<double>(value))); }

float observedRms(const DTab* dTab) { return dTab->tensor.obsRms; }

float referenceLevel(DTab* const* list) {
    float reference = observedRms(list[0]);
    return reference != 0.0f ? reference : 1.0f;
}

float tableScale(float reference, const DTab* dTab) {
    float level = observedRms(dTab);
    return level != 0.0f ? reference / level : 1.0f;
}

using StatFunction = int (*)(const DCValue*, int, float*, float*, float*, int*, float);

int statOverList(DTab* const* list, StatFunction stat, float* rms, float* rmsScaled, float* chiSq,
                 int* nObs) {
    float sumSq = 0.0f, sumSqScaled = 0.0f, chi = 0.0f;
    int n = 0, observed = 0;
    if (list && list[0]) {
        float reference = referenceLevel(list);
        for (int t = 0; t < kDTabListSize; t++) {
            const DTab* dTab = list[t];
            if (!dTab) continue;
            observed += stat(dTab->couplings, dTab->count, &sumSq, &sumSqScaled, &chi, &n,
                             tableScale(reference, dTab));
        }
    }
    *rms = observed > 0 ? root(sumSq / observed) : 0.0f;
    *rmsScaled = observed > 0 ? root(sumSqScaled / observed) : 0.0f;
    *chiSq = chi;
    *nObs = observed;
    return observed;
}

void accumulate(float d, const DCValue& v, float scale, float* sumSq, float* sumSqScaled) {
    float dw2 = d * d * v.w * v.w;
    *sumSq += dw2;
    *sumSqScaled += dw2 * scale * scale;
}

}  // namespace

int getStatDC2(const DCValue* couplings, int count, float* sumSq, float* sumSqScaled, float* chiSq,
               int* n, float scale) {
    int observed = 0;
    for (int i = 0; couplings && i < count; i++) {
        const DCValue& v = couplings[i];
        if (!v.use || !isPresent(v.dObs)) continue;
        observed++;
        if (!isPresent(v.dCalc)) continue;
        float o = v.absFlag ? std::fabs(v.dObs) : v.dObs;
        float c = v.absFlag ? std::fabs(v.dCalc) : v.dCalc;
        float d = o - c;
        accumulate(d, v, scale, sumSq, sumSqScaled);
        *chiSq += v.dd != 0.0f ? (d / v.dd) * (d / v.dd) : d * d;
        ++*n;
    }
    return observed;
}

int getStatDC(const DCValue* couplings, int count, float* rms, float* chiSq, int* n) {
    float sumSq = 0.0f, sumSqScaled = 0.0f;
    *chiSq = 0.0f;
    *n = 0;
    int observed = getStatDC2(couplings, count, &sumSq, &sumSqScaled, chiSq, n, 1.0f);
    *rms = *n > 0 ? root(sumSq / *n) : 0.0f;
    return observed;
}

int getStatDCN(DTab* const* list, float* rms, float* rmsScaled, float* chiSq, int* nObs) {
    return statOverList(list, getStatDC2, rms, rmsScaled, chiSq, nObs);
}

int getStatDDC2(const DCValue* couplings, int count, float* sumSq, float* sumSqScaled, float* chiSq,
                int* n, float scale) {
    int observed = 0;
    for (int i = 0; couplings && i < count; i++) {
        const DCValue& v = couplings[i];
        if (!v.use || !isPresent(v.dObs) || !isPresent(v.dObsDiff)) continue;
        observed++;
        if (!isPresent(v.dCalc) || !isPresent(v.dCalcDiff)) continue;
        float d = (v.dObsDiff - v.dCalcDiff) / kSqrt2;
        accumulate(d, v, scale, sumSq, sumSqScaled);
        if (v.dd != 0.0f) {
            // The raw difference over 2 DD, as d / (DD sqrt 2).
            float ratio = d / (v.dd * kSqrt2);
            *chiSq += ratio * ratio;
        } else {
            *chiSq += d * d;
        }
        ++*n;
    }
    return observed;
}

int getStatDDCN(DTab* const* list, float* rms, float* rmsScaled, float* chiSq, int* nObs) {
    return statOverList(list, getStatDDC2, rms, rmsScaled, chiSq, nObs);
}

int getStatDCQR(const DTensor* tensor, const DCValue* couplings, int count, float* q, float* qDa,
                float* r, int* n) {
    *q = *qDa = *r = 0.0f;
    *n = 0;
    int result = 0, rows = 0;
    float sumCW = 0.0f, sumDW2 = 0.0f, sumOW = 0.0f, sumOW2 = 0.0f;
    auto usable = [&](const DCValue& v) { return v.use && isPresent(v.dObs); };
    for (int i = 0; i < count; i++) {
        const DCValue& v = couplings[i];
        if (!usable(v)) continue;
        result++;
        if (!isPresent(v.dCalc)) continue;
        float o = v.absFlag ? std::fabs(v.dObs) : v.dObs;
        float c = v.absFlag ? std::fabs(v.dCalc) : v.dCalc;
        float dw = (o - c) * v.w;
        rows++;
        sumCW += v.dCalc * v.w;
        sumDW2 += dw * dw;
        sumOW += v.dObs * v.w;
        sumOW2 += (v.dObs * v.w) * (v.dObs * v.w);
    }
    *n = rows;
    if (rows == 0) return 0;
    float meanO = sumOW / rows, meanC = sumCW / rows;
    if (sumOW2 != 0.0f) *q = root(sumDW2 / sumOW2);
    float daHN = tensor->da * kDaHN;
    float f = 4.0f;
    if (tensor->da != 0.0f) {
        float rh = std::fabs(tensor->dr / tensor->da);
        f = 4.0f + 3.0f * rh * rh;
    }
    float denominator = daHN * daHN * f;
    if (denominator != 0.0f) *qDa = root(5.0f * sumDW2 / (denominator * rows));
    float saa = 0.0f, sbb = 0.0f, sab = 0.0f;
    for (int i = 0; i < count; i++) {
        const DCValue& v = couplings[i];
        if (!usable(v)) continue;
        result++;
        if (!isPresent(v.dCalc)) continue;
        ++*n;
        float a = v.dObs * v.w - meanO, b = v.dCalc * v.w - meanC;
        saa += a * a;
        sbb += b * b;
        sab += a * b;
    }
    if (saa != 0.0f && sbb != 0.0f) *r = sab / (root(saa) * root(sbb));
    return result;
}

int getStatDCScore(DTab* const* list, float* rms, float* rmsDiff, int* nObs) {
    float total = 0.0f, totalDiff = 0.0f;
    int observed = 0;
    if (list && list[0]) {
        float reference = referenceLevel(list);
        for (int t = 0; t < kDTabListSize && list[t]; t++) {
            DTab* dTab = list[t];
            float scale = tableScale(reference, dTab);
            findDDC(dTab->couplings, dTab->count);
            float sumSq = 0.0f, sumSqScaled = 0.0f, chi = 0.0f;
            int n = 0;
            observed +=
                getStatDC2(dTab->couplings, dTab->count, &sumSq, &sumSqScaled, &chi, &n, scale);
            total += sumSq;
            float diffSq = 0.0f, diffScaled = 0.0f;
            getStatDDC2(dTab->couplings, dTab->count, &diffSq, &diffScaled, &chi, &n, scale);
            totalDiff += diffSq;
        }
    }
    *rms = observed > 0 ? root(total / observed) : 0.0f;
    *rmsDiff = observed > 0 ? root(totalDiff / observed) : 0.0f;
    *nObs = observed;
    return observed;
}
