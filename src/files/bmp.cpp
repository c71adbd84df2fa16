#include "files/bmp.hpp"

#include <algorithm>
#include <cstring>
#include <limits>

#include "component/failure.hpp"
#include "image/byte_order.hpp"
#include "image/palette.hpp"

namespace orlix {
namespace {

// "BM", size of the file (often wrong, not used), 4 reserved bytes, start of the pixels.
constexpr size_t kFileHeader = 14;
constexpr uint32_t kCoreHeader = 12;  // OS/2 1.x: sizes of 16 bits, palette entries of 3 bytes
constexpr uint32_t kInfoHeader = 40;  // longer headers begin with the same fields
constexpr uint32_t kUncompressed = 0;

[[noreturn]] void BadBmpHeader() {
    throw Failure("IImageVPAEx::CreateFromBmp: problems reading bmp header", DISP_E_EXCEPTION);
}

struct BmpLayout {
    int32_t width = 0, height = 0;
    bool topDown = false;
    uint64_t stride = 0;  // bytes of a row, a multiple of 4
    uint64_t pixels = 0;  // where the first stored row starts
    double micronsX = 0.0, micronsY = 0.0;
    Palette palette;
};

// For an image without a palette: its indices are the grey levels.
Palette GreyRamp() {
    Palette ramp;
    ramp.count = 256;
    for (auto& level : ramp.level)
        for (size_t i = 0; i < 256; ++i) level[i] = static_cast<uint8_t>(i);
    return ramp;
}

// The palette lies between the header and the pixels. Entries are stored blue first; writers may omit the last ones.
Palette ReadPalette(std::span<const uint8_t> bytes, size_t entry, uint32_t declared) {
    const size_t present = std::min<size_t>({bytes.size() / entry, declared == 0 ? 256 : declared, 256});
    if (present == 0) return GreyRamp();
    Palette palette;
    palette.count = static_cast<int32_t>(present);
    for (size_t i = 0; i < present; ++i)
        for (size_t colour = 0; colour < 3; ++colour) palette.level[2 - colour][i] = bytes[i * entry + colour];
    return palette;
}

BmpLayout ReadLayout(std::span<const uint8_t> bytes) {
    if (bytes.size() < kFileHeader + 4) BadBmpHeader();
    const uint8_t* header = bytes.data() + kFileHeader;
    const uint32_t headerSize = LittleEndian32(header);
    const bool core = headerSize == kCoreHeader;
    if ((!core && headerSize < kInfoHeader) || headerSize > bytes.size() - kFileHeader) BadBmpHeader();

    int64_t width = 0, height = 0;
    uint16_t planes = 0, bits = 0;
    uint32_t compression = kUncompressed, colours = 0;
    BmpLayout layout;
    if (core) {
        width = LittleEndian16(header + 4);
        height = LittleEndian16(header + 6);
        planes = LittleEndian16(header + 8);
        bits = LittleEndian16(header + 10);
    } else {
        width = static_cast<int32_t>(LittleEndian32(header + 4));
        height = static_cast<int32_t>(LittleEndian32(header + 8));
        planes = LittleEndian16(header + 12);
        bits = LittleEndian16(header + 14);
        compression = LittleEndian32(header + 16);
        const auto perMetreX = static_cast<int32_t>(LittleEndian32(header + 24));
        const auto perMetreY = static_cast<int32_t>(LittleEndian32(header + 28));
        colours = LittleEndian32(header + 32);
        if (perMetreX > 0 && perMetreY > 0) {
            layout.micronsX = 1e6 / perMetreX;
            layout.micronsY = 1e6 / perMetreY;
        }
    }
    layout.topDown = height < 0;
    if (layout.topDown) height = -height;
    if (width <= 0 || height == 0 || height > std::numeric_limits<int32_t>::max() || planes != 1) BadBmpHeader();
    if (bits != 8)
        throw Failure("IImageVPAEx::CreateFromBmp: only bitmaps with eight bits per pixel are currently supported.",
                      DISP_E_EXCEPTION);
    if (compression != kUncompressed)
        throw Failure("IImageVPAEx::CreateFromBmp: compressed bitmaps are not currently supported.", DISP_E_EXCEPTION);

    layout.width = static_cast<int32_t>(width);
    layout.height = static_cast<int32_t>(height);
    layout.stride = (static_cast<uint64_t>(width) + 3) / 4 * 4;
    layout.pixels = LittleEndian32(bytes.data() + 10);
    const size_t paletteStart = kFileHeader + headerSize;
    if (layout.pixels < paletteStart) BadBmpHeader();
    // The last row may lack its padding. Fewer than 2^31 rows of at most 2^31 bytes do not overflow.
    if (layout.pixels + layout.stride * static_cast<uint64_t>(height - 1) + static_cast<uint64_t>(width) > bytes.size())
        throw Failure("IImageVPAEx::CreateFromBmp: the file is too short for its image.", DISP_E_EXCEPTION);
    layout.palette = ReadPalette(bytes.subspan(paletteStart, static_cast<size_t>(layout.pixels) - paletteStart),
                                 core ? 3 : 4, colours);
    return layout;
}

}  // namespace

bool LooksLikeBmp(std::span<const uint8_t> bytes) noexcept {
    return bytes.size() >= 2 && bytes[0] == 'B' && bytes[1] == 'M';
}

FileProperties ReadBmp(std::span<const uint8_t> bytes, PixelSink& sink, const SampleLimit& limit) {
    const BmpLayout layout = ReadLayout(bytes);
    const auto width = static_cast<size_t>(layout.width);
    const auto row = [&](int32_t y) {
        const int32_t stored = layout.topDown ? y : layout.height - 1 - y;
        return bytes.subspan(static_cast<size_t>(layout.pixels + layout.stride * static_cast<uint64_t>(stored)), width);
    };

    UsedIndices used{};
    for (int32_t y = 0; y < layout.height; ++y)
        for (const uint8_t index : row(y)) used[index] = true;
    if (!Covers(layout.palette, used))
        throw Failure("IImageVPAEx::CreateFromBmp: a pixel is outside the palette.", DISP_E_EXCEPTION);

    FileProperties properties;
    properties.width = layout.width;
    properties.height = layout.height;
    properties.bands = IsGrey(layout.palette, used) ? 1 : 3;
    properties.bits = 8;
    properties.micronsX = layout.micronsX;
    properties.micronsY = layout.micronsY;
    RequireWithin(limit, properties.width, properties.height, properties.bands);
    sink.Begin(properties);

    for (int32_t band = 0; band < properties.bands; ++band) {
        const auto& level = layout.palette.level[static_cast<size_t>(band)];
        for (int32_t y = 0; y < layout.height; ++y) {
            auto* out = static_cast<uint8_t*>(sink.Row(band, y));
            for (const uint8_t index : row(y)) *out++ = level[index];
        }
    }
    return properties;
}

}  // namespace orlix
