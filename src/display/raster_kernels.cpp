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

void ExpandTriples_scalar(uint32_t* to, const uint8_t* triples, size_t n) {
    for (size_t i = 0; i < n; ++i)
        to[i] = uint32_t{triples[3 * i + 2]} << 16 | uint32_t{triples[3 * i + 1]} << 8 | triples[3 * i];
}

void Pick_scalar(uint8_t* to, const uint8_t* row, const int32_t* columns, size_t n) {
    for (size_t i = 0; i < n; ++i) to[i] = row[columns[i]];
}

void WeighRows_scalar(uint32_t* sums, const uint8_t* a, uint32_t aWeight, const uint8_t* b, uint32_t bWeight,
                      size_t n) {
    for (size_t i = 0; i < n; ++i) sums[i] += aWeight * a[i] + bWeight * b[i];
}

}  // namespace orlix
