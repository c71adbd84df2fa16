#include <charconv>
#include <limits>
#include <string>
#include <string_view>

#include "files/pnm.hpp"
#include "files/pnm_rows.hpp"

namespace orlix {
namespace {

using namespace pnm;

constexpr char kPamHeader[] = "IImageVPAEx::CreateFromFile: problems reading pam header";
constexpr char kPamTuples[] = "IImageVPAEx::CreateFromFile: unknown type of pam tuples.";
constexpr char kPamTooShort[] = "IImageVPAEx::CreateFromFile: the pam file is too short for its image.";
constexpr char kPamAboveMaximum[] = "IImageVPAEx::CreateFromFile: a pam value is above the declared maximum.";

struct PamHeader {
    uint32_t width = 0, height = 0, depth = 0, maximum = 0;
    std::string_view tuples;
    size_t size = 0;
};

std::string_view Trimmed(std::string_view text) {
    const auto blank = [](char c) { return IsBlank(static_cast<uint8_t>(c)); };
    while (!text.empty() && blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && blank(text.back())) text.remove_suffix(1);
    return text;
}

// A line for each field, in any order, up to the line ENDHDR.
PamHeader ReadPamHeader(std::string_view file) {
    PamHeader header;
    for (size_t at = 3;;) {
        const size_t end = file.find('\n', at);
        if (end == std::string_view::npos) BadFile(kPamHeader);
        const std::string_view line = Trimmed(file.substr(at, end - at));
        at = end + 1;
        if (line.empty() || line.starts_with('#')) continue;
        const std::string_view name = line.substr(0, line.find_first_of(" \t"));
        const std::string_view value = Trimmed(line.substr(name.size()));
        if (name == "ENDHDR") {
            header.size = at;
            return header;
        }
        if (name == "TUPLTYPE" && header.tuples.empty()) {
            header.tuples = value;
            continue;
        }
        uint32_t* const field = name == "WIDTH"    ? &header.width
                                : name == "HEIGHT" ? &header.height
                                : name == "DEPTH"  ? &header.depth
                                : name == "MAXVAL" ? &header.maximum
                                                   : nullptr;
        if (!field || *field != 0) BadFile(kPamHeader);  // unknown, or given twice
        const auto [stop, error] = std::from_chars(value.data(), value.data() + value.size(), *field);
        if (error != std::errc() || stop != value.data() + value.size() || !IsSize(*field)) BadFile(kPamHeader);
    }
}

// The bands of an image whose tuples have this type and depth; the rest is alpha. 0 for what is unknown.
int32_t BandsOfTuples(std::string_view tuples, uint32_t depth) {
    if (tuples.empty()) return depth < 1 || depth > 4 ? 0 : depth < 3 ? 1 : 3;
    constexpr std::string_view kAlpha = "_ALPHA";
    const bool alpha = tuples.ends_with(kAlpha);
    if (alpha) tuples.remove_suffix(kAlpha.size());
    const int32_t bands = tuples == "RGB" ? 3 : tuples == "GRAYSCALE" || tuples == "BLACKANDWHITE" ? 1 : 0;
    return depth == static_cast<uint32_t>(bands) + alpha ? bands : 0;
}

template <class Sample>
bool CopyTuples(const uint8_t* in, const FileProperties& properties, const PamHeader& header, PixelSink& sink) {
    switch (header.depth) {
        case 1:
            return CopyRawRows<Sample, 1>(in, properties, header.maximum, sink);
        case 2:
            return CopyRawRows<Sample, 1, 2>(in, properties, header.maximum, sink);
        case 3:
            return CopyRawRows<Sample, 3>(in, properties, header.maximum, sink);
        default:
            return CopyRawRows<Sample, 3, 4>(in, properties, header.maximum, sink);
    }
}

}  // namespace

bool LooksLikePam(std::span<const uint8_t> bytes) noexcept {
    return bytes.size() >= 3 && bytes[0] == 'P' && bytes[1] == '7' && bytes[2] == '\n';
}

FileProperties ReadPam(std::span<const uint8_t> bytes, PixelSink& sink, const ReadOptions& options) {
    const PamHeader header = ReadPamHeader({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    const bool bilevel = header.tuples.starts_with("BLACKANDWHITE");
    if (header.width == 0 || header.height == 0 || header.depth == 0 || header.maximum == 0 ||
        header.maximum > (bilevel ? 1u : 65535u))
        BadFile(kPamHeader);
    FileProperties properties;
    properties.width = static_cast<int32_t>(header.width);
    properties.height = static_cast<int32_t>(header.height);
    properties.bands = BandsOfTuples(header.tuples, header.depth);
    if (properties.bands == 0) BadFile(kPamTuples);
    if (!bilevel) PutMaximum(properties, header.maximum);

    const bool wide = properties.dataType == DT_WORD;
    const std::span<const uint8_t> values = bytes.subspan(header.size);
    if (!Fits(properties, uint64_t{header.depth} * (wide ? 2 : 1), values.size())) BadFile(kPamTooShort);
    RequireWithin(options.limit, properties.width, properties.height, properties.bands);
    sink.Begin(properties);
    if (!(wide ? CopyTuples<uint16_t>(values.data(), properties, header, sink)
               : CopyTuples<uint8_t>(values.data(), properties, header, sink)))
        BadFile(kPamAboveMaximum);
    for (int32_t y = 0; bilevel && y < properties.height; ++y) {
        auto* const row = static_cast<uint8_t*>(sink.Row(0, y));
        for (uint32_t x = 0; x < header.width; ++x) row[x] = row[x] ? 255 : 0;
    }
    return properties;
}

}  // namespace orlix
