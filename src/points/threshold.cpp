#include "points/threshold.hpp"

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

template <class T>
ThresholdOperation<T>::ThresholdOperation(T lo, T hi, bool inside)
    : setBits_(Choose(kThreshold<T>)), lo_(lo), hi_(hi), inside_(inside) {}

template void Threshold_scalar(const uint8_t*, size_t, uint8_t*, unsigned, uint8_t, uint8_t, bool);
template void Threshold_scalar(const uint16_t*, size_t, uint8_t*, unsigned, uint16_t, uint16_t, bool);
template void Threshold_scalar(const uint32_t*, size_t, uint8_t*, unsigned, uint32_t, uint32_t, bool);
template void Threshold_scalar(const float*, size_t, uint8_t*, unsigned, float, float, bool);
template class ThresholdOperation<uint8_t>;
template class ThresholdOperation<uint16_t>;
template class ThresholdOperation<uint32_t>;
template class ThresholdOperation<float>;

}  // namespace orlix
