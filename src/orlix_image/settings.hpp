// The settings of an image, taken from it for streams and files and put back.
#pragma once

#include "display/displayed_image.hpp"
#include "files/image_settings.hpp"

namespace orlix {

ImageSettings SettingsOf(DisplayedImage& image);

// Settings of the image's type that a reader has checked: nothing here fails.
void PutSettings(const ImageSettings& settings, DisplayedImage& image);

}  // namespace orlix
