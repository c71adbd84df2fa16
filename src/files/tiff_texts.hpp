// The tags of TIFF (and of Exif data) that hold texts, and the keywords under which images keep them.
#pragma once

#include <cstdint>

#include "files/tiff_directory.hpp"
#include "image/image_store.hpp"
#include "text/wide_string.hpp"

namespace orlix {

namespace tiff {

struct TextTag {
    uint16_t tag;
    WideStringView keyword;
};
// Those of PNG where it has one for the purpose.
inline constexpr TextTag kTextTags[] = {
    {270, OLESTR("Description")},   {269, OLESTR("Title")},     {315, OLESTR("Author")}, {33432, OLESTR("Copyright")},
    {306, OLESTR("Creation Time")}, {305, OLESTR("Software")},  {271, OLESTR("Make")},   {272, OLESTR("Model")},
    {316, OLESTR("Host Computer")}, {285, OLESTR("Page Name")},
};

}  // namespace tiff

// Adds the texts of a directory, but for those under keywords that the image already has.
void KeepTexts(const TiffDirectory& directory, ImageProperties& kept);

}  // namespace orlix
