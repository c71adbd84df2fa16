#include <algorithm>
#include <array>
#include <bit>
#include <limits>

#include "component/failure.hpp"
#include "files/pnm.hpp"
#include "image/byte_order.hpp"

namespace orlix {
namespace {

struct PnmTexts {
    const char* header;
    const char* tooShort;
    const char* aboveMaximum;
    const char* values;
};
constexpr PnmTexts kPgmTexts = {"IImageVPAEx::CreateFromFile: problems reading pgm header",
                                "IImageVPAEx::CreateFromFile: the pgm file is too short for its image.",
                                "IImageVPAEx::CreateFromFile: a pgm value is above the declared maximum.",
                                "IImageVPAEx::CreateFromFile: problems reading pgm values"};
constexpr PnmTexts kPpmTexts = {"IImageVPAEx::CreateFromFile: problems reading ppm header",
                                "IImageVPAEx::CreateFromFile: the ppm file is too short for its image.",
                                "IImageVPAEx::CreateFromFile: a ppm value is above the declared maximum.",
                                "IImageVPAEx::CreateFromFile: problems reading ppm values"};

[[noreturn]] void BadPnm(const char* text) { throw Failure(text, DISP_E_EXCEPTION); }

constexpr bool IsBlank(uint8_t c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
constexpr bool IsDigit(uint8_t c) { return c >= '0' && c <= '9'; }
constexpr bool IsLineEnd(uint8_t c) { return c == '\n' || c == '\r'; }

// "P" and the digit of the kind, followed by a blank or a comment.
bool BeginsWith(std::span<const uint8_t> bytes, uint8_t kind) {
    return bytes.size() >= 3 && bytes[0] == 'P' && bytes[1] == kind && (IsBlank(bytes[2]) || bytes[2] == '#');
}

constexpr uint32_t kLargestNumber = std::numeric_limits<int32_t>::max();
constexpr uint32_t kTooLarge = kLargestNumber + 1;
constexpr uint32_t kNoNumber = kLargestNumber + 2;

class Scanner {
public:
    explicit Scanner(std::span<const uint8_t> bytes) : bytes_(bytes) {}

    std::span<const uint8_t> Rest() const { return bytes_.subspan(position_); }
    bool AtEnd() const { return position_ == bytes_.size(); }

    // Skips separators and reads a decimal number: kTooLarge above 2^31 - 1, kNoNumber if there is none.
    uint32_t Number() {
        SkipSeparators();
        if (AtEnd() || !IsDigit(bytes_[position_])) return kNoNumber;
        uint64_t number = 0;
        for (; !AtEnd() && IsDigit(bytes_[position_]); ++position_)
            number = std::min<uint64_t>(number * 10 + (bytes_[position_] - uint32_t{'0'}), kTooLarge);
        return static_cast<uint32_t>(number);
    }

    // Skips one blank, or a comment with its line end; false if there is neither.
    bool OneSeparator() {
        if (!AtEnd() && bytes_[position_] == '#') SkipComment();
        if (AtEnd() || !IsBlank(bytes_[position_])) return false;
        ++position_;
        return true;
    }

    // Whether a number has ended properly: nothing but a separator or the end may follow.
    bool AtSeparator() const { return AtEnd() || IsBlank(bytes_[position_]) || bytes_[position_] == '#'; }

private:
    void SkipComment() {
        while (!AtEnd() && !IsLineEnd(bytes_[position_])) ++position_;
    }
    void SkipSeparators() {
        for (; !AtEnd(); ++position_) {
            if (bytes_[position_] == '#') SkipComment();
            if (AtEnd() || !IsBlank(bytes_[position_])) return;
        }
    }

    std::span<const uint8_t> bytes_;
    size_t position_ = 0;
};

struct PnmHeader {
    FileProperties properties;
    bool plain = false;
    uint32_t maximum = 0;
};

PnmHeader ReadHeader(std::span<const uint8_t> bytes, Scanner& scanner, const PnmTexts& texts) {
    PnmHeader header;
    header.plain = bytes[1] == '2' || bytes[1] == '3';
    const uint32_t width = scanner.Number();
    const uint32_t height = scanner.AtSeparator() ? scanner.Number() : kNoNumber;
    header.maximum = scanner.AtSeparator() ? scanner.Number() : kNoNumber;
    if (width == 0 || width > kLargestNumber || height == 0 || height > kLargestNumber) BadPnm(texts.header);
    if (header.maximum == 0 || header.maximum > 65535 || !scanner.OneSeparator()) BadPnm(texts.header);
    header.properties.width = static_cast<int32_t>(width);
    header.properties.height = static_cast<int32_t>(height);
    header.properties.bands = bytes[1] == '3' || bytes[1] == '6' ? 3 : 1;
    header.properties.dataType = header.maximum <= 255 ? DT_BYTE : DT_WORD;
    if (std::has_single_bit(header.maximum + 1) && header.maximum != 255 && header.maximum != 65535)
        header.properties.kept.significantBits = std::countr_one(header.maximum);
    return header;
}

// Whether the samples, of at least `bytesEach` bytes each, fit into `present` bytes. Their number may reach 2^64.
bool Fits(const FileProperties& properties, uint64_t bytesEach, uint64_t present) {
    const auto rowBytes = static_cast<uint64_t>(properties.width) * static_cast<uint64_t>(properties.bands) * bytesEach;
    return rowBytes <= present / static_cast<uint64_t>(properties.height);
}

template <class Sample>
using BandRows = std::array<Sample*, 3>;

template <class Sample>
BandRows<Sample> RowsOf(PixelSink& sink, int32_t bands, int32_t y) {
    BandRows<Sample> rows{};
    for (int32_t band = 0; band < bands; ++band)
        rows[static_cast<size_t>(band)] = static_cast<Sample*>(sink.Row(band, y));
    return rows;
}

// Copies a row whose samples are interleaved: kBands of them for each pixel. Returns the largest.
template <class Sample, size_t kBands>
uint32_t CopyRawRow(const uint8_t* in, size_t width, BandRows<Sample> rows) {
    Sample largest = 0;
    for (size_t band = 0; band < kBands; ++band) {
        Sample* const out = rows[band];  // a copy, because a byte written through rows[band] might change rows itself
        for (size_t x = 0; x < width; ++x) {
            const uint8_t* at = in + (x * kBands + band) * sizeof(Sample);
            const Sample value = sizeof(Sample) == 1 ? *at : static_cast<Sample>(BigEndian16(at));
            out[x] = value;
            largest = std::max(largest, value);
        }
    }
    return largest;
}

template <class Sample>
void ReadRaw(std::span<const uint8_t> bytes, const PnmHeader& header, PixelSink& sink, const PnmTexts& texts) {
    const int32_t bands = header.properties.bands;
    const auto width = static_cast<size_t>(header.properties.width);
    const uint8_t* in = bytes.data();
    for (int32_t y = 0; y < header.properties.height; ++y) {
        const auto rows = RowsOf<Sample>(sink, bands, y);
        const uint32_t largest =
            bands == 1 ? CopyRawRow<Sample, 1>(in, width, rows) : CopyRawRow<Sample, 3>(in, width, rows);
        if (largest > header.maximum) BadPnm(texts.aboveMaximum);
        in += width * static_cast<size_t>(bands) * sizeof(Sample);
    }
}

template <class Sample>
void ReadPlain(Scanner& scanner, const PnmHeader& header, PixelSink& sink, const PnmTexts& texts) {
    const auto bands = static_cast<size_t>(header.properties.bands);
    const auto width = static_cast<size_t>(header.properties.width);
    for (int32_t y = 0; y < header.properties.height; ++y) {
        const auto rows = RowsOf<Sample>(sink, header.properties.bands, y);
        for (size_t x = 0; x < width; ++x)
            for (size_t band = 0; band < bands; ++band) {
                const uint32_t value = scanner.Number();
                if (value == kNoNumber) BadPnm(scanner.AtEnd() ? texts.tooShort : texts.values);
                if (!scanner.AtSeparator()) BadPnm(texts.values);
                if (value > header.maximum) BadPnm(texts.aboveMaximum);
                rows[band][x] = static_cast<Sample>(value);
            }
    }
}

}  // namespace

bool LooksLikePgm(std::span<const uint8_t> bytes) noexcept { return BeginsWith(bytes, '5'); }
bool LooksLikePpm(std::span<const uint8_t> bytes) noexcept { return BeginsWith(bytes, '6'); }
bool LooksLikePlainPgm(std::span<const uint8_t> bytes) noexcept { return BeginsWith(bytes, '2'); }
bool LooksLikePlainPpm(std::span<const uint8_t> bytes) noexcept { return BeginsWith(bytes, '3'); }

FileProperties ReadPnm(std::span<const uint8_t> bytes, PixelSink& sink, const ReadOptions& options) {
    const PnmTexts& texts = bytes[1] == '3' || bytes[1] == '6' ? kPpmTexts : kPgmTexts;
    Scanner scanner(bytes.subspan(2));
    const PnmHeader header = ReadHeader(bytes, scanner, texts);
    const bool wide = header.properties.dataType == DT_WORD;
    const std::span<const uint8_t> values = scanner.Rest();
    const auto begin = [&] {
        RequireWithin(options.limit, header.properties.width, header.properties.height, header.properties.bands);
        sink.Begin(header.properties);
    };

    if (header.plain) {
        // A value takes a digit and a separator; the last one needs no separator.
        if (!Fits(header.properties, 2, uint64_t{values.size()} + 1)) BadPnm(texts.tooShort);
        begin();
        wide ? ReadPlain<uint16_t>(scanner, header, sink, texts) : ReadPlain<uint8_t>(scanner, header, sink, texts);
    } else {
        if (!Fits(header.properties, wide ? 2 : 1, values.size())) BadPnm(texts.tooShort);
        begin();
        wide ? ReadRaw<uint16_t>(values, header, sink, texts) : ReadRaw<uint8_t>(values, header, sink, texts);
    }
    return header.properties;
}

}  // namespace orlix
