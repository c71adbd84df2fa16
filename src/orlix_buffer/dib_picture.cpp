#include "orlix_buffer/dib_picture.hpp"

#include <limits>
#include <new>

#include "display/raster_kernels.hpp"
#include "image/image_layout.hpp"

namespace orlix {

const DisplayBitmap& DibPicture::Bitmap() {
    const DibLayout& layout = dib_.layout();
    const uint64_t rowStride = layout.hasPalette() ? (static_cast<uint64_t>(layout.width) + 3) / 4 * 4
                                                   : 4 * static_cast<uint64_t>(layout.width);
    if (rowStride > std::numeric_limits<ptrdiff_t>::max() / static_cast<uint64_t>(layout.height))
        throw std::bad_alloc();
    bitmap_.pixels.Resize(static_cast<size_t>(rowStride * static_cast<uint64_t>(layout.height)));
    bitmap_.width = layout.width;
    bitmap_.height = layout.height;
    bitmap_.bitsPerPixel = layout.hasPalette() ? 8 : 32;
    bitmap_.rowStride = static_cast<size_t>(rowStride);
    for (size_t i = 0; i < dib_.entries(); ++i) {
        const uint8_t* const entry = dib_.entry(i);
        colors_[i] = {entry[0], entry[1], entry[2], 0};
    }
    return bitmap_;
}

void DibPicture::Show(const Rectangle& part) {
    if (part.empty()) return;
    const DibLayout& layout = dib_.layout();
    const auto x = static_cast<size_t>(part.x), n = static_cast<size_t>(part.width);
    std::vector<uint8_t> planes(layout.hasPalette() ? 0 : 3 * n);
    const ExpandPlanesFn join = Choose(kExpandPlanes);
    for (auto y = static_cast<int32_t>(part.y); y < part.bottom(); ++y) {
        const uint8_t* const row = dib_.row(y);
        if (layout.hasPalette()) {
            ExpandIndices(row, layout.bits, x, n, bitmap_.row(y) + x);
        } else {
            uint8_t *const red = planes.data(), *const green = red + n, *const blue = green + n;
            colours_(row, x, n, red, green, blue);
            join(reinterpret_cast<uint32_t*>(bitmap_.row(y)) + x, red, green, blue, n);
        }
    }
}

std::optional<ShownPixel> DibPicture::Shown(int32_t x, int32_t y) {
    const DibLayout& layout = dib_.layout();
    const auto column = static_cast<size_t>(x);
    uint8_t index = 0, red = 0, green = 0, blue = 0;
    if (layout.hasPalette()) {
        ExpandIndices(dib_.row(y), layout.bits, column, 1, &index);
        if (index < dib_.entries()) {
            const uint8_t* const entry = dib_.entry(index);
            blue = entry[0], green = entry[1], red = entry[2];
        }
    } else {
        colours_(dib_.row(y), column, 1, &red, &green, &blue);
    }
    return ShownPixel{static_cast<double>(layout.hasPalette() ? index : red),
                      static_cast<OLE_COLOR>(blue << 16 | green << 8 | red)};
}

bool DibPicture::IsGrey() const {
    if (dib_.layout().bits != 8) return false;
    for (size_t i = 0; i < dib_.entries(); ++i) {
        const uint8_t* const entry = dib_.entry(i);
        if (entry[0] != i || entry[1] != i || entry[2] != i) return false;
    }
    return true;
}

VPAEntry* DibPicture::OffsetTable() {
    if (table_.empty()) {
        const DibLayout& dib = dib_.layout();
        // Rows of a DIB are padded like those of an image, and fewer than 2^31 bytes do not overflow.
        const ImageLayout layout = MakeLayout(dib.width, dib.height, 1, DT_BYTE);
        std::vector<VPAEntry> table = MakeOffsetTable(layout);
        const auto last = static_cast<LONG>(layout.rowStride * (layout.height - 1));
        for (size_t i = 0; !dib.topDown && i < table.size(); ++i)
            if (HasRowEntry(layout, static_cast<int64_t>(i) - kTableMargin)) table[i].YEntry = last - table[i].YEntry;
        table_ = std::move(table);
    }
    return table_.data() + kTableMargin;
}

}  // namespace orlix
