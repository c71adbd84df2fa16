#include "histogram_plot.hpp"

#include "drawing.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace tool {

namespace {

constexpr double kHistogramWidth = 960, kHistogramLeft = 80, kHistogramHeight = 260, kRow = 20, kCharacter = 7.2,
                 kBold = 8.2;  // at 12.5 units of font size

struct Mark {
    double x = 0;  // grey level
    std::string label;
    bool chosen = false;
    double at = 0;  // across the drawing
    int row = 0;    // above the plot, 0 the lowest
    double Width() const { return static_cast<double>(label.size()) * (chosen ? kBold : kCharacter) + 10; }
};

std::string Level(double value) { return Rounded(value, value == std::floor(value) ? 0 : 1); }

std::vector<Mark> Marks(const Json& measurement, double low, double high) {
    std::vector<Mark> marks;
    const auto add = [&](double x, const std::string& label, bool chosen) {
        if (x >= low && x <= high) marks.push_back({x, label + " " + Level(x), chosen, 0, 0});
    };
    for (const Json& entry : measurement["thresholds"]) {
        const std::string label = entry["label"];
        const bool chosen = entry["chosen"];
        add(NumberAt(entry, "threshold"), label, chosen);
        add(NumberAt(entry, "left"), label + " left", chosen);
        add(NumberAt(entry, "right"), label + " right", chosen);
    }
    if (measurement["phase"]["method"] == "levels") {
        const Json& luminance = measurement["luminance"];
        const double lower = NumberAt(measurement, "phase.lower"), upper = NumberAt(measurement, "phase.upper");
        if (lower > NumberAt(luminance, "lower")) add(lower, "from", true);
        if (upper < NumberAt(luminance, "upper")) add(upper, "to", true);
    }
    std::stable_sort(marks.begin(), marks.end(), [](const Mark& a, const Mark& b) { return a.x < b.x; });
    return marks;
}

// Places the labels, each to the right of its line. No line may cross the label of another, so a label that reaches
// over the next lines is placed above theirs: rows descend from left to right. Returns how far the last label sticks
// out.
double Arrange(std::vector<Mark>& marks, double low, double high, double width) {
    double over = 0;
    for (size_t i = marks.size(); i-- > 0;) {
        Mark& mark = marks[i];
        mark.at = kHistogramLeft + (mark.x - low) / (high - low) * width;
        mark.row = 0;
        for (size_t k = i + 1; k < marks.size() && marks[k].at < mark.at + mark.Width(); ++k)
            mark.row = std::max(mark.row, marks[k].row + 1);
        over = std::max(over, mark.at + mark.Width() - kHistogramWidth);
    }
    return over;
}

}  // namespace

std::string HistogramPlot(const Json& measurement) {
    const Json& histogram = measurement["histogram"];
    auto counts = histogram["counts"].get<std::vector<double>>();
    if (counts.empty()) counts.push_back(0);
    const double first = histogram["firstBin"], step = histogram["binWidth"];
    double low = first - step / 2, high = low + step * static_cast<double>(counts.size());
    if (!(high > low)) high = low + 1;

    std::vector<Mark> marks = Marks(measurement, low, high);
    double width = kHistogramWidth - kHistogramLeft - 20;
    for (double over = Arrange(marks, low, high, width); over > 0.5; over = Arrange(marks, low, high, width))
        width -= over;
    int rows = 0;
    for (const Mark& mark : marks) rows = std::max(rows, mark.row + 1);
    const double top = 14 + rows * kRow, bottom = top + kHistogramHeight, right = kHistogramLeft + width;
    const auto across = [&](double grey) {
        return kHistogramLeft + std::clamp((grey - low) / (high - low), 0.0, 1.0) * width;
    };

    // One column per unit of the drawing is enough. Neighbouring bins share one, which shows their largest count.
    const size_t columns = std::min(counts.size(), static_cast<size_t>(width));
    std::vector<double> heights(columns, 0);
    for (size_t i = 0; i < counts.size(); ++i) {
        double& height = heights[i * columns / counts.size()];
        height = std::max(height, counts[i]);
    }
    std::vector<double> sorted = heights;
    std::sort(sorted.begin(), sorted.end());
    const double peak = sorted.back(), second = sorted.size() > 1 ? sorted[sorted.size() - 2] : peak;
    const bool cut = second > 0 && peak > 2.5 * second;
    const double full = std::max(cut ? 1.25 * second : 1.04 * peak, 1.0);
    const auto up = [&](double count) { return bottom - std::min(count / full, 1.0) * kHistogramHeight; };
    const auto upLogarithmic = [&](double count) {
        return bottom - (count > 0 ? std::log(count + 1) / std::log(peak + 1) : 0.0) * kHistogramHeight;
    };
    const auto column = [&](size_t i) {
        return Coordinate(kHistogramLeft + width * static_cast<double>(i) / static_cast<double>(columns));
    };
    const auto outline = [&](const auto& height) {
        std::string path = "M" + Coordinate(kHistogramLeft) + " " + Coordinate(bottom);
        for (size_t i = 0; i < columns; ++i) path += "V" + Coordinate(height(heights[i])) + "H" + column(i + 1);
        return path + "V" + Coordinate(bottom) + "Z";
    };

    std::string svg = "<svg class='histogram' viewBox='0 0 " + Coordinate(kHistogramWidth) + " " +
                      Coordinate(bottom + 46) + "' role='img' aria-label='Histogram with thresholds'>\n";

    // The side of the phase: the part of the plot between its levels.
    const double lower = NumberAt(measurement, "phase.lower"), upper = NumberAt(measurement, "phase.upper");
    const bool whole = measurement["type"] != "float";
    const double phaseLeft = across(std::isnan(lower) ? low : whole ? lower - 0.5 : lower);
    const double phaseRight = across(std::isnan(upper) ? high : whole ? upper + 0.5 : upper);
    const bool phase = !measurement["phase"]["pixels"].is_null() && phaseRight > phaseLeft;
    if (phase) {
        svg += "<rect x='" + Coordinate(phaseLeft) + "' y='" + Coordinate(top) + "' width='" +
               Coordinate(phaseRight - phaseLeft) + "' height='" + Coordinate(kHistogramHeight) +
               "' fill='var(--phase)' opacity='0.13'/>\n";
        svg += "<clipPath id='phase'><rect x='" + Coordinate(phaseLeft) + "' y='0' width='" +
               Coordinate(phaseRight - phaseLeft) + "' height='" + Coordinate(bottom) + "'/></clipPath>\n";
    }

    const double yStep = std::max(TickStep(full, 4), 1.0);
    for (double tick = 0; tick <= full; tick += yStep) {
        svg += Line(kHistogramLeft, up(tick), right, up(tick), "stroke='var(--grid)'");
        svg += Label(kHistogramLeft - 8, up(tick) + 4, "text-anchor='end' class='tick'", Rounded(tick, 0));
    }
    const std::string linear = outline(up);
    svg += "<path d='" + outline(upLogarithmic) + "' fill='var(--fill)' opacity='0.22'/>\n";
    svg += "<path d='" + linear + "' fill='var(--fill)'/>\n";
    if (phase) svg += "<path d='" + linear + "' fill='var(--phase)' clip-path='url(#phase)'/>\n";
    if (cut) {
        const size_t at = static_cast<size_t>(std::max_element(heights.begin(), heights.end()) - heights.begin());
        const double x = kHistogramLeft + width * (static_cast<double>(at) + 0.5) / static_cast<double>(columns);
        const bool leftward = x > kHistogramLeft + width / 2;
        svg += Label(x + (leftward ? -8 : 8), top + 14, leftward ? "text-anchor='end' class='tick'" : "class='tick'",
                     "peak of " + Rounded(peak, 0) + " cut off");
    }

    svg += Line(kHistogramLeft, bottom, right, bottom, "stroke='var(--muted)'");
    const double xStep = TickStep(high - low, 8);
    const int digits = TickDigits(xStep);
    for (double k = std::ceil(low / xStep); k * xStep <= high; k += 1) {
        const double tick = k * xStep;
        svg += Line(across(tick), bottom, across(tick), bottom + 5, "stroke='var(--muted)'");
        svg += Label(across(tick), bottom + 20, "text-anchor='middle' class='tick'", Rounded(tick, digits));
    }
    svg += Label(kHistogramLeft + width / 2, bottom + 40, "text-anchor='middle' class='axis'", "grey level");
    svg += "<text transform='translate(13 " + Coordinate((top + bottom) / 2) +
           ") rotate(-90)' text-anchor='middle' class='axis'>pixels</text>\n";

    for (const Mark& mark : marks) {
        const double y = top - 6 - mark.row * kRow;
        const std::string colour = mark.chosen ? "var(--accent)" : "var(--ink)";
        svg += Line(
            mark.at, y - 11, mark.at, bottom,
            "stroke='" + colour + (mark.chosen ? "' stroke-width='2.2'" : "' stroke-width='1' stroke-dasharray='4 3'"));
        svg += Label(mark.at + 5, y, mark.chosen ? "class='mark chosen'" : "class='mark'", mark.label);
    }
    return svg + "</svg>\n";
}

}  // namespace tool
