#include "dc/fixed_dc.h"

#include "dc/euler.h"
#include "dc/order_matrix.h"

int findFixedDC(DTab* dTab, float c[5], int mode) {
    if (dcWorkAlloc(dTab, dTab->pdbCount) != 0) return 0;
    const DTensor& t = dTab->tensor;
    float cErr[5] = {1.0f, 1.0f, 1.0f, 1.0f, 1.0f};
    int used = 0, vectors = 0;
    initDCSaupe(dTab, &used, &vectors);
    if (mode == kMethodSaupe) {
        for (int i = 0; i < 5; i++) c[i] = t.saupeGiven[i];
    } else if (mode == kMethodFixed) {
        float dr = t.rhMode ? t.rh * t.da : t.dr;
        euler2saupe2(c, t.rx, t.ry, t.rz, 0.0f, 0.0f, 0.0f, t.da, dr);
    } else if (findS(dTab, c, cErr, used) != 0) {
        return 0;
    }
    findD(dTab, c, cErr, used);
    getSaupeD(dTab);
    return used;
}
