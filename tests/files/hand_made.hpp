// Files built from the formats' definitions, slowly and without the library's code.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace orlix::test {

using Bytes = std::vector<uint8_t>;

Bytes operator+(Bytes left, const Bytes& right);
// Up to `size` bytes from a place on.
Bytes Part(const Bytes& bytes, size_t from, size_t size = SIZE_MAX);
Bytes FromText(std::string_view text);
Bytes Big32(uint32_t value);
Bytes Little16(uint32_t value);
Bytes Little32(uint32_t value);

// Deterministic noise: the same on every platform.
class Noise {
public:
    explicit Noise(uint64_t seed) : state_(seed * 0x9E3779B97F4A7C15u + 1) {}
    uint32_t operator()() {
        state_ = state_ * 6364136223846793005u + 1442695040888963407u;
        return static_cast<uint32_t>(state_ >> 33);
    }
    uint32_t below(uint32_t limit) { return (*this)() % limit; }

private:
    uint64_t state_;
};

// ----------------------------------------------------------------------------------------------------------------- PNG

Bytes PngSignature();
uint32_t Crc32(const Bytes& data);
Bytes PngChunk(std::string_view type, const Bytes& data);
Bytes PngHeader(uint32_t width, uint32_t height, uint32_t depth, uint32_t colourType, uint32_t interlace = 0);
Bytes PngEnd();

// One pixel chunk of this stream, behind other chunks.
Bytes PngFile(const Bytes& header, const Bytes& stream, const Bytes& before = {});

// zlib streams: stored blocks of at most `block` bytes, and what zlib makes of them.
Bytes StoredStream(const Bytes& data, size_t block = 65535);
Bytes PackedStream(const Bytes& data);

// Left, above, above left.
int PaethByDefinition(int a, int b, int c);

// All there are.
struct PngKind {
    uint32_t colourType, depth;
};
inline constexpr PngKind kPngKinds[] = {{0, 1}, {0, 2}, {0, 4}, {0, 8}, {0, 16}, {2, 8}, {2, 16}, {3, 1},
                                        {3, 2}, {3, 4}, {3, 8}, {4, 8}, {4, 16}, {6, 8}, {6, 16}};

struct PngPicture {
    uint32_t width, height, depth, colourType;
    bool interlaced = false;
    std::function<uint32_t(uint32_t x, uint32_t y, uint32_t sample)> value;  // 0 .. 2^depth - 1

    uint32_t Samples() const { return colourType == 2 ? 3 : colourType == 4 ? 2 : colourType == 6 ? 4 : 1; }
};

// The rows as they go into the compressed stream. Row n (counted over all passes) has filter n mod 5, or the given one.
Bytes PngRows(const PngPicture& picture, int filter = -1);
// Signature, header, the given chunks, one pixel chunk of stored rows, end.
Bytes MakePng(const PngPicture& picture, const Bytes& chunks = {}, int filter = -1);

// ----------------------------------------------------------------------------------------------------------------- BMP

struct BmpFile {
    uint32_t headerSize = 40;
    int32_t width = 1, height = 1;
    uint32_t planes = 1, bits = 8, compression = 0;
    uint32_t perMetreX = 0, perMetreY = 0, coloursUsed = 0;
    Bytes masks = {};    // from the 40th byte of the header on; behind a header of 40 bytes
    Bytes palette = {};  // blue, green, red, 0; without the 0 behind the header of 12 bytes
    Bytes rows = {};     // as stored
};
Bytes MakeBmp(const BmpFile& file);
Bytes GreyRampPalette(int entryBytes = 4);

}  // namespace orlix::test
