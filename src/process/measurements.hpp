// Operations that read a selection: histograms, ranges, thresholds, grey measurements.
#pragma once

#include <orlix/orlix.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>

#include <orlix/com_ptr.hpp>

#include "histogram/orlix_histogram.hpp"
#include "measure/counting.hpp"
#include "measure/extremes.hpp"
#include "measure/measuring.hpp"
#include "orlix_bitmap/orlix_bitmap.hpp"
#include "points/pixel_conversion.hpp"
#include "points/threshold.hpp"
#include "process/selection.hpp"

namespace orlix {

template <class Pixel>
ComPtr<OrlixHistogram> HistogramOf(const Selection<Pixel>& at, Pixel lower, Pixel upper, LONG mostBins) {
    const HistogramShape shape = ShapeOfHistogram(lower, upper, mostBins);
    auto histogram = OrlixHistogram::Make(shape.bins, shape.left, shape.right);
    Counter<Pixel> counter(lower, upper, mostBins, static_cast<uint64_t>(at.pixels()));
    at.Apply(counter);
    counter.Histogram(histogram->counts());
    return histogram;
}

template <class Pixel>
ComPtr<OrlixHistogram> HistogramOf(const Selection<Pixel>& at) {
    return HistogramOf(at, at.settings().lower(), at.settings().upper(), at.settings().bins());
}

struct GreyRange {
    double lower;
    double upper;
};

// Each end is the extreme pixel when nothing is to be trimmed there, else the result of AutoThresholdTrim on a
// histogram between the extremes. nullopt for a selection without pixels; fails with the texts of AutoThresholdTrim.
template <class Pixel>
std::optional<GreyRange> TrimmedRange(const Selection<Pixel>& at, double trimLower, double trimUpper, LONG mostBins) {
    Extremes<Pixel> extremes;
    at.Apply(extremes);
    if (!extremes.Any()) return {};
    GreyRange range = {};
    const Pixel least = ToPixel<Pixel>(extremes.Min());  // a histogram cannot hold infinities
    const Pixel most = ToPixel<Pixel>(extremes.Max());
    if (trimLower == 0.0 && trimUpper == 0.0) return GreyRange{static_cast<double>(least), static_cast<double>(most)};
    const ComPtr<OrlixHistogram> histogram = HistogramOf(at, least, most, mostBins);
    // May call a client, the one whose error information it clears: the selection must not be used after this.
    PassOn(histogram->AutoThresholdTrim(trimLower, &range.lower, trimUpper, &range.upper));
    if (trimLower == 0.0) range.lower = least;
    if (trimUpper == 0.0) range.upper = most;
    return range;
}

// Processes the first band. lower <= upper.
template <class Pixel>
ComPtr<OrlixBitmap> ThresholdOf(const Selection<Pixel>& at, double lower, double upper, bool inside) {
    auto bitmap = OrlixBitmap::Make();
    BitmapStore& bits = bitmap->store();
    bits.Create(at.width(), at.height(), true);
    const ThresholdOperation<Pixel> threshold(CeilToPixel<Pixel>(lower), FloorToPixel<Pixel>(upper), inside);
    at.ForEachRun(
        [&](const Pixel* pixels, size_t n, int32_t x, int32_t y) { threshold(pixels, n, x, bits.WriteRow(y)); });
    return bitmap;
}

template <class Pixel>
SGrayMeasurements GrayMeasurementsOf(const Selection<Pixel>& at, LONG desired) {
    Measurer<Pixel> measurer((desired & GEMT_GrayLocation) != 0, (desired & GEMT_GrayStatistics) != 0);
    at.ForEachRun([&](const Pixel* pixels, size_t n, int32_t x, int32_t y) { measurer(pixels, n, x, y); });
    const GrayMeasures measures = measurer.Finish();
    return {sizeof(SGrayMeasurements),
            static_cast<LONG>(std::min<uint64_t>(measures.count, std::numeric_limits<LONG>::max())),
            measures.xCentroid,
            measures.yCentroid,
            measures.average,
            measures.standardDeviation};
}

}  // namespace orlix
