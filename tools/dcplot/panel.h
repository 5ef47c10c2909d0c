// Plot panels: a rectangle on the page with a linear map from data to page
// coordinates, framed by axes with ticks, grid lines and labels.
//
// The map of a panel (left, top, width, height; x from x.lo to x.hi, y from
// y.lo to y.hi) is
//     px = left + width * (x - x.lo) / (x.hi - x.lo)
//     py = top + height * (y.hi - y) / (y.hi - y.lo)
// so y grows upwards. Each panel group carries these numbers as data-left,
// data-top, data-width, data-height, data-x-min, data-x-max, data-y-min and
// data-y-max, printed exactly as the map uses them.
#pragma once

#include <cstdio>

// An axis range with ticks at the whole multiples of step inside it.
struct Axis {
    double lo, hi, step;
};

// Limits that hold min..max with a little room, rounded out to steps of 1, 2
// or 5 times a power of ten, about five of them, and no shorter than minStep
// (1 for residue numbers). Equal limits are widened; min > max (nothing to
// show) gives 0..1.
Axis niceAxis(double min, double max, double minStep = 0.0);
// The same ticks, but limits only a fifth of a step (or minStep) beyond the
// values, for an axis where room matters more than round ends.
Axis snugAxis(double min, double max, double minStep = 0.0);

struct Panel {
    double left, top, width, height;
    Axis x, y;
};

double panelX(const Panel& p, double x);
double panelY(const Panel& p, double y);

// Opens the panel group; keyName and keyValue, when given, add one more
// attribute naming what the panel shows (data-kind="CA").
void beginPanel(FILE* out, const Panel& p, const char* keyName, const char* keyValue);
void endPanel(FILE* out);
// Grid, frame, ticks with their labels, and the two axis labels.
void drawAxes(FILE* out, const Panel& p, const char* xLabel, const char* yLabel);
// The line y = x across the part of the panel where both axes overlap.
void drawIdentity(FILE* out, const Panel& p);

// One data point: an element of class cls (which starts with "point") with
// the row's values in data-x and data-y, its 1-based table row in data-row,
// an optional extra attribute and a tooltip.
struct PointMark {
    double x, y;
    int row;
    double radius;
    const char* cls;
    const char* fill;
    const char* keyName;   // null for none
    const char* keyValue;  // escaped when written
    const char* tip;       // null for none
};
void drawPoint(FILE* out, const Panel& p, const PointMark& m);

// Whether a value can be placed on a page at all: finite and not absurdly large.
bool isPlottable(double value);
