#include "points/casting_kernels.hpp"
#include "support/kernel_testing.hpp"

namespace orlix {
namespace {

template <class T>
struct Pair;
template <class To_, class From_>
struct Pair<To_(From_)> {
    using To = To_;
    using From = From_;
};
template <class P>
class CastingKernel : public testing::Test {};
using Pairs =
    testing::Types<Pair<uint8_t(uint8_t)>, Pair<uint8_t(uint16_t)>, Pair<uint8_t(uint32_t)>, Pair<uint8_t(float)>,
                   Pair<uint16_t(uint8_t)>, Pair<uint16_t(uint16_t)>, Pair<uint16_t(uint32_t)>, Pair<uint16_t(float)>,
                   Pair<uint32_t(uint8_t)>, Pair<uint32_t(uint16_t)>, Pair<uint32_t(uint32_t)>, Pair<uint32_t(float)>,
                   Pair<float(uint8_t)>, Pair<float(uint16_t)>, Pair<float(uint32_t)>, Pair<float(float)>>;
TYPED_TEST_SUITE(CastingKernel, Pairs, );

TYPED_TEST(CastingKernel, EveryVariantEqualsTheDefinition) {
    using To = typename TypeParam::To;
    using From = typename TypeParam::From;
    for (const size_t n : kAwkwardSizes)
        for (const size_t offset : {0, 1, 3}) {
            Guarded<From> from(Noise<From>(n, static_cast<uint32_t>(n + offset)), offset);
            const auto run = [&](auto fn, To* to) { fn(to, from.data(), n); };
            ExpectTheBits(kCast<To, From>, Noise<To>(n, 99), run);
            ExpectTheDefinition(kPlus<To, From>, Noise<To>(n, 99), run);
        }
}

// The rule with numbers of unlimited range: floor division by powers of two in long double, whose 64 digits hold them
// all.
template <class To, class From>
To Expected(From p) {
    if constexpr (std::is_same_v<To, float>) {
        return static_cast<float>(p);
    } else if constexpr (std::is_same_v<From, float>) {
        if (!std::isfinite(p) || std::fabs(p) >= 9223372036854775808.0f) return 0;
        const long double modulus = std::ldexp(1.0L, 8 * sizeof(To));
        const long double whole = std::trunc(static_cast<long double>(p));
        return static_cast<To>(whole - std::floor(whole / modulus) * modulus);
    } else {
        return static_cast<To>(p & std::numeric_limits<To>::max());
    }
}

TYPED_TEST(CastingKernel, FollowsTheRule) {
    using To = typename TypeParam::To;
    using From = typename TypeParam::From;
    std::vector<From> from = Noise<From>(5000, 17);
    if constexpr (sizeof(From) < 4) from = AllValues<From>();
    const std::vector<To> before = Noise<To>(from.size(), 18);
    std::vector<To> cast(from.size()), sum = before;
    CastOperation<To, From>()(cast.data(), from.data(), from.size());
    PlusOperation<To, From>()(sum.data(), from.data(), from.size());
    for (size_t i = 0; i < from.size(); ++i) {
        const To want = Expected<To, From>(from[i]);
        ASSERT_TRUE(SameBits(&want, &cast[i], 1) || (want != want && cast[i] != cast[i])) << +from[i];
        const To wantSum = static_cast<To>(before[i] + want);
        ASSERT_TRUE(wantSum == sum[i] || (wantSum != wantSum && sum[i] != sum[i])) << +before[i] << " + " << +from[i];
    }
}

TEST(Casting, AnImageMayBeAddedToItself) {
    std::vector<uint8_t> pixels = Noise<uint8_t>(1000, 1);
    const std::vector<uint8_t> before = pixels;
    CastOperation<uint8_t, uint8_t>()(pixels.data(), pixels.data(), pixels.size());
    EXPECT_EQ(before, pixels);
    PlusOperation<uint8_t, uint8_t>()(pixels.data(), pixels.data(), pixels.size());
    for (size_t i = 0; i < pixels.size(); ++i) ASSERT_EQ(static_cast<uint8_t>(2 * before[i]), pixels[i]);
}

}  // namespace
}  // namespace orlix
