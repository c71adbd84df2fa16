#include "files/jpeg.hpp"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "component/failure.hpp"
#include "files/jpeg_codec.hpp"
#include "files/private_chunks.hpp"
#include "files/tiff_calibration.hpp"
#include "files/tiff_directory.hpp"
#include "files/tiff_texts.hpp"
#include "image/byte_order.hpp"
#include "text/encoding.hpp"

namespace orlix {
namespace {

using namespace std::string_view_literals;

[[noreturn]] void BadJpeg(const char* text) { throw Failure(text, DISP_E_EXCEPTION); }
constexpr auto kJpegTooShort = "IImageVPAEx::CreateFromJpeg: the file is too short for its image.";
[[noreturn]] void BadJpegHeader() { BadJpeg("IImageVPAEx::CreateFromJpeg: problems reading jpeg header"); }

constexpr uint8_t kJpegStart = 0xD8, kJpegEnd = 0xD9, kJpegScan = 0xDA, kJpegComment = 0xFE;
constexpr uint8_t kJpegJfifSegment = 0xE0, kJpegExifSegment = 0xE1, kJpegPrivateSegment = 0xE9;
constexpr uint8_t kJpegHuffmanTables = 0xC4, kJpegReserved = 0xC8, kJpegArithmeticTables = 0xCC;
// How their segments begin.
constexpr auto kJfif = "JFIF\0"sv, kExif = "Exif\0\0"sv, kPrivate = "Orlix\0"sv;
constexpr size_t kLargestSegment = 0xFFFF - 2;

// ------------------------------------------------------------------------------------------------------------ segments

bool IsRestart(uint8_t marker) { return (marker & 0xF8) == 0xD0; }

struct JpegSegment {
    uint8_t marker = 0;
    std::span<const uint8_t> data;
    size_t end = 0;  // behind it
};

// The segment at a place behind the start marker; markers without data have none.
JpegSegment SegmentAt(std::span<const uint8_t> bytes, size_t at) {
    const auto need = [&](size_t end) {
        if (end > bytes.size()) BadJpegHeader();
    };
    need(at + 2);
    if (bytes[at] != 0xFF) BadJpegHeader();
    while (bytes[at + 1] == 0xFF) need(++at + 2);  // fill bytes
    const uint8_t marker = bytes[at + 1];
    const bool alone = marker == 0x01 || IsRestart(marker) || marker == kJpegStart || marker == kJpegEnd;
    if (alone) return {marker, {}, at + 2};
    need(at + 4);
    const size_t size = BigEndian16(&bytes[at + 2]);
    if (size < 2) BadJpegHeader();
    need(at + 2 + size);
    return {marker, bytes.subspan(at + 4, size - 2), at + 2 + size};
}

// The data behind the name with which a segment begins; nullopt for a segment of another name.
std::optional<std::span<const uint8_t>> Named(const JpegSegment& segment, std::string_view name) {
    if (segment.data.size() < name.size() ||
        !std::equal(name.begin(), name.end(), segment.data.begin(), [](char c, uint8_t b) { return uint8_t(c) == b; }))
        return std::nullopt;
    return segment.data.subspan(name.size());
}

// ------------------------------------------------------------------------------------------------------------- reading

struct JpegHeader {
    JpegSize size;
    std::span<const uint8_t> jfif, exif;
    std::vector<uint8_t> kept;  // of the private segments
    WideString comment;
    size_t end = 0;  // of the segment that begins the first scan
};

bool IsFrame(uint8_t marker) {
    return (marker & 0xF0) == 0xC0 && marker != kJpegHuffmanTables && marker != kJpegReserved &&
           marker != kJpegArithmeticTables;
}

void ReadFrame(const JpegSegment& segment, JpegHeader& header) {
    if (header.size.width > 0 || segment.data.size() < 6) BadJpegHeader();
    const uint8_t precision = segment.data[0], components = segment.data[5];
    // Baseline, extended and progressive by Huffman's code.
    if (segment.marker > 0xC2 || precision != 8)
        BadJpeg("IImageVPAEx::CreateFromJpeg: the kind of compression is not supported.");
    if (components == 4) BadJpeg("IImageVPAEx::CreateFromJpeg: images in CMYK are not supported.");
    header.size = {BigEndian16(&segment.data[3]), BigEndian16(&segment.data[1]), components};
    if (header.size.width == 0 || header.size.height == 0 || (components != 1 && components != 3)) BadJpegHeader();
}

JpegHeader ReadJpegHeader(std::span<const uint8_t> bytes) {
    JpegHeader header;
    for (size_t at = 2;;) {
        const JpegSegment segment = SegmentAt(bytes, at);
        at = segment.end;
        if (segment.marker == kJpegScan) {
            header.end = at;
            break;
        }
        if (segment.marker == kJpegStart || segment.marker == kJpegEnd) BadJpegHeader();
        if (IsFrame(segment.marker)) {
            ReadFrame(segment, header);
        } else if (segment.marker == kJpegJfifSegment) {
            if (const auto data = Named(segment, kJfif); data && header.jfif.empty()) header.jfif = *data;
        } else if (segment.marker == kJpegExifSegment) {
            if (const auto data = Named(segment, kExif); data && header.exif.empty()) header.exif = *data;
        } else if (segment.marker == kJpegPrivateSegment) {
            if (const auto data = Named(segment, kPrivate))
                header.kept.insert(header.kept.end(), data->begin(), data->end());
        } else if (segment.marker == kJpegComment && header.comment.empty()) {
            const auto end = std::ranges::find(segment.data, uint8_t{0});  // some writers add one
            header.comment = FromUtf8OrLatin1(segment.data.first(static_cast<size_t>(end - segment.data.begin())));
        }
    }
    if (header.size.width == 0) BadJpegHeader();
    return header;
}

[[noreturn]] void BadJpegPixels() { BadJpeg("IImageVPAEx::CreateFromJpeg: problems reading jpeg pixels"); }

// Goes from the first scan's data to the end marker. What was cut off has none, which not every codec tells. Every scan
// of a progressive file passes over all of the image, however short the scan: a small file could take minutes.
void RequireJpegEnd(std::span<const uint8_t> bytes, size_t at) {
    constexpr int kMostScans = 100;
    for (int scans = 1; scans <= kMostScans;) {
        const auto escape = std::find(bytes.begin() + static_cast<ptrdiff_t>(at), bytes.end(), uint8_t{0xFF});
        at = static_cast<size_t>(escape - bytes.begin());
        if (at + 2 > bytes.size()) BadJpeg(kJpegTooShort);
        const uint8_t marker = bytes[at + 1];
        if (marker == kJpegEnd) return;
        if (marker == kJpegScan) ++scans;
        if (marker == 0xFF)
            ++at;  // a fill byte
        else if (marker == 0 || IsRestart(marker))
            at += 2;  // is data
        else
            at = SegmentAt(bytes, at).end;
    }
    BadJpegPixels();
}

// The resolution of the header: version, unit (1: inch, 2: centimetre), then pixels in it.
std::optional<PixelSize> JfifPixelSize(std::span<const uint8_t> jfif) {
    if (jfif.size() < 7) return std::nullopt;
    const double x = BigEndian16(&jfif[3]), y = BigEndian16(&jfif[5]);
    const double microns = jfif[2] == 1 ? 25400 : jfif[2] == 2 ? 10000 : 0;
    if (microns == 0 || x == 0 || y == 0) return std::nullopt;
    return PixelSize{microns / x, microns / y, "JFIF density"};
}

void ReadJpegKept(const JpegHeader& header, FileProperties& properties) {
    ImageProperties& kept = properties.kept;
    TakeFramedChunks(header.kept, "JPEG private segment", properties);
    DropUnfitSettings(properties);
    const TiffDirectory exif(header.exif);
    auto size = FindResolution(exif, "Exif resolution");
    double rounding = kResolutionRounding;
    if (!size && (size = JfifPixelSize(header.jfif)))  // rounded to whole pixels
        rounding = 1.0 / std::min(BigEndian16(&header.jfif[3]), BigEndian16(&header.jfif[5]));
    if (size && !HasRounded(kept, *size, rounding)) kept.PutMicrons(size->micronsX, size->micronsY, size->from);
    if (!kept.hasDescription && !header.comment.empty()) kept.Keep({WideString(kDescriptionKeyword), header.comment});
    KeepTexts(exif, kept);
}

bool IsGreyJpeg(std::span<const uint8_t> bytes, const JpegSize& size) {
    bool grey = true;
    const bool decoded = DecodeJpeg(bytes, size, [&](const uint8_t* row) {
        for (const uint8_t* end = row + 3 * static_cast<size_t>(size.width); row != end && grey; row += 3)
            grey = row[0] == row[1] && row[0] == row[2];
        return grey;
    });
    if (!decoded) BadJpegPixels();
    return grey;
}

// ------------------------------------------------------------------------------------------------------------- writing

using JpegBytes = std::vector<uint8_t>;

void Append16(JpegBytes& bytes, uint32_t value) {
    bytes.resize(bytes.size() + 2);
    PutBigEndian16(&bytes[bytes.size() - 2], static_cast<uint16_t>(value));
}
void Append32(JpegBytes& bytes, uint32_t value) {
    Append16(bytes, value >> 16);
    Append16(bytes, value);
}

void AppendSegment(JpegBytes& bytes, uint8_t marker, std::string_view name, std::span<const uint8_t> data) {
    bytes.push_back(0xFF);
    bytes.push_back(marker);
    Append16(bytes, static_cast<uint32_t>(2 + name.size() + data.size()));
    bytes.insert(bytes.end(), name.begin(), name.end());
    bytes.insert(bytes.end(), data.begin(), data.end());
}

// Pixels in a centimetre.
double PerCentimetre(double microns) { return 10000 / microns; }

void AppendJfif(JpegBytes& bytes, const ImageProperties& kept) {
    const auto fits = [](double value) { return value >= 0.5 && value < 65535.5; };
    double x = PerCentimetre(kept.micronsX), y = PerCentimetre(kept.micronsY);
    const bool known = kept.micronsX > 0 && fits(x) && fits(y);
    if (!known) x = y = 1;  // the shape of a pixel
    JpegBytes data = {1, 2, static_cast<uint8_t>(known ? 2 : 0)};
    Append16(data, static_cast<uint32_t>(x + 0.5));
    Append16(data, static_cast<uint32_t>(y + 0.5));
    Append16(data, 0);  // no thumbnail
    AppendSegment(bytes, kJpegJfifSegment, kJfif, data);
}

void AppendRational(JpegBytes& bytes, double value) {
    const TiffRational rational = RationalOf(value);
    Append32(bytes, rational.numerator);
    Append32(bytes, rational.denominator);
}

void AppendExif(JpegBytes& bytes, const ImageProperties& kept) {
    const double x = PerCentimetre(kept.micronsX), y = PerCentimetre(kept.micronsY);
    const auto fits = [](double value) { return value >= 1e-3 && value < 4e9; };
    if (!(kept.micronsX > 0) || !fits(x) || !fits(y)) return;
    constexpr uint32_t kEntries = 3, kValues = 8 + 2 + kEntries * 12 + 4;
    JpegBytes data = {'M', 'M', 0, 42, 0, 0, 0, 8};
    const auto entry = [&](uint32_t tag, uint32_t type, uint32_t value) {
        Append16(data, tag);
        Append16(data, type);
        Append32(data, 1);
        Append32(data, value);
    };
    Append16(data, kEntries);
    entry(tiff::kXResolution, tiff::kRational, kValues);
    entry(tiff::kYResolution, tiff::kRational, kValues + 8);
    entry(tiff::kResolutionUnit, tiff::kShort, uint32_t{tiff::kCentimetre} << 16);
    Append32(data, 0);  // no further directory
    AppendRational(data, x);
    AppendRational(data, y);
    AppendSegment(bytes, kJpegExifSegment, kExif, data);
}

void AppendComment(JpegBytes& bytes, const ImageProperties& kept) {
    if (!kept.hasDescription || kept.description.empty()) return;
    std::string text = ToUtf8Bytes(kept.description);
    if (text.size() > kLargestSegment) {
        text.resize(kLargestSegment);
        // Not in the middle of a character, which begins with another byte than 10xxxxxx.
        while (!text.empty() && (text.back() & 0xC0) == 0x80) text.pop_back();
        if (!text.empty()) text.pop_back();
    }
    AppendSegment(bytes, kJpegComment, text, {});
}

void AppendPrivate(JpegBytes& bytes, const FileProperties& properties) {
    const std::vector<uint8_t> chunks = FramedChunks(properties);
    for (std::span<const uint8_t> rest = chunks; !rest.empty();) {
        const auto part = rest.first(std::min(rest.size(), kLargestSegment - kPrivate.size()));
        AppendSegment(bytes, kJpegPrivateSegment, kPrivate, part);
        rest = rest.subspan(part.size());
    }
}

}  // namespace

bool LooksLikeJpeg(std::span<const uint8_t> bytes) noexcept {
    return bytes.size() >= 3 && bytes[0] == 0xFF && bytes[1] == kJpegStart && bytes[2] == 0xFF;
}

FileProperties ReadJpeg(std::span<const uint8_t> bytes, PixelSink& sink, const ReadOptions& options) {
    const JpegHeader header = ReadJpegHeader(bytes);
    const JpegSize& size = header.size;
    // A block of 8 x 8 samples takes a bit at least, and there are four times as many blocks in the component that has
    // the most, whatever the sampling factors.
    constexpr uint64_t kMostPixels = 4 * 8 * 64;  // for a byte
    if (static_cast<uint64_t>(size.width) * static_cast<uint64_t>(size.height) > kMostPixels * bytes.size())
        BadJpeg(kJpegTooShort);
    RequireJpegEnd(bytes, header.end);
    RequireWithin(options.limit, size.width, size.height, 1);

    FileProperties properties;
    properties.width = size.width;
    properties.height = size.height;
    properties.bands = size.bands == 3 && !IsGreyJpeg(bytes, size) ? 3 : 1;
    RequireWithin(options.limit, size.width, size.height, properties.bands);
    ReadJpegKept(header, properties);
    sink.Begin(properties);
    int32_t y = 0;
    const bool decoded = DecodeJpeg(bytes, size, [&](const uint8_t* row) {
        for (int32_t band = 0; band < properties.bands; ++band) {
            auto* const out = static_cast<uint8_t*>(sink.Row(band, y));
            for (int32_t x = 0; x < size.width; ++x) out[x] = row[x * size.bands + band];
        }
        ++y;
        return true;
    });
    if (!decoded) BadJpegPixels();
    return properties;
}

std::vector<uint8_t> WriteJpeg(const FileProperties& properties, PixelSource& source, const WriteOptions& options) {
    const JpegSize size{properties.width, properties.height, properties.bands};
    constexpr int32_t kMost = 65500;  // libjpeg's; the format has 35 more
    if (std::max(size.width, size.height) > kMost)
        throw Failure("IImageFile::SaveToFile: the image is too large for the format.");
    const JpegBytes encoded = EncodeJpeg(size, options.quality, [&](int32_t y, uint8_t* row) {
        for (int32_t band = 0; band < size.bands; ++band) {
            const auto* const in = static_cast<const uint8_t*>(source.Row(band, y));
            for (int32_t x = 0; x < size.width; ++x) row[x * size.bands + band] = in[x];
        }
    });
    if (!LooksLikeJpeg(encoded)) throw Failure("IImageFile::SaveToFile: problems writing jpeg file");
    JpegBytes bytes = {0xFF, kJpegStart};
    AppendJfif(bytes, properties.kept);
    AppendExif(bytes, properties.kept);
    AppendComment(bytes, properties.kept);
    AppendPrivate(bytes, properties);
    // The codec's own segments tell of no resolution, or of a wrong one.
    size_t at = 2;
    for (JpegSegment own = SegmentAt(encoded, at); own.marker == kJpegJfifSegment || own.marker == kJpegExifSegment;
         own = SegmentAt(encoded, at))
        at = own.end;
    bytes.insert(bytes.end(), encoded.begin() + static_cast<ptrdiff_t>(at), encoded.end());
    return bytes;
}

}  // namespace orlix
