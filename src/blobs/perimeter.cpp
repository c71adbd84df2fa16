#include "blobs/perimeter.hpp"

#include <algorithm>
#include <array>
#include <cmath>

#include "numerics/elementary.hpp"

namespace orlix {
namespace {

constexpr double kPi = 3.14159265358979323846;

// Pixels p of the component for which p + (x, y) is one of it as well.
int64_t Covariogram(const BlobRows& rows, int32_t x, size_t y) {
    int64_t pixels = 0;
    for (size_t i = 0; i + y < rows.count(); ++i)
        ForEachOverlap(rows[i], rows[i + y], -x, 0, [&](const LabelledRun& a, const LabelledRun& b) {
            pixels +=
                std::min(int64_t{a.stop}, int64_t{b.stop} - x) - std::max(int64_t{a.start}, int64_t{b.start} - x) + 1;
        });
    return pixels;
}

}  // namespace

double TracedPerimeter(const PixelPaths& paths) {
    int64_t sides = 0, diagonals = 0, corners = 0;
    for (size_t i = 0; i < paths.count(); ++i) {
        int first = -1, last = -1;
        ForEachChainStep(paths.path(i), Connectivity::Eight, [&](int direction, int64_t steps) {
            (direction % 2 == 0 ? sides : diagonals) += steps;
            if (last >= 0 && direction != last) ++corners;
            if (first < 0) first = direction;
            last = direction;
        });
        if (first != last) ++corners;
    }
    constexpr double kOffset = 2.82842712474619009760;  // 2 sqrt(2)
    const auto holes = static_cast<double>(paths.count()) - 1;
    return 0.980 * static_cast<double>(sides) + 1.406 * static_cast<double>(diagonals) -
           0.091 * static_cast<double>(corners) + kOffset * (1 - holes);
}

int64_t SignedArea(std::span<const PixelPaths::Corner> path) {
    // The vertical edges: those that run down lie to the right of the area.
    int64_t area = 0;
    for (size_t i = 0; i < path.size(); ++i) {
        const PixelPaths::Corner &a = path[i], &b = path[i + 1 == path.size() ? 0 : i + 1];
        area += int64_t{a.x} * (int64_t{b.y} - a.y);
    }
    return area;
}

double CroftonPerimeter(const BlobRows& rows, int64_t pixels, double sx, double sy) {
    struct Direction {
        int32_t x;
        int32_t y;
    };
    // By the angle, from 0 to 180 degrees.
    static constexpr std::array<Direction, 8> kDirections = {
        {{1, 0}, {2, 1}, {1, 1}, {1, 2}, {0, 1}, {-1, 2}, {-1, 1}, {-2, 1}}};
    std::array<double, kDirections.size()> angles;
    for (size_t i = 0; i < angles.size(); ++i)
        angles[i] = ArcTangent(kDirections[i].y * sy, kDirections[i].x * sx) / kPi;
    double sum = 0;
    for (size_t i = 0; i < angles.size(); ++i) {
        const double before = i == 0 ? angles.back() - 1 : angles[i - 1];
        const double after = i + 1 == angles.size() ? 1 : angles[i + 1];
        const auto [x, y] = kDirections[i];
        const double length = std::sqrt(x * sx * (x * sx) + y * sy * (y * sy));
        const int64_t crossings = pixels - (y == 0 ? pixels - static_cast<int64_t>(rows.runs().size())
                                                   : Covariogram(rows, x, static_cast<size_t>(y)));
        sum += (after - before) / 2 * (sx * sy / length) * static_cast<double>(crossings);
    }
    return kPi * sum;
}

}  // namespace orlix
