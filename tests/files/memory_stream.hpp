// Streams of images in memory: hand-made ones, and sources that deliver them.
#pragma once

#include <algorithm>
#include <bit>
#include <cstring>

#include "files/hand_made.hpp"
#include "files/image_stream.hpp"

namespace orlix::test {

// Delivers at most `piece` bytes at a time. Whoever asks for far more than has arrived so far has believed a number.
class MemorySource final : public ByteSource {
public:
    explicit MemorySource(std::span<const uint8_t> bytes, size_t piece = SIZE_MAX) : bytes_(bytes), piece_(piece) {}
    size_t Read(uint8_t* to, size_t size) override {
        greedy_ |= size > std::max(size_t{1} << 16, 2 * at_);
        const size_t step = std::min({size, piece_, bytes_.size() - at_});
        std::copy_n(bytes_.begin() + static_cast<ptrdiff_t>(at_), step, to);
        at_ += step;
        return step;
    }
    size_t at() const { return at_; }
    bool greedy() const { return greedy_; }

private:
    std::span<const uint8_t> bytes_;
    size_t piece_;
    size_t at_ = 0;
    bool greedy_ = false;
};

inline Bytes Double(double value) {
    const auto bits = std::bit_cast<uint64_t>(value);
    return Little32(static_cast<uint32_t>(bits)) + Little32(static_cast<uint32_t>(bits >> 32));
}

inline Bytes LittleString(WideStringView text) {
    Bytes bytes = Little32(static_cast<uint32_t>(text.size()));
    for (const OLECHAR unit : text) bytes = bytes + Little16(unit);
    return bytes;
}

inline Bytes Written(const StreamImage& image) {
    const StreamBytes stream = WriteImageStream(image.dataType, image.content, image.settings);
    Bytes all;
    for (const auto piece : stream.pieces()) all.insert(all.end(), piece.begin(), piece.end());
    return all;
}

// Lines up a column -200 .. n + 199 by walking to and fro between its ends; `entries` of them, 0 behind that.
inline std::vector<uint32_t> Zigzag(uint32_t length, uint32_t step, size_t entries) {
    std::vector<uint32_t> offsets(entries, 0);
    const auto turn = [&](size_t from, ptrdiff_t direction, size_t count) {
        int64_t at = 0, by = length > 1 ? 1 : 0;
        for (size_t i = 0; i < count; ++i, from += static_cast<size_t>(direction)) {
            offsets[from] = static_cast<uint32_t>(at) * step;
            if (at + by < 0 || at + by >= length) by = -by;
            at += by;
        }
    };
    turn(200, 1, length + 200);
    turn(200, -1, 201);
    return offsets;
}

// The table of offsets of rows and columns.
inline Bytes ZigzagTable(uint32_t width, uint32_t height, uint32_t rowStep) {
    const size_t entries = std::max(width, height) + 400;
    const auto x = Zigzag(width, 1, entries), y = Zigzag(height, rowStep, entries);
    Bytes table;
    for (size_t i = 0; i < entries; ++i)
        for (const uint32_t offset : {x[i], y[i]})
            for (const uint8_t byte : Little32(offset)) table.push_back(byte);
    return table;
}

// A stream of one band of bytes, 5 x 3, rows padded to 8. Everything differs from what an image starts with.
struct HandMadeStream {
    Bytes outer = FromText("qelo") + Double(1.0) + Little32(8);
    Bytes inner = FromText("imba") + Double(1.3);
    Bytes map = Double(-1.5) + Double(2.5) + Double(3) + Double(4) + Double(5) + Double(6);
    Bytes geometry = Little32(1) + Little32(5) + Little32(3) + Little32(1) + Little32(8) + Little32(24) + Little32(405);
    Bytes table = ZigzagTable(5, 3, 8);
    Bytes pixels = {1, 2, 3, 4, 5, 0, 0, 0, 11, 12, 13, 14, 15, 0, 0, 0, 21, 22, 23, 24, 255, 0, 0, 0};
    Bytes description = LittleString(OLESTR("a\u9762"));
    Bytes processing = Bytes{7, 200} + Little32(0xFFFFFFFF) + Little32(256);
    Bytes display = Bytes{9, 8} + Little32(0) +
                    [] {
                        Bytes palette;
                        for (uint32_t i = 0; i < 256; ++i) palette = palette + Little32(i * 0x01020304);
                        return palette;
                    }() +
                    Little32(77) + Double(1.25) + Double(-2.5) + Double(1e300);
    Bytes texts = Little32(2) + Double(1.0) + LittleString(OLESTR("Author")) + LittleString(OLESTR("M. W.")) +
                  Double(1.0) + LittleString(OLESTR("Author")) + LittleString(OLESTR(""));
    Bytes binaries = Little32(2) + Double(1.0) + LittleString(OLESTR("MicronsPerPixel")) + Little32(16) + Double(0.25) +
                     Double(0.5) + Double(1.0) + LittleString(OLESTR("Profile")) + Little32(3) + Bytes{1, 0, 255};

    Bytes Head() const { return outer + inner + map + geometry + table; }
    Bytes Block(const Bytes& compressed) const {
        return Little32(static_cast<uint32_t>(compressed.size())) + compressed;
    }
    Bytes Tail() const { return description + processing + display + texts + binaries; }
    Bytes Whole() const { return Head() + Block(StoredStream(pixels)) + Tail(); }
};

}  // namespace orlix::test
