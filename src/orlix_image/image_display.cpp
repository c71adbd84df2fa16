#include "orlix_image/image_display.hpp"

namespace orlix {

STDMETHODIMP ImageDisplay::get_BandToDisplay(LONG* band) noexcept {
    return Guarded([&] {
        Require(band);
        *band = Typed()->bandToDisplay();
    });
}

STDMETHODIMP ImageDisplay::put_BandToDisplay(LONG band) noexcept {
    return Guarded([&] { Typed()->PutBandToDisplay(band); });
}

STDMETHODIMP ImageDisplay::get_DisplayDirty(LONG* dirty) noexcept {
    return Guarded([&] {
        Require(dirty);
        *dirty = Typed()->DisplayDirty() ? 1 : 0;
    });
}

STDMETHODIMP ImageDisplay::put_DisplayDirty(LONG dirty) noexcept {
    return Guarded([&] { Typed()->PutDisplayDirty(dirty != 0); });
}

STDMETHODIMP ImageDisplay::get_ColorTable(LONG entry, OLE_COLOR* color) noexcept {
    return Guarded([&] {
        Require(color);
        *color = Typed()->GetColor(entry);
    });
}

STDMETHODIMP ImageDisplay::put_ColorTable(LONG entry, OLE_COLOR color) noexcept {
    return Guarded([&] { Typed()->PutColor(entry, color); });
}

STDMETHODIMP ImageDisplay::EqualizeColorTable() noexcept {
    return Guarded([&] { Typed()->EqualizeColorTable(); });
}

STDMETHODIMP ImageDisplay::GetDisplayRange(double* lower, double* upper) noexcept {
    return Guarded([&] {
        Require(lower), Require(upper);
        Typed()->GetDisplayRange(*lower, *upper);
    });
}

STDMETHODIMP ImageDisplay::PutDisplayRange(double lower, double upper) noexcept {
    return Guarded([&] { Typed()->PutDisplayRange(lower, upper); });
}

STDMETHODIMP ImageDisplay::SnapDisplayRange(double trimLeft, double trimRight, LONG roundOut) noexcept {
    return Guarded([&] { return Typed()->SnapDisplayRange(trimLeft, trimRight, roundOut != 0); });
}

}  // namespace orlix
