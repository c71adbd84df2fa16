// Kernels of erosions and dilations on the bytes of bitmaps, and their variants. Pixels outside the rows do not take
// part: an erosion takes them for set, a dilation for clear.
#pragma once

#include <cstddef>
#include <cstdint>

#include "vectors/variants.hpp"

namespace orlix {

// Rows of `bytes` >= 1 bytes; pixels of the last byte are those of lastMask. `to` is the memory of `from` with the same
// distance of rows, or apart from it. Bits beyond the width may be read and written as anything.
struct MorphologyRows {
    const uint8_t* from;
    ptrdiff_t fromRow;
    uint8_t* to;
    ptrdiff_t toRow;
    int32_t height;
    size_t bytes;
    uint8_t lastMask;
};

// The dilation (or else erosion) by the pixel and its eight (or else four) neighbours. scratch has 3 * bytes bytes.
using SquareFn = void (*)(const MorphologyRows& rows, uint8_t* scratch);

template <bool dilate, bool eight>
void Square_scalar(const MorphologyRows& rows, uint8_t* scratch);
template <bool dilate, bool eight>
void Square_sse2(const MorphologyRows& rows, uint8_t* scratch);
template <bool dilate, bool eight>
void Square_avx2(const MorphologyRows& rows, uint8_t* scratch);
template <bool dilate, bool eight>
void Square_avx512(const MorphologyRows& rows, uint8_t* scratch);

template <bool dilate, bool eight>
inline constexpr Variant<SquareFn> kSquare[] = {
    {"avx512", Cpu::Avx512, &Square_avx512<dilate, eight>},
    {"avx2", Cpu::Avx2, &Square_avx2<dilate, eight>},
    {"sse2", Cpu::Sse2, &Square_sse2<dilate, eight>},
    {"scalar", Cpu::Any, &Square_scalar<dilate, eight>},
};

// The window of each pixel: so many pixels before it and after it, in its row or its column. The numbers differ by at
// most 1 and are less than the width or height.
struct MorphologyWindow {
    int32_t before;
    int32_t after;
    constexpr int64_t length() const { return int64_t{before} + after + 1; }
};
struct MorphologyRectangle {
    MorphologyWindow columns;
    MorphologyWindow rows;
};

// The dilation (or else erosion) by a window of columns and rows. scratch has RectangleScratch(...) bytes.
using RectangleFn = void (*)(const MorphologyRows& rows, const MorphologyRectangle& window, uint8_t* scratch);
constexpr size_t RectangleScratch(size_t bytes, int32_t height, const MorphologyRectangle& window) {
    const size_t row = bytes + 64;  // whole vectors
    const auto kept = static_cast<size_t>(window.rows.length() < height ? window.rows.length() : height);
    return 6 * row + 512 + (2 + 2 * kept) * row;
}

template <bool dilate>
void Rectangle_scalar(const MorphologyRows& rows, const MorphologyRectangle& window, uint8_t* scratch);
template <bool dilate>
void Rectangle_sse2(const MorphologyRows& rows, const MorphologyRectangle& window, uint8_t* scratch);
template <bool dilate>
void Rectangle_avx2(const MorphologyRows& rows, const MorphologyRectangle& window, uint8_t* scratch);
template <bool dilate>
void Rectangle_avx512(const MorphologyRows& rows, const MorphologyRectangle& window, uint8_t* scratch);

template <bool dilate>
inline constexpr Variant<RectangleFn> kRectangle[] = {
    {"avx512", Cpu::Avx512, &Rectangle_avx512<dilate>},
    {"avx2", Cpu::Avx2, &Rectangle_avx2<dilate>},
    {"sse2", Cpu::Sse2, &Rectangle_sse2<dilate>},
    {"scalar", Cpu::Any, &Rectangle_scalar<dilate>},
};

}  // namespace orlix
