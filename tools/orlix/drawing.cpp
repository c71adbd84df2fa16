#include "drawing.hpp"

#include "document.hpp"

#include <cmath>

namespace tool {

double TickStep(double range, double wanted) {
    double step = 1;
    while (step * 10 <= range / wanted) step *= 10;
    while (step > range / wanted && step > 1e-12) step /= 10;
    for (const double factor : {5.0, 2.0})
        if (step * factor <= range / wanted) return step * factor;
    return step;
}

std::string Coordinate(double value) { return Rounded(value, 1); }

std::string Line(double x1, double y1, double x2, double y2, const std::string& style) {
    return "<line x1='" + Coordinate(x1) + "' y1='" + Coordinate(y1) + "' x2='" + Coordinate(x2) + "' y2='" +
           Coordinate(y2) + "' " + style + "/>\n";
}

std::string Label(double x, double y, const std::string& style, const std::string& text) {
    return "<text x='" + Coordinate(x) + "' y='" + Coordinate(y) + "' " + style + ">" + Escaped(text) + "</text>\n";
}

int TickDigits(double step) { return step >= 1 ? 0 : static_cast<int>(std::ceil(-std::log10(step))); }

}  // namespace tool
