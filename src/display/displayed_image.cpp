#include "display/displayed_image.hpp"

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
}

void DisplayedImage::PutBandToDisplay(LONG band) {
    if (band != BI_AllBands && (band < 0 || band >= store().layout().bands))
        throw Failure("IDisplayProcess::put_BandToDisplay: invalid band to process");
    state_.band = band;
    PutDisplayDirty(true);
}

void DisplayedImage::PutDisplayDirty(bool dirty) {
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
