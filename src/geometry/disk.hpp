// Which pixels a disk holds: those whose centres lie at most the radius from its centre.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "geometry/rounding.hpp"
#include "geometry/run.hpp"

namespace orlix {

struct Disk {
    double x;
    double y;
    double radius;

    // Whether the ends of the disk are numbers. No pixel belongs to one whose ends are not.
    bool Defined() const {
        return !std::isnan(x - radius) && !std::isnan(x + radius) && !std::isnan(y - radius) && !std::isnan(y + radius);
    }
    // First and last row; reversed when the disk holds no row.
    int32_t Top() const { return CeilToInt32(y - radius); }
    int32_t Bottom() const { return FloorToInt32(y + radius); }

    // ceil(x - h) .. floor(x + h) with h = sqrt(radius^2 - (row - y)^2), for Top() <= row <= Bottom() of a defined
    // disk. A row without a pixel gives start = stop + 1.
    RawRun Row(int32_t row) const {
        const double h = HalfChord(row - y);
        return {CeilToInt32(x - h), FloorToInt32(x + h)};
    }

private:
    double HalfChord(double d) const {
        // At the first and last row the difference may come out as -1e-15 for 0.
        const double square = radius * radius - d * d;
        if (std::isfinite(square)) return std::sqrt(std::max(square, 0.0));
        return std::sqrt(std::max(radius - d, 0.0)) * std::sqrt(std::max(radius + d, 0.0));  // the squares overflow
    }
};

}  // namespace orlix
