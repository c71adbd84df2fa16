// Slow definitions of operations on a binary image that look at the neighbourhood of each pixel.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "support/slow_components.hpp"

namespace orlix {

using Offsets = std::vector<std::pair<int64_t, int64_t>>;

inline Offsets RectangleOf(int64_t left, int64_t top, int64_t right, int64_t bottom) {
    Offsets offsets;
    for (int64_t y = top; y <= bottom; ++y)
        for (int64_t x = left; x <= right; ++x) offsets.push_back({x, y});
    return offsets;
}
// The pixel with its neighbours.
inline Offsets NeighboursAnd(Connectivity connectivity) {
    if (connectivity == Connectivity::Eight) return RectangleOf(-1, -1, 1, 1);
    return {{0, 0}, {1, 0}, {-1, 0}, {0, 1}, {0, -1}};
}
// The window of width x height pixels, without what reaches outside from every pixel of the image.
inline Offsets Window(int64_t width, int64_t height, int64_t imageWidth, int64_t imageHeight) {
    return RectangleOf(-std::min((width - 1) / 2, imageWidth), -std::min((height - 1) / 2, imageHeight),
                       std::min(width / 2, imageWidth), std::min(height / 2, imageHeight));
}

// An erosion or dilation; pixels outside do not take part.
template <class Plane>
Plane SlowStep(const Plane& image, const Offsets& offsets, bool dilate) {
    return EachPixel<Plane>(image.width(), image.height(), [&](int32_t x, int32_t y) {
        for (const auto& [dx, dy] : offsets) {
            const int64_t column = dilate ? x - dx : x + dx, row = dilate ? y - dy : y + dy;
            if (column < 0 || column >= image.width() || row < 0 || row >= image.height()) continue;
            if (image.bit(static_cast<int32_t>(column), static_cast<int32_t>(row)) == dilate) return dilate;
        }
        return !dilate;
    });
}

// Operation is an enumeration of Erosion, Dilation, Opening and Closing.
template <class Plane, class Operation>
Plane SlowMorphology(Plane image, const Offsets& offsets, Operation operation, int64_t times = 1) {
    const auto repeat = [&](bool dilate) {
        for (int64_t i = 0; i < times; ++i) {
            const Plane next = SlowStep(image, offsets, dilate);
            if (next == image) break;
            image = next;
        }
    };
    const bool dilateFirst = operation == Operation::Dilation || operation == Operation::Closing;
    repeat(dilateFirst);
    if (operation == Operation::Opening || operation == Operation::Closing) repeat(!dilateFirst);
    return image;
}

// The index of a pixel's neighbourhood in a table, the first of the nine pixels being the highest bit.
template <class Plane>
size_t NeighbourhoodAt(const Plane& image, int32_t x, int32_t y) {
    size_t index = 0;
    for (int32_t dy = -1; dy <= 1; ++dy)
        for (int32_t dx = -1; dx <= 1; ++dx) index = 2 * index + IsSet(image, x + dx, y + dy);
    return index;
}
template <class Plane, class Table>
Plane SlowTablePass(const Plane& image, const Table& table) {
    return EachPixel<Plane>(image.width(), image.height(),
                            [&](int32_t x, int32_t y) { return table[NeighbourhoodAt(image, x, y)] != 0; });
}

// Pixels outside fit both lists.
template <class Plane>
Plane SlowHitOrMiss(const Plane& image, const Offsets& hits, const Offsets& misses) {
    const Plane hit = SlowStep(image, hits, false), missed = SlowStep(Opposite(image), misses, false);
    return EachPixel<Plane>(image.width(), image.height(),
                            [&](int32_t x, int32_t y) { return hit.bit(x, y) && missed.bit(x, y); });
}

// The pixels of one kind that have a neighbour of the other.
template <class Plane>
Plane SlowBoundary(const Plane& image, bool inner, Connectivity connectivity) {
    return EachPixel<Plane>(image.width(), image.height(), [&](int32_t x, int32_t y) {
        const auto steps = StepsOf(connectivity);
        return image.bit(x, y) == inner && std::any_of(steps.begin(), steps.end(), [&](const Place& step) {
                   return IsInside(image, x + step.x, y + step.y) && image.bit(x + step.x, y + step.y) != inner;
               });
    });
}

}  // namespace orlix
