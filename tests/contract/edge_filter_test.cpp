// Sobel, ExtremumSharpening and Median3x3 as their clients see them, against a slow road with a mirror of its own.

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "contract/support.hpp"

namespace orlix::testing {
namespace {

using ::testing::Each;
using ::testing::ElementsAreArray;

constexpr const char* kSource = "Orlix.Image.1";

struct Filter {
    std::string name;
    std::function<HRESULT(IImageProcess&, IImageVPA*, LONG)> apply;
};

const std::vector<Filter>& Filters() {
    static const std::vector<Filter> filters = {
        {"Sobel", [](IImageProcess& p, IImageVPA* s, LONG b) { return p.Sobel(s, b); }},
        {"ExtremumSharpening", [](IImageProcess& p, IImageVPA* s, LONG b) { return p.ExtremumSharpening(1, s, b); }},
        {"ExtremumSharpening", [](IImageProcess& p, IImageVPA* s, LONG b) { return p.ExtremumSharpening(4, s, b); }},
        {"ExtremumSharpening", [](IImageProcess& p, IImageVPA* s, LONG b) { return p.ExtremumSharpening(-3, s, b); }},
        {"Median3x3", [](IImageProcess& p, IImageVPA* s, LONG b) { return p.Median3x3(s, b); }},
    };
    return filters;
}

template <class Pixel>
struct Image {
    LONG width;
    ComPtr<IImageVPAExPlus> pixels;
    ComPtr<IImageProcess> process = Cast<IImageProcess>(pixels);
    Image(LONG w, const std::vector<Pixel>& values) : width(w), pixels(ImageOf<Pixel>(w, values)) {}
    Image(LONG w, LONG height, LONG bands = 1) : width(w), pixels(NewImage<Pixel>(w, height, bands)) {}
    IImageVPA* source() const { return pixels.get(); }
    std::vector<Pixel> values(LONG band = 0) const { return PixelsOf<Pixel>(pixels, band); }
};

template <class Pixel>
std::vector<Pixel> Noise(LONG width, LONG height, uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<Pixel> pixels(static_cast<size_t>(width * height));
    for (Pixel& pixel : pixels) pixel = static_cast<Pixel>(random() >> (sizeof(Pixel) == 4 ? 14 : 0));
    return pixels;
}

LONG Mirrored(LONG i, LONG size) {
    while (size > 1 && (i < 0 || i >= size)) i = i < 0 ? -i : 2 * (size - 1) - i;
    return size > 1 ? i : 0;
}

// The sorted square of side 2h + 1 around each pixel in turn; use(square, pixel) gives the result.
template <class Pixel, class Use>
std::vector<Pixel> OfSquares(LONG width, const std::vector<Pixel>& pixels, LONG h, const Use& use) {
    const LONG height = static_cast<LONG>(pixels.size()) / width;
    std::vector<Pixel> results;
    for (LONG y = 0; y < height; ++y)
        for (LONG x = 0; x < width; ++x) {
            std::vector<Pixel> square;
            for (LONG v = y - h; v <= y + h; ++v)
                for (LONG u = x - h; u <= x + h; ++u)
                    square.push_back(pixels[static_cast<size_t>(Mirrored(v, height) * width + Mirrored(u, width))]);
            std::sort(square.begin(), square.end());
            results.push_back(use(square, pixels[static_cast<size_t>(y * width + x)]));
        }
    return results;
}

template <class Pixel>
class EdgeFilterOf : public ::testing::Test {};
using PixelTypes = ::testing::Types<uint8_t, uint16_t, uint32_t, float>;
TYPED_TEST_SUITE(EdgeFilterOf, PixelTypes, );

TYPED_TEST(EdgeFilterOf, MedianIsThatOfTheMirroredSquareAndIsNotClamped) {
    using Pixel = TypeParam;
    for (const auto& [width, height] : {std::pair<LONG, LONG>{1, 1}, {5, 1}, {1, 4}, {9, 7}, {150, 4}}) {
        const auto noise = Noise<Pixel>(width, height, 1);
        const Image<Pixel> from(width, noise), to(width, height);
        ASSERT_EQ(S_OK, to.process->PutLuminanceRange(100, 110));
        ASSERT_EQ(S_OK, to.process->Median3x3(from.source(), 0));
        EXPECT_THAT(to.values(),
                    ElementsAreArray(OfSquares(width, noise, 1, [](const auto& square, Pixel) { return square[4]; })));
    }
}

TYPED_TEST(EdgeFilterOf, ExtremumSharpeningTakesTheNearerExtreme) {
    using Pixel = TypeParam;
    for (const auto& [width, height, h] :
         {std::array<LONG, 3>{1, 1, 1}, {9, 7, 1}, {9, 7, 0}, {150, 12, 5}, {7, 5, 20}})
        for (const bool wide : {true, false}) {
            const auto noise = Noise<Pixel>(width, height, 2);
            const Image<Pixel> from(width, noise), to(width, height);
            double lower = 90, upper = 120;
            if (wide)
                ASSERT_EQ(S_OK, to.process->GetLuminanceRange(&lower, &upper));
            else
                ASSERT_EQ(S_OK, to.process->PutLuminanceRange(lower, upper));
            ASSERT_EQ(S_OK, to.process->ExtremumSharpening(h, from.source(), 0));
            EXPECT_THAT(to.values(), ElementsAreArray(OfSquares(
                                         width, noise, h,
                                         [&](const auto& square, Pixel p) {
                                             const double mx = std::max(lower, static_cast<double>(square.back()));
                                             const double mn = std::min(upper, static_cast<double>(square.front()));
                                             return static_cast<Pixel>(
                                                 static_cast<double>(p) - mn >= mx - static_cast<double>(p) ? mx : mn);
                                         })))
                << width << " " << height << " " << h;
        }
}

TYPED_TEST(EdgeFilterOf, AFlatImageHasNoGradientAndStaysAsItIs) {
    using Pixel = TypeParam;
    const Image<Pixel> flat(20, std::vector<Pixel>(100, Pixel{77})), to(20, 5);
    ASSERT_EQ(S_OK, to.process->Median3x3(flat.source(), 0));
    EXPECT_THAT(to.values(), Each(Pixel{77}));
    ASSERT_EQ(S_OK, to.process->Sobel(flat.source(), 0));
    EXPECT_THAT(to.values(), Each(Pixel{0}));
    ASSERT_EQ(S_OK, to.process->ExtremumSharpening(2, flat.source(), 0));
    EXPECT_THAT(to.values(), Each(Pixel{77}));
    ASSERT_EQ(S_OK, to.process->PutLuminanceRange(5, 200));
    ASSERT_EQ(S_OK, to.process->Sobel(flat.source(), 0));
    EXPECT_THAT(to.values(), Each(Pixel{5}));
}

TYPED_TEST(EdgeFilterOf, TheImageItselfGivesWhatACopyGives) {
    using Pixel = TypeParam;
    for (const Filter& filter : Filters()) {
        const auto noise = Noise<Pixel>(70, 30, 3);
        const Image<Pixel> from(70, noise), to(70, 30), self(70, noise);
        ASSERT_EQ(S_OK, filter.apply(*to.process, from.source(), 0));
        ASSERT_EQ(S_OK, filter.apply(*self.process, self.source(), 0));
        EXPECT_EQ(to.values(), self.values()) << filter.name;
        EXPECT_EQ(noise, from.values());
    }
}

TYPED_TEST(EdgeFilterOf, RegionsKeepTheOtherPixelsAndBandsTheOtherBands) {
    using Pixel = TypeParam;
    for (const Filter& filter : Filters()) {
        const auto noise = Noise<Pixel>(40, 20, 4);
        const Image<Pixel> from(40, noise), whole(40, 20), part(40, 20, 3);
        ASSERT_EQ(S_OK, filter.apply(*whole.process, from.source(), 0));
        const auto region = CreateObject<IShapeRegionOfInterest>("Orlix.ShapeRegionOfInterest");
        Check(region->CreateRectangle(40, 20, 3, 2, 30, 11), region);
        ASSERT_EQ(S_OK, part.process->ScalarEquals(9));
        ASSERT_EQ(S_OK, part.process->put_RegionOfInterest(region.get()));
        ASSERT_EQ(S_OK, part.process->put_BandToProcess(1));
        ASSERT_EQ(S_OK, filter.apply(*part.process, from.source(), 0));
        auto want = whole.values();
        for (size_t i = 0; i < want.size(); ++i)
            if (i % 40 < 3 || i % 40 > 30 || i / 40 < 2 || i / 40 > 11) want[i] = Pixel{9};
        EXPECT_EQ(want, part.values(1)) << filter.name;
        EXPECT_THAT(part.values(0), Each(Pixel{9}));
        EXPECT_THAT(part.values(2), Each(Pixel{9}));
    }
}

TEST(Sobel, OfBytesIsTheTableRootOfTheLow16Bits) {
    const struct {
        uint8_t left, right, want;
    } cases[] = {{0, 255, 240}, {0, 25, 101}, {25, 0, 101}, {0, 64, 0}, {0, 1, 4}, {0, 4, 16}, {10, 73, 252}};
    for (const auto& c : cases) {
        std::vector<uint8_t> step;
        step.reserve(9);
        for (int i = 0; i < 9; ++i) step.push_back(i % 3 < 2 ? c.left : c.right);
        const Image<uint8_t> from(3, step), to(3, 3);
        ASSERT_EQ(S_OK, to.process->Sobel(from.source(), 0));
        EXPECT_EQ(c.want, to.values()[4]) << +c.left << " to " << +c.right;
    }
}

TEST(Sobel, OfOtherTypesReachesBeyondBytes) {
    const Image<uint16_t> words(3, {0, 0, 255, 0, 0, 255, 0, 0, 255}), toWords(3, 3);
    ASSERT_EQ(S_OK, toWords.process->Sobel(words.source(), 0));
    EXPECT_EQ(1008, toWords.values()[4]) << "1020 squared is in the bucket from 983040 on: root of 1015808";
    const Image<uint32_t> dwords(3, {0, 0, 255, 0, 0, 255, 0, 0, 255}), toDwords(3, 3);
    ASSERT_EQ(S_OK, toDwords.process->Sobel(dwords.source(), 0));
    EXPECT_EQ(1020u, toDwords.values()[4]);
    const Image<float> floats(3, {0, 0, 0.5f, 0, 0, 0.5f, 0, 0, 0.5f}), toFloats(3, 3);
    ASSERT_EQ(S_OK, toFloats.process->Sobel(floats.source(), 0));
    EXPECT_EQ(2.0f, toFloats.values()[4]);
}

// Beyond the margin of 200 only pixels away from the borders have a square.
TEST(ExtremumSharpening, OfHalfSizesBeyondTheMarginIsDefined) {
    std::vector<uint8_t> pixels(8 * 6, 100);
    pixels[0] = 10, pixels[47] = 190;
    const Image<uint8_t> from(8, pixels), to(8, 6);
    for (const LONG h : {LONG{203}, LONG{100000}, std::numeric_limits<LONG>::max()}) {
        ASSERT_EQ(S_OK, to.process->ScalarEquals(7));
        ASSERT_EQ(S_OK, to.process->ExtremumSharpening(h, from.source(), 0));
        EXPECT_THAT(to.values(), Each(7)) << h;
    }
    ASSERT_EQ(S_OK, to.process->ExtremumSharpening(202, from.source(), 0));
    std::vector<uint8_t> want(8 * 6, 7);
    for (size_t y = 2; y <= 3; ++y)
        for (size_t x = 2; x <= 5; ++x) want[y * 8 + x] = 190;  // 90 below 190 and 90 above 10: a tie
    EXPECT_EQ(want, to.values());
    for (const LONG h : {LONG{-1}, std::numeric_limits<LONG>::min()}) {
        ASSERT_EQ(S_OK, to.process->ExtremumSharpening(h, from.source(), 0));
        EXPECT_EQ(255, to.values()[0]) << "mn is the upper limit, mx the lower one";
        EXPECT_EQ(0, to.values()[47]);
    }
}

TEST(EdgeFilters, FailuresNameTheMethodAndWriteNothing) {
    const Image<uint8_t> one(4, 3);
    ASSERT_EQ(S_OK, one.process->ScalarEquals(9));
    const auto words = NewImage<uint16_t>(4, 3, 3);
    const auto three = NewImage<uint8_t>(4, 3, 3);
    const auto empty = CreateObject<IImageVPAExPlus>("Orlix.Image");
    for (const Filter& filter : Filters()) {
        const std::string type = "IImageProcess::" + filter.name + ": data type mismatch.";
        const std::string bands = "IImageProcess::" + filter.name + ": mismatch in the number of bands to process.";
        EXPECT_TRUE(Fails(filter.apply(*one.process, words.get(), BI_AllBands), type.c_str(), kSource));
        EXPECT_TRUE(Fails(filter.apply(*one.process, three.get(), BI_AllBands), bands.c_str(), kSource));
        EXPECT_TRUE(
            Fails(filter.apply(*one.process, three.get(), 3), "IImageVPA::VPA: BandIndex is out of range", kSource));
        EXPECT_TRUE(Fails(filter.apply(*one.process, empty.get(), 0),
                          ("IImageProcess::" + filter.name + ": no source image.").c_str(), kSource));
        EXPECT_TRUE(FailsSilently(filter.apply(*one.process, nullptr, 0), E_POINTER));
        EXPECT_TRUE(Fails(filter.apply(*Cast<IImageProcess>(empty), one.source(), 0),
                          ("IImageProcess::" + filter.name + ": no image.").c_str(), kSource));
    }
    EXPECT_THAT(one.values(), Each(9));
}

}  // namespace
}  // namespace orlix::testing
