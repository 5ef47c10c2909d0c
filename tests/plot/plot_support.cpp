#include "plot_support.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <regex>
#include <sstream>

#include "support/run_dc.h"

namespace {

constexpr double kPixel = 0.006;  // coordinates are written with two decimals

// Resolves the five predefined entities; false on any other '&'.
bool resolve(std::string raw, std::string* out) {
    static const std::regex bad("&(?!(amp|lt|gt|quot|apos);)");
    if (std::regex_search(raw, bad)) return false;
    for (const char* e : {"&lt;<", "&gt;>", "&quot;\"", "&apos;'", "&amp;&"}) {
        std::string from(e, std::strlen(e) - 1);
        for (std::size_t at = 0; (at = raw.find(from, at)) != std::string::npos; at++) {
            raw.replace(at, from.size(), 1, e[from.size()]);
        }
    }
    *out = raw;
    return true;
}

// Where a panel's map, as its data-* attributes state it, puts x and y.
double px(const SvgElement& g, double x) {
    return g.num("data-left") + g.num("data-width") * (x - g.num("data-x-min")) /
                                    (g.num("data-x-max") - g.num("data-x-min"));
}
double py(const SvgElement& g, double y) {
    return g.num("data-top") + g.num("data-height") * (g.num("data-y-max") - y) /
                                   (g.num("data-y-max") - g.num("data-y-min"));
}

}  // namespace

std::string parseSvg(const std::string& s, Svg* out) {
    static const std::regex tag(R"(^<(/?)([\w:-]+)((?:\s+[\w:-]+="[^"<]*")*)\s*(/?)>)");
    static const std::regex attr(R"(([\w:-]+)="([^"]*)\")");
    for (unsigned char c : s) {
        if (c < 0x20 && c != '\t' && c != '\r' && c != '\n') return "control character";
    }
    std::size_t at = s.compare(0, 5, "<?xml") == 0 ? s.find("?>") + 2 : 0;
    std::vector<std::pair<std::string, int>> open;  // name, index in out
    int roots = 0;
    std::string text;
    for (std::size_t next; (next = s.find('<', at)) != std::string::npos; at = next) {
        if (!resolve(s.substr(at, next - at), &text)) return "bad entity in text";
        if (!open.empty()) {
            out->at(open.back().second).text += text;
        } else if (text.find_first_not_of(" \t\r\n") != std::string::npos) {
            return "text outside the root";
        }
        std::smatch m;
        if (!std::regex_search(s.begin() + next, s.end(), m, tag)) return "bad tag";
        next += m.length();
        if (m[1].length() > 0) {
            if (open.empty() || open.back().first != m[2]) return "mismatched end " + m[2].str();
            open.pop_back();
            continue;
        }
        if (open.empty() && roots++) return "second root";
        SvgElement& e = out->emplace_back();
        if (!open.empty()) {
            int parent = open.back().second;
            e.panel = out->at(parent).hasClass("panel") ? parent : out->at(parent).panel;
        }
        std::string attrs = m[3], value;
        for (std::sregex_iterator a(attrs.begin(), attrs.end(), attr), end; a != end; ++a) {
            if (!resolve((*a)[2], &value)) return "bad entity in attribute";
            if (!e.attrs.emplace((*a)[1], value).second) return "repeated " + (*a)[1].str();
        }
        if (m[4].length() == 0) open.emplace_back(m[2], static_cast<int>(out->size()) - 1);
    }
    if (!open.empty() || roots != 1) return "unclosed or missing root";
    return s.find_first_not_of(" \t\r\n", at) == std::string::npos ? "" : "text after the root";
}

Svg loadSvg(const std::string& path) {
    Svg svg;
    EXPECT_EQ(parseSvg(readFile(path), &svg), "") << path;
    EXPECT_TRUE(!svg.empty() && svg[0].attr("xmlns") == "http://www.w3.org/2000/svg");
    for (const char* key : {"width", "height", "viewBox"}) EXPECT_NE(svg.at(0).attr(key), "");
    return svg;
}

double SvgElement::num(const std::string& key) const {
    std::string value = attr(key);
    char* end = nullptr;
    double number = std::strtod(value.c_str(), &end);
    return value.empty() || *end ? std::nan("") : number;
}

bool SvgElement::hasClass(const std::string& cls) const {
    return std::regex_search(attr("class"), std::regex("(^| )" + cls + "( |$)"));
}

std::vector<const SvgElement*> withClass(const Svg& svg, const std::string& cls, int panel) {
    std::vector<const SvgElement*> out;
    for (const SvgElement& e : svg) {
        if (e.hasClass(cls) && (panel == -2 || e.panel == panel)) out.push_back(&e);
    }
    return out;
}

DCResult runPlot(const std::vector<std::string>& args) {
    std::string err = scratchDir("plot_capture") + "/err", command = DC_PLOT_BINARY;
    for (const std::string& a : args) command += " '" + a + "'";
    int raw = std::system((command + " > /dev/null 2> '" + err + "'").c_str());
    return DCResult{"", readFile(err), WIFEXITED(raw) ? WEXITSTATUS(raw) : -1};
}

TextTable readTextTable(const std::string& path) {
    TextTable table;
    std::string text = readFile(path), line;
    std::size_t body = text.find('\n', text.find("\nFORMAT") + 1);
    std::istringstream header(text.substr(0, body)), values(text.substr(body + 1));
    std::vector<std::string> vars;
    while (std::getline(header, line)) {
        std::istringstream in(line);
        std::vector<std::string> w{std::istream_iterator<std::string>(in), {}};
        for (std::size_t i = 2; i < w.size() && w[0] == "DATA"; i++) {
            table.data[w[1]] += (i > 2 ? " " : "") + w[i];
        }
        if (!w.empty() && w[0] == "VARS") vars.assign(w.begin() + 1, w.end());
    }
    std::vector<std::string> all{std::istream_iterator<std::string>(values), {}};
    for (std::size_t v = 0; !vars.empty() && v + vars.size() <= all.size(); v += vars.size()) {
        auto& row = table.rows.emplace_back();
        for (std::size_t c = 0; c < vars.size(); c++) row[vars[c]] = all[v + c];
    }
    return table;
}

std::map<int, const SvgElement*> expectRowsArePoints(const TextTable& t, const Svg& svg,
                                                     const std::string& xColumn,
                                                     const std::string& yColumn) {
    std::map<int, const SvgElement*> byRow;
    for (const SvgElement* p : withClass(svg, "point")) {
        int row = static_cast<int>(p->num("data-row"));
        EXPECT_GE(p->panel, 0) << "row " << row << " outside a panel";
        EXPECT_TRUE(byRow.emplace(row, p).second) << "row " << row << " twice";
    }
    std::size_t shown = 0;
    for (std::size_t r = 0; r < t.rows.size(); r++) {
        double x = std::stod(t.rows[r].at(xColumn)), y = std::stod(t.rows[r].at(yColumn));
        auto it = byRow.find(static_cast<int>(r) + 1);
        bool expected = x <= 900.0 && y <= 900.0;
        EXPECT_EQ(it != byRow.end(), expected) << "row " << r + 1;
        if (!expected || it == byRow.end() || it->second->panel < 0) continue;
        shown++;
        const SvgElement& p = *it->second;
        EXPECT_NEAR(p.num("data-x"), x, 1e-4);
        EXPECT_NEAR(p.num("data-y"), y, 1e-4);
        EXPECT_NEAR(p.num("cx"), px(svg[p.panel], x), kPixel) << "row " << r + 1;
        EXPECT_NEAR(p.num("cy"), py(svg[p.panel], y), kPixel) << "row " << r + 1;
    }
    EXPECT_EQ(byRow.size(), shown);
    return byRow;
}

void expectIdentity(const Svg& svg, int panel) {
    auto lines = withClass(svg, "identity", panel);
    ASSERT_EQ(lines.size(), 1u);
    double lo = std::max(svg[panel].num("data-x-min"), svg[panel].num("data-y-min"));
    double hi = std::min(svg[panel].num("data-x-max"), svg[panel].num("data-y-max"));
    EXPECT_NEAR(lines[0]->num("x1"), px(svg[panel], lo), kPixel);
    EXPECT_NEAR(lines[0]->num("y1"), py(svg[panel], lo), kPixel);
    EXPECT_NEAR(lines[0]->num("x2"), px(svg[panel], hi), kPixel);
    EXPECT_NEAR(lines[0]->num("y2"), py(svg[panel], hi), kPixel);
}
