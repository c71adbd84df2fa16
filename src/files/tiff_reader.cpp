#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <new>
#include <optional>
#include <utility>
#include <vector>

#include "component/failure.hpp"
#include "files/private_chunks.hpp"
#include "files/tiff.hpp"
#include "files/tiff_calibration.hpp"
#include "files/tiff_directory.hpp"
#include "files/tiff_handle.hpp"
#include "files/tiff_texts.hpp"
#include "image/palette.hpp"

namespace orlix {
namespace {

[[noreturn]] void BadTiff(const char* text) { throw Failure(text, DISP_E_EXCEPTION); }
[[noreturn]] void BadTiffHeader() { BadTiff("IImageVPAEx::CreateFromTiff: problems reading tiff header"); }
[[noreturn]] void BadTiffPixels() { BadTiff("IImageVPAEx::CreateFromTiff: problems reading tiff pixels"); }

// The most decoded bytes that a stored byte can give.
uint64_t LargestExpansion(uint16_t compression) {
    switch (compression) {
        case COMPRESSION_NONE:
            return 1;
        case COMPRESSION_PACKBITS:
            return 64;  // a run of 128 for 2 bytes
        case COMPRESSION_LZW:
            return 2730;  // a code of 12 bits stands for less than 4096 bytes
        default:
            return 1032;  // deflate
    }
}
constexpr uint64_t kLargestExpansionOfAll = 2730;

// ---------------------------------------------------------------------------------------------------------------- file

class TiffFile {
public:
    explicit TiffFile(std::span<const uint8_t> bytes)
        : bytes_(bytes),
          library_(Library()),
          input_(bytes),
          // "h": the first directory is read only when it is asked for; "c": strips stay as they are.
          handle_(library_, input_, "rhc", (uint64_t{1} << 20) + kLargestExpansionOfAll * bytes.size()) {
        if (!handle_) BadTiffHeader();
    }

    const TiffLibrary& library() const { return library_; }
    TIFF* get() const { return handle_.get(); }
    std::span<const uint8_t> bytes() const { return bytes_; }

    int32_t Pages() const {
        // Writers have been seen that end the file before the last directory's link.
        constexpr tdir_t kMost = std::numeric_limits<int32_t>::max();
        return static_cast<int32_t>(std::clamp<tdir_t>(library_.TIFFNumberOfDirectories(get()), 1, kMost));
    }
    void ChoosePage(int32_t page) const {
        if (page > 0 && page >= Pages()) BadTiff("IImageFile::LoadFromFile: the file has no such page.");
        if (!library_.TIFFSetDirectory(get(), static_cast<tdir_t>(page))) BadTiffHeader();
    }
    bool discarded() const { return handle_.discarded(); }
    TiffDirectory Directory() const { return {bytes_, library_.TIFFCurrentDirOffset(get())}; }

    // The value of a field of 16 or 32 bits, as libtiff hands it out; nullopt if the file has none.
    template <class Value>
    std::optional<Value> Field(uint32_t tag) const {
        Value value = 0;
        return library_.TIFFGetField(get(), tag, &value) == 1 ? std::optional(value) : std::nullopt;
    }
    uint16_t FieldOrDefault(uint32_t tag) const {
        uint16_t value = 0;
        library_.TIFFGetFieldDefaulted(get(), tag, &value);
        return value;
    }

private:
    static const TiffLibrary& Library() {
        const TiffLibrary* library = FindTiffLibrary();
        if (!library) BadTiff("IImageVPAEx::CreateFromTiff: libtiff is not installed.");
        return *library;
    }

    std::span<const uint8_t> bytes_;
    const TiffLibrary& library_;
    TiffInput input_;
    TiffHandle handle_;
};

// -------------------------------------------------------------------------------------------------------------- layout

// How a stored sample becomes one of the image.
enum class TiffSample {
    Packed,  // 1 .. 15 bits, most significant bit first; up to 8 bits into bytes, more into words
    Byte,
    Word,
    DWord,
    SignedByte,  // into floating point
    SignedWord,
    Float
};

struct TiffLayout {
    int32_t width = 0, height = 0;
    int32_t bands = 1;  // of the image; with a palette 1 or 3, by the pixels
    int32_t samples = 1;
    int32_t bits = 1;
    TiffSample sample = TiffSample::Byte;
    bool planar = false;       // band by band; never with one sample
    bool whiteIsZero = false;  // for unsigned samples
    std::optional<Palette> palette;

    LONG DataType() const {
        switch (sample) {
            case TiffSample::Packed:
                return bits <= 8 ? DT_BYTE : DT_WORD;
            case TiffSample::Byte:
                return DT_BYTE;
            case TiffSample::Word:
                return DT_WORD;
            case TiffSample::DWord:
                return DT_DWORD;
            default:
                return DT_Float;
        }
    }
    int32_t SamplesPerPixel() const { return planar ? 1 : samples; }  // in a row of the file
    int32_t Planes() const { return planar ? samples : 1; }
};

TiffSample SampleOf(int32_t bits, uint16_t format) {
    switch (format) {
        case SAMPLEFORMAT_UINT:
        case SAMPLEFORMAT_VOID:
            if (bits == 8) return TiffSample::Byte;
            if (bits == 16) return TiffSample::Word;
            if (bits == 32) return TiffSample::DWord;
            if (bits == 1 || bits == 2 || bits == 4 || (bits > 8 && bits < 16)) return TiffSample::Packed;
            break;
        case SAMPLEFORMAT_INT:
            if (bits == 8) return TiffSample::SignedByte;
            if (bits == 16) return TiffSample::SignedWord;
            break;
        case SAMPLEFORMAT_IEEEFP:
            if (bits == 32) return TiffSample::Float;
            break;
    }
    BadTiff("IImageVPAEx::CreateFromTiff: the type of the samples is not supported.");
}

// The bands of a grey image: further samples are bands unless one of them is transparency.
int32_t GreyBands(const TiffFile& file, int32_t samples) {
    uint16_t count = 0;
    const uint16_t* kinds = nullptr;
    file.library().TIFFGetFieldDefaulted(file.get(), TIFFTAG_EXTRASAMPLES, &count, &kinds);
    // Without the tag nothing is said of them, which is how many programs write several channels.
    const std::span extra(kinds, kinds ? count : size_t{0});
    const bool transparency = std::ranges::any_of(extra, [](uint16_t kind) { return kind != EXTRASAMPLE_UNSPECIFIED; });
    return transparency ? 1 : samples;
}

Palette ReadColourMap(const TiffFile& file, int32_t bits) {
    uint16_t* colours[3] = {};
    if (file.library().TIFFGetField(file.get(), TIFFTAG_COLORMAP, &colours[0], &colours[1], &colours[2]) != 1)
        BadTiffHeader();
    Palette palette;
    palette.count = 1 << bits;
    const auto count = static_cast<size_t>(palette.count);
    bool narrow = true;  // programs that write 8-bit values all the same
    for (const uint16_t* colour : colours)
        narrow &= std::all_of(colour, colour + count, [](uint16_t value) { return value < 256; });
    for (size_t colour = 0; colour < 3; ++colour)
        for (size_t i = 0; i < count; ++i)
            palette.level[colour][i] = static_cast<uint8_t>(narrow ? colours[colour][i] : colours[colour][i] >> 8);
    return palette;
}

void ReadColourModel(const TiffFile& file, TiffLayout& layout) {
    const auto refuse = [] { BadTiff("IImageVPAEx::CreateFromTiff: the colour model is not supported."); };
    const auto model = file.Field<uint16_t>(TIFFTAG_PHOTOMETRIC);
    switch (model.value_or(layout.samples < 3 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB)) {
        case PHOTOMETRIC_MINISWHITE:
            // There is no largest value to count down from.
            if (layout.DataType() == DT_Float) refuse();
            layout.whiteIsZero = true;
            [[fallthrough]];
        case PHOTOMETRIC_MINISBLACK:
            layout.bands = GreyBands(file, layout.samples);
            return;
        case PHOTOMETRIC_RGB:
            if (layout.samples < 3) BadTiffHeader();
            layout.bands = 3;
            return;
        case PHOTOMETRIC_PALETTE:
            if (layout.samples != 1 || layout.bits > 8 || layout.DataType() != DT_BYTE) refuse();
            layout.palette = ReadColourMap(file, layout.bits);
            return;
    }
    refuse();
}

TiffLayout ReadTiffLayout(const TiffFile& file) {
    const uint16_t compression = file.FieldOrDefault(TIFFTAG_COMPRESSION);
    constexpr uint16_t kCompressions[] = {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_PACKBITS,
                                          COMPRESSION_ADOBE_DEFLATE, COMPRESSION_DEFLATE};
    if (std::ranges::find(kCompressions, compression) == std::end(kCompressions))
        BadTiff("IImageVPAEx::CreateFromTiff: the compression is not supported.");
    const uint32_t width = file.Field<uint32_t>(TIFFTAG_IMAGEWIDTH).value_or(0);
    const uint32_t height = file.Field<uint32_t>(TIFFTAG_IMAGELENGTH).value_or(0);
    constexpr uint32_t kMost = std::numeric_limits<int32_t>::max();
    TiffLayout layout;
    layout.samples = file.FieldOrDefault(TIFFTAG_SAMPLESPERPIXEL);
    layout.bits = file.FieldOrDefault(TIFFTAG_BITSPERSAMPLE);
    if (width == 0 || width > kMost || height == 0 || height > kMost || layout.samples == 0) BadTiffHeader();
    layout.width = static_cast<int32_t>(width);
    layout.height = static_cast<int32_t>(height);
    layout.sample = SampleOf(layout.bits, file.FieldOrDefault(TIFFTAG_SAMPLEFORMAT));
    layout.planar = layout.samples > 1 && file.FieldOrDefault(TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE;
    ReadColourModel(file, layout);
    return layout;
}

// -------------------------------------------------------------------------------------------------------------- pixels

// A part of a stored row, decoded: `count` pixels from x0 on, of one band or of all (plane 0).
struct TiffPiece {
    int32_t plane, y, x0, count;
    const uint8_t* samples;
};

// Decodes all of a page, strip by strip or tile by tile, into memory for one row or tile.
class TiffDecoder {
public:
    TiffDecoder(const TiffFile& file, const TiffLayout& layout) : file_(file), layout_(layout) {
        const TiffLibrary& library = file.library();
        tiled_ = library.TIFFIsTiled(file.get()) != 0;
        uint64_t parts = static_cast<uint64_t>(layout.height) * static_cast<uint64_t>(layout.Planes());
        if (tiled_) {
            const auto tileWidth = file.Field<uint32_t>(TIFFTAG_TILEWIDTH).value_or(0);
            const auto tileHeight = file.Field<uint32_t>(TIFFTAG_TILELENGTH).value_or(0);
            constexpr uint32_t kMost = std::numeric_limits<int32_t>::max();
            if (tileWidth == 0 || tileWidth > kMost || tileHeight == 0 || tileHeight > kMost) BadTiffHeader();
            tileWidth_ = static_cast<int32_t>(tileWidth);
            tileHeight_ = static_cast<int32_t>(tileHeight);
            parts = library.TIFFNumberOfTiles(file.get());
            partBytes_ = library.TIFFTileSize64(file.get());
            rowBytes_ = library.TIFFTileRowSize64(file.get());
        } else {
            partBytes_ = rowBytes_ = library.TIFFScanlineSize64(file.get());
        }
        // libtiff gives 0 where it would overflow.
        if (parts == 0 || partBytes_ == 0 || rowBytes_ < RowBytes(tiled_ ? tileWidth_ : layout.width) ||
            (tiled_ && partBytes_ / rowBytes_ < static_cast<uint64_t>(tileHeight_)))
            BadTiffHeader();
        RequireEnoughBytes(parts);
    }

    // Memory for a row or tile is taken here; see RequireWithin() for the image itself.
    void RequireWithinLimit(const SampleLimit& limit) const {
        RequireWithin(limit, tiled_ ? tileWidth_ : layout_.width, tiled_ ? tileHeight_ : 1, layout_.SamplesPerPixel());
    }

    // Calls use(piece) for every part of the image. Pixels of tiles outside the image are left out.
    template <class Use>
    void ForEachPiece(const Use& use) const {
        if (partBytes_ > std::numeric_limits<size_t>::max() / 2) throw std::bad_alloc();
        std::vector<uint8_t> memory(static_cast<size_t>(partBytes_));
        for (int32_t plane = 0; plane < layout_.Planes(); ++plane)
            tiled_ ? ReadTiles(plane, memory, use) : ReadRows(plane, memory, use);
        if (file_.discarded()) BadTiffPixels();
    }

private:
    // Checks that the stored bytes can give the image, before memory is taken for it. Strips and tiles may share bytes
    // of the file, as nothing forbids; they do not count twice.
    void RequireEnoughBytes(uint64_t parts) const {
        const TiffLibrary& library = file_.library();
        const uint64_t stored = tiled_ ? parts : library.TIFFNumberOfStrips(file_.get());
        const uint64_t size = file_.bytes().size();
        uint64_t present = 0;
        for (uint64_t i = 0; i < stored && present < size; ++i)
            present += std::min(size, library.TIFFGetStrileByteCount(file_.get(), static_cast<uint32_t>(i)));
        const uint64_t most =
            std::min(present, size) * LargestExpansion(file_.FieldOrDefault(TIFFTAG_COMPRESSION)) / partBytes_;
        if (parts > most) BadTiff("IImageVPAEx::CreateFromTiff: the file is too short for its image.");
    }

    // Bytes that hold this many pixels; fewer than 2^31 of at most 2^16 samples of 32 bits.
    uint64_t RowBytes(int32_t pixels) const {
        return (static_cast<uint64_t>(pixels) * static_cast<uint64_t>(layout_.SamplesPerPixel() * layout_.bits) + 7) /
               8;
    }

    template <class Use>
    void ReadRows(int32_t plane, std::vector<uint8_t>& memory, const Use& use) const {
        for (int32_t y = 0; y < layout_.height; ++y) {
            if (file_.library().TIFFReadScanline(file_.get(), memory.data(), static_cast<uint32_t>(y),
                                                 static_cast<uint16_t>(plane)) != 1)
                BadTiffPixels();
            use(TiffPiece{plane, y, 0, layout_.width, memory.data()});
        }
    }
    template <class Use>
    void ReadTiles(int32_t plane, std::vector<uint8_t>& memory, const Use& use) const {
        // In 64 bits, because the end of the last tile may lie beyond 2^31.
        for (int64_t top = 0; top < layout_.height; top += tileHeight_)
            for (int64_t left = 0; left < layout_.width; left += tileWidth_) {
                if (file_.library().TIFFReadTile(file_.get(), memory.data(), static_cast<uint32_t>(left),
                                                 static_cast<uint32_t>(top), 0, static_cast<uint16_t>(plane)) < 0)
                    BadTiffPixels();
                const auto columns = static_cast<int32_t>(std::min<int64_t>(tileWidth_, layout_.width - left));
                const auto rows = static_cast<int32_t>(std::min<int64_t>(tileHeight_, layout_.height - top));
                for (int32_t row = 0; row < rows; ++row)
                    use(TiffPiece{plane, static_cast<int32_t>(top) + row, static_cast<int32_t>(left), columns,
                                  memory.data() + static_cast<size_t>(rowBytes_) * static_cast<size_t>(row)});
            }
    }

    const TiffFile& file_;
    const TiffLayout& layout_;
    bool tiled_ = false;
    int32_t tileWidth_ = 0, tileHeight_ = 0;
    uint64_t partBytes_ = 0;  // of a row of the file, or of a tile
    uint64_t rowBytes_ = 0;   // of a row of either
};

// Every `step`-th sample of a row from the given one on, of whole bytes in the machine's order.
template <class In, class Out>
void TakeSamples(const uint8_t* in, size_t step, int32_t count, Out* out) {
    for (int32_t x = 0; x < count; ++x, in += step * sizeof(In)) {
        In value;
        std::memcpy(&value, in, sizeof value);
        out[x] = static_cast<Out>(value);
    }
}

// The same of packed samples, which start at any bit. The first is sample number `first`.
template <class Out>
void TakePacked(const uint8_t* in, size_t first, size_t step, int32_t bits, int32_t count, Out* out) {
    const uint32_t mask = (1u << bits) - 1;
    const auto size = static_cast<size_t>(bits);
    for (int32_t x = 0; x < count; ++x) {
        const size_t bit = (first + step * static_cast<size_t>(x)) * size;
        // No more bytes than the sample has, at most three.
        uint32_t value = 0;
        size_t taken = 0;
        for (size_t at = bit / 8; taken < bit % 8 + size; ++at, taken += 8) value = value << 8 | in[at];
        out[x] = static_cast<Out>(value >> (taken - bit % 8 - size) & mask);
    }
}

template <class Value>
void InvertSamples(Value* values, int32_t count, Value largest) {
    for (int32_t x = 0; x < count; ++x) values[x] = static_cast<Value>(largest - values[x]);
}

void TakeBytes(const TiffLayout& layout, const TiffPiece& piece, int32_t sample, uint8_t* out) {
    const auto step = static_cast<size_t>(layout.SamplesPerPixel()), first = static_cast<size_t>(sample);
    if (layout.sample == TiffSample::Byte)
        TakeSamples<uint8_t>(piece.samples + first, step, piece.count, out);
    else
        TakePacked(piece.samples, first, step, layout.bits, piece.count, out);
}

// Puts the samples of one band into the row of the image.
void TakeBand(const TiffLayout& layout, const TiffPiece& piece, int32_t sample, void* row) {
    const auto step = static_cast<size_t>(layout.SamplesPerPixel()), first = static_cast<size_t>(sample);
    const auto x0 = static_cast<size_t>(piece.x0);
    switch (layout.DataType()) {
        case DT_BYTE: {
            auto* const out = static_cast<uint8_t*>(row) + x0;
            TakeBytes(layout, piece, sample, out);
            if (layout.bits < 8)
                for (int32_t x = 0; x < piece.count; ++x)
                    out[x] = static_cast<uint8_t>(out[x] * (255 / ((1 << layout.bits) - 1)));
            if (layout.whiteIsZero) InvertSamples<uint8_t>(out, piece.count, 255);
            return;
        }
        case DT_WORD: {
            auto* const out = static_cast<uint16_t*>(row) + x0;
            if (layout.sample == TiffSample::Word)
                TakeSamples<uint16_t>(piece.samples + 2 * first, step, piece.count, out);
            else
                TakePacked(piece.samples, first, step, layout.bits, piece.count, out);
            if (layout.whiteIsZero)
                InvertSamples<uint16_t>(out, piece.count, static_cast<uint16_t>((1u << layout.bits) - 1));
            return;
        }
        case DT_DWORD: {
            auto* const out = static_cast<uint32_t*>(row) + x0;
            TakeSamples<uint32_t>(piece.samples + 4 * first, step, piece.count, out);
            if (layout.whiteIsZero) InvertSamples<uint32_t>(out, piece.count, 0xFFFFFFFF);
            return;
        }
        default: {
            auto* const out = static_cast<float*>(row) + x0;
            if (layout.sample == TiffSample::SignedByte)
                TakeSamples<int8_t>(piece.samples + first, step, piece.count, out);
            else if (layout.sample == TiffSample::SignedWord)
                TakeSamples<int16_t>(piece.samples + 2 * first, step, piece.count, out);
            else  // moved as bits: a signalling NaN stays one
                TakeSamples<uint32_t>(piece.samples + 4 * first, step, piece.count, reinterpret_cast<uint32_t*>(out));
        }
    }
}

UsedIndices FindUsedByTiff(const TiffLayout& layout, const TiffDecoder& decoder) {
    UsedIndices used{};
    std::vector<uint8_t> indices(static_cast<size_t>(layout.width));
    decoder.ForEachPiece([&](const TiffPiece& piece) {
        TakeBytes(layout, piece, 0, indices.data());
        for (int32_t x = 0; x < piece.count; ++x) used[indices[static_cast<size_t>(x)]] = true;
    });
    return used;
}

void ReadTiffIndices(const TiffLayout& layout, const TiffDecoder& decoder, PixelSink& sink) {
    std::vector<uint8_t> indices(static_cast<size_t>(layout.width));
    decoder.ForEachPiece([&](const TiffPiece& piece) {
        TakeBytes(layout, piece, 0, indices.data());
        for (int32_t band = 0; band < layout.bands; ++band) {
            const auto& level = layout.palette->level[static_cast<size_t>(band)];
            auto* const out = static_cast<uint8_t*>(sink.Row(band, piece.y)) + piece.x0;
            for (int32_t x = 0; x < piece.count; ++x) out[x] = level[indices[static_cast<size_t>(x)]];
        }
    });
}

void ReadBands(const TiffLayout& layout, const TiffDecoder& decoder, PixelSink& sink) {
    decoder.ForEachPiece([&](const TiffPiece& piece) {
        if (!layout.planar)
            for (int32_t band = 0; band < layout.bands; ++band) TakeBand(layout, piece, band, sink.Row(band, piece.y));
        else if (piece.plane < layout.bands)
            TakeBand(layout, piece, 0, sink.Row(piece.plane, piece.y));
    });
}

// ---------------------------------------------------------------------------------------------------------- properties

// Everything but the pixels. Texts are those that libtiff's writer keeps, then those of other programs' tags.
void ReadTiffKept(const TiffDirectory& directory, FileProperties& properties) {
    ImageProperties& kept = properties.kept;
    TakeFramedChunks(directory.Find(kTiffPrivateTag, tiff::kUndefined), "TIFF private tag", properties);
    DropUnfitSettings(properties);
    const auto resolution = FindResolution(directory, "TIFF resolution");
    const bool exact = kept.micronsX > 0 && (!resolution || HasRounded(kept, *resolution));
    const auto size = exact ? std::nullopt : FindPixelSize(directory, "TIFF resolution");
    if (size) kept.PutMicrons(size->micronsX, size->micronsY, size->from);
    KeepTexts(directory, kept);
}

}  // namespace

bool LooksLikeTiff(std::span<const uint8_t> bytes) noexcept {
    constexpr std::array<uint8_t, 4> kBeginnings[] = {
        {'I', 'I', 42, 0}, {'M', 'M', 0, 42}, {'I', 'I', 43, 0}, {'M', 'M', 0, 43}};
    return bytes.size() >= 4 && std::ranges::any_of(kBeginnings, [&](const auto& beginning) {
               return std::equal(beginning.begin(), beginning.end(), bytes.begin());
           });
}

int32_t CountTiffPages(std::span<const uint8_t> bytes) { return TiffFile(bytes).Pages(); }

FileProperties ReadTiff(std::span<const uint8_t> bytes, PixelSink& sink, const ReadOptions& options) {
    const TiffFile file(bytes);
    file.ChoosePage(options.page);
    TiffLayout layout = ReadTiffLayout(file);
    const TiffDecoder decoder(file, layout);
    decoder.RequireWithinLimit(options.limit);
    RequireWithin(options.limit, layout.width, layout.height, layout.bands);
    if (layout.palette) {
        // The number of bands depends on the entries in use, so the pixels are decoded twice.
        layout.bands = IsGrey(*layout.palette, FindUsedByTiff(layout, decoder)) ? 1 : 3;
        RequireWithin(options.limit, layout.width, layout.height, layout.bands);
    }

    FileProperties properties;
    properties.width = layout.width;
    properties.height = layout.height;
    properties.bands = layout.bands;
    properties.dataType = layout.DataType();
    if (layout.sample == TiffSample::Packed && layout.bits > 8) properties.kept.significantBits = layout.bits;
    ReadTiffKept(file.Directory(), properties);
    sink.Begin(properties);
    layout.palette ? ReadTiffIndices(layout, decoder, sink) : ReadBands(layout, decoder, sink);
    return properties;
}

}  // namespace orlix
