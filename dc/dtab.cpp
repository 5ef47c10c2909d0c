#include "dc/dtab.h"

void dTabNull(DTab* dTab) {
    if (!dTab) return;
    *dTab = DTab{};
    dTensorNull(&dTab->tensor, 1);
    dTab->minResid = 1000000;
    dTab->maxResid = 0;
    dTab->noChainNames = 1;
    dTab->noSegNames = 1;
}

void dTabFree(DTab* dTab) { dTabNull(dTab); }
