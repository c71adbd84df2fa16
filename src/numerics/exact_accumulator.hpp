// Sums of doubles without rounding.
#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>

namespace orlix {

// The exact sum of up to 2^62 finite doubles >= 0, in any order; sums can be compared. It is a fixed-point number over
// the whole range of double, in digits of 32 bits with deferred carries (U. Kulisch, 1971).
class ExactAccumulator {
public:
    void Add(double term) { Add(term, 1); }
    // Adds term times, times < 2^32.
    void Add(double term, uint64_t times);

    std::strong_ordering operator<=>(const ExactAccumulator& other) const;
    bool operator==(const ExactAccumulator& other) const { return std::is_eq(*this <=> other); }

private:
    // Bits from the denormals' last one (2^-1074) to those of the largest double (below 2^1024) and of 2^64 times that.
    static constexpr size_t kDigits = (1074 + 1024 + 64) / 32 + 3;

    void AddBits(uint64_t bits, uint32_t place);
    std::array<uint64_t, kDigits> Normal() const;

    std::array<uint64_t, kDigits> digits_ = {};  // lowest first
    uint32_t waiting_ = 0;                       // additions since carries were last propagated
};

}  // namespace orlix
