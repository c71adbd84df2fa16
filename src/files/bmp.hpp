// Windows and OS/2 bitmaps of 8 bits, see image_file.hpp.
#pragma once

#include <cstdint>
#include <span>

#include "files/file_types.hpp"

namespace orlix {

bool LooksLikeBmp(std::span<const uint8_t> bytes) noexcept;

// Failures, in the order of the checks:
//   "IImageVPAEx::CreateFromBmp: problems reading bmp header": truncated, an unknown header, no width or height
//   "IImageVPAEx::CreateFromBmp: only bitmaps with eight bits per pixel are currently supported."
//   "IImageVPAEx::CreateFromBmp: compressed bitmaps are not currently supported."
//   "IImageVPAEx::CreateFromBmp: the file is too short for its image."
//   "IImageVPAEx::CreateFromBmp: a pixel is outside the palette."
FileProperties ReadBmp(std::span<const uint8_t> bytes, PixelSink& sink, const SampleLimit& limit);

}  // namespace orlix
