#include "orlix_image/image_filters.hpp"

namespace orlix {

HRESULT ImageFilters::Filter(FilterKind kind, IImageVPA* source, LONG band, const char* method) noexcept {
    return Guarded<IImageProcess>(
        [&] {
            Require(source);
            WithFrame([&](auto& frame) { frame.Filter(kind, source, band); });
        },
        method);
}

STDMETHODIMP ImageFilters::ExtremumSharpening(LONG halfSize, IImageVPA* source, LONG band) noexcept {
    return Guarded<IImageProcess>([&] {
        Require(source);
        WithFrame([&](auto& frame) { frame.ExtremumSharpening(halfSize, source, band); });
    });
}

}  // namespace orlix
