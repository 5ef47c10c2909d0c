#include "cs/select_cs.h"

#include <strings.h>

#include "util/keyword.h"

int selectCS(CSValue* rows, int count, int first, int last) {
    int selected = 0;
    for (int i = 0; rows && i < count; i++) {
        rows[i].use = first <= rows[i].resID && rows[i].resID <= last;
        selected += rows[i].use;
    }
    return selected;
}

int skipCS(CSValue* rows, int count, const int* residues, int residueCount, int otherwise) {
    if (!residues || residueCount < 1) return otherwise;
    int kept = 0;
    for (int i = 0; rows && i < count; i++) {
        CSValue& row = rows[i];
        if (!row.use) continue;
        for (int k = 0; k < residueCount && row.use; k++) {
            if (row.resID == residues[k]) row.use = 0;
        }
        kept += row.use;
    }
    return kept;
}

void setCSTabW(CSTab* table, const KeyValue* weights, int weightCount) {
    if (!table || !weights) return;
    for (int k = 0; k < weightCount; k++) {
        const char* name = weights[k].name;
        if (!name || strcasecmp(name, "None") == 0) return;
        for (int i = 0; i < table->count; i++) {
            if (strcasecmp(table->rows[i].atomName, name) == 0) table->rows[i].W = weights[k].value;
        }
    }
}
