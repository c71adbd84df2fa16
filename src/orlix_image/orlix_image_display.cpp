#include "orlix_image/orlix_image.hpp"

using namespace orlix;

STDMETHODIMP OrlixImage::get_BandToDisplay(LONG* band) noexcept {
    return Guarded([&] {
        Require(band);
        *band = Typed()->bandToDisplay();
    });
}

STDMETHODIMP OrlixImage::put_BandToDisplay(LONG band) noexcept {
    return Guarded([&] {
        Typed()->PutBandToDisplay(band);
        modified_ = true;
    });
}

STDMETHODIMP OrlixImage::get_DisplayDirty(LONG* dirty) noexcept {
    return Guarded([&] {
        Require(dirty);
        *dirty = Typed()->DisplayDirty() ? 1 : 0;
    });
}

STDMETHODIMP OrlixImage::put_DisplayDirty(LONG dirty) noexcept {
    return Guarded([&] { Typed()->PutDisplayDirty(dirty != 0); });
}

STDMETHODIMP OrlixImage::get_ColorTable(LONG entry, OLE_COLOR* color) noexcept {
    return Guarded([&] {
        Require(color);
        *color = Typed()->GetColor(entry);
    });
}

STDMETHODIMP OrlixImage::put_ColorTable(LONG entry, OLE_COLOR color) noexcept {
    return Guarded([&] {
        Typed()->PutColor(entry, color);
        modified_ = true;
    });
}

STDMETHODIMP OrlixImage::EqualizeColorTable() noexcept {
    return Guarded([&] {
        Typed()->EqualizeColorTable();
        modified_ = true;
    });
}

STDMETHODIMP OrlixImage::GetDisplayRange(double* lower, double* upper) noexcept {
    return Guarded([&] {
        Require(lower), Require(upper);
        Typed()->GetDisplayRange(*lower, *upper);
    });
}

STDMETHODIMP OrlixImage::PutDisplayRange(double lower, double upper) noexcept {
    return Guarded([&] {
        Typed()->PutDisplayRange(lower, upper);
        modified_ = true;
    });
}

STDMETHODIMP OrlixImage::SnapDisplayRange(double trimLeft, double trimRight, LONG roundOut) noexcept {
    return Guarded([&] {
        const HRESULT result = Typed()->SnapDisplayRange(trimLeft, trimRight, roundOut != 0);
        if (result == S_OK) modified_ = true;
        return result;
    });
}
