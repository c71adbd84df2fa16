#include "fits/hemisphere_kernels.hpp"
#include "fits/trimming_kernels.hpp"

#include "support/kernel_testing.hpp"
#include "support/special_numbers.hpp"

namespace orlix {
namespace {

template <class T>
class Trimming : public testing::Test {};
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
            for (const double low : limits) {
                SCOPED_TRACE(low);
                ExpectTheDefinition(kClippedSquares<T>, std::vector<double>(8), [&](auto add, double* to) {
                    double sums[8] = {1, 2, 3, 4, 5, 6, 7, 8};
                    add(pixels.data(), surface.data(), n, low, sums);
                    std::copy_n(sums, 8, to);
                });
                for (const double high : limits)
                    if (high >= low)
                        ExpectTheDefinition(kDivideSquares<T>, std::vector<double>(n + 12), [&](auto fn, double* to) {
                            Guarded<double> middle(std::vector<double>(n + 7), 1);
                            SquareClasses classes;
                            classes.below[3] = 5;
                            classes.fewer = 3;
                            const size_t kept = fn(pixels.data(), surface.data(), n, low, high, classes, middle.data());
                            EXPECT_TRUE(middle.GuardsIntact());
                            for (const uint64_t count :
                                 {uint64_t{kept}, classes.fewer, classes.upToLow, classes.upToHigh})
                                *to++ = static_cast<double>(count);
                            std::copy_n(middle.data(), kept, std::copy_n(classes.below, 8, to));
                        });
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
        for (const size_t n : kAwkwardSizes)
            ExpectTheDefinition(kHemisphereRow, std::vector<double>(n),
                                [&](auto values, double* to) { values(row, 7, n, to); });
}

}  // namespace
}  // namespace orlix
