#include "numerics/exact_accumulator.hpp"

#include <bit>

namespace orlix {

void ExactAccumulator::Add(double term, uint64_t times) {
    const auto bits = std::bit_cast<uint64_t>(term);
    const auto exponent = static_cast<uint32_t>(bits >> 52 & 0x7ff);
    const uint64_t fraction = bits & ((uint64_t{1} << 52) - 1);
    const uint64_t whole = exponent == 0 ? fraction : fraction | uint64_t{1} << 52;
    const uint32_t place = exponent == 0 ? 0 : exponent - 1;
    if (times == 1) return AddBits(whole, place);
    AddBits((whole & 0xffffffff) * times, place);
    AddBits((whole >> 32) * times, place + 32);
}

void ExactAccumulator::AddBits(uint64_t bits, uint32_t place) {
    const size_t i = place / 32;
    const uint32_t shift = place % 32;
    const uint64_t low = (bits & 0xffffffff) << shift;
    const uint64_t high = (bits >> 32) << shift;
    digits_[i] += low & 0xffffffff;
    digits_[i + 1] += (low >> 32) + (high & 0xffffffff);
    digits_[i + 2] += high >> 32;
    // An addition puts less than 2^33 into a digit.
    if (++waiting_ == uint32_t{1} << 30) {
        digits_ = Normal();
        waiting_ = 0;
    }
}

std::array<uint64_t, ExactAccumulator::kDigits> ExactAccumulator::Normal() const {
    std::array<uint64_t, kDigits> normal;
    uint64_t carry = 0;
    for (size_t i = 0; i < kDigits; ++i) {
        carry += digits_[i];
        normal[i] = carry & 0xffffffff;
        carry >>= 32;
    }
    return normal;
}

std::strong_ordering ExactAccumulator::operator<=>(const ExactAccumulator& other) const {
    const auto a = Normal(), b = other.Normal();
    for (size_t i = kDigits; i-- > 0;)
        if (a[i] != b[i]) return a[i] <=> b[i];
    return std::strong_ordering::equal;
}

}  // namespace orlix
