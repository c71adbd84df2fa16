#include "display/view_geometry.hpp"

#include <algorithm>
#include <cmath>

#include "geometry/rounding.hpp"

namespace orlix {
namespace {

struct Interval {
    int64_t first, end;
};

// SourceRectangle along one axis.
Interval ShownInterval(int32_t length, double zoom, double center) {
    // Far enough outside to be moved to the edge, near enough for sums to keep their last digit.
    constexpr double kFar = 8589934592.0;
    const double c = std::isnan(center) ? 0.0 : std::clamp(center, -kFar, kFar);
    const double half = (length / zoom) / 2;
    auto first = static_cast<int64_t>(std::trunc(c - half + 0.5));
    auto last = static_cast<int64_t>(std::trunc(c + half + 0.5));
    if (first < 0) {
        last -= first;
        first = 0;
    }
    if (last >= length) {
        const int64_t beyond = last - length + 1;
        first -= beyond;
        last -= beyond;
    }
    return {std::max<int64_t>(first, 0), std::min<int64_t>(last, length - 1) + 1};
}

double Quotient(int64_t a, int64_t b) { return static_cast<double>(a) / static_cast<double>(b); }

// The interval after the given number of steps, each of which adds one pixel at every end that has room.
Interval Grown(const Interval& interval, int64_t length, int64_t steps) {
    return {interval.first - std::min(steps, interval.first), interval.end + std::min(steps, length - interval.end)};
}

// The interval after the last step with a size that `fits`. Sizes increase with the steps, and those that fit come
// first.
template <class Fits>
Interval GrownWhile(const Interval& interval, int64_t length, const Fits& fits) {
    int64_t good = 0, bad = std::max(interval.first, length - interval.end) + 1;
    while (bad - good > 1) {
        const int64_t steps = good + (bad - good) / 2;
        const Interval grown = Grown(interval, length, steps);
        (fits(grown.end - grown.first) ? good : bad) = steps;
    }
    return Grown(interval, length, good);
}

// Size and offset of the shorter side of a fit inside `available` pixels; both have the sign of `available`.
struct Side {
    int64_t offset, size;
};
Side ShorterSide(int64_t available, double wanted) {
    const int64_t whole = std::abs(available);
    const int64_t fitted = std::clamp<int64_t>(static_cast<int64_t>(std::trunc(wanted + 0.5)), 1, whole);
    const int64_t offset = (whole - fitted) / 2;
    const int64_t size = whole - 2 * offset;
    return available < 0 ? Side{-offset, -size} : Side{offset, size};
}

double AspectOf(const Rectangle& rectangle) { return Quotient(std::abs(rectangle.width), std::abs(rectangle.height)); }

}  // namespace

RECT ToRect(const Rectangle& rectangle) {
    RECT rect = {};
    rect.left = SaturateToInt32(rectangle.x);
    rect.top = SaturateToInt32(rectangle.y);
    rect.right = SaturateToInt32(rectangle.right());
    rect.bottom = SaturateToInt32(rectangle.bottom());
    return rect;
}

Rectangle Normalized(const Rectangle& rectangle) {
    return {std::min(rectangle.x, rectangle.right()), std::min(rectangle.y, rectangle.bottom()),
            std::abs(rectangle.width), std::abs(rectangle.height)};
}

Rectangle Intersection(const Rectangle& a, const Rectangle& b) {
    const int64_t left = std::max(a.x, b.x), top = std::max(a.y, b.y);
    return {left, top, std::max<int64_t>(std::min(a.right(), b.right()) - left, 0),
            std::max<int64_t>(std::min(a.bottom(), b.bottom()) - top, 0)};
}

PixelPoint Apply(const TCoordinateMap& map, double x, double y) {
    return {map.OrgX + map.Matrix.A11 * x + map.Matrix.A12 * y, map.OrgY + map.Matrix.A21 * x + map.Matrix.A22 * y};
}

Rectangle SourceRectangle(int32_t width, int32_t height, double factor, double centerX, double centerY) {
    if (factor == 1.0) return {0, 0, width, height};
    const double zoom = factor > 1.0 ? factor : 1.0;
    const Interval x = ShownInterval(width, zoom, centerX), y = ShownInterval(height, zoom, centerY);
    return {x.first, y.first, x.end - x.first, y.end - y.first};
}

Rectangle GrownToAspect(const Rectangle& source, int32_t width, int32_t height, const Rectangle& dest) {
    const double wanted = AspectOf(dest), aspect = AspectOf(source);
    Interval x{source.x, source.right()}, y{source.y, source.bottom()};
    if (wanted < aspect)
        y = GrownWhile(y, height, [&](int64_t rows) { return Quotient(source.width, rows) >= wanted; });
    else if (wanted > aspect)
        x = GrownWhile(x, width, [&](int64_t columns) { return Quotient(columns, source.height) <= wanted; });
    return {x.first, y.first, x.end - x.first, y.end - y.first};
}

Rectangle Fitted(const Rectangle& source, const Rectangle& dest, Placing placing) {
    const double wanted = AspectOf(dest), aspect = AspectOf(source);
    Side x{0, dest.width}, y{0, dest.height};
    if (wanted < aspect)
        y = ShorterSide(dest.height, static_cast<double>(std::abs(dest.height)) * wanted / aspect);
    else if (wanted > aspect)
        x = ShorterSide(dest.width, static_cast<double>(std::abs(dest.width)) * aspect / wanted);
    if (placing == Placing::TopLeft) x.offset = y.offset = 0;
    return {dest.x + x.offset, dest.y + y.offset, x.size, y.size};
}

View ViewOf(const Rectangle& source, const Rectangle& fitted) {
    const auto edgeX = static_cast<double>(source.x) - 0.5, edgeY = static_cast<double>(source.y) - 0.5;
    const auto atX = static_cast<double>(fitted.x), atY = static_cast<double>(fitted.y);
    const double scaleX = Quotient(fitted.width, source.width), scaleY = Quotient(fitted.height, source.height);
    const double backX = Quotient(source.width, fitted.width), backY = Quotient(source.height, fitted.height);
    View view;
    view.source = source;
    view.dest = fitted;
    view.toDest = {atX - edgeX * scaleX, atY - edgeY * scaleY, {scaleX, 0, 0, scaleY}};
    view.toPixel = {edgeX - atX * backX, edgeY - atY * backY, {backX, 0, 0, backY}};
    return view;
}

std::optional<View> MakeView(int32_t width, int32_t height, double factor, double centerX, double centerY,
                             const Rectangle& dest, Placing placing) {
    if (width <= 0 || height <= 0 || dest.empty()) return std::nullopt;
    const Rectangle shown = SourceRectangle(width, height, factor, centerX, centerY);
    const Rectangle source = GrownToAspect(shown, width, height, dest);
    return ViewOf(source, Fitted(source, dest, placing));
}

std::optional<View> MakeUnscaledView(int32_t width, int32_t height, const Rectangle& dest, int32_t sourceX,
                                     int32_t sourceY) {
    const Rectangle wanted{sourceX, sourceY, std::abs(dest.width), std::abs(dest.height)};
    const Rectangle source = Intersection(wanted, {0, 0, width, height});
    if (source.empty()) return std::nullopt;
    const int64_t alongX = dest.width < 0 ? -1 : 1, alongY = dest.height < 0 ? -1 : 1;
    return ViewOf(source, {dest.x + alongX * (source.x - sourceX), dest.y + alongY * (source.y - sourceY),
                           alongX * source.width, alongY * source.height});
}

std::array<Rectangle, 4> SurroundBands(const Rectangle& dest, const Rectangle& fitted) {
    const Rectangle all = Normalized(dest), in = Normalized(fitted);
    return {{{all.x, all.y, in.x - all.x, all.height},
             {in.x, all.y, in.width, in.y - all.y},
             {in.x, in.bottom(), in.width, all.bottom() - in.bottom()},
             {in.right(), all.y, all.right() - in.right(), all.height}}};
}

}  // namespace orlix
