#include "measure/counting_kernels.hpp"
#include "support/kernel_testing.hpp"

namespace orlix {
namespace {

template <class T>
std::vector<LONG> Counts(Counter<T>& counter) {
    std::vector<LONG> counts(static_cast<size_t>(counter.shape().bins), -1);
    counter.Histogram(counts);
    return counts;
}

// Pixels as they occur (a slow gradient with little noise), noise, flat, and two values in turn.
template <class T>
std::vector<std::vector<T>> Pictures(size_t n) {
    std::vector<std::vector<T>> pictures(4, Noise<T>(n, 5));
    for (size_t i = 0; i < n; ++i) {
        pictures[1][i] = static_cast<T>(i / 37 + (i * 7919 % 5));
        pictures[2][i] = static_cast<T>(211);
        pictures[3][i] = static_cast<T>(i % 2 ? 255 : 0);
    }
    return pictures;
}

TEST(ByteCounter, CountsEveryLevelWhicheverWay) {
    for (const size_t n : {0u, 1u, 2u, 7u, 8u, 9u, 15u, 16u, 17u, 1000u, 300001u})
        for (const uint64_t expected : {uint64_t{0}, uint64_t{1} << 24})
            for (const auto& picture : Pictures<uint8_t>(n)) {
                Counter<uint8_t> counter(0, 255, 256, expected);
                // In two runs, the second from an odd place.
                counter(picture.data(), n / 3);
                counter(picture.data() + n / 3, n - n / 3);
                std::vector<LONG> want(256);
                for (const uint8_t p : picture) ++want[p];
                ASSERT_EQ(want, Counts(counter)) << n;
                ASSERT_EQ((HistogramShape{256, 0.0, 255.0}), counter.shape());
            }
}

TEST(ByteCounter, LeavesOutLevelsOutsideTheInterval) {
    const std::vector<uint8_t> all = AllValues<uint8_t>();
    for (const auto& [lower, upper] : {std::pair<uint8_t, uint8_t>{10, 12}, {12, 10}}) {
        Counter<uint8_t> counter(lower, upper, 256, 0);
        counter(all.data(), all.size());
        for (size_t level = 0; level < 256; ++level)
            EXPECT_EQ(level >= lower && level <= upper, Counts(counter)[level]) << level;
    }
}

// The rule in exact integers, one pixel at a time.
template <class T>
void ExpectRule(const std::vector<T>& pixels, T lower, T upper, int32_t bins) {
    Counter<T> counter(lower, upper, bins, 0), large(lower, upper, bins, uint64_t{1} << 24);
    counter(pixels.data(), pixels.size());
    large(pixels.data(), pixels.size());
    const HistogramShape shape = counter.shape();
    const uint64_t width = uint64_t{upper} - lower;
    const bool onePerValue = lower < upper && width + 1 <= static_cast<uint64_t>(bins);
    ASSERT_EQ(onePerValue ? width + 1 : static_cast<uint64_t>(bins), static_cast<uint64_t>(shape.bins));
    ASSERT_EQ(static_cast<double>(lower), shape.left);
    ASSERT_EQ(static_cast<double>(upper), shape.right);
    std::vector<LONG> want(static_cast<size_t>(shape.bins));
    for (const T p : pixels) {
        if (p < lower || p > upper) continue;
        const uint64_t above = p - lower;
        const uint64_t bin = onePerValue ? above : p == upper ? want.size() - 1 : above * want.size() / width;
        ++want[static_cast<size_t>(bin)];
    }
    ASSERT_EQ(want, Counts(counter)) << lower << " " << upper << " " << bins;
    ASSERT_EQ(want, Counts(large)) << lower << " " << upper << " " << bins;
}

TEST(WordCounter, FollowsTheRuleForAllValues) {
    const std::vector<uint16_t> all = AllValues<uint16_t>();
    for (const int32_t bins : {2, 3, 255, 256, 1000, 65535, 65536, 100000}) {
        ExpectRule<uint16_t>(all, 0, 65535, bins);
        ExpectRule<uint16_t>(all, 100, 355, bins);
        ExpectRule<uint16_t>(all, 100, 356, bins);
        ExpectRule<uint16_t>(all, 7, 7, bins);
        ExpectRule<uint16_t>(all, 9, 7, bins);
        ExpectRule<uint16_t>(all, 65534, 65535, bins);
    }
    for (const auto& picture : Pictures<uint16_t>(10001)) ExpectRule<uint16_t>(picture, 0, 60000, 256);
}

TEST(DoubleWordCounter, FollowsTheRuleExactly) {
    for (const auto& picture : Pictures<uint32_t>(20001))
        for (const int32_t bins : {2, 256, 1000, 100000}) {
            ExpectRule<uint32_t>(picture, 0, 0xffffffff, bins);
            ExpectRule<uint32_t>(picture, 0, 255, bins);
            ExpectRule<uint32_t>(picture, 0x10000000, 0xf0000001, bins);
            ExpectRule<uint32_t>(picture, 211, 211, bins);
        }
}

TEST(FloatCounter, EveryVariantEqualsTheDefinition) {
    const BinRule<float> rules[] = {{0.0f, 255.0f, 256, false},      {-1e3f, 1e3f, 1000, false},
                                    {-3e38f, 3e38f, 7, false},       {12.5f, 12.5f, 10, false},
                                    {5.0f, -5.0f, 10, false},        {-1e-40f, 1e-40f, 3, false},
                                    {0.0f, 1.0f, 2147483647, false}, {-kFloatInfinity, 1.0f, 5, false}};
    for (const auto& rule : rules)
        for (const size_t n : kAwkwardSizes) {
            std::vector<float> pixels = Noise<float>(n, static_cast<uint32_t>(n));
            if (n > 6) {
                pixels[1] = rule.lower;
                pixels[3] = rule.upper;
                pixels[6] = std::nextafter(rule.upper, -kFloatInfinity);
            }
            ExpectTheBits(kBins<float>, std::vector<uint32_t>(n, 1), [&](auto fn, uint32_t* to) {
                fn(pixels.data(), n, rule, to);
                for (size_t i = 0; i < n; ++i) ASSERT_LE(to[i], rule.bins);
            });
        }
}

TEST(FloatCounter, KnownAnswers) {
    const float pixels[] = {0.0f, 0.999f, 1.0f, 5.0f, 9.99f, 10.0f, -0.001f, 10.001f, kFloatNan, -0.0f};
    Counter<float> counter(0.0f, 10.0f, 10, 10);
    EXPECT_EQ((HistogramShape{10, 0.0, 10.0}), counter.shape());
    counter(pixels, std::size(pixels));
    EXPECT_EQ((std::vector<LONG>{3, 1, 0, 0, 0, 1, 0, 0, 0, 2}), Counts(counter));
    // 49 of 49 equal parts of a unit: a multiplication by 1/49 would put it one bin too low.
    Counter<float> parts(0.0f, 49.0f, 98, 1);
    const float exact = 24.5f;
    parts(&exact, 1);
    EXPECT_EQ(1, Counts(parts)[49]);
}

TEST(Counter, MayBeReadBetweenRuns) {
    Counter<float> counter(0.0f, 1.0f, 4, 0);
    const float half = 0.5f;
    counter(&half, 1);
    EXPECT_EQ((std::vector<LONG>{0, 0, 1, 0}), Counts(counter));
    counter(&half, 1);
    EXPECT_EQ((std::vector<LONG>{0, 0, 2, 0}), Counts(counter));
}

// The same 16 MiB counted until the totals pass 2^31 and 2^32.
TEST(Counter, CountsSaturate) {
    constexpr size_t kPart = 1 << 24;
    const std::vector<uint8_t> bytes(kPart, 9);
    Counter<uint8_t> counter(0, 255, 256, kPart);
    for (int k = 0; k < 127; ++k) counter(bytes.data(), kPart);
    EXPECT_EQ(2130706432, Counts(counter)[9]);
    for (int k = 0; k < 131; ++k) counter(bytes.data(), kPart);
    EXPECT_EQ(2147483647, Counts(counter)[9]);
    EXPECT_EQ(0, Counts(counter)[8]);
}

}  // namespace
}  // namespace orlix
