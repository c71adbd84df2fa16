#include "orlix_image/image_zoom.hpp"

namespace orlix {

STDMETHODIMP ImageZoom::get_ZoomFactor(double* factor) noexcept {
    return Guarded([&] {
        Require(factor);
        *factor = core().zoom.factor();
    });
}

STDMETHODIMP ImageZoom::put_ZoomFactor(double factor) noexcept {
    return Guarded([&] { core().zoom.PutFactor(factor); });
}

STDMETHODIMP ImageZoom::get_ZoomCenterX(double* x) noexcept {
    return Guarded([&] {
        Require(x);
        *x = core().zoom.centerX();
    });
}

STDMETHODIMP ImageZoom::put_ZoomCenterX(double x) noexcept {
    return Guarded([&] { core().zoom.PutCenterX(x); });
}

STDMETHODIMP ImageZoom::get_ZoomCenterY(double* y) noexcept {
    return Guarded([&] {
        Require(y);
        *y = core().zoom.centerY();
    });
}

STDMETHODIMP ImageZoom::put_ZoomCenterY(double y) noexcept {
    return Guarded([&] { core().zoom.PutCenterY(y); });
}

STDMETHODIMP ImageZoom::ResetZoom() noexcept {
    return Guarded([&] { core().zoom.Reset(); });
}

STDMETHODIMP ImageZoom::ZoomInFromPoint(LONG x, LONG y) noexcept {
    return Guarded([&] { core().zoom.ZoomInFromPoint(core().view, x, y); });
}

STDMETHODIMP ImageZoom::ZoomOutFromPoint(LONG x, LONG y) noexcept {
    return Guarded([&] { core().zoom.ZoomOutFromPoint(core().view, x, y); });
}

STDMETHODIMP ImageZoom::ZoomFromRectangle(LONG x, LONG y, LONG width, LONG height) noexcept {
    return Guarded([&] { core().zoom.ZoomFromRectangle(core().view, x, y, width, height); });
}

STDMETHODIMP ImageZoom::ZoomIn() noexcept {
    return Guarded([&] { core().zoom.ZoomIn(); });
}

STDMETHODIMP ImageZoom::ZoomOut() noexcept {
    return Guarded([&] { core().zoom.ZoomOut(); });
}

STDMETHODIMP ImageZoom::PanLeft() noexcept {
    return Guarded([&] { core().zoom.PanLeft(core().view); });
}

STDMETHODIMP ImageZoom::PanRight() noexcept {
    return Guarded([&] { core().zoom.PanRight(core().view); });
}

STDMETHODIMP ImageZoom::ScrollUp() noexcept {
    return Guarded([&] { core().zoom.ScrollUp(core().view); });
}

STDMETHODIMP ImageZoom::ScrollDown() noexcept {
    return Guarded([&] { core().zoom.ScrollDown(core().view); });
}

STDMETHODIMP ImageZoom::PanScrollFromPoints(LONG x1, LONG y1, LONG x2, LONG y2) noexcept {
    return Guarded([&] { core().zoom.PanScrollFromPoints(core().view, x1, y1, x2, y2); });
}

}  // namespace orlix
