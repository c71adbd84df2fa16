// Conversion from double to pixel coordinates. Defined for every argument.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace orlix {

// Toward zero. Values beyond 32 bits give the nearest 32-bit value; NaN gives 0.
inline int32_t TruncateToInt32(double v) {
    if (std::isnan(v)) return 0;
    return static_cast<int32_t>(std::clamp(v, -2147483648.0, 2147483647.0));
}

inline int32_t FloorToInt32(double v) { return TruncateToInt32(std::floor(v)); }
inline int32_t CeilToInt32(double v) { return TruncateToInt32(std::ceil(v)); }
// Halves round up: 2.5 gives 3, -2.5 gives -2.
inline int32_t RoundToInt32(double v) { return FloorToInt32(v + 0.5); }

// For sums of columns, which may slightly exceed 32 bits.
inline int32_t SaturateToInt32(int64_t v) { return static_cast<int32_t>(std::clamp<int64_t>(v, INT32_MIN, INT32_MAX)); }

}  // namespace orlix
