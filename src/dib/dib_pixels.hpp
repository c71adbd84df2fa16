// Pixels of device-independent bitmaps as samples of 8 bits.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "dib/dib_layout.hpp"
#include "image/palette.hpp"

namespace orlix {

// A DIB in memory that is not owned. pixels: the rows, or the stream of run lengths and possibly more behind it.
struct DibView {
    DibLayout layout;
    Palette palette;  // of up to 8 bits
    std::span<const uint8_t> pixels;
};

// The bytes that the pixels take must be there: DibFault::TooShort. Run lengths may leave rows out, so that a few bytes
// can stand for any image; of more than 2^16 pixels and 1024 for each byte they are refused.
void RequirePixels(const DibView& dib);

// For up to 8 bits: calls take(y, indices) once for each row, where y counts from the top and rows come in any order.
// The pixels that run lengths leave out have index 0. A stream may end without its end mark when all rows are complete.
// RequirePixels() has passed. Raises Runs, TooShort.
using TakeIndices = std::function<void(int32_t y, const uint8_t* indices)>;
void ReadIndices(const DibView& dib, const TakeIndices& take);

// Expands the pixels first .. first + n - 1 of a row of 1, 4 or 8 bits per pixel, leftmost pixel in the highest bits.
void ExpandIndices(const uint8_t* row, uint32_t bits, size_t first, size_t n, uint8_t* indices);

// The colours of 16, 24 and 32 bits. A channel of n bits is scaled to floor(255 v / (2^n - 1) + 0.5).
class DibColours {
public:
    explicit DibColours(const DibLayout& layout);

    // The pixels first .. first + n - 1 of a row.
    void operator()(const uint8_t* row, size_t first, size_t n, uint8_t* red, uint8_t* green, uint8_t* blue) const;

private:
    struct Channel {
        uint32_t mask = 0;
        int shift = 0;
        uint64_t most = 0;           // the largest value
        std::vector<uint8_t> level;  // of each value, unless these are too many
        uint8_t operator()(uint32_t pixel) const;
    };

    uint32_t bits_;
    bool bytes_ = false;             // each channel is a byte:
    std::array<size_t, 3> place_{};  // this one of the pixel
    std::array<Channel, 3> channels_;
};

// The bands of a DIB as an image: one if every palette entry that a pixel uses is grey, otherwise three (red, green,
// blue). RequirePixels() has passed. Raises Palette and what ReadIndices() raises.
int32_t DibBands(const DibView& dib);

// Writes the samples: rowOf(band, y) gives memory for `width` of them. `bands` is what DibBands() said.
using SampleRow = std::function<uint8_t*(int32_t band, int32_t y)>;
void ReadDibSamples(const DibView& dib, int32_t bands, const SampleRow& rowOf);

}  // namespace orlix
