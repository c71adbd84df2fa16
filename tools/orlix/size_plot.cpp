#include "size_plot.hpp"

#include "drawing.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tool {

namespace {

// The axis of the diameters.
class SizeAxis {
public:
    static constexpr double kFrom = 64, kTo = 896;  // across the drawing

    SizeAxis(double smallest, double largest) : logarithmic_(smallest > 0 && largest > 30 * smallest) {
        low_ = logarithmic_ ? std::log10(smallest) : 0;
        high_ = logarithmic_ ? std::log10(largest) : largest;
        if (!(high_ > low_)) high_ = low_ + 1;
        const double margin = logarithmic_ ? 0.02 * (high_ - low_) : 0;
        low_ -= margin;
        high_ += margin + (logarithmic_ ? 0 : 0.02 * high_);
    }
    bool logarithmic() const { return logarithmic_; }
    double Share(double size) const {  // 0 at the left end, 1 at the right one
        return ((logarithmic_ ? std::log10(size) : size) - low_) / (high_ - low_);
    }
    double Across(double size) const { return kFrom + (kTo - kFrom) * std::clamp(Share(size), 0.0, 1.0); }
    std::vector<double> Ticks() const {
        std::vector<double> ticks;
        if (!logarithmic_) {
            const double step = TickStep(high_, 8);
            for (double k = 0; k * step <= high_; ++k) ticks.push_back(k * step);
            return ticks;
        }
        for (double power = std::floor(low_); power <= high_; ++power)
            for (const double factor : {1.0, 2.0, 5.0})
                if (const double size = factor * std::pow(10, power); Share(size) >= 0 && Share(size) <= 1)
                    ticks.push_back(size);
        return ticks;
    }
    std::string TickText(double size) const {
        return Rounded(size, logarithmic_ ? TickDigits(std::pow(10, std::floor(std::log10(size) + 1e-9)))
                                          : TickDigits(TickStep(high_, 8)));
    }

private:
    bool logarithmic_;
    double low_ = 0, high_ = 1;
};

}  // namespace

std::string SizePlot(const std::vector<const Json*>& particles, const std::string& unit) {
    struct Sized {
        double size, number, area;
    };
    std::vector<Sized> sized;
    double numbers = 0, areas = 0;
    for (const Json* particle : particles) {
        const double size = NumberAt(*particle, "diameter"), weight = NumberAt(*particle, "weight");
        if (!(size > 0) || !(weight > 0)) continue;
        const double area = weight * NumberAt(*particle, "area");
        sized.push_back({size, weight, area});
        numbers += weight;
        areas += area;
    }
    if (sized.empty()) return {};
    std::sort(sized.begin(), sized.end(), [](const Sized& a, const Sized& b) { return a.size < b.size; });
    const SizeAxis axis(sized.front().size, sized.back().size);

    const double wanted = 2 * std::cbrt(static_cast<double>(sized.size()));  // Rice's rule
    const auto bins = static_cast<size_t>(std::clamp(std::ceil(wanted), 6.0, 40.0));
    std::vector<double> byNumber(bins, 0), byArea(bins, 0);
    for (const Sized& particle : sized) {
        const double place = axis.Share(particle.size) * static_cast<double>(bins);
        const size_t bin = std::min(static_cast<size_t>(std::max(place, 0.0)), bins - 1);
        byNumber[bin] += particle.number / numbers;
        byArea[bin] += particle.area / areas;
    }
    const double most = std::max(std::ranges::max(byNumber), std::ranges::max(byArea));

    constexpr double kTop = 14, kBottom = 284, kLeft = SizeAxis::kFrom, kRight = SizeAxis::kTo;
    const double full = 1.06 * most;
    const auto up = [&](double share) { return kBottom - (kBottom - kTop) * share / full; };
    const auto upCumulative = [&](double share) { return kBottom - (kBottom - kTop) * share; };
    std::string svg = "<svg class='histogram sizes' viewBox='0 0 960 330' role='img' aria-label='Size distribution'>\n";
    const double step = TickStep(100 * full, 5);
    for (double k = 0; k * step <= 100 * full; ++k) {
        const double y = up(k * step / 100);
        svg += Line(kLeft, y, kRight, y, "stroke='var(--grid)'");
        svg += Label(kLeft - 8, y + 4, "text-anchor='end' class='tick'", Rounded(k * step, TickDigits(step)));
    }
    for (const double share : {0.0, 0.1, 0.5, 0.9, 1.0})
        svg += Label(kRight + 8, upCumulative(share) + 4, "class='tick'", Rounded(100 * share, 0));
    for (const double share : {0.1, 0.5, 0.9})
        svg += Line(kLeft, upCumulative(share), kRight, upCumulative(share),
                    "stroke='var(--muted)' stroke-dasharray='2 5'");

    const double width = (kRight - kLeft) / static_cast<double>(bins), bar = 0.42 * width;
    const auto rectangle = [&](double x, double share, const char* colour) {
        if (share > 0)
            svg += "<rect x='" + Coordinate(x) + "' y='" + Coordinate(up(share)) + "' width='" + Coordinate(bar) +
                   "' height='" + Coordinate(kBottom - up(share)) + "' fill='" + colour + "' opacity='0.55'/>\n";
    };
    for (size_t i = 0; i < bins; ++i) {
        const double x = kLeft + width * (static_cast<double>(i) + 0.5);
        rectangle(x - bar, byNumber[i], "var(--fill)");
        rectangle(x, byArea[i], "var(--phase)");
    }

    // Each particle stands in the middle of its own share, as for d10, d50 and d90.
    const auto curve = [&](double Sized::*weight, double total, const char* colour) {
        std::string path;
        double before = 0, lastX = -1;
        for (size_t i = 0; i < sized.size(); ++i) {
            const double own = sized[i].*weight, x = axis.Across(sized[i].size);
            const double y = upCumulative((before + own / 2) / total);
            before += own;
            if (x - lastX < 0.5 && i + 1 < sized.size()) continue;  // as fine as the drawing
            path += (path.empty() ? "M" : "L") + Coordinate(x) + " " + Coordinate(y);
            lastX = x;
        }
        svg += "<path d='" + path + "' fill='none' stroke='" + colour + "' stroke-width='2'/>\n";
    };
    curve(&Sized::number, numbers, "var(--ink)");
    curve(&Sized::area, areas, "var(--accent)");

    svg += Line(kLeft, kBottom, kRight, kBottom, "stroke='var(--muted)'");
    for (const double tick : axis.Ticks()) {
        svg += Line(axis.Across(tick), kBottom, axis.Across(tick), kBottom + 5, "stroke='var(--muted)'");
        svg += Label(axis.Across(tick), kBottom + 20, "text-anchor='middle' class='tick'", axis.TickText(tick));
    }
    svg += Label((kLeft + kRight) / 2, kBottom + 40, "text-anchor='middle' class='axis'",
                 "diameter of the disc of the same area, " + unit);
    const std::string middle = Coordinate((kTop + kBottom) / 2);
    svg += "<text transform='translate(14 " + middle +
           ") rotate(-90)' text-anchor='middle' class='axis'>share in a bin, %</text>\n";
    svg += "<text transform='translate(950 " + middle +
           ") rotate(-90)' text-anchor='middle' class='axis'>share below, %</text>\n";
    return svg + "</svg>\n";
}

}  // namespace tool
