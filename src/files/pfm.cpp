#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <string>

#include "files/pnm.hpp"
#include "files/pnm_rows.hpp"
#include "text/encoding.hpp"

namespace orlix {
namespace {

using namespace pnm;

constexpr char kPfmHeader[] = "IImageVPAEx::CreateFromFile: problems reading pfm header";
constexpr char kPfmTooShort[] = "IImageVPAEx::CreateFromFile: the pfm file is too short for its image.";

constexpr WideStringView kScaleKeyword = OLESTR("PFM scale");

// The scale of a header without its sign, which tells the byte order. NaN for what is no finite number above 0.
double AbsoluteScale(std::string_view text) {
    double scale = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, scale);
    const bool sound = error == std::errc() && stop == end && std::isfinite(scale) && scale > 0;
    return sound ? scale : std::numeric_limits<double>::quiet_NaN();
}

}  // namespace

bool LooksLikePfm(std::span<const uint8_t> bytes) noexcept {
    return bytes.size() >= 3 && bytes[0] == 'P' && (bytes[1] == 'F' || bytes[1] == 'f') && IsBlank(bytes[2]);
}

FileProperties ReadPfm(std::span<const uint8_t> bytes, PixelSink& sink, const ReadOptions& options) {
    Scanner scanner(bytes.subspan(2));
    const uint32_t width = scanner.Number();
    const uint32_t height = scanner.AtSeparator() ? scanner.Number() : kNoNumber;
    if (!IsSize(width) || !IsSize(height) || !scanner.AtSeparator()) BadFile(kPfmHeader);
    const auto word = scanner.Word();
    std::string_view scale(reinterpret_cast<const char*>(word.data()), word.size());
    const bool little = scale.starts_with('-');
    if (little || scale.starts_with('+')) scale.remove_prefix(1);
    const double absolute = AbsoluteScale(scale);
    if (std::isnan(absolute) || !scanner.OneSeparator()) BadFile(kPfmHeader);

    FileProperties properties;
    properties.width = static_cast<int32_t>(width);
    properties.height = static_cast<int32_t>(height);
    properties.bands = bytes[1] == 'F' ? 3 : 1;
    properties.dataType = DT_Float;
    if (absolute != 1) {
        const std::span<const uint8_t> digits(reinterpret_cast<const uint8_t*>(scale.data()), scale.size());
        properties.kept.texts.push_back({WideString(kScaleKeyword), FromLatin1(digits)});
    }
    const auto bands = static_cast<size_t>(properties.bands);
    const std::span<const uint8_t> values = scanner.Rest();
    if (!Fits(properties, bands * sizeof(float), values.size())) BadFile(kPfmTooShort);
    RequireWithin(options.limit, properties.width, properties.height, properties.bands);
    sink.Begin(properties);
    const uint8_t* in = values.data();
    for (int32_t y = properties.height - 1; y >= 0; --y, in += bands * sizeof(float) * width)
        for (size_t band = 0; band < bands; ++band) {
            auto* const row = static_cast<uint8_t*>(sink.Row(static_cast<int32_t>(band), y));
            for (size_t x = 0; x < width; ++x) {
                const uint8_t* const at = in + (x * bands + band) * sizeof(float);
                const uint32_t bits = little ? LittleEndian32(at) : BigEndian32(at);
                std::memcpy(row + x * sizeof bits, &bits, sizeof bits);
            }
        }
    return properties;
}

std::vector<uint8_t> WritePfm(const FileProperties& properties, PixelSource& source, const WriteOptions&) {
    std::string scale = "1.0";
    for (const TextEntry& entry : properties.kept.texts)
        if (entry.keyword == kScaleKeyword)
            if (const std::string text = ToUtf8Bytes(entry.text); AbsoluteScale(text) > 0) scale = text;
    const std::string header = std::string(properties.bands == 3 ? "PF" : "Pf") + "\n" +
                               std::to_string(properties.width) + " " + std::to_string(properties.height) + "\n-" +
                               scale + "\n";
    const auto width = static_cast<size_t>(properties.width), bands = static_cast<size_t>(properties.bands);
    const uint64_t rowBytes = uint64_t{width} * bands * sizeof(float);
    if (rowBytes > std::numeric_limits<ptrdiff_t>::max() / 2 / static_cast<uint64_t>(properties.height))
        throw std::bad_alloc();
    std::vector<uint8_t> bytes(header.begin(), header.end());
    bytes.resize(header.size() + static_cast<size_t>(rowBytes) * static_cast<size_t>(properties.height));
    uint8_t* out = bytes.data() + header.size();
    for (int32_t y = properties.height - 1; y >= 0; --y, out += rowBytes)
        for (size_t band = 0; band < bands; ++band) {
            const auto* const row = static_cast<const uint8_t*>(source.Row(static_cast<int32_t>(band), y));
            for (size_t x = 0; x < width; ++x) {
                uint32_t bits = 0;
                std::memcpy(&bits, row + x * sizeof bits, sizeof bits);
                PutLittleEndian32(out + (x * bands + band) * sizeof bits, bits);
            }
        }
    return bytes;
}

}  // namespace orlix
