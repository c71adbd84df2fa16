// The processing frame of one pixel type, above whatever else a TypedImage is to offer (Base): it asks clients for what
// an operation is to visit, and applies it. Only one file includes this, display/displayed_image.cpp.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "filters/extremum_sharpening.hpp"
#include "filters/linear_filter_kernels.hpp"
#include "filters/median_kernels.hpp"
#include "filters/sobel_kernels.hpp"
#include "fits/angled_hemisphere_fit.hpp"
#include "fits/robust_fit.hpp"
#include "image/source_image.hpp"
#include "process/operations.hpp"
#include "process/selection.hpp"
#include "process/typed_image.hpp"

namespace orlix {

template <class Image, class Base>
class Frame : public Base {
public:
    using Pixel = typename Image::Pixel;
    using Base::bandToProcess;
    using typename Base::FitTexts;
    using typename Base::RobustTexts;

    explicit Frame(LONG dataType) : image_(dataType) {}

    ImageStore& store() override { return image_; }

    LONG numberOfBins() const override { return settings_.bins; }

    void PutNumberOfBins(LONG bins) override {
        if constexpr (kIsByte) {
            if (bins != 256)
                throw Failure(
                    "IImageProcess::put_NumberOfBins: number of bins cannot be changed from 256 for byte images.");
        } else {
            if (bins <= 1) throw Failure("IImageProcess::put_NumberOfBins: there must be more than one bin.");
            if (bins != settings_.bins) settings_.table = nullptr;
        }
        settings_.bins = bins;
    }

    void GetLuminanceRange(double& lower, double& upper) const override {
        lower = settings_.lower;
        upper = settings_.upper;
    }

    void PutLuminanceRange(double lower, double upper) override {
        settings_.lower = TruncateToPixel<Pixel>(lower);
        settings_.upper = TruncateToPixel<Pixel>(upper);
    }

    HRESULT SnapLuminanceRange(double trimLower, double trimUpper, bool roundOut) override {
        const Selected at = Select();
        const auto range = TrimmedRange(at, trimLower, trimUpper, at.settings().bins);
        if (!range) return S_FALSE;
        PutLuminanceRange(range->lower, range->upper);
        if (kIsByte && roundOut) PutLuminanceRange(0.0, 255.0);
        return S_OK;
    }

    ComPtr<OrlixBitmap> Threshold(double lower, double upper, bool inside) override {
        const LONG band = SingleBand("IImageProcess::Threshold: multiband thresholding is not supported.");
        RequirePixels();
        if (!(lower <= upper)) throw Failure("IImageProcess::Threshold: Lower cannot be larger than Upper.");
        return ThresholdOf(Select(band), lower, upper, inside);
    }

    ComPtr<OrlixHistogram> Histogram() override { return HistogramOf(Select()); }

    SGrayMeasurements GrayMeasurements(LONG desired) override {
        const LONG band =
            SingleBand("IImageProcessBase::get_GrayMeasurements: multiband measurement is not supported.");
        return GrayMeasurementsOf(Select(band), desired);
    }

    double GetTable(LONG entry) const override {
        if (entry < 0 || entry >= settings_.bins) throw Failure("IImageProcess::get_Table: Entry is out of range.");
        return settings_.table ? (*settings_.table)[static_cast<size_t>(entry)] : DefaultEntry(settings_, entry);
    }

    void PutTable(LONG entry, double value) override {
        if (entry < 0 || entry >= settings_.bins) throw Failure("IImageProcess::put_Table: Entry is out of range.");
        // An operation under way may hold the table: it is changed only while nobody else has it.
        auto& table = settings_.table;
        if (!table || table.use_count() > 1) table = std::make_shared<std::vector<Pixel>>(TableOf(settings_));
        (*table)[static_cast<size_t>(entry)] = ToPixel<Pixel>(value);
    }

    void EqualizeTable(LONG type) override {
        if (auto table = EqualizedTable(Select(), type))
            settings_.table = std::make_shared<std::vector<Pixel>>(std::move(*table));
    }

    void LookUp() override {
        Change(Select(), [](const Selected& at) { orlix::LookUp(at); });
    }

    void Invert() override {
        Apply([](const Settings& by) { return PointOperation<Pixel>::Invert(by.lower, by.upper); });
    }
    void ScalarEquals(double value) override {
        Apply([=](const Settings&) { return PointOperation<Pixel>::Fill(ToPixel<Pixel>(value)); });
    }
    void ScalarPlusEquals(double value) override {
        Apply([=](const Settings& by) { return PointOperation<Pixel>::Add(value, by.lower, by.upper); });
    }
    void ScalarDivideEquals(double value) override {
        if (value == 0.0) throw Failure("IImageProcess::ScalarDivideEquals: cannot divide by zero.");
        Apply([=](const Settings&) { return PointOperation<Pixel>::Divide(value); });
    }

    void CastEquals(IImageVPA* source, LONG band) override {
        Combine<CastOperation>(source, band,
                               {"IImageProcess::CastEquals: unsupported DataType.",
                                "IImageProcess::CastEquals: mismatch in the number of bands to process."});
    }

    void PlusEquals(IImageVPA* source, LONG band) override {
        Combine<PlusOperation>(source, band,
                               {"IImageProcess::PlusEquals: unsupported DataType.",
                                "IImageProcess::PlusEquals: mismatch in the number of bands to process."});
    }

    void Sobel(IImageVPA* source, LONG band) override {
        FilterBy(kSobel<Pixel>, 1, source, band,
                 {"IImageProcess::Sobel: data type mismatch.",
                  "IImageProcess::Sobel: mismatch in the number of bands to process."});
    }

    void Laplacian(IImageVPA* source, LONG band) override {
        FilterBy(kLaplacian<Pixel>, 1, source, band,
                 {"IImageProcess::Laplacian: data type mismatch.",
                  "IImageProcess::Laplacian: mismatch in the number of bands to process."});
    }

    void SharpenLow(IImageVPA* source, LONG band) override {
        FilterBy(kSharpenLow<Pixel>, 1, source, band,
                 {"IImageProcess::SharpenLow: data type mismatch.",
                  "IImageProcess::SharpenLow: mismatch in the number of bands to process."});
    }

    void SharpenMedium(IImageVPA* source, LONG band) override {
        FilterBy(kSharpenMedium<Pixel>, 1, source, band,
                 {"IImageProcess::SharpenMedium: data type mismatch.",
                  "IImageProcess::SharpenMedium: mismatch in the number of bands to process."});
    }

    void Gaussian3x3(IImageVPA* source, LONG band) override {
        FilterBy(kGaussian3x3<Pixel>, 1, source, band,
                 {"IImageProcess::Gaussian3x3: data type mismatch.",
                  "IImageProcess::Gaussian3x3: mismatch in the number of bands to process."});
    }

    void Gaussian5x5(IImageVPA* source, LONG band) override {
        FilterBy(kGaussian5x5<Pixel>, 2, source, band,
                 {"IImageProcess::Gaussian5x5: data type mismatch.",
                  "IImageProcess::Gaussian5x5: mismatch in the number of bands to process."});
    }

    void ExtremumSharpening(LONG halfSize, IImageVPA* source, LONG band) override {
        Filter(
            [=](const Settings& by) {
                return orlix::ExtremumSharpening<Pixel>(halfSize, {by.lower, by.upper});
            },
            source, band,
            {"IImageProcess::ExtremumSharpening: data type mismatch.",
             "IImageProcess::ExtremumSharpening: mismatch in the number of bands to process."});
    }

    void Median3x3(IImageVPA* source, LONG band) override {
        FilterBy(kMedian3x3<Pixel>, 1, source, band,
                 {"IImageProcess::Median3x3: data type mismatch.",
                  "IImageProcess::Median3x3: mismatch in the number of bands to process."});
    }

    HRESULT FitPolynomial(int degree, const FitTexts& texts, SurfacePolynomial& surface) override {
        return PolynomialOf(Select(SingleBand(texts.multiband)), degree, texts.notFinite, surface);
    }

    void CorrectPolynomial(const SurfacePolynomial& surface, const char* notFinite) override {
        if (!surface.finite()) throw Failure(notFinite);
        Change(Select(), [&](const Selected& at) { SubtractPolynomial(at, surface); });
    }

    HRESULT FitHemisphere(bool angled, const FitTexts& texts, AveragedHemisphere& surface) override {
        return HemisphereOf(
            Select(SingleBand(texts.multiband)), texts.notFinite,
            [=](const RegionPixels<Pixel>& pixels, double average) {
                return angled ? FitAngledHemisphere(pixels, average) : orlix::FitHemisphere(pixels, average);
            },
            surface);
    }

    void CorrectHemisphere(const AveragedHemisphere& surface, const char* notFinite) override {
        const HemisphereSurface heights(surface.hemisphere);
        if (!heights.finite() || !std::isfinite(surface.average)) throw Failure(notFinite);
        Change(Select(), [&](const Selected& at) { SubtractHemisphere(at, heights, surface.average); });
    }

    HRESULT RobustFit(int degree, double probability, const RobustTexts& texts, SurfacePolynomial& surface) override {
        return RobustFitOf(probability, texts, surface, [=](const RegionPixels<Pixel>& pixels) {
            return RobustPolynomial(pixels, degree, probability);
        });
    }

    HRESULT RobustFit(bool angled, double probability, const RobustTexts& texts, AveragedHemisphere& surface) override {
        return RobustFitOf(probability, texts, surface, [=](const RegionPixels<Pixel>& pixels) {
            return RobustHemisphere(pixels, angled, probability);
        });
    }

protected:
    static constexpr bool kIsByte = std::is_same_v<Pixel, BYTE>;
    using Selected = Selection<Pixel>;
    using Settings = FrameSettings<Pixel>;

    void RequirePixels() const {
        if (image_.empty() || image_.refused()) throw NoImage();
    }

    // What an operation without a source visits of a band, or of all bands.
    Selected Select() { return Select(bandToProcess()); }
    Selected Select(LONG band) { return Finish(Gather(band)); }

    Image image_;

private:
    struct SourceTexts {
        const char* type;  // the source's, not the one or none of those that the operation takes
        const char* bands;
    };

    // Asks the region. The reference to it is given back before anything is relied on: the last one may call back, too.
    Gathered Gather(LONG band) {
        RequirePixels();
        const int32_t width = image_.layout().width;
        const int32_t height = image_.layout().height;
        const BandRange bands = BandsOf(band, image_.layout().bands);
        const ComPtr<IRegionOfInterest> region = this->region();
        return {width, height, bands, {region.get(), width, height}};
    }

    // To be called when all clients that an operation needs have been asked.
    Selected Finish(Gathered&& gathered) {
        RequirePixels();
        const ImageLayout& layout = image_.layout();
        if (layout.width != gathered.width || layout.height != gathered.height || layout.bands <= gathered.bands.last)
            throw FailedResult(E_FAIL);
        const PixelView<Pixel> first = image_.view(gathered.bands.first);
        return {std::move(gathered), settings_, first, layout.bandSize};
    }

    // The band to process, for operations that work on one only.
    LONG SingleBand(const char* message) const {
        const BandRange bands = BandsOf(bandToProcess(), image_.layout().bands);
        if (bands.count() > 1) throw Failure(message);
        return bands.first;
    }

    template <class Operation>
    void Change(const Selected& at, const Operation& operation) {
        operation(at);
        image_.SetModified(true);
    }

    // make(settings) gives what is applied to all pixels.
    template <class Make>
    void Apply(const Make& make) {
        Change(Select(), [&](const Selected& at) { ApplyTo(at, make(at.settings())); });
    }

    template <class Surface, class Fit>
    HRESULT RobustFitOf(double probability, const RobustTexts& texts, Surface& surface, const Fit& fitTo) {
        if (!(probability > 0.0 && probability <= 1.0)) throw Failure(texts.probability);
        const Selected at = Select(SingleBand(texts.multiband));
        const auto fit = fitTo(RegionPixels<Pixel>(at.view(0), at.rows()));
        if (!fit) return S_FALSE;
        surface = *fit;
        return S_OK;
    }

    // change(at, sources) on the bands to process and as many of the source.
    template <class From, class Change>
    void ChangeFrom(const SourceImage& source, LONG sourceBand, const SourceTexts& texts, const Change& change) {
        const BandRange from = BandsOf(sourceBand, source.bands());
        if (from.count() != BandsOf(bandToProcess(), image_.layout().bands).count()) throw Failure(texts.bands);
        Gathered gathered = Gather(bandToProcess());
        SourceViews<From> sources = source.template views<From>(from);
        const Selected at = Finish(std::move(gathered));
        if (static_cast<size_t>(at.bands()) != sources.size()) throw FailedResult(E_FAIL);
        change(at, std::move(sources));
        image_.SetModified(true);
    }

    template <template <class, class> class Operation>
    void Combine(IImageVPA* image, LONG band, const SourceTexts& texts) {
        RequirePixels();
        const SourceImage source(image);
        const auto combine = [&]<class From>(Operation<Pixel, From> operation) {
            ChangeFrom<From>(source, band, texts, [&](const Selected& at, const SourceViews<From>& sources) {
                CombineWith(at, sources, operation);
            });
        };
        switch (source.type()) {
            case DT_BYTE:
                return combine(Operation<Pixel, BYTE>());
            case DT_WORD:
                return combine(Operation<Pixel, WORD>());
            case DT_DWORD:
                return combine(Operation<Pixel, uint32_t>());
            case DT_Float:
                return combine(Operation<Pixel, float>());
            default:
                throw Failure(texts.type);
        }
    }

    // make(settings) gives the filter, as FilterFrom takes it.
    template <class Make>
    void Filter(const Make& make, IImageVPA* image, LONG band, const SourceTexts& texts) {
        RequirePixels();
        const SourceImage source(image);
        if (source.type() != image_.dataType()) throw Failure(texts.type);
        ChangeFrom<Pixel>(source, band, texts, [&](const Selected& at, SourceViews<Pixel>&& sources) {
            FilterFrom(at, std::move(sources), make(at.settings()));
        });
    }

    template <size_t N>
    void FilterBy(const Variant<FilterFn<Pixel>> (&variants)[N], int32_t radius, IImageVPA* source, LONG band,
                  const SourceTexts& texts) {
        Filter(
            [&](const Settings& by) {
                return NeighbourhoodFilter<Pixel>(Choose(variants), radius, {by.lower, by.upper});
            },
            source, band, texts);
    }

    Settings settings_;
};

}  // namespace orlix
