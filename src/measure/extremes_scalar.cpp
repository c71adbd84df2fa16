// The definition of the extremes scan.
#include "measure/extremes_kernels.hpp"

namespace orlix {

template <class T>
void Extremes_scalar(const T* pixels, size_t n, T& min, T& max) {
    T low = min;
    T high = max;
    for (size_t i = 0; i < n; ++i) {
        const T p = pixels[i];
        low = p < low ? p : low;
        high = p > high ? p : high;
    }
    min = low;
    max = high;
}

template Kernel<ExtremesFn<uint8_t>> Extremes_scalar;
template Kernel<ExtremesFn<uint16_t>> Extremes_scalar;
template Kernel<ExtremesFn<uint32_t>> Extremes_scalar;
template Kernel<ExtremesFn<float>> Extremes_scalar;

}  // namespace orlix
