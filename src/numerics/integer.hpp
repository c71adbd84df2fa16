// Whole numbers of any size, for results that are to be decided and computed without rounding.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "numerics/double_pair.hpp"

namespace orlix {

// Sign and magnitude; takes the memory that the number needs.
class Integer {
public:
    Integer(int64_t value = 0);
    // value 2^-exponent, which is to be whole.
    static Integer Scaled(double value, int exponent);

    bool IsZero() const { return limbs_.empty(); }

    friend Integer operator+(const Integer& a, const Integer& b) { return Sum(a, b, b.negative_); }
    friend Integer operator-(const Integer& a, const Integer& b) { return Sum(a, b, !b.negative_); }
    friend Integer operator*(const Integer& a, const Integer& b);

    // This divided by a divisor that leaves no rest (T. Jebelean, 1993: from the lowest digit up).
    Integer DividedExactly(const Integer& divisor) const;

    // This = result 2^exponent but for some 2^-105 of it; 1 <= |result| < 2^32, or 0.
    DoublePair ToPair(int& exponent) const;

private:
    static Integer Sum(const Integer& a, const Integer& b, bool negativeB);
    void ShiftRight(size_t bits);
    void DropLeadingZeros();

    std::vector<uint32_t> limbs_;  // of the magnitude, lowest first; the last one is not 0
    bool negative_ = false;
};

}  // namespace orlix
