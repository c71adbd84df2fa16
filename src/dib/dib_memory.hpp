// A device-independent bitmap and the memory that holds it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "dib/dib_layout.hpp"
#include "dib/dib_pixels.hpp"
#include "image/pixel_buffer.hpp"

namespace orlix {

// An uncompressed bitmap, in memory of its own or in a client's, which outlives it. Notes:
//  (1) In memory of its own it is packed, behind a header of 40 bytes: header, masks, palette, pixels.
//  (2) The layout is what the header said when the bitmap was made. Clients may write over header, palette and pixels
//      at any time, so nothing else is taken from there that is not checked when it is used.
//  (3) It has less than 2^31 bytes of pixels.
class DibMemory {
public:
    // A bitmap of its own, in which all pixels are 0. Only size, rows, bits, masks and pixel size of `like` count.
    // `entries`: the palette, 4 bytes each, at most 2^bits of them. HoldsPixels(like).
    // With `pixels`, only the header is its own.
    DibMemory(const DibLayout& like, std::span<const uint8_t> entries, uint8_t* pixels = nullptr);
    // The client's header and pixels. HeaderBytes(layout) bytes at header, PixelBytes(layout) at pixels.
    DibMemory(const DibLayout& layout, uint8_t* header, uint8_t* pixels)
        : layout_(layout), header_(header), pixels_(pixels) {}

    // A copy in memory of its own, with run lengths expanded. RequirePixels() has passed, and HoldsPixels(). Raises
    // what ReadIndices() raises.
    static DibMemory CopyOf(const DibView& dib);

    // Whether note (3) holds.
    static bool HoldsPixels(const DibLayout& layout);
    // The entries of the palette that there are and that pixels can have, none for more than 8 bits.
    static size_t Entries(const DibLayout& layout);
    // The bytes from the header to the end of its palette. (The palette may be longer than pixels need.)
    static uint64_t HeaderBytes(const DibLayout& layout) {
        return layout.paletteStart + layout.PaletteEntries() * layout.entryBytes;
    }

    const DibLayout& layout() const { return layout_; }
    uint8_t* header() const { return header_; }
    uint8_t* pixels() const { return pixels_; }
    // y counts from the top.
    uint8_t* row(int32_t y) const {
        return pixels_ + static_cast<size_t>(layout_.stride) * static_cast<size_t>(layout_.StoredRow(y));
    }
    size_t entries() const { return Entries(layout_); }
    // Blue, green, red. i < entries()
    uint8_t* entry(size_t i) const { return header_ + layout_.paletteStart + i * layout_.entryBytes; }

    // With the palette as it is now.
    DibView View() const;

    // Whether any of these bytes lie in memory of its own.
    bool Overlaps(const void* bytes, size_t size) const { return owned_.Overlaps(bytes, size); }

    // Both above 0, or both 0; also into the header.
    void PutMicrons(double x, double y);

    // Header, masks and palette of a packed copy.
    std::vector<uint8_t> PackedHeader(DibHeaderKind kind) const;
    // Its pixels, with padding: stride * height bytes.
    void CopyPixels(uint8_t* to) const;

private:
    DibLayout layout_;
    PixelBuffer owned_;
    uint8_t* header_ = nullptr;
    uint8_t* pixels_ = nullptr;
};

// The bitmap in `bytes`, which begin with its header, and which must outlive it. Raises the faults of the header,
// DibFault::TooShort.
DibView ReadPackedDib(std::span<const uint8_t> bytes);

}  // namespace orlix
