// The choice between two extremes.
#pragma once

#include <cmath>
#include <limits>
#include <type_traits>

namespace orlix {

// high where p - low >= high - p, else low. Differences of integers do not wrap; for float see ExtremumSharpening.
template <class T>
T NearerExtreme(T p, T low, T high) {
    if constexpr (std::is_same_v<T, float>) {
        if (std::isnan(p)) return std::numeric_limits<float>::quiet_NaN();
        return (p - low >= high - p ? high : low) + 0.0f;
    } else {
        const int64_t pixel = p;
        return pixel - low >= high - pixel ? high : low;
    }
}

}  // namespace orlix
