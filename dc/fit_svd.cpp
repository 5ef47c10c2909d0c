#include "dc/fit_svd.h"

#include "dc/euler.h"
#include "dc/order_matrix.h"

int fitDSVD(PDBData** pdbs, int count, DTab* dTab, int unused) {
    if (dcWorkAlloc(dTab, count) != 0) return 0;
    DTensor* t = &dTab->tensor;
    for (int i = 0; i < 5; i++) {
        t->saupe[i] = t->method == kMethodSVD ? 0.0f : t->saupeGiven[i];
        t->saupeErr[i] = 1.0f;
    }
    int used = 0, vectors = 0;
    initDCSaupe(dTab, &used, &vectors);
    dTab->svdCount = used;
    if (t->method == kMethodSVD) findS(dTab, t->saupe, t->saupeErr, used);
    findD(dTab, t->saupe, t->saupeErr, used);
    getSaupeD(dTab);
    if (t->euler) {
        t->solutionCount =
            saupe2euler(t->saupe, t->rxSolutions, t->rySolutions, t->rzSolutions, t->principal,
                        t->sortedPrincipal, t->rotation, &t->da, &t->dr);
    }
    return used;
}
