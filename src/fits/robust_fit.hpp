// Robust fits: surfaces through few pixels drawn at random, of which the one wins that fits the better part of all
// pixels best.
#pragma once

#include <cstdint>
#include <optional>

#include "fits/hemisphere.hpp"
#include "fits/region_pixels.hpp"
#include "fits/surface_polynomial.hpp"

namespace orlix {

// With probability P of a pixel to belong to the surface, 0 < P <= 1, and p = min(P, 0.99); n pixels; k pixels that
// determine the surface (3, 6 and 10 for polynomials of degree 1, 2 and 3; 5 for hemispheres, 7 for tilted ones); the
// search is that of numerics/consensus_search.hpp:
//   - K = trunc(n p) pixels are to fit: the score of a surface is the sum of its K smallest squared residuals
//     (trimmed_score.hpp);
//   - a trial draws k numbers u of UniformGenerator(-1), takes the pixels trunc(u n) in run order, puts the surface
//     through them and scores it; a smaller score than the best one so far makes it the best;
//   - the search ends when N = ceil(25 / p^k) trials in a row have not improved.
// Notes:
//  (1) The same pixels give the same bits on every build.
//  (2) Drawn pixels that do not determine the surface (the same pixel twice, pixels on a line): the polynomial through
//      them with the least coefficients (surface_polynomial.hpp), or no hemisphere at all, and then the trial does not
//      improve. Nor does one that drew NaN or infinity, or whose score is not finite. NaN and infinite pixels count as
//      bad ones.
//  (3) Nothing improves on a score of 0, so the search then ends at once: among others for K = 0, where the first
//      surface wins.
//  (4) For a small p, N has no bound. The search also ends when it has formed 2^35 residuals in all, each trial
//      counting as 2^15 more, but not before 200 trials: half a minute. A trial that is far from the best forms few.
//      The worst case is nothing but noise: 4096 x 4096 pixels of it get 2500 trials, 1024 x 1024 pixels 38000.
//  (5) The average is that of all pixels but NaN and infinite ones.
// Nothing for fewer than k pixels, and when no trial has found a surface.
template <class T>
std::optional<SurfacePolynomial> RobustPolynomial(const RegionPixels<T>& pixels, int degree, double probability);
template <class T>
std::optional<AveragedHemisphere> RobustHemisphere(const RegionPixels<T>& pixels, bool angled, double probability);

}  // namespace orlix
