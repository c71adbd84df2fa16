#include "measure/extremes.hpp"

#include <limits>

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

namespace {

template <class T>
constexpr T kEnd = std::numeric_limits<T>::has_infinity ? std::numeric_limits<T>::infinity()
                                                        : std::numeric_limits<T>::max();

}  // namespace

template <class T>
Extremes<T>::Extremes()
    : scan_(Choose(kExtremes<T>)),
      min_(kEnd<T>),
      max_(std::numeric_limits<T>::has_infinity ? static_cast<T>(-kEnd<T>) : std::numeric_limits<T>::lowest()) {}

template void Extremes_scalar(const uint8_t*, size_t, uint8_t&, uint8_t&);
template void Extremes_scalar(const uint16_t*, size_t, uint16_t&, uint16_t&);
template void Extremes_scalar(const uint32_t*, size_t, uint32_t&, uint32_t&);
template void Extremes_scalar(const float*, size_t, float&, float&);
template class Extremes<uint8_t>;
template class Extremes<uint16_t>;
template class Extremes<uint32_t>;
template class Extremes<float>;

}  // namespace orlix
