#include "plot_support.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>

#include "support/run_dc.h"

namespace {

constexpr double kPixel = 0.006;  // coordinates are written with two decimals

std::string shellQuoted(const std::string& text) {
    std::string out = "'";
    for (char c : text) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

std::vector<std::string> words(const std::string& text) {
    std::istringstream in(text);
    std::vector<std::string> out;
    for (std::string w; in >> w;) out.push_back(w);
    return out;
}

}  // namespace

PlotRun runPlot(const std::vector<std::string>& args) {
    ScratchDir capture("plot_capture");
    std::string command = shellQuoted(DC_PLOT_BINARY);
    for (const std::string& a : args) command.append(" ").append(shellQuoted(a));
    command.append(" > /dev/null 2> ").append(shellQuoted(capture.path + "/err"));
    int raw = std::system(command.c_str());
    return PlotRun{WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, readFile(capture.path + "/err")};
}

TextTable readTextTable(const std::string& path) {
    TextTable table;
    std::string text = readFile(path), line;
    std::size_t body = text.find('\n', text.find("\nFORMAT") + 1);
    std::istringstream header(text.substr(0, body));
    std::vector<std::string> vars;
    while (std::getline(header, line)) {
        std::vector<std::string> w = words(line);
        if (w.size() > 2 && w[0] == "DATA") {
            std::string& value = table.data[w[1]];
            for (std::size_t i = 2; i < w.size(); i++) value += (i > 2 ? " " : "") + w[i];
        }
        if (!w.empty() && w[0] == "VARS") vars.assign(w.begin() + 1, w.end());
    }
    std::vector<std::string> values = words(text.substr(body + 1));
    for (std::size_t v = 0; !vars.empty() && v + vars.size() <= values.size(); v += vars.size()) {
        auto& row = table.rows.emplace_back();
        for (std::size_t c = 0; c < vars.size(); c++) row[vars[c]] = values[v + c];
    }
    return table;
}

XmlNode loadSvg(const std::string& path) {
    std::string error;
    XmlNode root = parseXml(readFile(path), &error);
    EXPECT_EQ(error, "") << path;
    EXPECT_EQ(root.name, "svg");
    for (const char* key : {"width", "height", "viewBox", "xmlns"}) EXPECT_NE(root.attr(key), "");
    return root;
}

PanelMap::PanelMap(const XmlNode& g)
    : left(g.num("data-left")),
      top(g.num("data-top")),
      width(g.num("data-width")),
      height(g.num("data-height")),
      xMin(g.num("data-x-min")),
      xMax(g.num("data-x-max")),
      yMin(g.num("data-y-min")),
      yMax(g.num("data-y-max")) {}

std::map<int, Placed> expectRowsArePoints(const TextTable& t, const XmlNode& svg,
                                          const std::string& xColumn, const std::string& yColumn) {
    std::map<int, Placed> byRow;
    for (const XmlNode* panel : withClass(svg, "panel")) {
        for (const XmlNode* p : withClass(*panel, "point")) {
            int row = static_cast<int>(p->num("data-row"));
            EXPECT_TRUE(byRow.emplace(row, Placed{panel, p}).second) << "row " << row << " twice";
        }
    }
    EXPECT_EQ(withClass(svg, "point").size(), byRow.size()) << "points outside panels";
    std::size_t shown = 0;
    for (std::size_t r = 0; r < t.rows.size(); r++) {
        double x = std::stod(t.rows[r].at(xColumn)), y = std::stod(t.rows[r].at(yColumn));
        auto it = byRow.find(static_cast<int>(r) + 1);
        bool expected = x <= 900.0 && y <= 900.0;
        EXPECT_EQ(it != byRow.end(), expected) << "row " << r + 1;
        if (!expected || it == byRow.end()) continue;
        shown++;
        const XmlNode& p = *it->second.point;
        PanelMap map(*it->second.panel);
        EXPECT_NEAR(p.num("data-x"), x, 1e-4);
        EXPECT_NEAR(p.num("data-y"), y, 1e-4);
        EXPECT_NEAR(p.num("cx"), map.px(x), kPixel) << "row " << r + 1;
        EXPECT_NEAR(p.num("cy"), map.py(y), kPixel) << "row " << r + 1;
    }
    EXPECT_EQ(byRow.size(), shown);
    return byRow;
}

void expectIdentity(const XmlNode& panel) {
    auto lines = withClass(panel, "identity");
    ASSERT_EQ(lines.size(), 1u);
    PanelMap map(panel);
    double lo = std::max(map.xMin, map.yMin), hi = std::min(map.xMax, map.yMax);
    EXPECT_NEAR(lines[0]->num("x1"), map.px(lo), kPixel);
    EXPECT_NEAR(lines[0]->num("y1"), map.py(lo), kPixel);
    EXPECT_NEAR(lines[0]->num("x2"), map.px(hi), kPixel);
    EXPECT_NEAR(lines[0]->num("y2"), map.py(hi), kPixel);
}

ScratchDir::ScratchDir(const std::string& name) : path(scratchDir(name)) {}

ScratchDir::~ScratchDir() {
    if (path != ".") std::system(("rm -rf " + shellQuoted(path)).c_str());
}
