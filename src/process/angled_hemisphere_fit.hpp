// Least-squares fit of a tilted hemisphere.
#pragma once

#include <optional>

#include "process/hemisphere.hpp"
#include "process/region_pixels.hpp"

namespace orlix {

// The tilted hemisphere (hemisphere.hpp) with the smallest sum of squared residuals f(x, y) - z over the pixels, in grey
// levels, reached from the untilted algebraic fit (hemisphere_fit.hpp) by damped Gauss-Newton steps with analytic derivatives
// (Levenberg 1944, Marquardt 1963). Notes:
//  (1) A rotation is not what the angles can mean: a sphere that is turned is the same sphere, and z scale and centre are
//      free. What a measurement of a ball does show is a base line that is not level, so the tilt is added to the height.
//  (2) The unknowns are a smooth function of the cap, also of a flat one: with X = (x - xMiddle) / L, Y likewise,
//      f = e + gx X + gy Y - c s / (1 + sqrt(1 - q s)), s = (X - a)^2 + (Y - b)^2, q = (L / radius)^2. Outside the circle of the
//      radius s stays at 1 / q.
//  (3) Damping: the diagonal of the normal matrix times lambda, 0.001 at first, a tenth after a step that lowers the sum,
//      ten times after another (which is taken back). Steps to q <= 0 count as such. Near the rim, where the surface is vertical,
//      derivatives are those at a root of 1 / 64.
//  (4) The end: a step whose parts move the surface by less than 1e-13 of the standard deviation of z; lambda above 1e12; or 200
//      steps. Of a large region every k-th column and row, some 65536 pixels, go first.
//  (5) The second-order part of a tilt equals a shift of the centre by slope times radius. The two are told apart by the
//      fourth order only: for a flat cap of depth h they are determined (h / radius) times less well than the surface.
//
// Nothing where there are fewer than seven pixels or no untilted fit to start from.
template <class Source>
std::optional<Hemisphere> FitAngledHemisphere(const Source& source, double average);

}  // namespace orlix
