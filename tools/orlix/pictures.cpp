#include "pictures.hpp"

#include "console.hpp"
#include "image_file.hpp"
#include "scale_bar.hpp"

#include <orlix/measure.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace tool {

using namespace orlix;

namespace {

using Colour = std::array<uint8_t, 3>;
constexpr Colour kPhase = {255, 106, 0};  // orange differs from grey for every kind of colour vision
constexpr Colour kRegion = {0, 200, 255};

size_t Size(int32_t a, int32_t b) { return static_cast<size_t>(a) * static_cast<size_t>(b); }

template <class Pixel>
void Stretch(const Measurement& measurement, LONG band, double lower, double upper, Picture& picture) {
    const double scale = upper > lower ? 255 / (upper - lower) : 0;
    const auto shown = [=](Pixel pixel) {
        const double level = scale == 0 ? 128 : (static_cast<double>(pixel) - lower) * scale + 0.5;
        return static_cast<uint8_t>(level > 0 ? std::min(level, 255.0) : 0);  // NaN becomes black
    };
    std::vector<uint8_t> table;  // of all short pixels
    if constexpr (sizeof(Pixel) <= 2)
        for (size_t pixel = 0; pixel < size_t{1} << 8 * sizeof(Pixel); ++pixel)
            table.push_back(shown(static_cast<Pixel>(pixel)));
    const Rows<Pixel> rows(measurement.image, band);
    uint8_t* out = picture.samples.data();
    for (const std::span<Pixel> row : rows)
        for (const Pixel pixel : row) {
            if constexpr (sizeof(Pixel) <= 2)
                *out++ = table[pixel];
            else
                *out++ = shown(pixel);
        }
}

// The bits of a byte, the uppermost first.
constexpr auto kBits = [] {
    std::array<std::array<uint8_t, 8>, 256> table = {};
    for (unsigned byte = 0; byte < 256; ++byte)
        for (unsigned k = 0; k < 8; ++k) table[byte][k] = byte >> (7 - k) & 1;
    return table;
}();

// 1 where the bit is set.
std::vector<uint8_t> Unpacked(const ComPtr<IBitmap>& bitmap) {
    LONG width = 0, height = 0;
    Check(bitmap->get_Width(&width), bitmap);
    Check(bitmap->get_Height(&height), bitmap);
    std::vector<uint8_t> bits(Size(width, height));
    uint8_t* out = bits.data();
    for (LONG y = 0; y < height; ++y) {
        BYTE* row = nullptr;
        Check(bitmap->GetRowPtr(y, &row), bitmap);
        for (LONG x = 0; x < width; x += 8, ++row)
            out = std::copy_n(kBits[*row].begin(), std::min<LONG>(width - x, 8), out);
    }
    return bits;
}

void AndWith(uint8_t* row, const uint8_t* other, size_t count) {
    size_t i = 0;
    for (; i + 8 <= count; i += 8) {
        uint64_t a = 0, b = 0;
        std::memcpy(&a, row + i, 8);
        std::memcpy(&b, other + i, 8);
        a &= b;
        std::memcpy(row + i, &a, 8);
    }
    for (; i < count; ++i) row[i] &= other[i];
}

// The pixels of the set (bytes 0 and 1) from which a pixel outside it lies within the given distance along a row or
// column. The image's border is no edge.
std::vector<uint8_t> EdgeOf(const std::vector<uint8_t>& set, int32_t width, int32_t height, int32_t distance) {
    std::vector<uint8_t> edge = set;
    const auto columns = static_cast<size_t>(width);
    std::vector<uint8_t> inner(columns);
    for (int32_t y = 0; y < height; ++y) {
        const uint8_t* const row = set.data() + Size(y, width);
        std::copy_n(row, columns, inner.begin());
        for (int32_t d = 1; d <= distance; ++d) {
            if (y >= d) AndWith(inner.data(), row - Size(d, width), columns);
            if (y + d < height) AndWith(inner.data(), row + Size(d, width), columns);
            if (d >= width) continue;
            const auto step = static_cast<size_t>(d);
            AndWith(inner.data() + step, row, columns - step);
            AndWith(inner.data(), row + step, columns - step);
        }
        uint8_t* const out = edge.data() + Size(y, width);
        for (size_t x = 0; x < columns; ++x) out[x] ^= inner[x];
    }
    return edge;
}

std::string Base64(std::string_view bytes) {
    constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text((bytes.size() + 2) / 3 * 4, '=');
    char* out = text.data();
    for (size_t i = 0; i < bytes.size(); i += 3) {
        const size_t count = std::min<size_t>(bytes.size() - i, 3);
        uint32_t group = 0;
        for (size_t k = 0; k < count; ++k)
            group |= static_cast<uint32_t>(static_cast<unsigned char>(bytes[i + k])) << (16 - 8 * k);
        for (size_t k = 0; k <= count; ++k) out[k] = kDigits[group >> (18 - 6 * k) & 63];
        out += 4;
    }
    return text;
}

}  // namespace

Picture DisplayPicture(const Measurement& measurement) {
    const Json& document = measurement.document;
    Picture picture;
    picture.width = document["width"];
    picture.height = document["height"];
    picture.samples.resize(Size(picture.width, picture.height));
    const LONG band = measurement.band;

    const auto process = Cast<IImageProcess>(measurement.image);
    ComPtr<IHistogram> histogram;
    double lower = 0, upper = 0;
    Check(process->get_Histogram(histogram.Out()), process);
    Check(histogram->AutoThresholdTrim(0.001, &lower, 0.001, &upper), histogram);

    LONG type = 0;
    Check(measurement.image->DataType(band, &type), measurement.image);
    if (type == DT_BYTE)
        Stretch<uint8_t>(measurement, band, lower, upper, picture);
    else if (type == DT_WORD)
        Stretch<uint16_t>(measurement, band, lower, upper, picture);
    else if (type == DT_DWORD)
        Stretch<uint32_t>(measurement, band, lower, upper, picture);
    else
        Stretch<float>(measurement, band, lower, upper, picture);
    return picture;
}

Picture OverlayPicture(const Measurement& measurement, const Picture& display) {
    const int32_t width = display.width, height = display.height;
    const std::vector<uint8_t> phase = Unpacked(measurement.phase);
    const std::vector<uint8_t> inside = RegionMask(measurement.region, width, height);
    const std::vector<uint8_t> outline = EdgeOf(phase, width, height, 1);
    // A pixel or two at usual sizes; wider in large images, so that it is visible when they are seen as a whole.
    const std::vector<uint8_t> border = EdgeOf(inside, width, height, 1 + std::max(width, height) / 800);

    // The colours of all grey levels for each combination of border, outline, phase and inside.
    std::array<std::array<Colour, 256>, 16> colours;
    for (unsigned kind = 0; kind < 16; ++kind)
        for (unsigned grey = 0; grey < 256; ++grey)
            for (size_t channel = 0; channel < 3; ++channel) {
                unsigned value = grey;
                if (kind & 1)
                    value = kRegion[channel];
                else if (kind & 2)
                    value = kPhase[channel];
                else if (kind & 4)
                    value = (grey + kPhase[channel]) / 2;
                else if (!(kind & 8))
                    value = grey * 6 / 10;
                colours[kind][grey][channel] = static_cast<uint8_t>(value);
            }
    Picture picture = {width, height, 3, std::vector<uint8_t>(3 * display.samples.size())};
    uint8_t* out = picture.samples.data();
    for (size_t i = 0; i < display.samples.size(); ++i, out += 3) {
        const unsigned kind = border[i] | outline[i] << 1 | phase[i] << 2 | inside[i] << 3;
        std::memcpy(out, colours[kind][display.samples[i]].data(), 3);
    }
    return picture;
}

Picture PhasePicture(const ComPtr<IBitmap>& phase) {
    Picture picture;
    LONG width = 0, height = 0;
    Check(phase->get_Width(&width), phase);
    Check(phase->get_Height(&height), phase);
    picture.width = width;
    picture.height = height;
    picture.samples = Unpacked(phase);
    for (uint8_t& sample : picture.samples) sample = sample ? 255 : 0;
    return picture;
}

int32_t Reduction(const Picture& picture, int32_t largest) {
    return (std::max(picture.width, picture.height) + largest - 1) / largest;
}

Picture Reduced(const Picture& picture, int32_t largest) {
    const int32_t factor = Reduction(picture, largest);
    if (factor <= 1) return picture;
    Picture reduced = {
        (picture.width + factor - 1) / factor, (picture.height + factor - 1) / factor, picture.channels, {}};
    reduced.samples.reserve(Size(reduced.width, reduced.height) * static_cast<size_t>(picture.channels));
    for (int32_t y = 0; y < reduced.height; ++y)
        for (int32_t x = 0; x < reduced.width; ++x)
            for (int32_t channel = 0; channel < picture.channels; ++channel) {
                uint64_t sum = 0, count = 0;
                for (int32_t v = y * factor; v < std::min((y + 1) * factor, picture.height); ++v)
                    for (int32_t u = x * factor; u < std::min((x + 1) * factor, picture.width); ++u, ++count)
                        sum += picture.samples[(Size(v, picture.width) + static_cast<size_t>(u)) *
                                                   static_cast<size_t>(picture.channels) +
                                               static_cast<size_t>(channel)];
                reduced.samples.push_back(static_cast<uint8_t>((sum + count / 2) / count));
            }
    return reduced;
}

void SavePng(const Picture& picture, const Json& micronsPerPixel, const std::filesystem::path& path) {
    auto image = CreateObject<IImageVPAExPlus>("Orlix.Image");
    Check(image->Create(picture.width, picture.height, picture.channels, DT_BYTE, 0), image);
    for (int32_t channel = 0; channel < picture.channels; ++channel) {
        const uint8_t* in = picture.samples.data() + channel;
        for (const std::span<uint8_t> row : Rows<uint8_t>(image, channel))
            for (uint8_t& sample : row) {
                sample = *in;
                in += picture.channels;
            }
    }
    const auto file = Cast<IImageFile>(image);
    if (!micronsPerPixel.is_null()) Check(file->PutMicronsPerPixel(micronsPerPixel["x"], micronsPerPixel["y"]), file);
    Sign(image);
    SaveImage(image, Utf8(path), IFF_PNG);
}

std::string DataUri(const std::filesystem::path& png) { return "data:image/png;base64," + Base64(ReadFile(png)); }

std::string DataUri(const Picture& picture, const std::filesystem::path& temporary) {
    SavePng(picture, nullptr, temporary);
    std::string uri = DataUri(temporary);
    std::filesystem::remove(temporary);
    return uri;
}

std::string ReportPicture(const Picture& picture, int32_t largest, double micronsPerPixel,
                          const std::filesystem::path& temporary) {
    return DataUri(WithScaleBar(Reduced(picture, largest), micronsPerPixel * Reduction(picture, largest)), temporary);
}

}  // namespace tool
