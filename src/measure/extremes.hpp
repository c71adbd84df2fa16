// Smallest and largest pixel.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orlix {

// Gathers the extremes of any number of runs. T is uint8_t, uint16_t, uint32_t or float. NaN is skipped, infinities
// count, -0 is reported as 0.
template <class T>
class Extremes {
public:
    Extremes();
    void operator()(const T* pixels, size_t n) {
        if (n > 0) scan_(pixels, n, min_, max_);
    }

    // Whether any pixel other than NaN was seen; until then Min() and Max() are meaningless.
    bool Any() const { return min_ <= max_; }
    T Min() const { return static_cast<T>(min_ + T{0}); }
    T Max() const { return static_cast<T>(max_ + T{0}); }

private:
    // Extends [min, max] by the pixels, starting from the emptiest interval of the type.
    using Fn = void (*)(const T* pixels, size_t n, T& min, T& max);
    Fn scan_;
    T min_;
    T max_;
};

extern template class Extremes<uint8_t>;
extern template class Extremes<uint16_t>;
extern template class Extremes<uint32_t>;
extern template class Extremes<float>;

}  // namespace orlix
