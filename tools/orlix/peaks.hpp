// How far a histogram is from having a single peak: whether there are two classes at all that a threshold could
// separate.
#pragma once

#include <orlix/orlix.h>

#include <cstdint>
#include <span>

namespace tool {

// The dip (J. A. Hartigan and P. M. Hartigan, The dip test of unimodality, Annals of Statistics 13, 1985): the greatest
// distance between the distribution of the pixels and the distribution with a single peak that is nearest to it, as a
// fraction of the pixels. 0 for a single peak, whatever its width and skew; about a quarter of the pixels in the
// smaller of two separate peaks; at most 0.25. A bin stands for an interval, not for a point: its pixels are spread
// over the space up to the middle between it and its occupied neighbours, so that grey levels which a stretched image
// never has are no valleys; but no farther than a sixteenth of the range, so that two levels far apart are two peaks.
// At most 256 intervals tell levels apart, and the outermost 0.05 % of the pixels at either end are left out. 0 without
// counts.
double Dip(std::span<const LONG> counts);

// The dip from which on there are two peaks. A second peak of one pixel in a hundred has 0.0023 of all pixels; below,
// the size of the sample decides (a flat distribution of N pixels has 0.4 / root N on average).
double LeastDipOfTwoPeaks(int64_t pixels);

}  // namespace tool
