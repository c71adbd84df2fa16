#include "filters/median_vectors.hpp"
#include "vectors/lanes_sse2.hpp"

namespace orlix {

#define ORLIX_MEDIAN(T, Lanes)                                                                          \
    void Median3x3_sse2(const T* const* rows, T* to, size_t n, const FilterParameters<T>& parameters) { \
        if (!MedianRow<Lanes>(rows, to, n)) Median3x3_scalar(rows, to, n, parameters);                  \
    }
ORLIX_MEDIAN(uint8_t, Bytes)
ORLIX_MEDIAN(uint16_t, Words)
ORLIX_MEDIAN(uint32_t, DoubleWords)
ORLIX_MEDIAN(float, TotallyOrdered)
#undef ORLIX_MEDIAN

}  // namespace orlix
