#include "display/zoom_state.hpp"

#include <algorithm>
#include <cmath>

#include "component/failure.hpp"

namespace orlix {
namespace {

// NaN lies on no image.
bool IsOn(int32_t length, double center) {
    const double nearest = std::trunc(center + 0.5);
    return nearest > 0 && nearest < length;
}

PixelPoint MiddleOf(const View& view) {
    const Rectangle& dest = view.dest;
    const PixelPoint first = Apply(view.toPixel, static_cast<double>(dest.x), static_cast<double>(dest.y));
    const PixelPoint second =
        Apply(view.toPixel, static_cast<double>(dest.right()), static_cast<double>(dest.bottom()));
    return {(first.x + second.x) / 2, (first.y + second.y) / 2};
}

}  // namespace

void ZoomState::SetImageSize(int32_t width, int32_t height) {
    if (width == width_ && height == height_) return;
    width_ = width;
    height_ = height;
    Reset();
}

bool ZoomState::TryFactor(double factor) {
    if (!(factor > 0)) return false;
    factor_ = factor;
    return true;
}

bool ZoomState::TryCenterX(double x) {
    if (!IsOn(width_, x)) return false;
    centerX_ = x;
    return true;
}

bool ZoomState::TryCenterY(double y) {
    if (!IsOn(height_, y)) return false;
    centerY_ = y;
    return true;
}

void ZoomState::CenterOn(const PixelPoint& point) {
    TryCenterX(point.x);
    TryCenterY(point.y);
}

void ZoomState::PutFactor(double factor) {
    if (!TryFactor(factor)) throw Failure("IPictureZoom: zoom factor must be positive.");
}

void ZoomState::PutCenterX(double x) {
    if (!TryCenterX(x)) throw Failure("IPictureZoom::put_ZoomCenterX: x zoom center must be on the image.");
}

void ZoomState::PutCenterY(double y) {
    if (!TryCenterY(y)) throw Failure("IPictureZoom::put_ZoomCenterY: y zoom center must be on the image.");
}

void ZoomState::Reset() {
    factor_ = 1.0;
    const int32_t x = width_ / 2, y = height_ / 2;
    centerX_ = x;
    centerY_ = y;
}

void ZoomState::ZoomIn() { TryFactor(factor_ * 1.25); }

void ZoomState::ZoomOut() { TryFactor(std::max(factor_ * 0.8, 1.0)); }

void ZoomState::ZoomInFromPoint(const View& view, int32_t x, int32_t y) {
    CenterOn(Apply(view.toPixel, x, y));
    ZoomIn();
}

void ZoomState::ZoomOutFromPoint(const View& view, int32_t x, int32_t y) {
    CenterOn(Apply(view.toPixel, x, y));
    ZoomOut();
}

void ZoomState::ZoomFromRectangle(const View& view, int32_t x, int32_t y, int32_t width, int32_t height) {
    const PixelPoint first = Apply(view.toPixel, x, y);
    const PixelPoint second =
        Apply(view.toPixel, static_cast<double>(int64_t{x} + width), static_cast<double>(int64_t{y} + height));
    CenterOn({(first.x + second.x) / 2, (first.y + second.y) / 2});
    // The fraction itself, not its reciprocal. NaN in either is refused; without an image there are no fractions.
    if (width_ <= 0 || height_ <= 0) return;
    const double alongX = (second.x - first.x + 1) / width_, alongY = (second.y - first.y + 1) / height_;
    if (!std::isnan(alongX)) TryFactor(std::min(alongY, alongX));
}

void ZoomState::PanLeft(const View& view) {
    TryCenterX(std::min(MiddleOf(view).x, centerX_) - std::max(view.toPixel.Matrix.A11, 1.0));
}

void ZoomState::PanRight(const View& view) {
    TryCenterX(std::max(MiddleOf(view).x, centerX_) + std::max(view.toPixel.Matrix.A11, 1.0));
}

void ZoomState::ScrollUp(const View& view) {
    TryCenterY(std::min(MiddleOf(view).y, centerY_) - std::max(view.toPixel.Matrix.A22, 1.0));
}

void ZoomState::ScrollDown(const View& view) {
    TryCenterY(std::max(MiddleOf(view).y, centerY_) + std::max(view.toPixel.Matrix.A22, 1.0));
}

void ZoomState::PanScrollFromPoints(const View& view, int32_t x1, int32_t y1, int32_t x2, int32_t y2) {
    const PixelPoint first = Apply(view.toPixel, x1, y1), second = Apply(view.toPixel, x2, y2);
    CenterOn({centerX_ + (first.x - second.x), centerY_ + (first.y - second.y)});
}

}  // namespace orlix
