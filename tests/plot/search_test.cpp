// Search plots: one point per report row at (P_RES1, D_RMS), one line per
// structure, and the marked offset of each structure its lowest D_RMS among
// rows with couplings, whatever the line breaks of the report.
#include <gtest/gtest.h>

#include <set>

#include "plot_support.h"
#include "support/run_dc.h"

namespace {

// Plots the report and checks its points, lines and best marks.
XmlNode expectSearchPlot(const std::string& report, const std::string& svgPath) {
    EXPECT_EQ(runPlot({"search", report, svgPath}).status, 0);
    XmlNode svg = loadSvg(svgPath);
    TextTable t = readTextTable(report);
    auto points = expectRowsArePoints(t, svg, "P_RES1", "D_RMS");
    EXPECT_EQ(points.size(), t.rows.size());
    std::map<std::string, std::pair<double, int>> best;  // structure: D_RMS, row
    for (const auto& [row, placed] : points) {
        const auto& cells = t.rows[row - 1];
        std::string structure = cells.at("INDEX") + " " + cells.at("P_NAME");
        EXPECT_EQ(placed.point->attr("data-structure"), structure);
        double rms = std::stod(cells.at("D_RMS"));
        auto it = best.find(structure);
        if (cells.at("D_N") != "0" && (it == best.end() || rms < it->second.first)) {
            best[structure] = {rms, row};
        }
    }
    std::map<std::string, std::pair<double, int>> marked;
    for (const XmlNode* p : withClass(svg, "best")) {
        EXPECT_TRUE(p->hasClass("point"));
        std::pair<double, int> mark{p->num("data-y"), static_cast<int>(p->num("data-row"))};
        EXPECT_TRUE(marked.emplace(p->attr("data-structure"), mark).second);
    }
    EXPECT_EQ(marked, best);
    std::set<std::string> structures;
    for (const auto& row : t.rows) structures.insert(row.at("INDEX") + row.at("P_NAME"));
    EXPECT_EQ(withClass(svg, "series").size(), structures.size());
    return svg;
}

TEST(SearchPlot, UbiquitinSegmentAgainstThreeStructures) {
    ScratchDir dir("plot_search");
    for (std::string f :
         {DC_EXAMPLES "/ubq/1ubq_h.pdb", DC_EXAMPLES "/ubq/ubq_nh.tab", DC_TEST_DATA "/hafp/hafp_a.pdb",
          DC_TEST_DATA "/hafp/hafp_b.pdb"}) {
        writeFile(dir.path + f.substr(f.rfind('/')), readFile(f));
    }
    writeFile(dir.path + "/list", "hafp_a.pdb\n1ubq_h.pdb\nhafp_b.pdb\n");
    DCResult r = runDC({"-inD", "ubq_nh.tab", "-r1", "20", "-rN", "39", "-list", "list", "-path",
                        ".", "-ref", "1ubq_h.pdb", "-bb", "-outS", "r.txt"},
                       {}, dir.path);
    ASSERT_EQ(r.status, 0) << r.err;
    XmlNode svg = expectSearchPlot(dir.path + "/r.txt", dir.path + "/r.svg");
    EXPECT_EQ(withClass(svg, "stats").at(0)->text,
              "3 structures, 67 offsets, table residues 20 to 39");
}

// The same rows broken into lines three ways give the same picture; a row
// without couplings is never the best, a tie goes to the first row, and
// names are escaped.
TEST(SearchPlot, RowsAreReadAsOneStreamOfValues) {
    ScratchDir dir("plot_search_layout");
    const char* rows[] = {"1 a&b<c>.pdb 1 2 4.5", "1 a&b<c>.pdb 2 3 2.5", "1 a&b<c>.pdb 3 0 0.0",
                          "2 z.pdb 1 5 3.0",      "2 z.pdb 2 5 3.0",      "1 a&b<c>.pdb 4 3 2.5"};
    std::string layouts[3];
    for (std::string& text : layouts)
        text = "VARS INDEX P_NAME P_RES1 D_N D_RMS\nFORMAT %d %s %d %d %f\n";
    for (const char* row : rows) {
        layouts[0] += std::string(row) + "\n";
        layouts[1] += std::string(row) + " ";
        for (const char* c = row; *c; c++) layouts[2] += *c == ' ' ? '\n' : *c;
        layouts[2] += "\n";
    }
    layouts[2].pop_back();
    std::string pictures[3];
    for (int i = 0; i < 3; i++) {
        writeFile(dir.path + "/r.txt", layouts[i]);
        expectSearchPlot(dir.path + "/r.txt", dir.path + "/r.svg");
        pictures[i] = readFile(dir.path + "/r.svg");
    }
    EXPECT_EQ(pictures[0], pictures[1]);
    EXPECT_EQ(pictures[0], pictures[2]);
    EXPECT_NE(pictures[0].find("data-structure=\"1 a&amp;b&lt;c&gt;.pdb\""), std::string::npos);
}

}  // namespace
