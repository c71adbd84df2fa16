// Slow definitions of what is done with the distances to the background.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <queue>
#include <tuple>
#include <vector>

#include "support/slow_components.hpp"

namespace orlix {

// Of each pixel, row by row: the smallest of the squared distances to all background pixels; the largest number
// without any.
template <class Plane>
std::vector<int64_t> SlowDistances(const Plane& image) {
    std::vector<Place> background;
    for (int32_t y = 0; y < image.height(); ++y)
        for (int32_t x = 0; x < image.width(); ++x)
            if (!image.bit(x, y)) background.push_back({x, y});
    std::vector<int64_t> distances;
    for (int32_t y = 0; y < image.height(); ++y)
        for (int32_t x = 0; x < image.width(); ++x) {
            int64_t& least = distances.emplace_back(std::numeric_limits<int64_t>::max());
            if (!image.bit(x, y)) {
                least = 0;
                continue;
            }
            for (const auto& [u, v] : background)
                least = std::min(least, int64_t{u - x} * (u - x) + int64_t{v - y} * (v - y));
        }
    return distances;
}

// The pixels of plateaus, connected pixels of one value, that have no higher neighbour.
template <class Plane, class T>
Plane SlowMaxima(const Plane& image, const std::vector<T>& values, Connectivity connectivity) {
    const auto value = [&](int32_t x, int32_t y) { return values[static_cast<size_t>(y * image.width() + x)]; };
    const auto steps = StepsOf(connectivity);
    Plane maxima(image.width(), image.height()), visited(image.width(), image.height());
    for (int32_t y = 0; y < image.height(); ++y)
        for (int32_t x = 0; x < image.width(); ++x) {
            if (!image.bit(x, y) || visited.bit(x, y)) continue;
            bool highest = true;
            std::vector<Place> plateau = {{x, y}};
            visited.setBit(x, y, true);
            for (size_t i = 0; i < plateau.size(); ++i) {
                const auto [px, py] = plateau[i];
                for (const auto& [dx, dy] : steps) {
                    if (!IsSet(image, px + dx, py + dy)) continue;
                    const T other = value(px + dx, py + dy);
                    highest = highest && other <= value(x, y);
                    if (other != value(x, y) || visited.bit(px + dx, py + dy)) continue;
                    visited.setBit(px + dx, py + dy, true);
                    plateau.push_back({px + dx, py + dy});
                }
            }
            for (const auto& [px, py] : plateau) maxima.setBit(px, py, highest);
        }
    return maxima;
}

// None without background.
template <class Plane>
Plane SlowUltimatePoints(const Plane& image, const std::vector<int64_t>& distances, Connectivity connectivity) {
    const bool none = distances.empty() || distances[0] == std::numeric_limits<int64_t>::max();
    return none ? Plane(image.width(), image.height()) : SlowMaxima(image, distances, connectivity);
}

// `squares` are those of SlowDistances.
template <class Plane>
Plane SlowSplit(const Plane& image, const std::vector<int64_t>& squares, Connectivity connectivity,
                double depthInPixels, double depthAsShare) {
    const int32_t width = image.width();
    const auto at = [&](int32_t x, int32_t y) { return static_cast<size_t>(y * width + x); };
    const auto steps = StepsOf(connectivity);
    std::vector<double> distances;
    for (const int64_t square : squares) distances.push_back(std::sqrt(static_cast<double>(square)));

    // The reconstruction, by dilations within D until nothing changes.
    std::vector<double> levels = distances;
    for (double& level : levels) level = (1 - depthAsShare) * level - depthInPixels;
    for (bool changed = true; changed;) {
        changed = false;
        for (int32_t y = 0; y < image.height(); ++y)
            for (int32_t x = 0; x < width; ++x)
                for (const auto& [dx, dy] : steps) {
                    if (!image.bit(x, y) || !IsSet(image, x + dx, y + dy)) continue;
                    const double spread = std::min(levels[at(x + dx, y + dy)], distances[at(x, y)]);
                    if (spread <= levels[at(x, y)]) continue;
                    levels[at(x, y)] = spread;
                    changed = true;
                }
    }
    const SlowComponents markers(SlowMaxima(image, levels, connectivity), connectivity);
    std::vector<int> labels = markers.label;

    // Highest level first, then first in, first out.
    using Entry = std::tuple<double, int, int32_t, int32_t>;
    std::priority_queue<Entry> queue;
    std::vector<bool> queued(labels.size());
    int number = 0;
    const auto add = [&](double level, int32_t x, int32_t y) {
        queue.push({level, --number, x, y});
        queued[at(x, y)] = true;
    };
    for (int32_t y = 0; y < image.height(); ++y)
        for (int32_t x = 0; x < width; ++x)
            if (image.bit(x, y) && labels[at(x, y)] < 0 &&
                std::any_of(steps.begin(), steps.end(), [&](const auto& step) {
                    return IsSet(image, x + step.x, y + step.y) && labels[at(x + step.x, y + step.y)] >= 0;
                }))
                add(distances[at(x, y)], x, y);
    while (!queue.empty()) {
        const auto [level, order, x, y] = queue.top();
        queue.pop();
        std::vector<int> around;
        for (const auto& [dx, dy] : steps)
            if (IsSet(image, x + dx, y + dy) && labels[at(x + dx, y + dy)] >= 0)
                around.push_back(labels[at(x + dx, y + dy)]);
        if (std::any_of(around.begin(), around.end(), [&](int label) { return label != around[0]; })) continue;
        labels[at(x, y)] = around[0];
        for (const auto& [dx, dy] : steps)
            if (IsSet(image, x + dx, y + dy) && labels[at(x + dx, y + dy)] < 0 && !queued[at(x + dx, y + dy)])
                add(std::min(level, distances[at(x + dx, y + dy)]), x + dx, y + dy);
    }
    return EachPixel<Plane>(width, image.height(), [&](int32_t x, int32_t y) { return labels[at(x, y)] >= 0; });
}

}  // namespace orlix
