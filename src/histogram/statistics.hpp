// Statistics of a histogram, in bin indices: n bins with the counts c[i], N their sum.
//
//  (1) Clients may write any 32-bit value as a count, negative ones included. Sums of counts are 64-bit and sums
//      weighted with powers of the bin are exact for any n, so nothing overflows and each result carries only the
//      rounding errors of its last few operations.
//  (2) Where a precondition N >= 1 is stated, the caller reports an empty histogram.
//  (3) Negative counts follow the formulas as written; a spread whose square comes out negative is 0.
#pragma once

#include <orlix/orlix.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace orlix {

// location = a bin + b.
struct BinMapping {
    double a;
    double b;

    double Location(double bin) const { return a * bin + b; }
    double Bin(double location) const { return (location - b) / a; }
};

// When the ends are whole numbers and the range holds exactly n of them (n >= 2), bin i is the value left + i. For any
// other range, bin i is the centre of the i-th of n equal intervals. Without bins, or for a range of one whole number,
// a = 1 and b = 0. A range with a non-finite end is of the second kind.
BinMapping MapBins(int64_t n, double left, double right);

inline int64_t NumberOfBins(std::span<const LONG> counts) { return static_cast<int64_t>(counts.size()); }
inline int64_t CountAt(std::span<const LONG> counts, int64_t bin) { return counts[static_cast<size_t>(bin)]; }

int64_t TotalCount(std::span<const LONG> counts);

// sum(i c[i]) / N. N >= 1.
double MeanBin(std::span<const LONG> counts);

// The first bin at which the cumulative count reaches half of N, compared as integers. N >= 1.
int64_t MedianBin(std::span<const LONG> counts);

struct MedianStatistics {
    int64_t median;
    int64_t deviation;  // in bins; at least 1 when n > 1
};
// The deviation is the first d = 1, 2, ... for which the bins median - d .. median + d hold at least half of N; 0 when
// n = 1. N >= 1.
MedianStatistics MedianAndDeviation(std::span<const LONG> counts);

// The lowest bin with the largest count; 0 without bins.
int64_t ModeBin(std::span<const LONG> counts);

LONG LargestCount(std::span<const LONG> counts);  // 0 when no count is positive

int64_t LowestOccupiedBin(std::span<const LONG> counts);   // n - 1 when no count is positive
int64_t HighestOccupiedBin(std::span<const LONG> counts);  // 0 when no count is positive

// Central moments about the mean: m2; m3 / m2^1.5; m4 / m2^2 - 3. The numerators and m2 are exact before they are
// rounded and divided. Skew and kurtosis are NaN for a histogram without spread. N >= 1.
double VarianceOfBins(std::span<const LONG> counts);
double SkewOfBins(std::span<const LONG> counts);
double KurtosisOfBins(std::span<const LONG> counts);

// -sum(p ln p) over the bins with p = c / N > 0, in nats. N >= 1.
double EntropyOfBins(std::span<const LONG> counts);

// trunc(total fraction + 0.5), the number of counts in a fraction of the total; 0 for NaN. Limited to -2^61 (it can be
// subtracted from a total twice within 64 bits) and 2^62 (more than any total).
int64_t CountsOfFraction(int64_t total, double fraction);

// Removes k = CountsOfFraction(N, fraction) counts from each end: bins are emptied until the cumulative count exceeds
// k, and the bin where it does keeps the excess. The upper end is trimmed second, from what the lower one left.
// Saturates at the limits of 32 bits (a negative k adds counts). N >= 1.
void TrimTails(std::span<LONG> counts, double fraction);

struct TrimmedStatistics {
    double mean;
    double deviation;
};
// The mean is that of the counts that TrimTails would leave. The deviation is that of the winsorized counts divided by
// 1 - 2 fraction: counts below the lowest and above the highest remaining bin are dropped, and each of these two bins
// gets k more. `nullopt` when the fraction is 0.5 or more or NaN, or when less than one count remains. N >= 1.
std::optional<TrimmedStatistics> StatisticsWithoutTails(std::span<const LONG> counts, double fraction);

// Binomial kernel of width 3, 5, 7 or 9, in place; every new count is computed from old ones only: the sum of
// binomial(width - 1, j) c[i + j - h] divided by 2^(width - 1), rounded toward 0. Border: outside bins mirror the
// inside without repeating the end bin. Returns false and changes nothing when n <= h = (width - 1) / 2. The scratch
// holds the extended copy.
bool SmoothCounts(std::span<LONG> counts, int width, std::vector<LONG>& scratch);

// Pyramid of pair averages. A level of m values has its coefficients at h + j, h = (m + 1) / 2: smooth is the average
// of the values 2j and 2j + 1, rounded toward 0, and detail is the average minus the first of them. An odd last value
// is passed on unchanged. The averages form the next level; the last remaining one is entry 0 of both. All n entries of
// detail and smooth are written; averages has (n + 1) / 2 entries and is scratch. Details saturate at 32 bits (counts
// of opposite signs).
void DecomposeCounts(std::span<const LONG> counts, std::span<LONG> detail, std::span<LONG> smooth,
                     std::span<LONG> averages);

}  // namespace orlix
