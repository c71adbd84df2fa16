#include <charconv>
#include <cstddef>
#include <limits>
#include <new>
#include <string>

#include "files/interleave.hpp"
#include "files/pnm.hpp"

namespace orlix {
namespace {

constexpr size_t kLongestLine = 70;  // of a plain file, without the line end

// The samples of a raw row in decimal.
void AppendPlain(std::vector<uint8_t>& bytes, std::span<const uint8_t> row, size_t sampleBytes) {
    size_t line = 0;  // characters in it
    for (size_t i = 0; i < row.size(); i += sampleBytes) {
        const unsigned sample = sampleBytes == 2 ? BigEndian16(&row[i]) : row[i];
        char digits[8];
        char* const end = std::to_chars(digits, digits + sizeof digits, sample).ptr;
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

}  // namespace

std::vector<uint8_t> WritePnm(bool plain, const FileProperties& properties, PixelSource& source) {
    const uint64_t rowBytes64 = static_cast<uint64_t>(properties.width) * PixelBytes(properties);
    if (rowBytes64 > std::numeric_limits<ptrdiff_t>::max() / 2 / static_cast<uint64_t>(properties.height))
        throw std::bad_alloc();
    const auto rowBytes = static_cast<size_t>(rowBytes64);

    const bool colour = properties.bands == 3;
    const std::string header = std::string(plain ? (colour ? "P3" : "P2") : (colour ? "P6" : "P5")) + "\n" +
                               std::to_string(properties.width) + " " + std::to_string(properties.height) +
                               (properties.bits == 16 ? "\n65535\n" : "\n255\n");
    std::vector<uint8_t> bytes(header.begin(), header.end());
    if (plain) {
        std::vector<uint8_t> row(rowBytes);
        for (int32_t y = 0; y < properties.height; ++y) {
            InterleaveRow(source, properties, y, row.data());
            AppendPlain(bytes, row, SampleBytes(properties));
        }
    } else {
        bytes.resize(header.size() + rowBytes * static_cast<size_t>(properties.height));
        for (int32_t y = 0; y < properties.height; ++y)
            InterleaveRow(source, properties, y, bytes.data() + header.size() + rowBytes * static_cast<size_t>(y));
    }
    return bytes;
}

}  // namespace orlix
