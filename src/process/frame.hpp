// The processing frame of one pixel type, above whatever else a TypedImage is to offer (Base). Only one file includes this,
// display/displayed_image.cpp.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <span>
#include <vector>

#include "image/source_image.hpp"
#include "process/angled_hemisphere_fit.hpp"
#include "process/casting.hpp"
#include "process/correction.hpp"
#include "process/counting.hpp"
#include "process/extremes.hpp"
#include "process/extremum.hpp"
#include "process/filtering.hpp"
#include "process/hemisphere_fit.hpp"
#include "process/linear_filter_kernels.hpp"
#include "process/look_ahead.hpp"
#include "process/measuring.hpp"
#include "process/median_kernels.hpp"
#include "process/pixel_conversion.hpp"
#include "process/point_operations.hpp"
#include "process/region_pixels.hpp"
#include "process/robust_fit.hpp"
#include "process/sobel_kernels.hpp"
#include "process/surface_fit.hpp"
#include "process/table_look_up.hpp"
#include "process/threshold.hpp"
#include "process/typed_image.hpp"

namespace orlix {

template <class Image, class Base>
class Frame : public Base {
public:
    using Pixel = typename Image::Pixel;
    using Base::bandToProcess;
    using Base::numberOfBins;
    using typename Base::FitTexts;
    using typename Base::RobustTexts;

    explicit Frame(LONG dataType) : image_(dataType) {}

    ImageStore& store() override { return image_; }

    void PutNumberOfBins(LONG bins) override {
        if constexpr (kIsByte) {
            if (bins != 256)
                throw Failure(
                    "IImageProcess::put_NumberOfBins: number of bins cannot be changed from 256 for byte images.");
        } else {
            if (bins <= 1) throw Failure("IImageProcess::put_NumberOfBins: there must be more than one bin.");
            if (bins != numberOfBins()) table_.clear();
        }
        this->SetNumberOfBins(bins);
    }

    void GetLuminanceRange(double& lower, double& upper) const override {
        lower = lower_;
        upper = upper_;
    }

    void PutLuminanceRange(double lower, double upper) override {
        lower_ = TruncateToPixel<Pixel>(lower);
        upper_ = TruncateToPixel<Pixel>(upper);
    }

    HRESULT SnapLuminanceRange(double trimLower, double trimUpper, bool roundOut) override {
        const auto range = TrimmedRange(Select(), trimLower, trimUpper, numberOfBins());
        if (!range) return S_FALSE;
        PutLuminanceRange(range->lower, range->upper);
        if (kIsByte && roundOut) PutLuminanceRange(0.0, 255.0);
        return S_OK;
    }

    ComPtr<OrlixBitmap> Threshold(double lower, double upper, bool inside) override {
        const int32_t band = SingleBand("IImageProcess::Threshold: multiband thresholding is not supported.");
        RequirePixels();
        auto bitmap = OrlixBitmap::Make();
        PassOn(bitmap->Create(image_.layout().width, image_.layout().height, 1));
        if (!(lower <= upper)) throw Failure("IImageProcess::Threshold: Lower cannot be larger than Upper.");

        const ThresholdOperation<Pixel> threshold(CeilToPixel<Pixel>(lower), FloorToPixel<Pixel>(upper), inside);
        const Selection selection = Select();
        const PixelView<Pixel> view = image_.view(band);
        BitmapStore& bits = bitmap->store();
        ForEachRun(selection, view, [&](const Pixel* pixels, size_t n, int32_t x, int32_t y) {
            threshold(pixels, n, x, bits.WriteRow(y));
        });
        return bitmap;
    }

    ComPtr<OrlixHistogram> Histogram() override { return HistogramOver(Select(), lower_, upper_, numberOfBins()); }

    SGrayMeasurements GrayMeasurements(LONG desired) override {
        SingleBand("IImageProcessBase::get_GrayMeasurements: multiband measurement is not supported.");
        Measurer<Pixel> measurer((desired & GEMT_GrayLocation) != 0, (desired & GEMT_GrayStatistics) != 0);
        ForEachRun(Select(), [&](const Pixel* pixels, size_t n, int32_t x, int32_t y) { measurer(pixels, n, x, y); });
        const GrayMeasures measures = measurer.Finish();
        return {sizeof(SGrayMeasurements),
                static_cast<LONG>(std::min<uint64_t>(measures.count, std::numeric_limits<LONG>::max())),
                measures.xCentroid,
                measures.yCentroid,
                measures.average,
                measures.standardDeviation};
    }

    double GetTable(LONG entry) const override {
        if (entry < 0 || entry >= numberOfBins()) throw Failure("IImageProcess::get_Table: Entry is out of range.");
        return table_.empty() ? DefaultEntry(entry) : table_[static_cast<size_t>(entry)];
    }

    void PutTable(LONG entry, double value) override {
        if (entry < 0 || entry >= numberOfBins()) throw Failure("IImageProcess::put_Table: Entry is out of range.");
        FillTable();
        table_[static_cast<size_t>(entry)] = ToPixel<Pixel>(value);
    }

    void EqualizeTable(LONG type) override {
        const ComPtr<OrlixHistogram> histogram = Histogram();
        LONG* bins = nullptr;
        LONG count = 0;
        PassOn(histogram->get_Bins(&bins));
        PassOn(histogram->get_NumberOfBins(&count));
        const std::span<const LONG> counts(bins, static_cast<size_t>(count));
        int64_t total = 0;
        for (const LONG c : counts) total += c;
        if (total < 1) throw Failure("IImageProcess::EqualizeTable: empty histogram");
        if (type != ET_Uniform && type != ET_UpperTriangular) return;

        FillTable();
        const double range = static_cast<double>(upper_) - static_cast<double>(lower_);
        int64_t cumulative = 0;
        for (size_t i = 0; i < counts.size(); ++i) {
            cumulative += counts[i];
            const auto c = static_cast<double>(cumulative);
            const auto t = static_cast<double>(total);
            table_[i] = ToPixel<Pixel>(static_cast<double>(lower_) +
                                       (type == ET_Uniform ? range * c / t : range * std::sqrt(c / t)));
        }
    }

    void LookUp() override {
        if constexpr (kIsByte) {
            FillTable();
            Pixel entries[256];
            std::copy(table_.begin(), table_.end(), entries);
            Apply(PointOperation<Pixel>::LookUp(entries));
        } else {
            Apply(TableLookUp<Pixel>(lower_, upper_, ShapeOfHistogram(lower_, upper_, numberOfBins()), table_));
        }
    }

    void Invert() override { Apply(PointOperation<Pixel>::Invert(lower_, upper_)); }
    void ScalarEquals(double value) override { Apply(PointOperation<Pixel>::Fill(ToPixel<Pixel>(value))); }
    void ScalarPlusEquals(double value) override { Apply(PointOperation<Pixel>::Add(value, lower_, upper_)); }
    void ScalarDivideEquals(double value) override {
        if (value == 0.0) throw Failure("IImageProcess::ScalarDivideEquals: cannot divide by zero.");
        Apply(PointOperation<Pixel>::Divide(value));
    }

    void CastEquals(IImageVPA* source, LONG band) override {
        static constexpr SourceTexts kTexts = {
            "IImageProcess::CastEquals: unsupported DataType.",
            "IImageProcess::CastEquals: mismatch in the number of bands to process."};
        Combine<CastOperation>(source, band, kTexts);
    }

    void PlusEquals(IImageVPA* source, LONG band) override {
        static constexpr SourceTexts kTexts = {
            "IImageProcess::PlusEquals: unsupported DataType.",
            "IImageProcess::PlusEquals: mismatch in the number of bands to process."};
        Combine<PlusOperation>(source, band, kTexts);
    }

    void Sobel(IImageVPA* source, LONG band) override {
        Filter(Neighbourhood(kSobel<Pixel>, 1), source, band,
               {"IImageProcess::Sobel: data type mismatch.",
                "IImageProcess::Sobel: mismatch in the number of bands to process."});
    }

    void Laplacian(IImageVPA* source, LONG band) override {
        Filter(Neighbourhood(kLaplacian<Pixel>, 1), source, band,
               {"IImageProcess::Laplacian: data type mismatch.",
                "IImageProcess::Laplacian: mismatch in the number of bands to process."});
    }

    void SharpenLow(IImageVPA* source, LONG band) override {
        Filter(Neighbourhood(kSharpenLow<Pixel>, 1), source, band,
               {"IImageProcess::SharpenLow: data type mismatch.",
                "IImageProcess::SharpenLow: mismatch in the number of bands to process."});
    }

    void SharpenMedium(IImageVPA* source, LONG band) override {
        Filter(Neighbourhood(kSharpenMedium<Pixel>, 1), source, band,
               {"IImageProcess::SharpenMedium: data type mismatch.",
                "IImageProcess::SharpenMedium: mismatch in the number of bands to process."});
    }

    void Gaussian3x3(IImageVPA* source, LONG band) override {
        Filter(Neighbourhood(kGaussian3x3<Pixel>, 1), source, band,
               {"IImageProcess::Gaussian3x3: data type mismatch.",
                "IImageProcess::Gaussian3x3: mismatch in the number of bands to process."});
    }

    void Gaussian5x5(IImageVPA* source, LONG band) override {
        Filter(Neighbourhood(kGaussian5x5<Pixel>, 2), source, band,
               {"IImageProcess::Gaussian5x5: data type mismatch.",
                "IImageProcess::Gaussian5x5: mismatch in the number of bands to process."});
    }

    void ExtremumSharpening(LONG halfSize, IImageVPA* source, LONG band) override {
        Filter(orlix::ExtremumSharpening<Pixel>(halfSize, {lower_, upper_}), source, band,
               {"IImageProcess::ExtremumSharpening: data type mismatch.",
                "IImageProcess::ExtremumSharpening: mismatch in the number of bands to process."});
    }

    void Median3x3(IImageVPA* source, LONG band) override {
        Filter(Neighbourhood(kMedian3x3<Pixel>, 1), source, band,
               {"IImageProcess::Median3x3: data type mismatch.",
                "IImageProcess::Median3x3: mismatch in the number of bands to process."});
    }

    HRESULT FitPolynomial(int degree, const FitTexts& texts, SurfacePolynomial& surface) override {
        SingleBand(texts.multiband);
        const Selection selection = Select();
        const PixelBounds bounds = BoundsOf(selection.rows);
        if (bounds.empty()) return S_FALSE;
        SurfaceFitter<Pixel> fitter(degree, selection.rows, bounds);
        ForEachRun(selection, [&](const Pixel* pixels, size_t n, int32_t x, int32_t y) { fitter(pixels, n, x, y); });
        if (!fitter.Finish(surface)) throw Failure(texts.notFinite);
        return S_OK;
    }

    void CorrectPolynomial(const SurfacePolynomial& surface, const char* notFinite) override {
        if (!surface.finite()) throw Failure(notFinite);
        const Corrector<Pixel> corrector(lower_, upper_);
        ForEachRun(Select(),
                   [&](Pixel* pixels, size_t n, int32_t x, int32_t y) { corrector.Apply(pixels, n, x, y, surface); });
        image_.SetModified(true);
    }

    HRESULT FitHemisphere(bool angled, const FitTexts& texts, AveragedHemisphere& surface) override {
        const int32_t band = SingleBand(texts.multiband);
        const Selection selection = Select();
        const RegionPixels<Pixel> pixels(image_.view(band), selection.rows);
        if (pixels.count() == 0) return S_FALSE;
        Measurer<Pixel> measurer(false, true);
        pixels.ForEachRun([&](const Pixel* run, size_t n, int32_t x, int32_t y) { measurer(run, n, x, y); });
        const double average = measurer.Finish().average;
        if (!std::isfinite(average)) throw Failure(texts.notFinite);
        const auto fit = angled ? FitAngledHemisphere(pixels, average) : orlix::FitHemisphere(pixels, average);
        if (!fit) return S_FALSE;
        surface = {*fit, average};
        return S_OK;
    }

    void CorrectHemisphere(const AveragedHemisphere& surface, const char* notFinite) override {
        const HemisphereSurface heights(surface.hemisphere);
        if (!heights.finite() || !std::isfinite(surface.average)) throw Failure(notFinite);
        const Corrector<Pixel> corrector(lower_, upper_);
        ForEachRun(Select(), [&](Pixel* pixels, size_t n, int32_t x, int32_t y) {
            constexpr size_t kPiece = 512;  // the shifts stay in the first cache
            double shifts[kPiece];
            for (size_t done = 0; done < n; done += kPiece) {
                const size_t part = std::min(n - done, kPiece);
                heights.Values(x + static_cast<int32_t>(done), y, part, shifts);
                for (size_t i = 0; i < part; ++i) shifts[i] = surface.average - shifts[i];
                corrector.Apply(pixels + done, shifts, part);
            }
        });
        image_.SetModified(true);
    }

    HRESULT RobustFit(int degree, double probability, const RobustTexts& texts, SurfacePolynomial& surface) override {
        return RobustFitOf(probability, texts, surface, [&](const RegionPixels<Pixel>& pixels) {
            return RobustPolynomial(pixels, degree, probability);
        });
    }

    HRESULT RobustFit(bool angled, double probability, const RobustTexts& texts, AveragedHemisphere& surface) override {
        return RobustFitOf(probability, texts, surface, [&](const RegionPixels<Pixel>& pixels) {
            return RobustHemisphere(pixels, angled, probability);
        });
    }

protected:
    static constexpr bool kIsByte = std::is_same_v<Pixel, BYTE>;

    // The pixels that an operation visits.
    struct Selection {
        int32_t width;  // of the image when it was asked
        int32_t height;
        BandRange bands;
        RegionRows rows;
    };

    void RequirePixels() const {
        if (image_.empty() || image_.refused()) throw FailedResult(E_FAIL);
    }

    Selection Select() { return Select(bandToProcess()); }
    Selection Select(LONG band) {
        RequirePixels();
        const int32_t width = image_.layout().width;
        const int32_t height = image_.layout().height;
        const BandRange bands = BandsOf(band, image_.layout().bands);
        const ComPtr<IRegionOfInterest> region = this->region();
        Selection selection{width, height, bands, {region.get(), width, height}};
        RequireUnchanged(selection);
        return selection;
    }

    // After a call of a client's region or source, which may have called this image: whether the pixels are still there.
    void RequireUnchanged(const Selection& selection) const {
        RequirePixels();
        const ImageLayout& layout = image_.layout();
        if (layout.width != selection.width || layout.height != selection.height ||
            layout.bands <= selection.bands.last)
            throw FailedResult(E_FAIL);
    }

    // visit(pixels, n, x, y): n pixels from (x, y) on, band by band, top to bottom, left to right. Runs of large images come in
    // parts.
    template <class Visit>
    void ForEachRun(const Selection& selection, const Visit& visit) {
        for (int32_t band = selection.bands.first; band <= selection.bands.last; ++band)
            ForEachRun(selection, image_.view(band), visit);
    }
    template <class Visit>
    void ForEachRun(const Selection& selection, const PixelView<Pixel>& view, const Visit& visit) {
        constexpr int32_t kPart = LookAhead<Pixel>::kPart;
        const RegionRows& rows = selection.rows;
        LookAhead ahead(rows, view, image_.layout().bandSize);
        for (int32_t y = rows.top(); y <= rows.bottom(); ++y)
            for (const Run run : rows.row(y)) {
                Pixel* const row = view.row(y);
                if (!ahead.active()) {
                    if (y < rows.bottom()) FetchStart(view.row(y + 1), run);
                    visit(row + run.start, static_cast<size_t>(run.length()), run.start, y);
                    continue;
                }
                for (int64_t x = run.start; x <= run.stop;) {
                    const int64_t n = std::min<int64_t>(run.stop - x + 1, kPart - x % kPart);
                    ahead.Advance(n);
                    visit(row + x, static_cast<size_t>(n), static_cast<int32_t>(x), y);
                    x += n;
                }
            }
    }

    ComPtr<OrlixHistogram> HistogramOver(const Selection& selection, Pixel lower, Pixel upper, LONG mostBins) {
        const uint64_t expected =
            static_cast<uint64_t>(selection.rows.pixels()) * static_cast<uint64_t>(selection.bands.count());
        Counter<Pixel> counter(lower, upper, mostBins, expected);
        auto histogram = OrlixHistogram::Make();
        const HistogramShape& shape = counter.shape();
        PassOn(histogram->Create(shape.bins, shape.left, shape.right));
        ForEachRun(selection, [&](const Pixel* pixels, size_t n, auto...) { counter(pixels, n); });
        LONG* bins = nullptr;
        PassOn(histogram->get_Bins(&bins));
        counter.Histogram({bins, static_cast<size_t>(shape.bins)});
        return histogram;
    }

    struct GreyRange {
        double lower;
        double upper;
    };
    // The least and the greatest pixel where nothing is to be trimmed, else what AutoThresholdTrim finds in a histogram
    // between the two. None for a region without pixels; the texts of AutoThresholdTrim.
    std::optional<GreyRange> TrimmedRange(const Selection& selection, double trimLower, double trimUpper,
                                          LONG mostBins) {
        Extremes<Pixel> extremes;
        ForEachRun(selection, [&](const Pixel* pixels, size_t n, auto...) { extremes(pixels, n); });
        if (!extremes.Any()) return {};
        GreyRange range = {};
        const ComPtr<OrlixHistogram> histogram = HistogramOver(selection, extremes.Min(), extremes.Max(), mostBins);
        PassOn(histogram->AutoThresholdTrim(trimLower, &range.lower, trimUpper, &range.upper));
        if (trimLower == 0.0) range.lower = extremes.Min();
        if (trimUpper == 0.0) range.upper = extremes.Max();
        return range;
    }

    Image image_;

private:
    struct SourceTexts {
        const char* type;  // the source's, not the one or none of those that the operation takes
        const char* bands;
    };

    // The bands of a source beside those of this image, the pixels of which an operation visits.
    template <class From>
    struct BandPairs {
        Selection selection;
        std::vector<PixelView<const From>> sources;
    };

    int32_t SingleBand(const char* message) const {
        const BandRange bands = BandsOf(bandToProcess(), image_.layout().bands);
        if (bands.count() > 1) throw Failure(message);
        return bands.first;
    }

    template <class Surface, class Fit>
    HRESULT RobustFitOf(double probability, const RobustTexts& texts, Surface& surface, const Fit& fitTo) {
        if (!(probability > 0.0 && probability <= 1.0)) throw Failure(texts.probability);
        const int32_t band = SingleBand(texts.multiband);
        const Selection selection = Select();
        const auto fit = fitTo(RegionPixels<Pixel>(image_.view(band), selection.rows));
        if (!fit) return S_FALSE;
        surface = *fit;
        return S_OK;
    }

    template <class Operation>
    void Apply(const Operation& operation) {
        ForEachRun(Select(), [&](Pixel* pixels, size_t n, auto...) { operation(pixels, n); });
        image_.SetModified(true);
    }

    // Entry of a table that nothing was put into: the location of the bin, so that looking up changes little or nothing.
    double DefaultEntry(LONG entry) const {
        if (kIsByte) return entry;
        const HistogramShape shape = ShapeOfHistogram(lower_, upper_, numberOfBins());
        const double width = shape.right - shape.left;
        const bool values = !kIsFloat<Pixel> && width + 1 == shape.bins;
        return ToPixel<Pixel>(values ? shape.left + entry : shape.left + width * (entry + 0.5) / shape.bins);
    }

    void FillTable() {
        if (!table_.empty()) return;
        std::vector<Pixel> table(static_cast<size_t>(numberOfBins()));
        for (size_t i = 0; i < table.size(); ++i) table[i] = static_cast<Pixel>(DefaultEntry(static_cast<LONG>(i)));
        table_ = std::move(table);
    }

    template <template <class, class> class Operation>
    void Combine(IImageVPA* image, LONG band, const SourceTexts& texts) {
        RequirePixels();
        const SourceImage source(image);
        switch (source.type()) {
            case DT_BYTE:
                return CombineFrom<BYTE>(Operation<Pixel, BYTE>(), source, band, texts);
            case DT_WORD:
                return CombineFrom<WORD>(Operation<Pixel, WORD>(), source, band, texts);
            case DT_DWORD:
                return CombineFrom<uint32_t>(Operation<Pixel, uint32_t>(), source, band, texts);
            case DT_Float:
                return CombineFrom<float>(Operation<Pixel, float>(), source, band, texts);
            default:
                throw Failure(texts.type);
        }
    }

    template <class From>
    BandPairs<From> Pair(const SourceImage& source, LONG sourceBand, const SourceTexts& texts) {
        const BandRange from = BandsOf(sourceBand, source.bands());
        if (from.count() != BandsOf(bandToProcess(), image_.layout().bands).count()) throw Failure(texts.bands);
        BandPairs<From> pairs{Select(), {}};
        for (int32_t band = from.first; band <= from.last; ++band) pairs.sources.push_back(source.view<From>(band));
        RequireUnchanged(pairs.selection);
        return pairs;
    }

    template <class From, class Operation>
    void CombineFrom(const Operation& operation, const SourceImage& source, LONG sourceBand, const SourceTexts& texts) {
        const auto [selection, views] = Pair<From>(source, sourceBand, texts);
        for (size_t k = 0; k < views.size(); ++k) {
            const PixelView<Pixel> to = image_.view(selection.bands.first + static_cast<int32_t>(k));
            const int32_t adjacent = views[k].AdjacentColumns();
            const int32_t bottom = static_cast<int32_t>(
                std::min<int64_t>(selection.rows.bottom(), int64_t{source.height()} + kTableMargin - 1));
            for (int32_t y = selection.rows.top(); y <= bottom; ++y)
                for (const Run run : selection.rows.row(y)) {
                    if (y < bottom) {
                        FetchStart(to.row(y + 1), run);
                        if (run.start < adjacent) FetchStart(views[k].row(y + 1), run);
                    }
                    CombineRun(operation, views[k], adjacent, to.row(y), run, y);
                }
        }
        image_.SetModified(true);
    }

    // Where the source's columns lie side by side its pixels are read where they are, elsewhere through the table into a
    // short buffer. Pixels beyond the source's margin stay as they are.
    template <class From, class Operation>
    static void CombineRun(const Operation& operation, PixelView<const From> from, int32_t adjacent, Pixel* row,
                           Run run, int32_t y) {
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

    template <size_t N>
    NeighbourhoodFilter<Pixel> Neighbourhood(const Variant<FilterFn<Pixel>> (&variants)[N], int32_t radius) const {
        return {Choose(variants), radius, {lower_, upper_}};
    }

    // filter(from, to, rows) writes the rows of a band from what lies within filter.radius() in a band of the source. A
    // source in the memory of this image, itself above all, is copied before anything is written.
    template <class Operation>
    void Filter(const Operation& filter, IImageVPA* image, LONG band, const SourceTexts& texts) {
        RequirePixels();
        const SourceImage source(image);
        if (source.type() != image_.dataType()) throw Failure(texts.type);
        auto [selection, sources] = Pair<Pixel>(source, band, texts);
        const uint8_t* const begin = image_.base(selection.bands.first);
        const uint8_t* const end = image_.base(selection.bands.last) + image_.layout().bandSize;
        std::vector<SourceCopy<Pixel>> copies;
        for (PixelView<const Pixel>& from : sources) {
            if (!SharesMemory(from, begin, end)) continue;
            copies.emplace_back(from, selection.width, selection.rows.top(), selection.rows.bottom(), filter.radius());
            from = copies.back().view();
        }
        for (size_t k = 0; k < sources.size(); ++k)
            filter(sources[k], image_.view(selection.bands.first + static_cast<int32_t>(k)), selection.rows);
        image_.SetModified(true);
    }

    Pixel lower_ = kTypeMinimum<Pixel>;
    Pixel upper_ = kTypeMaximum<Pixel>;
    std::vector<Pixel> table_;  // of numberOfBins() entries, or empty while it holds the default
};

}  // namespace orlix
