// Conversion between image files and the content of an image.
#pragma once

#include <orlix/orlix.h>

#include "files/image_file.hpp"
#include "files/sample_limit.hpp"
#include "image/image_store.hpp"
#include "text/wide_string.hpp"

namespace orlix {

struct LoadedImage {
    LONG dataType;  // determined by the file
    ImageContent content;
};

// Failures are those of LoadImageFile and SaveImageFile.
LoadedImage LoadImage(WideStringView fileName, const SampleLimit& limit);
// The image must not be empty, and its pixels must be accessible.
void SaveImage(WideStringView fileName, ImageFileFormat format, const ImageStore& image);

}  // namespace orlix
