// Pixels of the image object and their creation.
#pragma once

#include "orlix_image/image_core.hpp"

#include "image/source_image.hpp"

namespace orlix {

class ImagePixels : public ImagePart<IImageVPAExPlus> {
public:
    // IImageVPA
    STDMETHODIMP Dimensions(LONG* bands, LONG* width, LONG* height) noexcept override;
    STDMETHODIMP DataType(LONG bandIndex, LONG* dataType) noexcept override;
    STDMETHODIMP VPA(LONG bandIndex, void** base, VPAEntry** table) noexcept override;
    STDMETHODIMP GetCoords(TCoordinateMap* coordinateMap) noexcept override;
    STDMETHODIMP SetCoords(TCoordinateMap coordinateMap) noexcept override;

    // IImageVPAEx, IImageVPAExPlus
    STDMETHODIMP get_Description(BSTR* description) noexcept override;
    STDMETHODIMP put_Description(BSTR description) noexcept override;
    STDMETHODIMP Create(LONG width, LONG height, LONG bands, LONG dataType, LONG zero) noexcept override;
    STDMETHODIMP CreateFromImage(IImageVPA* image, LONG bandIndex) noexcept override;
    STDMETHODIMP CreateFromSubImage(IImageVPA* image, LONG bandIndex, LONG left, LONG top, LONG right,
                                    LONG bottom) noexcept override;
    STDMETHODIMP CreateFromFile(BSTR fileName) noexcept override;
    STDMETHODIMP AttachBuffer(void* buffer, LONG width, LONG height, LONG bands, LONG dataType,
                              LONG zero) noexcept override;

private:
    // Replaces the image by a copy of a rectangle of the source.
    void Copy(IImageVPA* image, LONG bandIndex, const RECT* rectangle);
};

class ImageAccess : public ImagePart<IPixelAccess> {
public:
    STDMETHODIMP Accessible() noexcept override;
};

}  // namespace orlix
