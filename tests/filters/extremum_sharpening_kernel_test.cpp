#include "filters/extremum_sharpening.hpp"
#include "filters/extremum_sharpening_kernels.hpp"
#include "geometry/foreign_region.hpp"
#include "support/band.hpp"
#include "support/square_testing.hpp"

namespace orlix {
namespace {

template <class T>
class Extremum : public testing::Test {};
TYPED_TEST_SUITE(Extremum, PixelTypes, );

// The definition, square by square; false where the square cannot be read.
template <class T>
bool Sharpened(PixelView<const T> from, int32_t x, int32_t y, int64_t h, FilterParameters<T> limits, T& result) {
    if (std::min(x, y) - h < -kTableMargin || x + h >= from.width() + kTableMargin ||
        y + h >= from.height() + kTableMargin)
        return false;
    T high = std::isnan(static_cast<double>(limits.lower)) ? static_cast<T>(-kFloatInfinity) : limits.lower;
    T low = std::isnan(static_cast<double>(limits.upper)) ? static_cast<T>(kFloatInfinity) : limits.upper;
    for (int64_t v = y - h; v <= y + h; ++v)
        for (int64_t u = x - h; u <= x + h; ++u) {
            const T pixel = from.at(static_cast<int32_t>(u), static_cast<int32_t>(v));
            if (pixel > high) high = pixel;
            if (pixel < low) low = pixel;
        }
    using Wide = std::conditional_t<std::is_same_v<T, float>, float, int64_t>;
    const Wide p = from.at(x, y);
    result = p != p ? static_cast<T>(kFloatNan) : static_cast<T>((p - low >= high - p ? high : low) + T{0});
    return true;
}

template <class T>
using Way = void (ExtremumSharpening<T>::*)(PixelView<const T>, PixelView<T>, const RegionRows&) const;

template <class T>
void ExpectByDefinition(PixelView<const T> from, Band<T> to, IRegionOfInterest* region, int32_t h,
                        FilterParameters<T> limits, Way<T> way = &ExtremumSharpening<T>::operator()) {
    SCOPED_TRACE(testing::Message() << from.width() << " x " << from.height() << " to " << to.width << " x "
                                    << to.height << ", h " << h);
    const RegionRows rows(region, to.width, to.height);
    Band<T> want = to;
    for (int32_t y = rows.top(); y <= rows.bottom(); ++y)
        for (const Run run : rows.row(y))
            for (int32_t x = run.start; x <= run.stop; ++x) Sharpened(from, x, y, h, limits, want.view().at(x, y));
    (ExtremumSharpening<T>(h, limits).*way)(from, to.view(), rows);
    EXPECT_TRUE(SameBits(want.samples.data(), to.samples.data(), want.samples.size()));
}

TYPED_TEST(Extremum, EverySquareGivesTheNearerExtreme) {
    using T = TypeParam;
    constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
    struct Case {
        int32_t width, height, h;
    };
    const Case cases[] = {{1, 1, 0},   {1, 1, 1},   {1, 1, 3},   {5, 3, 1},    {64, 9, 1},   {40, 30, 0},
                          {40, 30, 2}, {33, 41, 3}, {67, 20, 5}, {70, 25, 8},  {20, 70, 9},  {97, 12, 15},
                          {9, 8, 30},  {3, 5, 70},  {6, 7, 200}, {12, 9, 203}, {12, 9, 204}, {12, 9, 206}};
    // Negative: a limit; too large for the margin: no change.
    const Case odd[] = {{40, 5, -1}, {40, 5, -7}, {40, 5, -kMost - 1}, {30, 20, 210}, {30, 20, 216}, {30, 20, kMost}};
    for (const bool fewLevels : {false, true})  // many ties
        for (const FilterParameters<T>& limits : LuminanceRanges<T>()) {
            const auto expect = [&](const Case& c, Way<T> way) {
                Band<T> source{c.width, c.height};
                source.AddNoise(static_cast<uint32_t>(c.width) + static_cast<uint32_t>(c.h));
                for (size_t i = 0; fewLevels && i < source.samples.size(); ++i)
                    source.samples[i] = static_cast<T>(10 * (1 + i * i / 3 % 3));
                ExpectByDefinition(source.source(), Band<T>{c.width, c.height}, nullptr, c.h, limits, way);
            };
            for (const Case& c : cases) {
                if (fewLevels && c.width * c.height > 1000) continue;
                expect(c, &ExtremumSharpening<T>::operator());
                expect(c, &ExtremumSharpening<T>::AnySize);
            }
            for (const Case& c : odd) expect(c, &ExtremumSharpening<T>::operator());
        }
}

// More than one strip of columns, and blocks of rows of which the last is not full.
TYPED_TEST(Extremum, StripsAndBlocksMeetWithoutASeam) {
    using T = TypeParam;
    Band<T> source{5000, 8}, tall{1100, 60};
    source.AddNoise(1);
    tall.AddNoise(2);
    ExpectByDefinition(source.source(), Band<T>{5000, 8}, nullptr, 2, LuminanceRanges<T>()[0]);
    ExpectByDefinition(tall.source(), Band<T>{1100, 60}, nullptr, 4, LuminanceRanges<T>()[0]);
}

TYPED_TEST(Extremum, RegionsAreKeptAndSizesMayDiffer) {
    using T = TypeParam;
    ForeignRegion region;
    region.box = {0, 0, 400, 300};
    region.rows = {{3, {MakeRun(2, 5), MakeRun(9, 9)}},
                   {7, {MakeRun(-5, 90)}},
                   {20, {MakeRun(0, 0), MakeRun(30, 31), MakeRun(59, 70)}},
                   {240, {MakeRun(11, 260)}}};
    Band<T> source{50, 40};
    source.AddNoise(3);
    for (const int32_t h : {0, 1, 2, 6, 40}) {
        ExpectByDefinition(source.source(), Band<T>{60, 45}, &region, h, LuminanceRanges<T>()[1]);
        ExpectByDefinition(source.source(), Band<T>{300, 260}, &region, h, LuminanceRanges<T>()[0]);
        ExpectByDefinition(source.source(), Band<T>{20, 15}, &region, h, LuminanceRanges<T>()[0]);
    }
}

// A flipped image that shows every other column: nothing lies side by side.
TYPED_TEST(Extremum, ForeignTablesAreTheTruth) {
    using T = TypeParam;
    Band<T> samples{80, 30};
    samples.AddNoise(4);
    const Band<T> view{40, 30};
    std::vector<VPAEntry> table = view.table;
    for (size_t i = 0; i < table.size(); ++i) {
        const int32_t x = view.table[i].XEntry, y = view.table[i].YEntry / view.table[kTableMargin + 1].YEntry;
        table[i] = {2 * (39 - x), samples.table[static_cast<size_t>(kTableMargin + 29 - y)].YEntry};
    }
    const PixelView<const T> from(samples.samples.data(), table.data() + kTableMargin, 40, 30);
    for (const int32_t h : {0, 1, 4, 60}) ExpectByDefinition(from, view, nullptr, h, LuminanceRanges<T>()[1]);
}

TEST(ExtremumOfFloats, NanDoesNotCountAndZerosLoseTheirSign) {
    Band<float> source{3, 1}, to{3, 1};
    source.samples = {kFloatNan, 4.0f, 1.0f};
    const RegionRows rows(nullptr, 3, 1);
    for (const int32_t h : {1, 2}) {
        ExtremumSharpening<float>(h, {kFloatNan, kFloatNan})(source.source(), to.view(), rows);
        EXPECT_TRUE(SameBits(&kFloatNan, &to.samples[0], 1));
        EXPECT_EQ(4.0f, to.samples[1]);
        EXPECT_EQ(1.0f, to.samples[2]);
    }
    source.samples = {-0.0f, -0.0f, -0.0f};
    for (const int32_t h : {-1, 0, 1, 2}) {
        ExtremumSharpening<float>(h, {-0.0f, -0.0f})(source.source(), to.view(), rows);
        for (const float zero : to.samples) EXPECT_FALSE(std::signbit(zero)) << h;
    }
}

TYPED_TEST(Extremum, EveryVariantOf3x3EqualsTheDefinition) {
    ExpectVariantsAgree<TypeParam>(kExtremumSharpening3x3<TypeParam>);
}

// Values that are not NaN and have no negative zero, as rows of minima and maxima hold them.
template <class T>
std::vector<T> Numbers(size_t n, uint32_t seed) {
    std::vector<T> numbers = Noise<T>(n, seed);
    for (T& number : numbers) number = number == number ? static_cast<T>(number + T{0}) : T{5};
    return numbers;
}

TYPED_TEST(Extremum, EveryVariantOfTheKernelsEqualsTheDefinition) {
    using T = TypeParam;
    for (const size_t n : kAwkwardSizes) {
        SCOPED_TRACE(n);
        Guarded<T> pixels(Noise<T>(n, static_cast<uint32_t>(n)), n % 5);
        std::vector<T> rows[6];
        for (uint32_t k = 0; k < 6; ++k) rows[k] = Numbers<T>(n + 40, 11 + k);
        for (size_t i = 0; i < n; ++i) {
            // Squares hold the pixel, so their extremes are on either side of it.
            const T p = pixels.data()[i];
            if (p < rows[4][i]) rows[4][i] = p;
            if (p > rows[5][i]) rows[5][i] = p;
        }
        const ExtremaRow<T> from{rows[0].data(), rows[1].data()}, other{rows[2].data(), rows[3].data()},
            square{rows[4].data(), rows[5].data()};
        const size_t stride = n + 67;  // pixels between the rows, which nobody may write to
        ExpectTheBits(kExtremum<T>, Numbers<T>(10 * stride, 17), [&](const ExtremumKernels<T>& kernels, T* to) {
            const auto row = [&](size_t k) { return ExtremaRow<T>{to + 2 * k * stride, to + (2 * k + 1) * stride}; };
            kernels.extend(pixels.data(), from, row(0), n);
            kernels.extendAndJoin(pixels.data(), row(0), row(0), other, row(1), n);
            kernels.widen(from, row(2), {1, 17, 40}, n);
            to += 6 * stride;
            for (const FilterParameters<T>& limits : LuminanceRanges<T>()) {
                kernels.sharpen(pixels.data(), square, 9, to, n, limits);
                to += stride;
            }
        });
    }
}

}  // namespace
}  // namespace orlix
