// Bresenham lines, clipped.
#pragma once

#include <algorithm>
#include <cstdint>

#include "geometry/rounding.hpp"

namespace orlix {

// A line between two pixels, both included. Pixel k lies k steps from the first along the longer axis (y when both are
// equally long) and floor(k * minor / major + 1/2) steps along the other. This is the position of Bresenham's algorithm
// after k steps: its error term stays below 0 after each decision, so a term of 0 takes the step, and halves round away
// from the first end.
struct Line {
    int32_t x1, y1, x2, y2;

    static Line BetweenRounded(double x1, double y1, double x2, double y2) {
        return {RoundToInt32(x1), RoundToInt32(y1), RoundToInt32(x2), RoundToInt32(y2)};
    }
};

// The steps of a line that lie in an image, as positions along the longer (major) and the shorter (minor) axis.
class VisibleSteps {
public:
    VisibleSteps(const Line& line, int32_t width, int32_t height);

    // Calls plot(x, y) for every pixel of the line in 0 <= x < width, 0 <= y < height, in order. The time depends only
    // on the number of these pixels, not on where the ends lie.
    template <class Plot>
    void ForEach(Plot&& plot) const {
        int64_t along = majorStart_ + majorSign_ * first_;
        int64_t side = minorStart_ + minorSign_ * firstSide_;
        int64_t error = firstError_;
        for (int64_t k = first_; k <= last_; ++k) {
            if (steep_)
                plot(static_cast<int32_t>(side), static_cast<int32_t>(along));
            else
                plot(static_cast<int32_t>(along), static_cast<int32_t>(side));
            if (error >= 0) {
                side += minorSign_;
                error -= 2 * major_;
            }
            along += majorSign_;
            error += 2 * minor_;
        }
    }

    // The number of rows in which the line has visible pixels.
    int64_t Rows() const {
        if (first_ > last_) return 0;
        return 1 + (steep_ ? last_ - first_ : Side(last_) - Side(first_));
    }

    // Calls visit(y, left, right) for each of these rows, in order. The time depends only on their number.
    template <class Visit>
    void ForEachRow(Visit&& visit) const {
        if (steep_) return ForEach([&](int32_t x, int32_t y) { visit(y, x, x); });
        int64_t side = minorStart_ + minorSign_ * firstSide_;
        int64_t error = firstError_;
        for (int64_t k = first_; k <= last_;) {
            // Steps until the error term is no longer negative.
            const int64_t steps = error >= 0 ? 0 : minor_ == 0 ? last_ - k : (2 * minor_ - 1 - error) / (2 * minor_);
            const int64_t end = std::min(k + steps, last_);
            const int64_t one = majorStart_ + majorSign_ * k, other = majorStart_ + majorSign_ * end;
            visit(static_cast<int32_t>(side), static_cast<int32_t>(std::min(one, other)),
                  static_cast<int32_t>(std::max(one, other)));
            error += 2 * minor_ * (end - k + 1) - 2 * major_;
            side += minorSign_;
            k = end + 1;
        }
    }

private:
    int64_t Side(int64_t k) const;  // steps along the minor axis before pixel k
    int64_t FirstStepWithSide(int64_t side, int64_t from, int64_t to) const;  // `to` when there is none below it

    bool steep_;
    int64_t major_, minor_;            // lengths, 0 .. 2^32 - 1, minor <= major
    int64_t majorStart_, minorStart_;  // coordinates of the first end
    int64_t majorSign_, minorSign_;
    int64_t first_ = 0;
    int64_t last_ = -1;
    int64_t firstSide_ = 0;
    int64_t firstError_ = 0;
};

}  // namespace orlix
