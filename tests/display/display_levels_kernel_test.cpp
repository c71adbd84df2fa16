#include "display/display_level_kernels.hpp"
#include "support/kernel_testing.hpp"

namespace orlix {
namespace {

using Levels = std::vector<int>;

template <class T>
Levels LevelsOf(T lower, T upper, const std::vector<T>& pixels) {
    std::vector<uint8_t> levels(pixels.size());
    LevelMapping<T>(lower, upper)(pixels.data(), pixels.size(), levels.data());
    return {levels.begin(), levels.end()};
}

template <class T>
class DisplayLevels : public testing::Test {};
TYPED_TEST_SUITE(DisplayLevels, PixelTypes, );

// Linear, rounded half up and clamped; a reversed range makes a negative, an empty one separates what lies above. NaN,
// and any pixel where a bound is not finite, has level 0; infinite pixels count as the largest finite ones.
template <class T>
void ExpectLevels(T lower, T upper, const std::vector<T>& pixels) {
    const Levels levels = LevelsOf(lower, upper, pixels);
    for (size_t i = 0; i < pixels.size(); ++i) {
        if (!std::isfinite(static_cast<double>(lower) + static_cast<double>(upper)) || pixels[i] != pixels[i]) {
            ASSERT_EQ(0, levels[i]) << +pixels[i];
            continue;
        }
        const T pixel = std::clamp(pixels[i], std::numeric_limits<T>::lowest(), std::numeric_limits<T>::max());
        if (lower == upper) {
            ASSERT_EQ(pixel > upper ? 255 : 0, levels[i]) << +pixel;
        } else if constexpr (std::is_same_v<T, float>) {
            const double width = static_cast<double>(upper) - static_cast<double>(lower);
            const double part = (static_cast<double>(pixel) - static_cast<double>(lower)) / width;
            const double level = 255 * std::clamp(part, 0.0, 1.0);
            ASSERT_NEAR(level, levels[i], 0.5 + 1e-9) << pixel;
            if (lower == -upper) {  // 0 lies at an exact half
                ASSERT_EQ(std::floor(level + 0.5), levels[i]) << pixel;
            }
        } else {
            const int64_t sign = lower < upper ? 1 : -1, width = sign * (int64_t{upper} - lower);
            const int64_t part = std::clamp<int64_t>(sign * (int64_t{pixel} - lower), 0, width);
            ASSERT_EQ((510 * part + width) / (2 * width), levels[i]) << +pixel;
        }
    }
}

TYPED_TEST(DisplayLevels, FollowTheRuleForEveryKindOfRange) {
    using T = TypeParam;
    std::vector<T> ends = Noise<T>(20, 3), pixels = Noise<T>(50, 4);
    ends.insert(ends.end(), {T{0}, T{1}, T{7}, T{100}, T{200}, T{255}});
    ends.insert(ends.end(), {static_cast<T>(-1), std::numeric_limits<T>::lowest(), std::numeric_limits<T>::max()});
    for (int p = 0; p < 256 && sizeof(T) == 1; p += 5) ends.push_back(static_cast<T>(p));
    pixels.insert(pixels.end(), ends.begin(), ends.end());
    for (int p = 0; p < 256; ++p) pixels.push_back(static_cast<T>(p));
    for (const T lower : ends)
        for (const T upper : ends) {
            SCOPED_TRACE(testing::Message() << +lower << " to " << +upper);
            ASSERT_NO_FATAL_FAILURE(ExpectLevels(lower, upper, pixels));
        }
}

TEST(DisplayLevelsOfBytes, OfLongRowsAreLookedUpPieceByPiece) {
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
using WidePixelTypes = testing::Types<uint16_t, uint32_t, float>;
TYPED_TEST_SUITE(DisplayLevelKernel, WidePixelTypes, );

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

}  // namespace
}  // namespace orlix
