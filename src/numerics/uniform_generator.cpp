#include "numerics/uniform_generator.hpp"

namespace orlix {
namespace {

// All products stay below 2^31.
struct Congruence {
    uint32_t modulus, multiplier, increment;
    uint32_t Next(uint32_t x) const { return (multiplier * x + increment) % modulus; }
};
constexpr Congruence kLeading{259200, 7141, 54773};
constexpr Congruence kFollowing{134456, 8121, 28411};
constexpr Congruence kPlace{243000, 4561, 51349};

}  // namespace

UniformGenerator::UniformGenerator(int32_t seed) {
    leading_ = kLeading.Next((kLeading.increment + static_cast<uint32_t>(-seed)) % kLeading.modulus);
    following_ = leading_ % kFollowing.modulus;
    leading_ = kLeading.Next(leading_);
    place_ = leading_ % kPlace.modulus;
    for (double& number : table_) number = NextOfTwo();
}

double UniformGenerator::operator()() {
    const double next = NextOfTwo();
    place_ = kPlace.Next(place_);
    double& slot = table_[static_cast<size_t>(table_.size()) * place_ / kPlace.modulus];
    const double number = slot;
    slot = next;
    return number;
}

double UniformGenerator::NextOfTwo() {
    leading_ = kLeading.Next(leading_);
    following_ = kFollowing.Next(following_);
    return (leading_ + static_cast<double>(following_) / kFollowing.modulus) / kLeading.modulus;
}

}  // namespace orlix
