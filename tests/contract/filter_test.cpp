// The neighbourhood filters as their clients see them, against a slow road: definitions in doubles, and a mirror of its
// own.

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>

#include <orlix/filters.hpp>

#include "contract/support.hpp"

namespace orlix::testing {
namespace {

struct Range {
    double lower, upper;
    double Clamped(double v) const { return v < lower ? lower : v > upper ? upper : v; }
};
template <class Pixel>
constexpr Range kFull = {static_cast<double>(std::numeric_limits<Pixel>::lowest()),
                         static_cast<double>(std::numeric_limits<Pixel>::max())};

// The pixels around one, row by row, as doubles, which hold every pixel exactly.
using Square = std::vector<double>;

struct SlowFilter {
    std::string name;
    int radius;
    std::function<HRESULT(IImageProcess&, IImageVPA*, LONG)> apply;
    std::function<double(const Square&, LONG type, const Range&)> slow;
};

auto Weighing(int divisor, const std::vector<int>& weights) {
    return [=](const Square& square, LONG type, const Range& range) {
        // Of whole numbers far below 2^53, or of floats, rounded.
        const double v = std::inner_product(square.begin(), square.end(), weights.begin(), 0.0) / divisor;
        return range.Clamped(type == DT_Float ? v : type == DT_DWORD ? std::floor(v + 0.5) : std::trunc(v));
    };
}

// Roots of bytes and words are taken in the middle of buckets of the sum, of which bytes keep 16 bits.
double SobelOf(const Square& s, LONG type, const Range& range) {
    const double x = s[2] + 2 * s[5] + s[8] - (s[0] + 2 * s[3] + s[6]);
    const double y = s[6] + 2 * s[7] + s[8] - (s[0] + 2 * s[1] + s[2]);
    if (type == DT_Float) return range.Clamped(std::sqrt(x * x + y * y));
    if (type == DT_DWORD) return range.Clamped(std::floor(std::sqrt(x * x + y * y) + 0.5));
    const uint64_t sum = static_cast<uint64_t>(x * x + y * y) & (type == DT_BYTE ? 0xffff : ~uint64_t{0});
    if (sum >> 32) return range.Clamped(65535);
    const int bits = sum >> 24 ? 24 : sum >> 16 ? 16 : sum >> 12 ? 8 : sum >> 8 ? 4 : 0;
    const uint64_t middle = bits ? (sum >> bits << bits) + (1u << (bits - 1)) : sum;
    const double root = std::floor(std::sqrt(static_cast<double>(middle)) + 0.5);
    return range.Clamped(sum < 65536 ? std::min(root, 255.0) : root);
}

double MedianOf(Square square, LONG, const Range&) {
    std::sort(square.begin(), square.end());
    return square[square.size() / 2];
}

double NearerExtreme(const Square& square, LONG type, const Range& range) {
    const double p = square[square.size() / 2];
    const double high = std::max(range.lower, *std::max_element(square.begin(), square.end()));
    const double low = std::min(range.upper, *std::min_element(square.begin(), square.end()));
    const auto distance = [=](double v) { return type == DT_Float ? static_cast<float>(v) : v; };
    return distance(p - low) >= distance(high - p) ? high : low;
}

const std::vector<SlowFilter>& Filters() {
    using P = IImageProcess;
    const auto by = [](HRESULT (STDMETHODCALLTYPE P::*method)(IImageVPA*, LONG)) {
        return [method](P& p, IImageVPA* source, LONG band) { return (p.*method)(source, band); };
    };
    const auto extremum = [](LONG h) {
        return [h](P& p, IImageVPA* source, LONG band) { return p.ExtremumSharpening(h, source, band); };
    };
    static const std::vector<SlowFilter> filters = {
        {"Laplacian", 1, by(&P::Laplacian), Weighing(6, {1, 4, 1, 4, -20, 4, 1, 4, 1})},
        {"SharpenLow", 1, by(&P::SharpenLow), Weighing(2, {0, -1, 0, -1, 6, -1, 0, -1, 0})},
        {"SharpenMedium", 1, by(&P::SharpenMedium), Weighing(1, {0, -1, 0, -1, 5, -1, 0, -1, 0})},
        {"Gaussian3x3", 1, by(&P::Gaussian3x3), Weighing(16, {1, 2, 1, 2, 4, 2, 1, 2, 1})},
        {"Gaussian5x5", 2, by(&P::Gaussian5x5),
         Weighing(256, {1, 4, 6, 4, 1, 4, 16, 24, 16, 4, 6, 24, 36, 24, 6, 4, 16, 24, 16, 4, 1, 4, 6, 4, 1})},
        {"Sobel", 1, by(&P::Sobel), SobelOf},
        {"Median3x3", 1, by(&P::Median3x3), MedianOf},
        {"ExtremumSharpening", 1, extremum(1), NearerExtreme},
        {"ExtremumSharpening", 4, extremum(4), NearerExtreme},
    };
    return filters;
}

TEST(NamedFilters, AreAllTestedHereAndFoundByNameAndWord) {
    for (const NamedFilter& named : kNamedFilters) {
        EXPECT_TRUE(std::any_of(Filters().begin(), Filters().end(), [&](const SlowFilter& f) {
            return f.name == named.name;
        })) << named.name;
        EXPECT_EQ(&named, FindFilter(named.name));
        EXPECT_EQ(&named, FindFilter(named.word));
    }
    EXPECT_EQ(nullptr, FindFilter("sobel "));
}

// Pixels without an image: any column and row can be asked for.
template <class Pixel>
struct Plane {
    LONG width, height;
    std::vector<Pixel> pixels;

    static LONG Mirrored(LONG i, LONG size) {
        while (size > 1 && (i < 0 || i >= size)) i = i < 0 ? -i : 2 * (size - 1) - i;
        return size > 1 ? i : 0;
    }
    Pixel at(LONG x, LONG y) const {
        return pixels[static_cast<size_t>(Mirrored(y, height) * width + Mirrored(x, width))];
    }
};

template <class Pixel>
Plane<Pixel> NoisyPlane(LONG width, LONG height, uint32_t seed) {
    std::mt19937 random(seed);
    Plane<Pixel> plane{width, height, std::vector<Pixel>(static_cast<size_t>(width * height))};
    for (Pixel& pixel : plane.pixels)
        pixel = std::is_same_v<Pixel, float> ? static_cast<Pixel>(static_cast<double>(random()) / 65536.0 - 30000.0)
                                             : static_cast<Pixel>(random());
    return plane;
}

template <class Pixel>
double Expected(const SlowFilter& filter, const Plane<Pixel>& source, LONG x, LONG y, const Range& range) {
    Square square;
    for (LONG v = y - filter.radius; v <= y + filter.radius; ++v)
        for (LONG u = x - filter.radius; u <= x + filter.radius; ++u)
            square.push_back(static_cast<double>(source.at(u, v)));
    return filter.slow(square, kTypeOf<Pixel>, range);
}

template <class Pixel>
void Put(const TypedImage<Pixel>& image, const Plane<Pixel>& plane, LONG band = 0) {
    image.Fill([&](LONG x, LONG y) { return plane.at(x, y); }, band);
}

template <class Pixel>
TypedImage<Pixel> ImageOfPlane(const Plane<Pixel>& plane) {
    const auto image = NewImage<Pixel>(plane.width, plane.height);
    Put(image, plane);
    return image;
}

HRESULT Apply(const Image& to, const SlowFilter& filter, IImageVPA* source, LONG band = 0) {
    return filter.apply(*to.process, source, band);
}

// The pixels of a band are those of the slow road inside, and the given value outside.
template <class Pixel, class Inside>
void ExpectFiltered(const TypedImage<Pixel>& image, LONG band, const SlowFilter& filter, const Plane<Pixel>& source,
                    const Range& range, Pixel outside, const Inside& inside) {
    // A float result is the sum of some 30 rounded terms, none of which exceeds 20 / 6 of the largest pixel.
    const double tolerance = std::is_same_v<Pixel, float> ? 40 * 36000 * 4 * 0x1p-24 : 0;
    LONG y = 0;
    for (const auto row : Rows<Pixel>(image, band)) {
        for (LONG x = 0; x < static_cast<LONG>(row.size()); ++x) {
            const Pixel got = row[static_cast<size_t>(x)];
            const bool filtered = inside(x, y);
            const double want = filtered ? Expected(filter, source, x, y, range) : static_cast<double>(outside);
            if (std::abs(want - static_cast<double>(got)) <= (filtered ? tolerance : 0)) continue;
            FAIL() << filter.name << " of " << source.width << "x" << source.height << " at " << x << ", " << y
                   << " gives " << +got << " instead of " << want;
        }
        ++y;
    }
}

constexpr auto kEverywhere = [](LONG, LONG) { return true; };

template <class Pixel>
class FilterOf : public ::testing::Test {};
TYPED_TEST_SUITE(FilterOf, PixelTypes, );

TYPED_TEST(FilterOf, WholeImagesMirrorsTheBorderAndClampsToTheLuminanceRange) {
    using Pixel = TypeParam;
    const struct {
        LONG width, height;
    } sizes[] = {{1, 1}, {2, 1}, {1, 2}, {3, 3}, {5, 2}, {2, 7}, {17, 9}, {140, 5}, {700, 3}};
    for (const SlowFilter& filter : Filters())
        for (const auto& size : sizes) {
            const auto source = NoisyPlane<Pixel>(size.width, size.height, static_cast<uint32_t>(size.width));
            const auto from = ImageOfPlane(source), to = NewImage<Pixel>(size.width, size.height);
            const double quarter = std::is_same_v<Pixel, float> ? 8000 : kFull<Pixel>.upper / 4;
            for (const Range& range : {kFull<Pixel>, Range{std::floor(quarter), std::floor(2 * quarter)}}) {
                Check(to.process->PutLuminanceRange(range.lower, range.upper));
                ASSERT_EQ(S_OK, Apply(to, filter, from.get()));
                ExpectFiltered<Pixel>(to, 0, filter, source, range, 0, kEverywhere);
            }
        }
}

TYPED_TEST(FilterOf, ARegionLeavesTheRestAlone) {
    using Pixel = TypeParam;
    const auto source = NoisyPlane<Pixel>(300, 40, 1);
    const auto from = ImageOfPlane(source), to = NewImage<Pixel>(300, 40);
    for (const SlowFilter& filter : Filters())
        for (const auto& [left, right] :
             {std::pair<LONG, LONG>{0, 0}, {0, 1}, {1, 2}, {3, 190}, {250, 299}, {299, 299}}) {
            Check(to.process->put_RegionOfInterest(nullptr));
            ASSERT_EQ(S_OK, to.process->ScalarEquals(9));
            to.SetRegion(RectangleOf(5000, 5000, left, 5, right, 39));
            ASSERT_EQ(S_OK, Apply(to, filter, from.get()));
            ExpectFiltered<Pixel>(to, 0, filter, source, kFull<Pixel>, 9,
                                  [&, l = left, r = right](LONG x, LONG y) { return x >= l && x <= r && y >= 5; });
        }
}

TYPED_TEST(FilterOf, BandsGoSideBySide) {
    using Pixel = TypeParam;
    const auto from = NewImage<Pixel>(40, 6, 3), to = NewImage<Pixel>(40, 6, 3);
    std::vector<Plane<Pixel>> sources;
    for (LONG band = 0; band < 3; ++band) {
        sources.push_back(NoisyPlane<Pixel>(40, 6, static_cast<uint32_t>(band) + 7));
        Put(from, sources.back(), band);
    }
    for (const SlowFilter& filter : Filters()) {
        ASSERT_EQ(S_OK, to.process->put_BandToProcess(BI_AllBands));
        ASSERT_EQ(S_OK, Apply(to, filter, from.get(), BI_AllBands));
        for (LONG band = 0; band < 3; ++band)
            ExpectFiltered<Pixel>(to, band, filter, sources[static_cast<size_t>(band)], kFull<Pixel>, 0, kEverywhere);
        ASSERT_EQ(S_OK, to.process->put_BandToProcess(1));
        ASSERT_EQ(S_OK, Apply(to, filter, from.get(), 2));
        for (LONG band = 0; band < 3; ++band)
            ExpectFiltered<Pixel>(to, band, filter, sources[band == 1 ? 2 : static_cast<size_t>(band)], kFull<Pixel>, 0,
                                  kEverywhere);
    }
}

TYPED_TEST(FilterOf, TheImageItselfGivesWhatACopyGives) {
    using Pixel = TypeParam;
    const auto first = NoisyPlane<Pixel>(150, 9, 3), second = NoisyPlane<Pixel>(150, 9, 4);
    for (const SlowFilter& filter : Filters()) {
        const auto image = NewImage<Pixel>(150, 9, 2);
        Put(image, first, 0), Put(image, second, 1);
        ASSERT_EQ(S_OK, Apply(image, filter, image.get(), BI_AllBands));
        ExpectFiltered<Pixel>(image, 0, filter, first, kFull<Pixel>, 0, kEverywhere);
        ExpectFiltered<Pixel>(image, 1, filter, second, kFull<Pixel>, 0, kEverywhere);
        Put(image, first, 0), Put(image, second, 1);
        ASSERT_EQ(S_OK, image.process->put_BandToProcess(0));
        ASSERT_EQ(S_OK, Apply(image, filter, image.get(), 1));  // the other band
        ExpectFiltered<Pixel>(image, 0, filter, second, kFull<Pixel>, 0, kEverywhere);
        ASSERT_EQ(S_OK, Apply(image, filter, image.get(), 0));
    }
}

// Rows are filtered some at a time, at most 64: sizes around that, and what lies left and right of a region.
TYPED_TEST(FilterOf, TheImageItselfOfAnySize) {
    using Pixel = TypeParam;
    for (const auto& [width, height] :
         {std::pair<LONG, LONG>{1, 1}, {1, 130}, {3, 2}, {30, 64}, {31, 65}, {40, 131}, {9000, 11}, {40000, 7}}) {
        const auto source = NoisyPlane<Pixel>(width, height, 5);
        const auto image = ImageOfPlane(source);
        for (const SlowFilter& filter : Filters())
            for (const LONG edge : {0, 7}) {
                const LONG right = width - 1 - edge, bottom = height - 1 - edge;
                if (edge > right || edge > bottom) continue;
                Put(image, source);
                image.SetRegion(RectangleOf(width, height, edge, edge, right, bottom));
                ASSERT_EQ(S_OK, Apply(image, filter, image.get()));
                Check(image.process->put_RegionOfInterest(nullptr));
                const auto copy = NewImage<Pixel>(width, height);
                Put(copy, source);
                copy.SetRegion(RectangleOf(width, height, edge, edge, right, bottom));
                ASSERT_EQ(S_OK, Apply(copy, filter, ImageOfPlane(source).get()));
                ASSERT_EQ(copy.values(), image.values()) << filter.name << " " << width << " x " << height;
            }
    }
}

TYPED_TEST(FilterOf, BuffersThatOverlapGiveWhatACopyGives) {
    using Pixel = TypeParam;
    constexpr LONG width = 64, height = 20;
    for (const SlowFilter& filter : Filters())
        for (const size_t shift : {size_t{0}, size_t{1}, size_t{64}, size_t{3 * 64 + 5}})
            for (const bool up : {false, true}) {
                std::vector<Pixel> memory(width * height + shift);
                const TypedImage<Pixel> from, to;
                Pixel* const low = memory.data();
                Pixel* const high = low + shift;
                ASSERT_EQ(S_OK, from->AttachBuffer(up ? high : low, width, height, 1, kTypeOf<Pixel>, 0));
                ASSERT_EQ(S_OK, to->AttachBuffer(up ? low : high, width, height, 1, kTypeOf<Pixel>, 0));
                const auto source = NoisyPlane<Pixel>(width, height, 11);
                Put(from, source);
                ASSERT_EQ(S_OK, Apply(to, filter, from.get()));
                ExpectFiltered<Pixel>(to, 0, filter, source, kFull<Pixel>, 0, kEverywhere);
            }
}

// The table of a source may lie where the result goes.
TEST(FilterOfForeignTable, InTheDestinationGivesWhatACopyGives) {
    constexpr LONG width = 300, height = 300;
    std::vector<uint8_t> samples = NoisyPlane<uint8_t>(width, height, 3).pixels;
    const auto foreign = ForeignImage::Of(width, height, DT_BYTE, samples.data());
    const std::vector<VPAEntry> table = foreign->table;
    const auto expected = NewImage<uint8_t>(width, height);
    ASSERT_EQ(S_OK, expected.process->Gaussian3x3(foreign.get(), 0));
    const TypedImage<uint8_t> to;
    const LONG rows = static_cast<LONG>(table.size() * sizeof(VPAEntry)) / width;
    ASSERT_EQ(S_OK, to->AttachBuffer(foreign->table.data(), width, rows, 1, DT_BYTE, 0));
    ASSERT_EQ(S_OK, to.process->Gaussian3x3(foreign.get(), 0));
    const std::vector<uint8_t> all = expected.values();
    EXPECT_EQ(std::vector<uint8_t>(all.begin(), all.begin() + width * rows), to.values());
    // Copies: the table is moved into an image that is then overwritten.
    foreign->table = table;
    const auto copy = NewImage<uint8_t>(width, height);
    std::memcpy(std::get<0>(Get(copy, &IImageVPA::VPA, 0)), table.data(), table.size() * sizeof(VPAEntry));
    foreign->otherTable = static_cast<VPAEntry*>(std::get<0>(Get(copy, &IImageVPA::VPA, 0))) + 200;
    ASSERT_EQ(S_OK, copy->CreateFromImage(foreign.get(), 0));
    EXPECT_EQ(samples, copy.values());
}

TYPED_TEST(FilterOf, ASmallerSourceServesAsFarAsItsTablesReach) {
    using Pixel = TypeParam;
    for (const SlowFilter& filter : Filters())
        for (const auto& [width, height] : {std::pair<LONG, LONG>{3, 2}, {30, 1}}) {
            const auto source = NoisyPlane<Pixel>(width, height, 5);
            const auto from = ImageOfPlane(source), to = NewImage<Pixel>(240, 210);
            ASSERT_EQ(S_OK, to.process->ScalarEquals(9));
            ASSERT_EQ(S_OK, Apply(to, filter, from.get()));
            const LONG right = width + 199 - filter.radius, bottom = height + 199 - filter.radius;
            ExpectFiltered<Pixel>(to, 0, filter, source, kFull<Pixel>, 9,
                                  [&](LONG x, LONG y) { return x <= right && y <= bottom; });
        }
}

// What another component may hand out: bands interleaved, the picture upside down and reversed, rows that share
// samples; and a margin that repeats the edge instead of mirroring.
TYPED_TEST(FilterOf, SourcesOfOtherComponentsAreReadThroughTheirTables) {
    using Pixel = TypeParam;
    constexpr LONG width = 290, height = 12;
    auto memory = NoisyPlane<Pixel>(3 * width, height, 21).pixels;
    const auto foreign = ForeignImage::Of(width, height, kTypeOf<Pixel>, memory.data());
    const struct {
        size_t base;
        std::function<LONG(LONG)> column, row;
    } layouts[] = {
        {1, [](LONG x) { return 3 * x; }, [](LONG y) { return 3 * width * y; }},
        {3 * width * (height - 1), [](LONG x) { return x; }, [](LONG y) { return -3 * width * y; }},
        {2 * width, [](LONG x) { return -x; }, [](LONG y) { return 3 * width * (y / 2); }},
        {0, [](LONG x) { return x < 100 ? x : x + 7; }, [](LONG y) { return 3 * width * y; }},
        {0, [](LONG x) { return x / 290; }, [](LONG y) { return y; }},
    };
    for (const auto& layout : layouts) {
        foreign->SetOffsets(layout.column, layout.row);
        foreign->base = memory.data() + layout.base;
        Plane<Pixel> source{width, height, {}};
        for (LONG y = 0; y < height; ++y)
            for (LONG x = 0; x < width; ++x)
                source.pixels.push_back(
                    memory[static_cast<size_t>(static_cast<LONG>(layout.base) + layout.column(x) + layout.row(y))]);
        for (const SlowFilter& filter : Filters()) {
            const auto to = NewImage<Pixel>(width, height);
            ASSERT_EQ(S_OK, Apply(to, filter, foreign.get()));
            ExpectFiltered<Pixel>(to, 0, filter, source, kFull<Pixel>, 0, kEverywhere);
        }
    }
    // In the memory of the destination, flipped.
    const auto to = NewImage<Pixel>(width, height);
    const LONG stride = static_cast<LONG>((width * sizeof(Pixel) + 3) / 4 * 4 / sizeof(Pixel));
    const auto source = NoisyPlane<Pixel>(width, height, 22);
    Plane<Pixel> flipped{width, height, {}};
    for (LONG y = 0; y < height; ++y)
        for (LONG x = 0; x < width; ++x) flipped.pixels.push_back(source.at(x, height - 1 - y));
    foreign->base = std::get<0>(Get(to, &IImageVPA::VPA, 0));
    foreign->SetOffsets([](LONG x) { return x; }, [=](LONG y) { return stride * (height - 1 - y); });
    for (const SlowFilter& filter : Filters()) {
        Put(to, source);
        ASSERT_EQ(S_OK, Apply(to, filter, foreign.get()));
        ExpectFiltered<Pixel>(to, 0, filter, flipped, kFull<Pixel>, 0, kEverywhere);
    }
}

TEST(FilterOfForeignMargin, TakesWhatTheTableSays) {
    std::vector<uint8_t> memory = {10, 20, 30, 250};
    const auto foreign = ForeignImage::Of(3, 1, DT_BYTE, memory.data());
    for (size_t i = 0; i < 200; ++i) foreign->table[i].XEntry = 3;  // columns before 0 read 250
    const auto to = NewImage<uint8_t>(3, 1);
    ASSERT_EQ(S_OK, to.process->Gaussian3x3(foreign.get(), 0));
    EXPECT_THAT(to.values(), ::testing::ElementsAre((250 + 20 + 20) / 4, 20, 25));
}

TEST(FilterContract, FailuresNameTheMethodAndWriteNothing) {
    const auto one = NewImage<uint8_t>(4, 3);
    ASSERT_EQ(S_OK, one.process->ScalarEquals(9));
    const auto words = NewImage<uint16_t>(4, 3, 3);
    const auto three = NewImage<uint8_t>(4, 3, 3);
    const Image empty;
    const auto foreign = MakeCounted<ForeignImage>();
    foreign->type = DT_Char;
    for (const SlowFilter& filter : Filters()) {
        const std::string type = "IImageProcess::" + filter.name + ": data type mismatch.";
        const std::string bands = "IImageProcess::" + filter.name + ": mismatch in the number of bands to process.";
        EXPECT_TRUE(Fails(Apply(one, filter, words.get(), BI_AllBands), type));  // before the bands
        EXPECT_TRUE(Fails(Apply(one, filter, foreign.get()), type));
        EXPECT_TRUE(Fails(Apply(one, filter, three.get(), BI_AllBands), bands));
        EXPECT_TRUE(Fails(Apply(one, filter, three.get(), 3), "IImageVPA::VPA: BandIndex is out of range"));
        EXPECT_TRUE(Fails(Apply(one, filter, empty.get()), "IImageProcess::" + filter.name + ": no source image."));
        EXPECT_TRUE(FailsSilently(Apply(one, filter, nullptr), E_POINTER));
        EXPECT_TRUE(Fails(Apply(empty, filter, one.get()), "IImageProcess::" + filter.name + ": no image."));
    }
    EXPECT_THAT(one.values(), ::testing::Each(9));
}

// A source may call back: it replaces the destination, or changes its own type, while it is asked for its pixels.
TEST(FilterContract, SourcesThatInterfereDoNoHarm) {
    std::vector<uint8_t> memory(64 * 64);
    for (const SlowFilter& filter : Filters())
        for (const bool changesItself : {false, true}) {
            const auto to = NewImage<uint8_t>(64, 64);
            const auto foreign = ForeignImage::Of(64, 64, DT_BYTE, memory.data());
            foreign->onVpa = [&] {
                if (changesItself)
                    foreign->type = DT_Double;
                else
                    to->Create(1, 1, 1, DT_BYTE, 1);
            };
            EXPECT_TRUE(FailsSilently(Apply(to, filter, foreign.get()))) << filter.name;
        }
}

// Half the side of the square. What the pixels away from the borders get is tested in tests/filters.
TEST(ExtremumSharpening, OfHalfSizesBeyondTheMarginIsDefined) {
    std::vector<uint8_t> pixels(8 * 6, 100);
    pixels[0] = 10, pixels[47] = 190;
    const auto from = ImageOf<uint8_t>(8, pixels), to = NewImage<uint8_t>(8, 6);
    for (const auto& [h, first, last] :
         {std::tuple{LONG{203}, 7, 7}, {kMost, 7, 7}, {LONG{-1}, 255, 0}, {kLeast, 255, 0}}) {
        ASSERT_EQ(S_OK, to.process->ScalarEquals(7));
        ASSERT_EQ(S_OK, to.process->ExtremumSharpening(h, from.get(), 0));
        EXPECT_EQ(first, to.values().front()) << h;
        EXPECT_EQ(last, to.values().back()) << h;
    }
}

}  // namespace
}  // namespace orlix::testing
