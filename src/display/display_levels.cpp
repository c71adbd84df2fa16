#include "display/display_levels.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

#include "display/display_level_kernels.hpp"

namespace orlix {
namespace {

template <class T>
LevelRange<T> RangeOf(T lower, T upper) {
    if (lower != upper) {
        if constexpr (std::is_floating_point_v<T>)
            if (!std::isfinite(lower) || !std::isfinite(upper)) return {};
        return {std::min(lower, upper), std::max(lower, upper), lower > upper};
    }
    // Empty range: its upper end becomes the next larger value, if there is one.
    if (lower == std::numeric_limits<T>::max()) return {lower, lower, false};
    if constexpr (std::is_floating_point_v<T>)
        return {lower, std::nextafter(lower, std::numeric_limits<T>::infinity()), false};
    else
        return {lower, static_cast<T>(lower + 1), false};
}

struct ByteLevels {
    uint8_t table[256];
    ByteLevels(uint8_t lower, uint8_t upper) {
        uint8_t pixels[256];
        for (size_t i = 0; i < 256; ++i) pixels[i] = static_cast<uint8_t>(i);
        Levels_scalar(pixels, 256, RangeOf(lower, upper), table);
    }
};

}  // namespace

template <class T>
LevelMapping<T>::LevelMapping(T lower, T upper) : map_(Choose(kLevels<T>)), range_(RangeOf(lower, upper)) {}

template <class T>
void LevelMapping<T>::operator()(const T* pixels, size_t n, uint8_t* levels) const {
    map_(pixels, n, range_, levels);
}

LevelMapping<uint8_t>::LevelMapping(uint8_t lower, uint8_t upper)
    : copies_(lower == 0 && upper == 255), lookUp_(PointOperation<uint8_t>::LookUp(ByteLevels(lower, upper).table)) {}

void LevelMapping<uint8_t>::operator()(const uint8_t* pixels, size_t n, uint8_t* levels) const {
    if (copies_) {
        std::memcpy(levels, pixels, n);
        return;
    }
    constexpr size_t kPart = 8192;  // the copy is still in the L1 cache when it is looked up
    for (size_t done = 0; done < n; done += kPart) {
        const size_t part = std::min(n - done, kPart);
        std::memcpy(levels + done, pixels + done, part);
        lookUp_(levels + done, part);
    }
}

template class LevelMapping<uint16_t>;
template class LevelMapping<uint32_t>;
template class LevelMapping<float>;

}  // namespace orlix
