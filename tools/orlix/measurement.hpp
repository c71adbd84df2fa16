// The measurement of one image, for `orlix measure`, through the interfaces of the library.
#pragma once

#include "document.hpp"
#include "flattening.hpp"
#include "subject.hpp"
#include "thresholds.hpp"

#include <orlix/com_ptr.hpp>

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tool {

struct MeasureSettings : SubjectSettings {
    std::optional<FlattenSettings> flatten;
    ThresholdChoice threshold = ParseThreshold("otsu");
    bool bright = false;  // which side of an automatic threshold is the phase
    std::optional<std::array<double, 2>> luminance;
    LONG bins = 1024;    // most bins of the histogram on which thresholds are chosen
    LONG smoothing = 0;  // 0, or 3, 5, 7 or 9 weights
};

// A phase with its threshold moved; its first and last grey level as those of the document.
struct MovedPhase {
    orlix::ComPtr<IBitmap> phase;
    double lower, upper;
};

struct Measurement {
    orlix::ComPtr<IImageVPAExPlus> image;
    orlix::ComPtr<IRegionOfInterest> region;  // the pixels that were measured; null: the whole image
    LONG band = 0;                            // of that image
    orlix::ComPtr<IBitmap> phase;
    // The phase again, wider by so many grey levels at each of its thresholds (narrower below 0); an open end stays.
    // Empty where no threshold was found. The image must not have changed.
    std::function<MovedPhase(double shift)> movedPhase;
    Json document;
};

// Members of the document, in this order (null for values that do not apply; lengths are in pixels unless the name says
// otherwise):
//   file, width, height, bands, type, band, micronsPerPixel {x, y, source}
//   region {shape, polarity, mask, pixelsLeftOut, pixels, areaSquareMicrons}
//   flatten: null, or the surface that was removed before anything else was measured (flattening.hpp)
//   grey {count, mean, standardDeviation, minimum, maximum, median, mode, skew, excessKurtosis, entropy, xCentroid,
//     yCentroid}: of all pixels of the region that are measured; excess kurtosis is 0 for a normal distribution
//   luminance {lower, upper, source}: the levels that the histogram covers
//   histogram {bins, left, right, binWidth, smoothing, pixelsOutside, dip, leastDipOfTwoPeaks, counts}: the one that
//     thresholds were chosen on; dip is 0 for one peak and grows with the second (orlix/statistics.hpp)
//   thresholds [{method, label, chosen, parameters, threshold | left and right, darkFraction, brightFraction, note,
//     message}]: threshold is the last dark level; a message says why there is none
//   phase {polarity, method, lower, upper, pixels, areaFraction, areaSquareMicrons, xCentroid, yCentroid}: the fraction
//     is that of the region; all but the first two are null if the chosen method found no threshold
//   warnings [{code, message}], if there are any: resolution-of-paper, rougher (flattening), no-threshold,
//     levels-outside-type, one-peak, more-than-two-peaks, at-search-limit, above-all-levels (of the chosen threshold)
// Throws orlix::Error, or std::runtime_error with a text for the user.
Measurement MeasureImage(orlix::ComPtr<IImageVPAExPlus> image, const std::string& shownName,
                         const MeasureSettings& settings);

}  // namespace tool
