#include "fits/moments_kernels.hpp"

#include "support/kernel_testing.hpp"

namespace orlix {
namespace {

template <class T, int Degree>
void ExpectEqualMoments(const std::vector<T>& pixels) {
    for (const size_t offset : {0, 3}) {
        Guarded<T> guarded(pixels, offset);  // overwritten, not added to
        ExpectTheDefinition(kMoments<T, Degree>, std::vector<uint64_t>(Degree + 1, 77),
                            [&](auto moments, uint64_t* to) { moments(guarded.data(), pixels.size(), to); });
    }
}

template <class T>
class Moments : public testing::Test {};
using IntegerTypes = testing::Types<uint8_t, uint16_t, uint32_t>;
TYPED_TEST_SUITE(Moments, IntegerTypes, );

TYPED_TEST(Moments, EveryVariantEqualsTheDefinition) {
    using T = TypeParam;
    constexpr size_t kMost = kMostOfMoments<T>;
    std::vector<size_t> sizes(std::begin(kAwkwardSizes), std::end(kAwkwardSizes));
    sizes.insert(sizes.end(), {1023, 1024, 1025, 2048, 2049, 4095, 4096});
    for (const size_t n : sizes) {
        if (n > kMost) continue;
        for (const auto& pixels :
             {Noise<T>(n, static_cast<uint32_t>(n)), std::vector<T>(n, std::numeric_limits<T>::max())}) {
            ExpectEqualMoments<T, 1>(pixels);
            ExpectEqualMoments<T, 2>(pixels);
            ExpectEqualMoments<T, 3>(pixels);
        }
    }
}

// Sums of powers in closed form; the third, the largest, must leave room for 64 rows.
TYPED_TEST(Moments, OfWhitePixelsAreSumsOfPowers) {
    using T = TypeParam;
    const uint64_t n = kMostOfMoments<T>, white = std::numeric_limits<T>::max();
    const std::vector<T> pixels(n, std::numeric_limits<T>::max());
    uint64_t m[4];
    Moments_scalar<T, 3>(pixels.data(), n, m);
    EXPECT_EQ(white * n, m[0]);
    EXPECT_EQ(white * (n * (n - 1) / 2), m[1]);
    EXPECT_EQ(white * ((n - 1) * n * (2 * n - 1) / 6), m[2]);
    EXPECT_EQ(white * (n * (n - 1) / 2 * (n * (n - 1) / 2)), m[3]);
    EXPECT_LT(m[3], uint64_t{1} << 54);
}

template <int Degree>
void ExpectEqualFloatMoments(const std::vector<float>& noise) {
    for (const double first : {0.0, -4095.0, 2147483647.0}) {
        Guarded<float> pixels(noise, noise.size() % 3);
        ExpectTheDefinition(kFloatMoments<Degree>, std::vector<double>(8 * (Degree + 1)), [&](auto fn, double* to) {
            FloatMoments moments;
            fn(pixels.data(), noise.size(), 12.25, first, moments);
            for (int k = 0; k <= Degree; ++k) to = std::copy_n(moments.lane[k], 8, to);
        });
    }
}

TEST(FloatMoments, EveryVariantEqualsTheDefinitionBitForBit) {
    for (const size_t n : kAwkwardSizes) {
        const auto seed = static_cast<uint32_t>(n);
        for (const auto& noise : {FiniteNoise(n, seed), Noise<float>(n, seed)}) {
            ExpectEqualFloatMoments<1>(noise);
            ExpectEqualFloatMoments<2>(noise);
            ExpectEqualFloatMoments<3>(noise);
        }
    }
}

TEST(FloatMoments, KnownAnswers) {
    const float pixels[3] = {1.5f, 2.5f, 4.5f};  // less 0.5: 1, 2, 4 at t = -2, 0, 2
    FloatMoments m;
    FloatMoments_scalar<3>(pixels, 3, 0.5, -2.0, m);
    const double want[4][3] = {{1, 2, 4}, {-2, 0, 8}, {4, 0, 16}, {-8, 0, 32}};
    for (int k = 0; k < 4; ++k)
        for (int i = 0; i < 8; ++i) EXPECT_EQ(i < 3 ? want[k][i] : 0.0, m.lane[k][i]) << k << " " << i;
}

}  // namespace
}  // namespace orlix
