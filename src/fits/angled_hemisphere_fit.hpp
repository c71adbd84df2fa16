// Least-squares fit of a tilted hemisphere.
#pragma once

#include <optional>
#include <span>

#include "fits/hemisphere.hpp"
#include "fits/region_pixels.hpp"

namespace orlix {

// The tilted hemisphere (hemisphere.hpp) with the smallest sum of squared residuals f(x, y) - z over the pixels, in
// grey levels: the smallest that damped Gauss-Newton steps with analytic derivatives (Levenberg 1944, Marquardt 1963)
// reach from three starts. Notes:
//  (1) A rotation is not what the angles can mean: a sphere that is turned is the same sphere, and z scale and centre
//      are free. What a measurement of a ball does show is a base line that is not level, so the tilt is added to the
//      height.
//  (2) The unknowns are a smooth function of the cap, also of a flat one: with X = (x - xMiddle) / L, Y likewise,
//      f = e + gx X + gy Y - c s / (1 + sqrt(1 - q s)), s = (X - a)^2 + (Y - b)^2, q = (L / radius)^2. Outside the
//      circle of the radius s stays at 1 / q. The last four of a, b, q, e, c, gx, gy always follow by linear
//      regression.
//  (3) The sum has a minimum where the rim lies in the region and one where it lies outside, and steps do not lead
//      across, since the derivatives are zero outside the rim. So the starts are: the untilted algebraic fit
//      (hemisphere_fit.hpp); a cap in the middle whose rim lies outside (q = 0.2); and the best of circles in the
//      region, of five radii about a grid of centres. In large regions they are followed on some 2048 pixels, every
//      k-th column and row, and the best goes on with all.
//  (4) Damping: the diagonal of the normal matrix times lambda, 0.001 at first, a tenth after a step that lowers the
//      sum, ten times after another (which is taken back). Near the rim, where the surface is vertical, derivatives are
//      those at a root of 1 / 64. Steps take no more than 7 / 8 off q.
//  (5) The end: a step whose parts move the surface by less than 1e-13 of the standard deviation of z, or that changes
//      the sum by less than 1e-12 of it; lambda above 1e12; 40 steps on all pixels (200 where these are few).
//  (6) The second-order part of a tilt equals a shift of the centre by slope times radius. The two are told apart by
//      the fourth order only: for a flat cap of depth h they are determined (h / radius) times less well than the
//      surface. Where that is not at all the steps lead to ever larger radii with centres ever farther away; they end
//      at a radius of 65536 L and at centres 1024 L away.
//
// Nothing where there are fewer than seven pixels, or where the pixels determine no hemisphere (hemisphere_fit.hpp).
template <class Source>
std::optional<Hemisphere> FitAngledHemisphere(const Source& source, double average);

// The same through few points, one of many trials: from the algebraic fit only, and nothing where there is none.
std::optional<Hemisphere> AngledHemisphereThrough(std::span<const SurfacePoint> points, double average);

}  // namespace orlix
