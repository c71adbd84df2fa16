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
// Method: a2 to a5 are free, so the best ones are a linear regression of a0 w + a1 q, w = x^2 + y^2 and q = z^2, on x,
// y, z and 1. With A and D the sums of squares that this regression leaves of w and of q, what remains is a0^2 A + a1^2
// D + a0 a1 (a constant), which is smallest where a1 / a0 = sqrt(A / D). The residuals of w and q do not change when x,
// y and z are shifted, and scaling x and y, or z, only multiplies A and D by a factor; so the fit is computed about the
// middle of the pixels. The regression is corrected once by the regression of its own residuals, which makes A and D as
// accurate as orthogonal factors would. Points that lie exactly on a hemisphere make nothing singular: A and D do not
// vanish.
//
// nullopt where the pixels determine no hemisphere: fewer than five, NaN or infinite ones, all on one plane or one
// line, only two different heights, and wherever w or q is a linear function of x, y and z apart from rounding; also
// where the surface that they determine has no real points.
//
// Sums over the columns of a run are closed forms; those of a run's pixels are taken in eight lanes, pixel i in lane
// i % 8 (hemisphere_sums_kernels.hpp), and runs are added one after the other.
//
// Source: count() and ForEachRun() as RegionPixels; any of its pixel types, or PointRuns.
template <class Source>
std::optional<Hemisphere> FitHemisphere(const Source& source, double average);

// The same surface, even where its radius is not a real number (NaN): the pixels then determine a surface but no cap.
struct AlgebraicFit {
    Hemisphere hemisphere;
    double squares = 0;  // sum of (pixel - average)^2
};
template <class Source>
std::optional<AlgebraicFit> AlgebraicHemisphere(const Source& source, double average);

}  // namespace orlix
