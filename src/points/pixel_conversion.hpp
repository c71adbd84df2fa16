// Conversions from double to pixels. NaN, infinities and values beyond any integer all have a defined result.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace orlix {

template <class Pixel>
inline constexpr bool kIsFloat = std::is_floating_point_v<Pixel>;

template <class Pixel>
inline constexpr Pixel kTypeMinimum = std::numeric_limits<Pixel>::lowest();
template <class Pixel>
inline constexpr Pixel kTypeMaximum = std::numeric_limits<Pixel>::max();

// Clamped to the type's range, otherwise floor(v + 0.5); for float pixels the nearest float. NaN gives the minimum of
// an integer type and stays NaN in a float.
template <class Pixel>
Pixel ToPixel(double v) {
    if (v < static_cast<double>(kTypeMinimum<Pixel>)) return kTypeMinimum<Pixel>;
    if (v > static_cast<double>(kTypeMaximum<Pixel>)) return kTypeMaximum<Pixel>;
    if constexpr (kIsFloat<Pixel>) return static_cast<Pixel>(v);
    if (std::isnan(v)) return kTypeMinimum<Pixel>;
    return static_cast<Pixel>(std::floor(v + 0.5));
}

// Truncated toward zero, then the low-order bits: 12.9 gives 12, and 256 gives 0 for bytes. NaN, infinities and
// magnitudes of 2^63 and more give 0. Float pixels get the nearest float, as in ToPixel.
template <class Pixel>
Pixel TruncateToPixel(double v) {
    if constexpr (kIsFloat<Pixel>) return ToPixel<Pixel>(v);
    if (!(std::fabs(v) < 0x1p63)) return 0;
    return static_cast<Pixel>(static_cast<uint64_t>(static_cast<int64_t>(v)));
}

// Threshold bounds: clamped to the type's range, then rounded up or down. For float pixels the bound becomes the
// nearest float on the inner side, so a float p compares with it exactly as with the bound itself. v is not NaN.
template <class Pixel>
Pixel CeilToPixel(double v) {
    if (v <= static_cast<double>(kTypeMinimum<Pixel>)) return kTypeMinimum<Pixel>;
    if (v >= static_cast<double>(kTypeMaximum<Pixel>)) return kTypeMaximum<Pixel>;
    if constexpr (kIsFloat<Pixel>) {
        const auto nearest = static_cast<Pixel>(v);
        return static_cast<double>(nearest) < v ? std::nextafter(nearest, std::numeric_limits<Pixel>::infinity())
                                                : nearest;
    } else {
        return static_cast<Pixel>(std::ceil(v));
    }
}
template <class Pixel>
Pixel FloorToPixel(double v) {
    if (v <= static_cast<double>(kTypeMinimum<Pixel>)) return kTypeMinimum<Pixel>;
    if (v >= static_cast<double>(kTypeMaximum<Pixel>)) return kTypeMaximum<Pixel>;
    if constexpr (kIsFloat<Pixel>) {
        const auto nearest = static_cast<Pixel>(v);
        return static_cast<double>(nearest) > v ? std::nextafter(nearest, -std::numeric_limits<Pixel>::infinity())
                                                : nearest;
    } else {
        return static_cast<Pixel>(std::floor(v));
    }
}

}  // namespace orlix
