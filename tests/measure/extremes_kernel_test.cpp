#include <cmath>

#include "measure/extremes_kernels.hpp"
#include "support/kernel_testing.hpp"

namespace orlix {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

template <class T>
class ExtremesKernel : public testing::Test {};
using PixelTypes = testing::Types<uint8_t, uint16_t, uint32_t, float>;
TYPED_TEST_SUITE(ExtremesKernel, PixelTypes, );

TYPED_TEST(ExtremesKernel, EveryVariantFindsAnExtremeWhereverItLies) {
    using T = TypeParam;
    for (const auto& variant : SupportedOnThisCpu(kExtremes<T>))
        for (const size_t n : kAwkwardSizes)
            for (size_t at = 0; at < n; at += n < 200 ? 1 : 37) {
                if (2 * at + 1 == n) continue;  // one place for both
                std::vector<T> pixels(n, T{100});
                pixels[at] = T{7};
                pixels[n - 1 - at] = T{200};
                Guarded<T> guarded(pixels, at % 5);
                T min = T{150}, max = T{50};
                variant.fn(guarded.data(), n, min, max);
                ASSERT_EQ(T{7}, min) << variant.name << " " << n << " " << at;
                ASSERT_EQ(T{200}, max) << variant.name << " " << n << " " << at;
            }
}

TYPED_TEST(ExtremesKernel, EveryVariantEqualsTheDefinitionOnNoise) {
    using T = TypeParam;
    for (const auto& variant : SupportedOnThisCpu(kExtremes<T>))
        for (const size_t n : kAwkwardSizes) {
            const std::vector<T> noise = Noise<T>(n, static_cast<uint32_t>(n));
            T want[2] = {std::numeric_limits<T>::max(), std::numeric_limits<T>::lowest()};
            T got[2] = {want[0], want[1]};
            Extremes_scalar(noise.data(), n, want[0], want[1]);
            variant.fn(noise.data(), n, got[0], got[1]);
            ASSERT_EQ(want[0], got[0]) << variant.name << " " << n;
            ASSERT_EQ(want[1], got[1]) << variant.name << " " << n;
        }
}

TYPED_TEST(ExtremesKernel, NothingSeenIsKnown) {
    using T = TypeParam;
    Extremes<T> extremes;
    EXPECT_FALSE(extremes.Any());
    extremes(nullptr, 0);
    EXPECT_FALSE(extremes.Any());
    for (const T end : {std::numeric_limits<T>::lowest(), std::numeric_limits<T>::max()}) {
        Extremes<T> one;
        one(&end, 1);
        EXPECT_TRUE(one.Any());
        EXPECT_EQ(end, one.Min());
        EXPECT_EQ(end, one.Max());
    }
}

TEST(Extremes, NanIsSkippedAndInfinitiesCount) {
    std::vector<float> pixels(100, kNan);
    Extremes<float> onlyNan;
    onlyNan(pixels.data(), pixels.size());
    EXPECT_FALSE(onlyNan.Any());

    pixels[70] = -2.0f;
    Extremes<float> one;
    one(pixels.data(), pixels.size());
    EXPECT_TRUE(one.Any());
    EXPECT_EQ(-2.0f, one.Min());
    EXPECT_EQ(-2.0f, one.Max());

    pixels[3] = kInfinity;
    Extremes<float> two;
    two(pixels.data(), pixels.size());
    EXPECT_EQ(-2.0f, two.Min());
    EXPECT_EQ(kInfinity, two.Max());

    Extremes<float> infinite;
    infinite(&pixels[3], 1);
    EXPECT_TRUE(infinite.Any());
    EXPECT_EQ(kInfinity, infinite.Min());

    const float zeros[2] = {-0.0f, -0.0f};
    Extremes<float> zero;
    zero(zeros, 2);
    EXPECT_FALSE(std::signbit(zero.Min()));
    EXPECT_FALSE(std::signbit(zero.Max()));
}

}  // namespace
}  // namespace orlix
