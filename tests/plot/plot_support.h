// What the dcplot tests share: running the built program, a checked flat view
// of its pictures, DC's tables read independently of dcplot's own readers,
// and the check that every row is one point where its panel puts it.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "support/run_dc.h"

DCResult runPlot(const std::vector<std::string>& args);  // status -1 when killed

// One element of a picture, entities resolved; panel is the index of the
// enclosing element of class "panel", -1 when none.
struct SvgElement {
    std::map<std::string, std::string> attrs;
    std::string text;  // character data directly inside
    int panel = -1;
    std::string attr(const std::string& key) const { return attrs.count(key) ? attrs.at(key) : ""; }
    double num(const std::string& key) const;  // NaN when absent or not a number
    bool hasClass(const std::string& cls) const;
};
using Svg = std::vector<SvgElement>;  // in document order

// The first well-formedness fault of text (one root, tags closed in order,
// quoted unrepeated attributes, only the predefined entities, no control
// characters), empty when none; the elements go to out.
std::string parseSvg(const std::string& text, Svg* out);
Svg loadSvg(const std::string& path);  // fails the test unless well-formed SVG
// Elements of class cls, within the given panel unless it is -2.
std::vector<const SvgElement*> withClass(const Svg& svg, const std::string& cls, int panel = -2);

// A DC table or search report: the DATA lines by name, and the values after
// the FORMAT line read as one stream, cut into rows as VARS names them.
struct TextTable {
    std::map<std::string, std::string> data;
    std::vector<std::map<std::string, std::string>> rows;
};
TextTable readTextTable(const std::string& path);

// Checks that each row whose x and y hold values (DC writes 9999 for none) is
// exactly one point, found by data-row, with those values where its panel's
// map puts it, and that there are no other points. Returns them by row (from 1).
std::map<int, const SvgElement*> expectRowsArePoints(const TextTable& t, const Svg& svg,
                                                     const std::string& xColumn,
                                                     const std::string& yColumn);
// The panel's line y = x runs corner to corner of the range both axes share.
void expectIdentity(const Svg& svg, int panel);
