// The operations of the frame, as functions of a finished selection.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "binary/orlix_bitmap.hpp"
#include "filters/filtering.hpp"
#include "fits/correction.hpp"
#include "fits/hemisphere_fit.hpp"
#include "fits/region_pixels.hpp"
#include "fits/surface_fit.hpp"
#include "histogram/orlix_histogram.hpp"
#include "measure/counting.hpp"
#include "measure/extremes.hpp"
#include "measure/measuring.hpp"
#include "points/casting.hpp"
#include "points/point_operations.hpp"
#include "points/table_look_up.hpp"
#include "points/threshold.hpp"
#include "process/selection.hpp"

namespace orlix {

// operation(pixels, n) on all of them.
template <class Pixel, class Operation>
void ApplyTo(const Selection<Pixel>& at, Operation&& operation) {
    at.ForEachRun([&](Pixel* pixels, size_t n, auto...) { operation(pixels, n); });
}

// ---------------------------------------------------------------------------------------------- counting and measuring

template <class Pixel>
ComPtr<OrlixHistogram> HistogramOf(const Selection<Pixel>& at, Pixel lower, Pixel upper, LONG mostBins) {
    const HistogramShape shape = ShapeOfHistogram(lower, upper, mostBins);
    auto histogram = OrlixHistogram::Make(shape.bins, shape.left, shape.right);
    Counter<Pixel> counter(lower, upper, mostBins, static_cast<uint64_t>(at.pixels()));
    ApplyTo(at, counter);
    counter.Histogram(histogram->counts());
    return histogram;
}

template <class Pixel>
ComPtr<OrlixHistogram> HistogramOf(const Selection<Pixel>& at) {
    return HistogramOf(at, at.settings().lower, at.settings().upper, at.settings().bins);
}

struct GreyRange {
    double lower;
    double upper;
};

// The least and the greatest pixel where nothing is to be trimmed, else what AutoThresholdTrim finds in a histogram
// between the two. None for a selection without pixels; the texts of AutoThresholdTrim.
template <class Pixel>
std::optional<GreyRange> TrimmedRange(const Selection<Pixel>& at, double trimLower, double trimUpper, LONG mostBins) {
    Extremes<Pixel> extremes;
    ApplyTo(at, extremes);
    if (!extremes.Any()) return {};
    GreyRange range = {};
    const Pixel least = ToPixel<Pixel>(extremes.Min());  // infinities have no place in a histogram
    const Pixel most = ToPixel<Pixel>(extremes.Max());
    const ComPtr<OrlixHistogram> histogram = HistogramOf(at, least, most, mostBins);
    // May call a client, the one whose error information it clears: the selection is not used from here on.
    PassOn(histogram->AutoThresholdTrim(trimLower, &range.lower, trimUpper, &range.upper));
    if (trimLower == 0.0) range.lower = least;
    if (trimUpper == 0.0) range.upper = most;
    return range;
}

// Of the first band. lower <= upper.
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

// --------------------------------------------------------------------------------------------------- the look-up table

// An entry that nothing was put into: the location of its bin, so that looking up changes little or nothing.
template <class Pixel>
Pixel DefaultEntry(const FrameSettings<Pixel>& settings, LONG entry) {
    if constexpr (std::is_same_v<Pixel, BYTE>) {
        return static_cast<Pixel>(entry);
    } else {
        const HistogramShape shape = ShapeOfHistogram(settings.lower, settings.upper, settings.bins);
        const double width = shape.right - shape.left;
        const bool values = !kIsFloat<Pixel> && width + 1 == shape.bins;
        return ToPixel<Pixel>(values ? shape.left + entry : shape.left + width * (entry + 0.5) / shape.bins);
    }
}

template <class Pixel>
std::vector<Pixel> TableOf(const FrameSettings<Pixel>& settings) {
    if (settings.table) return *settings.table;
    if (settings.bins > kMostBins) throw std::bad_alloc();
    std::vector<Pixel> table(static_cast<size_t>(settings.bins));
    for (size_t i = 0; i < table.size(); ++i) table[i] = DefaultEntry(settings, static_cast<LONG>(i));
    return table;
}

// The table that spreads the counts of the selection over the luminance range; none for a type that is not one of
// EqualizationType. "IImageProcess::EqualizeTable: empty histogram".
template <class Pixel>
std::optional<std::vector<Pixel>> EqualizedTable(const Selection<Pixel>& at, LONG type) {
    const ComPtr<OrlixHistogram> histogram = HistogramOf(at);
    const std::span<const LONG> counts = histogram->counts();
    int64_t total = 0;
    for (const LONG c : counts) total += c;
    if (total < 1) throw Failure("IImageProcess::EqualizeTable: empty histogram");
    if (type != ET_Uniform && type != ET_UpperTriangular) return {};

    const FrameSettings<Pixel>& settings = at.settings();
    std::vector<Pixel> table = TableOf(settings);
    const auto lower = static_cast<double>(settings.lower);
    const double range = static_cast<double>(settings.upper) - lower;
    int64_t cumulative = 0;
    for (size_t i = 0; i < counts.size(); ++i) {
        cumulative += counts[i];
        const auto c = static_cast<double>(cumulative);
        const auto t = static_cast<double>(total);
        table[i] = ToPixel<Pixel>(lower + (type == ET_Uniform ? range * c / t : range * std::sqrt(c / t)));
    }
    return table;
}

template <class Pixel>
void LookUp(const Selection<Pixel>& at) {
    const FrameSettings<Pixel>& settings = at.settings();
    if constexpr (std::is_same_v<Pixel, BYTE>) {
        const std::vector<Pixel> table = TableOf(settings);
        Pixel entries[256];
        std::copy(table.begin(), table.end(), entries);
        ApplyTo(at, PointOperation<Pixel>::LookUp(entries));
    } else {
        const HistogramShape shape = ShapeOfHistogram(settings.lower, settings.upper, settings.bins);
        const std::span<const Pixel> entries =
            settings.table ? std::span<const Pixel>(*settings.table) : std::span<const Pixel>();
        ApplyTo(at, TableLookUp<Pixel>(settings.lower, settings.upper, shape, entries));
    }
}

// --------------------------------------------------------------------------------------------------- operations of two

// The bands of a source beside those of a selection.
template <class From>
using SourceViews = std::vector<PixelView<const From>>;

// Where the source's columns lie side by side its pixels are read where they are, elsewhere through the table into a
// short buffer. Pixels beyond the source's margin stay as they are.
template <class Pixel, class From, class Operation>
void CombineRun(const Operation& operation, PixelView<const From> from, int32_t adjacent, Pixel* row, Run run,
                int32_t y) {
    int64_t x = run.start;
    const int64_t stop = std::min(int64_t{run.stop} + 1, int64_t{from.width()} + kTableMargin);
    if (const int64_t direct = std::min<int64_t>(stop, adjacent); x < direct) {
        operation(row + x, from.row(y) + x, static_cast<size_t>(direct - x));
        x = direct;
    }
    From buffer[256];
    while (x < stop) {
        const int64_t n = std::min<int64_t>(stop - x, 256);
        for (int64_t i = 0; i < n; ++i) buffer[i] = from.at(static_cast<int32_t>(x + i), y);
        operation(row + x, buffer, static_cast<size_t>(n));
        x += n;
    }
}

// operation(to, from, n) on the pixels of the selection and those of the source at the same places.
template <class Pixel, class From, class Operation>
void CombineWith(const Selection<Pixel>& at, const SourceViews<From>& sources, const Operation& operation) {
    const RegionRows& rows = at.rows();
    for (int32_t band = 0; band < at.bands(); ++band) {
        const PixelView<Pixel> to = at.view(band);
        const PixelView<const From>& from = sources[static_cast<size_t>(band)];
        const int32_t adjacent = from.AdjacentColumns();
        const auto bottom =
            static_cast<int32_t>(std::min<int64_t>(rows.bottom(), int64_t{from.height()} + kTableMargin - 1));
        for (int32_t y = rows.top(); y <= bottom; ++y)
            for (const Run run : rows.row(y)) {
                if (y < bottom) {
                    FetchStart(to.row(y + 1), run);
                    if (run.start < adjacent) FetchStart(from.row(y + 1), run);
                }
                CombineRun(operation, from, adjacent, to.row(y), run, y);
            }
    }
}

// filter(from, to, rows) writes the rows of a band from what lies within filter.radius() in a band of the source. A
// source in the memory of the selection, the same image above all, is copied before anything is written.
template <class Pixel, class Operation>
void FilterFrom(const Selection<Pixel>& at, SourceViews<Pixel> sources, const Operation& filter) {
    std::vector<SourceCopy<Pixel>> copies;
    for (PixelView<const Pixel>& from : sources) {
        if (!SharesMemory(from, at.view(0).base(), at.end())) continue;
        copies.emplace_back(from, at.width(), at.rows().top(), at.rows().bottom(), filter.radius());
        from = copies.back().view();
    }
    for (int32_t band = 0; band < at.bands(); ++band)
        filter(sources[static_cast<size_t>(band)], at.view(band), at.rows());
}

// ------------------------------------------------------------------------------------------------------------ surfaces

// S_FALSE, and the surface stays as it was, for a selection without pixels. Of the first band.
template <class Pixel>
HRESULT PolynomialOf(const Selection<Pixel>& at, int degree, const char* notFinite, SurfacePolynomial& surface) {
    const PixelBounds bounds = BoundsOf(at.rows());
    if (bounds.empty()) return S_FALSE;
    SurfaceFitter<Pixel> fitter(degree, at.rows(), bounds);
    at.ForEachRun([&](const Pixel* pixels, size_t n, int32_t x, int32_t y) { fitter(pixels, n, x, y); });
    if (!fitter.Finish(surface)) throw Failure(notFinite);
    return S_OK;
}

template <class Pixel>
void SubtractPolynomial(const Selection<Pixel>& at, const SurfacePolynomial& surface) {
    const Corrector<Pixel> corrector(at.settings().lower, at.settings().upper);
    at.ForEachRun([&](Pixel* pixels, size_t n, int32_t x, int32_t y) { corrector.Apply(pixels, n, x, y, surface); });
}

// fit(pixels, average) gives the hemisphere, or none: S_FALSE then, and the surface stays as it was. Of the first band.
template <class Pixel, class Fit>
HRESULT HemisphereOf(const Selection<Pixel>& at, const char* notFinite, const Fit& fit, AveragedHemisphere& surface) {
    const RegionPixels<Pixel> pixels(at.view(0), at.rows());
    if (pixels.count() == 0) return S_FALSE;
    Measurer<Pixel> measurer(false, true);
    pixels.ForEachRun([&](const Pixel* run, size_t n, int32_t x, int32_t y) { measurer(run, n, x, y); });
    const double average = measurer.Finish().average;
    if (!std::isfinite(average)) throw Failure(notFinite);
    const auto hemisphere = fit(pixels, average);
    if (!hemisphere) return S_FALSE;
    surface = {*hemisphere, average};
    return S_OK;
}

template <class Pixel>
void SubtractHemisphere(const Selection<Pixel>& at, const HemisphereSurface& heights, double average) {
    const Corrector<Pixel> corrector(at.settings().lower, at.settings().upper);
    at.ForEachRun([&](Pixel* pixels, size_t n, int32_t x, int32_t y) {
        constexpr size_t kPiece = 512;  // the shifts stay in the first cache
        double shifts[kPiece];
        for (size_t done = 0; done < n; done += kPiece) {
            const size_t part = std::min(n - done, kPiece);
            heights.Values(x + static_cast<int32_t>(done), y, part, shifts);
            for (size_t i = 0; i < part; ++i) shifts[i] = average - shifts[i];
            corrector.Apply(pixels + done, shifts, part);
        }
    });
}

}  // namespace orlix
