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

TYPED_TEST(ExtremesKernel, AreThoseOfTheNumbersSeenInAllRuns) {
    using T = TypeParam;
    const T ends[] = {std::numeric_limits<T>::lowest(), std::numeric_limits<T>::max()};
    for (const size_t n : {0, 1, 2, 3, 70})
        for (uint32_t seed = 0; seed < 60; ++seed) {
            std::vector<T> pixels = Noise<T>(n, seed), numbers;
            for (size_t i = 0; i < n && seed < 6; ++i) pixels[i] = seed % 3 == 2 ? T{0} : ends[seed % 3];
            if constexpr (std::is_same_v<T, float>)
                for (size_t i = 0; i + seed % 3 < n && seed < 30; ++i)
                    pixels[i] = seed % 5 == 0 ? kFloatNan : seed % 5 == 1 ? kFloatInfinity : -0.0f;
            std::ranges::copy_if(pixels, std::back_inserter(numbers), [](T pixel) { return pixel == pixel; });
            Extremes<T> extremes;
            extremes(pixels.data(), n / 2);
            extremes(pixels.data() + n / 2, n - n / 2);
            ASSERT_EQ(!numbers.empty(), extremes.Any()) << n << ' ' << seed;
            if (numbers.empty()) continue;
            const auto [least, most] = std::ranges::minmax(numbers);
            const T want[] = {static_cast<T>(least + T{0}), static_cast<T>(most + T{0})};  // no zero has a sign
            const T got[] = {extremes.Min(), extremes.Max()};
            ASSERT_TRUE(SameBits(want, got, 2)) << n << ' ' << seed;
        }
}

}  // namespace
}  // namespace orlix
