// Robust fits: surfaces through a few pixels drawn at random; the winner is the one that best fits the better part of
// all pixels.
#pragma once

#include <cstdint>
#include <optional>

#include "fits/hemisphere.hpp"
#include "fits/region_pixels.hpp"
#include "fits/surface_polynomial.hpp"

namespace orlix {

// P is the probability that a pixel belongs to the surface, 0 < P <= 1, and p = min(P, 0.99); n is the number of
// pixels, and k the number of pixels that determine the surface (3, 6 and 10 for polynomials of degree 1, 2 and 3; 5
// for hemispheres, 7 for tilted ones). The search is that of numerics/consensus_search.hpp:
//   - K = trunc(n p) pixels are to fit: the score of a surface is the sum of its K smallest squared residuals
//     (trimmed_score.hpp);
//   - a trial draws k numbers u of UniformGenerator(-1), takes the pixels trunc(u n) in run order, puts the surface
//     through them and scores it; a score below the best one so far makes it the best;
//   - the search ends when N = ceil(25 / p^k) trials in a row have brought no improvement.
// Notes:
//  (1) The same pixels give the same bits on every build.
//  (2) If the drawn pixels do not determine the surface (the same pixel twice, pixels on a line), the trial uses the
//      polynomial through them with the least coefficients (surface_polynomial.hpp); for hemispheres it does not
//      improve. Nor does a trial that drew NaN or infinity, or whose score is not finite. NaN and infinite pixels count
//      as bad ones.
//  (3) No surface improves on a score of 0, so the search ends at once when it is reached: for instance for K = 0,
//      where the first surface wins.
//  (4) For a small p, N is unbounded. The search also ends when it has computed 2^35 residuals in all, where each trial
//      counts as 2^15 more, but not before 200 trials; that takes up to half a minute. A trial that is far from the
//      best computes few residuals. The worst case is pure noise: 4096 x 4096 pixels of it get 2500 trials, 1024 x
//      1024 pixels 38000.
//  (5) The average is that of all pixels except NaN and infinite ones.
// nullopt for fewer than k pixels, and when no trial has found a surface.
template <class T>
std::optional<SurfacePolynomial> RobustPolynomial(const RegionPixels<T>& pixels, int degree, double probability);
template <class T>
std::optional<AveragedHemisphere> RobustHemisphere(const RegionPixels<T>& pixels, bool angled, double probability);

}  // namespace orlix
