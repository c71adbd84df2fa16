// Surfaces removed from images: what `orlix flatten` does for each, and `orlix measure --flatten` before it measures.
#pragma once

#include "document.hpp"
#include "subject.hpp"

#include <optional>
#include <string>
#include <vector>

namespace tool {

struct FlattenSettings {
    std::string surface = "plane";  // one of SurfaceNames()
    std::optional<double> robust;   // probability of a good pixel
    std::optional<double> zScale;   // microns per grey level
};

// As given on the command line; UsageError when they cannot be meant.
FlattenSettings MakeFlattenSettings(const std::string& surface, std::optional<double> robust,
                                    std::optional<double> zScale);

// Values row by row from the top.
struct Flattening {
    std::vector<float> before;    // grey levels
    std::vector<float> residual;  // grey levels less the surface; not a number outside the region
    // Members, in this order (null where there is nothing to say):
    //   zScale
    //   surface {kind, robust, formula, average, coefficients, slopeX, slopeY (microns a millimetre, of a plane), apexRadius
    //     (microns, of a hemisphere; both where z scale and pixel size are known)}
    //   before, after {mean, minimum, maximum, rms, peakToValley, rmsMicrons, peakToValleyMicrons}: of the region, after in floating
    //     point, less the surface and plus the average; rms is the root of the mean squared difference from the mean
    //   clippedPixels: of the flattened image, because its pixel type holds no such grey level
    Json document;
};

// Fits the surface to the subject's band in its region, subtracts it from these pixels and adds their average, in place.
// std::runtime_error when the pixels determine no such surface.
Flattening Flatten(const Subject& subject, const FlattenSettings& settings);

}  // namespace tool
