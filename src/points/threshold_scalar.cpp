// The definition of the threshold.
#include "points/threshold_kernels.hpp"

namespace orlix {

template <class T>
void Threshold_scalar(const T* pixels, size_t n, uint8_t* bits, unsigned firstBit, T lo, T hi, bool inside) {
    for (size_t i = 0; i < n; ++i) {
        const T p = pixels[i];
        const bool set = inside ? p >= lo && p <= hi : p < lo || p > hi;
        const size_t bit = firstBit + i;
        if (set) bits[bit / 8] = static_cast<uint8_t>(bits[bit / 8] | 0x80 >> bit % 8);
    }
}

template Kernel<ThresholdFn<uint8_t>> Threshold_scalar;
template Kernel<ThresholdFn<uint16_t>> Threshold_scalar;
template Kernel<ThresholdFn<uint32_t>> Threshold_scalar;
template Kernel<ThresholdFn<float>> Threshold_scalar;

}  // namespace orlix
