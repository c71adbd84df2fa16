#include "blobs/level_outline.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>

#include "geometry/outline.hpp"
#include "numerics/elementary.hpp"

namespace orlix {
namespace {

// Twice the integrals over the area to the right of a path, of 1, x, y, x^2, x y and y^2, from its edges (Green).
struct Integrals {
    double one = 0, x = 0, y = 0, xx = 0, xy = 0, yy = 0;

    void Add(const Point& a, const Point& b) {
        const double cross = a.x * b.y - b.x * a.y;
        one += cross;
        x += cross * (a.x + b.x) / 3;
        y += cross * (a.y + b.y) / 3;
        xx += cross * (a.x * a.x + a.x * b.x + b.x * b.x) / 6;
        xy += cross * (2 * (a.x * a.y + b.x * b.y) + a.x * b.y + b.x * a.y) / 12;
        yy += cross * (a.y * a.y + a.y * b.y + b.y * b.y) / 6;
    }
};

// Square pixels by which a closed path gains area, see the header.
constexpr double kSamplingGain = 0.47;

Point operator-(const Point& a, const Point& b) { return {a.x - b.x, a.y - b.y}; }

// Of the edges of a path: the sums of their lengths and of the cubes of these.
struct Chords {
    double length = 0, cubes = 0;
};

Chords ChordsOf(const std::vector<Point>& path, double xScale, double yScale) {
    Chords out;
    for (size_t k = 0; k < path.size(); ++k) {
        const Point step = path[(k + 1) % path.size()] - path[k];
        const double s = Hypotenuse(step.x * xScale, step.y * yScale);
        out.length += s;
        out.cubes += s * s * s;
    }
    return out;
}

double SmoothLength(const std::vector<Point>& path, double xScale, double yScale) {
    const size_t n = path.size();
    std::vector<Point> smooth(n);
    for (size_t k = 0; k < n; ++k) {
        const Point &a = path[(k + n - 1) % n], &b = path[k], &c = path[(k + 1) % n];
        smooth[k] = {(a.x + 2 * b.x + c.x) / 4, (a.y + 2 * b.y + c.y) / 4};
    }
    const Chords chords = ChordsOf(path, xScale, yScale);
    const double length = ChordsOf(smooth, xScale, yScale).length;
    if (chords.length == 0) return length;
    const double turn = std::numbers::pi / chords.length;
    return length + 7 * turn * turn * chords.cubes / 6;
}

// -180 to 180 degrees as an axis: 0 to 180.
double HalfTurn(double angle) {
    if (angle < 0) angle += 180;
    return angle >= 180 ? angle - 180 : angle;
}

double AxisAngle(const Point& direction) {
    return HalfTurn(ArcTangent(direction.y, direction.x) * (180 / std::numbers::pi));
}

// Rotating calipers (M. I. Shamos, 1978) on the hull.
void MeasureCalipers(const std::vector<Point>& path, double xScale, double yScale, LevelMeasurements& out) {
    std::vector<Point> corners;
    for (const Point& vertex : path) corners.push_back({vertex.x * xScale, vertex.y * yScale});
    const std::vector<uint32_t> hull = ConvexHull(corners);
    for (size_t i = 0; i < hull.size(); ++i) corners[i] = path[hull[i]];
    corners.resize(hull.size());
    for (Point& corner : corners) corner = {corner.x * xScale, corner.y * yScale};
    const Diameter longest = DiameterOf(corners);
    if (longest.length == 0) return;
    out.feretMaximum = longest.length;
    out.feretMaximumAngle = AxisAngle(corners[longest.j] - corners[longest.i]);
    const size_t n = corners.size();
    if (n < 3) return;
    out.feretMinimum = std::numeric_limits<double>::infinity();
    for (size_t i = 0, opposite = 1; i < n; ++i) {
        const Point &a = corners[i], side = corners[(i + 1) % n] - a;
        const auto height = [&](size_t k) {
            const Point reach = corners[k % n] - a;
            return std::fabs(side.x * reach.y - side.y * reach.x);
        };
        while (height(opposite + 1) > height(opposite)) ++opposite;
        const double width = height(opposite) / Hypotenuse(side.x, side.y);
        if (width >= out.feretMinimum) continue;
        out.feretMinimum = width;
        out.feretMinimumAngle = AxisAngle({-side.y, side.x});
    }
}

}  // namespace

LevelMeasurements MeasureLevelOutline(const LevelOutline& outline, double pixelWidth, double pixelHeight) {
    LevelMeasurements out;
    if (outline.paths.empty() || outline.paths[0].empty()) return out;
    // Near the component: products of coordinates far from it would lose digits.
    const Point origin = outline.paths[0][0];
    Integrals sums;
    double gain = 0;
    for (size_t i = 0; i < outline.paths.size(); ++i) {
        const std::vector<Point>& path = outline.paths[i];
        if (path.empty()) continue;
        for (size_t k = 0; k < path.size(); ++k) sums.Add(path[k] - origin, path[(k + 1) % path.size()] - origin);
        const Chords inPixels = ChordsOf(path, 1, 1);
        if (inPixels.length > 0) {
            const double ofPath = std::numbers::pi * inPixels.cubes / (6 * inPixels.length) + kSamplingGain;
            gain += i == 0 ? ofPath : -ofPath;
        }
        out.perimeter += SmoothLength(path, pixelWidth, pixelHeight);
    }
    MeasureCalipers(outline.paths[0], pixelWidth, pixelHeight, out);
    const double area = sums.one / 2;
    out.area = (area + gain) * pixelWidth * pixelHeight;
    out.equivalentRadius = std::sqrt(std::max(0.0, out.area) / std::numbers::pi);
    out.circularity = 4 * std::numbers::pi * out.area / (out.perimeter * out.perimeter);
    out.levelShare = static_cast<double>(outline.interpolated) / static_cast<double>(outline.vertices);
    if (!(area > 0)) {
        out.xCentroid = out.yCentroid = out.xx = out.xy = out.yy = std::numeric_limits<double>::quiet_NaN();
        return out;
    }
    const double x = sums.x / sums.one, y = sums.y / sums.one;
    out.xCentroid = origin.x + x;
    out.yCentroid = origin.y + y;
    out.xx = (sums.xx / sums.one - x * x) * pixelWidth * pixelWidth;
    out.xy = (sums.xy / sums.one - x * y) * pixelWidth * pixelHeight;
    out.yy = (sums.yy / sums.one - y * y) * pixelHeight * pixelHeight;
    const double root = Hypotenuse(out.xx - out.yy, 2 * out.xy), major = (out.xx + out.yy + root) / 2;
    out.majorAxis = 4 * std::sqrt(major);
    out.minorAxis = 4 * std::sqrt(std::max(0.0, (out.xx * out.yy - out.xy * out.xy) / major));
    // The direction (cos 2t, sin 2t) is that of (xx - yy, 2 xy).
    if (root > 0) out.angle = HalfTurn(ArcTangent(2 * out.xy, out.xx - out.yy) * (90 / std::numbers::pi));
    return out;
}

}  // namespace orlix
