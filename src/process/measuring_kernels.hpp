// Kernels of the grey measurements and their variants.
#pragma once

#include "process/measuring.hpp"
#include "process/variants.hpp"

namespace orlix {

// Writes the sums over n <= 65536 pixels. origin is for float pixels only.
template <class T>
using SumsFn = void (*)(const T* pixels, size_t n, double origin, PixelSums<T>& sums);

template <class T>
void Sums_scalar(const T* pixels, size_t n, double origin, PixelSums<T>& sums);

template <class T>
inline constexpr Variant<SumsFn<T>> kSums[] = {{"scalar", Cpu::Any, &Sums_scalar}};

}  // namespace orlix
