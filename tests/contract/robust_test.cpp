// Hemispheres and robust fits as clients see them.

#include <gmock/gmock.h>

#include <algorithm>
#include <bit>
#include <cmath>

#include "contract/surface_kinds.hpp"

namespace orlix::testing {
namespace {

using ::testing::Each;

// A dome with noise of its own and a tenth of bad pixels; whole numbers throughout.
template <class Pixel>
TypedImage<Pixel> DomeWithBadPixels(LONG width, LONG height) {
    const auto image = NewImage<Pixel>(width, height);
    image.Fill([=, state = uint32_t{1}](LONG x, LONG y) mutable {
        const LONG dx = x - width / 2 - 3, dy = y - height / 2 + 2;
        const uint32_t n = (state = state * 1664525 + 1013904223) >> 16;
        return n % 10 == 0 ? n % 251
                           : 40 + std::floor(2 * std::sqrt(std::max(0.0, 3600.0 - dx * dx - dy * dy))) + n / 7 % 3;
    });
    return image;
}

void ExpectFailure(const Image& image, const SurfaceKind& kind, double p, const std::string& what) {
    SCOPED_TRACE(kind.name);
    const std::string text = "IOrlixImageProcess::get_Robust" + kind.name + "Fit: " + what;
    SurfaceRecord record;
    EXPECT_TRUE(Fails(kind.robustFit(*image.process, p, record), text));
    EXPECT_EQ(SurfaceRecord(), record);
    EXPECT_TRUE(Fails(kind.robustCorrect(*image.process, p), text));
}

TEST(RobustContract, RefusesProbabilitiesThenSeveralBands) {
    const auto bands = NewImage<uint8_t>(4, 4, 3);
    for (const SurfaceKind& kind : SurfaceKinds()) {
        for (const double p : {0.0, -0.5, 1.5, 1.0000000000000002, kNaN})
            ExpectFailure(bands, kind, p, "good pixel probability must be larger than 0.0 and no larger than 1.0");
        ExpectFailure(bands, kind, 1.0, "multiband " + kind.text + " fit is not supported.");
    }
    EXPECT_THAT(bands.values(), Each(0));
}

TEST(RobustContract, TooFewPixelsGiveFalseAndChangeNothing) {
    for (const SurfaceKind& kind : SurfaceKinds()) {
        const auto few = NewImage<uint8_t>(kind.pixels - 1, 1);
        few.Fill([](LONG x, LONG) { return 3 + x * x; });
        const auto before = few.values();
        SurfaceRecord record;
        EXPECT_EQ(S_FALSE, kind.robustFit(*few.process, 0.9, record));
        EXPECT_EQ(SurfaceRecord(), record);
        EXPECT_EQ(S_FALSE, kind.robustCorrect(*few.process, 0.9));
        EXPECT_EQ(before, few.values());
    }
}

TEST(RobustContract, TwoCallsAgreeAndOneMeansNinetyNinePercent) {
    const auto image = DomeWithBadPixels<uint16_t>(60, 50);
    for (const SurfaceKind& kind : SurfaceKinds())
        for (const double p : {0.75, 0.99}) {
            SurfaceRecord first, second;
            ASSERT_EQ(S_OK, kind.robustFit(*image.process, p, first));
            ASSERT_EQ(S_OK, kind.robustFit(*image.process, p == 0.99 ? 1.0 : p, second));
            EXPECT_EQ(first, second) << kind.name << p;
            EXPECT_EQ(SurfaceRecord().size, first.size);
        }
}

TEST(RobustContract, CorrectionIsTheFitAndThenTheCorrection) {
    for (const SurfaceKind& kind : SurfaceKinds()) {
        const auto byHand = DomeWithBadPixels<uint8_t>(60, 50), atOnce = DomeWithBadPixels<uint8_t>(60, 50);
        const auto before = atOnce.values();
        SurfaceRecord record;
        ASSERT_EQ(S_OK, kind.robustFit(*byHand.process, 0.8, record));
        ASSERT_EQ(S_OK, kind.correct(*byHand.process, record));
        ASSERT_EQ(S_OK, kind.robustCorrect(*atOnce.process, 0.8));
        EXPECT_EQ(byHand.values(), atOnce.values());
        EXPECT_NE(before, atOnce.values());
    }
}

// Bits that every build and every variant of the kernels give.
TEST(RobustContract, RecordsHaveTheSameBitsEverywhere) {
    const Image bytes = DomeWithBadPixels<uint8_t>(97, 83), floats = DomeWithBadPixels<float>(64, 70);
    const struct {
        const Image& image;
        size_t kind;
        bool robust;
    } cases[] = {{bytes, 0, true},  {bytes, 1, true},   {floats, 2, true}, {bytes, 3, true},
                 {floats, 4, true}, {floats, 3, false}, {bytes, 4, false}};
    // Their records one after the other.
    constexpr uint64_t kBits[] = {
        0x40607510d21dd36c, 0x3fb3c915cdee3bc3, 0xbfc0e445fd4edf6e, 0x4061b87671992b57, 0x40607510d21dd36c,
        0x4052f4b63b8d2c2a, 0x3ff9c9ae25ec36c3, 0x4001548b79c316f4, 0xbf964a7203c3981b, 0x3f605e53f042c8c9,
        0xbf965274fd5e8f9d, 0x4062185075075075, 0x405da30b33bdab2c, 0x3ff2ee686502a361, 0x3ff541f83e3824cb,
        0xbf90761759e7c9c8, 0x3f63dbe4e539136f, 0xbf97bd6d8a9706bc, 0xbf0cd3eeddb1c98e, 0x3f1601f0b28f6478,
        0xbf20b3fbc6382e9b, 0x3f186c4a1d14155f, 0x40607510d21dd36c, 0x4049584958760777, 0x404381baa778b22b,
        0x4045b05825c95b1a, 0x3fe01f452772ad3a, 0x404d83ca6bac4ac0, 0x4062185075075075, 0x40429ba9228acad5,
        0x403fabb021acd6e9, 0x40358e080de68d60, 0x3fdddb73dfb3bb2c, 0x40501b7e82c04732, 0xbfa7169b5503a0fb,
        0x3f96d2a243d16522, 0x4062185075075075, 0x40402a3377915cea, 0x40413037eef76463, 0x405a8650ba613e60,
        0x3fdd5715d773eaa1, 0x40414fd96ae65002, 0x40607510d21dd36c, 0x40496972825378be, 0x40438cbfad7008eb,
        0x404956b66a9b0766, 0x3fe1c4b51aa78c40, 0x404dac2341735398, 0xbf438aed3ce747af, 0xbf6d39e19e981fce};
    const uint64_t* bits = kBits;
    for (const auto& c : cases) {
        const SurfaceKind& kind = SurfaceKinds()[c.kind];
        SurfaceRecord record;
        ASSERT_EQ(S_OK, c.robust ? kind.robustFit(*c.image.process, 0.8, record) : kind.fit(*c.image.process, record));
        for (size_t i = 0; i <= kind.numbers; ++i)
            EXPECT_EQ(*bits++, std::bit_cast<uint64_t>(record.values[i])) << kind.name << c.robust << " " << i;
    }
    EXPECT_EQ(std::end(kBits), bits);
}

// --------------------------------------------------------------------------------------------------------- hemispheres

template <class Pixel>
TypedImage<Pixel> CapOf(LONG width, LONG height, double base, double scale, double radius) {
    const auto image = NewImage<Pixel>(width, height);
    image.Fill([=](LONG x, LONG y) {
        const LONG dx = x - width / 2, dy = y - height / 2;
        return base + std::sqrt(std::max(0.0, radius * radius - dx * dx - dy * dy)) / scale;
    });
    return image;
}

// Average, centre x, y and z, z scale, radius and, of angled hemispheres, the slopes.
SurfaceRecord HemisphereRecord(std::initializer_list<double> values) {
    SurfaceRecord record;
    record.values.fill(0);
    std::copy(values.begin(), values.end(), record.values.begin());
    return record;
}

const SurfaceKind& Hemisphere(bool angled) { return SurfaceKinds()[angled ? 4 : 3]; }

TEST(HemisphereContract, FitsDomesAndBowlsAndFlattensThem) {
    for (const double scale : {0.25, -0.25})
        for (const bool angled : {false, true}) {
            const auto cap = CapOf<float>(100, 80, 100, scale, 70);
            SurfaceRecord fit;
            ASSERT_EQ(S_OK, Hemisphere(angled).fit(*cap.process, fit));
            EXPECT_EQ(SurfaceRecord().size, fit.size);
            const double want[] = {50, 40, 100, scale, 70, 0, 0};
            const double tolerance[] = {7e-5, 7e-5, 3e-4, 3e-7, 7e-5, 1e-6, 1e-6};
            for (size_t i = 0; i < Hemisphere(angled).numbers; ++i)
                EXPECT_NEAR(want[i], fit.values[i + 1], tolerance[i]) << angled << i;
            ASSERT_EQ(S_OK, Hemisphere(angled).correct(*cap.process, fit));
            for (const float pixel : cap.values()) ASSERT_NEAR(fit.values[0], pixel, 1e-3);
        }
}

TEST(HemisphereContract, CorrectionRoundsClampsAndLeavesAFlatSurfaceFlat) {
    // Radius 5 about (5, 5), a grey level a pixel: heights 5, 4 and 3 at distances 0, 3 and 4, and 0 from 5 on.
    const auto image = NewImage<uint8_t>(12, 11);
    image.Fill([](LONG, LONG) { return 104; });
    ASSERT_EQ(S_OK, image.process->PutLuminanceRange(103, 106));
    ASSERT_EQ(S_OK, Hemisphere(false).correct(*image.process, HemisphereRecord({102.5, 5, 5, 100, 1, 5})));
    EXPECT_EQ(103, image.at(5, 5));               // 104 - 105 + 102.5 = 101.5, below Lower
    EXPECT_EQ(103, image.at(8, 5));               // 102.5
    EXPECT_EQ(104, image.at(5, 9));               // 103.5 rounded half up
    EXPECT_EQ(106, image.at(10, 5));              // 106.5, above Upper
    EXPECT_EQ(106, image.at(11, 0));              // outside the circle
    const auto level = NewImage<uint16_t>(9, 9);  // no z scale: the height of the centre
    level.Fill([](LONG, LONG) { return 1234; });
    ASSERT_EQ(S_OK, Hemisphere(true).correct(*level.process, HemisphereRecord({7, 5, 5, 7, 0, 5, 0.1, 0.1})));
    EXPECT_THAT(level.values(), Each(1234));
}

// Which surfaces these are: tests/fits.
TEST(HemisphereContract, WhatDeterminesNoHemisphereGivesFalse) {
    const auto flat = NewImage<uint8_t>(30, 30), few = NewImage<uint8_t>(4, 1);
    few.Fill([](LONG x, LONG) { return x * x; });
    for (const Image& image : std::initializer_list<Image>{flat, few})
        for (const bool angled : {false, true}) {
            SurfaceRecord record;
            EXPECT_EQ(S_FALSE, Hemisphere(angled).fit(*image.process, record));
            EXPECT_EQ(SurfaceRecord(), record);
        }
}

TEST(HemisphereContract, FailuresHaveTheirTexts) {
    const auto bands = NewImage<uint8_t>(4, 4, 3), level = NewImage<uint8_t>(5, 5);
    for (const bool angled : {false, true}) {
        const SurfaceKind& kind = Hemisphere(angled);
        const std::string prefix = (angled ? "IOrlixImageProcess::get_" : "IImageProcess::get_") + kind.name + "Fit: ";
        SurfaceRecord record;
        EXPECT_TRUE(Fails(kind.fit(*bands.process, record), prefix + "multiband measurement is not supported."));
        for (const double bad : {kNaN, kInfinity}) {
            const auto image = NewImage<float>(20, 20);
            image.Fill([=](LONG x, LONG y) { return x == 7 && y == 9 ? bad : double{1} * x * y; });
            EXPECT_TRUE(Fails(kind.fit(*image.process, record), prefix + "not all pixels are finite."));
            EXPECT_EQ(SurfaceRecord(), record);
            for (const size_t at : {size_t{0}, kind.numbers}) {
                SurfaceRecord spoilt = HemisphereRecord({1, 1, 1, 1, 1, 1});
                spoilt.values[at] = bad;
                EXPECT_TRUE(Fails(kind.correct(*level.process, spoilt),
                                  "IOrlixImageProcess::Correct" + kind.name + ": the surface is not finite."));
            }
        }
    }
    EXPECT_THAT(level.values(), Each(0));
}

}  // namespace
}  // namespace orlix::testing
