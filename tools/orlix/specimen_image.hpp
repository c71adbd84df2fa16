// Synthetic specimens as images of the library, and their truth as a document.
#pragma once

#include "document.hpp"
#include "specimen.hpp"

#include <orlix/com_ptr.hpp>

namespace tool {

orlix::ComPtr<IImageVPAExPlus> ImageOf(const samples::Specimen& specimen);

// Settings, background coefficients, number and areas of the particles, and each particle; grey levels are those of the
// image.
Json TruthOf(const samples::Specimen& specimen);

}  // namespace tool
