#include "tools/dcplot/panel.h"

#include <cmath>
#include <cstdlib>

#include "tools/dcplot/svg.h"

namespace {

constexpr double kTickLength = 5.0;
constexpr double kLimit = 1e12;

// The value as the page prints it ("%.10g"), so that the limits written into
// the SVG and the ones the map uses are the same numbers.
double printed(double value) {
    char text[64];
    std::snprintf(text, sizeof text, "%.10g", value);
    return std::strtod(text, nullptr);
}

// 1, 2 or 5 times a power of ten, near range / 5.
double niceStep(double range) {
    double raw = range / 5.0;
    double magnitude = std::pow(10.0, std::floor(std::log10(raw)));
    double fraction = raw / magnitude;
    double factor = fraction < 1.5 ? 1.0 : fraction < 3.0 ? 2.0 : fraction < 7.0 ? 5.0 : 10.0;
    return factor * magnitude;
}

// Digits after the point that show every tick of the step apart.
int tickDecimals(double step) {
    int decimals = static_cast<int>(std::ceil(-std::log10(step) - 1e-9));
    return decimals < 0 ? 0 : decimals > 12 ? 12 : decimals;
}

// The ticks are the whole multiples of the step from lo to hi.
long firstTick(const Axis& a) { return std::lround(std::ceil(a.lo / a.step - 1e-9)); }
long lastTick(const Axis& a) { return std::lround(std::floor(a.hi / a.step + 1e-9)); }

// Whether a tick lies on the frame, where no grid line is needed.
bool onFrame(const Axis& a, double value) {
    return std::fabs(value - a.lo) < 1e-9 * a.step || std::fabs(value - a.hi) < 1e-9 * a.step;
}

void tickLabel(char* text, int size, double value, double step) {
    if (std::fabs(value) < step * 1e-6) value = 0.0;
    std::snprintf(text, size, "%.*f", tickDecimals(step), value);
}

void drawXTicks(FILE* out, const Panel& p) {
    double bottom = p.top + p.height;
    for (long k = firstTick(p.x), last = lastTick(p.x); k <= last; k++) {
        double value = k * p.x.step;
        double px = panelX(p, value);
        if (!onFrame(p.x, value)) svgLine(out, px, p.top, px, bottom, "grid");
        svgLine(out, px, bottom, px, bottom + kTickLength, "tick");
        char text[64];
        tickLabel(text, sizeof text, value, p.x.step);
        svgText(out, px, bottom + kTickLength + 13, "tick-label", "middle", text);
    }
}

void drawYTicks(FILE* out, const Panel& p) {
    double right = p.left + p.width;
    for (long k = firstTick(p.y), last = lastTick(p.y); k <= last; k++) {
        double value = k * p.y.step;
        double py = panelY(p, value);
        if (!onFrame(p.y, value)) svgLine(out, p.left, py, right, py, "grid");
        svgLine(out, p.left - kTickLength, py, p.left, py, "tick");
        char text[64];
        tickLabel(text, sizeof text, value, p.y.step);
        svgText(out, p.left - kTickLength - 3, py + 4, "tick-label", "end", text);
    }
}

}  // namespace

bool isPlottable(double value) { return std::isfinite(value) && std::fabs(value) < kLimit; }

Axis snugAxis(double min, double max, double minStep) {
    Axis a = niceAxis(min, max, minStep);
    double grain = std::fmax(a.step / 5.0, minStep);
    double room = 0.02 * (a.hi - a.lo);
    a.lo = printed(std::floor((min - room) / grain) * grain);
    a.hi = printed(std::ceil((max + room) / grain) * grain);
    return a;
}

Axis niceAxis(double min, double max, double minStep) {
    if (!(min <= max)) return Axis{0.0, 1.0, 0.2};
    double middle = 0.5 * (min + max);
    double range = max - min;
    if (range <= 1e-9 * std::fmax(1.0, std::fabs(middle))) {
        double half = std::fabs(middle) >= 1e-5 ? 0.1 * std::fabs(middle) : 1.0;
        min = middle - half;
        max = middle + half;
        range = max - min;
    }
    min -= 0.03 * range;
    max += 0.03 * range;
    double step = printed(std::fmax(niceStep(max - min), minStep));
    return Axis{printed(std::floor(min / step) * step), printed(std::ceil(max / step) * step),
                step};
}

double panelX(const Panel& p, double x) {
    return p.left + p.width * (x - p.x.lo) / (p.x.hi - p.x.lo);
}

double panelY(const Panel& p, double y) {
    return p.top + p.height * (p.y.hi - y) / (p.y.hi - p.y.lo);
}

void beginPanel(FILE* out, const Panel& p, const char* keyName, const char* keyValue) {
    std::fprintf(out,
                 "<g class=\"panel\" data-left=\"%.10g\" data-top=\"%.10g\" data-width=\"%.10g\" "
                 "data-height=\"%.10g\" data-x-min=\"%.10g\" data-x-max=\"%.10g\" "
                 "data-y-min=\"%.10g\" data-y-max=\"%.10g\"",
                 p.left, p.top, p.width, p.height, p.x.lo, p.x.hi, p.y.lo, p.y.hi);
    if (keyName) {
        std::fprintf(out, " %s=\"", keyName);
        svgEscaped(out, keyValue);
        std::fputc('"', out);
    }
    std::fprintf(out, ">\n");
}

void endPanel(FILE* out) { std::fprintf(out, "</g>\n"); }

void drawAxes(FILE* out, const Panel& p, const char* xLabel, const char* yLabel) {
    drawXTicks(out, p);
    drawYTicks(out, p);
    svgRect(out, p.left, p.top, p.width, p.height, "frame");
    svgText(out, p.left + 0.5 * p.width, p.top + p.height + 40, "label", "middle", xLabel);
    svgTextUp(out, p.left - 48, p.top + 0.5 * p.height, "label", yLabel);
}

void drawIdentity(FILE* out, const Panel& p) {
    double lo = std::fmax(p.x.lo, p.y.lo), hi = std::fmin(p.x.hi, p.y.hi);
    if (!(lo < hi)) return;
    svgLine(out, panelX(p, lo), panelY(p, lo), panelX(p, hi), panelY(p, hi), "identity");
}

void drawPoint(FILE* out, const Panel& p, const PointMark& m) {
    std::fprintf(out,
                 "<circle class=\"%s\" cx=\"%.2f\" cy=\"%.2f\" r=\"%.1f\" fill=\"%s\" "
                 "data-x=\"%.7g\" data-y=\"%.7g\" data-row=\"%d\"",
                 m.cls, panelX(p, m.x), panelY(p, m.y), m.radius, m.fill, m.x, m.y, m.row);
    if (m.keyName) {
        std::fprintf(out, " %s=\"", m.keyName);
        svgEscaped(out, m.keyValue);
        std::fputc('"', out);
    }
    if (!m.tip) {
        std::fprintf(out, "/>\n");
        return;
    }
    std::fprintf(out, "><title>");
    svgEscaped(out, m.tip);
    std::fprintf(out, "</title></circle>\n");
}
