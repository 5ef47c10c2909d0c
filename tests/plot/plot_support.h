// What the dcplot tests share: running the built program, reading DC's
// tables independently of dcplot's own readers, and checking a picture's
// points against the rows they came from.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "xml_doc.h"

struct PlotRun {
    int status = -1;  // exit status; 128 + signal when the program was killed
    std::string err;
};
PlotRun runPlot(const std::vector<std::string>& args);

// A DC table or search report: the DATA lines by name (the words after the
// name), and the values after the FORMAT line read as one stream, cut
// into rows of as many values as VARS has names.
struct TextTable {
    std::map<std::string, std::string> data;
    std::vector<std::map<std::string, std::string>> rows;
};
TextTable readTextTable(const std::string& path);

// The picture at path, checked to be well-formed SVG.
XmlNode loadSvg(const std::string& path);

// The map a panel group states in its data-* attributes.
struct PanelMap {
    double left, top, width, height, xMin, xMax, yMin, yMax;
    explicit PanelMap(const XmlNode& g);
    double px(double x) const { return left + width * (x - xMin) / (xMax - xMin); }
    double py(double y) const { return top + height * (yMax - y) / (yMax - yMin); }
};

// Checks that each row whose x and y columns hold values (DC writes 9999
// for none) is exactly one point, found by its data-row, with those values
// where its panel's map puts them, and that there are no other points.
// Returns the points by row number (from 1) with their panels.
struct Placed {
    const XmlNode* panel;
    const XmlNode* point;
};
std::map<int, Placed> expectRowsArePoints(const TextTable& t, const XmlNode& svg,
                                          const std::string& xColumn, const std::string& yColumn);
// The panel's line y = x runs corner to corner of the range both axes share.
void expectIdentity(const XmlNode& panel);

// A scratch directory, removed when the test ends.
struct ScratchDir {
    std::string path;
    explicit ScratchDir(const std::string& name);
    ~ScratchDir();
};
