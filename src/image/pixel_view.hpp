// A band of an image as kernels see it.
#pragma once

#include <orlix/orlix.h>

#include <cstddef>
#include <cstdint>

namespace orlix {

// Sample (x, y) is base[table[x].XEntry + table[y].YEntry], offsets in samples. Notes:
//  (1) table points at entry 0 and is readable from -200 to the larger of width and height + 199;
//  (2) entries of columns beyond width + 199 and of rows beyond height + 199 are not defined: nothing reads them;
//  (3) an image of another component may hand out any table. Contiguous() says whether x maps to XEntry[0] + x, the fast
//      road of the kernels.
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

    Pixel& at(int32_t x, int32_t y) const { return base_[static_cast<ptrdiff_t>(table_[x].XEntry) + table_[y].YEntry]; }

    // Column 0 of row y where the view is contiguous.
    Pixel* row(int32_t y) const { return base_ + (static_cast<ptrdiff_t>(table_[0].XEntry) + table_[y].YEntry); }

    bool Contiguous() const {
        const int64_t first = table_[0].XEntry;
        for (int32_t x = 1; x < width_; ++x)
            if (table_[x].XEntry != first + x) return false;
        return true;
    }

private:
    Pixel* base_ = nullptr;
    const VPAEntry* table_ = nullptr;
    int32_t width_ = 0;
    int32_t height_ = 0;
};

}  // namespace orlix
