#include "display/displayed_image.hpp"

#include <algorithm>
#include <iterator>
#include <numeric>

#include "display/display_frame.hpp"

namespace orlix {

std::unique_ptr<DisplayedImage> DisplayedImage::Make(LONG dataType) {
    switch (dataType) {
        case DT_BYTE:
            return std::make_unique<DisplayFrame<CImageBase<BYTE, int16_t, int32_t>>>(dataType);
        case DT_WORD:
            return std::make_unique<DisplayFrame<CImageBase<WORD, int32_t, int64_t>>>(dataType);
        case DT_DWORD:
            return std::make_unique<DisplayFrame<CImageBase<uint32_t, int64_t, double>>>(dataType);
        case DT_Float:
            return std::make_unique<DisplayFrame<CImageBase<float, float, double>>>(dataType);
        default:
            return nullptr;
    }
}

void DisplayedImage::ContentReplaced() {
    TypedImage::ContentReplaced();
    state_.band = bandToProcess();
    PutDisplayDirty(true);
}

const DisplayBitmap& DisplayedImage::Display() {
    if (current_ && !DisplayDirty()) return bitmap_;
    const ImageStore& image = store();
    if (image.empty() || image.refused()) {
        bitmap_ = DisplayBitmap();
    } else {
        const auto width = static_cast<size_t>(image.layout().width);
        const auto height = static_cast<size_t>(image.layout().height);
        // At most 4/3 of the image's own bytes, as colours come from three bands or more: the product below does not
        // overflow.
        const size_t rowStride = ShowsColor() ? 4 * width : (width + 3) / 4 * 4;
        current_ = false;
        bitmap_.pixels.Resize(height * rowStride);
        bitmap_.width = image.layout().width;
        bitmap_.height = image.layout().height;
        bitmap_.bitsPerPixel = ShowsColor() ? 32 : 8;
        bitmap_.rowStride = rowStride;
        ComputeLevels(bitmap_);
    }
    PutDisplayDirty(false);
    current_ = true;
    return bitmap_;
}

std::optional<ShownPixel> DisplayedImage::Shown(int32_t x, int32_t y) {
    const DisplayBitmap& bitmap = Display();
    if (bitmap.bitsPerPixel == 0) return std::nullopt;
    const uint8_t* const row = bitmap.row(y);
    if (bitmap.bitsPerPixel == 8) return ShownPixel{ShownValue(x, y), GetColor(row[x])};
    const uint8_t* const pixel = row + 4 * static_cast<ptrdiff_t>(x);
    return ShownPixel{ShownValue(x, y), static_cast<OLE_COLOR>(pixel[0] << 16 | pixel[1] << 8 | pixel[2])};
}

bool DisplayedImage::ShowsColor() { return state_.band == BI_AllBands && store().layout().bands >= 3; }

PointOperation<uint8_t> DisplayedImage::ColorsOf(int32_t channel) const {
    uint8_t table[256];
    std::transform(state_.colors.begin(), state_.colors.end(), table, [&](const PaletteEntry& color) {
        return channel == 0 ? color.red : channel == 1 ? color.green : color.blue;
    });
    return PointOperation<uint8_t>::LookUp(table);
}

void DisplayedImage::PutDisplayState(const DisplayState& state) {
    state_ = state;
    PutDisplayDirty(true);
}

void DisplayedImage::PutBandToDisplay(LONG band) {
    if (band != BI_AllBands && (band < 0 || band >= store().layout().bands))
        throw Failure("IDisplayProcess::put_BandToDisplay: invalid band to process");
    state_.band = band;
    PutDisplayDirty(true);
}

void DisplayedImage::PutDisplayDirty(bool dirty) {
    current_ = false;
    dirty_ = dirty;
    seen_ = store().changes();
}

OLE_COLOR DisplayedImage::GetColor(LONG entry) const {
    if (entry < 0 || entry > 255) throw Failure("IDisplayProcess: color table entry is out of range.");
    const PaletteEntry& color = state_.colors[static_cast<size_t>(entry)];
    return static_cast<OLE_COLOR>(color.blue << 16 | color.green << 8 | color.red);
}

void DisplayedImage::PutColor(LONG entry, OLE_COLOR color) {
    if (entry < 0 || entry > 255) throw Failure("IDisplayProcess: color table entry is out of range.");
    state_.colors[static_cast<size_t>(entry)] = {static_cast<uint8_t>(color >> 16), static_cast<uint8_t>(color >> 8),
                                                 static_cast<uint8_t>(color), 0};
    if (bitmap_.bitsPerPixel == 32) current_ = false;
}

void DisplayedImage::Equalize(const uint64_t (&counts)[256]) {
    const uint64_t total = std::accumulate(std::begin(counts), std::end(counts), uint64_t{0});
    if (total < 1) throw Failure("IDisplayProcess::EqualizeColorTable: empty histogram");
    uint64_t sum = 0;
    for (LONG i = 0; i < 256; ++i) {
        sum += counts[i];
        PutColor(i, static_cast<OLE_COLOR>((510 * sum + total) / (2 * total) * 0x010101));
    }
}

}  // namespace orlix
