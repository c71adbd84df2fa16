// The neighbourhood filters as their clients see them: borders, regions, bands, and sources of all kinds. What the
// kernels compute is tested in tests/filters.

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <random>

#include <orlix/filters.hpp>

#include "contract/support.hpp"

namespace orlix::testing {
namespace {

struct Range {
    double lower, upper;
};
template <class Pixel>
constexpr Range kFull = {static_cast<double>(std::numeric_limits<Pixel>::lowest()),
                         static_cast<double>(std::numeric_limits<Pixel>::max())};

struct AnyFilter {
    std::string name;
    std::function<HRESULT(IImageProcess&, IImageVPA*, LONG)> apply;
    std::array<double, 4> middle;  // of kSquare in images of bytes, words, double words and floats
};

constexpr int kSquare[5][5] = {{}, {0, 10, 20, 30}, {0, 40, 53, 60}, {0, 70, 80, 255}, {}};

// The roots of bytes and words are those of the middles of intervals; bytes keep 16 bits of the sum 245^2 + 405^2.
const std::vector<AnyFilter>& Filters() {
    using P = IImageProcess;
    const auto by = [](HRESULT (STDMETHODCALLTYPE P::*method)(IImageVPA*, LONG)) {
        return [method](P& p, IImageVPA* source, LONG band) { return (p.*method)(source, band); };
    };
    const auto extremum = [](LONG h) {
        return [h](P& p, IImageVPA* source, LONG band) { return p.ExtremumSharpening(h, source, band); };
    };
    static const std::vector<AnyFilter> filters = {{"Laplacian", by(&P::Laplacian), {17, 17, 18, 17.5}},
                                                   {"SharpenLow", by(&P::SharpenLow), {59, 59, 59, 59}},
                                                   {"SharpenMedium", by(&P::SharpenMedium), {65, 65, 65, 65}},
                                                   {"Gaussian3x3", by(&P::Gaussian3x3), {61, 61, 61, 61.0625}},
                                                   {"Gaussian5x5", by(&P::Gaussian5x5), {49, 49, 49, 49.015625}},
                                                   {"Sobel", by(&P::Sobel), {166, 479, 473, std::sqrt(224050.0)}},
                                                   {"Median3x3", by(&P::Median3x3), {53, 53, 53, 53}},
                                                   {"ExtremumSharpening", extremum(1), {10, 10, 10, 10}},
                                                   {"ExtremumSharpening", extremum(4), {0, 0, 0, 0}}};
    return filters;
}

TEST(NamedFilters, AreAllTestedHereAndFoundByNameAndWord) {
    for (const NamedFilter& named : kNamedFilters) {
        EXPECT_TRUE(std::any_of(Filters().begin(), Filters().end(), [&](const AnyFilter& f) {
            return f.name == named.name;
        })) << named.name;
        EXPECT_EQ(&named, FindFilter(named.name));
        EXPECT_EQ(&named, FindFilter(named.word));
    }
    EXPECT_EQ(nullptr, FindFilter("sobel "));
}

constexpr LONG kReach = 4;  // of the largest

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
void Put(const TypedImage<Pixel>& image, const Plane<Pixel>& plane, LONG band = 0) {
    image.Fill([&](LONG x, LONG y) { return plane.at(x, y); }, band);
}

template <class Pixel>
TypedImage<Pixel> ImageOfPlane(const Plane<Pixel>& plane) {
    const auto image = NewImage<Pixel>(plane.width, plane.height);
    Put(image, plane);
    return image;
}

HRESULT Apply(const Image& to, const AnyFilter& filter, IImageVPA* source, LONG band = 0) {
    return filter.apply(*to.process, source, band);
}

// What the filter gives far from all borders: of an image that is larger by the mirrored pixels which it reads.
template <class Pixel>
TypedImage<Pixel> FilteredAmongOthers(const AnyFilter& filter, const Plane<Pixel>& source, LONG width, LONG height,
                                      const Range& range) {
    const auto from = NewImage<Pixel>(width + 2 * kReach, height + 2 * kReach);
    const auto to = NewImage<Pixel>(width + 2 * kReach, height + 2 * kReach);
    from.Fill([&](LONG x, LONG y) { return source.at(x - kReach, y - kReach); });
    Check(to.process->PutLuminanceRange(range.lower, range.upper));
    EXPECT_EQ(S_OK, Apply(to, filter, from.get()));
    return to;
}

// The pixels of a band are those inside, and the given value outside.
template <class Pixel, class Inside>
void ExpectFiltered(const TypedImage<Pixel>& image, LONG band, const AnyFilter& filter, const Plane<Pixel>& source,
                    const Range& range, Pixel outside, const Inside& inside) {
    const auto [bands, width, height] = image.size();
    const auto filtered = FilteredAmongOthers(filter, source, width, height, range);
    const Rows<Pixel> rows(image, band), wanted(filtered);
    for (LONG y = 0; y < height; ++y)
        for (LONG x = 0; x < width; ++x) {
            const Pixel got = rows[y][static_cast<size_t>(x)];
            const Pixel want = inside(x, y) ? wanted[y + kReach][static_cast<size_t>(x + kReach)] : outside;
            if (std::memcmp(&want, &got, sizeof got) == 0) continue;
            FAIL() << filter.name << " of " << source.width << "x" << source.height << " at " << x << ", " << y
                   << " gives " << +got << " instead of " << +want;
        }
}

constexpr auto kEverywhere = [](LONG, LONG) { return true; };

template <class Pixel>
class FilterOf : public ::testing::Test {};
TYPED_TEST_SUITE(FilterOf, PixelTypes, );

TYPED_TEST(FilterOf, EachTypeIsTheOneOfItsName) {
    using Pixel = TypeParam;
    const auto from = NewImage<Pixel>(5, 5), to = NewImage<Pixel>(5, 5);
    from.Fill([](LONG x, LONG y) { return kSquare[y][x]; });
    const size_t type = std::is_same_v<Pixel, float> ? 3 : sizeof(Pixel) / 2;
    for (const AnyFilter& filter : Filters()) {
        ASSERT_EQ(S_OK, Apply(to, filter, from.get()));
        EXPECT_NEAR(filter.middle[type], static_cast<double>(to.at(2, 2)), type == 3 ? 1e-4 : 0) << filter.name;
    }
}

// A source serves as far as its tables reach, which is 200 pixels beyond it.
TYPED_TEST(FilterOf, TheRegionMirrorsTheBorderAndClampsToTheLuminanceRange) {
    using Pixel = TypeParam;
    const struct {
        LONG sourceWidth, sourceHeight, width, height, left, top, right, bottom;
    } cases[] = {{1, 1, 1, 1, 0, 0, 0, 0},
                 {2, 1, 2, 1, 0, 0, 1, 0},
                 {1, 2, 1, 2, 0, 0, 0, 1},
                 {3, 3, 3, 3, 0, 0, 9, 9},
                 {5, 2, 5, 2, 0, 0, 9, 9},
                 {2, 7, 2, 7, 0, 0, 9, 9},
                 {17, 9, 17, 9, 0, 0, 99, 99},
                 {140, 5, 140, 5, 0, 0, 999, 9},
                 {700, 3, 700, 3, 0, 0, 999, 9},
                 {300, 40, 300, 40, 0, 5, 0, 39},
                 {300, 40, 300, 40, 0, 5, 1, 39},
                 {300, 40, 300, 40, 1, 5, 2, 39},
                 {300, 40, 300, 40, 3, 5, 190, 9},
                 {300, 9, 300, 9, 250, 5, 299, 8},
                 {300, 9, 300, 9, 299, 5, 299, 8},
                 {3, 2, 240, 210, 0, 195, 239, 9999},
                 {30, 1, 240, 210, 180, 0, 239, 9999}};
    const double quarter = std::is_same_v<Pixel, float> ? 8000 : kFull<Pixel>.upper / 4;
    for (const AnyFilter& filter : Filters())
        for (const auto& c : cases) {
            const auto source = NoisyPlane<Pixel>(c.sourceWidth, c.sourceHeight, static_cast<uint32_t>(c.width));
            const auto from = ImageOfPlane(source), to = NewImage<Pixel>(c.width, c.height);
            const LONG radius = filter.name == "Gaussian5x5" ? 2 : &filter == &Filters().back() ? 4 : 1;
            const LONG right = std::min(c.right, c.sourceWidth + 199 - radius);
            const LONG bottom = std::min(c.bottom, c.sourceHeight + 199 - radius);
            for (const Range& range : {kFull<Pixel>, Range{std::floor(quarter), std::floor(2 * quarter)}}) {
                Check(to.process->PutLuminanceRange(range.lower, range.upper));
                Check(to.process->put_RegionOfInterest(nullptr));
                ASSERT_EQ(S_OK, to.process->ScalarEquals(9));
                to.SetRegion(RectangleOf(5000, 5000, c.left, c.top, c.right, c.bottom));
                ASSERT_EQ(S_OK, Apply(to, filter, from.get()));
                ExpectFiltered<Pixel>(to, 0, filter, source, range, 9, [&](LONG x, LONG y) {
                    return x >= c.left && x <= right && y >= c.top && y <= bottom;
                });
            }
        }
}

TYPED_TEST(FilterOf, BandsGoSideBySideAlsoFromTheImageItself) {
    using Pixel = TypeParam;
    const auto other = NewImage<Pixel>(150, 9, 3), to = NewImage<Pixel>(150, 9, 3);
    std::vector<Plane<Pixel>> sources;
    for (uint32_t band = 0; band < 3; ++band) sources.push_back(NoisyPlane<Pixel>(150, 9, band + 7));
    for (const AnyFilter& filter : Filters())
        for (const auto& from : {other, to}) {
            const auto fill = [&] {
                for (LONG band = 0; band < 3; ++band) Put(from, sources[static_cast<size_t>(band)], band);
            };
            fill();
            ASSERT_EQ(S_OK, to.process->put_BandToProcess(BI_AllBands));
            ASSERT_EQ(S_OK, Apply(to, filter, from.get(), BI_AllBands));
            for (LONG band = 0; band < 3; ++band)
                ExpectFiltered<Pixel>(to, band, filter, sources[static_cast<size_t>(band)], kFull<Pixel>, 0,
                                      kEverywhere);
            fill();
            const std::vector<Pixel> first = to.values(0), last = to.values(2);
            ASSERT_EQ(S_OK, to.process->put_BandToProcess(1));
            ASSERT_EQ(S_OK, Apply(to, filter, from.get(), 2));
            ExpectFiltered<Pixel>(to, 1, filter, sources[2], kFull<Pixel>, 0, kEverywhere);
            EXPECT_TRUE(first == to.values(0) && last == to.values(2)) << "the other bands";
        }
}

// Rows are filtered some at a time, at most 64: sizes around that, and what lies left and right of a region.
TYPED_TEST(FilterOf, TheImageItselfGivesWhatACopyGives) {
    using Pixel = TypeParam;
    for (const auto& [width, height] :
         {std::pair<LONG, LONG>{1, 1}, {1, 130}, {3, 2}, {30, 64}, {31, 65}, {40, 131}, {9000, 11}, {40000, 7}}) {
        const auto source = NoisyPlane<Pixel>(width, height, 5);
        for (const AnyFilter& filter : Filters())
            for (const LONG edge : {0, 7}) {
                const LONG right = width - 1 - edge, bottom = height - 1 - edge;
                if (edge > right || edge > bottom) continue;
                const auto image = ImageOfPlane(source), copy = ImageOfPlane(source);
                for (const auto& each : {image, copy})
                    each.SetRegion(RectangleOf(width, height, edge, edge, right, bottom));
                ASSERT_EQ(S_OK, Apply(image, filter, image.get()));
                ASSERT_EQ(S_OK, Apply(copy, filter, ImageOfPlane(source).get()));
                ASSERT_EQ(copy.values(), image.values()) << filter.name << " " << width << " x " << height;
            }
    }
}

TYPED_TEST(FilterOf, BuffersThatOverlapGiveWhatACopyGives) {
    using Pixel = TypeParam;
    constexpr LONG width = 64, height = 20;
    for (const AnyFilter& filter : Filters())
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

// Neither time nor memory goes into what a source claims to have beyond the destination.
TEST(FilterOfForeignTable, IsReadAsFarAsTheDestinationOnly) {
    std::vector<uint8_t> samples = NoisyPlane<uint8_t>(30, 20, 3).pixels;
    const auto foreign = ForeignImage::Of(30, 20, DT_BYTE, samples.data());
    const auto want = NewImage<uint8_t>(30, 20), got = NewImage<uint8_t>(30, 20);
    for (const auto filter : {&IImageProcess::Gaussian3x3, &IImageProcess::Median3x3}) {
        foreign->width = 30, foreign->height = 20;
        ASSERT_EQ(S_OK, (want.process.get()->*filter)(foreign.get(), 0));
        foreign->width = foreign->height = std::numeric_limits<LONG>::max();
        ASSERT_EQ(S_OK, (got.process.get()->*filter)(foreign.get(), 0));
        EXPECT_EQ(want.values(), got.values());
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
        for (const AnyFilter& filter : Filters()) {
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
    for (const AnyFilter& filter : Filters()) {
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
    const auto foreign = MakeCounted<ForeignImage>();
    foreign->type = DT_Char;
    for (const AnyFilter& filter : Filters()) {
        const std::string type = "IImageProcess::" + filter.name + ": data type mismatch.";
        const std::string bands = "IImageProcess::" + filter.name + ": mismatch in the number of bands to process.";
        EXPECT_TRUE(Fails(Apply(one, filter, words.get(), BI_AllBands), type));  // before the bands
        EXPECT_TRUE(Fails(Apply(one, filter, foreign.get()), type));
        EXPECT_TRUE(Fails(Apply(one, filter, three.get(), BI_AllBands), bands));
        EXPECT_TRUE(Fails(Apply(one, filter, three.get(), 3), "IImageVPA::VPA: BandIndex is out of range"));
        EXPECT_TRUE(Fails(Apply(one, filter, Image().get()), "IImageProcess::" + filter.name + ": no source image."));
    }
    EXPECT_THAT(one.values(), ::testing::Each(9));
}

}  // namespace
}  // namespace orlix::testing
