// Hand-written SVG: the document frame, escaped text and the few shapes the
// plots are made of. Everything is printed straight to an open stream.
#pragma once

#include <cstdio>

// Starts the document: XML declaration, the svg element with its size and
// view box, the style sheet, the title and a description of how points are
// placed.
void svgBegin(FILE* out, int width, int height, const char* title);
void svgEnd(FILE* out);

// Writes text as XML character data: & < > " and ' become entities, control
// characters and bytes outside ASCII become '?', so any input stays valid XML.
void svgEscaped(FILE* out, const char* text);

// A text element; anchor is "start", "middle" or "end".
void svgText(FILE* out, double x, double y, const char* cls, const char* anchor, const char* text);
// The same, turned a quarter to the left about its own position (a y-axis label).
void svgTextUp(FILE* out, double x, double y, const char* cls, const char* text);
void svgLine(FILE* out, double x1, double y1, double x2, double y2, const char* cls);
void svgRect(FILE* out, double x, double y, double width, double height, const char* cls);
// A small filled disc for legends (not a data point).
void svgSwatch(FILE* out, double x, double y, const char* fill);

// One of a fixed set of colours that stay apart for colour-blind readers;
// the set repeats after its last entry.
const char* plotColour(int index);

// Opens the output file; null after "dcplot Error: cannot write PATH." when it
// cannot be made.
FILE* svgOpen(const char* path);
// Closes it; 0, or 1 after the same message when anything failed to be written.
int svgClose(FILE* out, const char* path);
