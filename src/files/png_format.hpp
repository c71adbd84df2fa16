// Constants of the PNG format, for reader and writer.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace orlix::png {

constexpr std::array<uint8_t, 8> kSignature = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};

// A chunk: length of its data (4 bytes), type (4 letters), data, CRC-32 of type and data (4 bytes). Numbers are
// big-endian and below 2^31.
constexpr size_t kChunkFrame = 12;
constexpr uint32_t kLargestNumber = 0x7FFFFFFF;

constexpr uint32_t ChunkType(const char (&name)[5]) {
    return static_cast<uint32_t>(name[0]) << 24 | static_cast<uint32_t>(name[1]) << 16 |
           static_cast<uint32_t>(name[2]) << 8 | static_cast<uint32_t>(name[3]);
}
constexpr uint32_t kHeader = ChunkType("IHDR");
constexpr uint32_t kPalette = ChunkType("PLTE");
constexpr uint32_t kPixels = ChunkType("IDAT");
constexpr uint32_t kEnd = ChunkType("IEND");
constexpr uint32_t kSignificantBits = ChunkType("sBIT");
constexpr uint32_t kPixelSize = ChunkType("pHYs");
constexpr uint32_t kText = ChunkType("tEXt");
constexpr uint32_t kCompressedText = ChunkType("zTXt");
constexpr uint32_t kInternationalText = ChunkType("iTXt");

// A small first letter marks chunks that a reader may skip.
constexpr bool IsOptional(uint32_t type) { return (type >> 24 & 0x20) != 0; }

// Whether a program that does not know the chunk may copy it into a file with other pixels: four letters, the first and
// the last small, the third a capital.
constexpr bool IsSafeToCopy(uint32_t type) {
    for (int shift = 0; shift < 32; shift += 8) {
        const auto letter = static_cast<char>(type >> shift | 0x20);
        if (letter < 'a' || letter > 'z') return false;
    }
    return IsOptional(type) && (type >> 8 & 0x20) == 0 && (type & 0x20) != 0;
}

constexpr size_t kHeaderSize = 13;    // width, height, depth, colour type, compression, filter method, interlace
constexpr size_t kPixelSizeSize = 9;  // pixels per unit in x and y, unit
constexpr uint8_t kMetre = 1;

enum ColourType : uint8_t { kGrey = 0, kColour = 2, kIndexed = 3, kGreyAlpha = 4, kColourAlpha = 6 };

}  // namespace orlix::png
