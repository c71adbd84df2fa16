// The definition of the sums for grey measurements.
#include <type_traits>

#include "measure/measuring_kernels.hpp"

namespace orlix {

template <class T>
void Sums_scalar(const T* pixels, size_t n, [[maybe_unused]] double origin, PixelSums<T>& sums) {
    sums = {};
    if constexpr (std::is_same_v<T, float>) {
        AddRest(pixels, 0, n, origin, sums);
    } else {
        for (size_t i = 0; i < n; ++i) {
            const uint64_t p = pixels[i];
            sums.s += p;
            sums.w += i * p;
            if constexpr (std::is_same_v<T, uint32_t>) {
                sums.q += static_cast<uint32_t>(p * p);
                sums.qHigh += p * p >> 32;
            } else {
                sums.q += p * p;
            }
        }
    }
}

void AddRest(const float* pixels, size_t first, size_t n, double origin, PixelSums<float>& sums) {
    for (size_t i = first; i < n; ++i) {
        const double p = static_cast<double>(pixels[i]);
        const double d = p - origin;
        sums.s[i % 8] += p;
        sums.q[i % 8] += d * d;
        sums.w[i % 8] += static_cast<double>(i) * p;
    }
}

template Kernel<SumsFn<uint8_t>> Sums_scalar;
template Kernel<SumsFn<uint16_t>> Sums_scalar;
template Kernel<SumsFn<uint32_t>> Sums_scalar;
template Kernel<SumsFn<float>> Sums_scalar;

}  // namespace orlix
