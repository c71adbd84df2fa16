// Conversion between image files and the content of an image.
#pragma once

#include <orlix/orlix.h>

#include <optional>

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

// Failures are those of LoadImageFile and SaveImageFile.
LoadedImage LoadImage(WideStringView fileName, const ReadOptions& options);
// The image must not be empty, and its pixels must be accessible.
void SaveImage(WideStringView fileName, ImageFileFormat format, DisplayedImage& image, const WriteOptions& options);

}  // namespace orlix
