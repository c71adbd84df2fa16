// Surfaces removed from images: what `orlix flatten` does for each, and `orlix measure --flatten` before it measures.
#pragma once

#include "document.hpp"
#include "subject.hpp"

#include <optional>
#include <string>
#include <utility>
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
    //   surface {kind, robust, refit, formula, average, coefficients, slopeX, slopeY (microns a millimetre, of a
    //     plane), apexRadius (microns, of a hemisphere; both where z scale and pixel size are known)}; refit, of a
    //     robust fit: null, or {pixels, within (grey levels), rounds} of the least squares over the pixels near the
    //     surface that followed
    //   before, after {mean, minimum, maximum, Sa, Sq, Sz, trimmedSz, Ssk, Sku, and SaMicrons, SqMicrons, ...}: of the
    //     region, after in floating point, less the surface and plus the average. Areal parameters by the definitions
    //     of ISO 25178-2, of heights z from their mean, with no filter: Sa mean of |z|, Sq root of the mean z^2, Sz
    //     highest less lowest, Ssk mean of z^3 by Sq^3, Sku mean of z^4 by Sq^4 (3 for a normal distribution);
    //     trimmedSz without the highest and the lowest 0.1 %
    //   clippedPixels: of the flattened image, because its pixel type holds no such grey level
    Json document;
    std::vector<std::pair<std::string, std::string>> warnings;  // code and message, see warnings.hpp
};

// Fits the surface to the subject's band in its region (after a robust fit by least squares to the pixels near it),
// subtracts it from these pixels and adds their average, in place. std::runtime_error when the pixels determine no such
// surface.
Flattening Flatten(const Subject& subject, const FlattenSettings& settings);

}  // namespace tool
