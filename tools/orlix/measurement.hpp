// The measurement of one image: what `orlix measure` does for each, through the interfaces of the library.
#pragma once

#include "document.hpp"
#include "flattening.hpp"
#include "subject.hpp"
#include "thresholds.hpp"

#include <orlix/com_ptr.hpp>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tool {

struct MeasureSettings : SubjectSettings {
    std::optional<FlattenSettings> flatten;
    ThresholdChoice threshold = ParseThreshold("otsu");
    bool bright = false;  // which side of an automatic threshold is the phase
    std::optional<std::array<double, 2>> luminance;
    LONG bins = 1024;    // at most, of the histogram that thresholds are chosen on
    LONG smoothing = 0;  // 0, or 3, 5, 7 or 9 weights
};

struct Measurement {
    orlix::ComPtr<IImageVPAExPlus> image;
    orlix::ComPtr<IShapeRegionOfInterest> region;  // null: the whole image
    orlix::ComPtr<IBitmap> phase;
    Json document;
};

// Members of the document, in this order (null where there is nothing to say; lengths in pixels unless named otherwise):
//   file, width, height, bands, type, band, micronsPerPixel {x, y, source}
//   region {shape, polarity, pixels, areaSquareMicrons}
//   flatten: null, or what was done before anything else was measured (flattening.hpp)
//   luminance {lower, upper, source}
//   grey {count, mean, standardDeviation, minimum, maximum, median, mode, skew, kurtosis, entropy, xCentroid, yCentroid}:
//     count, mean, deviation and centroid of all pixels of the region, the rest of those in the luminance range
//   histogram {bins, left, right, binWidth, smoothing, pixelsOutside, counts}: the one that thresholds were chosen on
//   thresholds [{method, label, parameters, threshold | left and right, darkFraction, brightFraction, note, message}]
//   phase {polarity, method, lower, upper, pixels, areaFraction, areaSquareMicrons, xCentroid, yCentroid}
// Throws orlix::Error, or std::runtime_error with a text for the user.
Measurement MeasureImage(orlix::ComPtr<IImageVPAExPlus> image, const std::string& shownName,
                         const MeasureSettings& settings);

struct BitCount {
    int64_t pixels = 0;
    double xCentroid = 0;  // 0 for no pixels
    double yCentroid = 0;
};
BitCount CountBits(const orlix::ComPtr<IBitmap>& bitmap);

}  // namespace tool
