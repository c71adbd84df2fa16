// Headers of device-independent bitmaps (DIBs), as BMP files, the clipboard and drivers hold them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <span>
#include <vector>

#include "image/palette.hpp"

namespace orlix {

// What is wrong with a DIB. Whoever reads one gives it a text.
enum class DibFault : uint8_t {
    Header,       // truncated, an unknown size, no width or height, several planes
    Depth,        // bits per pixel other than 1, 4, 8, 16, 24, 32 (16 and 32 only with a header of 40 bytes or more)
    Compression,  // unknown, or not for this depth, or of top-down rows
    Masks,        // cut off, with gaps, or none for any colour
    TooShort,     // fewer bytes than the pixels need
    Runs,         // run lengths that leave the image
    Palette,      // a pixel without an entry
};

class DibFailure final : public std::exception {
public:
    explicit DibFailure(DibFault fault) noexcept : fault_(fault) {}
    const char* what() const noexcept override { return "a device-independent bitmap that cannot be read"; }
    DibFault fault() const noexcept { return fault_; }

private:
    DibFault fault_;
};

// The compression of a header, with its number there. Others are not read.
enum DibCompression : uint32_t { kPlain = 0, kRuns8 = 1, kRuns4 = 2, kMasks = 3, kMasksWithAlpha = 6 };

// The fields of a header, of which only the size of the image has been checked.
struct DibFields {
    uint32_t size = 0;              // of the header: 12, or 40 and more
    int32_t width = 0, height = 0;  // at least 1
    bool topDown = false;
    uint32_t bits = 0;
    uint32_t compression = kPlain;
    uint32_t colours = 0;                   // declared entries of the palette; 0: as many as the bits can tell apart
    double micronsX = 0.0, micronsY = 0.0;  // size of a pixel: both above 0, or both 0 if it is not known

    bool core() const { return size == 12; }  // OS/2 1.x: sizes of 16 bits, palette entries of 3 bytes
};

// A header that can be read. Notes:
//  (1) Rows follow each other in memory, bottom row first unless topDown, each padded to a multiple of 4 bytes.
//  (2) Run lengths (kRuns8, kRuns4) are bottom-up always.
struct DibLayout : DibFields {
    std::array<uint32_t, 3> masks{};  // red, green, blue of 16 and 32 bits; contiguous bits, or 0: the channel is 0
    size_t paletteStart = 0;          // from the start of the header
    size_t entryBytes = 4;            // of the palette: blue, green, red (and an unused byte)
    uint64_t rowBytes = 0;            // without padding
    uint64_t stride = 0;

    bool compressed() const { return compression == kRuns8 || compression == kRuns4; }
    bool hasPalette() const { return bits <= 8; }
    // The row in memory of row y, which counts from the top; and back.
    int32_t StoredRow(int32_t y) const { return topDown ? y : height - 1 - y; }
    // Bytes of uncompressed pixels, of whose last row the padding may be missing. Below 2^63.
    uint64_t PixelBytes() const { return stride * static_cast<uint64_t>(height - 1) + rowBytes; }
    // Entries of the palette that lies between the header and the pixels of a DIB in one piece. Depths above 8 may
    // have one too, for displays with a palette of their own.
    uint64_t PaletteEntries() const { return colours != 0 || bits > 8 ? colours : uint64_t{1} << bits; }
};

// `bytes` begins with a header: BITMAPCOREHEADER, BITMAPINFOHEADER, those of 52, 56, 64, 108 and 124 bytes, and any
// other from 40 bytes on, which all begin with the fields of BITMAPINFOHEADER. DibFault::Header.
DibFields ReadDibFields(std::span<const uint8_t> bytes);

// The masks are in the header from 52 bytes on, behind one of 40. Raises Depth, Compression, Masks.
DibLayout ReadDibLayout(const DibFields& fields, std::span<const uint8_t> bytes);

// The palette of up to 8 bits; `entries` is the memory for it. Writers may omit the last entries. Without a single one
// the pixels are grey levels: 0 and 255, multiples of 17, or all 256.
Palette ReadDibPalette(const DibLayout& layout, std::span<const uint8_t> entries);

// An uncompressed bitmap behind a header of 40 bytes. width and height are positive, bits 1, 4, 8, 16 (5 for each
// colour), 24 or 32.
DibLayout PlainDibLayout(int32_t width, int32_t height, bool topDown, uint32_t bits);

// The grey levels above as entries of 4 bytes; none for more than 8 bits.
std::vector<uint8_t> GreyDibEntries(uint32_t bits);

// Headers that others read: BITMAPINFOHEADER and BITMAPV5HEADER (sRGB).
enum class DibHeaderKind : uint8_t { Info = 40, V5 = 124 };

// The header of uncompressed pixels of this layout, masks where they are not those of a plain layout, and the palette:
// `entries` of 4 bytes. The size of a pixel becomes whole pixels per metre, or 0 where one of them is not in
// 1 .. 2^31 - 1. A size of the pixels of 2^32 or more is stored as 0.
std::vector<uint8_t> MakeDibHeader(const DibLayout& layout, std::span<const uint8_t> entries,
                                   DibHeaderKind kind = DibHeaderKind::Info);

}  // namespace orlix
