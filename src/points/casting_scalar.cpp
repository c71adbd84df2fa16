// The definitions of casting and of adding another image.
#include <cmath>
#include <cstring>
#include <type_traits>

#include "points/casting_kernels.hpp"

namespace orlix {
namespace {

template <class To, class From>
To CastPixel(From p) {
    if constexpr (std::is_same_v<From, float> && !std::is_same_v<To, float>) {
        // 2^63 is a float. Smaller magnitudes fit a signed 64-bit integer, and its conversion to unsigned keeps the
        // bits.
        if (!(std::fabs(p) < 0x1p63f)) return 0;
        return static_cast<To>(static_cast<uint64_t>(static_cast<int64_t>(p)));
    } else {
        return static_cast<To>(p);
    }
}

}  // namespace

template <class To, class From>
void Cast_scalar(To* to, const From* from, size_t n) {
    if constexpr (std::is_same_v<To, From>) {
        if (n > 0) std::memmove(to, from, n * sizeof(To));
    } else {
        for (size_t i = 0; i < n; ++i) to[i] = CastPixel<To>(from[i]);
    }
}

template <class To, class From>
void Plus_scalar(To* to, const From* from, size_t n) {
    for (size_t i = 0; i < n; ++i) to[i] = static_cast<To>(to[i] + CastPixel<To>(from[i]));
}

#define ORLIX_PAIR(To, From)                       \
    template Kernel<CastFn<To, From>> Cast_scalar; \
    template Kernel<CastFn<To, From>> Plus_scalar;
#define ORLIX_PAIRS(To)      \
    ORLIX_PAIR(To, uint8_t)  \
    ORLIX_PAIR(To, uint16_t) \
    ORLIX_PAIR(To, uint32_t) \
    ORLIX_PAIR(To, float)
ORLIX_PAIRS(uint8_t)
ORLIX_PAIRS(uint16_t)
ORLIX_PAIRS(uint32_t)
ORLIX_PAIRS(float)
#undef ORLIX_PAIRS
#undef ORLIX_PAIR

}  // namespace orlix
