#include "vectors/floats_avx512.hpp"

#include "fits/quick_sums_vectors.hpp"

namespace orlix {

template <class T>
void QuickSums_avx512(const T* pixels, size_t n, const QuickRow& row, float most, QuickSums& sums) {
    AddQuick<WideFloats>(pixels, n, row, most, sums);
}

template Kernel<QuickSumsFn<uint8_t>> QuickSums_avx512;
template Kernel<QuickSumsFn<uint16_t>> QuickSums_avx512;
template Kernel<QuickSumsFn<float>> QuickSums_avx512;
}  // namespace orlix
