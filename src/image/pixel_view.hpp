// A band of an image, as kernels see it.
#pragma once

#include <orlix/orlix.h>

#include <cstddef>
#include <cstdint>

namespace orlix {

// Sample (x, y) is base[table[x].XEntry + table[y].YEntry], offsets in samples. Notes:
//  (1) table points at entry 0 and is readable from -200 to the larger of width and height + 199;
//  (2) entries of columns beyond width + 199 and of rows beyond height + 199 are undefined and never read;
//  (3) an image of another component may have any table (interleaved, flipped, sub-sampled). Kernels need adjacent
//      columns: AdjacentColumns() tells how many there are, and the rest is read through the table.
template <class Pixel>
class PixelView {
public:
    PixelView() = default;
    PixelView(Pixel* base, const VPAEntry* table, int32_t width, int32_t height)
        : base_(base), table_(table), width_(width), height_(height) {}

    int32_t width() const { return width_; }
    int32_t height() const { return height_; }
    Pixel* base() const { return base_; }
    const VPAEntry* table() const { return table_; }

    // The same, no larger than given: for those who need no more, whatever size is claimed.
    PixelView Within(int32_t width, int32_t height) const {
        return {base_, table_, width < width_ ? width : width_, height < height_ ? height : height_};
    }

    Pixel& at(int32_t x, int32_t y) const { return base_[static_cast<ptrdiff_t>(table_[x].XEntry) + table_[y].YEntry]; }

    // Column 0 of row y; row(y)[x] is sample (x, y) for the first AdjacentColumns() columns.
    Pixel* row(int32_t y) const { return base_ + (static_cast<ptrdiff_t>(table_[0].XEntry) + table_[y].YEntry); }

    // The first row after y, at most `bottom`, that does not lie directly behind the row before it. y is less than
    // bottom.
    int32_t EndOfBlock(int32_t y, int32_t bottom) const {
        return EndOfSteps(y, bottom, width_, [](const VPAEntry& entry) { return entry.YEntry; });
    }

    // The number of adjacent columns from column 0 on: at least 1, at most the width.
    int32_t AdjacentColumns() const {
        return EndOfSteps(0, width_, 1, [](const VPAEntry& entry) { return entry.XEntry; });
    }

private:
    // The first index after i, at most `end`, whose offset is not step more than that of the index before it.
    template <class OffsetOf>
    int32_t EndOfSteps(int32_t i, int32_t end, int32_t step, const OffsetOf& offsetOf) const {
        constexpr int32_t kTogether = 32;  // without a branch, so that compilers turn them into vectors
        int64_t expected = int64_t{offsetOf(table_[i])} + step;
        for (++i; i <= end - kTogether && expected + int64_t{kTogether} * step <= INT32_MAX; i += kTogether) {
            const auto first = static_cast<uint32_t>(expected), by = static_cast<uint32_t>(step);
            uint32_t different = 0;
            for (uint32_t k = 0; k < kTogether; ++k)
                different |= static_cast<uint32_t>(offsetOf(table_[i + static_cast<int32_t>(k)])) ^ (first + k * by);
            if (different) break;
            expected += int64_t{kTogether} * step;
        }
        for (; i < end && offsetOf(table_[i]) == expected; ++i) expected += step;
        return i;
    }

    Pixel* base_ = nullptr;
    const VPAEntry* table_ = nullptr;
    int32_t width_ = 0;
    int32_t height_ = 0;
};

// Whether the table of a view, or its samples, margin included, may lie between two addresses. Of samples compares only
// the lowest and the highest address that the table can give, so it may also be true for an image whose rows lie on
// both sides of the other.
template <class T>
bool SharesMemory(PixelView<const T> view, const void* begin, const void* end);

}  // namespace orlix
