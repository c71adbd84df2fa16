#include "points/threshold.hpp"

#include "points/threshold_kernels.hpp"

namespace orlix {

template <class T>
ThresholdOperation<T>::ThresholdOperation(T lo, T hi, bool inside)
    : setBits_(Choose(kThreshold<T>)), lo_(lo), hi_(hi), inside_(inside) {}

template class ThresholdOperation<uint8_t>;
template class ThresholdOperation<uint16_t>;
template class ThresholdOperation<uint32_t>;
template class ThresholdOperation<float>;

}  // namespace orlix
