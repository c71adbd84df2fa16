#include "files/bmp.hpp"

#include <algorithm>
#include <limits>

#include "component/failure.hpp"
#include "image/byte_order.hpp"

namespace orlix {
namespace {

const char* TextOf(DibFault fault) {
    switch (fault) {
        case DibFault::Depth:
            return "IImageVPAEx::CreateFromBmp: unknown number of bits per pixel.";
        case DibFault::Compression:
            return "IImageVPAEx::CreateFromBmp: unknown compression.";
        case DibFault::Masks:
            return "IImageVPAEx::CreateFromBmp: invalid colour masks.";
        case DibFault::TooShort:
            return "IImageVPAEx::CreateFromBmp: the file is too short for its image.";
        case DibFault::Runs:
            return "IImageVPAEx::CreateFromBmp: the run lengths leave the image.";
        case DibFault::Palette:
            return "IImageVPAEx::CreateFromBmp: a pixel is outside the palette.";
        case DibFault::Header:
            break;
    }
    return "IImageVPAEx::CreateFromBmp: problems reading bmp header";
}

// "BM", size of the file (often wrong, not used), 4 reserved bytes, start of the pixels; then the DIB's header.
std::span<const uint8_t> BehindFileHeader(std::span<const uint8_t> bytes) {
    if (bytes.size() < kBmpFileHeader) throw DibFailure(DibFault::Header);
    return bytes.subspan(kBmpFileHeader);
}

}  // namespace

bool LooksLikeBmp(std::span<const uint8_t> bytes) noexcept {
    return bytes.size() >= 2 && bytes[0] == 'B' && bytes[1] == 'M';
}

DibView ReadBmpView(std::span<const uint8_t> bytes) {
    const std::span<const uint8_t> header = BehindFileHeader(bytes);
    const DibFields fields = ReadDibFields(header);
    DibView dib{ReadDibLayout(fields, header), {}, {}};
    const size_t pixels = LittleEndian32(bytes.data() + 10);
    const size_t palette = kBmpFileHeader + dib.layout.paletteStart;
    if (pixels < palette) throw DibFailure(DibFault::Header);
    if (pixels > bytes.size()) throw DibFailure(DibFault::TooShort);
    dib.pixels = bytes.subspan(pixels);
    RequirePixels(dib);
    if (dib.layout.hasPalette()) dib.palette = ReadDibPalette(dib.layout, bytes.subspan(palette, pixels - palette));
    return dib;
}

void PutBmpFileHeader(uint8_t* header, uint64_t fileSize, uint64_t pixelsAt) {
    header[0] = 'B';
    header[1] = 'M';
    PutLittleEndian32(header + 2, static_cast<uint32_t>(fileSize));
    PutLittleEndian32(header + 6, 0);
    PutLittleEndian32(header + 10, static_cast<uint32_t>(pixelsAt));
}

FileProperties ReadBmp(std::span<const uint8_t> bytes, PixelSink& sink, const ReadOptions& options) try {
    if (!options.anyBitmap) {
        const DibFields fields = ReadDibFields(BehindFileHeader(bytes));
        if (fields.bits != 8)
            throw Failure("IImageVPAEx::CreateFromBmp: only bitmaps with eight bits per pixel are currently supported.",
                          DISP_E_EXCEPTION);
        if (fields.compression != kPlain)
            throw Failure("IImageVPAEx::CreateFromBmp: compressed bitmaps are not currently supported.",
                          DISP_E_EXCEPTION);
    }
    const DibView dib = ReadBmpView(bytes);
    FileProperties properties;
    properties.width = dib.layout.width;
    properties.height = dib.layout.height;
    if (dib.layout.micronsX > 0)
        properties.kept.PutMicrons(dib.layout.micronsX, dib.layout.micronsY, "BMP pixels per metre");
    // Which bands there are shows in the pixels only, and run lengths can hold many more of these than bytes.
    if (dib.layout.compressed()) RequireWithin(options.limit, properties.width, properties.height, 1);
    properties.bands = DibBands(dib);
    RequireWithin(options.limit, properties.width, properties.height, properties.bands);
    sink.Begin(properties);
    ReadDibSamples(dib, properties.bands,
                   [&](int32_t band, int32_t y) { return static_cast<uint8_t*>(sink.Row(band, y)); });
    return properties;
} catch (const DibFailure& failure) {
    throw Failure(TextOf(failure.fault()), DISP_E_EXCEPTION);
}

std::vector<uint8_t> WriteBmp(const FileProperties& properties, PixelSource& source, const WriteOptions&) {
    DibLayout layout = PlainDibLayout(properties.width, properties.height, false, properties.bands == 1 ? 8 : 24);
    layout.micronsX = properties.kept.micronsX;
    layout.micronsY = properties.kept.micronsY;
    const std::vector<uint8_t> header = MakeDibHeader(layout, GreyDibEntries(layout.bits));
    const auto width = static_cast<size_t>(properties.width), bands = static_cast<size_t>(properties.bands);
    const uint64_t start = kBmpFileHeader + header.size(), stride = layout.stride;
    const auto height = static_cast<uint64_t>(properties.height);
    // Below 2^31 rows of less than 2^33 bytes.
    if (const uint64_t size = start + stride * height;
        size > UINT32_MAX || size > std::numeric_limits<ptrdiff_t>::max())
        throw Failure("IImageFile::SaveToFile: the image is too large for the format.");

    std::vector<uint8_t> bytes(static_cast<size_t>(start + stride * height));
    PutBmpFileHeader(bytes.data(), bytes.size(), start);
    std::copy(header.begin(), header.end(), bytes.begin() + kBmpFileHeader);
    uint8_t* row = bytes.data() + start;
    for (int32_t y = properties.height - 1; y >= 0; --y, row += stride)
        for (size_t band = 0; band < bands; ++band) {
            const auto* const in = static_cast<const uint8_t*>(source.Row(static_cast<int32_t>(band), y));
            uint8_t* const out = row + (bands - 1 - band);  // blue first
            for (size_t x = 0; x < width; ++x) out[x * bands] = in[x];
        }
    return bytes;
}

}  // namespace orlix
