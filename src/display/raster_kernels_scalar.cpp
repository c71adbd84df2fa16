// Reference implementations of the kernels of raster pictures.
#include "display/raster_kernels.hpp"

namespace orlix {

void ExpandGrey_scalar(uint32_t* to, const uint8_t* levels, size_t n) {
    for (size_t i = 0; i < n; ++i) to[i] = levels[i] * 0x010101u;
}

void ExpandLevels_scalar(uint32_t* to, const uint8_t* levels, size_t n, const LevelColors& colors) {
    for (size_t i = 0; i < n; ++i) to[i] = colors.pixels[levels[i]];
}

void ExpandPlanes_scalar(uint32_t* to, const uint8_t* red, const uint8_t* green, const uint8_t* blue, size_t n) {
    for (size_t i = 0; i < n; ++i) to[i] = uint32_t{red[i]} << 16 | uint32_t{green[i]} << 8 | blue[i];
}

void PickGrey_scalar(uint32_t* to, const uint8_t* row, Picks picks, const uint8_t*) {
    for (size_t i = 0; i < picks.n; ++i) to[i] = row[picks.columns[i]] * 0x010101u;
}

void PickLevels_scalar(uint32_t* to, const uint8_t* row, Picks picks, const uint8_t*, const LevelColors& colors) {
    for (size_t i = 0; i < picks.n; ++i) to[i] = colors.pixels[row[picks.columns[i]]];
}

void PickPixels_scalar(uint32_t* to, const uint32_t* row, Picks picks, const uint32_t*) {
    for (size_t i = 0; i < picks.n; ++i) to[i] = row[picks.columns[i]];
}

void WeighRows_scalar(uint32_t* sums, const uint8_t* a, uint32_t aWeight, const uint8_t* b, uint32_t bWeight,
                      size_t n) {
    for (size_t i = 0; i < n; ++i) sums[i] += aWeight * a[i] + bWeight * b[i];
}

void Interpolate_scalar(uint8_t* to, const uint32_t* sums, const int32_t* left, const uint16_t* share, size_t n) {
    for (size_t i = 0; i < n; ++i) {
        const uint32_t* const at = sums + left[i];
        to[i] = static_cast<uint8_t>((at[0] * (4096u - share[i]) + at[1] * share[i] + (1u << 23)) >> 24);
    }
}

void Average_scalar(uint8_t* to, const uint32_t* sums, const int32_t* first, const uint16_t* weights, size_t taps,
                    size_t n) {
    for (size_t i = 0; i < n; ++i) {
        uint32_t sum = 1u << 23;
        for (size_t k = 0; k < taps; ++k) sum += weights[i * taps + k] * sums[static_cast<size_t>(first[i]) + k];
        to[i] = static_cast<uint8_t>(sum >> 24);
    }
}

}  // namespace orlix
