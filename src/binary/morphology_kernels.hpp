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

// The window of each pixel: so many pixels before it and after it, in its row or its column; both less than the width
// or height.
struct MorphologyWindow {
    int32_t before;
    int32_t after;
    constexpr size_t length() const { return static_cast<size_t>(before) + static_cast<size_t>(after) + 1; }
};

// The dilation (or else erosion) by a window of columns. scratch has RowWindowScratch(bytes) bytes.
using RowWindowFn = void (*)(const MorphologyRows& rows, const MorphologyWindow& window, uint8_t* scratch);
constexpr size_t kRowMargin = 192;
constexpr size_t RowWindowScratch(size_t bytes) { return 3 * (3 * bytes + 2 * kRowMargin); }

template <bool dilate>
void RowWindow_scalar(const MorphologyRows& rows, const MorphologyWindow& window, uint8_t* scratch);
template <bool dilate>
void RowWindow_sse2(const MorphologyRows& rows, const MorphologyWindow& window, uint8_t* scratch);
template <bool dilate>
void RowWindow_avx2(const MorphologyRows& rows, const MorphologyWindow& window, uint8_t* scratch);
template <bool dilate>
void RowWindow_avx512(const MorphologyRows& rows, const MorphologyWindow& window, uint8_t* scratch);

template <bool dilate>
inline constexpr Variant<RowWindowFn> kRowWindow[] = {
    {"avx512", Cpu::Avx512, &RowWindow_avx512<dilate>},
    {"avx2", Cpu::Avx2, &RowWindow_avx2<dilate>},
    {"sse2", Cpu::Sse2, &RowWindow_sse2<dilate>},
    {"scalar", Cpu::Any, &RowWindow_scalar<dilate>},
};

// The same by a window of rows. scratch has ColumnWindowScratch(window, bytes) bytes.
using ColumnWindowFn = RowWindowFn;
constexpr size_t kColumnStrip = 512;
constexpr size_t ColumnWindowScratch(const MorphologyWindow& window) { return 2 * kColumnStrip * window.length(); }

template <bool dilate>
void ColumnWindow_scalar(const MorphologyRows& rows, const MorphologyWindow& window, uint8_t* scratch);
template <bool dilate>
void ColumnWindow_sse2(const MorphologyRows& rows, const MorphologyWindow& window, uint8_t* scratch);
template <bool dilate>
void ColumnWindow_avx2(const MorphologyRows& rows, const MorphologyWindow& window, uint8_t* scratch);
template <bool dilate>
void ColumnWindow_avx512(const MorphologyRows& rows, const MorphologyWindow& window, uint8_t* scratch);

template <bool dilate>
inline constexpr Variant<ColumnWindowFn> kColumnWindow[] = {
    {"avx512", Cpu::Avx512, &ColumnWindow_avx512<dilate>},
    {"avx2", Cpu::Avx2, &ColumnWindow_avx2<dilate>},
    {"sse2", Cpu::Sse2, &ColumnWindow_sse2<dilate>},
    {"scalar", Cpu::Any, &ColumnWindow_scalar<dilate>},
};

}  // namespace orlix
