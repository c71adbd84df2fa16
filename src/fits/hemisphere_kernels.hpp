// Kernels for the height of a hemisphere along a row, and their variants.
#pragma once

#include <cstddef>

#include "vectors/variants.hpp"

namespace orlix {

// f(x) = (base + slope dx) + height sqrt(max(squares - dx^2, 0)) with dx = x - xCenter.
struct HemisphereRow {
    double xCenter, base, slope, height, squares;
};

// values[i] = f(x + i).
using HemisphereRowFn = void (*)(const HemisphereRow& row, double x, size_t n, double* values);

Kernel<HemisphereRowFn> HemisphereRow_scalar, HemisphereRow_sse2, HemisphereRow_avx2, HemisphereRow_avx512;

inline constexpr Variant<HemisphereRowFn> kHemisphereRow[] = {
    {"avx512", Cpu::Avx512, &HemisphereRow_avx512},
    {"avx2", Cpu::Avx2, &HemisphereRow_avx2},
    {"sse2", Cpu::Sse2, &HemisphereRow_sse2},
    {"scalar", Cpu::Any, &HemisphereRow_scalar},
};

}  // namespace orlix
