#include "orlix_bitmap/plane_image.hpp"

namespace orlix {

STDMETHODIMP PlaneImage::Dimensions(LONG* bands, LONG* width, LONG* height) noexcept {
    return Guarded([&] {
        Require(bands), Require(width), Require(height);
        *bands = 1;
        *width = content_.layout.width;
        *height = content_.layout.height;
    });
}

STDMETHODIMP PlaneImage::DataType(LONG, LONG* dataType) noexcept {
    return Guarded([&] {
        Require(dataType);
        *dataType = dataType_;
    });
}

STDMETHODIMP PlaneImage::VPA(LONG band, void** base, VPAEntry** table) noexcept {
    return Guarded([&] {
        Require(base), Require(table);
        *base = nullptr;
        *table = nullptr;
        if (band != 0) throw Failure(kBandOutOfRange, DISP_E_EXCEPTION);
        *base = content_.data;
        *table = content_.table.data() + kTableMargin;
    });
}

STDMETHODIMP PlaneImage::GetCoords(TCoordinateMap* map) noexcept {
    return Guarded([&] {
        Require(map);
        *map = content_.coordinates;
    });
}

STDMETHODIMP PlaneImage::SetCoords(TCoordinateMap map) noexcept {
    return Guarded([&] { content_.coordinates = map; });
}

}  // namespace orlix
