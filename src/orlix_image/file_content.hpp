// The content of an image as image files have it.
#pragma once

#include <orlix/orlix.h>

#include "files/image_file.hpp"
#include "files/sample_limit.hpp"
#include "image/image_store.hpp"
#include "text/wide_string.hpp"

namespace orlix {

struct LoadedImage {
    LONG dataType;  // decided by the file
    ImageContent content;
};

// Failures are those of LoadImageFile and SaveImageFile.
LoadedImage LoadImage(WideStringView fileName, const SampleLimit& limit);
// An image that is not empty and whose pixels may be touched.
void SaveImage(WideStringView fileName, ImageFileFormat format, const ImageStore& image);

}  // namespace orlix
