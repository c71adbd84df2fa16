// Hemispheres and tilted hemispheres as surfaces z = f(x, y), x the column, y the row, z the grey value.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "fits/hemisphere_kernels.hpp"

namespace orlix {

// Half of the ellipsoid (x - xCenter)^2 + (y - yCenter)^2 + zScale^2 (z - zCenter)^2 = radius^2: the upper half (a
// dome) if zScale is positive, the lower half (a bowl) if it is negative. |zScale| is the length of a grey level in
// pixels; in heights |zScale| z it is a hemisphere. Lengths are in pixels, angles in radians.
//
// A tilted hemisphere stands on a base that rises by the angle alpha along x and beta along y, as when the specimen or
// the reference of the instrument is not level. The two heights are added:
//     f = zCenter + sqrt(radius^2 - dx^2 - dy^2) / zScale + (tan(alpha) dx + tan(beta) dy) / |zScale|,
// with dx = x - xCenter, dy = y - yCenter. Outside the circle of that radius the root is taken as 0, and f is the base.
struct Hemisphere {
    double xCenter = 0, yCenter = 0, zCenter = 0, zScale = 0, radius = 0;
    double alpha = 0, beta = 0;
};

struct AveragedHemisphere {
    Hemisphere hemisphere;
    double average = 0;  // of the grey values it was fitted to
};

// The heights of a hemisphere, identical on every build. A zScale of 0 gives no height: f is then zCenter everywhere.
class HemisphereSurface {
public:
    explicit HemisphereSurface(const Hemisphere& hemisphere);

    const Hemisphere& hemisphere() const { return hemisphere_; }
    // Whether all its parameters are finite.
    bool finite() const;

    // f(x, y), f(x + 1, y), ...
    void Values(int32_t x, int32_t y, size_t n, double* values) const;

private:
    Hemisphere hemisphere_;
    double height_ = 0;               // grey levels per pixel of root
    double slopeX_ = 0, slopeY_ = 0;  // grey levels per pixel
    HemisphereRowFn row_;
};

}  // namespace orlix
