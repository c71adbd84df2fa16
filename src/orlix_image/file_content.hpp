// Conversion between image files and the content of an image.
#pragma once

#include <orlix/orlix.h>

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "display/displayed_image.hpp"
#include "files/image_file.hpp"
#include "image/image_store.hpp"
#include "text/wide_string.hpp"

namespace orlix {

struct LoadedImage {
    LONG dataType;  // determined by the file
    ImageContent content;
    std::optional<ImageSettings> settings;
};

// The file at a path, or the bytes of a file. Failures are those of LoadImageFile and ReadImageFile.
LoadedImage LoadImage(WideStringView fileName, const ReadOptions& options);
LoadedImage LoadImage(std::span<const uint8_t> bytes, const ReadOptions& options);

// The bytes of a file, and the file at a path. The image must not be empty, and its pixels must be accessible. Failures
// are those of WriteImageFile and SaveImageFile.
std::vector<uint8_t> ImageBytes(ImageFileFormat format, DisplayedImage& image, const WriteOptions& options);
void SaveImage(WideStringView fileName, ImageFileFormat format, DisplayedImage& image, const WriteOptions& options);

}  // namespace orlix
