// The part of the image that the picture shows.
#pragma once

#include "pictures/device_picture.hpp"

namespace orlix {

class ZoomPicture : public DevicePicture {
public:
    STDMETHODIMP get_ZoomFactor(double* factor) noexcept override;
    STDMETHODIMP put_ZoomFactor(double factor) noexcept override;
    STDMETHODIMP get_ZoomCenterX(double* x) noexcept override;
    STDMETHODIMP put_ZoomCenterX(double x) noexcept override;
    STDMETHODIMP get_ZoomCenterY(double* y) noexcept override;
    STDMETHODIMP put_ZoomCenterY(double y) noexcept override;
    STDMETHODIMP ResetZoom() noexcept override;
    STDMETHODIMP ZoomInFromPoint(LONG x, LONG y) noexcept override;
    STDMETHODIMP ZoomOutFromPoint(LONG x, LONG y) noexcept override;
    STDMETHODIMP ZoomFromRectangle(LONG x, LONG y, LONG width, LONG height) noexcept override;
    STDMETHODIMP ZoomIn() noexcept override;
    STDMETHODIMP ZoomOut() noexcept override;
    STDMETHODIMP PanLeft() noexcept override;
    STDMETHODIMP PanRight() noexcept override;
    STDMETHODIMP ScrollUp() noexcept override;
    STDMETHODIMP ScrollDown() noexcept override;
    STDMETHODIMP PanScrollFromPoints(LONG x1, LONG y1, LONG x2, LONG y2) noexcept override;
};

}  // namespace orlix
