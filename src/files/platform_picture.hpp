// Pictures that the system's loader takes: GIF, icons and metafiles, on Windows only.
#pragma once

#include <cstdint>
#include <span>

#include "files/file_types.hpp"

namespace orlix {

bool LooksLikeGif(std::span<const uint8_t> bytes) noexcept;
bool LooksLikeIcon(std::span<const uint8_t> bytes) noexcept;
bool LooksLikeEnhancedMetafile(std::span<const uint8_t> bytes) noexcept;
// With the header that gives its size ("placeable"), or without.
bool LooksLikeWindowsMetafile(std::span<const uint8_t> bytes) noexcept;

// The first picture of the file, with 8 bits: one band if every pixel is grey, otherwise three. Metafiles are drawn on
// white, in the size that they have in pixels of the screen; what is transparent elsewhere is dropped: the stored
// colours count. Failures:
//   "IImageVPAEx::CreateFromFile: this format is loaded on Windows only."
//   "IImageVPAEx::CreateFromFile: the system cannot load the picture."    also where GDI+ is missing
FileProperties ReadPlatformPicture(std::span<const uint8_t> bytes, PixelSink& sink, const ReadOptions& options);

}  // namespace orlix
