// The display settings of an image.
#pragma once

#include <orlix/orlix.h>

#include <array>
#include <cstdint>

namespace orlix {

// As in the palette of a device-independent bitmap. reserved is 0 unless a stream provided another value.
struct PaletteEntry {
    uint8_t blue = 0, green = 0, red = 0, reserved = 0;
    friend bool operator==(const PaletteEntry&, const PaletteEntry&) = default;
};
static_assert(sizeof(PaletteEntry) == 4);

using ColorTable = std::array<PaletteEntry, 256>;

constexpr ColorTable GreyRamp() {
    ColorTable table;
    for (size_t i = 0; i < table.size(); ++i) {
        const auto grey = static_cast<uint8_t>(i);
        table[i] = {grey, grey, grey, 0};
    }
    return table;
}

// Kept only for the streams that contain it; nothing in this library depends on it.
struct CarriedSetting {
    int32_t number = 0;
    double values[3] = {};
};

struct DisplayState {
    LONG band = 0;     // index, or BI_AllBands
    double lower = 0;  // the display range: values of the pixel type, which a double holds exactly
    double upper = 255;
    ColorTable colors = GreyRamp();
    CarriedSetting carried;
};

}  // namespace orlix
