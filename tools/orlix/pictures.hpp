// Pictures of a measurement: the image stretched for display, the same with the phase tinted, the phase in black and
// white.
#pragma once

#include "measurement.hpp"

#include <orlix/com_ptr.hpp>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace tool {

// One or three 8-bit samples per pixel, interleaved, rows from the top.
struct Picture {
    int32_t width = 0;
    int32_t height = 0;
    int32_t channels = 1;
    std::vector<uint8_t> samples;
};

// The measured band. Its grey levels are spread from black to white between the limits that leave out 0.1 % of the
// region's pixels at either end, within the luminance range.
Picture DisplayPicture(const Measurement& measurement);

// The phase is tinted and outlined in the full colour; pixels outside the region are darkened, and the region is
// outlined.
Picture OverlayPicture(const Measurement& measurement, const Picture& display);

// White phase on black.
Picture PhasePicture(const orlix::ComPtr<IBitmap>& phase);

// Averages over squares of Reduction() by Reduction() pixels, so that no side exceeds `largest`. A picture that is
// small enough is returned unchanged.
Picture Reduced(const Picture& picture, int32_t largest);
int32_t Reduction(const Picture& picture, int32_t largest);

// Larger side of the pictures in a report, in pixels; pictures in files have full size.
constexpr int32_t kLargestInReport = 1400;

// Writes a PNG file, calibrated if micronsPerPixel {x, y} is not null.
void SavePng(const Picture& picture, const Json& micronsPerPixel, const std::filesystem::path& path);

// The picture as "data:image/png;base64,...". The first function writes and removes the temporary file.
std::string DataUri(const Picture& picture, const std::filesystem::path& temporary);
std::string DataUri(const std::filesystem::path& png);

// The same for a picture reduced to `largest`, with a scale bar if the size of its pixels is known.
std::string ReportPicture(const Picture& picture, int32_t largest, double micronsPerPixel,
                          const std::filesystem::path& temporary);

}  // namespace tool
