#include "numerics/wide_integer.hpp"

#include <bit>
#include <cmath>

namespace orlix {

WideInteger& WideInteger::operator+=(const WideInteger& other) {
    uint64_t carry = 0;
    for (size_t i = 0; i < kLimbs; ++i, carry >>= 32) {
        carry += uint64_t{limbs_[i]} + other.limbs_[i];
        limbs_[i] = static_cast<uint32_t>(carry);
    }
    return *this;
}

WideInteger& WideInteger::operator-=(const WideInteger& other) {
    uint64_t carry = 1;
    for (size_t i = 0; i < kLimbs; ++i, carry >>= 32) {
        carry += uint64_t{limbs_[i]} + static_cast<uint32_t>(~other.limbs_[i]);
        limbs_[i] = static_cast<uint32_t>(carry);
    }
    return *this;
}

void WideInteger::AddMultiple(const WideInteger& other, uint32_t factor) {
    uint64_t carry = 0;
    for (size_t i = 0; i < kLimbs; ++i, carry >>= 32) {
        carry += uint64_t{other.limbs_[i]} * factor + limbs_[i];
        limbs_[i] = static_cast<uint32_t>(carry);
    }
}

WideInteger operator*(const WideInteger& a, const WideInteger& b) {
    WideInteger product;
    for (size_t i = 0; i < WideInteger::kLimbs; ++i) {
        if (a.limbs_[i] == 0) continue;
        uint64_t carry = 0;
        for (size_t j = 0; i + j < WideInteger::kLimbs; ++j, carry >>= 32) {
            carry += uint64_t{a.limbs_[i]} * b.limbs_[j] + product.limbs_[i + j];
            product.limbs_[i + j] = static_cast<uint32_t>(carry);
        }
    }
    return product;
}

int WideInteger::Sign() const {
    if (limbs_[kLimbs - 1] >> 31) return -1;
    for (const uint32_t limb : limbs_)
        if (limb) return 1;
    return 0;
}

double WideInteger::ToDouble() const {
    if (Sign() < 0) return -(WideInteger() - *this).ToDouble();
    size_t top = kLimbs - 1;
    while (top > 0 && limbs_[top] == 0) --top;
    const int length = static_cast<int>(top) * 32 + std::bit_width(limbs_[top]);
    // The leading 62 bits. The last of them is set if anything but zeros follows, so that one rounding suffices.
    const int dropped = length > 62 ? length - 62 : 0;
    const size_t first = static_cast<size_t>(dropped) / 32;
    const int offset = dropped % 32;
    const auto limb = [&](size_t i) { return i < kLimbs ? uint64_t{limbs_[i]} : 0; };
    uint64_t leading = (limb(first) | limb(first + 1) << 32) >> offset;
    if (offset) leading |= limb(first + 2) << (64 - offset);
    bool rest = (limb(first) & ((uint64_t{1} << offset) - 1)) != 0;
    for (size_t i = 0; i < first; ++i) rest = rest || limbs_[i] != 0;
    return std::ldexp(static_cast<double>(static_cast<int64_t>(leading | (rest ? 1 : 0))), dropped);
}

}  // namespace orlix
