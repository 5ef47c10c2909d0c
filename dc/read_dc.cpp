#include "dc/read_dc.h"

#include <strings.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <initializer_list>

#include "dc/dipolar.h"
#include "pdb/names.h"
#include "util/alloc.h"
#include "util/table.h"
#include "util/table_format.h"
#include "util/table_rows.h"
#include "util/token.h"

namespace {

constexpr float kTableNull = -9999.0f;
constexpr int kFirstResidStart = 1000000;

struct AtomColumns {
    int resid, resname, atomname, chainname, segname;
};

struct ValueColumns {
    int index, abs, d, di, dd, s, w, fc;
};

// The name in a cell (see tabCellName); false for an absent column.
bool cellText(const TabVar* vars, const float* row, int column, char* name) {
    name[0] = '\0';
    if (column < 0) return false;
    char cell[kNameSize];
    tabCellName(vars, row, column, cell);
    std::memcpy(name, cell, kNameSize);
    return true;
}

bool isAtomExpression(const char* name) { return std::strchr(name, '#') || std::strchr(name, '*'); }

void readAtoms(const TableRows& t, int r, const AtomColumns& cols, int* resid, char* resname,
               char* atomname, char* chainname, char* segname) {
    getAtomTabVals(t.vars, t.columns, t.row(r), cols.resid, cols.resname, cols.atomname,
                   cols.chainname, cols.segname, resid, resname, atomname, chainname, segname);
}

void readValues(const TableRows& t, int r, const ValueColumns& c, DCValue* v) {
    v->index = c.index < 0 ? r + 1 : tabFloatToInt(t.row(r)[c.index]);
    v->absFlag = tabFloatToInt(t.cell(r, c.abs, 0.0f));
    v->dObs = t.cell(r, c.d, kNoDColumn);
    v->diTable = t.cell(r, c.di, 0.0f);
    v->ddTable = t.cell(r, c.dd, 1.0f);
    v->s = t.cell(r, c.s, 1.0f);
    v->wTable = t.cell(r, c.w, 1.0f);
    v->fc = t.cell(r, c.fc, 1.0f);
    for (float& result : v->result) result = 0.0f;
}

// The DI a row starts with: the table's own under keep-DI, else a fixed
// bond geometry recognised from the names, else the table's (0 when absent).
void chooseDI(DCValue* v, int keepTableDI) {
    float fixedDI;
    int fixedFlag, bondType;
    findVariableDI(v->residI, v->resNameI, v->atomNameI, v->residJ, v->resNameJ, v->atomNameJ,
                   &fixedDI, &fixedFlag, &bondType, 1, 0.0f);
    v->bondType = bondType;
    if (keepTableDI && v->diTable != 0.0f) {
        v->diFixed = 1;
    } else if (fixedFlag) {
        v->diTable = fixedDI;
        v->diFixed = 1;
    }
    v->di = v->diTable;
    v->w = v->wTable;
    v->dd = v->ddTable;
}

void widenResidRange(DTab* dTab, const DCValue& v) {
    for (int resid : {v.residI, v.residJ}) {
        if (resid < dTab->minResid) dTab->minResid = resid;
        if (resid > dTab->maxResid) dTab->maxResid = resid;
    }
}

void readReferenceTensor(const TabHeader* hdr, DTensor* tensor) {
    tensor->daRef = getTabDataR(hdr, "DA_REF");
    tensor->drRef = getTabDataR(hdr, "DR_REF");
    tensor->rxRef = getTabDataR(hdr, "PSI_REF");
    tensor->ryRef = getTabDataR(hdr, "THETA_REF");
    tensor->rzRef = getTabDataR(hdr, "PHI_REF");
    tensor->obsRms = 0.0f;
}

ValueColumns findValueColumns(const TableRows& t) {
    auto at = [&](const char* name) { return getTabVar(t.vars, t.columns, name); };
    return {at("INDEX"), at("ABS"), at("D"), at("DI"), at("DD"), at("S"), at("W"), at("FC")};
}

AtomColumns findAtomColumns(const TableRows& t, const char* suffix) {
    AtomColumns c;
    getAtomTabLocs(t.vars, t.columns, suffix, &c.resid, &c.resname, &c.atomname, &c.chainname,
                   &c.segname);
    return c;
}

// Vector slots a row takes in the fit workspace: 1, 9 when one of its atom
// names is an expression, 81 when both are.
int vectorCount(const TableRows& t, int r, int atomColumnI, int atomColumnJ) {
    char nameI[kNameSize], nameJ[kNameSize];
    cellText(t.vars, t.row(r), atomColumnI, nameI);
    cellText(t.vars, t.row(r), atomColumnJ, nameJ);
    int expressions = isAtomExpression(nameI) + isAtomExpression(nameJ);
    return expressions == 0 ? 1 : expressions == 1 ? 9 : 81;
}

// Checks what the table asks of the fit before anything is made for it, so
// that a table too large to fit stops before its coupling records take the
// memory: every integer cell, and the size of the fit workspace. NVEC, or -1
// after a message.
int64_t tableVectorCount(const TableRows& t, const DTab* dTab, const char* fileName) {
    AtomColumns colsI = findAtomColumns(t, "_I");
    AtomColumns colsJ = findAtomColumns(t, "_J");
    ValueColumns values = findValueColumns(t);
    int64_t nvec = 45;
    for (int r = 0; r < t.rows; r++) {
        if (!integerCellsFit(t, r, {colsI.resid, colsJ.resid, values.index, values.abs},
                             fileName)) {
            return -1;
        }
        nvec += vectorCount(t, r, colsI.atomname, colsJ.atomname);
    }
    int structures = dTab->pdbCount > 1 ? dTab->pdbCount : 1;
    if (dcRealWorkSize(nvec, structures) > INT_MAX) {
        std::fprintf(stderr, "DC Error Allocating DC Real Workspace.\n");
        return -1;
    }
    return nvec;
}

int fillCouplings(const TableRows& t, DTab* dTab, int keepTableDI) {
    AtomColumns colsI = findAtomColumns(t, "_I");
    AtomColumns colsJ = findAtomColumns(t, "_J");
    ValueColumns values = findValueColumns(t);
    if (values.di < 0) keepTableDI = 0;
    float sum = 0.0f;
    int counted = 0;
    for (int r = 0; r < t.rows; r++) {
        DCValue* v = dTab->couplings + r;
        v->listed = v->mapped = v->use = 1;
        readAtoms(t, r, colsI, &v->residI, v->resNameI, v->atomNameI, v->chainI, v->segI);
        readAtoms(t, r, colsJ, &v->residJ, v->resNameJ, v->atomNameJ, v->chainJ, v->segJ);
        if (v->chainI[0] || v->chainJ[0]) dTab->noChainNames = 0;
        if (v->segI[0] || v->segJ[0]) dTab->noSegNames = 0;
        readValues(t, r, values, v);
        if (isPresent(v->dObs)) {
            float weighted = v->dObs * v->wTable;
            sum += weighted * weighted;
            counted++;
        }
        chooseDI(v, keepTableDI);
        widenResidRange(dTab, *v);
    }
    dTab->tensor.obsRms =
        counted > 0 ? static_cast<float>(std::sqrt(static_cast<double>(sum / counted))) : 0.0f;
    return dcWorkAlloc(dTab, 0);
}

}  // namespace

int getAtomTabLocs(const TabVar* vars, int varCount, const char* suffix, int* residLoc,
                   int* resnameLoc, int* atomnameLoc, int* chainnameLoc, int* segnameLoc) {
    const char* bases[] = {"RESID", "RESNAME", "ATOMNAME", "CHAINNAME", "SEGNAME"};
    int* locs[] = {residLoc, resnameLoc, atomnameLoc, chainnameLoc, segnameLoc};
    for (int i = 0; i < 5; i++) {
        char name[64];
        std::snprintf(name, sizeof name, "%s%s", bases[i], suffix ? suffix : "");
        *locs[i] = getTabVar(vars, varCount, name);
    }
    return 0;
}

int getAtomTabVals(const TabVar* vars, int varCount, const float* row, int residLoc, int resnameLoc,
                   int atomnameLoc, int chainnameLoc, int segnameLoc, int* resid, char* resname,
                   char* atomname, char* chainname, char* segname) {
    int found = 0;
    if (residLoc >= 0 && residLoc < varCount) {
        *resid = tabFloatToInt(row[residLoc]);
        found |= 1;
    }
    if (cellText(vars, row, atomnameLoc, atomname)) {
        fixAtomName(atomname);
        found |= 2;
    }
    if (cellText(vars, row, resnameLoc, resname)) {
        fixResName(resname);
        found |= 4;
    }
    if (cellText(vars, row, chainnameLoc, chainname)) {
        fixChainName(chainname);
        found |= 8;
    }
    if (cellText(vars, row, segnameLoc, segname)) {
        fixSegName(segname);
        found |= 16;
    }
    return found;
}

int readDC(const char* fileName, DTab* dTab, int keepTableDI) {
    if (!dTab) return 1;
    if (!fileName || !fileName[0] || strcasecmp(fileName, "None") == 0) return 0;
    TableRows t;
    t.hdr = hdrInit();
    if (!t.hdr) {
        std::fprintf(stderr, "TESSERA Error allocating DC table header.\n");
        return 1;
    }
    int status =
        rdTable2(fileName, &t.values, &t.columns, &t.rows, &t.vars, t.hdr, kTableNull, 0, 1);
    if (status != 0) {
        t.release();
        return status;
    }
    int64_t nvec = tableVectorCount(t, dTab, fileName);
    if (nvec < 0) {
        t.release();
        return 1;
    }
    readReferenceTensor(t.hdr, &dTab->tensor);
    unAlloc64("dc", dTab->couplings, static_cast<int64_t>(dTab->count) * sizeof(DCValue));
    dTab->count = 0;
    dTab->couplings =
        static_cast<DCValue*>(voidMalloc64("dc", static_cast<int64_t>(t.rows) * sizeof(DCValue)));
    if (!dTab->couplings) {
        std::fprintf(stderr, "DC Error Allocating DC Values.\n");
        t.release();
        return 1;
    }
    dTab->count = t.rows;
    resetDC(dTab->couplings, t.rows);
    dTab->minResid = kFirstResidStart;
    dTab->maxResid = 0;
    dTab->nvec = static_cast<int>(nvec);
    status = fillCouplings(t, dTab, keepTableDI);
    t.release();
    return status;
}
