#include "files/tiff_calibration.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

#include "text/encoding.hpp"

namespace orlix {
namespace {

using namespace std::string_view_literals;

struct Unit {
    std::string_view name;
    double microns;
};
// The micro sign is written as u. Long names come without their plural's s.
constexpr Unit kUnits[] = {
    {"um", 1},           {"micron", 1},       {"micrometer", 1},   {"micrometre", 1},   {"nm", 1e-3},
    {"nanometer", 1e-3}, {"nanometre", 1e-3}, {"pm", 1e-6},        {"mm", 1e3},         {"millimeter", 1e3},
    {"millimetre", 1e3}, {"cm", 1e4},         {"centimeter", 1e4}, {"centimetre", 1e4}, {"dm", 1e5},
    {"m", 1e6},          {"meter", 1e6},      {"metre", 1e6},      {"in", 25400},       {"inch", 25400},
    {"inche", 25400},    {"mil", 25.4},       {"angstrom", 1e-4},  {"\xC3\x85", 1e-4},  {"\xE2\x84\xAB", 1e-4},
};

// The part of a text behind a mark, or nothing.
std::optional<std::string_view> Behind(std::string_view text, std::string_view mark) {
    const size_t at = text.find(mark);
    if (at == std::string_view::npos) return std::nullopt;
    return text.substr(at + mark.size());
}

std::optional<double> PositiveNumber(std::string_view text) {
    double value = 0;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (fault != std::errc() || end != text.data() + text.size() || !std::isfinite(value) || value <= 0)
        return std::nullopt;
    return value;
}

// ------------------------------------------------------------------------------------------------------------- OME-XML

constexpr auto kBlanks = " \t\r\n"sv;

// The value of an attribute among those of an element: text in quotes of either kind behind a name.
std::optional<std::string_view> Attribute(std::string_view attributes, std::string_view name) {
    const auto trimmed = [](std::string_view text) {
        const size_t first = text.find_first_not_of(kBlanks);
        return first == std::string_view::npos ? ""sv : text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
    };
    while (!attributes.empty()) {
        const size_t equals = attributes.find('=');
        if (equals == std::string_view::npos) return std::nullopt;
        const std::string_view found = trimmed(attributes.substr(0, equals));
        attributes = trimmed(attributes.substr(equals + 1));
        const char quote = attributes.empty() ? ' ' : attributes.front();
        const size_t end = quote == '"' || quote == '\'' ? attributes.find(quote, 1) : std::string_view::npos;
        if (end == std::string_view::npos) return std::nullopt;
        if (found == name) return attributes.substr(1, end - 1);
        attributes.remove_prefix(end + 1);
    }
    return std::nullopt;
}

std::optional<double> PhysicalSize(std::string_view attributes, std::string_view name, std::string_view unitName) {
    const auto size = Attribute(attributes, name);
    const auto number = size ? PositiveNumber(*size) : std::nullopt;
    const auto unit = Attribute(attributes, unitName);
    const auto microns = unit ? MicronsOfUnit(*unit) : 1.0;
    return number && microns ? std::optional(*number * *microns) : std::nullopt;
}

std::optional<std::string_view> PixelsElement(std::string_view description) {
    // The element may have a prefix ("OME:OME", "ome:Pixels").
    if (description.substr(0, 4096).find("OME") == std::string_view::npos) return std::nullopt;
    for (auto rest = Behind(description, "Pixels"); rest; rest = Behind(*rest, "Pixels"))
        if (rest->find_first_of(kBlanks) == 0) {
            const size_t end = rest->find('>');
            if (end == std::string_view::npos) return std::nullopt;  // an attribute may be cut off
            return rest->substr(0, end);
        }
    return std::nullopt;
}

// -------------------------------------------------------------------------------------------------------------- ImageJ

// The rest of the line behind a mark.
std::optional<std::string_view> Line(std::string_view text, std::string_view mark) {
    const auto value = Behind(text, mark);
    return value ? std::optional(value->substr(0, value->find_first_of("\r\n"))) : std::nullopt;
}

// ----------------------------------------------------------------------------------------------------------- both axes

std::optional<PixelSize> Both(std::optional<double> x, std::optional<double> y, const char* from) {
    if (!x) x = y;
    if (!y) y = x;
    if (!x || !IsPixelSize(*x, *y)) return std::nullopt;
    return PixelSize{*x, *y, from};
}

// As it is kept: what is found in it is found again when it has been written.
std::string DescriptionOf(const TiffDirectory& directory) {
    return ToUtf8Bytes(directory.Text(tiff::kImageDescription));
}

}  // namespace

bool HasRounded(const ImageProperties& kept, const PixelSize& size, double rounding) {
    const auto same = [&](double exact, double rounded) { return std::abs(rounded - exact) <= rounding * exact; };
    return kept.micronsX > 0 && same(kept.micronsX, size.micronsX) && same(kept.micronsY, size.micronsY);
}

std::optional<double> MicronsOfUnit(std::string_view unit) {
    std::string name(unit.substr(0, 32));
    for (const std::string_view micro :
         {"\xC2\xB5"sv, "\xCE\xBC"sv, "\xB5"sv, "\\u00B5"sv, "\\u00b5"sv, "&#181;"sv, "&#xB5;"sv})
        if (name.starts_with(micro)) name.replace(0, micro.size(), 1, 'u');
    std::ranges::transform(name, name.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? char(c + ('a' - 'A')) : c; });
    if (name.size() > 3 && name.ends_with('s')) name.pop_back();
    for (const Unit& known : kUnits)
        if (name == known.name) return known.microns;
    return std::nullopt;
}

std::optional<std::pair<double, double>> ImageJUnits(std::string_view description) {
    if (!description.starts_with("ImageJ=")) return std::nullopt;
    const auto unit = Line(description, "\nunit="), unitY = Line(description, "\nyunit=");
    const auto microns = unit ? MicronsOfUnit(*unit) : std::nullopt;
    const auto micronsY = unitY ? MicronsOfUnit(*unitY) : microns;
    return microns && micronsY ? std::optional(std::pair(*microns, *micronsY)) : std::nullopt;
}

std::optional<PixelSize> FindResolution(const TiffDirectory& directory, const char* name) {
    const auto size = [&](uint16_t tag, double micronsOfUnit) -> std::optional<double> {
        const auto pixels = directory.Number(tag);
        if (!pixels || !(*pixels > 0)) return std::nullopt;
        return micronsOfUnit / *pixels;
    };
    const auto sizes = [&](double unitX, double unitY, const char* from) {
        return Both(size(tiff::kXResolution, unitX), size(tiff::kYResolution, unitY), from);
    };
    if (const auto units = ImageJUnits(DescriptionOf(directory)))
        return sizes(units->first, units->second, "ImageJ unit");
    const double unit = directory.Number(tiff::kResolutionUnit).value_or(tiff::kInch);
    if (unit == tiff::kInch) return sizes(25400, 25400, name);
    if (unit == tiff::kCentimetre) return sizes(10000, 10000, name);
    return std::nullopt;
}

std::optional<PixelSize> FindPixelSize(const TiffDirectory& directory, const char* name) {
    const std::string description = DescriptionOf(directory);
    if (const auto pixels = PixelsElement(description))
        if (const auto size = Both(PhysicalSize(*pixels, "PhysicalSizeX", "PhysicalSizeXUnit"),
                                   PhysicalSize(*pixels, "PhysicalSizeY", "PhysicalSizeYUnit"), "OME PhysicalSizeX"))
            return size;
    return FindResolution(directory, name);
}

}  // namespace orlix
