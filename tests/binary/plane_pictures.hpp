// Planes for tests of connected operations.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <ostream>
#include <random>
#include <string_view>
#include <vector>

#include "binary/bit_plane.hpp"
#include "support/slow_components.hpp"

namespace orlix {

inline void PrintTo(const BitPlane& plane, std::ostream* out) {
    *out << plane.width() << " x " << plane.height();
    if (plane.width() > 200 || plane.height() > 200) return;
    for (int32_t y = 0; y < plane.height(); ++y) {
        *out << '\n';
        for (int32_t x = 0; x < plane.width(); ++x) *out << (plane.bit(x, y) ? '#' : '.');
    }
}

inline BitPlane NoisePlane(int32_t width, int32_t height, double density, uint32_t seed) {
    BitPlane plane(width, height);
    std::mt19937 random(seed);
    const auto bound = static_cast<uint64_t>(density * 4294967296.0);
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x)
            if (random() < bound) plane.setBit(x, y, true);
    return plane;
}

// '#' is set.
inline BitPlane PlaneOf(std::initializer_list<std::string_view> rows) {
    BitPlane plane(static_cast<int32_t>(rows.begin()->size()), static_cast<int32_t>(rows.size()));
    int32_t y = 0;
    for (const std::string_view row : rows) {
        for (int32_t x = 0; x < plane.width(); ++x) plane.setBit(x, y, row[static_cast<size_t>(x)] == '#');
        ++y;
    }
    return plane;
}

// Blobs with smooth outlines that touch: overlapping disks.
inline BitPlane DiskPlane(int32_t width, int32_t height, int disks, int32_t largest, uint32_t seed) {
    BitPlane plane(width, height);
    std::mt19937 random(seed);
    for (; disks > 0; --disks) {
        const auto cx = static_cast<int32_t>(random() % static_cast<uint32_t>(width));
        const auto cy = static_cast<int32_t>(random() % static_cast<uint32_t>(height));
        const auto r = static_cast<int32_t>(1 + random() % static_cast<uint32_t>(largest));
        for (int32_t y = std::max(0, cy - r); y <= std::min(height - 1, cy + r); ++y)
            for (int32_t x = std::max(0, cx - r); x <= std::min(width - 1, cx + r); ++x)
                if ((x - cx) * (x - cx) + (y - cy) * (y - cy) <= r * r) plane.setBit(x, y, true);
    }
    return plane;
}

// Calls visit(plane) for every image of a size.
template <class Visit>
void ForEachPlaneOfSize(int32_t width, int32_t height, const Visit& visit) {
    for (uint32_t bits = 0; bits < uint32_t{1} << (width * height); ++bits) {
        BitPlane plane(width, height);
        for (int32_t i = 0; i < width * height; ++i) plane.setBit(i % width, i / width, (bits >> i & 1) != 0);
        visit(plane);
    }
}

// Calls visit(plane) for noise and blobs of all widths 1..70.
template <class Visit>
void ForEachPlaneOfAnyWidth(const Visit& visit) {
    for (int32_t width = 1; width <= 70; ++width) {
        const auto seed = static_cast<uint32_t>(width);
        visit(NoisePlane(width, 1 + width % 5, 0.3, seed));
        visit(NoisePlane(width, 11, 0.6, seed));
        visit(NoisePlane(width, 9, 0.9, seed));
        visit(DiskPlane(width, 23, 1 + width / 5, 7, seed));
    }
    visit(BitPlane());
}

}  // namespace orlix
