// For clients in C++: figures of heights, of samples and of histograms. Plain arithmetic, which calls no interface.
//
//     const orlix::Roughness roughness = orlix::MeasureRoughness(residuals);
//     std::printf("Sq %g, Sz %g\n", roughness.Sq, roughness.Sz);
//
// Sums are taken in double, in the order of the values. Compiled with SSE2 arithmetic and without contraction, as the
// library is, the functions give the same bits on every platform.
#ifndef ORLIX_STATISTICS_HPP
#define ORLIX_STATISTICS_HPP

#include <orlix/orlix.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <span>
#include <vector>

namespace orlix {

namespace implementation {

inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

}  // namespace implementation

// ----------------------------------------------------------------------------------------------------------- roughness

// Areal parameters by the definitions of ISO 25178-2, without any filter. Sa to Sz have the unit of the heights, Ssk
// and Sku have none. All are NaN without heights, Ssk and Sku also where all heights are equal.
struct Roughness {
    int64_t count = 0;                   // N heights h; below, z = h - mean
    double mean = implementation::kNaN;  // sum h / N
    double minimum = implementation::kNaN;
    double maximum = implementation::kNaN;
    double Sa = implementation::kNaN;   // arithmetical mean height: sum |z| / N
    double Sq = implementation::kNaN;   // root mean square height: root(sum z^2 / N)
    double Sp = implementation::kNaN;   // height of the highest peak: maximum - mean
    double Sv = implementation::kNaN;   // depth of the deepest pit: mean - minimum
    double Sz = implementation::kNaN;   // maximum height: maximum - minimum
    double Ssk = implementation::kNaN;  // skewness: sum z^3 / N / Sq^3; below 0 where pits outweigh peaks
    double Sku = implementation::kNaN;  // kurtosis: sum z^4 / N / Sq^4; 3 for a normal distribution
};

// `heights` is a range of numbers: a vector or span of float, say. Heights that are not finite are left out, so NaN can
// mark the pixels outside a region. Remove form and tilt first (IOrlixImageProcess).
template <class Heights>
Roughness MeasureRoughness(const Heights& heights);

// Highest less lowest of the heights that remain when the floor(share N) highest and as many of the lowest are taken
// away: Sz without the effect of a few outliers (0.001 removes 0.1 % at either end). Heights that are not finite are
// left out. NaN where no height remains, or where `share` is not in 0 .. 0.5.
template <class Heights>
double TrimmedSz(const Heights& heights, double share);

// ------------------------------------------------------------------------------------------------------------- samples

// Of N values, such as the area fractions of N images. NaN where there is no value; the last two also for a single one.
struct SampleStatistics {
    int64_t count = 0;  // N
    double mean = implementation::kNaN;
    double minimum = implementation::kNaN;
    double maximum = implementation::kNaN;
    double standardDeviation = implementation::kNaN;  // root(sum (value - mean)^2 / (N - 1))
    double confidence95 = implementation::kNaN;       // StudentT95(N - 1) standardDeviation / root(N)
};

// Values that are not finite are left out. mean - confidence95 to mean + confidence95 is the 95 % confidence interval
// of the population's mean, for values that are independent and normally distributed.
SampleStatistics SummarizeSample(std::span<const double> values);

// The size that a variable with Student's t distribution exceeds with a probability of 5 %, for the given degrees of
// freedom: 12.706204736 for 1, 1.959963985 for infinitely many. NaN below 1. Rounded to nine decimals, because the last
// bits of the platforms' arc tangents differ.
// (Student, The probable error of a mean, 1908; the series are those of Abramowitz and Stegun, 1964, 26.7.)
double StudentT95(int64_t degreesOfFreedom);

// ---------------------------------------------------------------------------------------------------------- histograms

// The dip of a histogram (J. A. Hartigan and P. M. Hartigan, The dip test of unimodality, 1985): how far it is from
// having a single peak, and so whether there are two classes at all that a threshold could separate. It is the greatest
// distance between the distribution of the pixels and the nearest distribution with a single peak, as a fraction of the
// pixels: 0 for a single peak, whatever its width and skew; about a quarter of the pixels in the smaller of two
// separate peaks; at most 0.25. 0 without counts. Counts below 0 are taken for 0.
//
// A bin stands for an interval. Its pixels are spread up to the middle between it and its occupied neighbours, so that
// grey levels which a stretched image never has are no valleys, but no farther than a sixteenth of the range, so that
// two levels far apart are two peaks. At most 256 intervals are told apart, and the outermost 0.05 % of the pixels at
// either end are left out.
double Dip(std::span<const LONG> counts);

// The dip from which on a histogram of that many pixels has two peaks: max(0.003, 0.7 / root(pixels)). A second peak of
// one pixel in a hundred has a dip of 0.0023; with few pixels chance decides (a flat distribution of N pixels has a dip
// of 0.4 / root(N) on average).
double LeastDipOfTwoPeaks(int64_t pixels);

// The valley of a histogram about a level: the places to which a threshold there could have been put as well.
//
// The counts are spread and grouped as for Dip() and smoothed three times with a moving mean over a thirty-second of
// the range (an odd number of intervals, at least 3). The peaks are the highest counts left and right of the level, the
// floor is the lowest one between the peaks. The valley reaches from the level to either side as far as the smoothed
// counts are at most a tenth of the way up from the floor to the lower peak.
//
// There is none where the floor is higher than half of the lower peak, where chance could have made it (the difference
// is below five standard deviations of the counts), and where the level lies on the slope of a peak, above the valley.
struct Valley {
    double left = implementation::kNaN;  // in bins; NaN without a valley
    double right = implementation::kNaN;
};

// `level` is in bins: bin i is the place i, and a threshold between bin i and the next one is i + 0.5. Counts below 0
// are taken for 0.
Valley ValleyAt(std::span<const LONG> counts, double level);

// ------------------------------------------------------------------------------------------------------ implementation

template <class Heights>
Roughness MeasureRoughness(const Heights& heights) {
    Roughness out;
    double sum = 0;
    for (const auto value : heights) {
        const auto height = static_cast<double>(value);
        if (!std::isfinite(height)) continue;
        out.minimum = out.count ? std::min(out.minimum, height) : height;
        out.maximum = out.count ? std::max(out.maximum, height) : height;
        sum += height;
        ++out.count;
    }
    if (out.count == 0) return out;
    const double n = static_cast<double>(out.count);
    out.mean = sum / n;
    double sizes = 0, squares = 0, cubes = 0, fourths = 0;
    for (const auto value : heights) {
        const auto height = static_cast<double>(value);
        if (!std::isfinite(height)) continue;
        const double z = height - out.mean, square = z * z;
        sizes += std::fabs(z);
        squares += square;
        cubes += square * z;
        fourths += square * square;
    }
    const double variance = squares / n;
    out.Sa = sizes / n;
    out.Sq = std::sqrt(variance);
    out.Sp = out.maximum - out.mean;
    out.Sv = out.mean - out.minimum;
    out.Sz = out.maximum - out.minimum;
    out.Ssk = cubes / n / (variance * out.Sq);
    out.Sku = fourths / n / (variance * variance);
    return out;
}

template <class Heights>
double TrimmedSz(const Heights& heights, double share) {
    std::vector<double> finite;
    for (const auto height : heights)
        if (std::isfinite(static_cast<double>(height))) finite.push_back(static_cast<double>(height));
    const double each = std::floor(share * static_cast<double>(finite.size()));
    if (!(share >= 0 && share <= 0.5) || 2 * each >= static_cast<double>(finite.size())) return implementation::kNaN;
    const auto cut = static_cast<std::ptrdiff_t>(each);
    std::nth_element(finite.begin(), finite.begin() + cut, finite.end());
    const double lowest = finite[static_cast<size_t>(cut)];
    std::nth_element(finite.begin(), finite.end() - 1 - cut, finite.end());
    return *(finite.end() - 1 - cut) - lowest;
}

inline SampleStatistics SummarizeSample(std::span<const double> values) {
    SampleStatistics out;
    double sum = 0;
    for (const double value : values) {
        if (!std::isfinite(value)) continue;
        out.minimum = out.count ? std::min(out.minimum, value) : value;
        out.maximum = out.count ? std::max(out.maximum, value) : value;
        sum += value;
        ++out.count;
    }
    if (out.count < 1) return out;
    const double n = static_cast<double>(out.count);
    out.mean = sum / n;
    if (out.count < 2) return out;
    double squares = 0;
    for (const double value : values)
        if (std::isfinite(value)) squares += (value - out.mean) * (value - out.mean);
    out.standardDeviation = std::sqrt(squares / (n - 1));
    out.confidence95 = StudentT95(out.count - 1) * out.standardDeviation / std::sqrt(n);
    return out;
}

namespace implementation {

// The probability that a variable with Student's t distribution lies within -t .. t. The sum has freedom / 2 terms.
inline double StudentWithin(double t, int64_t freedom) {
    const double n = static_cast<double>(freedom), cosine2 = n / (n + t * t), sine = t / std::sqrt(n + t * t);
    const bool odd = freedom % 2 != 0;
    double term = odd ? std::sqrt(cosine2) : 1, sum = 0;
    for (int64_t k = odd ? 3 : 2; k <= freedom; k += 2) {
        sum += term;
        term *= cosine2 * static_cast<double>(k - 1) / static_cast<double>(k);
    }
    constexpr double kHalfPi = 1.5707963267948966;
    return odd ? (std::atan(t / std::sqrt(n)) + sine * sum) / kHalfPi : sine * sum;
}

}  // namespace implementation

inline double StudentT95(int64_t degreesOfFreedom) {
    if (degreesOfFreedom < 1) return implementation::kNaN;
    const auto rounded = [](double t) { return std::round(t * 1e9) / 1e9; };
    constexpr int64_t kManyTerms = 1000;
    if (degreesOfFreedom > kManyTerms) {
        // In powers of 1 / degrees of freedom; the next one is below 1e-15.
        constexpr double x = 1.959963984540054, x2 = x * x;  // of the normal distribution
        constexpr double powers[] = {x, x * (x2 + 1) / 4, x * ((5 * x2 + 16) * x2 + 3) / 96,
                                     x * (((3 * x2 + 19) * x2 + 17) * x2 - 15) / 384,
                                     x * ((((79 * x2 + 776) * x2 + 1482) * x2 - 1920) * x2 - 945) / 92160};
        double t = 0;
        for (size_t i = std::size(powers); i-- > 0;) t = t / static_cast<double>(degreesOfFreedom) + powers[i];
        return rounded(t);
    }
    double low = 1, high = 13;
    for (;;) {
        const double middle = (low + high) / 2;
        if (middle <= low || middle >= high) return rounded(middle);
        (implementation::StudentWithin(middle, degreesOfFreedom) < 0.95 ? low : high) = middle;
    }
}

namespace implementation {

// A distribution function: straight lines between knots. Places are in intervals, `below` counts pixels.
struct Knots {
    std::vector<double> at, below;
};

// The counts without the outermost ones, neighbours added up until few enough are left. Interval i holds the bins
// first + group i to first + group (i + 1) - 1.
struct GroupedCounts {
    size_t first = 0, group = 1;
    std::vector<int64_t> intervals;
};
inline GroupedCounts Intervals(std::span<const LONG> counts) {
    constexpr int64_t kOutermost = 2000;  // one pixel in this many is left out at either end
    constexpr size_t kMost = 256;
    const auto count = [&](size_t i) { return std::max(int64_t{counts[i]}, int64_t{0}); };
    int64_t total = 0;
    for (size_t i = 0; i < counts.size(); ++i) total += count(i);
    const int64_t cut = total / kOutermost;
    size_t first = 0, last = counts.size();
    for (int64_t sum = 0; first < last && (sum += count(first)) <= cut;) ++first;
    for (int64_t sum = 0; first < last && (sum += count(last - 1)) <= cut;) --last;
    const size_t group = std::max<size_t>((last - first + kMost - 1) / kMost, 1);
    GroupedCounts out = {first, group, std::vector<int64_t>((last - first + group - 1) / group, 0)};
    for (size_t i = first; i < last; ++i) out.intervals[(i - first) / group] += count(i);
    return out;
}

inline Knots DistributionOf(const std::vector<int64_t>& intervals) {
    std::vector<size_t> occupied;
    for (size_t i = 0; i < intervals.size(); ++i)
        if (intervals[i] > 0) occupied.push_back(i);
    Knots knots;
    if (occupied.empty()) return knots;
    const auto place = [&](size_t k) { return static_cast<double>(occupied[k]); };
    const double farthest = std::max((place(occupied.size() - 1) - place(0)) / 16, 0.5);
    double sum = 0;
    for (size_t k = 0; k < occupied.size(); ++k) {
        const bool before = k > 0, after = k + 1 < occupied.size();
        double left = before ? std::min((place(k) - place(k - 1)) / 2, farthest) : 0;
        double right = after ? std::min((place(k + 1) - place(k)) / 2, farthest) : 0;
        if (!before) left = after ? right : 0.5;
        if (!after) right = left;
        if (knots.at.empty() || knots.at.back() < place(k) - left) {
            knots.at.push_back(place(k) - left);
            knots.below.push_back(sum);
        }
        sum += static_cast<double>(intervals[occupied[k]]);
        knots.at.push_back(place(k) + right);
        knots.below.push_back(sum);
    }
    return knots;
}

// The knots first..last that the greatest convex minorant (side 1) or the least concave majorant (side -1) touches.
inline std::vector<size_t> HullOf(const Knots& knots, size_t first, size_t last, double side) {
    std::vector<size_t> hull;
    for (size_t k = first; k <= last; ++k) {
        while (hull.size() >= 2) {
            const size_t i = hull[hull.size() - 2], j = hull.back();
            const double turn = (knots.below[j] - knots.below[i]) * (knots.at[k] - knots.at[i]) -
                                (knots.below[k] - knots.below[i]) * (knots.at[j] - knots.at[i]);
            if (side * turn < 0) break;
            hull.pop_back();
        }
        hull.push_back(k);
    }
    return hull;
}

// The height of a hull at each knot that it spans.
inline std::vector<double> HeightsOf(const Knots& knots, const std::vector<size_t>& hull) {
    std::vector<double> heights;
    for (size_t piece = 0; piece + 1 < hull.size(); ++piece) {
        const size_t i = hull[piece], j = hull[piece + 1];
        for (size_t k = i; k < j; ++k)
            heights.push_back(knots.below[i] + (knots.below[j] - knots.below[i]) * (knots.at[k] - knots.at[i]) /
                                                   (knots.at[j] - knots.at[i]));
    }
    heights.push_back(knots.below[hull.back()]);
    return heights;
}

}  // namespace implementation

// The peak is somewhere in an interval, at first everything. Left of it the nearest distribution is convex, right of it
// concave. In each step the two hulls of what is left are farthest apart at a knot of one of them, and there the
// interval is cut.
inline double Dip(std::span<const LONG> counts) {
    using namespace implementation;
    const Knots knots = DistributionOf(Intervals(counts).intervals);
    if (knots.at.size() < 2) return 0;
    size_t first = 0, last = knots.at.size() - 1;
    double dip = 0;
    for (;;) {
        const std::vector<size_t> minorant = HullOf(knots, first, last, 1), majorant = HullOf(knots, first, last, -1);
        const std::vector<double> lower = HeightsOf(knots, minorant), upper = HeightsOf(knots, majorant);
        const auto apart = [&](size_t k) { return upper[k - first] - lower[k - first]; };
        const auto farther = [&](size_t a, size_t b) { return apart(a) < apart(b); };
        const size_t below = *std::max_element(minorant.begin(), minorant.end(), farther);
        const size_t above = *std::max_element(majorant.begin(), majorant.end(), farther);
        size_t start = below, end = above;
        if (apart(below) > apart(above))
            end = *std::lower_bound(majorant.begin(), majorant.end(), below);
        else
            start = *std::prev(std::upper_bound(minorant.begin(), minorant.end(), above));
        if (std::max(apart(below), apart(above)) <= dip) break;
        for (size_t k = first; k <= start; ++k) dip = std::max(dip, knots.below[k] - lower[k - first]);
        for (size_t k = end; k <= last; ++k) dip = std::max(dip, upper[k - first] - knots.below[k]);
        if (start == first && end == last) break;
        first = start;
        last = end;
    }
    return dip / 2 / knots.below.back();
}

namespace implementation {

// The pixels in each of `size` intervals, when those of every knot are spread as a distribution has them.
inline std::vector<double> DensityOf(const Knots& knots, size_t size) {
    std::vector<double> density(size, 0);
    double before = 0;
    size_t k = 0;
    for (size_t i = 0; i <= size; ++i) {
        const double place = static_cast<double>(i) - 0.5;
        while (k < knots.at.size() && knots.at[k] <= place) ++k;
        double below = k == 0 ? 0 : knots.below[k - 1];
        if (k > 0 && k < knots.at.size())
            below +=
                (knots.below[k] - knots.below[k - 1]) * (place - knots.at[k - 1]) / (knots.at[k] - knots.at[k - 1]);
        if (i > 0) density[i - 1] = below - before;
        before = below;
    }
    return density;
}

// A moving mean over 2 * reach + 1 values; those outside are 0.
inline std::vector<double> MovingMean(const std::vector<double>& values, size_t reach) {
    std::vector<double> means;
    for (size_t i = 0; i < values.size(); ++i) {
        double sum = 0;
        for (size_t k = i - std::min(i, reach); k <= std::min(i + reach, values.size() - 1); ++k) sum += values[k];
        means.push_back(sum / static_cast<double>(2 * reach + 1));
    }
    return means;
}

}  // namespace implementation

inline Valley ValleyAt(std::span<const LONG> counts, double level) {
    using namespace implementation;
    const GroupedCounts grouped = Intervals(counts);
    const size_t size = grouped.intervals.size();
    const double first = static_cast<double>(grouped.first), group = static_cast<double>(grouped.group);
    const double at = (level - first + 0.5) / group - 0.5;  // in intervals
    if (size < 2 || !(at >= 0 && at < static_cast<double>(size - 1))) return {};
    const size_t reach = std::max<size_t>(size / 64, 1);
    std::vector<double> density = DensityOf(DistributionOf(grouped.intervals), size);
    for (int pass = 0; pass < 3; ++pass) density = MovingMean(density, reach);

    const auto below = density.begin() + static_cast<std::ptrdiff_t>(at), above = below + 1;
    const auto leftPeak = std::max_element(density.begin(), above), rightPeak = std::max_element(above, density.end());
    const double peak = std::min(*leftPeak, *rightPeak), floor = *std::min_element(leftPeak, rightPeak + 1);
    const double pixels = 1.8 * static_cast<double>(2 * reach + 1);  // independent intervals in a smoothed count
    if (!(peak > 0 && floor <= peak / 2) || !((peak - floor) * std::sqrt(pixels) >= 5 * std::sqrt(peak + floor)))
        return {};
    const double top = floor + (peak - floor) / 10, share = at - std::floor(at);
    if (*below + share * (*above - *below) > top) return {};

    const auto crossing = [&](std::vector<double>::const_iterator outer, std::ptrdiff_t inwards) {
        return static_cast<double>(outer - density.cbegin()) +
               static_cast<double>(inwards) * (*outer - top) / (*outer - outer[inwards]);
    };
    const auto bin = [&](double place) { return (place + 0.5) * group - 0.5 + first; };
    auto left = below, right = above;
    while (*left <= top) --left;
    while (*right <= top) ++right;
    return {bin(crossing(left, 1)), bin(crossing(right, -1))};
}

inline double LeastDipOfTwoPeaks(int64_t pixels) {
    return std::max(0.003, 0.7 / std::sqrt(static_cast<double>(std::max<int64_t>(pixels, 1))));
}

}  // namespace orlix

#endif
