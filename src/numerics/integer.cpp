#include "numerics/integer.hpp"

#include <bit>
#include <cmath>

namespace orlix {
namespace {

int Compare(const std::vector<uint32_t>& a, const std::vector<uint32_t>& b) {
    if (a.size() != b.size()) return a.size() < b.size() ? -1 : 1;
    for (size_t i = a.size(); i-- > 0;)
        if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
    return 0;
}

// a -= b times factor, from limb `at` of a on; limbs beyond those of a are dropped.
void SubtractMultiple(std::vector<uint32_t>& a, size_t at, const std::vector<uint32_t>& b, uint32_t factor) {
    uint64_t carry = 0;
    for (size_t i = 0; at + i < a.size() && (i < b.size() || carry != 0); ++i) {
        carry += i < b.size() ? uint64_t{b[i]} * factor : 0;
        const auto low = static_cast<uint32_t>(carry);
        carry >>= 32;
        if (a[at + i] < low) ++carry;
        a[at + i] -= low;
    }
}

}  // namespace

Integer::Integer(int64_t value) : negative_(value < 0) {
    const uint64_t magnitude = negative_ ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
    limbs_ = {static_cast<uint32_t>(magnitude), static_cast<uint32_t>(magnitude >> 32)};
    DropLeadingZeros();
}

Integer Integer::Scaled(double value, int exponent) {
    int ofValue = 0;
    const auto bits = static_cast<int64_t>(std::ldexp(std::frexp(value, &ofValue), 53));
    Integer result(bits);
    const int shift = ofValue - 53 - exponent;
    if (shift < 0) {
        result.ShiftRight(static_cast<size_t>(-shift));
        return result;
    }
    Integer power;
    power.limbs_.assign(static_cast<size_t>(shift) / 32 + 1, 0);
    power.limbs_.back() = uint32_t{1} << (shift % 32);
    return result * power;
}

void Integer::DropLeadingZeros() {
    while (!limbs_.empty() && limbs_.back() == 0) limbs_.pop_back();
    if (limbs_.empty()) negative_ = false;
}

void Integer::ShiftRight(size_t bits) {
    const size_t whole = bits / 32, rest = bits % 32;
    if (whole >= limbs_.size()) {
        limbs_.clear();
    } else {
        limbs_.erase(limbs_.begin(), limbs_.begin() + static_cast<std::ptrdiff_t>(whole));
        if (rest > 0)
            for (size_t i = 0; i < limbs_.size(); ++i)
                limbs_[i] = limbs_[i] >> rest | (i + 1 < limbs_.size() ? limbs_[i + 1] << (32 - rest) : 0);
    }
    DropLeadingZeros();
}

Integer Integer::Sum(const Integer& a, const Integer& b, bool negativeB) {
    const bool aIsLarger = Compare(a.limbs_, b.limbs_) >= 0;
    const Integer& larger = aIsLarger ? a : b;
    const Integer& smaller = aIsLarger ? b : a;
    Integer sum = larger;
    sum.negative_ = aIsLarger ? a.negative_ : negativeB;
    if (a.negative_ != negativeB) {
        SubtractMultiple(sum.limbs_, 0, smaller.limbs_, 1);
    } else {
        uint64_t carry = 0;
        for (size_t i = 0; i < sum.limbs_.size(); ++i, carry >>= 32) {
            carry += uint64_t{sum.limbs_[i]} + (i < smaller.limbs_.size() ? smaller.limbs_[i] : 0);
            sum.limbs_[i] = static_cast<uint32_t>(carry);
        }
        sum.limbs_.push_back(static_cast<uint32_t>(carry));
    }
    sum.DropLeadingZeros();
    return sum;
}

Integer operator*(const Integer& a, const Integer& b) {
    Integer product;
    product.negative_ = a.negative_ != b.negative_;
    product.limbs_.assign(a.limbs_.size() + b.limbs_.size(), 0);
    for (size_t i = 0; i < a.limbs_.size(); ++i) {
        uint64_t carry = 0;
        for (size_t j = 0; j < b.limbs_.size(); ++j, carry >>= 32) {
            carry += uint64_t{a.limbs_[i]} * b.limbs_[j] + product.limbs_[i + j];
            product.limbs_[i + j] = static_cast<uint32_t>(carry);
        }
        product.limbs_[i + b.limbs_.size()] = static_cast<uint32_t>(carry);
    }
    product.DropLeadingZeros();
    return product;
}

Integer Integer::DividedExactly(const Integer& divisor) const {
    size_t zeros = 0;
    while (divisor.limbs_[zeros] == 0) ++zeros;
    const size_t bits = zeros * 32 + static_cast<size_t>(std::countr_zero(divisor.limbs_[zeros]));
    Integer rest = *this, odd = divisor;
    rest.ShiftRight(bits);
    odd.ShiftRight(bits);
    // The inverse of the lowest limb, modulo 2^32: each step doubles the bits that are right, three at first.
    const uint32_t lowest = odd.limbs_[0];
    uint32_t inverse = lowest;
    for (int step = 0; step < 4; ++step) inverse *= 2 - lowest * inverse;
    Integer quotient;
    quotient.negative_ = negative_ != divisor.negative_;
    for (size_t i = 0; i + odd.limbs_.size() <= rest.limbs_.size(); ++i) {
        quotient.limbs_.push_back(rest.limbs_[i] * inverse);
        SubtractMultiple(rest.limbs_, i, odd.limbs_, quotient.limbs_.back());
    }
    quotient.DropLeadingZeros();
    return quotient;
}

DoublePair Integer::ToPair(int& exponent) const {
    DoublePair pair;
    exponent = limbs_.empty() ? 0 : 32 * static_cast<int>(limbs_.size() - 1);
    double place = negative_ ? -1 : 1;
    for (size_t i = limbs_.size(), taken = 0; i > 0 && taken < 5; --i, ++taken, place *= 0x1p-32)
        pair += DoublePair(place * limbs_[i - 1]);
    return pair;
}

}  // namespace orlix
