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
//  (1) The angles cannot describe a rotation: a rotated sphere is the same sphere, and z scale and centre are free. But
//      a measured ball may stand on a base that is not level, so the tilt is added to the height.
//  (2) The unknowns are a smooth function of the cap, also of a flat one: with X = (x - xMiddle) / L, Y likewise,
//      f = e + gx X + gy Y - c s / (1 + sqrt(1 - q s)), s = (X - a)^2 + (Y - b)^2, q = (L / radius)^2. Outside the
//      circle of that radius, s stays at 1 / q. The last four of a, b, q, e, c, gx, gy always follow by linear
//      regression.
//  (3) The sum has one minimum with the rim inside the region and one with the rim outside, and steps do not lead from
//      one to the other, since the derivatives are zero outside the rim. So the starts are: the untilted algebraic fit
//      (hemisphere_fit.hpp); a cap in the middle whose rim lies outside (q = 0.2); and the best of the circles in the
//      region, of five radii about a grid of centres. In large regions the starts are followed on some 2048 pixels,
//      every k-th column and row, and the best continues on all pixels; from 2^18 pixels on, which one is the best
//      shows on some 2^16 of them.
//  (4) Damping: the diagonal of the normal matrix times lambda. Lambda is 0.001 at first, divided by 10 after a step
//      that lowers the sum, and multiplied by 10 after any other step (which is undone). Near the rim, where the
//      surface is vertical, the derivatives are those at a root of 1 / 64. A step reduces q by at most 7 / 8 of its
//      value.
//  (5) The search ends with a step whose components move the surface by less than 1e-13 of the standard deviation of z,
//      or that changes the sum by less than 1e-12 of it; with lambda above 1e12; or after 40 steps on all pixels (200
//      where these are few).
//  (6) The second-order part of a tilt equals a shift of the centre by slope times radius. Only the fourth order
//      distinguishes the two: for a flat cap of depth h they are determined (h / radius) times less accurately than the
//      surface. Where they are not determined at all, the steps lead to ever larger radii with ever more distant
//      centres; they end at a radius of 65536 L and at centres 1024 L away.
//
// nullopt for fewer than seven pixels, or where the pixels determine no hemisphere (hemisphere_fit.hpp).
template <class Source>
std::optional<Hemisphere> FitAngledHemisphere(const Source& source, double average);

// The same through few points, for one of many trials: started from the algebraic fit only; nullopt where there is
// none.
std::optional<Hemisphere> AngledHemisphereThrough(std::span<const SurfacePoint> points, double average);

}  // namespace orlix
