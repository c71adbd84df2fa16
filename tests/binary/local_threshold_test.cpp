#include "binary/local_threshold.hpp"

#include "binary/binary_pictures.hpp"
#include "support/kernel_testing.hpp"
#include "support/special_numbers.hpp"

namespace orlix {
namespace {

// Pixels whose columns and rows are mirrored, and interleaved with another band, if asked for.
template <class T>
struct Picture {
    int32_t width, height;
    std::vector<T> pixels;
    std::vector<VPAEntry> table;

    Picture(int32_t columns, int32_t rows, bool mirrored)
        : width(columns),
          height(rows),
          pixels(static_cast<size_t>(2 * columns * rows)),
          table(static_cast<size_t>(std::max(columns, rows))) {
        for (int32_t i = 0; i < static_cast<int32_t>(table.size()); ++i) {
            table[static_cast<size_t>(i)].XEntry = mirrored ? 2 * (columns - 1 - i) : i;
            table[static_cast<size_t>(i)].YEntry = 2 * columns * (mirrored ? rows - 1 - i : i);
        }
    }
    PixelView<const T> view() const { return {pixels.data(), table.data(), width, height}; }
};

template <class T>
bool SlowPixel(const PixelView<const T>& image, const LocalThreshold& threshold, int32_t x, int32_t y, bool before) {
    using Exact = std::conditional_t<std::is_same_v<T, float>, double, int64_t>;
    const int32_t r = std::min(threshold.radius, image.width() + image.height());
    std::vector<Exact> square;
    for (int32_t v = std::max(y - r, 0); v <= std::min(y + r, image.height() - 1); ++v)
        for (int32_t u = std::max(x - r, 0); u <= std::min(x + r, image.width() - 1); ++u)
            if (std::isfinite(static_cast<double>(image.at(u, v))))
                square.push_back(static_cast<Exact>(image.at(u, v)));
    const auto g = static_cast<Exact>(image.at(x, y));
    if (!std::isfinite(static_cast<double>(g))) return before;
    const Exact low = *std::ranges::min_element(square), high = *std::ranges::max_element(square);
    if (!(static_cast<double>(high - low) >= threshold.contrast)) return before;
    const bool bright = static_cast<double>((g - low) - (high - g)) > 2 * threshold.offset;
    return bright == threshold.bright;
}

template <class T>
class LocalThresholds : public testing::Test {};
TYPED_TEST_SUITE(LocalThresholds, PixelTypes, );

TYPED_TEST(LocalThresholds, EqualTheirDefinition) {
    using T = TypeParam;
    std::mt19937 random(1);
    const auto below = [&](uint32_t n) { return static_cast<int32_t>(random() % n); };
    for (int trial = 0; trial < 140; ++trial) {
        Picture<T> picture(1 + below(trial % 10 == 0 ? 140 : 20), 1 + below(20), trial % 3 == 0);
        const auto levels = static_cast<uint32_t>(2 + below(trial % 2 ? 3 : 250));
        for (T& pixel : picture.pixels) {
            pixel = static_cast<T>(random() % levels);
            if (below(8) == 0) pixel = std::numeric_limits<T>::max();
            if constexpr (std::is_same_v<T, float>) {
                constexpr float kSpecial[] = {NAN, INFINITY, -INFINITY, -0.0f, 1e-30f, -3e38f};
                if (trial % 5 == 0 && below(3) == 0) pixel = kSpecial[below(trial % 2 ? 2 : 6)];
            }
        }
        constexpr double kContrasts[] = {0, 1, 1.5, 2, 40, 254, 255, 65535, 4294967295.0, 4294967295.5, kInfinity};
        constexpr double kOffsets[] = {0, 0, 0, 0, 0, 1, 0.25, -0.25, -1.5, -4294967296.0, kInfinity, -kInfinity};
        const LocalThreshold threshold = {trial % 7 == 0 ? INT32_MAX : below(13),
                                          kContrasts[static_cast<size_t>(below(11))],
                                          kOffsets[static_cast<size_t>(below(12))], below(2) == 0};
        BitPlane plane = NoisePlane(picture.width, picture.height, 0.5, static_cast<uint32_t>(trial));
        const auto expected = EachPixel<BitPlane>(picture.width, picture.height, [&](int32_t x, int32_t y) {
            return SlowPixel(picture.view(), threshold, x, y, plane.bit(x, y));
        });
        ThresholdLocally(picture.view(), threshold, plane);
        ASSERT_EQ(expected, plane) << picture.width << " x " << picture.height << ", radius " << threshold.radius
                                   << ", contrast " << threshold.contrast << ", offset " << threshold.offset;
    }
    BitPlane none;
    ThresholdLocally(PixelView<const T>(), {1, 0, 0, true}, none);
}

}  // namespace
}  // namespace orlix
