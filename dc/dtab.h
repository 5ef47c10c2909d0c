// The coupling table: its alignment tensor and the table-wide bookkeeping.
// The coupling rows and their mapping onto structures live beside the tensor.
#pragma once

#include "dc/tensor.h"

struct DTab {
    DTensor tensor;
    int minResid;  // smallest RESID_I/RESID_J of the table
    int maxResid;  // largest RESID_I/RESID_J of the table
    int noChainNames;
    int noSegNames;
};

// A fresh, empty table with the default tensor.
void dTabNull(DTab* dTab);
// Frees what the table owns and returns it to the null state.
void dTabFree(DTab* dTab);
