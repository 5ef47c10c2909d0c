#include "cs/read_cs.h"

#include <strings.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <initializer_list>

#include "cs/cs_sequence.h"
#include "cs/random_coil.h"
#include "cs/row_surface.h"
#include "dc/read_dc.h"
#include "pdb/residue_types.h"
#include "util/alloc.h"
#include "util/table.h"
#include "util/table_format.h"
#include "util/table_rows.h"
#include "util/token.h"

namespace {

constexpr float kTableNull = -9999.0f;
constexpr int kResMinStart = 1000000;
// Floats of the workspace per row; the pseudo-contact terms (25m^2 + 14m +
// 5nm for m tensors) vanish, as this program has no pseudo-contact tensors.
constexpr int64_t kWorkPerRow = 7;

struct Columns {
    int resid, resname, atomname, chainname, segname;
    int shift, obs, pred, index, sigma, rc, fc, w, gamma;
};

Columns findColumns(const TableRows& t) {
    Columns c;
    getAtomTabLocs(t.vars, t.columns, "", &c.resid, &c.resname, &c.atomname, &c.chainname,
                   &c.segname);
    auto at = [&](const char* name) { return getTabVar(t.vars, t.columns, name); };
    c.shift = at("SHIFT");
    c.obs = at("CS_OBS");
    c.pred = at("CS_PRED");
    c.index = at("INDEX");
    c.sigma = at("SIGMA");
    c.rc = at("RC_SHIFT");
    c.fc = at("FC");
    c.w = at("W");
    c.gamma = at("GAMMA");
    return c;
}

// A residue number or index that a real column holds beyond what an integer
// column may hold stops the read, as it would in an integer column. False
// after the message.
bool integerCellsFit(const TableRows& t, const Columns& c, const char* path) {
    for (int r = 0; r < t.rows; r++) {
        if (!integerCellsFit(t, r, {c.resid, c.index}, path)) return false;
    }
    return true;
}

bool isGlycine(const char* resName) {
    return strcasecmp(resName, "G") == 0 || strcasecmp(resName, "GLY") == 0;
}

// Orders rows by residue (number, chain, segment), then by table order.
bool residueBefore(const CSValue* rows, int a, int b) {
    if (rows[a].resID != rows[b].resID) return rows[a].resID < rows[b].resID;
    int byChain = std::strcmp(rows[a].chain, rows[b].chain);
    if (byChain != 0) return byChain < 0;
    int bySeg = std::strcmp(rows[a].seg, rows[b].seg);
    return bySeg != 0 ? bySeg < 0 : a < b;
}

bool sameResidue(const CSValue& a, const CSValue& b) {
    return a.resID == b.resID && std::strcmp(a.chain, b.chain) == 0 &&
           std::strcmp(a.seg, b.seg) == 0;
}

// 2 for an HA2 row, 3 for an HA3 row, else 0.
int alphaProton(const CSValue& v) {
    if (strcasecmp(v.atomName, "HA2") == 0) return 2;
    if (strcasecmp(v.atomName, "HA3") == 0) return 3;
    return 0;
}

void readRow(const TableRows& t, int r, const Columns& c, CSTab* table) {
    CSValue* v = table->rows + r;
    v->use = v->mapped = v->listed = 1;
    getAtomTabVals(t.vars, t.columns, t.row(r), c.resid, c.resname, c.atomname, c.chainname,
                   c.segname, &v->resID, v->resName, v->atomName, v->chain, v->seg);
    if (v->chain[0]) table->ignoreChain = 0;
    if (v->seg[0]) table->ignoreSeg = 0;
    v->index = c.index < 0 ? r + 1 : static_cast<int>(std::lround(t.row(r)[c.index]));
    v->obs = t.cell(r, c.obs, t.cell(r, c.shift, kCSMissing));
    v->pred = t.cell(r, c.pred, kCSMissing);
    v->rc = t.cell(r, c.rc, kCSMissing);
    v->sigma = t.cell(r, c.sigma, kCSMissing);
    v->W = t.cell(r, c.w, 1.0f);
    v->FC = t.cell(r, c.fc, 1.0f);
    v->gamma = t.cell(r, c.gamma, 1.0f);
    copyName(v->name3, getResName3(v->resName));
    char name3[kNameSize];
    copyName(name3, v->name3);  // the two name lookups share one static text
    copyName(v->name1, getResName1(name3));
    v->isPred = isPredCS(v->resName, v->atomName);
    if (v->resID < table->resMin) table->resMin = v->resID;
    if (v->resID > table->resMax) table->resMax = v->resID;
}

// Links the partners within one residue's alpha-proton rows (in table
// order): each glycine HA2 (HA3) row to the first HA3 (HA2) row.
void pairResidue(CSValue* rows, const int* order, int count) {
    CSValue* first[4] = {nullptr, nullptr, nullptr, nullptr};
    for (int k = count - 1; k >= 0; k--) first[alphaProton(rows[order[k]])] = rows + order[k];
    for (int k = 0; k < count; k++) {
        CSValue* v = rows + order[k];
        if (isGlycine(v->resName)) v->partner = first[alphaProton(*v) == 2 ? 3 : 2];
    }
}

// The alpha-proton rows sorted by residue, so that each residue's are found
// together however large the table. False after the message.
bool pairGlycines(CSTab* table) {
    int count = 0;
    for (int i = 0; i < table->count; i++) count += alphaProton(table->rows[i]) != 0;
    if (count == 0) return true;
    int* order = intMalloc64("cs", count);
    if (!order) {
        std::fprintf(stderr, "DC Error Allocating CS Workspaces.\n");
        return false;
    }
    for (int i = 0, k = 0; i < table->count; i++) {
        if (alphaProton(table->rows[i])) order[k++] = i;
    }
    const CSValue* rows = table->rows;
    std::sort(order, order + count, [rows](int a, int b) { return residueBefore(rows, a, b); });
    for (int start = 0, end; start < count; start = end) {
        for (end = start + 1; end < count; end++) {
            if (!sameResidue(rows[order[start]], rows[order[end]])) break;
        }
        pairResidue(table->rows, order + start, end - start);
    }
    unAlloc64("cs", order, static_cast<int64_t>(count) * static_cast<int64_t>(sizeof(int)));
    return true;
}

const char* nameOrNull(const char* name) { return std::strcmp(name, "None") == 0 ? nullptr : name; }

// Neighbour names, the random-coil shift when the table gives none, and the
// shift surface.
void completeRow(CSValue* v, const CSSeqInfo* seq, const CSResIndex& index) {
    char names[5][kNameSize];
    for (int k = 0; k < 5; k++)
        csResName(seq, &index, static_cast<int64_t>(v->resID) + k - 2, names[k]);
    if (std::strcmp(names[2], "None") == 0) copyName(names[2], v->name1);
    if (v->rc > 900.0f) {
        v->rc = kCSMissing;
        if (rcLoaded()) {
            getRandCoilShift(nameOrNull(names[0]), nameOrNull(names[1]), nameOrNull(names[2]),
                             nameOrNull(names[3]), nameOrNull(names[4]), v->atomName, &v->rc, 1);
        }
    }
    getCSSurface(v, names[3]);
}

int allocRows(CSTab* table, int count) {
    table->rows = static_cast<CSValue*>(
        voidMalloc64("cs", static_cast<int64_t>(count) * static_cast<int64_t>(sizeof(CSValue))));
    if (!table->rows) {
        std::fprintf(stderr, "TESSERA Error Allocating CS-Observed Values.\n");
        return 1;
    }
    table->count = count;
    resetCS(table->rows, count);
    table->seq = static_cast<CSSeqInfo*>(voidMallocNull64("cs", sizeof(CSSeqInfo)));
    if (!table->seq) {
        std::fprintf(stderr, "TESSERA Error Allocating CS SeqInfo Structure.\n");
        return 1;
    }
    return 0;
}

int allocWork(CSTab* table) {
    int64_t size = kWorkPerRow * table->count;
    table->work =
        static_cast<float*>(voidMallocNull64("cs", size * static_cast<int64_t>(sizeof(float))));
    if (!table->work) {
        std::fprintf(stderr, "DC Error Allocating CS Workspaces.\n");
        return 1;
    }
    table->workSize = size;
    return 0;
}

int fillTable(const TableRows& t, CSTab* table) {
    Columns columns = findColumns(t);
    if (allocRows(table, t.rows) != 0) return 1;
    for (int r = 0; r < t.rows; r++) readRow(t, r, columns, table);
    if (!pairGlycines(table)) return 1;
    CSResIndex index;
    if (makeCSResIndex(table->rows, table->count, &index) != 0) return 1;
    int status = readCSSeqInfo(t.hdr, table->seq);
    for (int r = 0; status == 0 && r < table->count; r++) {
        completeRow(table->rows + r, table->seq, index);
    }
    freeCSResIndex(&index);
    if (status != 0) return status;
    return allocWork(table);
}

}  // namespace

void csTabNull(CSTab* table) {
    if (!table) return;
    std::memset(table, 0, sizeof *table);
    table->resMin = kResMinStart;
    table->resMax = 0;
    table->ignoreChain = 1;
    table->ignoreSeg = 1;
}

void csTabFree(CSTab* table) {
    if (!table) return;
    unAlloc64("cs", table->rows,
              static_cast<int64_t>(table->count) * static_cast<int64_t>(sizeof(CSValue)));
    if (table->seq) {
        freeCSSeqInfo(table->seq);
        unAlloc64("cs", table->seq, sizeof(CSSeqInfo));
    }
    unAlloc64("cs", table->work, table->workSize * static_cast<int64_t>(sizeof(float)));
    csTabNull(table);
}

void resetCS(CSValue* rows, int count) {
    for (int i = 0; rows && i < count; i++) {
        CSValue* v = rows + i;
        std::memset(v, 0, sizeof *v);
        v->resID = kResidUnset;
        v->obs = v->pred = v->rc = v->hm = v->sigma = kCSMissing;
        v->spare[0] = v->spare[1] = kCSMissing;
        v->secondary = v->surfaceValue = v->spareValue = kCSMissing;
        v->W = v->FC = v->gamma = 1.0f;
    }
}

int isPredCS(const char* resName, const char* atomName) {
    if (!atomName) return 0;
    char atom[kNameSize];
    copyName(atom, atomName);
    raiseStr(atom);
    for (const char* kind : {"HN", "HA", "CA", "CB", "C", "N"}) {
        if (std::strcmp(atom, kind) == 0) return 1;
    }
    bool glycine = resName && (std::strcmp(resName, "GLY") == 0 || std::strcmp(resName, "G") == 0);
    return glycine && std::strncmp(atom, "HA", 2) == 0 ? 1 : 0;
}

int readCS(const char* path, CSTab* table) {
    if (!table) return 1;
    csTabFree(table);
    if (!path || !path[0] || strcasecmp(path, "None") == 0) return 0;
    TableRows t;
    t.hdr = hdrInit();
    if (!t.hdr) {
        std::fprintf(stderr, "TESSERA Error allocating CS table header.\n");
        return 1;
    }
    int status = rdTable2(path, &t.values, &t.columns, &t.rows, &t.vars, t.hdr, kTableNull, 0, 1);
    if (status == 0 && !integerCellsFit(t, findColumns(t), path)) status = 1;
    if (status == 0) status = fillTable(t, table);
    t.release();
    if (status != 0) csTabFree(table);
    return status;
}
