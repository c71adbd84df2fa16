// Random counts for the tests of this folder.
#pragma once

#include <orlix/orlix.h>

#include "support/special_numbers.hpp"
#include "support/testing.hpp"

namespace orlix {

using Counts = std::vector<LONG>;

class Random {
public:
    explicit Random(uint64_t seed) : state_(seed) {}
    // 0 .. below - 1
    int64_t Below(int64_t below) {
        state_ = state_ * 6364136223846793005u + 1442695040888963407u;
        return static_cast<int64_t>((state_ >> 33) % static_cast<uint64_t>(below));
    }

private:
    uint64_t state_;
};

// Typical shapes: flat noise, mostly empty bins, two bumps with an empty or a shallow valley, one bump. Holds at least
// one count.
inline Counts SomeCounts(Random& random, size_t n, LONG most) {
    Counts counts(n, 0);
    const int64_t shape = random.Below(4);
    const auto bins = static_cast<double>(n);
    for (size_t i = 0; i < n; ++i) {
        const double x = (static_cast<double>(i) + 0.5) / bins;
        double height = 1.0;
        if (shape == 1) height = random.Below(4) == 0 ? 1.0 : 0.0;
        if (shape == 2) height = std::exp(-80 * (x - 0.3) * (x - 0.3)) + 0.4 * std::exp(-60 * (x - 0.8) * (x - 0.8));
        if (shape == 3) height = std::exp(-20 * (x - 0.4) * (x - 0.4));
        counts[i] = static_cast<LONG>(height * static_cast<double>(random.Below(int64_t{most} + 1)));
    }
    counts[static_cast<size_t>(random.Below(static_cast<int64_t>(n)))] += 1;
    return counts;
}

// The last digits may differ by a few roundings.
inline void ExpectClose(long double expected, double value) {
    EXPECT_NEAR(static_cast<double>(expected), value, 1e-14 * (1.0 + static_cast<double>(std::fabs(expected))));
}

}  // namespace orlix
