// Kernels of the scan for extremes and their variants.
#pragma once

#include "process/extremes.hpp"
#include "process/variants.hpp"

namespace orlix {

// Extends [min, max] by n pixels that are not NaN. Which zero represents 0 in a float result is not stated.
template <class T>
using ExtremesFn = void (*)(const T* pixels, size_t n, T& min, T& max);

template <class T>
void Extremes_scalar(const T* pixels, size_t n, T& min, T& max);

template <class T>
inline constexpr Variant<ExtremesFn<T>> kExtremes[] = {{"scalar", Cpu::Any, &Extremes_scalar}};

}  // namespace orlix
