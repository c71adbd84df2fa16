// The definition of the mapping from pixels to bins.
#include <type_traits>

#include "measure/counting_kernels.hpp"

namespace orlix {

template <class T>
void Bins_scalar(const T* pixels, size_t n, const BinRule<T>& rule, uint32_t* bins) {
    for (size_t i = 0; i < n; ++i) {
        const T p = pixels[i];
        if (!(p >= rule.lower && p <= rule.upper)) {
            bins[i] = rule.bins;
        } else if (p == rule.upper) {
            bins[i] = rule.bins - 1;
        } else if constexpr (std::is_same_v<T, float>) {
            const double above = static_cast<double>(p) - static_cast<double>(rule.lower);
            const double width = static_cast<double>(rule.upper) - static_cast<double>(rule.lower);
            const double bin = above * rule.bins / width;
            // The comparison fails when rounding carries a pixel past the last bin, and for an infinite interval.
            bins[i] = bin < rule.bins ? static_cast<uint32_t>(bin) : rule.bins - 1;
        } else if (rule.onePerValue) {
            bins[i] = p - rule.lower;
        } else if constexpr (sizeof(T) == 2) {
            // Below 2^47, so exact. A quotient that is no integer is 2^-16 or more away from the next one, and rounding
            // takes it no further than 2^-22: faster than dividing integers.
            const double above = static_cast<double>(p - rule.lower) * rule.bins;
            bins[i] = static_cast<uint32_t>(static_cast<int32_t>(above / (rule.upper - rule.lower)));
        } else {
            const uint64_t above = p - rule.lower;
            bins[i] = static_cast<uint32_t>(above * rule.bins / (rule.upper - rule.lower));
        }
    }
}

template Kernel<BinsFn<uint16_t>> Bins_scalar;
template Kernel<BinsFn<uint32_t>> Bins_scalar;
template Kernel<BinsFn<float>> Bins_scalar;

}  // namespace orlix
