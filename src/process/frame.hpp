// The processing frame of one pixel type: asks clients which pixels an operation visits, and makes the selection.
#pragma once

#include <orlix/orlix.h>

#include <cstddef>
#include <cstdint>
#include <utility>

#include <orlix/com_ptr.hpp>

#include "component/failure.hpp"
#include "image/image_store.hpp"
#include "image/source_image.hpp"
#include "process/filtering.hpp"
#include "process/frame_settings.hpp"
#include "process/selection.hpp"
#include "process/typed_image.hpp"

namespace orlix {

template <class Pixel>
struct ImageOf;
template <>
struct ImageOf<BYTE> : CImageBase<BYTE, int16_t, int32_t> {
    using CImageBase::CImageBase;
};
template <>
struct ImageOf<WORD> : CImageBase<WORD, int32_t, int64_t> {
    using CImageBase::CImageBase;
};
template <>
struct ImageOf<uint32_t> : CImageBase<uint32_t, int64_t, double> {
    using CImageBase::CImageBase;
};
template <>
struct ImageOf<float> : CImageBase<float, float, double> {
    using CImageBase::CImageBase;
};

// Operations are free functions of a selection (measurements.hpp, pixel_changes.hpp, filtering.hpp, surfaces.hpp); the
// methods of the image object choose among them. An image without pixels (or with a refused buffer) raises NoImage.
template <class Pixel>
class Frame final : public TypedImage {
public:
    Frame(LONG dataType, Changes& changes) : image_(dataType, changes) {}

    ImageStore& store() override { return image_; }
    PixelView<Pixel> view(int32_t band) { return image_.view(band); }

    const FrameSettings<Pixel>& settings() const { return settings_; }
    void PutNumberOfBins(LONG bins) {
        settings_.PutBins(bins);
        ++image_.changes().kept;
    }
    void PutLuminanceRange(double lower, double upper) {
        settings_.PutRange(lower, upper);
        ++image_.changes().kept;
    }
    void PutTableEntry(LONG entry, double value) { settings_.PutEntry(entry, value); }
    void PutTable(std::vector<Pixel> table) { settings_.PutTable(std::move(table)); }

    void RequirePixels() const {
        if (image_.empty() || image_.refused()) throw NoImage();
    }

    // The band to process, for operations that work on a single band.
    LONG SingleBand(const char* message) const {
        const BandRange bands = BandsOf(bandToProcess(), image_.layout().bands);
        if (bands.count() > 1) throw Failure(message);
        return bands.first;
    }

    // The pixels that an operation without a source visits in a band, or in all bands.
    Selection<Pixel> Select() { return Select(bandToProcess()); }
    Selection<Pixel> Select(LONG band) { return Finish(Gather(band)); }

    // operation(selection) writes pixels.
    template <class Operation>
    void Change(const Operation& operation) {
        operation(Select());
        ++image_.changes().pixels;
    }

    // operation(selection, views) on the bands to process and as many bands of a source of any pixel type.
    template <class Operation>
    void ChangeFrom(IImageVPA* image, LONG band, const Operation& operation) {
        RequirePixels();
        const SourceImage source(image);
        switch (source.type()) {
            case DT_BYTE:
                return ChangeFromBands<BYTE>(source, band, operation);
            case DT_WORD:
                return ChangeFromBands<WORD>(source, band, operation);
            case DT_DWORD:
                return ChangeFromBands<uint32_t>(source, band, operation);
            case DT_Float:
                return ChangeFromBands<float>(source, band, operation);
            default:
                throw MethodFailure("unsupported DataType.");
        }
    }

    // Applies a filter of the table; its source has the same pixel type.
    void Filter(FilterKind kind, IImageVPA* image, LONG band) {
        FilterFromSource(image, band, [kind](const Selection<Pixel>& at, SourceViews<Pixel>&& sources) {
            FilterBy(at, std::move(sources), kind);
        });
    }
    void ExtremumSharpening(LONG halfSize, IImageVPA* image, LONG band) {
        FilterFromSource(image, band, [halfSize](const Selection<Pixel>& at, SourceViews<Pixel>&& sources) {
            SharpenByExtrema(at, std::move(sources), halfSize);
        });
    }

private:
    // Asks the region. The reference to it is released before anything is relied on: the last release may call back,
    // too.
    Gathered Gather(LONG band) {
        RequirePixels();
        const int32_t width = image_.layout().width;
        const int32_t height = image_.layout().height;
        const BandRange bands = BandsOf(band, image_.layout().bands);
        const ComPtr<IRegionOfInterest> asked = region();
        return {width, height, bands, {asked.get(), width, height}};
    }

    // To be called after all clients that an operation needs have been asked.
    Selection<Pixel> Finish(Gathered&& gathered) {
        RequirePixels();
        const ImageLayout& layout = image_.layout();
        if (layout.width != gathered.width || layout.height != gathered.height || layout.bands <= gathered.bands.last)
            throw FailedResult(E_FAIL);
        const PixelView<Pixel> first = image_.view(gathered.bands.first);
        return {std::move(gathered), settings_, first, layout.bandSize};
    }

    template <class From, class Operation>
    void ChangeFromBands(const SourceImage& source, LONG sourceBand, const Operation& operation) {
        const BandRange from = BandsOf(sourceBand, source.bands());
        if (from.count() != BandsOf(bandToProcess(), image_.layout().bands).count())
            throw MethodFailure("mismatch in the number of bands to process.");
        Gathered gathered = Gather(bandToProcess());
        SourceViews<From> sources = source.template views<From>(from);
        const Selection<Pixel> at = Finish(std::move(gathered));
        if (static_cast<size_t>(at.bands()) != sources.size()) throw FailedResult(E_FAIL);
        operation(at, std::move(sources));
        ++image_.changes().pixels;
    }

    template <class Operation>
    void FilterFromSource(IImageVPA* image, LONG band, const Operation& operation) {
        RequirePixels();
        const SourceImage source(image);
        if (source.type() != image_.dataType()) throw MethodFailure("data type mismatch.");
        ChangeFromBands<Pixel>(source, band, operation);
    }

    ImageOf<Pixel> image_;
    FrameSettings<Pixel> settings_;
};

// Calls use(frame) with the frame of the image's pixel type.
template <class Use>
decltype(auto) WithFrame(TypedImage& image, Use&& use) {
    switch (image.store().dataType()) {
        case DT_BYTE:
            return use(static_cast<Frame<BYTE>&>(image));
        case DT_WORD:
            return use(static_cast<Frame<WORD>&>(image));
        case DT_DWORD:
            return use(static_cast<Frame<uint32_t>&>(image));
        default:
            return use(static_cast<Frame<float>&>(image));
    }
}

}  // namespace orlix
