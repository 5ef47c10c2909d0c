// The shift plot: for every atom kind of a DC -outCS table, a panel of
// observed (x) against predicted (y) shifts with the line y = x. Amide
// protons named H or HN share a panel, and so do glycine's HA2 and HA3 with
// the other alpha protons. Panels come in the order HN, N, CA, HA, CB, C,
// then any other kind in the order the table first names it.
#include <algorithm>
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

constexpr int kColumnsOfPanels = 3;
constexpr double kCellWidth = 330.0, kCellHeight = 340.0, kPanelSize = 230.0;
constexpr double kPanelsTop = 80.0;

const char* const kKindOrder[] = {"HN", "N", "CA", "HA", "CB", "C"};

struct ShiftPoint {
    float obs, pred;
    int row;   // 1-based table row
    int kind;  // index into the kind list
    char atom[kNameSize];
    char tip[128];
};

struct ShiftKind {
    char name[kNameSize];
    int count;
    int rank;  // place among the panels
    double sumSquares;
};

using PointList = TrackedVector<ShiftPoint, "plotPoints">;
using KindList = TrackedVector<ShiftKind, "plotKinds">;

struct ShiftColumns {
    int obs, pred, atom, resid, resName;
};

bool findColumns(const TableRows& t, const char* path, ShiftColumns* c) {
    c->obs = numericColumn(t, "CS_OBS", path);
    c->pred = numericColumn(t, "SHIFT", path);
    if (c->obs == -2 || c->pred == -2) return false;
    if (c->obs < 0) {
        std::fprintf(stderr, "dcplot Error: %s has no observed shifts (run DC with -verb).\n",
                     path);
        return false;
    }
    c->atom = getTabVar(t.vars, t.columns, "ATOMNAME");
    if (c->pred < 0 || c->atom < 0) {
        std::fprintf(stderr, "dcplot Error: %s has no %s column.\n", path,
                     c->pred < 0 ? "SHIFT" : "ATOMNAME");
        return false;
    }
    c->resid = getTabVar(t.vars, t.columns, "RESID");
    c->resName = getTabVar(t.vars, t.columns, "RESNAME");
    return true;
}

// The panel an atom name belongs to.
void kindOf(const char* atom, char (&kind)[kNameSize]) {
    bool alphaPair = std::strcmp(atom, "HA2") == 0 || std::strcmp(atom, "HA3") == 0;
    copyName(kind, std::strcmp(atom, "H") == 0 ? "HN" : alphaPair ? "HA" : atom);
}

int kindRank(const char* kind, int appearance) {
    int known = sizeof kKindOrder / sizeof kKindOrder[0];
    for (int i = 0; i < known; i++) {
        if (std::strcmp(kind, kKindOrder[i]) == 0) return i;
    }
    return known + appearance;
}

int kindIndex(KindList* kinds, const char* name) {
    for (std::size_t i = 0; i < kinds->size(); i++) {
        if (std::strcmp((*kinds)[i].name, name) == 0) return static_cast<int>(i);
    }
    ShiftKind kind{};
    copyName(kind.name, name);
    kind.rank = kindRank(name, static_cast<int>(kinds->size()));
    kinds->push_back(kind);
    return static_cast<int>(kinds->size()) - 1;
}

void cellOrEmpty(const TableRows& t, int r, int column, char (&name)[kNameSize]) {
    name[0] = '\0';
    if (column >= 0) tabCellName(t.vars, t.row(r), column, name);
}

void collectPoints(const TableRows& t, const ShiftColumns& c, PointList* points, KindList* kinds) {
    for (int r = 0; r < t.rows; r++) {
        ShiftPoint p{};
        p.obs = t.row(r)[c.obs];
        p.pred = t.row(r)[c.pred];
        if (!isMeasured(p.obs) || !isMeasured(p.pred)) continue;
        p.row = r + 1;
        char kind[kNameSize], resid[kNameSize], resName[kNameSize];
        cellOrEmpty(t, r, c.atom, p.atom);
        kindOf(p.atom, kind);
        p.kind = kindIndex(kinds, kind);
        ShiftKind& k = (*kinds)[p.kind];
        k.count++;
        double diff = static_cast<double>(p.obs) - p.pred;
        k.sumSquares += diff * diff;
        cellOrEmpty(t, r, c.resid, resid);
        cellOrEmpty(t, r, c.resName, resName);
        std::snprintf(p.tip, sizeof p.tip, "%s %s %s: observed %.6g, predicted %.6g", resid,
                      resName, p.atom, p.obs, p.pred);
        points->push_back(p);
    }
}

// Points grouped by panel, in panel order, each group in table order.
void sortByPanel(PointList* points, const KindList& kinds) {
    std::stable_sort(points->begin(), points->end(), [&](const ShiftPoint& a, const ShiftPoint& b) {
        return kinds[a.kind].rank < kinds[b.kind].rank;
    });
}

// The panel in place `slot` of the grid for points[first..last); both axes
// span the kind's values.
Panel kindPanel(const PointList& points, std::size_t first, std::size_t last, int slot) {
    double lo = points[first].obs, hi = lo;
    for (std::size_t i = first; i < last; i++) {
        lo = std::fmin(lo, std::fmin(points[i].obs, points[i].pred));
        hi = std::fmax(hi, std::fmax(points[i].obs, points[i].pred));
    }
    Axis axis = niceAxis(lo, hi);
    double left = (slot % kColumnsOfPanels) * kCellWidth + 80.0;
    double top = kPanelsTop + (slot / kColumnsOfPanels) * kCellHeight + 40.0;
    return Panel{left, top, kPanelSize, kPanelSize, axis, axis};
}

// The panel of the kind of points[first]; returns the index after its points.
std::size_t writeKindPanel(FILE* out, const PointList& points, const KindList& kinds,
                           std::size_t first, int slot) {
    std::size_t last = first;
    while (last < points.size() && points[last].kind == points[first].kind) last++;
    const ShiftKind& kind = kinds[points[first].kind];
    Panel panel = kindPanel(points, first, last, slot);
    beginPanel(out, panel, "data-kind", kind.name);
    char title[96];
    std::snprintf(title, sizeof title, "%s: n = %d, RMS = %.3f ppm", kind.name, kind.count,
                  std::sqrt(kind.sumSquares / kind.count));
    svgText(out, panel.left, panel.top - 12, "panel-title", "start", title);
    drawAxes(out, panel, "Observed (ppm)", "Predicted (ppm)");
    drawIdentity(out, panel);
    for (std::size_t i = first; i < last; i++) {
        const ShiftPoint& p = points[i];
        drawPoint(out, panel,
                  PointMark{p.obs, p.pred, p.row, 3.0, "point", plotColour(slot), "data-atom",
                            p.atom, p.tip});
    }
    endPanel(out);
    return last;
}

void writeTitle(FILE* out, const TableRows& t, const char* inPath) {
    char title[512], n[64], rms[64], stats[192];
    std::snprintf(title, sizeof title, "Observed vs predicted chemical shifts: %s",
                  baseName(inPath));
    svgText(out, 20, 32, "title", "start", title);
    headerValue(t, "N", n, sizeof n);
    headerValue(t, "RMS", rms, sizeof rms);
    std::snprintf(stats, sizeof stats, "N = %s, RMS = %s ppm", n[0] ? n : "?", rms[0] ? rms : "?");
    svgText(out, 20, 56, "stats", "start", stats);
}

// The points must be sorted by panel.
void writePlot(FILE* out, const TableRows& t, const char* inPath, const PointList& points,
               const KindList& kinds) {
    int count = static_cast<int>(kinds.size());
    int across = std::min(count, kColumnsOfPanels);
    int down = (count + kColumnsOfPanels - 1) / kColumnsOfPanels;
    int width = static_cast<int>(across * kCellWidth + 20.0);
    int height = static_cast<int>(kPanelsTop + down * kCellHeight + 10.0);
    svgBegin(out, width, height, "Observed vs predicted chemical shifts");
    writeTitle(out, t, inPath);
    for (std::size_t i = 0, slot = 0; i < points.size(); slot++) {
        i = writeKindPanel(out, points, kinds, i, static_cast<int>(slot));
    }
    svgEnd(out);
}

int shiftPlot(const char* inPath, const char* outPath) {
    TableRows t;
    if (readPlotTable(inPath, &t)) return 1;
    TableRelease release{&t};
    ShiftColumns columns;
    if (!findColumns(t, inPath, &columns)) return 1;
    PointList points;
    KindList kinds;
    collectPoints(t, columns, &points, &kinds);
    if (points.empty()) {
        std::fprintf(stderr, "dcplot Error: %s has no shift with both values.\n", inPath);
        return 1;
    }
    sortByPanel(&points, kinds);
    FILE* out = svgOpen(outPath);
    if (!out) return 1;
    writePlot(out, t, inPath, points, kinds);
    return svgClose(out, outPath);
}

}  // namespace

int plotShifts(const char* inPath, const char* outPath) {
    return runGuarded(shiftPlot, inPath, outPath);
}
