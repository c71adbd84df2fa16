#include <algorithm>
#include <cmath>

#include "display/display_level_kernels.hpp"
#include "support/kernel_testing.hpp"

namespace orlix {
namespace {

constexpr float kEndless = std::numeric_limits<float>::infinity();
constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();
constexpr float kLargestFloat = std::numeric_limits<float>::max();

using Levels = std::vector<int>;

template <class T>
Levels LevelsOf(T lower, T upper, const std::vector<T>& pixels) {
    std::vector<uint8_t> levels(pixels.size());
    LevelMapping<T>(lower, upper)(pixels.data(), pixels.size(), levels.data());
    return {levels.begin(), levels.end()};
}

TEST(DisplayLevels, AreLinearRoundedHalfUpAndClamped) {
    EXPECT_EQ((Levels{0, 0, 3, 128, 252, 255, 255}),
              LevelsOf<uint8_t>(100, 200, {0, 100, 101, 150, 199, 200, 255}));  // 2.55, 127.5, 252.45
    EXPECT_EQ((Levels{0, 1, 1, 2, 255, 255}), LevelsOf<uint16_t>(0, 510, {0, 1, 2, 3, 510, 65535}));
    EXPECT_EQ((Levels{0, 0, 1, 128, 255}),
              LevelsOf<uint32_t>(0, 0xffffffff, {0, 8421504, 8421505, 1u << 31, 0xffffffff}));
    EXPECT_EQ((Levels{0, 0, 128, 255, 255}), LevelsOf<float>(-1, 1, {-kEndless, -1, 0, 1, kEndless}));
}

TEST(DisplayLevels, OfAReversedRangeMakeANegative) {
    EXPECT_EQ((Levels{255, 255, 128, 3, 0, 0}), LevelsOf<uint8_t>(200, 100, {0, 100, 150, 199, 200, 255}));
    EXPECT_EQ((Levels{255, 2, 1, 1, 0, 0}), LevelsOf<uint16_t>(510, 0, {0, 507, 508, 509, 510, 65535}));
    EXPECT_EQ((Levels{255, 128, 0}), LevelsOf<uint32_t>(0xffffffff, 0, {0, (1u << 31) - 1, 0xffffffff}));
    EXPECT_EQ((Levels{255, 255, 128, 0, 0, 0}), LevelsOf<float>(1, -1, {-kEndless, -1, 0, 1, kEndless, kNoNumber}));
}

TEST(DisplayLevels, OfAnEmptyRangeSeparateWhatLiesAbove) {
    EXPECT_EQ((Levels{0, 0, 255, 255}), LevelsOf<uint8_t>(7, 7, {0, 7, 8, 255}));
    EXPECT_EQ((Levels{0, 0}), LevelsOf<uint8_t>(255, 255, {0, 255}));
    EXPECT_EQ((Levels{0, 0, 255}), LevelsOf<uint16_t>(7, 7, {0, 7, 8}));
    EXPECT_EQ((Levels{0, 0}), LevelsOf<uint32_t>(0xffffffff, 0xffffffff, {0, 0xffffffff}));
    EXPECT_EQ((Levels{0, 0, 255, 255, 0}),
              LevelsOf<float>(0, 0, {-1, 0, std::numeric_limits<float>::denorm_min(), kEndless, kNoNumber}));
    EXPECT_EQ((Levels{0, 0, 0}), LevelsOf<float>(kLargestFloat, kLargestFloat, {0, kLargestFloat, kEndless}));
}

TEST(DisplayLevels, WithABoundThatIsNoNumberAreZero) {
    for (const auto& [lower, upper] : {std::pair{kNoNumber, 1.0f},
                                       {0.0f, kNoNumber},
                                       {kNoNumber, kNoNumber},
                                       {-kEndless, 1.0f},
                                       {0.0f, kEndless},
                                       {kEndless, kEndless},
                                       {-kEndless, -kEndless}})
        EXPECT_EQ((Levels{0, 0, 0, 0}), LevelsOf<float>(lower, upper, {-kEndless, 0.5, kEndless, kNoNumber}));
}

TEST(DisplayLevels, OfBytesAreTheRoundedQuotientForEveryRange) {
    const std::vector<uint8_t> pixels = AllValues<uint8_t>();
    for (int lower = 0; lower < 256; ++lower)
        for (int upper = 0; upper < 256; upper += 3) {
            if (lower == upper) continue;
            std::vector<int> want(256);
            for (int p = 0; p < 256; ++p) {
                const double part = std::clamp((p - lower) / static_cast<double>(upper - lower), 0.0, 1.0);
                want[static_cast<size_t>(p)] = static_cast<int>(std::floor(255 * part + 0.5 + 1e-9));
            }
            ASSERT_EQ(want, LevelsOf(static_cast<uint8_t>(lower), static_cast<uint8_t>(upper), pixels))
                << lower << " " << upper;
        }
}

TEST(DisplayLevels, OfLongRowsOfBytesAreLookedUpPieceByPiece) {
    const std::vector<uint8_t> pixels = Noise<uint8_t>(20000, 1);
    const std::vector<int> levels = LevelsOf<uint8_t>(200, 20, pixels);
    for (size_t i = 0; i < pixels.size(); ++i) ASSERT_EQ(LevelsOf<uint8_t>(200, 20, {pixels[i]})[0], levels[i]) << i;
}

template <class T>
class DisplayLevelKernel : public testing::Test {
protected:
    // Rising and falling.
    static void Compare(const std::vector<T>& pixels, T least, T most) {
        for (const bool falling : {false, true}) {
            SCOPED_TRACE(testing::Message() << least << " to " << most << (falling ? " falling" : ""));
            ExpectTheDefinition(kLevels<T>, std::vector<uint8_t>(pixels.size(), 0x77), [&](auto levels, uint8_t* to) {
                levels(pixels.data(), pixels.size(), {least, most, falling}, to);
            });
        }
    }
};
using PixelTypes = testing::Types<uint16_t, uint32_t, float>;
TYPED_TEST_SUITE(DisplayLevelKernel, PixelTypes, );

TYPED_TEST(DisplayLevelKernel, EveryVariantEqualsTheDefinitionAtEverySizeAndStaysInItsBounds) {
    using T = TypeParam;
    for (const size_t n : kAwkwardSizes) {
        Guarded<T> pixels(Noise<T>(n, static_cast<uint32_t>(n)), n % 3);
        ExpectTheDefinition(kLevels<T>, std::vector<uint8_t>(n, 0x77), [&](auto levels, uint8_t* to) {
            levels(pixels.data(), n, {T{1000}, T{60000}, false}, to);
        });
    }
}

TYPED_TEST(DisplayLevelKernel, EveryVariantEqualsTheDefinitionForEveryKindOfRange) {
    using T = TypeParam;
    const std::vector<T> noise = Noise<T>(999, 7);
    std::vector<T> ends = {0, 1, 2, 3, 255, 256, 1000, 32767, 32768, 40000, 65534, 65535};
    ends.insert(ends.end(), {std::numeric_limits<T>::lowest(), std::numeric_limits<T>::max()});
    for (const T value : Noise<T>(40, 3))
        if (std::isfinite(static_cast<double>(value))) ends.push_back(value);
    for (const T least : ends)
        for (const T most : ends)
            if (least <= most) {
                std::vector<T> pixels = noise;
                pixels.insert(pixels.end(), ends.begin(), ends.end());
                ASSERT_NO_FATAL_FAILURE(TestFixture::Compare(pixels, least, most));
            }
}

TYPED_TEST(DisplayLevelKernel, RoundsHalvesAndTheirNeighboursAlike) {
    using T = TypeParam;
    std::mt19937 random(5);
    for (int round = 0; round < 300; ++round) {
        const bool few = round % 2 == 0;
        const auto d = static_cast<uint32_t>(few || sizeof(T) == 2      ? random() % 65535 + 1
                                             : std::is_same_v<T, float> ? random() % 0xffffff + 1
                                                                        : random());
        const uint64_t least = sizeof(T) == 2 ? random() % (65536 - d) : 0;
        std::vector<T> pixels;
        for (uint64_t k = 1; k <= 255; ++k)  // level k begins at least + (2 k - 1) d / 510
            for (const int64_t beside : {-1, 0, 1}) {
                const int64_t x = static_cast<int64_t>((2 * k - 1) * d / 510) + beside;
                if (x >= 0 && x <= int64_t{d}) pixels.push_back(static_cast<T>(static_cast<uint64_t>(x) + least));
            }
        ASSERT_NO_FATAL_FAILURE(TestFixture::Compare(pixels, static_cast<T>(least), static_cast<T>(least + d)));
    }
}

TEST(DisplayLevelKernelOfFloats, MeetsBothEndsOfAnyRange) {
    const std::vector<float> ends = FiniteNoise(1000, 11);
    for (size_t i = 0; i + 1 < ends.size(); ++i) {
        if (ends[i] == ends[i + 1]) continue;
        ASSERT_EQ((Levels{0, 255}), LevelsOf<float>(ends[i], ends[i + 1], {ends[i], ends[i + 1]}))
            << ends[i] << " " << ends[i + 1];
    }
    EXPECT_EQ((Levels{0, 128, 255}),
              LevelsOf<float>(-kLargestFloat, kLargestFloat, {-kLargestFloat, 0, kLargestFloat}));
}

}  // namespace
}  // namespace orlix
