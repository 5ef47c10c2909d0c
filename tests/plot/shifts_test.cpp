// Shift plots of tables DC writes: one panel per atom kind in a fixed order,
// each row with both values a point in its kind's panel, and each panel's
// count and RMS worked out here from the rows.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "plot_support.h"
#include "support/run_dc.h"

namespace {

// DC's -verb shift table for ubiquitin; with row > 0, that row's prediction
// is made missing.
std::string shiftTable(const ScratchDir& dir, int row) {
    std::string tab = dir.path + "/s.tab";
    DCResult r = runDC({"-pdb", "1ubq_h.pdb", "-inCS", "ubq_cs.tab", "-outCS", tab, "-verb"}, {},
                       DC_EXAMPLES "/ubq");
    EXPECT_EQ(r.status, 0) << r.err;
    if (row == 0) return tab;
    std::string text = readFile(tab);
    std::size_t at = text.find("\nFORMAT") + 1;
    // Past the FORMAT line and the blank line after it, to the row's line.
    for (int i = 0; i <= row; i++) at = text.find('\n', at) + 1;
    std::size_t pred = text.find_first_of("0123456789", text.find('.', at) + 4);
    text.replace(pred, text.find(' ', pred) - pred, "9999.000");
    writeFile(tab, text);
    return tab;
}

void expectPanels(const ScratchDir& dir, const std::string& tab, std::size_t shown) {
    ASSERT_EQ(runPlot({"shifts", tab, dir.path + "/s.svg"}).status, 0);
    XmlNode svg = loadSvg(dir.path + "/s.svg");
    TextTable t = readTextTable(tab);
    auto points = expectRowsArePoints(t, svg, "CS_OBS", "SHIFT");
    EXPECT_EQ(points.size(), shown);
    std::vector<std::string> order;
    for (const XmlNode* panel : withClass(svg, "panel")) {
        order.push_back(panel->attr("data-kind"));
        expectIdentity(*panel);
    }
    EXPECT_EQ(order, (std::vector<std::string>{"HN", "N", "CA", "HA", "CB", "C"}));
    std::map<std::string, std::pair<int, double>> sums;  // kind: count, sum of squares
    for (const auto& [row, placed] : points) {
        std::string atom = t.rows[row - 1].at("ATOMNAME");
        // H goes with HN, glycine's HA2 and HA3 with HA.
        std::string kind = atom == "H" ? "HN" : atom == "HA2" || atom == "HA3" ? "HA" : atom;
        EXPECT_EQ(placed.panel->attr("data-kind"), kind) << "row " << row;
        EXPECT_EQ(placed.point->attr("data-atom"), atom);
        double diff =
            std::stod(t.rows[row - 1].at("CS_OBS")) - std::stod(t.rows[row - 1].at("SHIFT"));
        sums[kind].first++;
        sums[kind].second += diff * diff;
    }
    for (const XmlNode* title : withClass(svg, "panel-title")) {
        auto [n, sum] = sums[title->text.substr(0, title->text.find(':'))];
        char expected[96];
        std::snprintf(expected, sizeof expected, "%s: n = %d, RMS = %.3f ppm",
                      title->text.substr(0, title->text.find(':')).c_str(), n, std::sqrt(sum / n));
        EXPECT_EQ(title->text, expected);
    }
    EXPECT_EQ(withClass(svg, "stats").at(0)->text,
              "N = " + t.data["N"] + ", RMS = " + t.data["RMS"] + " ppm");
}

TEST(ShiftPlot, EveryRowIsOnePointInItsKindsPanel) {
    ScratchDir dir("plot_shifts");
    expectPanels(dir, shiftTable(dir, 0), 438);
}

TEST(ShiftPlot, AMissingPredictionIsNoPoint) {
    ScratchDir dir("plot_shifts_missing");
    std::string tab = shiftTable(dir, 3);
    ASSERT_EQ(readTextTable(tab).rows[2].at("SHIFT"), "9999.000");
    expectPanels(dir, tab, 437);
}

}  // namespace
