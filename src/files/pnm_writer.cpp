#include <algorithm>
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

// Appends the samples of a raw row in decimal.
void AppendPlain(std::vector<uint8_t>& bytes, std::span<const uint8_t> row, size_t sampleBytes) {
    size_t line = 0;  // characters in the current line
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

size_t RowBytes(const FileProperties& properties) {
    const uint64_t rowBytes = static_cast<uint64_t>(properties.width) * PixelBytes(properties);
    if (rowBytes > std::numeric_limits<ptrdiff_t>::max() / 2 / static_cast<uint64_t>(properties.height))
        throw std::bad_alloc();
    return static_cast<size_t>(rowBytes);
}

int32_t Maximum(const FileProperties& properties, PixelSource& source) {
    // A smaller maximum than 256 would make bytes of words.
    const int32_t bits = BitsInUse(properties, source), least = properties.dataType == DT_WORD ? 9 : 1;
    return (1 << std::max(bits, least)) - 1;
}

// `grey` and `colour` are the magic numbers.
std::string Header(const FileProperties& properties, PixelSource& source, const char* grey, const char* colour) {
    return std::string(properties.bands == 3 ? colour : grey) + "\n" + std::to_string(properties.width) + " " +
           std::to_string(properties.height) + "\n" + std::to_string(Maximum(properties, source)) + "\n";
}

// The rows of all samples in binary form, behind the header.
std::vector<uint8_t> RawFile(const std::string& header, const FileProperties& properties, PixelSource& source) {
    const size_t rowBytes = RowBytes(properties);
    std::vector<uint8_t> bytes(header.begin(), header.end());
    bytes.resize(header.size() + rowBytes * static_cast<size_t>(properties.height));
    for (int32_t y = 0; y < properties.height; ++y)
        InterleaveRow(source, properties, y, bytes.data() + header.size() + rowBytes * static_cast<size_t>(y));
    return bytes;
}

}  // namespace

std::vector<uint8_t> WriteRawPnm(const FileProperties& properties, PixelSource& source, const WriteOptions&) {
    return RawFile(Header(properties, source, "P5", "P6"), properties, source);
}

std::vector<uint8_t> WritePam(const FileProperties& properties, PixelSource& source, const WriteOptions&) {
    const std::string header = "P7\nWIDTH " + std::to_string(properties.width) + "\nHEIGHT " +
                               std::to_string(properties.height) + "\nDEPTH " + std::to_string(properties.bands) +
                               "\nMAXVAL " + std::to_string(Maximum(properties, source)) + "\nTUPLTYPE " +
                               (properties.bands == 3 ? "RGB" : "GRAYSCALE") + "\nENDHDR\n";
    return RawFile(header, properties, source);
}

std::vector<uint8_t> WritePlainPnm(const FileProperties& properties, PixelSource& source, const WriteOptions&) {
    std::vector<uint8_t> row(RowBytes(properties));
    const std::string header = Header(properties, source, "P2", "P3");
    std::vector<uint8_t> bytes(header.begin(), header.end());
    for (int32_t y = 0; y < properties.height; ++y) {
        InterleaveRow(source, properties, y, row.data());
        AppendPlain(bytes, row, SampleBytes(properties));
    }
    return bytes;
}

}  // namespace orlix
