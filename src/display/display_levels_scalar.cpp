// Reference implementation of the mapping to display levels.
#include <type_traits>

#include "display/display_level_kernels.hpp"

namespace orlix {

template <class T>
void Levels_scalar(const T* pixels, size_t n, const LevelRange<T>& range, uint8_t* levels) {
    const T least = range.least;
    const T most = range.most;
    for (size_t i = 0; i < n; ++i) {
        const T p = pixels[i];
        if (!(p == p) || !(least < most)) {
            levels[i] = 0;
            continue;
        }
        const T c = p < least ? least : p > most ? most : p;
        if constexpr (std::is_floating_point_v<T>) {
            const double d = static_cast<double>(most) - static_cast<double>(least);
            const double x = range.falling ? static_cast<double>(most) - static_cast<double>(c)
                                           : static_cast<double>(c) - static_cast<double>(least);
            const double level = x * (255.0 / d) + 0.5;  // NaN if a bound is infinite
            levels[i] = level >= 0 ? static_cast<uint8_t>(level) : uint8_t{0};
        } else {
            const uint64_t d = uint64_t{most} - least;
            const uint64_t x = range.falling ? uint64_t{most} - c : uint64_t{c} - least;
            levels[i] = static_cast<uint8_t>((510 * x + d) / (2 * d));
        }
    }
}

template Kernel<LevelFn<uint8_t>> Levels_scalar;
template Kernel<LevelFn<uint16_t>> Levels_scalar;
template Kernel<LevelFn<uint32_t>> Levels_scalar;
template Kernel<LevelFn<float>> Levels_scalar;

}  // namespace orlix
