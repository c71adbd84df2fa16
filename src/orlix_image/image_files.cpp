#include "orlix_image/image_files.hpp"

#include <cmath>

#include "component/strings.hpp"
#include "orlix_image/file_content.hpp"

namespace orlix {

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
        const std::shared_ptr<DisplayedImage>& typed = core().typed();
        if (!typed || typed->store().empty()) throw Failure("IImageFile::SaveToFile: no image.");
        if (typed->store().refused()) throw NoImage();
        SaveImage(ToView(fileName), format, typed->store());
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
        if (!unknown && !(x > 0 && y > 0 && std::isfinite(x) && std::isfinite(y)))
            throw Failure("IImageFile::PutMicronsPerPixel: the pixel size must be positive.");
        ImageProperties& properties = store.ChangeProperties();
        properties.micronsX = unknown ? 0 : x;
        properties.micronsY = unknown ? 0 : y;
    });
}

}  // namespace orlix
