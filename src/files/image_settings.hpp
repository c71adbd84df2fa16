// How an image is processed and displayed, as streams and files keep it.
#pragma once

#include <array>
#include <cstdint>

namespace orlix {

// Ranges are values of the pixel type. From a reader, the band to process and the band to display exist or are
// BI_AllBands, and the pixel type allows the number of bins.
struct ImageSettings {
    double luminanceLower = 0;
    double luminanceUpper = 0;
    int32_t bandToProcess = 0;
    int32_t numberOfBins = 256;
    double displayLower = 0;
    double displayUpper = 0;
    int32_t bandToDisplay = 0;
    std::array<uint8_t, 1024> palette{};       // blue, green, red, reserved
    std::array<uint8_t, 28> displaySetting{};  // a 32-bit number and three doubles, little-endian
};

}  // namespace orlix
