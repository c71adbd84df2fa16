#include "filters/median_vectors.hpp"
#include "vectors/lanes_avx2.hpp"

namespace orlix {

template <class T>
void Median3x3_avx2(const T* const* rows, T* to, size_t n, const FilterParameters<T>&) {
    MedianRow<OrderedLanes<T>>(rows, to, n);
}

template Kernel<FilterFn<uint8_t>> Median3x3_avx2;
template Kernel<FilterFn<uint16_t>> Median3x3_avx2;
template Kernel<FilterFn<uint32_t>> Median3x3_avx2;
template Kernel<FilterFn<float>> Median3x3_avx2;

}  // namespace orlix
