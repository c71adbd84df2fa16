// Vectors of pixels for kernels that compare and select. lanes_sse2.hpp, lanes_avx2.hpp and lanes_avx512.hpp specialise
// PixelLanes for the pixel types; a suffixed file includes the one with its suffix:
//
//     using Pixel, Vector;
//     static constexpr size_t kLanes;          pixels per vector
//     static Vector Load(p), All(pixel);       kLanes pixels from p on; the same pixel in all lanes
//     static void Store(p, v);
//     static Vector Min(a, b), Max(a, b);      for floats the second operand when either is NaN
//     static Vector Nearer(p, low, high);      high where p - low >= high - p, else low; low <= p <= high. For floats
//                                              the quiet NaN where p is NaN, and zeros lose their sign
//     static Vector Before(a, b), After(b, c); the pixels just before and just after those of b, where a, b, c are
//                                              adjacent vectors; not where loading again takes less
//     static void Order(a, b);                 the smaller and the larger of both; only where that takes less than Min
//                                              and Max
//
// TotallyOrderedLanes are floats in the total order of IEEE 754: negative NaN, -infinity, ..., -0, 0, ..., infinity,
// NaN. They have neither All nor Nearer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "vectors/inline.hpp"

namespace orlix {
namespace {

template <class T>
struct PixelLanes;
struct TotallyOrderedLanes;

// Lanes whose order is total, NaN included.
template <class T>
using OrderedLanes = std::conditional_t<std::is_same_v<T, float>, TotallyOrderedLanes, PixelLanes<T>>;

}  // namespace
}  // namespace orlix
