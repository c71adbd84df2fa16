// The three colours of each pixel behind a mosaic of colour filters.
#pragma once

#include <cstddef>
#include <cstdint>

#include "vectors/variants.hpp"

namespace orlix {

// Completes n pixels of a row of a Bayer mosaic by the linear filters of Malvar, He and Cutler (2004). Every other
// pixel of the row has its colour (red or blue), the rest are green; `own` is the first of these colours, `other` the
// one of the rows above and below. With c the sample of the pixel itself, e and ee the sums of its two neighbours 1 and
// 2 away in the row, n and nn in the column, and d the sum of the four diagonal ones:
//                  own                            green                        other
//     own pixel    c                              8c + 4(e + n) - 2(ee + nn)   12c + 4d - 3(ee + nn)
//     green pixel  10c + 8e - 2ee - 2d + nn       c                            10c + 8n - 2nn - 2d + ee
// All but c are over 16: floor((sum + 8) / 16), then clamped to 0..most. Notes:
//  (1) rows[k][i - 2 .. i + 2], k = 0..4, are the samples around pixel i; rows[2] is its row. No more is read;
//  (2) ownFirst says whether pixel 0 is one of the own colour;
//  (3) no sample exceeds most, which is 255 for uint8_t;
//  (4) the outputs overlap neither the rows nor each other; alignment is that of T; n may be 0.
template <class T>
using MosaicFn = void (*)(const T* const* rows, size_t n, bool ownFirst, T most, T* own, T* green, T* other);

template <class T>
void Mosaic_scalar(const T* const* rows, size_t n, bool ownFirst, T most, T* own, T* green, T* other);
template <class T>
void Mosaic_sse2(const T* const* rows, size_t n, bool ownFirst, T most, T* own, T* green, T* other);
template <class T>
void Mosaic_avx2(const T* const* rows, size_t n, bool ownFirst, T most, T* own, T* green, T* other);

template <class T>
inline constexpr Variant<MosaicFn<T>> kMosaic[] = {
    {"avx2", Cpu::Avx2, &Mosaic_avx2},
    {"sse2", Cpu::Sse2, &Mosaic_sse2},
    {"scalar", Cpu::Any, &Mosaic_scalar},
};

}  // namespace orlix
