// For clients in C++: figures of a population of particles. Plain arithmetic, which calls no interface.
//
//     const orlix::SizeDistribution sizes = orlix::DistributionOf(diameters, areas);   // by area
//     std::printf("d10 %g, d50 %g, d90 %g\n", sizes.d10, sizes.d50, sizes.d90);
//
// Sums are taken in double, in the order stated. Compiled with SSE2 arithmetic and without contraction, as the library
// is, the functions give the same bits on every platform.
#ifndef ORLIX_PARTICLES_HPP
#define ORLIX_PARTICLES_HPP

#include <orlix/statistics.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <span>
#include <utility>
#include <vector>

namespace orlix {

// --------------------------------------------------------------------------------------------------- size distribution

// A distribution of sizes in which each particle has a weight: 1 for a distribution by number, its area for one by
// area.
//
// The particles are sorted by size. Particle i stands at the share (w(1) + ... + w(i-1) + w(i) / 2) / (sum of w) of the
// distribution; the size is interpolated linearly between two particles (Hazen 1914), below the first and beyond the
// last it is theirs. NaN without particles of positive weight.
struct SizeDistribution {
    int64_t count = 0;  // particles of positive weight
    double weight = 0;  // sum of their weights
    double d10 = implementation::kNaN;
    double d50 = implementation::kNaN;  // the median
    double d90 = implementation::kNaN;
    double mean = implementation::kNaN;  // sum of w size / sum of w
};

// One weight for each size; no weights stand for 1 each. Particles whose size or weight is not finite, or whose weight
// is not positive, are left out.
SizeDistribution DistributionOf(std::span<const double> sizes, std::span<const double> weights = {});

// The size below which the share q of the distribution lies; q in 0..1, NaN for any other.
double SizeAt(std::span<const double> sizes, std::span<const double> weights, double q);

// ------------------------------------------------------------------------------------------------------------ counting

// A field of view cuts particles at its edges, and a large particle is more likely to be cut than a small one. Two ways
// around it, both unbiased for particles that are smaller than the field:
//
//  Counting rule    Count the particles inside, and of those at the edges only the ones that touch the left or the
//                   top edge and neither the right nor the bottom one. Each particle of a plane that is tiled with
//                   fields is then counted in exactly one of them (Gundersen, Notes on the estimation of the numerical
//                   density of arbitrary profiles: the edge effect, 1977; for compact particles). Right for numbers per
//                   area, which is (width - 1) (height - 1) pixels: a particle that ends with the last column touches
//                   the edge as well. Measurements of particles that are cut stay wrong.
//  Edge correction  Leave out all particles that touch an edge, and give the others the weight MilesLantuejoul():
//                   one over the probability that a particle of this size lies wholly inside (Miles 1974; Lantuejoul
//                   1980). Right for distributions of size and shape.
struct EdgeContact {
    bool left, top, right, bottom;
};
constexpr bool CountsInField(EdgeContact contact) { return !contact.right && !contact.bottom; }

// Of a particle whose bounding box is `boxWidth` by `boxHeight` pixels, in a field of `width` by `height` pixels, which
// it does not touch the edges of: the field's pixels over the number of places where it could lie like this,
//     width height / ((width - boxWidth - 1) (height - boxHeight - 1)).
// NaN where there is no such place.
double MilesLantuejoul(double boxWidth, double boxHeight, double width, double height);

// The 95 % confidence interval of the mean of a Poisson distribution, from one count (Garwood 1936): the means from
// which a count as large, or as small, would come with a probability of 2.5 %. For particles that lie independently of
// each other. To nine digits. NaN for a negative count.
struct Interval {
    double lower = implementation::kNaN;
    double upper = implementation::kNaN;
};
Interval PoissonInterval95(int64_t count);

// ------------------------------------------------------------------------------------------------------ implementation

namespace implementation {

struct WeightedSizes {
    std::vector<std::pair<double, double>> particles;  // size, weight; by size
    double weight = 0, moment = 0;
};

inline WeightedSizes SortedSizes(std::span<const double> sizes, std::span<const double> weights) {
    WeightedSizes out;
    for (size_t i = 0; i < sizes.size(); ++i) {
        const double weight = weights.empty() ? 1 : i < weights.size() ? weights[i] : 0;
        if (std::isfinite(sizes[i]) && std::isfinite(weight) && weight > 0)
            out.particles.emplace_back(sizes[i], weight);
    }
    std::sort(out.particles.begin(), out.particles.end());
    for (const auto& [size, weight] : out.particles) {
        out.weight += weight;
        out.moment += weight * size;
    }
    return out;
}

inline double SizeAt(const WeightedSizes& sizes, double q) {
    if (sizes.particles.empty() || !(q >= 0 && q <= 1)) return kNaN;
    const double wanted = q * sizes.weight;
    double before = 0, lastAt = 0, lastSize = sizes.particles.front().first;
    for (const auto& [size, weight] : sizes.particles) {
        const double at = before + weight / 2;
        if (at >= wanted)
            return at > lastAt && wanted > lastAt ? lastSize + (size - lastSize) * ((wanted - lastAt) / (at - lastAt))
                                                  : lastSize;
        before += weight;
        lastAt = at;
        lastSize = size;
    }
    return lastSize;
}

// The probability that a variable with the Poisson distribution of the given mean is at most `count`. The terms are
// summed in units of the one for `count`, away from it on either side, so no factorial is needed.
inline double PoissonAtMost(int64_t count, double mean) {
    if (mean <= 0) return 1;
    const auto n = static_cast<double>(count);
    double term = 1, sum = 1;  // in units of the term for `count`, downwards
    for (double k = n; k > 0 && term > 1e-18 * sum; --k) sum += term *= k / mean;
    double above = 0;
    term = 1;
    for (double k = n + 1; k <= mean || term > 1e-18 * (sum + above); ++k) above += term *= mean / k;
    return sum / (sum + above);
}

}  // namespace implementation

inline double SizeAt(std::span<const double> sizes, std::span<const double> weights, double q) {
    return implementation::SizeAt(implementation::SortedSizes(sizes, weights), q);
}

inline SizeDistribution DistributionOf(std::span<const double> sizes, std::span<const double> weights) {
    const implementation::WeightedSizes sorted = implementation::SortedSizes(sizes, weights);
    SizeDistribution out;
    out.count = static_cast<int64_t>(sorted.particles.size());
    if (out.count == 0) return out;
    out.weight = sorted.weight;
    out.mean = sorted.moment / sorted.weight;
    out.d10 = implementation::SizeAt(sorted, 0.1);
    out.d50 = implementation::SizeAt(sorted, 0.5);
    out.d90 = implementation::SizeAt(sorted, 0.9);
    return out;
}

inline double MilesLantuejoul(double boxWidth, double boxHeight, double width, double height) {
    const double columns = width - boxWidth - 1, rows = height - boxHeight - 1;
    return columns > 0 && rows > 0 ? width * height / (columns * rows) : implementation::kNaN;
}

inline Interval PoissonInterval95(int64_t count) {
    if (count < 0) return {};
    const auto n = static_cast<double>(count);
    const auto solve = [](double low, double high, const auto& tooSmall) {
        while (high - low > 1e-12 * high) {
            const double middle = low + (high - low) / 2;
            if (middle <= low || middle >= high) break;
            (tooSmall(middle) ? low : high) = middle;
        }
        return low + (high - low) / 2;
    };
    const double reach = 8 * std::sqrt(n + 1) + 8;
    Interval out;
    out.lower = count == 0 ? 0 : solve(std::max(0.0, n - reach), n, [&](double mean) {
        return 1 - implementation::PoissonAtMost(count - 1, mean) < 0.025;
    });
    out.upper = solve(n, n + reach, [&](double mean) { return implementation::PoissonAtMost(count, mean) > 0.025; });
    return out;
}

}  // namespace orlix

#endif
