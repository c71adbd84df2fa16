#include "residual_map.hpp"

#include "drawing.hpp"
#include "units.hpp"

#include <algorithm>
#include <array>
#include <cmath>

namespace tool {

namespace {

using MapColour = std::array<double, 3>;
// From the lower end to the upper one in equal steps. Lightness falls equally from the middle to both ends.
constexpr MapColour kColours[] = {{18, 44, 110},   {43, 105, 184},  {125, 178, 222}, {200, 222, 238}, {247, 247, 245},
                                  {250, 214, 190}, {236, 146, 106}, {196, 62, 50},   {112, 12, 34}};
constexpr double kSteps = std::size(kColours) - 1;
constexpr MapColour kNone = {150, 150, 150};

MapColour ColourOf(double residual, double limit) {
    if (std::isnan(residual)) return kNone;
    const double at = (std::clamp(residual / limit, -1.0, 1.0) + 1) / 2 * kSteps;
    const auto lower = static_cast<size_t>(std::min(std::floor(at), kSteps - 1));
    const double share = at - static_cast<double>(lower);
    MapColour colour;
    for (size_t i = 0; i < 3; ++i) colour[i] = kColours[lower][i] * (1 - share) + kColours[lower + 1][i] * share;
    return colour;
}

std::string Css(const MapColour& colour) {
    return "rgb(" + Rounded(colour[0], 0) + "," + Rounded(colour[1], 0) + "," + Rounded(colour[2], 0) + ")";
}

}  // namespace

double ResidualLimit(const std::vector<float>& residual, double unit) {
    std::vector<float> sizes;
    for (const float value : residual)
        if (std::isfinite(value)) sizes.push_back(std::fabs(value));
    if (sizes.empty()) return 1 / unit;
    const auto at = sizes.begin() + static_cast<std::ptrdiff_t>(sizes.size() - 1 - sizes.size() / 200);
    std::nth_element(sizes.begin(), at, sizes.end());
    const double wanted = *at * unit;
    if (!(wanted > 0)) return 1 / unit;
    double power = 1;
    while (power > wanted) power /= 10;
    while (power * 10 <= wanted) power *= 10;
    for (const double factor : {1.0, 1.2, 1.5, 2.0, 2.5, 3.0, 4.0, 5.0, 6.0, 8.0})
        if (factor * power >= wanted) return factor * power / unit;
    return 10 * power / unit;
}

Picture ResidualPicture(const std::vector<float>& residual, int32_t width, int32_t height, double limit) {
    const int32_t factor = (std::max(width, height) + kLargestInReport - 1) / kLargestInReport;
    Picture picture = {(width + factor - 1) / factor, (height + factor - 1) / factor, 3, {}};
    for (int32_t y = 0; y < picture.height; ++y)
        for (int32_t x = 0; x < picture.width; ++x) {
            double sum = 0, count = 0;
            for (int32_t v = y * factor; v < std::min((y + 1) * factor, height); ++v)
                for (int32_t u = x * factor; u < std::min((x + 1) * factor, width); ++u) {
                    const double value =
                        residual[static_cast<size_t>(v) * static_cast<size_t>(width) + static_cast<size_t>(u)];
                    if (std::isnan(value)) continue;
                    sum += value;
                    ++count;
                }
            for (const double channel : ColourOf(sum / count, limit))  // NaN, so grey, without values
                picture.samples.push_back(static_cast<uint8_t>(std::lround(channel)));
        }
    return picture;
}

std::string ResidualMap(const Json& document, const std::string& pictureUri, double limit, int32_t row,
                        int32_t column) {
    constexpr double kLeft = 84, kTop = 14, kMostWide = 720, kMostHigh = 620, kBarGap = 28, kBar = 20, kScaleText = 84;
    const double columns = NumberAt(document, "width"), rows = NumberAt(document, "height");
    const double scale = std::min(kMostWide / columns, kMostHigh / rows);
    const double width = std::max(columns * scale, 1.0), height = std::max(rows * scale, 1.0);
    const double right = kLeft + width, bottom = kTop + height;
    const double barHeight = std::max(height, 160.0), barLeft = right + kBarGap;
    const double total = barLeft + kBar + kScaleText, whole = kTop + std::max(height, barHeight) + 48;

    std::string svg =
        "<svg class='map' viewBox='0 0 " + Coordinate(total) + " " + Coordinate(whole) +
        "' style='max-width:" + Coordinate(total) +
        "px' role='img' aria-label='Residuals in colour'>\n<defs><linearGradient id='scale' x1='0' y1='1' "
        "x2='0' y2='0'>";
    for (size_t i = 0; i < std::size(kColours); ++i)
        svg += "<stop offset='" + Number(static_cast<double>(i) / kSteps) + "' stop-color='" + Css(kColours[i]) + "'/>";
    svg += "</linearGradient></defs>\n";
    svg += "<image x='" + Coordinate(kLeft) + "' y='" + Coordinate(kTop) + "' width='" + Coordinate(width) +
           "' height='" + Coordinate(height) + "' preserveAspectRatio='none'" +
           (scale > 2 ? " style='image-rendering:pixelated'" : "") + " href='" + pictureUri + "'/>\n";
    svg += "<rect x='" + Coordinate(kLeft) + "' y='" + Coordinate(kTop) + "' width='" + Coordinate(width) +
           "' height='" + Coordinate(height) + "' fill='none' stroke='var(--muted)'/>\n";

    // Pixel i covers the range from i - 0.5 to i + 0.5.
    const auto axis = [&](double pixels, const char* member, bool across) {
        const double micron = NumberAt(document, std::string("micronsPerPixel.") + member);
        const Unit unit = micron > 0 ? LengthUnit(pixels * micron) : Unit{"pixels", 1};
        const double perPixel = unit.scale * (micron > 0 ? micron : 1),
                     step = TickStep(pixels * perPixel, across ? 8 : 6);
        for (double k = 0; k * step <= (pixels - 0.5) * perPixel; ++k) {
            const double at = (k * step / perPixel + 0.5) * scale;
            const std::string text = Rounded(k * step, TickDigits(step));
            if (across) {
                svg += Line(kLeft + at, bottom, kLeft + at, bottom + 5, "stroke='var(--muted)'");
                svg += Label(kLeft + at, bottom + 20, "text-anchor='middle' class='tick'", text);
            } else {
                svg += Line(kLeft - 5, kTop + at, kLeft, kTop + at, "stroke='var(--muted)'");
                svg += Label(kLeft - 9, kTop + at + 4, "text-anchor='end' class='tick'", text);
            }
        }
        return std::string(member) + ", " + unit.name;
    };
    svg += Label(kLeft + width / 2, bottom + 40, "text-anchor='middle' class='axis'", axis(columns, "x", true));
    const std::string vertical = axis(rows, "y", false);
    svg += "<text transform='translate(16 " + Coordinate(kTop + height / 2) +
           ") rotate(-90)' text-anchor='middle' class='axis'>" + vertical + "</text>\n";

    const char* const dashes = "stroke='#000' stroke-opacity='0.55' stroke-dasharray='7 5'";
    const double lineY = kTop + (row + 0.5) * scale, lineX = kLeft + (column + 0.5) * scale;
    svg += Line(kLeft, lineY, right, lineY, dashes) + Line(lineX, kTop, lineX, bottom, dashes);

    const Json& zScale = document["zScale"];
    const Unit unit = HeightUnit(limit, zScale.is_null() ? std::nullopt : std::optional<double>(zScale.get<double>()));
    const double end = limit * unit.scale, step = TickStep(2 * end, 8);
    svg += "<rect x='" + Coordinate(barLeft) + "' y='" + Coordinate(kTop) + "' width='" + Coordinate(kBar) +
           "' height='" + Coordinate(barHeight) + "' fill='url(#scale)' stroke='var(--muted)'/>\n";
    for (double k = std::ceil(-end / step - 1e-9); k * step <= end * (1 + 1e-9); ++k) {
        const double at = kTop + barHeight * (1 - (k * step / end + 1) / 2);
        svg += Line(barLeft + kBar, at, barLeft + kBar + 5, at, "stroke='var(--muted)'");
        svg += Label(barLeft + kBar + 9, at + 4, "class='tick'", Rounded(k * step, TickDigits(step)));
    }
    svg += "<text transform='translate(" + Coordinate(total - 10) + " " + Coordinate(kTop + barHeight / 2) +
           ") rotate(-90)' text-anchor='middle' class='axis'>residual, " + unit.name + "</text>\n";
    return svg + "</svg>\n";
}

}  // namespace tool
