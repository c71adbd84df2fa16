// A device-independent bitmap as a picture and as an image.
#pragma once

#include <orlix/orlix.h>

#include <optional>
#include <utility>
#include <vector>

#include "dib/dib_memory.hpp"
#include "display/picture_source.hpp"

namespace orlix {

// Clients write header, palette and pixels without notice, so whatever is shown is computed anew. Up to 8 bits are
// shown as levels with the palette as colours, deeper pixels as colours.
class DibPicture final : public PictureSource {
public:
    explicit DibPicture(DibMemory dib) : dib_(std::move(dib)), colours_(dib_.layout()) {}

    DibMemory& dib() { return dib_; }

    bool Refused() const override { return false; }
    const DisplayBitmap& Bitmap() override;
    void Show(const Rectangle& part) override;
    const ColorTable& Colors() const override { return colors_; }
    // The value is what is stored, up to 8 bits, or the red level.
    std::optional<ShownPixel> Shown(int32_t x, int32_t y) override;

    // Whether the pixels are 8-bit samples: each entry of the palette is the grey of its number.
    bool IsGrey() const;
    // The offset table of the samples from entry 0 on, relative to dib().pixels(). IsGrey() holds.
    VPAEntry* OffsetTable();

private:
    DibMemory dib_;
    DibColours colours_;
    DisplayBitmap bitmap_;
    ColorTable colors_{};
    std::vector<VPAEntry> table_;
};

}  // namespace orlix
