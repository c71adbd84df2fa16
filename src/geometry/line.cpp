#include "geometry/line.hpp"

#include <algorithm>
#include <cstdlib>

namespace orlix {
namespace {

struct Steps {
    int64_t first, last;
};

// The step counts from start that keep a coordinate within 0 .. size - 1.
Steps StepsInside(int64_t start, int64_t sign, int64_t size) {
    return sign > 0 ? Steps{-start, size - 1 - start} : Steps{start - (size - 1), start};
}

}  // namespace

VisibleSteps::VisibleSteps(const Line& line, int32_t width, int32_t height) {
    const int64_t dx = int64_t{line.x2} - line.x1;
    const int64_t dy = int64_t{line.y2} - line.y1;
    steep_ = std::abs(dx) <= std::abs(dy);
    major_ = std::abs(steep_ ? dy : dx);
    minor_ = std::abs(steep_ ? dx : dy);
    majorStart_ = steep_ ? line.y1 : line.x1;
    minorStart_ = steep_ ? line.x1 : line.y1;
    majorSign_ = (steep_ ? dy : dx) < 0 ? -1 : 1;
    minorSign_ = (steep_ ? dx : dy) < 0 ? -1 : 1;

    const Steps along = StepsInside(majorStart_, majorSign_, steep_ ? height : width);
    const Steps side = StepsInside(minorStart_, minorSign_, steep_ ? width : height);
    const int64_t first = std::max<int64_t>(along.first, 0);
    const int64_t end = std::min(along.last, major_) + 1;
    if (first >= end) return;
    first_ = FirstStepWithSide(side.first, first, end);
    last_ = FirstStepWithSide(side.last + 1, first, end) - 1;
    if (first_ > last_) return;

    // The error term of Bresenham's algorithm before its decision at first_,
    // 2 minor - major + 2 minor k - 2 major side, computed without these products, which need 66 bits.
    firstSide_ = Side(first_);
    if (major_ == 0) return;
    const uint64_t product = static_cast<uint64_t>(first_) * static_cast<uint64_t>(minor_);
    const int64_t whole = static_cast<int64_t>(product / static_cast<uint64_t>(major_));
    const int64_t rest = static_cast<int64_t>(product % static_cast<uint64_t>(major_));
    firstError_ = 2 * minor_ - major_ + 2 * rest - 2 * major_ * (firstSide_ - whole);
}

int64_t VisibleSteps::Side(int64_t k) const {
    if (major_ == 0) return 0;
    const uint64_t product = static_cast<uint64_t>(k) * static_cast<uint64_t>(minor_);  // below 2^64
    const uint64_t divisor = static_cast<uint64_t>(major_);
    return static_cast<int64_t>(product / divisor) + (2 * (product % divisor) >= divisor ? 1 : 0);
}

int64_t VisibleSteps::FirstStepWithSide(int64_t side, int64_t from, int64_t to) const {
    while (from < to) {
        const int64_t middle = from + (to - from) / 2;
        if (Side(middle) < side)
            from = middle + 1;
        else
            to = middle;
    }
    return from;
}

}  // namespace orlix
