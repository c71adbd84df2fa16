// The ends of the numbers, which tests pass wherever a number is taken.
#pragma once

#include <cstdint>
#include <limits>

namespace orlix {

inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInfinity = std::numeric_limits<double>::infinity();
inline constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
inline constexpr int32_t kLeast = std::numeric_limits<int32_t>::min();

}  // namespace orlix
