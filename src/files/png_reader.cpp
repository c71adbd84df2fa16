#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <utility>

#include "component/failure.hpp"
#include "files/checksums.hpp"
#include "files/inflater.hpp"
#include "files/png.hpp"
#include "files/png_filter.hpp"
#include "files/png_format.hpp"
#include "files/png_samples.hpp"
#include "files/png_text.hpp"
#include "files/private_chunks.hpp"
#include "frames/unpacking_kernels.hpp"
#include "image/byte_order.hpp"
#include "image/palette.hpp"
#include "image/pixel_size.hpp"

namespace orlix {
namespace {

using namespace png;

[[noreturn]] void BadPng(const char* text) { throw Failure(text, DISP_E_EXCEPTION); }
[[noreturn]] void BadPngHeader() { BadPng("IImageVPAEx::CreateFromPng: problems reading png header"); }
[[noreturn]] void BadOrder() { BadPng("IImageVPAEx::CreateFromPng: chunks are missing or out of order."); }
[[noreturn]] void BadPalette() { BadPng("IImageVPAEx::CreateFromPng: problems reading png palette"); }
[[noreturn]] void BadPixels() { BadPng("IImageVPAEx::CreateFromPng: problems reading png pixels"); }

// ----------------------------------------------------------------------------------------------------------- structure

struct PngHeader {
    uint32_t width = 0, height = 0;
    uint8_t depth = 0;  // bits of a sample, or of a palette index
    uint8_t colourType = kGrey;
    bool interlaced = false;

    // Samples of a stored pixel; an index counts as one.
    int32_t Samples() const {
        switch (colourType) {
            case kColour:
                return 3;
            case kGreyAlpha:
                return 2;
            case kColourAlpha:
                return 4;
            default:
                return 1;
        }
    }
    bool HasColour() const { return colourType == kColour || colourType == kColourAlpha; }
    uint64_t RowBytes(uint64_t pixels) const { return (pixels * static_cast<uint64_t>(Samples()) * depth + 7) / 8; }
    size_t PixelBytes() const { return std::max<size_t>(1, static_cast<size_t>(Samples()) * depth / 8); }
};

struct PngFile {
    PngHeader header;
    Palette palette;
    std::vector<std::span<const uint8_t>> pixels;  // the pieces of the compressed stream
    uint64_t compressedSize = 0;
    int32_t perMetreX = 0, perMetreY = 0;  // 0 for none
    int32_t significantBits = 0;           // of all colour channels; 0 for those of the file
    FileProperties properties;             // the number of bands may still become 3, by the palette
};

bool IsDepth(uint8_t colourType, uint8_t depth) {
    switch (colourType) {
        case kGrey:
            return depth == 1 || depth == 2 || depth == 4 || depth == 8 || depth == 16;
        case kIndexed:
            return depth == 1 || depth == 2 || depth == 4 || depth == 8;
        case kColour:
        case kGreyAlpha:
        case kColourAlpha:
            return depth == 8 || depth == 16;
        default:
            return false;
    }
}

PngHeader ParseHeader(std::span<const uint8_t> data) {
    if (data.size() != kHeaderSize) BadPngHeader();
    PngHeader header;
    header.width = BigEndian32(data.data());
    header.height = BigEndian32(data.data() + 4);
    header.depth = data[8];
    header.colourType = data[9];
    const uint8_t compression = data[10], filterMethod = data[11], interlace = data[12];
    header.interlaced = interlace == 1;
    if (header.width == 0 || header.width > kLargestNumber || header.height == 0 || header.height > kLargestNumber ||
        !IsDepth(header.colourType, header.depth) || compression != 0 || filterMethod != 0 || interlace > 1)
        BadPngHeader();
    return header;
}

Palette ParsePalette(std::span<const uint8_t> data, const PngHeader& header) {
    const size_t count = data.size() / 3;
    if (data.size() % 3 != 0 || count == 0 || count > 256 || header.colourType == kGrey ||
        header.colourType == kGreyAlpha)
        BadPalette();
    if (header.colourType == kIndexed && count > size_t{1} << header.depth) BadPalette();
    Palette palette;
    palette.count = static_cast<int32_t>(count);
    for (size_t i = 0; i < count; ++i)
        for (size_t colour = 0; colour < 3; ++colour) palette.level[colour][i] = data[3 * i + colour];
    return palette;
}

void ParsePixelSize(std::span<const uint8_t> data, PngFile& file) {
    if (data.size() != kPixelSizeSize || data[8] != kMetre) return;
    const uint32_t perMetreX = BigEndian32(data.data()), perMetreY = BigEndian32(data.data() + 4);
    if (perMetreX == 0 || perMetreX > kLargestNumber || perMetreY == 0 || perMetreY > kLargestNumber) return;
    file.perMetreX = static_cast<int32_t>(perMetreX);
    file.perMetreY = static_cast<int32_t>(perMetreY);
}

void ParseSignificantBits(std::span<const uint8_t> data, PngFile& file) {
    const PngHeader& header = file.header;
    if (header.depth < 8 || header.colourType == kIndexed || data.size() != static_cast<size_t>(header.Samples()))
        return;
    const auto channels = data.first(header.HasColour() ? 3 : 1);
    const uint8_t bits = channels.front();
    if (bits == 0 || bits >= header.depth || std::ranges::count(channels, bits) != std::ssize(channels)) return;
    file.significantBits = bits;
}

// The exact pixel size of the calibration chunk is still that of the image unless another program has changed the size
// that all programs know.
void ChoosePixelSize(PngFile& file) {
    ImageProperties& kept = file.properties.kept;
    if (file.perMetreX == 0 || (kept.micronsX > 0 && PixelsPerMetre(kept.micronsX) == file.perMetreX &&
                                PixelsPerMetre(kept.micronsY) == file.perMetreY))
        return;
    kept.PutMicrons(1e6 / file.perMetreX, 1e6 / file.perMetreY, "PNG pHYs chunk");
}

void KeepForeign(uint32_t type, std::span<const uint8_t> data, PngFile& file) {
    if (IsSafeToCopy(type))
        file.properties.kept.chunks.push_back({type, !file.pixels.empty(), {data.begin(), data.end()}});
}

struct Chunk {
    uint32_t type = 0;
    std::span<const uint8_t> data;
};

// Removes the first chunk from `bytes`.
Chunk TakeChunk(std::span<const uint8_t>& bytes) {
    if (bytes.size() < kChunkFrame) BadPng("IImageVPAEx::CreateFromPng: the file is truncated.");
    const size_t length = BigEndian32(bytes.data());
    if (length > bytes.size() - kChunkFrame) BadPng("IImageVPAEx::CreateFromPng: the file is truncated.");
    const auto checked = bytes.subspan(4, 4 + length);
    const uint32_t checksum = BigEndian32(bytes.data() + 8 + length);
    bytes = bytes.subspan(kChunkFrame + length);
    if (Choose(kCrc32)(0, checked.data(), checked.size()) != checksum)
        BadPng("IImageVPAEx::CreateFromPng: a checksum is wrong.");
    return {BigEndian32(checked.data()), checked.subspan(4)};
}

PngFile ParseFile(std::span<const uint8_t> bytes) {
    if (bytes.size() < kSignature.size() || !std::equal(kSignature.begin(), kSignature.end(), bytes.begin()))
        BadPngHeader();
    bytes = bytes.subspan(kSignature.size());

    PngFile file;
    const Chunk first = TakeChunk(bytes);
    if (first.type != kHeader) BadPngHeader();
    file.header = ParseHeader(first.data);
    file.properties.width = static_cast<int32_t>(file.header.width);
    file.properties.height = static_cast<int32_t>(file.header.height);
    file.properties.bands = file.header.HasColour() ? 3 : 1;
    file.properties.dataType = file.header.depth == 16 ? DT_WORD : DT_BYTE;
    size_t textBudget = kTextBudget;
    for (uint32_t previous = kHeader;;) {
        const auto [type, data] = TakeChunk(bytes);
        switch (type) {
            case kHeader:
                BadOrder();
            case kPalette:
                if (file.palette.count != 0 || !file.pixels.empty()) BadOrder();
                file.palette = ParsePalette(data, file.header);
                break;
            case kPixels:
                if (!file.pixels.empty() && previous != kPixels) BadOrder();
                file.pixels.push_back(data);
                file.compressedSize += data.size();
                break;
            case kEnd:
                if (file.pixels.empty()) BadOrder();
                if (file.header.colourType == kIndexed && file.palette.count == 0) BadPalette();
                ChoosePixelSize(file);
                return file;
            case kSignificantBits:
                ParseSignificantBits(data, file);
                break;
            case kPixelSize:
                ParsePixelSize(data, file);
                break;
            case kText:
            case kCompressedText:
            case kInternationalText:
                if (auto text = ReadText(type, data, textBudget)) file.properties.kept.Keep(std::move(*text));
                break;
            default:
                if (!IsOptional(type))
                    BadPng("IImageVPAEx::CreateFromPng: the file needs a chunk that is not supported.");
                if (!TakePrivateChunk(type, data, "PNG caLB chunk", file.properties)) KeepForeign(type, data, file);
        }
        previous = type;
    }
}

// -------------------------------------------------------------------------------------------------------------- passes

// The pixels of a pass: columns x0, x0 + dx, ... of rows y0, y0 + dy, ...
struct Pass {
    uint32_t x0, y0, dx, dy;

    uint32_t Width(const PngHeader& header) const { return header.width > x0 ? (header.width - x0 + dx - 1) / dx : 0; }
    uint32_t Height(const PngHeader& header) const {
        return header.height > y0 ? (header.height - y0 + dy - 1) / dy : 0;
    }
};
constexpr Pass kWholeImage[] = {{0, 0, 1, 1}};
constexpr Pass kInterlaced[] = {{0, 0, 8, 8}, {4, 0, 8, 8}, {0, 4, 4, 8}, {2, 0, 4, 4},
                                {0, 2, 2, 4}, {1, 0, 2, 2}, {0, 1, 1, 2}};

std::span<const Pass> PassesOf(const PngHeader& header) {
    if (header.interlaced) return kInterlaced;
    return kWholeImage;
}

// Every row is stored behind a byte that names its filter. Sizes are compared by division, because the product may
// reach 2^65.
void RequireEnoughBytes(const PngFile& file) {
    const uint64_t most = file.compressedSize * kLargestExpansion;
    uint64_t total = 0;
    for (const Pass& pass : PassesOf(file.header)) {
        const uint64_t width = pass.Width(file.header), height = pass.Height(file.header);
        if (width == 0 || height == 0) continue;
        const uint64_t rowBytes = 1 + file.header.RowBytes(width);
        if (rowBytes > most / height || rowBytes * height > most - total)
            BadPng("IImageVPAEx::CreateFromPng: the file is too short for its image.");
        total += rowBytes * height;
    }
}

// Decompresses and unfilters all rows, and calls row(pass, y in the image, pixels of the row, bytes) for each.
template <class RowFunction>
void DecodeRows(const PngFile& file, RowFunction&& row) {
    // Decompressing many rows at a time is faster, and so is undoing their filters; the block is small enough to stay
    // in the cache.
    constexpr uint64_t kBlock = 128 * 1024, kLargestBlock = 8 * kBlock, kGroup = kUnfilterRows;
    const uint64_t longest = 1 + file.header.RowBytes(file.header.width);
    const uint64_t blockRows = kGroup * longest <= kLargestBlock ? std::max(kGroup, kBlock / longest / kGroup * kGroup)
                                                                 : std::max<uint64_t>(1, kBlock / longest);
    if (longest * (blockRows + 1) > std::numeric_limits<size_t>::max() / 2) throw std::bad_alloc();
    const auto memory = std::make_unique_for_overwrite<uint8_t[]>(static_cast<size_t>(longest * (blockRows + 1)));

    Inflater inflater(file.pixels);
    const UnfilterFn unfilter = Choose(kUnfilter);
    const size_t pixelBytes = file.header.PixelBytes();
    for (const Pass& pass : PassesOf(file.header)) {
        const uint32_t width = pass.Width(file.header), height = pass.Height(file.header);
        if (width == 0 || height == 0) continue;
        const auto rowBytes = static_cast<size_t>(file.header.RowBytes(width));
        uint8_t* const above = memory.get();  // the last row of the previous block
        uint8_t* const block = above + rowBytes;
        std::memset(above, 0, rowBytes);
        for (uint32_t done = 0; done < height;) {
            const auto rows = static_cast<uint32_t>(std::min<uint64_t>(blockRows, height - done));
            const size_t wanted = (1 + rowBytes) * rows;
            if (inflater.Read({block, wanted}) != wanted) BadPixels();
            const uint8_t* stored = block;
            for (uint32_t i = 0; i < rows; ++i, stored += 1 + rowBytes)
                if (stored[0] >= kFilters) BadPixels();
            unfilter(block, rows, above, rowBytes, pixelBytes);
            stored = block;
            for (uint32_t i = 0; i < rows; ++i, stored += 1 + rowBytes)
                row(pass, pass.y0 + (done + i) * pass.dy, width, stored + 1);
            std::memcpy(above, stored - rowBytes, rowBytes);
            done += rows;
        }
    }
    if (!inflater.AtEnd()) BadPixels();
}

// ------------------------------------------------------------------------------------------------------------- samples

// Pixel x of a row with samples of `depth` bits, at most 8. The first sample of a byte is in its high bits.
uint8_t IndexAt(const uint8_t* bytes, size_t x, uint8_t depth) {
    const uint64_t bit = uint64_t{x} * depth;
    return static_cast<uint8_t>(bytes[bit / 8] >> (8 - depth - bit % 8) & ((1u << depth) - 1));
}

// The levels of the kPixels pixels of each possible byte.
template <size_t kPixels>
class ByteLevels {
public:
    explicit ByteLevels(const std::array<uint8_t, 256>& level) {
        for (size_t byte = 0; byte < 256; ++byte) {
            const auto stored = static_cast<uint8_t>(byte);
            for (size_t x = 0; x < kPixels; ++x) levels_[byte][x] = level[IndexAt(&stored, x, 8 / kPixels)];
        }
    }

    // Writes the levels of a row to out[0], out[step], ...
    void Apply(const uint8_t* bytes, size_t width, uint8_t* out, size_t step) const {
        if (step == 1)
            for (; width >= kPixels; width -= kPixels, out += kPixels)
                std::memcpy(out, levels_[*bytes++].data(), kPixels);
        for (size_t x = 0; x < width; ++x) out[x * step] = levels_[bytes[x / kPixels]][x % kPixels];
    }

private:
    std::array<std::array<uint8_t, kPixels>, 256> levels_;
};

template <class Sample>
Sample SampleAt(const uint8_t* bytes) {
    if constexpr (sizeof(Sample) == 1)
        return *bytes;
    else
        return BigEndian16(bytes);
}

// Writes the first kBands of every kSamples samples into the rows, at x0, x0 + dx, ...
template <class Sample, size_t kSamples, size_t kBands>
void Separate(const uint8_t* bytes, uint32_t width, const Pass& pass, const std::array<void*, 3>& rows) {
    std::array<Sample*, kBands> out;
    for (size_t band = 0; band < kBands; ++band) out[band] = static_cast<Sample*>(rows[band]) + pass.x0;
    const auto copy = [&](size_t step) {
        for (size_t x = 0; x < width; ++x)
            for (size_t band = 0; band < kBands; ++band)
                out[band][x * step] = SampleAt<Sample>(bytes + (x * kSamples + band) * sizeof(Sample));
    };
    if constexpr (sizeof(Sample) == 1 && kSamples == 1) {
        if (pass.dx == 1) return void(std::memcpy(out[0], bytes, width));
    } else if constexpr (sizeof(Sample) == 1 && kSamples == 3) {
        if (pass.dx == 1) return Choose(kSplitColours)(bytes, width, out[0], out[1], out[2]);
    }
    pass.dx == 1 ? copy(1) : copy(pass.dx);
}

template <class Sample>
void SeparateRow(const PngHeader& header, const uint8_t* bytes, uint32_t width, const Pass& pass,
                 const std::array<void*, 3>& rows) {
    switch (header.colourType) {
        case kGreyAlpha:
            return Separate<Sample, 2, 1>(bytes, width, pass, rows);
        case kColour:
            return Separate<Sample, 3, 3>(bytes, width, pass, rows);
        case kColourAlpha:
            return Separate<Sample, 4, 3>(bytes, width, pass, rows);
        default:
            return Separate<Sample, 1, 1>(bytes, width, pass, rows);
    }
}

void ReadSamples(const PngFile& file, int32_t bands, PixelSink& sink) {
    DecodeRows(file, [&](const Pass& pass, uint32_t y, uint32_t width, const uint8_t* bytes) {
        std::array<void*, 3> rows{};
        for (int32_t band = 0; band < bands; ++band)
            rows[static_cast<size_t>(band)] = sink.Row(band, static_cast<int32_t>(y));
        file.header.depth == 16 ? SeparateRow<uint16_t>(file.header, bytes, width, pass, rows)
                                : SeparateRow<uint8_t>(file.header, bytes, width, pass, rows);
    });
}

// Turns samples that were scaled from fewer bits into what they were, if all of them have the bits that scaling gives,
// or zeros behind theirs; otherwise they stay.
template <class Sample>
bool UnscaleSamples(int32_t bits, const FileProperties& properties, PixelSink& sink) {
    constexpr int32_t kDepth = 8 * sizeof(Sample);
    const int32_t shift = kDepth - bits;
    const std::vector<uint16_t> scaled = ScaledSamples(bits, kDepth);
    bool repeated = true, padded = true;
    const auto forRows = [&](const auto& use) {
        for (int32_t band = 0; band < properties.bands; ++band)
            for (int32_t y = 0; y < properties.height && (repeated || padded); ++y)
                use(std::span(static_cast<Sample*>(sink.Row(band, y)), static_cast<size_t>(properties.width)));
    };
    forRows([&](std::span<const Sample> row) {
        for (const Sample sample : row) {
            repeated &= sample == scaled[sample >> shift];
            padded &= static_cast<Sample>(sample >> shift << shift) == sample;
        }
    });
    forRows([&](std::span<Sample> row) {
        for (Sample& sample : row) sample = static_cast<Sample>(sample >> shift);
    });
    return repeated || padded;
}

bool Unscale(int32_t bits, const FileProperties& properties, PixelSink& sink) {
    return properties.dataType == DT_WORD ? UnscaleSamples<uint16_t>(bits, properties, sink)
                                          : UnscaleSamples<uint8_t>(bits, properties, sink);
}

template <size_t kPixels>
void ReadPacked(const PngFile& file, const Palette& palette, int32_t bands, PixelSink& sink) {
    std::vector<ByteLevels<kPixels>> levels;
    for (int32_t band = 0; band < bands; ++band) levels.emplace_back(palette.level[static_cast<size_t>(band)]);
    DecodeRows(file, [&](const Pass& pass, uint32_t y, uint32_t width, const uint8_t* bytes) {
        for (int32_t band = 0; band < bands; ++band) {
            auto* out = static_cast<uint8_t*>(sink.Row(band, static_cast<int32_t>(y))) + pass.x0;
            levels[static_cast<size_t>(band)].Apply(bytes, width, out, pass.dx);
        }
    });
}

// Reads pixels that are indices of a palette. The palette has an entry for each.
void ReadIndices(const PngFile& file, const Palette& palette, int32_t bands, PixelSink& sink) {
    switch (file.header.depth) {
        case 1:
            return ReadPacked<8>(file, palette, bands, sink);
        case 2:
            return ReadPacked<4>(file, palette, bands, sink);
        case 4:
            return ReadPacked<2>(file, palette, bands, sink);
        default:
            return ReadPacked<1>(file, palette, bands, sink);
    }
}

// The palette that scales grey of fewer than 8 bits to 0..255.
Palette GreyLevels(uint8_t depth) {
    Palette levels;
    levels.count = 1 << depth;
    for (int32_t i = 0; i < levels.count; ++i)
        levels.level[0][static_cast<size_t>(i)] = static_cast<uint8_t>(255 * i / (levels.count - 1));
    return levels;
}

// Decoding marks whole bytes; the pixels inside them are looked up at the end.
UsedIndices FindUsed(const PngFile& file) {
    const uint8_t depth = file.header.depth;
    const uint32_t perByte = 8u / depth;
    UsedIndices used{};
    std::array<bool, 256> seen{};
    DecodeRows(file, [&](const Pass&, uint32_t, uint32_t width, const uint8_t* bytes) {
        for (uint32_t i = 0; i < width / perByte; ++i) seen[bytes[i]] = true;
        for (uint32_t x = width - width % perByte; x < width; ++x) used[IndexAt(bytes, x, depth)] = true;
    });
    for (size_t byte = 0; byte < 256; ++byte) {
        const auto stored = static_cast<uint8_t>(byte);
        for (uint32_t x = 0; seen[byte] && x < perByte; ++x) used[IndexAt(&stored, x, depth)] = true;
    }
    return used;
}

}  // namespace

bool LooksLikePng(std::span<const uint8_t> bytes) noexcept {
    return bytes.size() >= 4 && std::equal(kSignature.begin(), kSignature.begin() + 4, bytes.begin());
}

FileProperties ReadPng(std::span<const uint8_t> bytes, PixelSink& sink, const ReadOptions& options) {
    PngFile file = ParseFile(bytes);
    RequireEnoughBytes(file);

    FileProperties& properties = file.properties;
    RequireWithin(options.limit, properties.width, properties.height, properties.bands);
    if (file.header.colourType == kIndexed) {
        // The number of bands depends on the entries in use, so the pixels are decoded twice. Files with palettes are
        // small.
        const UsedIndices used = FindUsed(file);
        if (!Covers(file.palette, used)) BadPng("IImageVPAEx::CreateFromPng: a pixel is outside the palette.");
        properties.bands = IsGrey(file.palette, used) ? 1 : 3;
        RequireWithin(options.limit, properties.width, properties.height, properties.bands);
        DropUnfitSettings(properties);
        sink.Begin(properties);
        ReadIndices(file, file.palette, properties.bands, sink);
    } else {
        DropUnfitSettings(properties);
        sink.Begin(properties);
        if (file.header.depth < 8)
            ReadIndices(file, GreyLevels(file.header.depth), properties.bands, sink);
        else
            ReadSamples(file, properties.bands, sink);
        if (file.significantBits > 0 && Unscale(file.significantBits, properties, sink))
            properties.kept.significantBits = file.significantBits;
    }
    return std::move(properties);
}

}  // namespace orlix
