// Removes fitted surfaces from images, for `orlix flatten` and for `orlix measure --flatten`.
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

// From the command line. Throws UsageError for values out of range.
FlattenSettings MakeFlattenSettings(const std::string& surface, std::optional<double> robust,
                                    std::optional<double> zScale);

// The result; values are row by row from the top.
struct Flattening {
    std::vector<float> before;    // grey levels
    std::vector<float> residual;  // grey levels less the surface; NaN outside the region
    // Members, in this order (null for values that do not apply):
    //   zScale
    //   surface {kind, robust, refit, formula, average, coefficients, slopeX, slopeY (microns per millimetre, of a
    //     plane), apexRadius (microns, of a hemisphere)}; slopes and radius only if z scale and pixel size are known.
    //     refit, after a robust fit: null, or {pixels, within (grey levels), rounds} of the least squares over the
    //     pixels near the surface
    //   before, after {mean, minimum, maximum, Sa, Sq, Sz, trimmedSz, Ssk, Sku, and SaMicrons, SqMicrons, ...}: the
    //     roughness of the region (orlix::Roughness, TrimmedSz without 0.1 % at either end). `after` is taken in
    //     floating point, from the grey levels less the surface plus the average
    //   clippedPixels: pixels of the flattened image whose grey level its type cannot hold
    Json document;
    std::vector<std::pair<std::string, std::string>> warnings;  // code and message, see warnings.hpp
};

// Fits the surface to the subject's band in its region, subtracts it from these pixels and adds their average, in
// place. A robust fit is followed by least squares over the pixels near it. Throws std::runtime_error if the pixels
// determine no such surface.
Flattening Flatten(const Subject& subject, const FlattenSettings& settings);

}  // namespace tool
