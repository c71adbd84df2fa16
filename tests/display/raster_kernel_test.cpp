#include "display/raster_kernels.hpp"

#include "support/kernel_testing.hpp"

namespace orlix {
namespace {

LevelColors SomeColors(bool grey) {
    LevelColors colors = {};
    colors.grey = grey;
    for (uint32_t i = 0; i < 256; ++i) {
        colors.blue[i] = static_cast<uint8_t>(37 * i + 11);
        colors.red[i] = grey ? colors.blue[i] : static_cast<uint8_t>(255 - i);
        colors.green[i] = grey ? colors.blue[i] : static_cast<uint8_t>(7 * i);
        colors.pixels[i] = uint32_t{colors.red[i]} << 16 | uint32_t{colors.green[i]} << 8 | colors.blue[i];
    }
    return colors;
}

// call(fn, to, source) writes n pixels from samplesPerPixel n bytes.
template <class Table, class Call>
void ExpectEqualVariants(const Table& table, size_t samplesPerPixel, const Call& call) {
    for (const size_t n : kAwkwardSizes)
        for (const size_t offset : {0, 1, 3}) {
            Guarded<uint8_t> from(Noise<uint8_t>(samplesPerPixel * n, static_cast<uint32_t>(n)), offset);
            ExpectTheDefinition(table, Noise<uint32_t>(n, 99),
                                [&](auto fn, uint32_t* to) { call(fn, to, from.data(), n); });
        }
}

TEST(RasterKernel, EveryVariantOfExpandingEqualsTheDefinition) {
    ExpectEqualVariants(kExpandGrey, 1, [](auto fn, uint32_t* to, const uint8_t* from, size_t n) { fn(to, from, n); });
    for (const LevelColors& colors : {SomeColors(false), SomeColors(true)})
        ExpectEqualVariants(kExpandLevels, 1,
                            [&](auto fn, uint32_t* to, const uint8_t* from, size_t n) { fn(to, from, n, colors); });
    ExpectEqualVariants(kExpandPlanes, 3, [](auto fn, uint32_t* to, const uint8_t* from, size_t n) {
        fn(to, from, from + n, from + 2 * n, n);
    });
}

TEST(RasterKernel, EveryVariantOfWeighingEqualsTheDefinition) {
    for (const auto& [a, b] : {std::pair{4096u, 0u}, {1u, 4095u}, {1365u, 1366u}, {4096u, 4096u}})
        ExpectEqualVariants(kWeighRows, 2, [a = a, b = b](auto fn, uint32_t* to, const uint8_t* from, size_t n) {
            fn(to, from, a, from + n, b, n);
        });
}

TEST(RasterKernel, EveryVariantOfReducingEqualsTheDefinition) {
    std::mt19937 random(3);
    const auto sumsOf = [&](size_t n) {
        std::vector<uint32_t> sums(n);
        for (uint32_t& sum : sums)
            sum = random() % 5 == 0 ? 255 * 4096 : static_cast<uint32_t>(random() % (255 * 4096));
        return sums;
    };
    for (const size_t n : kAwkwardSizes)
        for (const size_t perMille : {0, 1, 300, 990, 1000})
            for (const bool falling : {false, true}) {
                std::vector<int32_t> left(n);
                std::vector<uint16_t> share(n);
                for (size_t i = 0; i < n; ++i) {
                    left[i] = static_cast<int32_t>(i * perMille / 1000);
                    share[i] = static_cast<uint16_t>(random() % 4097);
                }
                if (falling) std::reverse(left.begin(), left.end());
                const std::vector<uint32_t> sums = sumsOf(n + kBeyond);
                ExpectTheDefinition(kInterpolate, std::vector<uint8_t>(n),
                                    [&](auto fn, uint8_t* to) { fn(to, sums.data(), left.data(), share.data(), n); });
            }
    for (const size_t n : kAwkwardSizes)
        for (const size_t taps : {4, 8, 16, 72}) {
            std::vector<int32_t> first(n);
            std::vector<uint16_t> weights(n * taps);
            for (size_t i = 0; i < n; ++i) {
                first[i] = static_cast<int32_t>(i * 5);
                for (size_t left = 4096, k = 0; k < taps; ++k) {
                    const size_t weight = k + 1 == taps ? left : random() % (left + 1);
                    weights[i * taps + k] = static_cast<uint16_t>(weight);
                    left -= weight;
                }
            }
            const std::vector<uint32_t> sums = sumsOf(5 * n + taps);
            ExpectTheDefinition(kAverage, std::vector<uint8_t>(n), [&](auto fn, uint8_t* to) {
                fn(to, sums.data(), first.data(), weights.data(), taps, n);
            });
        }
}

// Every variant against the columns one by one. Rows end with the last sample that may be read.
template <class Sample, class Table, class Call>
void ExpectPicked(const Table& table, const Call& call) {
    for (const auto& variant : SupportedOnThisCpu(table))
        for (const size_t n : kAwkwardSizes)
            for (const size_t perMille : {0, 3, 250, 999, 1000, 2000, 2133, 2400, 4000, 4260, 5200, 7990, 9000, 30000})
                for (const size_t beyond : {0, 1, 200})
                    for (const bool falling : {false, true}) {
                        std::vector<int32_t> columns(n);
                        for (size_t i = 0; i < n; ++i)
                            columns[i] = static_cast<int32_t>(beyond / 2 + i * perMille / 1000);
                        const size_t length = (n == 0 ? 1 : static_cast<size_t>(columns.back()) + 1) + beyond;
                        if (falling) std::reverse(columns.begin(), columns.end());
                        // A copy of exactly these samples, so that tools which watch memory see any other access.
                        std::vector<Sample> row = Noise<Sample>(length, static_cast<uint32_t>(n + perMille));
                        row.shrink_to_fit();
                        const PickPlan plan(columns, static_cast<int32_t>(length), variant.fn.shapes);
                        Guarded<uint32_t> got(std::vector<uint32_t>(n), n % 3);
                        call(variant.fn.fn, got.data(), row.data(), plan.picks());
                        std::vector<uint32_t> want(n);
                        const Picks ungrouped{columns.data(), n, kUngrouped, nullptr, nullptr};
                        call(std::rbegin(table)->fn.fn, want.data(), row.data(), ungrouped);
                        ASSERT_TRUE(SameBits(want.data(), got.data(), n))
                            << variant.name << ", " << n << " at " << perMille << ", " << length << " samples";
                        ASSERT_TRUE(got.GuardsIntact()) << variant.name;
                    }
}

TEST(RasterKernel, EveryVariantOfPickingEqualsTheDefinition) {
    ExpectPicked<uint8_t>(kPickGrey,
                          [](auto fn, uint32_t* to, const uint8_t* row, const Picks& p) { fn(to, row, p, row); });
    for (const LevelColors& colors : {SomeColors(false), SomeColors(true)})
        ExpectPicked<uint8_t>(kPickLevels, [&](auto fn, uint32_t* to, const uint8_t* row, const Picks& picks) {
            fn(to, row, picks, row, colors);
        });
    ExpectPicked<uint32_t>(
        kPickPixels, [](auto fn, uint32_t* to, const uint32_t* row, const Picks& picks) { fn(to, row, picks, row); });
}

TEST(PickPlan, TakesTheFirstShapeThatTheColumnsAreCloseEnoughFor) {
    using Shapes = std::vector<PickShape>;
    const Shapes wide{{16, 64}, {16, 128}}, narrow{{8, 16}, {4, 16}};
    const struct {
        int32_t step, rowLength;
        const Shapes& shapes;
        PickShape expected;
    } cases[] = {{4, 1000, wide, {16, 64}},                                // 61 samples
                 {5, 1000, wide, {16, 128}},  {8, 1000, wide, {16, 128}},  // 121
                 {9, 1000, wide, kUngrouped}, {2, 1000, narrow, {8, 16}},    {3, 1000, narrow, {4, 16}},
                 {5, 1000, narrow, {4, 16}},  {6, 1000, narrow, kUngrouped}, {1, 64, wide, {16, 64}},
                 {1, 63, wide, kUngrouped}};  // the row is shorter
    for (const auto& c : cases) {
        std::vector<int32_t> columns(20);
        for (int32_t i = 0; i < 20; ++i) columns[static_cast<size_t>(i)] = i * c.step;
        EXPECT_EQ(c.expected, PickPlan(columns, c.rowLength, c.shapes).picks().shape) << c.step << ", " << c.rowLength;
    }
    const Shapes pixels{{4, 8}};
    EXPECT_EQ(2, PickPlan({9, 7, 7, 5, 3}, 10, pixels).picks().bases[0]) << "no further than the row";
}

}  // namespace
}  // namespace orlix
