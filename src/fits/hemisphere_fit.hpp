// Algebraic least-squares fit of a hemisphere.
#pragma once

#include <optional>

#include "fits/hemisphere.hpp"
#include "fits/region_pixels.hpp"

namespace orlix {

// The surface a0 (x^2 + y^2) + a1 z^2 + a2 x + a3 y + a4 z + a5 = 0 with the smallest sum of squares of its left side
// over the pixels, for a0 a1 fixed and positive: the eigenvector of the largest eigenvalue mu in C a = mu S a, S the
// scatter of (x^2 + y^2, z^2, x, y, z, 1) and C with 0.5 at (0, 1) and (1, 0) (after Bookstein 1979 and Fitzgibbon
// 1999). zScale has the sign of average - zCenter, and is 0 where these are equal.
//
// How: a2 to a5 are free, so the best ones are a linear regression of a0 w + a1 q, w = x^2 + y^2 and q = z^2, on x, y,
// z and 1. With A and D the sums of squares that this regression leaves of w and of q, what remains is a0^2 A + a1^2 D
// + a0 a1 (a constant), and it is smallest where a1 / a0 = sqrt(A / D). The residuals of w and q do not change when x,
// y and z are shifted, a scale of x and y or of z changes A and D by a factor: so the fit may be and is computed about
// the middle of the pixels. The regression is corrected once by that of its own residuals, which makes A and D as exact
// as by orthogonal factors. Points that lie on a hemisphere leave nothing singular: A and D stay as they are.
//
// Nothing where the pixels determine no hemisphere: fewer than five, NaN or infinite ones, all on one plane or one
// line, heights of two values only, and wherever w or q is a linear function of x, y and z but for rounding. Nor where
// the surface that they determine is none of real numbers.
//
// Source: count() and ForEachRun() as RegionPixels; any of its pixel types, or PointRuns.
template <class Source>
std::optional<Hemisphere> FitHemisphere(const Source& source, double average);

// The same surface, also where its radius is no real number (NaN): pixels that determine one, and no cap.
template <class Source>
std::optional<Hemisphere> AlgebraicHemisphere(const Source& source, double average);

}  // namespace orlix
