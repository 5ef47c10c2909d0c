// The coupling plot: observed (x) against back-calculated (y) couplings of a
// DC -outD table, a colour for each coupling type (the pair of atom names,
// N-H, CA-HA, ...), the line y = x, and the table's N, RMS and Q in the title.
#include <cmath>
#include <cstdio>
#include <cstring>
#include <new>

#include "tools/dcplot/memory_guard.h"
#include "tools/dcplot/panel.h"
#include "tools/dcplot/plots.h"
#include "tools/dcplot/svg.h"
#include "tools/dcplot/table_input.h"
#include "util/alloc.h"
#include "util/fixed_text.h"

namespace {

constexpr int kWidth = 800, kHeight = 640;
constexpr int kLegendRows = 24;

struct CouplingPoint {
    float obs, calc;
    int row;   // 1-based table row
    int type;  // index into the type list
    char tip[128];
};

struct CouplingType {
    char name[2 * kNameSize];
    int count;
};

using PointList = TrackedVector<CouplingPoint, "plotPoints">;
using TypeList = TrackedVector<CouplingType, "plotTypes">;

struct CouplingColumns {
    int obs, calc, atomI, atomJ, residI, resNameI;
};

// The columns the plot reads; false after a message when one it needs is
// missing or holds texts.
bool findColumns(const TableRows& t, const char* path, CouplingColumns* c) {
    c->obs = numericColumn(t, "D_OBS", path);
    c->calc = numericColumn(t, "D", path);
    if (c->obs == -2 || c->calc == -2) return false;
    if (c->obs < 0) {
        std::fprintf(stderr, "dcplot Error: %s has no observed couplings (run DC with -verb).\n",
                     path);
        return false;
    }
    if (c->calc < 0) {
        std::fprintf(stderr, "dcplot Error: %s has no D column.\n", path);
        return false;
    }
    c->atomI = getTabVar(t.vars, t.columns, "ATOMNAME_I");
    c->atomJ = getTabVar(t.vars, t.columns, "ATOMNAME_J");
    c->residI = getTabVar(t.vars, t.columns, "RESID_I");
    c->resNameI = getTabVar(t.vars, t.columns, "RESNAME_I");
    return true;
}

void cellOrEmpty(const TableRows& t, int r, int column, char (&name)[kNameSize]) {
    name[0] = '\0';
    if (column >= 0) tabCellName(t.vars, t.row(r), column, name);
}

// "N-H" from the row's atom names; "D" when the table names no atoms.
void typeName(const TableRows& t, int r, const CouplingColumns& c, char* name, int size) {
    char atomI[kNameSize], atomJ[kNameSize];
    cellOrEmpty(t, r, c.atomI, atomI);
    cellOrEmpty(t, r, c.atomJ, atomJ);
    if (!atomI[0] && !atomJ[0]) {
        copyText(name, size, "D");
        return;
    }
    std::snprintf(name, size, "%s-%s", atomI, atomJ);
}

int typeIndex(TypeList* types, const char* name) {
    for (std::size_t i = 0; i < types->size(); i++) {
        if (std::strcmp((*types)[i].name, name) == 0) return static_cast<int>(i);
    }
    CouplingType type{};
    copyName(type.name, name);
    types->push_back(type);
    return static_cast<int>(types->size()) - 1;
}

void collectPoints(const TableRows& t, const CouplingColumns& c, PointList* points,
                   TypeList* types) {
    for (int r = 0; r < t.rows; r++) {
        CouplingPoint p{};
        p.obs = t.row(r)[c.obs];
        p.calc = t.row(r)[c.calc];
        if (!isMeasured(p.obs) || !isMeasured(p.calc)) continue;
        p.row = r + 1;
        char type[2 * kNameSize], resid[kNameSize], resName[kNameSize];
        typeName(t, r, c, type, sizeof type);
        p.type = typeIndex(types, type);
        (*types)[p.type].count++;
        cellOrEmpty(t, r, c.residI, resid);
        cellOrEmpty(t, r, c.resNameI, resName);
        std::snprintf(p.tip, sizeof p.tip, "%s %s %s: observed %.6g, calculated %.6g", resid,
                      resName, type, p.obs, p.calc);
        points->push_back(p);
    }
}

// One range for both axes, so that y = x is the diagonal of the square.
Panel couplingPanel(const PointList& points) {
    double lo = points[0].obs, hi = lo;
    for (const CouplingPoint& p : points) {
        lo = std::fmin(lo, std::fmin(p.obs, p.calc));
        hi = std::fmax(hi, std::fmax(p.obs, p.calc));
    }
    Axis axis = niceAxis(lo, hi);
    return Panel{90.0, 90.0, 480.0, 480.0, axis, axis};
}

void writeTitle(FILE* out, const TableRows& t, const char* inPath, int rows, int shown) {
    char title[512], n[64], rms[64], q[64], stats[256];
    std::snprintf(title, sizeof title, "Observed vs back-calculated couplings: %s",
                  baseName(inPath));
    svgText(out, 20, 32, "title", "start", title);
    headerValue(t, "N", n, sizeof n);
    headerValue(t, "RMS", rms, sizeof rms);
    headerValue(t, "Q_FACTOR", q, sizeof q);
    std::snprintf(stats, sizeof stats, "N = %s, RMS = %s Hz, Q = %s", n[0] ? n : "?",
                  rms[0] ? rms : "?", q[0] ? q : "?");
    svgText(out, 20, 56, "stats", "start", stats);
    if (shown == rows) return;
    char note[128];
    std::snprintf(note, sizeof note, "%d of %d rows shown; the others lack a value", shown, rows);
    svgText(out, 20, 76, "note", "start", note);
}

void writeLegend(FILE* out, const TypeList& types, double x, double y) {
    svgText(out, x, y, "legend", "start", "Coupling type");
    int shown = 0;
    for (const CouplingType& type : types) {
        double rowY = y + 22 + 20 * shown;
        if (shown == kLegendRows) {
            char more[64];
            std::snprintf(more, sizeof more, "... %d more", static_cast<int>(types.size()) - shown);
            svgText(out, x, rowY, "legend", "start", more);
            return;
        }
        svgSwatch(out, x + 6, rowY - 4, plotColour(shown));
        char label[96];
        std::snprintf(label, sizeof label, "%s (%d)", type.name, type.count);
        svgText(out, x + 18, rowY, "legend", "start", label);
        shown++;
    }
}

void writePlot(FILE* out, const TableRows& t, const char* inPath, const PointList& points,
               const TypeList& types) {
    svgBegin(out, kWidth, kHeight, "Observed vs back-calculated couplings");
    writeTitle(out, t, inPath, t.rows, static_cast<int>(points.size()));
    Panel panel = couplingPanel(points);
    beginPanel(out, panel, nullptr, nullptr);
    drawAxes(out, panel, "Observed D (Hz)", "Back-calculated D (Hz)");
    drawIdentity(out, panel);
    for (const CouplingPoint& p : points) {
        const char* type = types[p.type].name;
        drawPoint(out, panel,
                  PointMark{p.obs, p.calc, p.row, 3.5, "point", plotColour(p.type), "data-type",
                            type, p.tip});
    }
    endPanel(out);
    writeLegend(out, types, 600, 110);
    svgEnd(out);
}

int couplingPlot(const char* inPath, const char* outPath) {
    TableRows t;
    if (readPlotTable(inPath, &t)) return 1;
    TableRelease release{&t};
    CouplingColumns columns;
    if (!findColumns(t, inPath, &columns)) return 1;
    PointList points;
    TypeList types;
    collectPoints(t, columns, &points, &types);
    if (points.empty()) {
        std::fprintf(stderr, "dcplot Error: %s has no coupling with both values.\n", inPath);
        return 1;
    }
    FILE* out = svgOpen(outPath);
    if (!out) return 1;
    writePlot(out, t, inPath, points, types);
    return svgClose(out, outPath);
}

}  // namespace

int plotCouplings(const char* inPath, const char* outPath) {
    return runGuarded(couplingPlot, inPath, outPath);
}
