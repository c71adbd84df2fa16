#include "files/hand_made.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdlib>

#include <zlib.h>

namespace orlix::test {

Bytes operator+(Bytes left, const Bytes& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}
Bytes Part(const Bytes& bytes, size_t from, size_t size) {
    const auto start = bytes.begin() + static_cast<ptrdiff_t>(from);
    return {start, start + static_cast<ptrdiff_t>(std::min(size, bytes.size() - from))};
}
Bytes FromText(std::string_view text) { return {text.begin(), text.end()}; }
Bytes Big32(uint32_t v) {
    return {static_cast<uint8_t>(v >> 24), static_cast<uint8_t>(v >> 16), static_cast<uint8_t>(v >> 8),
            static_cast<uint8_t>(v)};
}
Bytes Little16(uint32_t v) { return {static_cast<uint8_t>(v), static_cast<uint8_t>(v >> 8)}; }
Bytes Little32(uint32_t v) { return Little16(v) + Little16(v >> 16); }

// ----------------------------------------------------------------------------------------------------------------- PNG

uint32_t Crc32(const Bytes& data) { return static_cast<uint32_t>(crc32_z(0, data.data(), data.size())); }

int PaethByDefinition(int a, int b, int c) {
    const int p = a + b - c;
    if (std::abs(p - a) <= std::abs(p - b) && std::abs(p - a) <= std::abs(p - c)) return a;
    return std::abs(p - b) <= std::abs(p - c) ? b : c;
}

namespace {

// The pass of every pixel, repeated every 8 by 8.
constexpr int kPassOf[8][8] = {{1, 6, 4, 6, 2, 6, 4, 6}, {7, 7, 7, 7, 7, 7, 7, 7}, {5, 6, 5, 6, 5, 6, 5, 6},
                               {7, 7, 7, 7, 7, 7, 7, 7}, {3, 6, 4, 6, 3, 6, 4, 6}, {7, 7, 7, 7, 7, 7, 7, 7},
                               {5, 6, 5, 6, 5, 6, 5, 6}, {7, 7, 7, 7, 7, 7, 7, 7}};

Bytes Filtered(int filter, const Bytes& row, const Bytes& above, size_t pixel) {
    Bytes out = {static_cast<uint8_t>(filter)};
    for (size_t i = 0; i < row.size(); ++i) {
        const int a = i < pixel ? 0 : row[i - pixel];
        const int b = above.empty() ? 0 : above[i];
        const int c = above.empty() || i < pixel ? 0 : above[i - pixel];
        const int predictions[] = {0, a, b, (a + b) / 2, PaethByDefinition(a, b, c)};
        out.push_back(static_cast<uint8_t>(row[i] - predictions[filter]));
    }
    return out;
}

}  // namespace

Bytes PngSignature() { return {137, 80, 78, 71, 13, 10, 26, 10}; }

Bytes PngChunk(std::string_view type, const Bytes& data) {
    const Bytes checked = FromText(type) + data;
    return Big32(static_cast<uint32_t>(data.size())) + checked + Big32(Crc32(checked));
}

Bytes PngHeader(uint32_t width, uint32_t height, uint32_t depth, uint32_t colourType, uint32_t interlace) {
    return PngChunk("IHDR", Big32(width) + Big32(height) +
                                Bytes{static_cast<uint8_t>(depth), static_cast<uint8_t>(colourType), 0, 0,
                                      static_cast<uint8_t>(interlace)});
}

Bytes PngEnd() { return PngChunk("IEND", {}); }
Bytes PngFile(const Bytes& header, const Bytes& stream, const Bytes& before) {
    return PngSignature() + header + before + PngChunk("IDAT", stream) + PngEnd();
}

Bytes StoredStream(const Bytes& data, size_t block) {
    Bytes stream = {0x78, 0x01};
    size_t start = 0;
    do {
        const size_t size = std::min(block, data.size() - start);
        const bool last = start + size == data.size();
        stream.push_back(last ? 1 : 0);
        stream = std::move(stream) + Little16(static_cast<uint32_t>(size)) + Little16(~static_cast<uint32_t>(size)) +
                 Part(data, start, size);
        start += size;
    } while (start < data.size());
    return std::move(stream) + Big32(static_cast<uint32_t>(adler32_z(1, data.data(), data.size())));
}

Bytes PackedStream(const Bytes& data) {
    uLongf size = compressBound(static_cast<uLong>(data.size()));
    Bytes stream(size);
    compress2(stream.data(), &size, data.data(), static_cast<uLong>(data.size()), 9);
    stream.resize(size);
    return stream;
}

Bytes PngRows(const PngPicture& picture, int filter) {
    const size_t pixel = std::max<size_t>(1, picture.Samples() * picture.depth / 8);
    Bytes stored;
    int row = 0;
    for (int pass = picture.interlaced ? 1 : 0; pass <= (picture.interlaced ? 7 : 0); ++pass) {
        Bytes above;
        for (uint32_t y = 0; y < picture.height; ++y) {
            Bytes bytes;
            uint32_t bit = 0;
            for (uint32_t x = 0; x < picture.width; ++x) {
                if (pass != 0 && kPassOf[y % 8][x % 8] != pass) continue;
                for (uint32_t sample = 0; sample < picture.Samples(); ++sample)
                    for (uint32_t i = picture.depth; i-- > 0; ++bit) {
                        if (bit % 8 == 0) bytes.push_back(0);
                        if (picture.value(x, y, sample) >> i & 1)
                            bytes.back() = static_cast<uint8_t>(bytes.back() | 0x80u >> bit % 8);
                    }
            }
            if (bytes.empty()) continue;
            stored = std::move(stored) + Filtered(filter < 0 ? row++ % 5 : filter, bytes, above, pixel);
            above = bytes;
        }
    }
    return stored;
}

Bytes MakePng(const PngPicture& picture, const Bytes& chunks, int filter) {
    return PngFile(
        PngHeader(picture.width, picture.height, picture.depth, picture.colourType, picture.interlaced ? 1 : 0),
        StoredStream(PngRows(picture, filter)), chunks);
}

// ----------------------------------------------------------------------------------------------------------------- BMP

Bytes MakeBmp(const BmpFile& file) {
    Bytes header = Little32(file.headerSize);
    if (file.headerSize == 12)
        header = header + Little16(static_cast<uint32_t>(file.width)) + Little16(static_cast<uint32_t>(file.height)) +
                 Little16(file.planes) + Little16(file.bits);
    else
        header = header + Little32(static_cast<uint32_t>(file.width)) + Little32(static_cast<uint32_t>(file.height)) +
                 Little16(file.planes) + Little16(file.bits) + Little32(file.compression) + Little32(0) +
                 Little32(file.perMetreX) + Little32(file.perMetreY) + Little32(file.coloursUsed) + Little32(0) +
                 file.masks;
    header.resize(std::max<size_t>(file.headerSize, file.headerSize == 40 ? header.size() : 0));
    const size_t pixels = 14 + header.size() + file.palette.size();
    return FromText("BM") + Little32(static_cast<uint32_t>(pixels + file.rows.size())) + Little32(0) +
           Little32(static_cast<uint32_t>(pixels)) + header + file.palette + file.rows;
}

Bytes GreyRampPalette(int entryBytes) {
    Bytes palette;
    for (int i = 0; i < 256; ++i)
        for (int k = 0; k < entryBytes; ++k) palette.push_back(static_cast<uint8_t>(k < 3 ? i : 0));
    return palette;
}

}  // namespace orlix::test
