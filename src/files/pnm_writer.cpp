#include <array>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <limits>
#include <new>
#include <string>

#include "files/byte_order.hpp"
#include "files/pnm.hpp"

namespace orlix {
namespace {

constexpr size_t kLongestLine = 70;  // of a plain file, without the line end

template <class Sample>
std::array<const Sample*, 3> RowsOf(PixelSource& source, size_t bands, int32_t y) {
    std::array<const Sample*, 3> rows{};
    for (size_t band = 0; band < bands; ++band)
        rows[band] = static_cast<const Sample*>(source.Row(static_cast<int32_t>(band), y));
    return rows;
}

template <class Sample>
void AppendRaw(std::vector<uint8_t>& bytes, const std::array<const Sample*, 3>& rows, size_t bands, size_t width) {
    const size_t start = bytes.size();
    bytes.resize(start + width * bands * sizeof(Sample));
    uint8_t* out = bytes.data() + start;
    if (sizeof(Sample) == 1 && bands == 1) {
        std::memcpy(out, rows[0], width);
        return;
    }
    for (size_t x = 0; x < width; ++x)
        for (size_t band = 0; band < bands; ++band, out += sizeof(Sample))
            if constexpr (sizeof(Sample) == 1)
                *out = rows[band][x];
            else
                PutBigEndian16(out, rows[band][x]);
}

template <class Sample>
void AppendPlain(std::vector<uint8_t>& bytes, const std::array<const Sample*, 3>& rows, size_t bands, size_t width) {
    size_t line = 0;  // characters in it
    for (size_t x = 0; x < width; ++x)
        for (size_t band = 0; band < bands; ++band) {
            char digits[8];
            char* const end = std::to_chars(digits, digits + sizeof digits, unsigned{rows[band][x]}).ptr;
            const auto length = static_cast<size_t>(end - digits);
            if (line + 1 + length > kLongestLine) {
                bytes.push_back('\n');
                line = 0;
            } else if (line > 0) {
                bytes.push_back(' ');
                ++line;
            }
            bytes.insert(bytes.end(), digits, end);
            line += length;
        }
    bytes.push_back('\n');
}

template <class Sample>
void AppendRows(std::vector<uint8_t>& bytes, bool plain, const FileProperties& properties, PixelSource& source) {
    const auto bands = static_cast<size_t>(properties.bands);
    const auto width = static_cast<size_t>(properties.width);
    // A plain sample takes two bytes and more, so this checks the sizes of both.
    const uint64_t rowBytes = uint64_t{width} * bands * sizeof(Sample);
    if (rowBytes > std::numeric_limits<ptrdiff_t>::max() / 2 / static_cast<uint64_t>(properties.height))
        throw std::bad_alloc();
    bytes.reserve(bytes.size() + static_cast<size_t>(rowBytes) * static_cast<size_t>(properties.height));
    for (int32_t y = 0; y < properties.height; ++y) {
        const auto rows = RowsOf<Sample>(source, bands, y);
        plain ? AppendPlain(bytes, rows, bands, width) : AppendRaw(bytes, rows, bands, width);
    }
}

}  // namespace

std::vector<uint8_t> WritePnm(bool plain, const FileProperties& properties, PixelSource& source) {
    const bool colour = properties.bands == 3;
    const bool wide = properties.bits == 16;
    const std::string header = std::string(plain ? (colour ? "P3" : "P2") : (colour ? "P6" : "P5")) + "\n" +
                               std::to_string(properties.width) + " " + std::to_string(properties.height) +
                               (wide ? "\n65535\n" : "\n255\n");
    std::vector<uint8_t> bytes(header.begin(), header.end());
    wide ? AppendRows<uint16_t>(bytes, plain, properties, source)
         : AppendRows<uint8_t>(bytes, plain, properties, source);
    return bytes;
}

}  // namespace orlix
