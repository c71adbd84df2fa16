// Automatic thresholds of a histogram, on bin indices; the notes of statistics.hpp hold. A threshold bin belongs to the
// lower class, unless stated. All scans are linear in n.
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
// The first bin from each end at which the counts so far exceed CountsOfFraction(N, its fraction); 0 and n - 1 where
// they never do, so also for an empty histogram. Failures, in this order (NaN fails too):
//   "IHistogram::AutoThresholdTrim: the amount trimmed on the left must be between 0.0 and 1.0."   unless 0 <= left < 1
//   "IHistogram::AutoThresholdTrim: the amount trimmed on the right must be between 0.0 and 1.0."  unless 0 <= right <
//   1
//   "IHistogram::AutoThresholdTrim: the total amount of trimming must be less than 1.0."           unless their sum < 1
TailCut CutTails(std::span<const LONG> counts, double trimLeft, double trimRight);

// Greatest variance between the classes 0..t and t+1..n-1, sigma^2 = (w muT - mu)^2 / (w (1 - w)) with w and mu the
// quotients of the sums of c and i c over 0..t by N. Candidates: leftProbability <= w <= 1 - rightProbability (so none
// for NaN) and 0 < w < 1. Of a run of neighbouring bins with equal maxima the middle one, rounded down; 0 without a
// candidate of positive variance. Which of two bins has the greater variance, and whether they are equal, is decided on
// integers wherever rounding could decide. N >= 1.
int64_t BinOfGreatestSeparation(std::span<const LONG> counts, double leftProbability, double rightProbability);

// The emptiest bin in a window of 1.2 standard deviations about the point halfway between the mean and the middle of
// the bins cut.left..cut.right, scanned from the mean downwards, then upwards; the first of equal ones. The scans stay
// within the cut, where also the mean lies unless counts are negative. None when the cut holds less than one count.
std::optional<int64_t> BinOfMinimum(std::span<const LONG> counts, TailCut cut);

// Greatest probability of right classification under two normal distributions; the lowest of equal ones. The moments of
// the classes are corrected for their truncation, both means upwards; variances are at least 1/12. Candidates lie
// between the bins at which the counts from either end still do not exceed CountsOfFraction(N, its probability). A
// correction whose divisor Phi or 1 - Phi is 0 is left out (only negative counts lead there). None when no candidate
// scores above 0. N >= 1.
std::optional<int64_t> BinOfBestClassification(std::span<const LONG> counts, double leftProbability,
                                               double rightProbability);

// Greatest sum of the entropies of the classes 0..t and t..n-1 (t counts in both), ln P - sum(p ln p) / P over the p >
// 0 of the class; the lowest of equal ones, exact for mirrored classes. Passed over: w < leftProbability, 1 - w <
// rightProbability; NaN passes over nothing. 0 without a candidate. Scratch: 2 n doubles. N != 0; a negative N turns
// the signs around.
int64_t BinOfGreatestEntropy(std::span<const LONG> counts, double leftProbability, double rightProbability,
                             std::vector<double>& scratch);

// -ln(fraction) times the mean bin, the mean being at least 1e-06: what lies beyond is that fraction of an exponential
// distribution. Infinite for 0. 0 <= fraction <= 1, N >= 1.
double ExponentialTail(std::span<const LONG> counts, double fraction);

// The standard normal distribution function by linear interpolation in a table of five decimals and steps of 0.05; 1
// from 3.05 on, 0 from -3.05 down. NaN gives NaN.
double NormalDistribution(double z);

}  // namespace orlix
