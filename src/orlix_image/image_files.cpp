#include "orlix_image/image_files.hpp"

#include <utility>

#include "component/stream_bytes.hpp"
#include "component/strings.hpp"
#include "orlix_image/file_content.hpp"

namespace orlix {

std::shared_ptr<DisplayedImage> ImageFiles::Saved() {
    std::shared_ptr<DisplayedImage> typed = Typed();
    if (typed->store().empty() || typed->store().refused()) throw NoImage();
    return typed;
}

WriteOptions ImageFiles::Options() {
    WriteOptions options;
    options.quality = core().quality;
    return options;
}

STDMETHODIMP ImageFiles::get_SampleLimit(LONG* limit) noexcept {
    return Guarded([&] {
        Require(limit);
        *limit = core().sampleLimit;
    });
}

STDMETHODIMP ImageFiles::put_SampleLimit(LONG limit) noexcept {
    return Guarded([&] {
        if (limit < 0) throw Failure("IImageFile::put_SampleLimit: the limit must not be negative.");
        core().sampleLimit = limit;
    });
}

STDMETHODIMP ImageFiles::SaveToFile(BSTR fileName, ImageFileFormat format) noexcept {
    return Guarded<IImageFile>([&] {
        const std::shared_ptr<DisplayedImage> typed = Saved();
        SaveImage(ToView(fileName), format, *typed, Options());
    });
}

STDMETHODIMP ImageFiles::SaveToStream(IUnknown* object, ImageFileFormat format) noexcept {
    return Guarded<IImageFile>([&] {
        Require(object);
        const std::vector<uint8_t> bytes = ImageBytes(format, *Saved(), Options());
        WriteTo(StreamOf(object).get(), bytes);
    });
}

STDMETHODIMP ImageFiles::LoadFromStream(IUnknown* object, LONG page) noexcept {
    return Guarded([&] {
        const ComPtr<IStream> stream = StreamOf(object);
        const std::vector<uint8_t> bytes = ReadRest(stream.get());
        ReadOptions options;
        options.page = page;
        core().LoadBytes(bytes, options);
    });
}

STDMETHODIMP ImageFiles::LoadFromFile(BSTR fileName, LONG page) noexcept {
    return Guarded([&] {
        ReadOptions options;
        options.page = page;
        core().LoadFile(ToView(fileName), options);
    });
}

STDMETHODIMP ImageFiles::GetNumberOfPages(BSTR fileName, LONG* pages) noexcept {
    return Guarded([&] {
        Require(pages);
        *pages = 0;
        *pages = PagesOfImageFile(ToView(fileName));
    });
}

STDMETHODIMP ImageFiles::GetMicronsPerPixel(double* x, double* y) noexcept {
    return Guarded<IImageFile>([&] {
        Require(x), Require(y);
        const ImageProperties& properties = Typed()->store().properties();
        *x = properties.micronsX;
        *y = properties.micronsY;
        return properties.micronsX > 0 ? S_OK : S_FALSE;
    });
}

STDMETHODIMP ImageFiles::PutMicronsPerPixel(double x, double y) noexcept {
    return Guarded<IImageFile>([&] {
        ImageStore& store = Typed()->store();
        const bool unknown = x == 0 && y == 0;
        if (!unknown && !IsPixelSize(x, y))
            throw Failure("IImageFile::PutMicronsPerPixel: the pixel size must be positive.");
        unknown ? store.ChangeProperties().PutMicrons(0, 0, "") : store.ChangeProperties().PutMicrons(x, y, "client");
    });
}

STDMETHODIMP ImageFiles::get_CalibrationSource(BSTR* source) noexcept {
    return Guarded<IImageFile>([&] {
        Require(source);
        *source = nullptr;
        const ImageProperties& properties = Typed()->store().properties();
        if (properties.micronsX > 0) *source = Text(properties.micronsFrom).Detach();
    });
}

STDMETHODIMP ImageFiles::get_SignificantBits(LONG* bits) noexcept {
    return Guarded<IImageFile>([&] {
        Require(bits);
        *bits = Typed()->store().properties().significantBits;
    });
}

STDMETHODIMP ImageFiles::put_SignificantBits(LONG bits) noexcept {
    return Guarded<IImageFile>([&] {
        ImageStore& store = Typed()->store();
        if (!CanBeSignificant(bits, store.dataType()))
            throw Failure("IImageFile::put_SignificantBits: the number of bits must be below that of the samples.");
        store.ChangeProperties().significantBits = bits;
    });
}

STDMETHODIMP ImageFiles::get_Quality(LONG* quality) noexcept {
    return Guarded([&] {
        Require(quality);
        *quality = core().quality;
    });
}

STDMETHODIMP ImageFiles::put_Quality(LONG quality) noexcept {
    return Guarded([&] {
        if (quality < 1 || quality > 100) throw Failure("IImageFile::put_Quality: the quality must be 1 to 100.");
        core().quality = quality;
    });
}

}  // namespace orlix
