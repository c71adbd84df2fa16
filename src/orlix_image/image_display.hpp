// The display of the image.
#pragma once

#include "orlix_image/image_core.hpp"

namespace orlix {

class ImageDisplay : public ImagePart<IDisplayProcess> {
public:
    STDMETHODIMP get_BandToDisplay(LONG* band) noexcept override;
    STDMETHODIMP put_BandToDisplay(LONG band) noexcept override;
    STDMETHODIMP get_DisplayDirty(LONG* dirty) noexcept override;
    STDMETHODIMP put_DisplayDirty(LONG dirty) noexcept override;
    STDMETHODIMP get_ColorTable(LONG entry, OLE_COLOR* color) noexcept override;
    STDMETHODIMP put_ColorTable(LONG entry, OLE_COLOR color) noexcept override;
    STDMETHODIMP EqualizeColorTable() noexcept override;
    STDMETHODIMP GetDisplayRange(double* lower, double* upper) noexcept override;
    STDMETHODIMP PutDisplayRange(double lower, double upper) noexcept override;
    STDMETHODIMP SnapDisplayRange(double trimLeft, double trimRight, LONG roundOut) noexcept override;
};

}  // namespace orlix
