// Exact sums over the counts of a histogram.
#pragma once

#include <orlix/orlix.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "numerics/wide_integer.hpp"

namespace orlix {

// Sums of count * bin^k for k = 0..Highest, exact for any counts and any number of bins.
template <size_t Highest>
class PowerSums {
public:
    PowerSums() = default;

    // Over the bins first, first + 1, ... that have the given counts.
    explicit PowerSums(std::span<const LONG> counts, int64_t first = 0) {
        // From the last block to the first; each is summed about its own first bin, in 64 bits.
        size_t begin = counts.size();
        while (begin > 0) {
            const size_t end = begin;
            begin = (end - 1) / kBlock * kBlock;
            if (end < counts.size()) MoveOrigin(static_cast<uint32_t>(end - begin));
            AddBlock(counts.subspan(begin, end - begin));
        }
        MoveOrigin(static_cast<uint32_t>(first));
    }

    // More counts at a bin.
    void Add(int64_t bin, int64_t count) {
        WideInteger term = count;
        for (WideInteger& sum : sums_) {
            sum += term;
            term = term * bin;
        }
    }

    const WideInteger& operator[](size_t power) const { return sums_[power]; }

private:
    // The largest block whose sums stay within 63 bits: 2^31 times the sum of bin^Highest over the block.
    static_assert(Highest >= 1 && Highest <= 4);
    static constexpr size_t kBlock = std::array<size_t, 5>{0, 65536, 1024, 256, 64}[Highest];

    void AddBlock(std::span<const LONG> counts) {
        std::array<int64_t, Highest + 1> block{};
        for (size_t i = 0; i < counts.size(); ++i) {
            int64_t term = counts[i];
            for (size_t k = 0; k < Highest; ++k) {
                block[k] += term;
                term *= static_cast<int64_t>(i);
            }
            block[Highest] += term;
        }
        for (size_t k = 0; k <= Highest; ++k) sums_[k] += block[k];
    }

    // Counts the bins from an origin that lies the distance below: expands (bin + distance)^k in the manner of Horner.
    void MoveOrigin(uint32_t distance) {
        if (distance == 0) return;
        for (size_t pass = 1; pass <= Highest; ++pass)
            for (size_t k = Highest; k >= pass; --k) sums_[k].AddMultiple(sums_[k - 1], distance);
    }

    std::array<WideInteger, Highest + 1> sums_;
};

inline double Quotient(const WideInteger& a, const WideInteger& b) { return a.ToDouble() / b.ToDouble(); }

// sum(i c) / N. The sum of the counts is not 0.
template <size_t Highest>
double MeanOf(const PowerSums<Highest>& sums) {
    return Quotient(sums[1], sums[0]);
}

// N^2 times the variance, N sum(i^2 c) - sum(i c)^2, as an integer.
template <size_t Highest>
WideInteger ScaledVariance(const PowerSums<Highest>& sums) {
    return sums[0] * sums[2] - sums[1] * sums[1];
}

// The variance of the bins, never below 0. The sum of the counts is not 0.
template <size_t Highest>
double VarianceOf(const PowerSums<Highest>& sums) {
    return std::max(0.0, Quotient(ScaledVariance(sums), sums[0] * sums[0]));
}

}  // namespace orlix
