#include "binary/morphology_sweep.hpp"

#include <algorithm>
#include <vector>

namespace orlix {
namespace {

// The result takes the part of the element that reaches one way: rows are visited in that order. Of the set pixels of a
// column, the last one that was visited reaches farthest along a row, and makes a run of it; all runs of a row together
// are found from left to right.
class Sweep {
public:
    Sweep(const BitPlane& plane, std::span<const int32_t> halfWidths, BitPlane& result)
        : plane_(plane),
          halfWidths_(halfWidths),
          result_(result),
          distance_(static_cast<size_t>(plane.width()), static_cast<int32_t>(halfWidths.size())),
          stop_(static_cast<size_t>(plane.width()), -1) {}

    void Visit(int32_t y) {
        Measure(plane_.row(y));
        const auto width = static_cast<size_t>(plane_.width());
        for (size_t x = 0; x < width;) {
            const size_t first = x;
            const auto distance = static_cast<size_t>(distance_[x]);
            while (++x < width && static_cast<size_t>(distance_[x]) == distance) {
            }
            if (distance == halfWidths_.size()) continue;
            const auto half = static_cast<size_t>(halfWidths_[distance]);
            int32_t& stop = stop_[first - std::min(first, half)];
            stop = std::max(stop, static_cast<int32_t>(std::min(x - 1 + half, width - 1)));
        }
        uint64_t* const row = result_.row(y);
        for (int32_t x = 0; x < plane_.width();) {
            int32_t stop = stop_[static_cast<size_t>(x)];
            if (stop < 0) {
                ++x;
                continue;
            }
            const int32_t start = x;
            for (; x <= stop; ++x) {
                stop = std::max(stop, stop_[static_cast<size_t>(x)]);
                stop_[static_cast<size_t>(x)] = -1;
            }
            SetRun(row, {start, stop});
        }
    }

private:
    // The rows since the last set pixel of each column; as many as the element has when there are so many or more.
    void Measure(const uint64_t* row) {
        const auto most = static_cast<int32_t>(halfWidths_.size());
        const int32_t width = plane_.width();
        for (int32_t first = 0; first < width; first += 64) {
            const uint64_t word = row[first / 64];
            int32_t* const distance = distance_.data() + first;
            const int32_t count = std::min(64, width - first);
            if (word == 0)
                for (int32_t i = 0; i < count; ++i) distance[i] = std::min(distance[i] + 1, most);
            else
                for (int32_t i = 0; i < count; ++i)
                    distance[i] = (word << i) >> 63 != 0 ? 0 : std::min(distance[i] + 1, most);
        }
    }

    const BitPlane& plane_;
    std::span<const int32_t> halfWidths_;
    BitPlane& result_;
    std::vector<int32_t> distance_;
    std::vector<int32_t> stop_;  // of the longest run that starts at a column of the row, -1 without one
};

}  // namespace

BitPlane DilatedByShrinkingRows(const BitPlane& plane, std::span<const int32_t> halfWidths) {
    BitPlane result(plane.width(), plane.height());
    Sweep down(plane, halfWidths, result), up(plane, halfWidths, result);
    for (int32_t y = 0; y < plane.height(); ++y) down.Visit(y);
    for (int32_t y = plane.height(); y-- > 0;) up.Visit(y);
    return result;
}

}  // namespace orlix
