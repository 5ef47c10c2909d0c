// The search plot: D_RMS (y) against the first structure residue P_RES1 (x)
// of every offset in a DC -outS report, one line per structure (INDEX and
// P_NAME), the offset of lowest D_RMS of each structure marked.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <new>

#include "tools/dcplot/memory_guard.h"
#include "tools/dcplot/panel.h"
#include "tools/dcplot/plots.h"
#include "tools/dcplot/search_report.h"
#include "tools/dcplot/svg.h"
#include "tools/dcplot/table_input.h"

namespace {

constexpr int kWidth = 920, kHeight = 600;
constexpr int kLegendRows = 20;

using RowOrder = TrackedVector<int, "plotRows">;

// x spans the offsets in whole residues; y runs from 0 to above the largest D_RMS.
Panel searchPanel(const SearchReport& report) {
    const auto& points = report.points;
    double xLo = points[0].res1, xHi = xLo, yLo = 0.0, yHi = 0.0;
    for (const SearchPoint& p : points) {
        xLo = std::fmin(xLo, p.res1);
        xHi = std::fmax(xHi, p.res1);
        yLo = std::fmin(yLo, p.rms);
        yHi = std::fmax(yHi, p.rms);
    }
    Axis y = niceAxis(yLo, yHi);
    if (yLo >= 0.0) y.lo = 0.0;
    return Panel{90.0, 90.0, 520.0, 420.0, snugAxis(xLo, xHi, 1.0), y};
}

// Point indices by structure, then by P_RES1: the order the lines join them.
RowOrder lineOrder(const SearchReport& report) {
    const auto& points = report.points;
    RowOrder order(points.size());
    for (std::size_t i = 0; i < order.size(); i++) order[i] = static_cast<int>(i);
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
        if (points[a].structure != points[b].structure) {
            return points[a].structure < points[b].structure;
        }
        return points[a].res1 < points[b].res1;
    });
    return order;
}

void writeLines(FILE* out, const Panel& panel, const SearchReport& report, const RowOrder& order) {
    for (std::size_t i = 0; i < order.size();) {
        int structure = report.points[order[i]].structure;
        std::fprintf(out, "<polyline class=\"series\" stroke=\"%s\" points=\"",
                     plotColour(structure));
        for (; i < order.size() && report.points[order[i]].structure == structure; i++) {
            const SearchPoint& p = report.points[order[i]];
            std::fprintf(out, "%.2f,%.2f ", panelX(panel, p.res1), panelY(panel, p.rms));
        }
        std::fprintf(out, "\"/>\n");
    }
}

void structureLabel(const SearchStructure& s, char* text, int size) {
    std::snprintf(text, size, "%.10g %.200s", s.index, s.name);
}

void writePoints(FILE* out, const Panel& panel, const SearchReport& report) {
    for (std::size_t i = 0; i < report.points.size(); i++) {
        const SearchPoint& p = report.points[i];
        const SearchStructure& s = report.structures[p.structure];
        bool best = s.best == static_cast<int>(i);
        char label[256], tip[320];
        structureLabel(s, label, sizeof label);
        std::snprintf(tip, sizeof tip, "%s: P_RES1 %.10g, D_RMS %.3f%s", label, p.res1, p.rms,
                      best ? " (best)" : "");
        drawPoint(out, panel,
                  PointMark{p.res1, p.rms, p.row, best ? 6.0 : 3.0, best ? "point best" : "point",
                            plotColour(p.structure), "data-structure", label, tip});
    }
}

void writeLegend(FILE* out, const SearchReport& report, double x, double y) {
    svgText(out, x, y, "legend", "start", "Structure: lowest D_RMS at P_RES1");
    int shown = 0;
    for (const SearchStructure& s : report.structures) {
        double rowY = y + 22 + 20 * shown;
        if (shown == kLegendRows) {
            char more[64];
            std::snprintf(more, sizeof more, "... %d more",
                          static_cast<int>(report.structures.size()) - shown);
            svgText(out, x, rowY, "legend", "start", more);
            return;
        }
        svgSwatch(out, x + 6, rowY - 4, plotColour(shown));
        char label[256], entry[320];
        structureLabel(s, label, sizeof label);
        if (s.best < 0) {
            std::snprintf(entry, sizeof entry, "%s: no couplings", label);
        } else {
            const SearchPoint& b = report.points[s.best];
            std::snprintf(entry, sizeof entry, "%s: %.3f at %.10g", label, b.rms, b.res1);
        }
        svgText(out, x + 18, rowY, "legend", "start", entry);
        shown++;
    }
}

void writeTitle(FILE* out, const SearchReport& report, const char* inPath) {
    char title[512], stats[192];
    std::snprintf(title, sizeof title, "Search: coupling RMS by offset: %s", baseName(inPath));
    svgText(out, 20, 32, "title", "start", title);
    int written = std::snprintf(stats, sizeof stats, "%d structures, %d offsets",
                                static_cast<int>(report.structures.size()),
                                static_cast<int>(report.points.size()));
    if (report.tableFirst[0] && report.tableLast[0]) {
        std::snprintf(stats + written, sizeof stats - written, ", table residues %s to %s",
                      report.tableFirst, report.tableLast);
    }
    svgText(out, 20, 56, "stats", "start", stats);
}

void writePlot(FILE* out, const SearchReport& report, const RowOrder& order, const char* inPath) {
    svgBegin(out, kWidth, kHeight, "Search: coupling RMS by offset");
    writeTitle(out, report, inPath);
    Panel panel = searchPanel(report);
    beginPanel(out, panel, nullptr, nullptr);
    drawAxes(out, panel, "First structure residue (P_RES1)", "D_RMS (Hz)");
    writeLines(out, panel, report, order);
    writePoints(out, panel, report);
    endPanel(out);
    writeLegend(out, report, 640, 110);
    svgEnd(out);
}

int searchPlot(const char* inPath, const char* outPath) {
    SearchReport report;
    if (readSearchReport(inPath, &report)) return 1;
    RowOrder order = lineOrder(report);
    FILE* out = svgOpen(outPath);
    if (!out) return 1;
    writePlot(out, report, order, inPath);
    return svgClose(out, outPath);
}

}  // namespace

int plotSearch(const char* inPath, const char* outPath) {
    return runGuarded(searchPlot, inPath, outPath);
}
