// Integers wide enough for exact power sums and moments of any histogram.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace orlix {

// A signed integer of 512 bits, two's complement. Results beyond that wrap; the sums of a histogram stay far below:
//  (1) counts are below 2^31 and so are indices: the k-th power sum over bins stays below 2^(62 + 31 k);
//  (2) the widest product made of them, in the fourth central moment or when two variances are compared, below 2^436.
// Its operations are not inline: unrolled loops over the limbs in every formula would cost seconds to compile.
class WideInteger {
public:
    WideInteger(int64_t value = 0) {
        limbs_.fill(value < 0 ? ~uint32_t{0} : 0);
        limbs_[0] = static_cast<uint32_t>(value);
        limbs_[1] = static_cast<uint32_t>(value >> 32);
    }

    WideInteger& operator+=(const WideInteger& other);
    WideInteger& operator-=(const WideInteger& other);

    // Adds factor times the other.
    void AddMultiple(const WideInteger& other, uint32_t factor);

    friend WideInteger operator+(WideInteger a, const WideInteger& b) { return a += b; }
    friend WideInteger operator-(WideInteger a, const WideInteger& b) { return a -= b; }
    friend WideInteger operator*(const WideInteger& a, const WideInteger& b);

    // -1, 0 or 1.
    int Sign() const;

    // The nearest double; of two equally near ones the even one.
    double ToDouble() const;

private:
    static constexpr size_t kLimbs = 16;
    std::array<uint32_t, kLimbs> limbs_;  // lowest first
};

}  // namespace orlix
