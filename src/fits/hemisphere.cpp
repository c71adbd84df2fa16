#include "fits/hemisphere.hpp"

#include <cmath>

#include "numerics/elementary.hpp"

namespace orlix {

HemisphereSurface::HemisphereSurface(const Hemisphere& hemisphere)
    : hemisphere_(hemisphere), row_(Choose(kHemisphereRow)) {
    if (hemisphere.zScale == 0) return;
    height_ = 1 / hemisphere.zScale;
    const auto slope = [&](double angle) { return angle == 0 ? 0 : Sin(angle) / Cos(angle) * std::fabs(height_); };
    slopeX_ = slope(hemisphere.alpha);
    slopeY_ = slope(hemisphere.beta);
}

bool HemisphereSurface::finite() const {
    const Hemisphere& h = hemisphere_;
    for (const double number :
         {h.xCenter, h.yCenter, h.zCenter, h.zScale, h.radius, h.alpha, h.beta, height_, slopeX_, slopeY_})
        if (!std::isfinite(number)) return false;
    return true;
}

void HemisphereSurface::Values(int32_t x, int32_t y, size_t n, double* values) const {
    const double dy = y - hemisphere_.yCenter;
    const HemisphereRow row{hemisphere_.xCenter, hemisphere_.zCenter + slopeY_ * dy, slopeX_, height_,
                            hemisphere_.radius * hemisphere_.radius - dy * dy};
    row_(row, x, n, values);
}

}  // namespace orlix
