// Row kernels of raster pictures: 8-bit samples to 32-bit pixels 0x00RRGGBB, selection of columns, and weighted sums.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "display/pick_plan.hpp"
#include "vectors/variants.hpp"

namespace orlix {

// The colours of the 256 levels, as pixels and by channel.
struct LevelColors {
    uint32_t pixels[256];
    uint8_t red[256], green[256], blue[256];
    bool grey;  // all three channels are equal
};

// `to` and the samples must not overlap. Nothing outside the n pixels and their samples is accessed.
using ExpandGreyFn = void (*)(uint32_t* to, const uint8_t* levels, size_t n);
using ExpandLevelsFn = void (*)(uint32_t* to, const uint8_t* levels, size_t n, const LevelColors& colors);
using ExpandPlanesFn = void (*)(uint32_t* to, const uint8_t* red, const uint8_t* green, const uint8_t* blue, size_t n);

// The same for selected columns: pixel i shows sample columns[i] of the row. Any sample of the row may be read. Groups
// have one of the shapes listed with the kernel in its table.
template <class Fn>
struct Picking {
    Fn fn;
    std::span<const PickShape> shapes;  // shapes for close columns first
};
// next: the row that will probably be requested after this one; any other row is allowed. Kernels may prefetch from it,
// since the hardware cannot predict where the next row lies.
using PickGreyFn = void (*)(uint32_t* to, const uint8_t* row, Picks picks, const uint8_t* next);
using PickLevelsFn = void (*)(uint32_t* to, const uint8_t* row, Picks picks, const uint8_t* next,
                              const LevelColors& colors);
using PickPixelsFn = void (*)(uint32_t* to, const uint32_t* row, Picks picks, const uint32_t* next);

// sums[i] += aWeight a[i] + bWeight b[i]; weights are at most 4096. a and b may be the same row.
using WeighRowsFn = void (*)(uint32_t* sums, const uint8_t* a, uint32_t aWeight, const uint8_t* b, uint32_t bWeight,
                             size_t n);

// From columns of sums to levels; sums are at most 255 times 4096, and the weights of one result sum to 4096.
//   Interpolate  (sums[left[i]] (4096 - share[i]) + sums[left[i] + 1] share[i] + 2^23) / 2^24, rounded down. left is
//                non-decreasing or non-increasing, in steps of at most 1. Up to kBeyond sums after the last one used
//                may be read.
//   Average      (sum of weights[taps i + k] sums[first[i] + k] over k < taps + 2^23) / 2^24, rounded down. taps is 4
//                or a multiple of 8; sums beyond a pixel's own columns have the weight 0, and may be read.
inline constexpr size_t kBeyond = 17;
using InterpolateFn = void (*)(uint8_t* to, const uint32_t* sums, const int32_t* left, const uint16_t* share, size_t n);
using AverageFn = void (*)(uint8_t* to, const uint32_t* sums, const int32_t* first, const uint16_t* weights,
                           size_t taps, size_t n);

Kernel<ExpandGreyFn> ExpandGrey_scalar, ExpandGrey_sse2, ExpandGrey_avx2, ExpandGrey_avx512;
Kernel<ExpandLevelsFn> ExpandLevels_scalar, ExpandLevels_avx2, ExpandLevels_avx512;
Kernel<ExpandPlanesFn> ExpandPlanes_scalar, ExpandPlanes_sse2, ExpandPlanes_avx2, ExpandPlanes_avx512;
Kernel<PickGreyFn> PickGrey_scalar, PickGrey_avx2, PickGrey_avx512;
Kernel<PickLevelsFn> PickLevels_scalar, PickLevels_avx2, PickLevels_avx512;
Kernel<PickPixelsFn> PickPixels_scalar, PickPixels_avx2;
Kernel<WeighRowsFn> WeighRows_scalar, WeighRows_sse2, WeighRows_avx2, WeighRows_avx512;
Kernel<InterpolateFn> Interpolate_scalar, Interpolate_avx2, Interpolate_avx512;
Kernel<AverageFn> Average_scalar, Average_avx2;

inline constexpr Variant<ExpandGreyFn> kExpandGrey[] = {
    {"avx512", Cpu::Avx512, &ExpandGrey_avx512},
    {"avx2", Cpu::Avx2, &ExpandGrey_avx2},
    {"sse2", Cpu::Sse2, &ExpandGrey_sse2},
    {"scalar", Cpu::Any, &ExpandGrey_scalar},
};
inline constexpr Variant<ExpandLevelsFn> kExpandLevels[] = {
    {"avx512", Cpu::Avx512, &ExpandLevels_avx512},
    {"avx2", Cpu::Avx2, &ExpandLevels_avx2},
    {"scalar", Cpu::Any, &ExpandLevels_scalar},
};
inline constexpr Variant<ExpandPlanesFn> kExpandPlanes[] = {
    {"avx512", Cpu::Avx512, &ExpandPlanes_avx512},
    {"avx2", Cpu::Avx2, &ExpandPlanes_avx2},
    {"sse2", Cpu::Sse2, &ExpandPlanes_sse2},
    {"scalar", Cpu::Any, &ExpandPlanes_scalar},
};
inline constexpr PickShape kPickShapes_avx512[] = {{16, 64}, {16, 128}};
inline constexpr PickShape kPickShapes_avx2[] = {{8, 16}, {4, 16}};
inline constexpr PickShape kPickPixelsShapes_avx2[] = {{4, 8}};
inline constexpr Variant<Picking<PickGreyFn>> kPickGrey[] = {
    {"avx512", Cpu::Avx512, {&PickGrey_avx512, kPickShapes_avx512}},
    {"avx2", Cpu::Avx2, {&PickGrey_avx2, kPickShapes_avx2}},
    {"scalar", Cpu::Any, {&PickGrey_scalar, {}}},
};
inline constexpr Variant<Picking<PickLevelsFn>> kPickLevels[] = {
    {"avx512", Cpu::Avx512, {&PickLevels_avx512, kPickShapes_avx512}},
    {"avx2", Cpu::Avx2, {&PickLevels_avx2, kPickShapes_avx2}},
    {"scalar", Cpu::Any, {&PickLevels_scalar, {}}},
};
// Wider vectors are no faster.
inline constexpr Variant<Picking<PickPixelsFn>> kPickPixels[] = {
    {"avx2", Cpu::Avx2, {&PickPixels_avx2, kPickPixelsShapes_avx2}},
    {"scalar", Cpu::Any, {&PickPixels_scalar, {}}},
};
inline constexpr Variant<WeighRowsFn> kWeighRows[] = {
    {"avx512", Cpu::Avx512, &WeighRows_avx512},
    {"avx2", Cpu::Avx2, &WeighRows_avx2},
    {"sse2", Cpu::Sse2, &WeighRows_sse2},
    {"scalar", Cpu::Any, &WeighRows_scalar},
};
inline constexpr Variant<InterpolateFn> kInterpolate[] = {
    {"avx512", Cpu::Avx512, &Interpolate_avx512},
    {"avx2", Cpu::Avx2, &Interpolate_avx2},
    {"scalar", Cpu::Any, &Interpolate_scalar},
};
inline constexpr Variant<AverageFn> kAverage[] = {
    {"avx2", Cpu::Avx2, &Average_avx2},
    {"scalar", Cpu::Any, &Average_scalar},
};

}  // namespace orlix
