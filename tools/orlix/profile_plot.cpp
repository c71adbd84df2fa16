#include "profile_plot.hpp"

#include "document.hpp"
#include "drawing.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tool {

namespace {

constexpr double kProfileWidth = 960, kProfileLeft = 84, kProfileRight = kProfileWidth - 28,
                 kPlotWidth = kProfileRight - kProfileLeft;

struct Panel {
    double top, height, low, high;
    double Y(double value) const { return top + height * (high - value) / (high - low); }
};

// A panel that holds the finite values and a margin.
Panel PanelOver(double top, double height, std::initializer_list<const std::vector<double>*> sets, bool symmetric) {
    double low = std::numeric_limits<double>::infinity(), high = -low;
    for (const auto* values : sets)
        for (const double value : *values)
            if (std::isfinite(value)) {
                low = std::min(low, value);
                high = std::max(high, value);
            }
    if (low > high) low = high = 0;
    if (symmetric) {
        high = std::max(-low, high);
        low = -high;
    }
    double margin = 0.06 * (high - low);
    if (!(margin > 0)) margin = std::max(std::fabs(high) * 1e-3, 1.0);
    return {top, height, low - margin, high + margin};
}

// A line through the values, with gaps where there are none. If many values share a unit of the drawing, the line goes
// through the smallest and the largest of them.
std::string Curve(const Panel& panel, const std::vector<double>& values, const std::string& style) {
    const size_t n = values.size();
    const size_t group = std::max<size_t>(1, n / static_cast<size_t>(kPlotWidth));
    std::string path;
    bool open = false;
    const auto point = [&](size_t i, double value) {
        const double x =
            kProfileLeft + kPlotWidth * (n > 1 ? static_cast<double>(i) / static_cast<double>(n - 1) : 0.5);
        path += (open ? "L" : "M") + Coordinate(x) + " " + Coordinate(panel.Y(value));
        open = true;
    };
    for (size_t i = 0; i < n; i += group) {
        double low = std::numeric_limits<double>::infinity(), high = -low;
        for (size_t k = i; k < std::min(i + group, n); ++k)
            if (std::isfinite(values[k])) {
                low = std::min(low, values[k]);
                high = std::max(high, values[k]);
            }
        if (low > high) {
            open = false;
            continue;
        }
        point(i, low);
        if (high > low) point(i, high);
    }
    return "<path d='" + path + "' fill='none' stroke-linejoin='round' stroke-linecap='round' " + style + "/>\n";
}

std::string Frame(const Panel& panel, const std::string& name, double ticks) {
    std::string svg;
    const double step = TickStep(panel.high - panel.low, ticks), right = kProfileRight,
                 bottom = panel.top + panel.height;
    for (double k = std::ceil(panel.low / step); k * step <= panel.high; ++k) {
        const double y = panel.Y(k * step);
        svg += Line(kProfileLeft, y, right, y,
                    k == 0 ? "stroke='var(--muted)' stroke-opacity='0.7'" : "stroke='var(--grid)'");
        svg += Label(kProfileLeft - 8, y + 4, "text-anchor='end' class='tick'", Rounded(k * step, TickDigits(step)));
    }
    svg += Line(kProfileLeft, panel.top, kProfileLeft, bottom, "stroke='var(--muted)'");
    svg += Line(kProfileLeft, bottom, right, bottom, "stroke='var(--muted)'");
    svg += "<text transform='translate(13 " + Coordinate(panel.top + panel.height / 2) +
           ") rotate(-90)' text-anchor='middle' class='axis'>" + Escaped(name) + "</text>\n";
    return svg;
}

}  // namespace

std::string ProfilePlot(const Profile& profile) {
    const bool any =
        std::any_of(profile.residuals.begin(), profile.residuals.end(), [](double v) { return std::isfinite(v); });
    if (!any) return "<p class='sub'>No pixel of the region lies on this line.</p>\n";
    const Panel upper = PanelOver(30, 190, {&profile.values, &profile.surface}, false);
    const Panel lower = PanelOver(252, 130, {&profile.residuals}, true);
    const double bottom = lower.top + lower.height;

    std::string svg = "<svg class='profile' viewBox='0 0 " + Coordinate(kProfileWidth) + " " + Coordinate(bottom + 46) +
                      "' role='img' aria-label='Profile'>\n";
    const auto key = [&](double x, const std::string& style, const std::string& text) {
        svg += Line(x, 14, x + 24, 14, style) + Label(x + 31, 18, "class='tick'", text);
    };
    const std::string values = "stroke='var(--fill)' stroke-width='1.2'",
                      surface = "stroke='var(--accent)' stroke-width='2'";
    key(kProfileLeft, values, "image");
    key(kProfileLeft + 110, surface, "fitted surface");

    const size_t n = profile.values.size();
    const double length = static_cast<double>(n > 1 ? n - 1 : 1) * profile.step, step = TickStep(length, 9);
    for (double k = 0; k * step <= length * (1 + 1e-9); ++k) {
        const double x = kProfileLeft + kPlotWidth * k * step / length;
        for (const Panel& panel : {upper, lower}) {
            const double end = panel.top + panel.height;
            svg +=
                Line(x, panel.top, x, end, "stroke='var(--grid)'") + Line(x, end, x, end + 5, "stroke='var(--muted)'");
        }
        svg += Label(x, bottom + 20, "text-anchor='middle' class='tick'", Rounded(k * step, TickDigits(step)));
    }
    svg += Frame(upper, profile.level, 5) + Frame(lower, profile.residual, 4);
    svg += Curve(upper, profile.values, values) + Curve(upper, profile.surface, surface);
    svg += Curve(lower, profile.residuals, values);
    svg += Label(kProfileLeft + kPlotWidth / 2, bottom + 40, "text-anchor='middle' class='axis'", profile.axis);
    return svg + "</svg>\n";
}

}  // namespace tool
