#include "histogram/statistics.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "numerics/compensated_sum.hpp"
#include "numerics/elementary.hpp"
#include "numerics/power_sums.hpp"

namespace orlix {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

LONG Saturated(int64_t value) {
    return static_cast<LONG>(
        std::clamp<int64_t>(value, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()));
}

// p ln p for p = count / total, 0 < count. Near p = 1 the logarithm is computed from the exact complement.
double Information(int64_t count, int64_t total) {
    const auto whole = static_cast<double>(total);
    const double p = static_cast<double>(count) / whole;
    if (count <= total / 2) return p * Log(p);
    const double x = static_cast<double>(count - total) / whole;
    const double u = 1.0 + x;
    return u == 1.0 ? x : p * (Log(u) * (x / (u - 1.0)));
}

// The counts left after trimming: all those of the bins between low and high, and atLow and atHigh in these two bins.
struct Trimmed {
    int64_t removed;
    int64_t low;
    int64_t high;
    int64_t atLow;
    int64_t atHigh;  // equals atLow when low == high
    bool nothing;    // all bins are empty
};

Trimmed WithoutTails(std::span<const LONG> counts, double fraction) {
    const int64_t n = NumberOfBins(counts);
    Trimmed t{CountsOfFraction(TotalCount(counts), fraction), 0, 0, 0, 0, true};
    int64_t sum = 0;
    for (int64_t i = 0; i < n; ++i) {
        sum += CountAt(counts, i);
        if (sum > t.removed) {
            t.low = i;
            t.atLow = sum - t.removed;
            t.nothing = false;
            break;
        }
    }
    if (t.nothing) return t;
    sum = 0;
    for (int64_t i = n - 1; i >= t.low; --i) {
        sum += i == t.low ? t.atLow : CountAt(counts, i);
        if (sum > t.removed) {
            t.high = i;
            t.atHigh = sum - t.removed;
            if (i == t.low) t.atLow = t.atHigh;
            return t;
        }
    }
    t.nothing = true;
    return t;
}

template <int Width>
void Smooth(std::span<LONG> counts, std::vector<LONG>& scratch) {
    constexpr size_t h = (Width - 1) / 2;
    constexpr auto kWeights = [] {  // row Width - 1 of Pascal's triangle
        std::array<int32_t, Width> row{};
        row[0] = 1;
        for (int r = 1; r < Width; ++r)
            for (int j = r; j > 0; --j) row[static_cast<size_t>(j)] += row[static_cast<size_t>(j - 1)];
        return row;
    }();

    const size_t n = counts.size();
    scratch.resize(n + 2 * h);
    std::copy(counts.begin(), counts.end(), scratch.begin() + h);
    for (size_t j = 1; j <= h; ++j) {
        scratch[h - j] = counts[j];
        scratch[h + n - 1 + j] = counts[n - 1 - j];
    }
    for (size_t i = 0; i < n; ++i) {
        int64_t sum = 0;
        for (size_t j = 0; j < Width; ++j) sum += int64_t{kWeights[j]} * scratch[i + j];
        counts[i] = static_cast<LONG>(sum / (int64_t{1} << (Width - 1)));
    }
}

}  // namespace

BinMapping MapBins(int64_t n, double left, double right) {
    const auto bins = static_cast<double>(n);
    const bool values = left == std::trunc(left) && right == std::trunc(right) && right - left + 1.0 == bins;
    if (values) {
        if (n < 2) return {1.0, 0.0};
        return {(right - left) / (bins - 1.0), left};
    }
    if (n < 1) return {1.0, 0.0};
    const double a = (right - left) / bins;
    return {a, left + 0.5 * a};
}

int64_t TotalCount(std::span<const LONG> counts) {
    int64_t total = 0;
    for (const LONG count : counts) total += count;
    return total;
}

double MeanBin(std::span<const LONG> counts) { return MeanOf(PowerSums<1>(counts)); }

int64_t MedianBin(std::span<const LONG> counts) {
    const int64_t total = TotalCount(counts);
    int64_t sum = 0;
    for (int64_t i = 0; i < NumberOfBins(counts); ++i) {
        sum += CountAt(counts, i);
        if (2 * sum >= total) return i;
    }
    return 0;
}

MedianStatistics MedianAndDeviation(std::span<const LONG> counts) {
    const int64_t n = NumberOfBins(counts);
    const int64_t total = TotalCount(counts);
    const int64_t m = MedianBin(counts);
    int64_t sum = CountAt(counts, m);
    for (int64_t d = 1; d < n; ++d) {
        if (m - d >= 0) sum += CountAt(counts, m - d);
        if (m + d < n) sum += CountAt(counts, m + d);
        if (2 * sum >= total) return {m, d};
    }
    return {m, 0};
}

int64_t ModeBin(std::span<const LONG> counts) {
    return std::max_element(counts.begin(), counts.end()) - counts.begin();
}

LONG LargestCount(std::span<const LONG> counts) {
    LONG largest = 0;
    for (const LONG count : counts) largest = std::max(largest, count);
    return largest;
}

int64_t LowestOccupiedBin(std::span<const LONG> counts) {
    const int64_t n = NumberOfBins(counts);
    for (int64_t i = 0; i < n; ++i)
        if (CountAt(counts, i) > 0) return i;
    return n - 1;
}

int64_t HighestOccupiedBin(std::span<const LONG> counts) {
    for (int64_t i = NumberOfBins(counts) - 1; i >= 0; --i)
        if (CountAt(counts, i) > 0) return i;
    return 0;
}

double VarianceOfBins(std::span<const LONG> counts) { return VarianceOf(PowerSums<2>(counts)); }

double SkewOfBins(std::span<const LONG> counts) {
    const PowerSums<3> s(counts);
    const double m2 = ScaledVariance(s).ToDouble();
    if (!(m2 > 0.0)) return kNaN;
    // N^3 m3 = N^2 S3 - 3 N S1 S2 + 2 S1^3
    const WideInteger m3 = s[0] * s[0] * s[3] - s[0] * s[1] * s[2] * 3 + s[1] * s[1] * s[1] * 2;
    return m3.ToDouble() / (m2 * std::sqrt(m2));
}

double KurtosisOfBins(std::span<const LONG> counts) {
    const PowerSums<4> s(counts);
    const WideInteger m2 = ScaledVariance(s);
    if (m2.Sign() <= 0) return kNaN;
    // N^4 m4 = N^3 S4 - 4 N^2 S1 S3 + 6 N S1^2 S2 - 3 S1^4; 3 (N^2 m2)^2 is subtracted before anything is rounded.
    const WideInteger square = s[1] * s[1];
    const WideInteger m4 = s[0] * s[0] * (s[0] * s[4] - s[1] * s[3] * 4) + square * (s[0] * s[2] * 6 - square * 3);
    const WideInteger m2Squared = m2 * m2;
    return Quotient(m4 - m2Squared * 3, m2Squared);
}

double EntropyOfBins(std::span<const LONG> counts) {
    const int64_t total = TotalCount(counts);
    CompensatedSum sum;
    for (const LONG count : counts)
        if (count > 0) sum.Add(-Information(count, total));
    return sum.Value();
}

int64_t CountsOfFraction(int64_t total, double fraction) {
    const double counts = static_cast<double>(total) * fraction + 0.5;
    if (std::isnan(counts)) return 0;
    return static_cast<int64_t>(std::clamp(counts, -0x1p61, 0x1p62));
}

void TrimTails(std::span<LONG> counts, double fraction) {
    const Trimmed t = WithoutTails(counts, fraction);
    if (t.nothing) {
        std::ranges::fill(counts, 0);
        return;
    }
    const auto low = static_cast<size_t>(t.low);
    const auto high = static_cast<size_t>(t.high);
    std::ranges::fill(counts.first(low), 0);
    std::ranges::fill(counts.subspan(high + 1), 0);
    counts[low] = Saturated(t.atLow);
    counts[high] = Saturated(t.atHigh);
}

std::optional<TrimmedStatistics> StatisticsWithoutTails(std::span<const LONG> counts, double fraction) {
    if (!(fraction < 0.5)) return std::nullopt;
    const Trimmed t = WithoutTails(counts, fraction);
    if (t.nothing) return std::nullopt;
    const auto low = static_cast<size_t>(t.low);
    const auto length = static_cast<size_t>(t.high - t.low) + 1;

    PowerSums<1> trimmed;
    if (length > 2) trimmed = PowerSums<1>(counts.subspan(low + 1, length - 2), t.low + 1);
    trimmed.Add(t.low, t.atLow);
    if (t.high > t.low) trimmed.Add(t.high, t.atHigh);

    PowerSums<2> winsorized(counts.subspan(low, length), t.low);
    winsorized.Add(t.low, t.removed);
    winsorized.Add(t.high, t.removed);

    if (trimmed[0].Sign() <= 0 || winsorized[0].Sign() <= 0) return std::nullopt;
    return TrimmedStatistics{MeanOf(trimmed), std::sqrt(VarianceOf(winsorized)) / (1.0 - 2.0 * fraction)};
}

bool SmoothCounts(std::span<LONG> counts, int width, std::vector<LONG>& scratch) {
    if (counts.size() <= static_cast<size_t>(width - 1) / 2) return false;
    switch (width) {
        case 3:
            Smooth<3>(counts, scratch);
            return true;
        case 5:
            Smooth<5>(counts, scratch);
            return true;
        case 7:
            Smooth<7>(counts, scratch);
            return true;
        case 9:
            Smooth<9>(counts, scratch);
            return true;
        default:
            return false;
    }
}

void DecomposeCounts(std::span<const LONG> counts, std::span<LONG> detail, std::span<LONG> smooth,
                     std::span<LONG> averages) {
    std::span<const LONG> level = counts;
    while (level.size() >= 2) {
        const size_t m = level.size();
        const size_t h = (m + 1) / 2;
        // A level may itself lie in `averages`: entry j is written after entries 2j and 2j + 1 have been read.
        for (size_t j = 0; j < m / 2; ++j) {
            const int64_t first = level[2 * j];
            const int64_t average = (first + level[2 * j + 1]) / 2;
            averages[j] = static_cast<LONG>(average);
            smooth[h + j] = static_cast<LONG>(average);
            detail[h + j] = Saturated(average - first);
        }
        if (m % 2) averages[h - 1] = level[m - 1];
        level = averages.first(h);
    }
    if (!level.empty()) smooth[0] = detail[0] = level[0];
}

}  // namespace orlix
