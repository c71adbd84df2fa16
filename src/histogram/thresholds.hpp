// Automatic thresholds of a histogram, in bin indices; the notes of statistics.hpp apply. A threshold bin belongs to
// the lower class, unless stated. All scans are linear in n.
#pragma once

#include <orlix/orlix.h>

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace orlix {

struct TailCut {
    int64_t left;
    int64_t right;
};
// The first bin from each end at which the cumulative count exceeds CountsOfFraction(N, its fraction); 0 and n - 1 when
// it never does, so also for an empty histogram. Failures, in this order (NaN fails too):
//  "IHistogram::AutoThresholdTrim: the amount trimmed on the left must be between 0.0 and 1.0."  unless 0 <= left < 1
//  "IHistogram::AutoThresholdTrim: the amount trimmed on the right must be between 0.0 and 1.0." unless 0 <= right < 1
//  "IHistogram::AutoThresholdTrim: the total amount of trimming must be less than 1.0."          unless their sum < 1
TailCut CutTails(std::span<const LONG> counts, double trimLeft, double trimRight);

// The bin t with the greatest variance between the classes 0..t and t+1..n-1: sigma^2 = (w muT - mu)^2 / (w (1 - w)),
// where w and mu are the sums of c and i c over 0..t divided by N. Candidates: leftProbability <= w <=
// 1 - rightProbability (none for NaN) and 0 < w < 1. A run of neighbouring bins with equal maxima gives its middle,
// rounded down; 0 when no candidate has a positive variance. Comparisons of variances, ties included, are made in
// integers wherever rounding could decide. N >= 1.
int64_t BinOfGreatestSeparation(std::span<const LONG> counts, double leftProbability, double rightProbability);

// The bin with the lowest count in a window of 1.2 standard deviations about the point halfway between the mean and the
// middle of the bins cut.left..cut.right. Scans down from the mean, then up; the first of equal bins wins. The scans
// stay within the cut, as does the mean unless counts are negative. `nullopt` when the cut holds less than one count.
std::optional<int64_t> BinOfMinimum(std::span<const LONG> counts, TailCut cut);

// The threshold with the greatest probability of correct classification under two normal distributions; the lowest of
// equal ones. The moments of the classes are corrected for their truncation, both means upwards; variances are at least
// 1/12. Candidates lie between the last bins at which the cumulative count from either end does not exceed
// CountsOfFraction(N, its probability). A correction that would divide by a Phi or 1 - Phi of 0 is omitted (only
// negative counts lead there). `nullopt` when no candidate scores above 0. N >= 1.
std::optional<int64_t> BinOfBestClassification(std::span<const LONG> counts, double leftProbability,
                                               double rightProbability);

// The threshold with the greatest sum of the entropies of the classes 0..t and t..n-1 (t counts in both), each
// ln P - sum(p ln p) / P over the p > 0 of the class; the lowest of equal ones, exactly for mirrored classes. Bins with
// w < leftProbability or 1 - w < rightProbability are skipped; NaN skips nothing. 0 without a candidate. Scratch: 2 n
// doubles. N != 0; a negative N reverses the signs of the counts.
int64_t BinOfGreatestEntropy(std::span<const LONG> counts, double leftProbability, double rightProbability,
                             std::vector<double>& scratch);

// -ln(fraction) times the mean bin, where the mean is at least 1e-06: the part of an exponential distribution beyond
// the result is that fraction. Infinite for 0. 0 <= fraction <= 1, N >= 1.
double ExponentialTail(std::span<const LONG> counts, double fraction);

// The standard normal distribution function, interpolated linearly in a table of five decimals and steps of 0.05; 1
// from 3.05 up, 0 from -3.05 down. NaN gives NaN.
double NormalDistribution(double z);

}  // namespace orlix
