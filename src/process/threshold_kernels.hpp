// Kernels of the threshold and their variants.
#pragma once

#include "process/threshold.hpp"
#include "process/variants.hpp"

namespace orlix {

// Sets bits of whole bytes: pixel i < 8 * bytes gives bit 0x80 >> (i % 8) of bits[i / 8].
template <class T>
using ThresholdFn = void (*)(const T* pixels, size_t bytes, uint8_t* bits, T lo, T hi, bool inside);

template <class T>
constexpr bool IsSet(T p, T lo, T hi, bool inside) {
    return inside ? p >= lo && p <= hi : p < lo || p > hi;
}

template <class T>
void Threshold_scalar(const T* pixels, size_t bytes, uint8_t* bits, T lo, T hi, bool inside);

template <class T>
inline constexpr Variant<ThresholdFn<T>> kThreshold[] = {{"scalar", Cpu::Any, &Threshold_scalar}};

}  // namespace orlix
