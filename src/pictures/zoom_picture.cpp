#include "pictures/zoom_picture.hpp"

namespace orlix {

STDMETHODIMP ZoomPicture::get_ZoomFactor(double* factor) noexcept {
    return Guarded([&] {
        Require(factor);
        *factor = picture().zoom.factor();
    });
}

STDMETHODIMP ZoomPicture::put_ZoomFactor(double factor) noexcept {
    return Guarded([&] { picture().zoom.PutFactor(factor); });
}

STDMETHODIMP ZoomPicture::get_ZoomCenterX(double* x) noexcept {
    return Guarded([&] {
        Require(x);
        *x = picture().zoom.centerX();
    });
}

STDMETHODIMP ZoomPicture::put_ZoomCenterX(double x) noexcept {
    return Guarded([&] { picture().zoom.PutCenterX(x); });
}

STDMETHODIMP ZoomPicture::get_ZoomCenterY(double* y) noexcept {
    return Guarded([&] {
        Require(y);
        *y = picture().zoom.centerY();
    });
}

STDMETHODIMP ZoomPicture::put_ZoomCenterY(double y) noexcept {
    return Guarded([&] { picture().zoom.PutCenterY(y); });
}

STDMETHODIMP ZoomPicture::ResetZoom() noexcept {
    return Guarded([&] { picture().zoom.Reset(); });
}

STDMETHODIMP ZoomPicture::ZoomInFromPoint(LONG x, LONG y) noexcept {
    return Guarded([&] { picture().zoom.ZoomInFromPoint(picture().view, x, y); });
}

STDMETHODIMP ZoomPicture::ZoomOutFromPoint(LONG x, LONG y) noexcept {
    return Guarded([&] { picture().zoom.ZoomOutFromPoint(picture().view, x, y); });
}

STDMETHODIMP ZoomPicture::ZoomFromRectangle(LONG x, LONG y, LONG width, LONG height) noexcept {
    return Guarded([&] { picture().zoom.ZoomFromRectangle(picture().view, x, y, width, height); });
}

STDMETHODIMP ZoomPicture::ZoomIn() noexcept {
    return Guarded([&] { picture().zoom.ZoomIn(); });
}

STDMETHODIMP ZoomPicture::ZoomOut() noexcept {
    return Guarded([&] { picture().zoom.ZoomOut(); });
}

STDMETHODIMP ZoomPicture::PanLeft() noexcept {
    return Guarded([&] { picture().zoom.PanLeft(picture().view); });
}

STDMETHODIMP ZoomPicture::PanRight() noexcept {
    return Guarded([&] { picture().zoom.PanRight(picture().view); });
}

STDMETHODIMP ZoomPicture::ScrollUp() noexcept {
    return Guarded([&] { picture().zoom.ScrollUp(picture().view); });
}

STDMETHODIMP ZoomPicture::ScrollDown() noexcept {
    return Guarded([&] { picture().zoom.ScrollDown(picture().view); });
}

STDMETHODIMP ZoomPicture::PanScrollFromPoints(LONG x1, LONG y1, LONG x2, LONG y2) noexcept {
    return Guarded([&] { picture().zoom.PanScrollFromPoints(picture().view, x1, y1, x2, y2); });
}

}  // namespace orlix
