// Coupling plots of tables DC writes: each row with both values one point,
// coloured by its atom-name pair, the line y = x, N, RMS and Q in the title.
#include <gtest/gtest.h>

#include <set>

#include "plot_support.h"
#include "support/run_dc.h"

namespace {

// Runs DC -verb on the structure and couplings, then dcplot on its table.
XmlNode plotOf(const ScratchDir& dir, const std::string& pdb, const std::string& couplings,
               TextTable* table) {
    std::string tab = dir.path + "/c.tab", svg = dir.path + "/c.svg";
    EXPECT_EQ(runDC({"-pdb", pdb, "-inD", couplings, "-outD", tab, "-verb"}).status, 0);
    PlotRun run = runPlot({"couplings", tab, svg});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    *table = readTextTable(tab);
    return loadSvg(svg);
}

TEST(CouplingPlot, EveryRowIsOnePointColouredByTypeWithTitleAndIdentity) {
    ScratchDir dir("plot_couplings");
    TextTable t;
    XmlNode svg =
        plotOf(dir, DC_TEST_DATA "/hafp/hafp_a.pdb", DC_TEST_DATA "/hafp/hafp_nh_caha.tab", &t);
    auto points = expectRowsArePoints(t, svg, "D_OBS", "D");
    EXPECT_EQ(points.size(), 42u);
    std::map<std::string, std::set<std::string>> fills;  // type: colours
    std::map<std::string, int> counts;
    for (const auto& [row, placed] : points) {
        const auto& cells = t.rows[row - 1];
        std::string type = cells.at("ATOMNAME_I") + "-" + cells.at("ATOMNAME_J");
        EXPECT_EQ(placed.point->attr("data-type"), type);
        fills[type].insert(placed.point->attr("fill"));
        counts[type]++;
    }
    EXPECT_EQ(counts, (std::map<std::string, int>{{"N-H", 21}, {"CA-HA", 16}, {"CA-HA#", 5}}));
    std::set<std::string> colours, legend;
    for (const XmlNode* text : withClass(svg, "legend")) legend.insert(text->text);
    for (const auto& [type, typeFills] : fills) {
        EXPECT_EQ(typeFills.size(), 1u) << type;
        colours.insert(*typeFills.begin());
        EXPECT_EQ(legend.count(type + " (" + std::to_string(counts[type]) + ")"), 1u) << type;
    }
    EXPECT_EQ(colours.size(), 3u);
    expectIdentity(*withClass(svg, "panel").at(0));
    EXPECT_EQ(withClass(svg, "stats").at(0)->text,
              "N = " + t.data["N"] + ", RMS = " + t.data["RMS"] + " Hz, Q = " + t.data["Q_FACTOR"]);
}

// A coupling whose atoms the structure lacks is written with D 9999: no point.
TEST(CouplingPlot, RowsWithoutACalculatedValueAreLeftOutAndCounted) {
    ScratchDir dir("plot_missing");
    writeFile(dir.path + "/in.tab",
              readFile(DC_EXAMPLES "/ubq/ubq_nh.tab") + "99 GLN N 99 GLN H 13.2 1.0 1.0\n");
    TextTable t;
    XmlNode svg = plotOf(dir, DC_EXAMPLES "/ubq/1ubq_h.pdb", dir.path + "/in.tab", &t);
    ASSERT_EQ(t.rows.size(), 64u);
    EXPECT_EQ(t.rows.back().at("D"), "9999.0000");
    EXPECT_EQ(expectRowsArePoints(t, svg, "D_OBS", "D").size(), 63u);
    EXPECT_EQ(withClass(svg, "note").at(0)->text, "63 of 64 rows shown; the others lack a value");
}

}  // namespace
