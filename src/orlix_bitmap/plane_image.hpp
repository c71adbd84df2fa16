// An image of one band that a bitmap or its blobs hand out: distances, labels. Clients read it through IImageVPA, or
// make an OrlixImage of it (IImageVPAExPlus::CreateFromImage).
#pragma once

#include <orlix/orlix.h>

#include <orlix/com_ptr.hpp>

#include "component/object.hpp"
#include "image/image_store.hpp"
#include "image/source_image.hpp"

namespace orlix {

class PlaneImage;

}  // namespace orlix

// No class of its own: failures are reported in the name of the bitmap.
__CRT_UUID_DECL(orlix::PlaneImage, 0x5fdd9a2b, 0xf56c, 0x4c60, 0x80, 0x09, 0xcc, 0x17, 0xcb, 0x4a, 0x1a, 0xf0)

namespace orlix {

class PlaneImage final : public Object<PlaneImage, IImageVPA, IPixelAccess> {
public:
    // All 0. DT_DWORD or DT_Float; width and height of at least 1. Fails as MakeContent does.
    static ComPtr<PlaneImage> Make(LONG dataType, LONG width, LONG height) {
        return ComPtr<PlaneImage>::Attach(new PlaneImage(dataType, width, height));
    }

    template <class Pixel>
    Pixel* row(LONG y) {
        return reinterpret_cast<Pixel*>(content_.data + content_.layout.rowStride * y);
    }

    STDMETHODIMP Dimensions(LONG* bands, LONG* width, LONG* height) noexcept override;
    STDMETHODIMP DataType(LONG band, LONG* dataType) noexcept override;
    STDMETHODIMP VPA(LONG band, void** base, VPAEntry** table) noexcept override;
    STDMETHODIMP GetCoords(TCoordinateMap* map) noexcept override;
    STDMETHODIMP SetCoords(TCoordinateMap map) noexcept override;
    STDMETHODIMP Accessible() noexcept override { return S_OK; }

private:
    PlaneImage(LONG dataType, LONG width, LONG height)
        : dataType_(dataType), content_(MakeContent(dataType, width, height, 1)) {}

    LONG dataType_;
    ImageContent content_;
};

}  // namespace orlix
