// Which parts of a picture have to be computed before they are shown.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "display/view_geometry.hpp"

namespace orlix {

// Tiles of a picture, all of them stale at first. Small enough that little around a view is computed, wide enough for
// the kernels.
class StaleTiles {
public:
    static constexpr int32_t kColumns = 128, kRows = 16;

    void Reset(int32_t width, int32_t height) {
        width_ = width;
        height_ = height;
        across_ = (static_cast<size_t>(width) + kColumns - 1) / kColumns;
        stale_.assign(across_ * ((static_cast<size_t>(height) + kRows - 1) / kRows), uint8_t{1});
    }

    // compute(x, end, y, bottom) for the stale tiles that the rectangle touches, neighbours in a row together: columns
    // x to end - 1 of the rows y to bottom - 1. They are current afterwards. The rectangle lies on the picture and is
    // not empty.
    template <class Compute>
    void Take(const Rectangle& shown, const Compute& compute) {
        const auto left = static_cast<size_t>(shown.x / kColumns),
                   right = static_cast<size_t>((shown.right() - 1) / kColumns) + 1;
        for (int64_t row = shown.y / kRows; row <= (shown.bottom() - 1) / kRows; ++row) {
            uint8_t* const tiles = stale_.data() + static_cast<size_t>(row) * across_;
            const auto y = static_cast<int32_t>(row * kRows);
            const auto bottom = static_cast<int32_t>(std::min<int64_t>(int64_t{y} + kRows, height_));
            for (size_t first = left; first < right;) {
                size_t end = first;
                while (end < right && tiles[end]) ++end;
                if (end > first) {
                    const auto stop = std::min<int64_t>(static_cast<int64_t>(end) * kColumns, width_);
                    compute(static_cast<int32_t>(first * kColumns), static_cast<int32_t>(stop), y, bottom);
                    std::fill(tiles + first, tiles + end, uint8_t{0});
                }
                first = end + 1;
            }
        }
    }

private:
    int32_t width_ = 0, height_ = 0;
    size_t across_ = 0;
    std::vector<uint8_t> stale_;
};

}  // namespace orlix
