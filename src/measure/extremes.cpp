#include "measure/extremes.hpp"

#include <limits>

#include "measure/extremes_kernels.hpp"

namespace orlix {
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

template class Extremes<uint8_t>;
template class Extremes<uint16_t>;
template class Extremes<uint32_t>;
template class Extremes<float>;

}  // namespace orlix
