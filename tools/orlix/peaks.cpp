#include "peaks.hpp"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

namespace tool {

namespace {

// A distribution function: straight lines between knots. Fractions are whole numbers of pixels, places are in
// intervals.
struct Knots {
    std::vector<double> at, below;
};

// The counts without the outermost ones, neighbours added up until few enough are left.
std::vector<int64_t> Intervals(std::span<const LONG> counts) {
    constexpr int64_t kOutermost = 2000;  // one in so many is left out at either end
    constexpr size_t kMost = 256;
    int64_t total = 0;
    for (const LONG count : counts) total += count;
    const int64_t cut = total / kOutermost;
    size_t first = 0, last = counts.size();
    for (int64_t sum = 0; first < last && (sum += counts[first]) <= cut;) ++first;
    for (int64_t sum = 0; first < last && (sum += counts[last - 1]) <= cut;) --last;
    const size_t group = std::max<size_t>((last - first + kMost - 1) / kMost, 1);
    std::vector<int64_t> intervals((last - first + group - 1) / group, 0);
    for (size_t i = first; i < last; ++i) intervals[(i - first) / group] += counts[i];
    return intervals;
}

Knots Distribution(const std::vector<int64_t>& intervals) {
    std::vector<double> places;
    for (size_t i = 0; i < intervals.size(); ++i)
        if (intervals[i] > 0) places.push_back(static_cast<double>(i));
    Knots knots;
    if (places.empty()) return knots;
    const double farthest = std::max((places.back() - places.front()) / 16, 0.5);
    double sum = 0;
    for (size_t k = 0; k < places.size(); ++k) {
        const bool before = k > 0, after = k + 1 < places.size();
        double left = before ? std::min((places[k] - places[k - 1]) / 2, farthest) : 0;
        double right = after ? std::min((places[k + 1] - places[k]) / 2, farthest) : 0;
        if (!before) left = after ? right : 0.5;
        if (!after) right = left;
        if (knots.at.empty() || knots.at.back() < places[k] - left) {
            knots.at.push_back(places[k] - left);
            knots.below.push_back(sum);
        }
        sum += static_cast<double>(intervals[static_cast<size_t>(places[k])]);
        knots.at.push_back(places[k] + right);
        knots.below.push_back(sum);
    }
    return knots;
}

// The knots first..last that the greatest convex minorant (side 1) or the least concave majorant (side -1) touches.
std::vector<size_t> Hull(const Knots& knots, size_t first, size_t last, double side) {
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

// The hull's height at the knots first..last.
std::vector<double> Heights(const Knots& knots, const std::vector<size_t>& hull) {
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

}  // namespace

// The peak is somewhere in an interval, at first everything. Left of it the nearest distribution is convex, right of it
// concave. In each step the two hulls of what is left are farthest apart at a knot of one of them, and there the
// interval is cut.
double Dip(std::span<const LONG> counts) {
    const Knots knots = Distribution(Intervals(counts));
    if (knots.at.size() < 2) return 0;
    size_t first = 0, last = knots.at.size() - 1;
    double dip = 0;
    for (;;) {
        const std::vector<size_t> minorant = Hull(knots, first, last, 1), majorant = Hull(knots, first, last, -1);
        const std::vector<double> lower = Heights(knots, minorant), upper = Heights(knots, majorant);
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

double LeastDipOfTwoPeaks(int64_t pixels) {
    return std::max(0.003, 0.7 / std::sqrt(static_cast<double>(std::max<int64_t>(pixels, 1))));
}

}  // namespace tool
