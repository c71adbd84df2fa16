#include "histogram/thresholds.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "component/failure.hpp"
#include "histogram/statistics.hpp"
#include "numerics/compensated_sum.hpp"
#include "numerics/elementary.hpp"
#include "numerics/power_sums.hpp"

namespace orlix {
namespace {

// Rounds down to an integer, limited to 2^62 in magnitude, far outside any histogram. NaN gives 0.
int64_t Floor(double v) {
    if (std::isnan(v)) return 0;
    return static_cast<int64_t>(std::clamp(std::floor(v), -0x1p62, 0x1p62));
}

// ----------------------------------------------------------------------------------------- greatest separation

// The sum of i c[i] over the first bins, in two parts of 64 bits: high 2^32 + low, low >= 0.
struct WeightedSum {
    int64_t high = 0;
    int64_t low = 0;

    void Add(int64_t term) {
        high += term >> 32;
        low += term & 0xffffffff;
    }
    double ToDouble() const { return static_cast<double>(high) * 0x1p32 + static_cast<double>(low); }
    WideInteger ToInteger() const { return WideInteger(high) * (int64_t{1} << 32) + low; }
};

// The classes below and above a threshold.
struct Split {
    int64_t below = 0;  // counts of the lower class
    WeightedSum weighted;
};

// Compares splits by N^2 sigma^2 = d^2 / (below (N - below)), where d = below S - weighted N and S is the sum of i c[i]
// over all bins. Uses doubles as long as their rounding cannot matter, otherwise integers.
class SeparationOrder {
public:
    SeparationOrder(int64_t total, const WideInteger& weightedTotal)
        : total_(total),
          weightedTotal_(weightedTotal),
          totalRounded_(static_cast<double>(total)),
          weightedTotalRounded_(weightedTotal.ToDouble()) {}

    // Whether a split into two non-empty classes has a greater (1), equal (0) or smaller (-1) variance than the best so
    // far, initially 0. A greater one becomes the best.
    int CompareWithBest(const Split& split) {
        // Each product is off by at most 5 roundings, and d by the sum of both errors; squares and products of both
        // sides add fewer than 16.
        constexpr double kRounding = 0x1p-53;
        const double first = static_cast<double>(split.below) * weightedTotalRounded_;
        const double second = split.weighted.ToDouble() * totalRounded_;
        const double d = std::fabs(first - second);
        const double offD = 8.0 * kRounding * (std::fabs(first) + std::fabs(second));
        const double scale = static_cast<double>(split.below) * static_cast<double>(total_ - split.below);
        const double square = d * d;
        const double offSquare = (2.0 * d + offD) * offD + 16.0 * kRounding * square;

        const double here = square * best_.scale;
        const double there = best_.square * scale;
        const double tolerance = 1.01 * (offSquare * best_.scale + best_.offSquare * scale);
        int order = here > there + tolerance ? 1 : -1;
        if (order < 0 && here >= there - tolerance) order = Exactly(split);
        if (order > 0) best_ = {split, square, offSquare, scale};
        return order;
    }

private:
    struct Best {
        Split split;
        double square = 0.0;
        double offSquare = 0.0;
        double scale = 1.0;
    };

    int Exactly(const Split& split) const {
        const WideInteger d = Distance(split);
        if (best_.split.below == 0) return d.Sign() != 0 ? 1 : 0;
        const WideInteger bestD = Distance(best_.split);
        return (d * d * Scale(best_.split) - bestD * bestD * Scale(split)).Sign();
    }
    WideInteger Distance(const Split& split) const {
        return weightedTotal_ * split.below - split.weighted.ToInteger() * total_;
    }
    WideInteger Scale(const Split& split) const { return WideInteger(split.below) * (total_ - split.below); }

    int64_t total_;
    WideInteger weightedTotal_;
    double totalRounded_;
    double weightedTotalRounded_;
    Best best_;
};

// ---------------------------------------------------------------------------------------------- normal mixture

// Phi(z) - 0.5 for z = 0, 0.05, ..., 3.05, and one extra entry for the interpolation at 3.05.
constexpr std::array<double, 63> kNormalTable = {
    0.00000, 0.01994, 0.03983, 0.05962, 0.07926, 0.09871, 0.11791, 0.13683, 0.15542, 0.17364, 0.19146, 0.20884, 0.22575,
    0.24215, 0.25804, 0.27337, 0.28814, 0.30234, 0.31594, 0.32894, 0.34134, 0.35314, 0.36433, 0.37493, 0.38493, 0.39435,
    0.40320, 0.41149, 0.41924, 0.42647, 0.43319, 0.43943, 0.44520, 0.45053, 0.45543, 0.45994, 0.46407, 0.46784, 0.47128,
    0.47441, 0.47725, 0.47982, 0.48214, 0.48422, 0.48610, 0.48778, 0.48928, 0.49061, 0.49180, 0.49286, 0.49379, 0.49461,
    0.49534, 0.49598, 0.49653, 0.49702, 0.49744, 0.49781, 0.49813, 0.49841, 0.49865, 0.5,     0.5};

// The shift of a class's mean by truncation: sigma exp(-distance^2 / (2 variance)) / (sqrt(2 pi) share), where share is
// the part of the normal distribution on the class's side of the threshold; 0 when share is 0.
double TruncationCorrection(double distance, double variance, double sigma, double share) {
    constexpr double kTwoPi = 6.283185307179586;
    if (share == 0.0) return 0.0;
    return sigma * Exp(-0.5 * (distance * distance) / variance) / (std::sqrt(kTwoPi) * share);
}

double AtLeastUniform(double variance) {
    constexpr double kVarianceOfOneBin = 1.0 / 12.0;
    return variance > kVarianceOfOneBin ? variance : kVarianceOfOneBin;
}

// The last bin, counted from one end, at which the cumulative count does not yet exceed the limit; the end bin itself
// if even that exceeds it.
template <class BinOf>
int64_t LastWithin(std::span<const LONG> counts, int64_t limit, BinOf binOf) {
    int64_t sum = 0;
    int64_t i = 0;
    for (; i < NumberOfBins(counts); ++i) {
        sum += CountAt(counts, binOf(i));
        if (sum > limit) break;
    }
    return binOf(i > 0 ? i - 1 : 0);
}

// ------------------------------------------------------------------------------------------------- class entropy

// ln P - sum(p ln p) / P of a class that grows bin by bin. With the integer masses m = |N| p and their sum C this is
// ln C - sum(m ln m) / C: N drops out. A class of one bin has exactly 0, and two classes of the same bins, grown from
// opposite ends, have the same entropy: thresholds at the two outermost bins tie.
class ClassEntropy {
public:
    void Add(int64_t mass, double information) {  // information: m ln m
        mass_ += mass;
        information_.Add(information);
        const auto whole = static_cast<double>(mass_);
        value_ = mass_ == mass ? 0.0 : Log(whole) - information_.Value() / whole;
    }
    double Value() const { return value_; }  // 0 without bins

private:
    int64_t mass_ = 0;
    CompensatedSum information_;
    double value_ = 0.0;
};

}  // namespace

TailCut CutTails(std::span<const LONG> counts, double trimLeft, double trimRight) {
    if (!(trimLeft >= 0.0 && trimLeft < 1.0))
        throw Failure("IHistogram::AutoThresholdTrim: the amount trimmed on the left must be between 0.0 and 1.0.");
    if (!(trimRight >= 0.0 && trimRight < 1.0))
        throw Failure("IHistogram::AutoThresholdTrim: the amount trimmed on the right must be between 0.0 and 1.0.");
    if (!(trimLeft + trimRight < 1.0))
        throw Failure("IHistogram::AutoThresholdTrim: the total amount of trimming must be less than 1.0.");

    const int64_t n = NumberOfBins(counts);
    const int64_t total = TotalCount(counts);
    TailCut cut{0, n - 1};
    const int64_t fromLeft = CountsOfFraction(total, trimLeft);
    const int64_t fromRight = CountsOfFraction(total, trimRight);
    int64_t sum = 0;
    for (int64_t i = 0; i < n; ++i) {
        sum += CountAt(counts, i);
        if (sum > fromLeft) {
            cut.left = i;
            break;
        }
    }
    sum = 0;
    for (int64_t i = n - 1; i >= 0; --i) {
        sum += CountAt(counts, i);
        if (sum > fromRight) {
            cut.right = i;
            break;
        }
    }
    return cut;
}

int64_t BinOfGreatestSeparation(std::span<const LONG> counts, double leftProbability, double rightProbability) {
    const int64_t total = TotalCount(counts);
    SeparationOrder order(total, PowerSums<1>(counts)[1]);
    const double highest = 1.0 - rightProbability;
    // With non-empty classes, the lower one has a probability above 0 and at most 1.
    const bool unrestricted = leftProbability <= 0.0 && highest >= 1.0;

    Split split;
    int64_t first = 0;
    int64_t last = -1;  // of the best run; last < first: none yet
    for (int64_t t = 0; t < NumberOfBins(counts); ++t) {
        const int64_t count = CountAt(counts, t);
        if (count == 0) {  // same classes as at the bin before
            if (last >= first && last == t - 1) last = t;
            continue;
        }
        split.below += count;
        split.weighted.Add(t * count);
        if (split.below <= 0 || split.below >= total) continue;
        if (!unrestricted) {
            const double probability = static_cast<double>(split.below) / static_cast<double>(total);
            if (!(leftProbability <= probability && probability <= highest)) continue;
        }
        const int comparison = order.CompareWithBest(split);
        if (comparison > 0)
            first = last = t;
        else if (comparison == 0 && last >= first && last == t - 1)
            last = t;
    }
    return last >= first ? (first + last) / 2 : 0;
}

std::optional<int64_t> BinOfMinimum(std::span<const LONG> counts, TailCut cut) {
    if (cut.right < cut.left) return std::nullopt;
    const auto window = counts.subspan(static_cast<size_t>(cut.left), static_cast<size_t>(cut.right - cut.left) + 1);
    const PowerSums<2> sums(window, cut.left);
    if (sums[0].Sign() <= 0) return std::nullopt;
    const double mean = MeanOf(sums);
    const double w = 1.2 * std::sqrt(VarianceOf(sums));
    const double middle = static_cast<double>(cut.left + cut.right) * 0.5;
    const double d = (mean - middle) * 0.5;
    const int64_t low = std::max(Floor(mean - (d + w) + 0.5), cut.left);
    const int64_t high = std::min(Floor(mean + (w - d) + 0.5), cut.right);

    const int64_t start = Floor(mean + 0.5);
    int64_t bin = start;
    int64_t least = std::numeric_limits<int32_t>::max();
    const auto visit = [&](int64_t i) {
        if (CountAt(counts, i) < least) {
            least = CountAt(counts, i);
            bin = i;
        }
    };
    for (int64_t i = std::min(start, cut.right); i >= low; --i) visit(i);
    for (int64_t i = std::max(start + 1, cut.left); i <= high; ++i) visit(i);
    return bin;
}

std::optional<int64_t> BinOfBestClassification(std::span<const LONG> counts, double leftProbability,
                                               double rightProbability) {
    const int64_t n = NumberOfBins(counts);
    const int64_t total = TotalCount(counts);
    const PowerSums<2> sums(counts);
    const auto whole = static_cast<double>(total);
    const double mean = sums[1].ToDouble() / whole;
    const double variance = sums[2].ToDouble() / whole - mean * mean;
    const int64_t low = LastWithin(counts, CountsOfFraction(total, leftProbability), [](int64_t i) { return i; });
    const int64_t high =
        LastWithin(counts, CountsOfFraction(total, rightProbability), [n](int64_t i) { return n - 1 - i; });

    std::optional<int64_t> best;
    double bestScore = 0.0;
    int64_t below = 0;
    CompensatedSum sum1;
    CompensatedSum sum2;
    for (int64_t t = 0; t <= high; ++t) {
        const int64_t count = CountAt(counts, t);
        const auto x = static_cast<double>(t);
        const double weighted = static_cast<double>(count) * x;
        below += count;
        sum1.Add(weighted);
        sum2.Add(weighted * x);
        if (t < low || below <= 0) continue;
        const auto n1 = static_cast<double>(below);
        const double share = n1 / whole;
        const double q = 1.0 - share;
        if (!(q > 0.0)) continue;

        const double mean1 = sum1.Value() / n1;
        const double squares1 = sum2.Value() / n1 - mean1 * mean1;
        const double mean2 = (mean - mean1 * share) / q;
        const double toMean1 = mean1 - mean;
        const double toMean2 = mean2 - mean;
        const double squares2 = (variance - share * (squares1 + toMean1 * toMean1)) / q - toMean2 * toMean2;
        const double variance1 = AtLeastUniform(squares1);
        const double variance2 = AtLeastUniform(squares2);
        const double sigma1 = std::sqrt(variance1);
        const double sigma2 = std::sqrt(variance2);

        const double side1 = NormalDistribution((x - mean1) / sigma1);
        const double side2 = 1.0 - NormalDistribution((x - mean2) / sigma2);
        const double corrected1 = mean1 + TruncationCorrection(x - mean1, variance1, sigma1, side1);
        const double corrected2 = mean2 + TruncationCorrection(x - mean2, variance2, sigma2, side2);
        const double score = share * NormalDistribution((x - corrected1) / sigma1) +
                             q * (1.0 - NormalDistribution((x - corrected2) / sigma2));
        if (score > bestScore) {
            bestScore = score;
            best = t;
        }
    }
    return best;
}

int64_t BinOfGreatestEntropy(std::span<const LONG> counts, double leftProbability, double rightProbability,
                             std::vector<double>& scratch) {
    const int64_t total = TotalCount(counts);
    const int64_t sign = total < 0 ? -1 : 1;
    const size_t n = counts.size();
    scratch.resize(2 * n);
    const std::span<double> informations(scratch.data(), n);
    const std::span<double> entropiesAbove(scratch.data() + n, n);  // of the bins i..n-1

    ClassEntropy above;
    for (size_t i = n; i-- > 0;) {
        const int64_t mass = sign * counts[i];
        if (mass > 0) {
            informations[i] = static_cast<double>(mass) * Log(static_cast<double>(mass));
            above.Add(mass, informations[i]);
        }
        entropiesAbove[i] = above.Value();
    }

    int64_t best = 0;
    double bestValue = std::numeric_limits<double>::lowest();
    int64_t running = 0;
    ClassEntropy below;
    for (size_t i = 0; i < n; ++i) {
        running += counts[i];
        if (sign * counts[i] > 0) below.Add(sign * counts[i], informations[i]);
        const double probability = static_cast<double>(running) / static_cast<double>(total);
        if (probability < leftProbability || 1.0 - probability < rightProbability) continue;
        const double value = below.Value() + entropiesAbove[i];
        if (value > bestValue) {
            bestValue = value;
            best = static_cast<int64_t>(i);
        }
    }
    return best;
}

double ExponentialTail(std::span<const LONG> counts, double fraction) {
    return -Log(fraction) * std::max(MeanBin(counts), 1e-06);
}

double NormalDistribution(double z) {
    if (std::isnan(z)) return z;
    const double distance = std::fabs(z);
    double value = 0.5;
    if (distance <= 3.05) {
        const double steps = 20.0 * distance;
        const auto j = static_cast<size_t>(steps);
        value = kNormalTable[j] + (kNormalTable[j + 1] - kNormalTable[j]) * (steps - static_cast<double>(j));
    }
    return 0.5 + (z < 0.0 ? -value : value);
}

}  // namespace orlix
