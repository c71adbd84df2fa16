// Statistics of a histogram, on bin indices. n bins, c[i] counts, N their sum.
//
//  (1) Counts are what a client may write: any 32-bit value, negative ones included. Sums of counts are 64-bit, sums
//      weighted with powers of the bin are exact for any n, so nothing overflows and each result carries only the
//      roundings of its last few operations.
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

// A range whose ends are whole numbers and which holds just n of them: bin i is the value left + i (n >= 2). Any other:
// bin i is the middle of the i-th of n equal intervals. Without bins, and for a range of one whole number: a = 1, b =
// 0. Ends that are not finite make a range of the second kind.
BinMapping MapBins(int64_t n, double left, double right);

inline int64_t NumberOfBins(std::span<const LONG> counts) { return static_cast<int64_t>(counts.size()); }
inline int64_t CountAt(std::span<const LONG> counts, int64_t bin) { return counts[static_cast<size_t>(bin)]; }

int64_t TotalCount(std::span<const LONG> counts);

// sum(i c[i]) / N. N >= 1.
double MeanBin(std::span<const LONG> counts);

// The first bin at which the counts so far reach half of N, compared as integers. N >= 1.
int64_t MedianBin(std::span<const LONG> counts);

struct MedianStatistics {
    int64_t median;
    int64_t deviation;  // in bins; at least 1 when n > 1
};
// The deviation is the first d = 1, 2, ... for which the bins median - d .. median + d hold half of N; 0 when n = 1. N
// >= 1.
MedianStatistics MedianAndDeviation(std::span<const LONG> counts);

// The lowest bin of the largest count; 0 without bins.
int64_t ModeBin(std::span<const LONG> counts);

LONG LargestCount(std::span<const LONG> counts);  // 0 when no count is above 0

int64_t LowestOccupiedBin(std::span<const LONG> counts);   // n - 1 when no count is above 0
int64_t HighestOccupiedBin(std::span<const LONG> counts);  // 0 when no count is above 0

// Central moments about the mean: m2; m3 / m2^1.5; m4 / m2^2 - 3. The numerators and m2 are exact before they are
// rounded and divided. Skew and kurtosis of a histogram without spread are NaN. N >= 1.
double VarianceOfBins(std::span<const LONG> counts);
double SkewOfBins(std::span<const LONG> counts);
double KurtosisOfBins(std::span<const LONG> counts);

// -sum(p ln p) over the bins with p = c / N > 0, in nats. N >= 1.
double EntropyOfBins(std::span<const LONG> counts);

// trunc(total fraction + 0.5), the number of counts that a fraction stands for; NaN stands for none. Limited to -2^61
// (what it is then taken from, twice, stays within 64 bits) and 2^62 (more than any total).
int64_t CountsOfFraction(int64_t total, double fraction);

// Removes k = CountsOfFraction(N, fraction) counts from each end: bins are emptied until the counts so far exceed k,
// and that bin keeps the excess; the upper end works on what the lower end has left. Saturates at the ends of 32 bits
// (a negative k adds counts). N >= 1.
void TrimTails(std::span<LONG> counts, double fraction);

struct TrimmedStatistics {
    double mean;
    double deviation;
};
// Mean of what TrimTails would leave. Deviation of the winsorized counts over 1 - 2 fraction: those below and above the
// lowest and highest bin left go, and each of these two bins gets k more. None when the fraction is 0.5 or more or NaN,
// or when fewer than one count is left. N >= 1.
std::optional<TrimmedStatistics> StatisticsWithoutTails(std::span<const LONG> counts, double fraction);

// Binomial kernel of width 3, 5, 7 or 9 in place, each new count from old ones only: sum of binomial(width - 1, j) c[i
// + j - h] over 2^(width - 1), rounded toward 0. Border: bins outside mirror those inside without repeating the end
// bin. False, and nothing changed, when n <= h = (width - 1) / 2. The scratch holds the extended copy.
bool SmoothCounts(std::span<LONG> counts, int width, std::vector<LONG>& scratch);

// Pyramid of pair averages. A level of m values has its coefficients at h + j, h = (m + 1) / 2: smooth = the average of
// the values 2j and 2j + 1, rounded toward 0, detail = the average minus the first of them. An odd last value passes on
// as it is. The averages are the next level; the one that remains at last is entry 0 of both. detail and smooth have n
// entries, which are all written; averages has (n + 1) / 2 and is scratch. Details saturate at 32 bits (from counts of
// opposite signs).
void DecomposeCounts(std::span<const LONG> counts, std::span<LONG> detail, std::span<LONG> smooth,
                     std::span<LONG> averages);

}  // namespace orlix
