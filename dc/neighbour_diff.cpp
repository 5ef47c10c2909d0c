#include "dc/neighbour_diff.h"

#include <cmath>

void findDDC(DCValue* couplings, int count) {
    DCValue* runFirst = nullptr;
    DCValue* previous = nullptr;
    for (int i = 0; couplings && i < count; i++) {
        DCValue& v = couplings[i];
        v.dObsDiff = v.dCalcDiff = kMissingValue;
        if (!v.use || !isPresent(v.dObs) || !isPresent(v.dCalc)) continue;
        bool newRun = !previous || previous->bondType != v.bondType;
        if (newRun && runFirst) {
            // A run closed by a change of bond type: its first row becomes
            // the circular difference first minus last.
            runFirst->dObsDiff = runFirst->dObs - previous->dObs;
            runFirst->dCalcDiff = runFirst->dCalc - previous->dCalc;
            if (runFirst->absFlag) {
                runFirst->dObsDiff = std::fabs(runFirst->dObs) - std::fabs(previous->dObs);
                runFirst->dCalcDiff = std::fabs(runFirst->dCalc) - std::fabs(previous->dCalc);
            }
        }
        float prevObs = newRun ? 0.0f : previous->dObs;
        float prevCalc = newRun ? 0.0f : previous->dCalc;
        if (v.absFlag) {
            v.dObsDiff = std::fabs(v.dObs) - std::fabs(prevObs);
            v.dCalcDiff = std::fabs(v.dCalc) - std::fabs(prevCalc);
        } else {
            v.dObsDiff = v.dObs - prevObs;
            v.dCalcDiff = v.dCalc - prevCalc;
        }
        if (newRun) runFirst = &v;
        previous = &v;
    }
}
