#include "tools/dcplot/svg.h"

namespace {

// Okabe-Ito hues (yellow left out: it vanishes on white), then two darker ones.
const char* const kColours[] = {"#0072B2", "#D55E00", "#009E73", "#CC79A7",
                                "#E69F00", "#56B4E9", "#882255", "#666666"};

const char* const kStyle =
    "  text{font-family:Helvetica,Arial,sans-serif;fill:#222}\n"
    "  .title{font-size:18px;font-weight:bold}\n"
    "  .stats{font-size:14px}\n"
    "  .note{font-size:12px;fill:#666}\n"
    "  .panel-title{font-size:14px;font-weight:bold}\n"
    "  .label{font-size:13px}\n"
    "  .tick-label{font-size:11px}\n"
    "  .legend{font-size:12px}\n"
    "  .frame{fill:none;stroke:#333;stroke-width:1}\n"
    "  .grid{stroke:#e4e4e4;stroke-width:1}\n"
    "  .tick{stroke:#333;stroke-width:1}\n"
    "  .identity{stroke:#999;stroke-width:1.2;stroke-dasharray:6 4}\n"
    "  .series{fill:none;stroke-width:1.5}\n"
    "  .point{stroke:#fff;stroke-width:0.6;fill-opacity:0.85}\n"
    "  .best{stroke:#000;stroke-width:2;fill-opacity:1}\n";

}  // namespace

const char* plotColour(int index) {
    constexpr int count = sizeof kColours / sizeof kColours[0];
    if (index < 0) index = 0;
    return kColours[index % count];
}

void svgEscaped(FILE* out, const char* text) {
    for (const unsigned char* p = reinterpret_cast<const unsigned char*>(text); p && *p; p++) {
        switch (*p) {
            case '&': std::fputs("&amp;", out); break;
            case '<': std::fputs("&lt;", out); break;
            case '>': std::fputs("&gt;", out); break;
            case '"': std::fputs("&quot;", out); break;
            case '\'': std::fputs("&apos;", out); break;
            default: std::fputc(*p < 0x20 || *p > 0x7e ? '?' : *p, out); break;
        }
    }
}

void svgBegin(FILE* out, int width, int height, const char* title) {
    std::fprintf(out, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
    std::fprintf(out,
                 "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%d\" height=\"%d\" "
                 "viewBox=\"0 0 %d %d\">\n",
                 width, height, width, height);
    std::fprintf(out, "<style>\n%s</style>\n<title>", kStyle);
    svgEscaped(out, title);
    std::fprintf(out, "</title>\n");
    std::fprintf(out,
                 "<desc>Each data row is one element of class point, its values in data-x and "
                 "data-y. In the panel group around it, cx = data-left + data-width * (x - "
                 "data-x-min) / (data-x-max - data-x-min) and cy = data-top + data-height * "
                 "(data-y-max - y) / (data-y-max - data-y-min).</desc>\n");
    std::fprintf(out, "<rect x=\"0\" y=\"0\" width=\"%d\" height=\"%d\" fill=\"#fff\"/>\n", width,
                 height);
}

void svgEnd(FILE* out) { std::fprintf(out, "</svg>\n"); }

void svgText(FILE* out, double x, double y, const char* cls, const char* anchor, const char* text) {
    std::fprintf(out, "<text class=\"%s\" x=\"%.2f\" y=\"%.2f\" text-anchor=\"%s\">", cls, x, y,
                 anchor);
    svgEscaped(out, text);
    std::fprintf(out, "</text>\n");
}

void svgTextUp(FILE* out, double x, double y, const char* cls, const char* text) {
    std::fprintf(out,
                 "<text class=\"%s\" x=\"%.2f\" y=\"%.2f\" text-anchor=\"middle\" "
                 "transform=\"rotate(-90 %.2f %.2f)\">",
                 cls, x, y, x, y);
    svgEscaped(out, text);
    std::fprintf(out, "</text>\n");
}

void svgLine(FILE* out, double x1, double y1, double x2, double y2, const char* cls) {
    std::fprintf(out, "<line class=\"%s\" x1=\"%.2f\" y1=\"%.2f\" x2=\"%.2f\" y2=\"%.2f\"/>\n", cls,
                 x1, y1, x2, y2);
}

void svgRect(FILE* out, double x, double y, double width, double height, const char* cls) {
    std::fprintf(out, "<rect class=\"%s\" x=\"%.2f\" y=\"%.2f\" width=\"%.2f\" height=\"%.2f\"/>\n",
                 cls, x, y, width, height);
}

void svgSwatch(FILE* out, double x, double y, const char* fill) {
    std::fprintf(out, "<circle class=\"swatch\" cx=\"%.2f\" cy=\"%.2f\" r=\"5\" fill=\"%s\"/>\n", x,
                 y, fill);
}

FILE* svgOpen(const char* path) {
    FILE* out = std::fopen(path, "w");
    if (!out) std::fprintf(stderr, "dcplot Error: cannot write %s.\n", path);
    return out;
}

int svgClose(FILE* out, const char* path) {
    bool failed = std::ferror(out) != 0;
    if (std::fclose(out) != 0) failed = true;
    if (!failed) return 0;
    std::fprintf(stderr, "dcplot Error: cannot write %s.\n", path);
    return 1;
}
