#include "fits/hemisphere_kernels.hpp"
#include "fits/trimming_kernels.hpp"

#include <cmath>

#include "support/kernel_testing.hpp"

namespace orlix {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

template <class T>
class Trimming : public testing::Test {};
using PixelTypes = testing::Types<uint8_t, uint16_t, uint32_t, float>;
TYPED_TEST_SUITE(Trimming, PixelTypes, );

// Near the pixels, so that all classes occur; some values exactly on them, some not finite.
template <class T>
std::vector<double> SurfaceNear(std::span<const T> pixels, uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<double> surface(pixels.size());
    for (size_t i = 0; i < surface.size(); ++i) {
        surface[i] = static_cast<double>(pixels[i]) + (static_cast<int>(random() % 65) - 32) / 8.0;
        if (random() % 50 == 0) surface[i] = random() % 2 ? kInfinity : std::nan("");
    }
    return surface;
}

TYPED_TEST(Trimming, EveryVariantEqualsTheDefinition) {
    using T = TypeParam;
    const double limits[] = {-1, 0, 1.0 / 64, 1, 4, kInfinity};
    for (const size_t n : kAwkwardSizes)
        for (const size_t offset : {0, 1}) {
            Guarded<T> pixels(Noise<T>(n, static_cast<uint32_t>(n)), offset);
            Guarded<double> surface(SurfaceNear<T>({pixels.data(), n}, 7), offset);
            for (const double limit : limits)
                for (const auto& variant : SupportedOnThisCpu(kClippedSquares<T>)) {
                    double want[8] = {1, 2, 3, 4, 5, 6, 7, 8}, got[8] = {1, 2, 3, 4, 5, 6, 7, 8};
                    ClippedSquares_scalar(pixels.data(), surface.data(), n, limit, want);
                    variant.fn(pixels.data(), surface.data(), n, limit, got);
                    ASSERT_TRUE(SameBits(want, got, 8)) << variant.name << " " << n << " " << limit;
                }
            for (const double low : limits)
                for (const double high : limits) {
                    if (high < low) continue;
                    for (const auto& variant : SupportedOnThisCpu(kDivideSquares<T>)) {
                        const std::string what = std::string(variant.name) + " " + std::to_string(n) + " " +
                                                 std::to_string(low) + " " + std::to_string(high);
                        Guarded<double> wanted(std::vector<double>(n + 7), 0), gotten(std::vector<double>(n + 7), 1);
                        SquareClasses want, got;
                        want.below[3] = got.below[3] = 5;
                        want.fewer = got.fewer = 3;
                        const size_t kept =
                            DivideSquares_scalar(pixels.data(), surface.data(), n, low, high, want, wanted.data());
                        ASSERT_EQ(kept, variant.fn(pixels.data(), surface.data(), n, low, high, got, gotten.data()))
                            << what;
                        ASSERT_TRUE(SameBits(wanted.data(), gotten.data(), kept)) << what;
                        ASSERT_TRUE(SameBits(want.below, got.below, 8)) << what;
                        ASSERT_EQ(want.fewer, got.fewer) << what;
                        ASSERT_EQ(want.upToLow, got.upToLow) << what;
                        ASSERT_EQ(want.upToHigh, got.upToHigh) << what;
                        ASSERT_TRUE(gotten.GuardsIntact()) << what;
                    }
                }
        }
}

// Residuals 0, 1, 2, 3, -1, NaN.
TEST(Trimming, KnownSums) {
    const float pixels[] = {5, 5, 5, 5, 5, std::nanf("")};
    const double surface[] = {5, 6, 7, 8, 4, 5};
    double sums[8] = {};
    ClippedSquares_scalar(pixels, surface, 6, 5.0, sums);
    for (size_t i = 0; i < 6; ++i) EXPECT_EQ((std::vector<double>{0, 1, 4, 5, 1, 5})[i], sums[i]);
    SquareClasses classes;
    double middle[13];
    EXPECT_EQ(1u, DivideSquares_scalar(pixels, surface, 6, 1.0, 9.0, classes, middle));
    EXPECT_EQ(4.0, middle[0]);
    EXPECT_EQ(1u, classes.fewer);
    EXPECT_EQ(3u, classes.upToLow);
    EXPECT_EQ(5u, classes.upToHigh);
}

TEST(HemisphereRow, EveryVariantEqualsTheDefinition) {
    const HemisphereRow rows[] = {{5.25, 3, 0.01, 0.5, 900},
                                  {-4e5, 1e6, -2, -3e3, 1e12},
                                  {12, 0, 0, 1, -5},
                                  {12, 0, 0, std::nan(""), 5},
                                  {0, 0, 0, 1, kInfinity}};
    for (const HemisphereRow& row : rows)
        for (const auto& variant : SupportedOnThisCpu(kHemisphereRow))
            for (const size_t n : kAwkwardSizes) {
                std::vector<double> want(n);
                Guarded<double> got(want, 1);
                HemisphereRow_scalar(row, 7, n, want.data());
                variant.fn(row, 7, n, got.data());
                for (size_t i = 0; i < n; ++i)
                    if (std::isnan(want[i]) && std::isnan(got.data()[i])) want[i] = got.data()[i];  // any NaN
                ASSERT_TRUE(SameBits(want.data(), got.data(), n)) << variant.name;
                ASSERT_TRUE(got.GuardsIntact());
            }
}

}  // namespace
}  // namespace orlix
