// Reference implementation of the median.
#include <algorithm>
#include <bit>
#include <type_traits>

#include "filters/median_kernels.hpp"

namespace orlix {
namespace {

// Keys that compare as the pixels do.
template <class T>
T Key(T pixel) {
    return pixel;
}
int32_t Key(float pixel) {
    const auto bits = std::bit_cast<int32_t>(pixel);
    return bits < 0 ? bits ^ 0x7fffffff : bits;
}

}  // namespace

template <class T>
void Median3x3_scalar(const T* const* rows, T* to, size_t n, const FilterParameters<T>&) {
    for (size_t i = 0; i < n; ++i) {
        T square[9];
        for (size_t k = 0; k < 3; ++k) std::copy_n(rows[k] + i - 1, 3, square + 3 * k);
        std::nth_element(square, square + 4, square + 9, [](T a, T b) { return Key(a) < Key(b); });
        to[i] = square[4];
    }
}

template Kernel<FilterFn<uint8_t>> Median3x3_scalar;
template Kernel<FilterFn<uint16_t>> Median3x3_scalar;
template Kernel<FilterFn<uint32_t>> Median3x3_scalar;
template Kernel<FilterFn<float>> Median3x3_scalar;

}  // namespace orlix
