#include "files/pnm.hpp"
#include "files/pnm_rows.hpp"

namespace orlix {
namespace {

using namespace pnm;

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

// "P" and the digit of the kind, followed by a blank or a comment.
bool BeginsWith(std::span<const uint8_t> bytes, uint8_t kind) {
    return bytes.size() >= 3 && bytes[0] == 'P' && bytes[1] == kind && (IsBlank(bytes[2]) || bytes[2] == '#');
}

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
    if (!IsSize(width) || !IsSize(height)) BadFile(texts.header);
    if (header.maximum == 0 || header.maximum > 65535 || !scanner.OneSeparator()) BadFile(texts.header);
    header.properties.width = static_cast<int32_t>(width);
    header.properties.height = static_cast<int32_t>(height);
    header.properties.bands = bytes[1] == '3' || bytes[1] == '6' ? 3 : 1;
    PutMaximum(header.properties, header.maximum);
    return header;
}

template <class Sample>
void ReadRaw(std::span<const uint8_t> bytes, const PnmHeader& header, PixelSink& sink, const PnmTexts& texts) {
    const FileProperties& properties = header.properties;
    const bool sound = properties.bands == 1 ? CopyRawRows<Sample, 1>(bytes.data(), properties, header.maximum, sink)
                                             : CopyRawRows<Sample, 3>(bytes.data(), properties, header.maximum, sink);
    if (!sound) BadFile(texts.aboveMaximum);
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
                if (value == kNoNumber) BadFile(scanner.AtEnd() ? texts.tooShort : texts.values);
                if (!scanner.AtSeparator()) BadFile(texts.values);
                if (value > header.maximum) BadFile(texts.aboveMaximum);
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
    const auto bands = static_cast<uint64_t>(header.properties.bands);
    const auto begin = [&] {
        RequireWithin(options.limit, header.properties.width, header.properties.height, header.properties.bands);
        sink.Begin(header.properties);
    };

    if (header.plain) {
        // A value takes a digit and a separator; the last one needs no separator.
        if (!Fits(header.properties, 2 * bands, uint64_t{values.size()} + 1)) BadFile(texts.tooShort);
        begin();
        wide ? ReadPlain<uint16_t>(scanner, header, sink, texts) : ReadPlain<uint8_t>(scanner, header, sink, texts);
    } else {
        if (!Fits(header.properties, (wide ? 2 : 1) * bands, values.size())) BadFile(texts.tooShort);
        begin();
        wide ? ReadRaw<uint16_t>(values, header, sink, texts) : ReadRaw<uint8_t>(values, header, sink, texts);
    }
    return header.properties;
}

}  // namespace orlix
