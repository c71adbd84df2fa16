#include "dib/dib_layout.hpp"

#include <algorithm>
#include <bit>
#include <limits>

#include "image/byte_order.hpp"
#include "image/pixel_size.hpp"

namespace orlix {
namespace {

constexpr uint32_t kInfoHeader = 40;
constexpr uint32_t kHeaderWithMasks = 52;  // and all longer ones, except:
constexpr uint32_t kOs2Header = 64;        // OS/2 2.x: other fields in the place of the masks

void Require(bool condition, DibFault fault) {
    if (!condition) throw DibFailure(fault);
}

bool IsContiguous(uint32_t mask) { return mask == 0 || std::has_single_bit((mask >> std::countr_zero(mask)) + 1ull); }

bool FitsDepth(const DibFields& fields) {
    switch (fields.compression) {
        case kPlain:
            return true;
        case kRuns8:
            return fields.bits == 8 && !fields.topDown;
        case kRuns4:
            return fields.bits == 4 && !fields.topDown;
        case kMasks:
        case kMasksWithAlpha:
            // In OS/2's header the numbers stand for other methods; between 40 and 52 bytes nobody says where they are.
            return (fields.bits == 16 || fields.bits == 32) && fields.size != kOs2Header &&
                   (fields.size == kInfoHeader || fields.size >= kHeaderWithMasks);
        default:
            return false;
    }
}

}  // namespace

DibFields ReadDibFields(std::span<const uint8_t> bytes) {
    Require(bytes.size() >= 4, DibFault::Header);
    const uint8_t* const header = bytes.data();
    DibFields fields;
    fields.size = LittleEndian32(header);
    Require((fields.core() || fields.size >= kInfoHeader) && fields.size <= bytes.size(), DibFault::Header);
    int64_t width = 0, height = 0;
    uint16_t planes = 0;
    if (fields.core()) {
        width = LittleEndian16(header + 4);
        height = LittleEndian16(header + 6);
        planes = LittleEndian16(header + 8);
        fields.bits = LittleEndian16(header + 10);
    } else {
        width = static_cast<int32_t>(LittleEndian32(header + 4));
        height = static_cast<int32_t>(LittleEndian32(header + 8));
        planes = LittleEndian16(header + 12);
        fields.bits = LittleEndian16(header + 14);
        fields.compression = LittleEndian32(header + 16);
        const auto perMetreX = static_cast<int32_t>(LittleEndian32(header + 24));
        const auto perMetreY = static_cast<int32_t>(LittleEndian32(header + 28));
        fields.colours = LittleEndian32(header + 32);
        if (perMetreX > 0 && perMetreY > 0) {
            fields.micronsX = 1e6 / perMetreX;
            fields.micronsY = 1e6 / perMetreY;
        }
    }
    fields.topDown = height < 0;
    if (fields.topDown) height = -height;
    Require(width > 0 && height > 0 && height <= std::numeric_limits<int32_t>::max() && planes == 1, DibFault::Header);
    fields.width = static_cast<int32_t>(width);
    fields.height = static_cast<int32_t>(height);
    return fields;
}

DibLayout ReadDibLayout(const DibFields& fields, std::span<const uint8_t> bytes) {
    const uint32_t bits = fields.bits;
    const bool deep = bits == 16 || bits == 32;
    Require(bits == 1 || bits == 4 || bits == 8 || bits == 24 || (deep && !fields.core()), DibFault::Depth);
    Require(FitsDepth(fields), DibFault::Compression);

    DibLayout layout{fields};
    layout.paletteStart = fields.size;
    layout.entryBytes = fields.core() ? 3 : 4;
    layout.rowBytes = (static_cast<uint64_t>(fields.width) * bits + 7) / 8;
    layout.stride = (layout.rowBytes + 3) / 4 * 4;
    if (fields.compression == kMasks || fields.compression == kMasksWithAlpha) {
        const size_t behind = fields.size != kInfoHeader ? 0 : fields.compression == kMasks ? 12 : 16;
        layout.paletteStart += behind;
        Require(layout.paletteStart <= bytes.size(), DibFault::Masks);
        for (size_t channel = 0; channel < 3; ++channel) {
            const uint32_t mask = LittleEndian32(bytes.data() + kInfoHeader + 4 * channel);
            Require(IsContiguous(mask) && (bits == 32 || mask <= 0xFFFF), DibFault::Masks);
            layout.masks[channel] = mask;
        }
        Require((layout.masks[0] | layout.masks[1] | layout.masks[2]) != 0, DibFault::Masks);
    } else if (deep) {
        layout.masks = bits == 16 ? std::array<uint32_t, 3>{0x7C00, 0x03E0, 0x001F}
                                  : std::array<uint32_t, 3>{0xFF0000, 0x00FF00, 0x0000FF};
    }
    return layout;
}

Palette ReadDibPalette(const DibLayout& layout, std::span<const uint8_t> entries) {
    const size_t most = size_t{1} << layout.bits;
    const uint64_t declared = layout.PaletteEntries();
    const size_t present =
        std::min({entries.size() / layout.entryBytes, most, static_cast<size_t>(std::min<uint64_t>(declared, most))});
    Palette palette;
    palette.count = static_cast<int32_t>(present == 0 ? most : present);
    for (size_t i = 0; i < static_cast<size_t>(palette.count); ++i)
        for (size_t colour = 0; colour < 3; ++colour)
            palette.level[2 - colour][i] =
                present == 0 ? static_cast<uint8_t>(255 * i / (most - 1)) : entries[i * layout.entryBytes + colour];
    return palette;
}

DibLayout PlainDibLayout(int32_t width, int32_t height, bool topDown, uint32_t bits) {
    DibFields fields;
    fields.size = kInfoHeader;
    fields.width = width;
    fields.height = height;
    fields.topDown = topDown;
    fields.bits = bits;
    return ReadDibLayout(fields, {});
}

std::vector<uint8_t> GreyDibEntries(uint32_t bits) {
    std::vector<uint8_t> entries(bits <= 8 ? size_t{4} << bits : 0);
    for (size_t i = 0; i < entries.size(); ++i)
        if (i % 4 != 3) entries[i] = static_cast<uint8_t>(255 * (i / 4) / ((size_t{1} << bits) - 1));
    return entries;
}

std::vector<uint8_t> MakeDibHeader(const DibLayout& layout, std::span<const uint8_t> entries, DibHeaderKind kind) {
    constexpr size_t kColourSpaceAt = 56, kIntentAt = 108;
    constexpr uint32_t kSrgb = 0x73524742, kPictures = 4;
    const auto size = static_cast<uint32_t>(kind);
    const bool masked = layout.masks != PlainDibLayout(1, 1, false, layout.bits).masks;
    const uint64_t pixels = layout.stride * static_cast<uint64_t>(layout.height);
    const int32_t perMetreX = PixelsPerMetre(layout.micronsX), perMetreY = PixelsPerMetre(layout.micronsY);
    const bool known = perMetreX != 0 && perMetreY != 0;
    std::vector<uint8_t> bytes(masked ? std::max(size, kHeaderWithMasks) : size);
    uint8_t* const header = bytes.data();
    PutLittleEndian32(header, size);
    PutLittleEndian32(header + 4, static_cast<uint32_t>(layout.width));
    PutLittleEndian32(header + 8, static_cast<uint32_t>(layout.topDown ? -layout.height : layout.height));
    PutLittleEndian16(header + 12, 1);  // planes
    PutLittleEndian16(header + 14, static_cast<uint16_t>(layout.bits));
    PutLittleEndian32(header + 16, masked ? kMasks : kPlain);
    PutLittleEndian32(header + 20, pixels > UINT32_MAX ? 0 : static_cast<uint32_t>(pixels));
    PutLittleEndian32(header + 24, known ? static_cast<uint32_t>(perMetreX) : 0);
    PutLittleEndian32(header + 28, known ? static_cast<uint32_t>(perMetreY) : 0);
    PutLittleEndian32(header + 32, static_cast<uint32_t>(entries.size() / 4));
    for (size_t i = 0; masked && i < layout.masks.size(); ++i)
        PutLittleEndian32(header + kInfoHeader + 4 * i, layout.masks[i]);
    if (kind == DibHeaderKind::V5) {
        PutLittleEndian32(header + kColourSpaceAt, kSrgb);
        PutLittleEndian32(header + kIntentAt, kPictures);
    }
    bytes.insert(bytes.end(), entries.begin(), entries.end());
    return bytes;
}

}  // namespace orlix
