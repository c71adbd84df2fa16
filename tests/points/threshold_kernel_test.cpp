#include "geometry/run.hpp"
#include "points/threshold_kernels.hpp"
#include "support/kernel_testing.hpp"

namespace orlix {
namespace {

template <class T>
class ThresholdKernel : public testing::Test {};
TYPED_TEST_SUITE(ThresholdKernel, PixelTypes, );

template <class T>
std::vector<std::pair<T, T>> Bounds() {
    if constexpr (std::is_same_v<T, float>) {
        constexpr float kMost = kFloatInfinity;
        return {{-1000, 1000}, {1000, -1000}, {0, 0}, {-kMost, kMost}, {12.5f, kMost}, {-1e-45f, 3e38f}};
    } else {
        constexpr T kMost = std::numeric_limits<T>::max();
        return {{0, kMost},
                {kMost, 0},
                {0, 0},
                {kMost, kMost},
                {5, 4},
                {T(kMost / 4), T(kMost / 2)},
                {1, T(kMost - 1)},
                {T(kMost / 2), T(kMost / 2)}};
    }
}

TYPED_TEST(ThresholdKernel, EveryVariantEqualsTheDefinition) {
    using T = TypeParam;
    for (const size_t n : kAwkwardSizes)
        for (const size_t offset : {0, 1, 8, 21}) {
            Guarded<T> pixels(Noise<T>(n, static_cast<uint32_t>(n + offset)), offset);
            for (const unsigned firstBit : {0u, 1u, 5u, 7u})
                for (const auto& bounds : Bounds<T>())
                    for (const bool inside : {false, true}) {
                        SCOPED_TRACE(testing::Message() << n << " from bit " << firstBit);
                        // Some bits are set before: bits are only ever added.
                        ExpectTheBits(kThreshold<T>, Noise<uint8_t>((firstBit + n + 7) / 8, 9),
                                      [&](auto fn, uint8_t* bits) {
                                          fn(pixels.data(), n, bits, firstBit, bounds.first, bounds.second, inside);
                                      });
                    }
        }
}

// Against the rule, bit by bit, for runs that start and end anywhere in a byte.
TYPED_TEST(ThresholdKernel, SetsExactlyTheBitsOfTheRun) {
    using T = TypeParam;
    constexpr int32_t kWidth = 300;
    const std::vector<T> row = Noise<T>(kWidth, 3);
    for (const auto& [lo, hi] : Bounds<T>())
        for (const bool inside : {false, true}) {
            const ThresholdOperation<T> operation(lo, hi, inside);
            for (const int32_t start : {0, 1, 7, 8, 13, 64, 295, 299})
                for (const int32_t length : {1, 2, 5, 7, 8, 9, 16, 63, 64, 65, 130, 287, 300}) {
                    const Run run{start, std::min(start + length, kWidth) - 1};
                    std::vector<uint8_t> want((kWidth + 7) / 8, 0);
                    // Pixels lie between unreadable ones under the sanitizer: a copy of just the run.
                    const std::vector<T> pixels(row.begin() + run.start, row.begin() + run.stop + 1);
                    for (int32_t x = run.start; x <= run.stop; ++x) {
                        const T p = row[static_cast<size_t>(x)];
                        const bool set = inside ? lo <= p && p <= hi : p < lo || p > hi;
                        if (set) want[static_cast<size_t>(x / 8)] |= static_cast<uint8_t>(0x80 >> x % 8);
                    }
                    Guarded<uint8_t> got(std::vector<uint8_t>(want.size(), 0), 0);
                    operation(pixels.data(), pixels.size(), run.start, got.data());
                    ASSERT_TRUE(SameBits(want.data(), got.data(), want.size())) << run.start << " to " << run.stop;
                    ASSERT_TRUE(got.GuardsIntact());
                }
        }
}

}  // namespace
}  // namespace orlix
