// dcplot's pictures of tables DC writes. Couplings: each row with both values
// one point coloured by its atom-name pair, the line y = x, N, RMS and Q in
// the title. Shifts: one panel per atom kind in a fixed order, each panel's
// count and RMS worked out here. Search reports: one point per row at
// (P_RES1, D_RMS), one line per structure, and the marked offset of each
// structure its lowest D_RMS among rows with couplings, whatever the line
// breaks of the report.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <set>

#include "plot_support.h"

namespace {

// A coupling whose atoms the structure lacks is written with D 9999 and
// left out, and the note says so.
TEST(CouplingPlot, EveryRowIsOnePointColouredByTypeWithTitleAndIdentity) {
    std::string dir = scratchDir("plot_couplings"), tab = dir + "/c.tab", svgPath = dir + "/c.svg";
    writeFile(dir + "/in.tab",
              readFile(DC_TEST_DATA "/hafp/hafp_nh_caha.tab") + "99 GLN N 99 GLN H 13.2 1.0 1.0\n");
    ASSERT_EQ(runDC({"-pdb", DC_TEST_DATA "/hafp/hafp_a.pdb", "-inD", dir + "/in.tab", "-outD", tab,
                     "-verb"})
                  .status,
              0);
    DCResult run = runPlot({"couplings", tab, svgPath});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    TextTable t = readTextTable(tab);
    Svg svg = loadSvg(svgPath);
    ASSERT_EQ(t.rows.size(), 43u);
    EXPECT_EQ(t.rows.back().at("D"), "9999.0000");
    EXPECT_EQ(withClass(svg, "note").at(0)->text, "42 of 43 rows shown; the others lack a value");
    std::map<std::string, std::set<std::string>> fills;  // type: colours
    std::map<std::string, int> counts;
    for (const auto& [row, point] : expectRowsArePoints(t, svg, "D_OBS", "D")) {
        const auto& cells = t.rows[row - 1];
        std::string type = cells.at("ATOMNAME_I") + "-" + cells.at("ATOMNAME_J");
        EXPECT_EQ(point->attr("data-type"), type);
        fills[type].insert(point->attr("fill"));
        counts[type]++;
    }
    EXPECT_EQ(counts, (std::map<std::string, int>{{"N-H", 21}, {"CA-HA", 16}, {"CA-HA#", 5}}));
    std::set<std::string> colours, legend;
    for (const SvgElement* text : withClass(svg, "legend")) legend.insert(text->text);
    for (const auto& [type, typeFills] : fills) {
        EXPECT_EQ(typeFills.size(), 1u) << type;
        colours.insert(*typeFills.begin());
        EXPECT_EQ(legend.count(type + " (" + std::to_string(counts[type]) + ")"), 1u) << type;
    }
    EXPECT_EQ(colours.size(), 3u);
    expectIdentity(svg, withClass(svg, "panel").at(0) - svg.data());
    EXPECT_EQ(withClass(svg, "stats").at(0)->text,
              "N = " + t.data["N"] + ", RMS = " + t.data["RMS"] + " Hz, Q = " + t.data["Q_FACTOR"]);
}

void expectPanels(const std::string& dir, const std::string& tab, std::size_t shown) {
    ASSERT_EQ(runPlot({"shifts", tab, dir + "/s.svg"}).status, 0);
    Svg svg = loadSvg(dir + "/s.svg");
    TextTable t = readTextTable(tab);
    auto points = expectRowsArePoints(t, svg, "CS_OBS", "SHIFT");
    EXPECT_EQ(points.size(), shown);
    std::vector<std::string> order;
    for (const SvgElement* panel : withClass(svg, "panel")) {
        order.push_back(panel->attr("data-kind"));
        expectIdentity(svg, panel - svg.data());
    }
    EXPECT_EQ(order, (std::vector<std::string>{"HN", "N", "CA", "HA", "CB", "C"}));
    std::map<std::string, std::pair<int, double>> sums;  // kind: count, sum of squares
    for (const auto& [row, point] : points) {
        const auto& cells = t.rows[row - 1];
        std::string atom = cells.at("ATOMNAME");
        // H goes with HN, glycine's HA2 and HA3 with HA.
        std::string kind = atom == "H" ? "HN" : atom == "HA2" || atom == "HA3" ? "HA" : atom;
        EXPECT_EQ(svg[point->panel].attr("data-kind"), kind) << "row " << row;
        EXPECT_EQ(point->attr("data-atom"), atom);
        double diff = std::stod(cells.at("CS_OBS")) - std::stod(cells.at("SHIFT"));
        sums[kind].first++;
        sums[kind].second += diff * diff;
    }
    for (const SvgElement* title : withClass(svg, "panel-title")) {
        std::string kind = title->text.substr(0, title->text.find(':'));
        char expected[96];
        std::snprintf(expected, sizeof expected, "%s: n = %d, RMS = %.3f ppm", kind.c_str(),
                      sums[kind].first, std::sqrt(sums[kind].second / sums[kind].first));
        EXPECT_EQ(title->text, expected);
    }
    EXPECT_EQ(withClass(svg, "stats").at(0)->text,
              "N = " + t.data["N"] + ", RMS = " + t.data["RMS"] + " ppm");
}

// DC's -verb shift table of ubiquitin as written, then with the third row's
// prediction made missing, which drops its point.
TEST(ShiftPlot, EveryRowIsOnePointInItsKindsPanel) {
    std::string dir = scratchDir("plot_shifts"), tab = dir + "/s.tab";
    DCResult r = runDC({"-pdb", "1ubq_h.pdb", "-inCS", "ubq_cs.tab", "-outCS", tab, "-verb"}, {},
                       DC_EXAMPLES "/ubq");
    ASSERT_EQ(r.status, 0) << r.err;
    expectPanels(dir, tab, 438);
    std::string text = readFile(tab);
    std::size_t at = text.find("\nFORMAT") + 1;
    for (int i = 0; i <= 3; i++) at = text.find('\n', at) + 1;  // past FORMAT and a blank line
    std::size_t pred = text.find_first_of("0123456789", text.find('.', at) + 4);
    writeFile(tab, text.replace(pred, text.find(' ', pred) - pred, "9999.000"));
    ASSERT_EQ(readTextTable(tab).rows[2].at("SHIFT"), "9999.000");
    expectPanels(dir, tab, 437);
}

// Plots the report and checks its points, lines and best marks.
Svg expectSearchPlot(const std::string& report, const std::string& svgPath) {
    EXPECT_EQ(runPlot({"search", report, svgPath}).status, 0);
    Svg svg = loadSvg(svgPath);
    TextTable t = readTextTable(report);
    auto points = expectRowsArePoints(t, svg, "P_RES1", "D_RMS");
    EXPECT_EQ(points.size(), t.rows.size());
    std::map<std::string, std::pair<double, int>> best, marked;  // structure: D_RMS, row
    for (const auto& [row, point] : points) {
        const auto& cells = t.rows[row - 1];
        std::string structure = cells.at("INDEX") + " " + cells.at("P_NAME");
        EXPECT_EQ(point->attr("data-structure"), structure);
        double rms = std::stod(cells.at("D_RMS"));
        auto it = best.find(structure);
        if (cells.at("D_N") != "0" && (it == best.end() || rms < it->second.first)) {
            best[structure] = {rms, row};
        }
    }
    for (const SvgElement* p : withClass(svg, "best")) {
        EXPECT_TRUE(p->hasClass("point"));
        std::pair<double, int> mark{p->num("data-y"), static_cast<int>(p->num("data-row"))};
        EXPECT_TRUE(marked.emplace(p->attr("data-structure"), mark).second);
    }
    EXPECT_EQ(marked, best);
    EXPECT_EQ(withClass(svg, "series").size(), best.size());
    return svg;
}

TEST(SearchPlot, UbiquitinSegmentAgainstThreeStructures) {
    std::string dir = scratchDir("plot_search");
    for (std::string f : {DC_EXAMPLES "/ubq/1ubq_h.pdb", DC_EXAMPLES "/ubq/ubq_nh.tab",
                          DC_TEST_DATA "/hafp/hafp_a.pdb", DC_TEST_DATA "/hafp/hafp_b.pdb"}) {
        writeFile(dir + f.substr(f.rfind('/')), readFile(f));
    }
    writeFile(dir + "/list", "hafp_a.pdb\n1ubq_h.pdb\nhafp_b.pdb\n");
    DCResult r = runDC({"-inD", "ubq_nh.tab", "-r1", "20", "-rN", "39", "-list", "list", "-path",
                        ".", "-ref", "1ubq_h.pdb", "-bb", "-outS", "r.txt"},
                       {}, dir);
    ASSERT_EQ(r.status, 0) << r.err;
    Svg svg = expectSearchPlot(dir + "/r.txt", dir + "/r.svg");
    EXPECT_EQ(withClass(svg, "stats").at(0)->text,
              "3 structures, 67 offsets, table residues 20 to 39");
}

// The same rows broken into lines three ways give the same picture; a row
// without couplings is never the best, a tie goes to the first row, and
// names are escaped.
TEST(SearchPlot, RowsAreReadAsOneStreamOfValues) {
    std::string dir = scratchDir("plot_search_layout"), pictures[3];
    const char* rows[] = {"1 a&b<c>.pdb 1 2 4.5", "1 a&b<c>.pdb 2 3 2.5", "1 a&b<c>.pdb 3 0 0.0",
                          "2 z.pdb 1 5 3.0",      "2 z.pdb 2 5 3.0",      "1 a&b<c>.pdb 4 3 2.5"};
    for (int layout = 0; layout < 3; layout++) {
        std::string text = "VARS INDEX P_NAME P_RES1 D_N D_RMS\nFORMAT %d %s %d %d %f\n";
        for (std::string row : rows) {
            if (layout == 2) std::replace(row.begin(), row.end(), ' ', '\n');
            text += row + (layout == 1 ? " " : "\n");
        }
        writeFile(dir + "/r.txt", layout == 2 ? text.substr(0, text.size() - 1) : text);
        expectSearchPlot(dir + "/r.txt", dir + "/r.svg");
        pictures[layout] = readFile(dir + "/r.svg");
    }
    EXPECT_EQ(pictures[0], pictures[1]);
    EXPECT_EQ(pictures[0], pictures[2]);
    EXPECT_NE(pictures[0].find("data-structure=\"1 a&amp;b&lt;c&gt;.pdb\""), std::string::npos);
}

}  // namespace
