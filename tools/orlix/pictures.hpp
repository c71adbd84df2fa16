// Pictures of a measurement: the image stretched for display, the phase tinted over it, the phase as black and white.
#pragma once

#include "measurement.hpp"

#include <orlix/com_ptr.hpp>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace tool {

// One or three 8-bit samples a pixel, interleaved, rows from the top.
struct Picture {
    int32_t width = 0;
    int32_t height = 0;
    int32_t channels = 1;
    std::vector<uint8_t> samples;
};

// The measured band, its grey levels between the limits that leave out 0.1 % of the region's pixels at either end (not
// outside the luminance range) spread over black to white.
Picture DisplayPicture(const Measurement& measurement);

// The phase tinted, with its outline in the full colour; what lies outside the region darkened and the region outlined.
Picture OverlayPicture(const Measurement& measurement, const Picture& display);

// White phase on black.
Picture PhasePicture(const orlix::ComPtr<IBitmap>& phase);

// Averages over squares of Reduction() pixels a side, so that neither side exceeds `largest`; as it is when it is small
// enough.
Picture Reduced(const Picture& picture, int32_t largest);
int32_t Reduction(const Picture& picture, int32_t largest);

// Pixels, of the larger side of the pictures in a report; the files beside it are whole.
constexpr int32_t kLargestInReport = 1400;

// A PNG file, calibrated where micronsPerPixel {x, y} is not null.
void SavePng(const Picture& picture, const Json& micronsPerPixel, const std::filesystem::path& path);

// "data:image/png;base64,..." of the picture. It is made through the given file, which is removed again.
std::string DataUri(const Picture& picture, const std::filesystem::path& temporary);
std::string DataUri(const std::filesystem::path& png);

// The same of a picture that is reduced to `largest` and has a scale bar where the size of its pixels is known.
std::string ReportPicture(const Picture& picture, int32_t largest, double micronsPerPixel,
                          const std::filesystem::path& temporary);

}  // namespace tool
