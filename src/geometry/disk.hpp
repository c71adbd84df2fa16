// The pixels of a disk: those whose centres lie at most the radius from its centre.
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

    // False when an end of the disk is NaN. Such a disk has no pixels.
    bool Defined() const {
        return !std::isnan(x - radius) && !std::isnan(x + radius) && !std::isnan(y - radius) && !std::isnan(y + radius);
    }
    // First and last row; last < first when the disk has no rows.
    int32_t Top() const { return CeilToInt32(y - radius); }
    int32_t Bottom() const { return FloorToInt32(y + radius); }

    // ceil(x - h) .. floor(x + h) with h = sqrt(radius^2 - (row - y)^2), for Top() <= row <= Bottom() of a defined
    // disk. A row without pixels gives start = stop + 1.
    RawRun Row(int32_t row) const {
        const double h = HalfChord(row - y);
        return {CeilToInt32(x - h), FloorToInt32(x + h)};
    }

private:
    double HalfChord(double d) const {
        // In the first and last row, rounding may turn a difference of 0 into -1e-15.
        const double square = radius * radius - d * d;
        if (std::isfinite(square)) return std::sqrt(std::max(square, 0.0));
        return std::sqrt(std::max(radius - d, 0.0)) * std::sqrt(std::max(radius + d, 0.0));  // the squares overflow
    }
};

}  // namespace orlix
