#include "measure/extremes_kernels.hpp"
#include "support/kernel_testing.hpp"

namespace orlix {
namespace {

template <class T>
class ExtremesKernel : public testing::Test {};
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
    const std::vector<T> before = {std::numeric_limits<T>::max(), std::numeric_limits<T>::lowest()};
    for (const size_t n : kAwkwardSizes)
        ExpectTheBits(kExtremes<T>, before, [&, noise = Noise<T>(n, static_cast<uint32_t>(n))](auto fn, T* to) {
            fn(noise.data(), n, to[0], to[1]);
            for (T* extreme : {to, to + 1}) *extreme = static_cast<T>(*extreme + T{0});  // which zero is not stated
        });
}

TYPED_TEST(ExtremesKernel, NothingSeenIsKnown) {
    using T = TypeParam;
    Extremes<T> extremes;
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
    const struct {
        std::vector<float> values;  // among NaN
        float min, max;
    } cases[] = {{{-2.0f}, -2.0f, -2.0f},
                 {{-2.0f, kFloatInfinity}, -2.0f, kFloatInfinity},
                 {{kFloatInfinity}, kFloatInfinity, kFloatInfinity},
                 {{-0.0f, -0.0f}, 0.0f, 0.0f}};
    std::vector<float> pixels(100, kFloatNan);
    Extremes<float> none;
    none(pixels.data(), pixels.size());
    EXPECT_FALSE(none.Any());
    for (const auto& [values, min, max] : cases) {
        std::vector<float> some = pixels;
        for (size_t i = 0; i < values.size(); ++i) some[70 - 67 * i] = values[i];
        Extremes<float> extremes;
        extremes(some.data(), some.size());
        EXPECT_TRUE(extremes.Any());
        EXPECT_EQ(min, extremes.Min());
        EXPECT_EQ(max, extremes.Max());
        EXPECT_EQ(std::signbit(min), std::signbit(extremes.Min()));
        EXPECT_EQ(std::signbit(max), std::signbit(extremes.Max()));
    }
}

}  // namespace
}  // namespace orlix
