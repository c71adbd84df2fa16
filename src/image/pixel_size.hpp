// The size of a pixel as files store it.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

namespace orlix {

// Whole pixels per metre for a pixel size in microns; 0 when that number is not in 1 .. 2^31 - 1, or the size is not
// above 0.
inline int32_t PixelsPerMetre(double microns) {
    const double number = std::floor(1e6 / microns + 0.5);
    return microns > 0 && number >= 1 && number <= std::numeric_limits<int32_t>::max() ? static_cast<int32_t>(number)
                                                                                       : 0;
}

}  // namespace orlix
