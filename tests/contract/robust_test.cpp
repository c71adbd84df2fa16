// Hemispheres and robust fits as clients see them.

#include <gmock/gmock.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>

#include "contract/support.hpp"

namespace orlix::testing {
namespace {

using ::testing::Each;

struct Picture {
    ComPtr<IImageVPAExPlus> pixels;
    ComPtr<IOrlixImageProcess> process;
};

template <class Pixel, class Height>
Picture PictureOf(LONG width, LONG height, const Height& heightAt) {
    const auto image = NewImage<Pixel>(width, height);
    LONG y = 0;
    for (const auto row : Rows<Pixel>(image)) {
        LONG x = 0;
        for (Pixel& pixel : row) pixel = static_cast<Pixel>(heightAt(x++, y));
        ++y;
    }
    return {image, Cast<IOrlixImageProcess>(image)};
}

// Uniform in 0..65535, the same everywhere.
class Noise {
public:
    uint32_t operator()() { return (state_ = state_ * 1664525 + 1013904223) >> 16; }

private:
    uint32_t state_ = 1;
};

// One surface: its methods and its names.
template <class Record>
struct Surface {
    HRESULT (STDMETHODCALLTYPE IOrlixImageProcess::*robust)(double, Record*);
    HRESULT (STDMETHODCALLTYPE IOrlixImageProcess::*correct)(Record*);
    HRESULT (STDMETHODCALLTYPE IOrlixImageProcess::*robustCorrect)(double);
    const char* name;  // in the names of methods
    const char* text;  // in texts
    LONG pixels;       // that determine it
};

template <class Visit>
void ForEachSurface(const Visit& visit) {
    using P = IOrlixImageProcess;
    visit(Surface<SPlanarFit>{&P::get_RobustPlanarFit, &P::CorrectPlanar, &P::RobustCorrectPlanar, "Planar", "planar",
                              3});
    visit(Surface<SBiquadraticFit>{&P::get_RobustBiquadraticFit, &P::CorrectBiquadratic, &P::RobustCorrectBiquadratic,
                                   "Biquadratic", "biquadratic", 6});
    visit(Surface<SBicubicFit>{&P::get_RobustBicubicFit, &P::CorrectBicubic, &P::RobustCorrectBicubic, "Bicubic",
                               "bicubic", 10});
    visit(Surface<SHemisphereFit>{&P::get_RobustHemisphereFit, &P::CorrectHemisphere, &P::RobustCorrectHemisphere,
                                  "Hemisphere", "hemisphere", 5});
    visit(Surface<SAngledHemisphereFit>{&P::get_RobustAngledHemisphereFit, &P::CorrectAngledHemisphere,
                                        &P::RobustCorrectAngledHemisphere, "AngledHemisphere", "angled hemisphere", 7});
}

template <class Record>
Record Untouched() {
    Record record;
    std::memset(&record, 0x5a, sizeof record);
    return record;
}
template <class Record>
bool SameRecord(const Record& a, const Record& b) {
    // The doubles, bit for bit; what lies between m_lSize and them is nobody's.
    const auto bits = [](const Record& record) {
        std::array<uint64_t, (sizeof(Record) - offsetof(Record, m_dAverage)) / 8> out;
        std::memcpy(out.data(), &record.m_dAverage, sizeof out);
        return out;
    };
    return a.m_lSize == b.m_lSize && bits(a) == bits(b);
}

// A dome with noise of its own and a tenth of bad pixels; whole numbers throughout.
template <class Pixel>
Picture DomeWithBadPixels(LONG width, LONG height) {
    Noise noise;
    return PictureOf<Pixel>(width, height, [&](LONG x, LONG y) {
        const LONG dx = x - width / 2 - 3, dy = y - height / 2 + 2;
        const uint32_t n = noise();
        return n % 10 == 0 ? n % 251
                           : 40 + std::floor(2 * std::sqrt(std::max(0.0, 3600.0 - dx * dx - dy * dy))) + n / 7 % 3;
    });
}

template <class Record>
void ExpectFailure(const Picture& picture, const Surface<Record>& surface, double p, const std::string& what) {
    const std::string text = std::string("IOrlixImageProcess::get_Robust") + surface.name + "Fit: " + what;
    Record record = Untouched<Record>();
    EXPECT_TRUE(Fails((picture.process.get()->*surface.robust)(p, &record), text));
    EXPECT_TRUE(SameRecord(Untouched<Record>(), record)) << surface.name;
    EXPECT_TRUE(Fails((picture.process.get()->*surface.robustCorrect)(p), text));
}

TEST(RobustContract, RefusesProbabilitiesThenSeveralBands) {
    const auto image = NewImage<uint8_t>(4, 4, 3);
    const Picture bands = {image, Cast<IOrlixImageProcess>(image)};
    ForEachSurface([&](const auto& surface) {
        for (const double p : {0.0, -0.5, 1.5, 1.0000000000000002, kNaN})
            ExpectFailure(bands, surface, p, "good pixel probability must be larger than 0.0 and no larger than 1.0");
        ExpectFailure(bands, surface, 1.0, std::string("multiband ") + surface.text + " fit is not supported.");
        EXPECT_TRUE(FailsSilently((bands.process.get()->*surface.robust)(0.0, nullptr), E_POINTER));
        EXPECT_TRUE(FailsSilently((bands.process.get()->*surface.correct)(nullptr), E_POINTER));
    });
    EXPECT_THAT(PixelsOf<uint8_t>(image), Each(0));
}

TEST(RobustContract, TooFewPixelsGiveFalseAndChangeNothing) {
    ForEachSurface([&]<class Record>(const Surface<Record>& surface) {
        const auto few = PictureOf<uint8_t>(surface.pixels - 1, 1, [](LONG x, LONG) { return 3 + x * x; });
        const auto before = PixelsOf<uint8_t>(few.pixels);
        Record record = Untouched<Record>();
        EXPECT_EQ(S_FALSE, (few.process.get()->*surface.robust)(0.9, &record));
        EXPECT_TRUE(SameRecord(Untouched<Record>(), record));
        EXPECT_EQ(S_FALSE, (few.process.get()->*surface.robustCorrect)(0.9));
        EXPECT_EQ(before, PixelsOf<uint8_t>(few.pixels));
    });
}

TEST(RobustContract, TwoCallsAgreeAndOneMeansNinetyNinePercent) {
    const auto picture = DomeWithBadPixels<uint16_t>(60, 50);
    ForEachSurface([&]<class Record>(const Surface<Record>& surface) {
        for (const double p : {0.75, 0.99}) {
            Record first = Untouched<Record>(), second = first;
            ASSERT_EQ(S_OK, (picture.process.get()->*surface.robust)(p, &first));
            ASSERT_EQ(S_OK, (picture.process.get()->*surface.robust)(p == 0.99 ? 1.0 : p, &second));
            EXPECT_TRUE(SameRecord(first, second)) << surface.name << p;
            EXPECT_EQ(Untouched<Record>().m_lSize, first.m_lSize);
        }
    });
}

TEST(RobustContract, CorrectionIsTheFitAndThenTheCorrection) {
    ForEachSurface([&]<class Record>(const Surface<Record>& surface) {
        const auto byHand = DomeWithBadPixels<uint8_t>(60, 50), atOnce = DomeWithBadPixels<uint8_t>(60, 50);
        Record record = {};
        ASSERT_EQ(S_OK, (byHand.process.get()->*surface.robust)(0.8, &record));
        ASSERT_EQ(S_OK, (byHand.process.get()->*surface.correct)(&record));
        ASSERT_EQ(S_OK, (atOnce.process.get()->*surface.robustCorrect)(0.8));
        EXPECT_EQ(PixelsOf<uint8_t>(byHand.pixels), PixelsOf<uint8_t>(atOnce.pixels));
        EXPECT_NE(PixelsOf<uint8_t>(DomeWithBadPixels<uint8_t>(60, 50).pixels), PixelsOf<uint8_t>(atOnce.pixels));
    });
}

TEST(RobustContract, FindsThePlaneThatTheOrdinaryFitMisses) {
    Noise noise;
    const auto picture =
        PictureOf<uint16_t>(40, 30, [&](LONG x, LONG y) { return noise() % 10 == 0 ? 60000 : 2 * x + 3 * y + 5; });
    SPlanarFit fit = {};
    ASSERT_EQ(S_OK, picture.process->get_RobustPlanarFit(0.8, &fit));
    EXPECT_EQ(2, fit.m_dAlpha);
    EXPECT_EQ(3, fit.m_dBeta);
    EXPECT_EQ(5, fit.m_dGamma);
    double sum = 0;
    for (const uint16_t pixel : PixelsOf<uint16_t>(picture.pixels)) sum += pixel;
    EXPECT_DOUBLE_EQ(sum / 1200, fit.m_dAverage);
    ASSERT_EQ(S_OK, picture.process->get_PlanarFit(&fit));
    EXPECT_GT(std::fabs(fit.m_dGamma - 5), 1000);
}

// Bits that every build and every variant of the kernels give.
TEST(RobustContract, RecordsHaveTheSameBitsEverywhere) {
    const auto bytes = DomeWithBadPixels<uint8_t>(97, 83);
    const auto floats = DomeWithBadPixels<float>(64, 70);
    const auto expect = [](const double* got, std::initializer_list<uint64_t> want, const char* what) {
        for (const uint64_t bits : want) {
            EXPECT_EQ(bits, std::bit_cast<uint64_t>(*got)) << what << " " << std::hex << std::bit_cast<uint64_t>(*got);
            ++got;
        }
    };
    SPlanarFit plane = {};
    SBiquadraticFit biquadratic = {};
    SBicubicFit bicubic = {};
    SHemisphereFit dome = {};
    SAngledHemisphereFit angled = {};
    ASSERT_EQ(S_OK, bytes.process->get_RobustPlanarFit(0.8, &plane));
    expect(&plane.m_dAverage, {0x40607510d21dd36c, 0x3fb3c915cdee3bc3, 0xbfc0e445fd4edf6e, 0x4061b87671992b57},
           "bytes get_RobustPlanarFit");
    ASSERT_EQ(S_OK, bytes.process->get_RobustBiquadraticFit(0.8, &biquadratic));
    expect(&biquadratic.m_dAverage,
           {0x40607510d21dd36c, 0x4052f4b63b8d2c2a, 0x3ff9c9ae25ec36c3, 0x4001548b79c316f4, 0xbf964a7203c3981b,
            0x3f605e53f042c8c9, 0xbf965274fd5e8f9d},
           "bytes get_RobustBiquadraticFit");
    ASSERT_EQ(S_OK, floats.process->get_RobustBicubicFit(0.8, &bicubic));
    expect(&bicubic.m_dAverage,
           {0x4062185075075075, 0x405da30b33bdab2c, 0x3ff2ee686502a361, 0x3ff541f83e3824cb, 0xbf90761759e7c9c8,
            0x3f63dbe4e539136f, 0xbf97bd6d8a9706bc, 0xbf0cd3eeddb1c98e, 0x3f1601f0b28f6478, 0xbf20b3fbc6382e9b,
            0x3f186c4a1d14155f},
           "floats get_RobustBicubicFit");
    ASSERT_EQ(S_OK, bytes.process->get_RobustHemisphereFit(0.8, &dome));
    expect(&dome.m_dAverage,
           {0x40607510d21dd36c, 0x4049584958760777, 0x404381baa778b22b, 0x4045b05825c95b1a, 0x3fe01f452772ad3a,
            0x404d83ca6bac4ac0},
           "bytes get_RobustHemisphereFit");
    ASSERT_EQ(S_OK, floats.process->get_RobustAngledHemisphereFit(0.8, &angled));
    expect(&angled.m_dAverage,
           {0x4062185075075075, 0x40429ba9228acada, 0x403fabb021acd6e6, 0x40358e080de68d9c, 0x3fdddb73dfb3bb37,
            0x40501b7e82c04730, 0xbfa7169b5503a154, 0x3f96d2a243d1656a},
           "floats get_RobustAngledHemisphereFit");
    ASSERT_EQ(S_OK, floats.process->get_HemisphereFit(&dome));
    expect(&dome.m_dAverage,
           {0x4062185075075075, 0x40402a3377915cea, 0x40413037eef76463, 0x405a8650ba613e60, 0x3fdd5715d773eaa0,
            0x40414fd96ae65002},
           "floats get_HemisphereFit");
    ASSERT_EQ(S_OK, bytes.process->get_AngledHemisphereFit(&angled));
    expect(&angled.m_dAverage,
           {0x40607510d21dd36c, 0x404969728253738e, 0x40438cbfad6ff5f5, 0x404956b66a9ac67e, 0x3fe1c4b51aa77c76,
            0x404dac2341735ef9, 0xbf438aed3cc02b14, 0xbf6d39e19e761aa9},
           "bytes get_AngledHemisphereFit");
}

// --------------------------------------------------------------------------------------------------------- hemispheres

template <class Pixel>
Picture CapOf(LONG width, LONG height, double base, double scale, double radius) {
    return PictureOf<Pixel>(width, height, [=](LONG x, LONG y) {
        const LONG dx = x - width / 2, dy = y - height / 2;
        return base + std::sqrt(std::max(0.0, radius * radius - dx * dx - dy * dy)) / scale;
    });
}

TEST(HemisphereContract, FitsDomesAndBowlsAndFlattensThem) {
    for (const double scale : {0.25, -0.25}) {
        const auto cap = CapOf<float>(100, 80, 100, scale, 70);
        SHemisphereFit fit = Untouched<SHemisphereFit>();
        ASSERT_EQ(S_OK, cap.process->get_HemisphereFit(&fit));
        EXPECT_EQ(Untouched<SHemisphereFit>().m_lSize, fit.m_lSize);
        EXPECT_NEAR(50, fit.m_dXCenter, 7e-5);
        EXPECT_NEAR(40, fit.m_dYCenter, 7e-5);
        EXPECT_NEAR(scale, fit.m_dZScale, 3e-7);
        EXPECT_NEAR(70, fit.m_dRadius, 7e-5);
        EXPECT_NEAR(100, fit.m_dZCenter, 3e-4);
        ASSERT_EQ(S_OK, cap.process->CorrectHemisphere(&fit));
        for (const float pixel : PixelsOf<float>(cap.pixels)) ASSERT_NEAR(fit.m_dAverage, pixel, 1e-3);

        const auto other = CapOf<float>(100, 80, 100, scale, 70);
        SAngledHemisphereFit angled = Untouched<SAngledHemisphereFit>();
        ASSERT_EQ(S_OK, other.process->get_AngledHemisphereFit(&angled));
        EXPECT_NEAR(0, angled.m_dAlpha, 1e-6);
        EXPECT_NEAR(0, angled.m_dBeta, 1e-6);
        EXPECT_NEAR(70, angled.m_dRadius, 7e-5);
        ASSERT_EQ(S_OK, other.process->CorrectAngledHemisphere(&angled));
        for (const float pixel : PixelsOf<float>(other.pixels)) ASSERT_NEAR(angled.m_dAverage, pixel, 1e-3);
    }
}

TEST(HemisphereContract, CorrectionRoundsClampsAndLeavesAFlatSurfaceFlat) {
    // Radius 5 about (5, 5), a grey level a pixel: heights 5, 4 and 3 at distances 0, 3 and 4, and 0 from 5 on.
    SHemisphereFit record = {0, 102.5, 5, 5, 100, 1, 5};
    const auto image = PictureOf<uint8_t>(12, 11, [](LONG, LONG) { return 104; });
    ASSERT_EQ(S_OK, image.process->PutLuminanceRange(103, 106));
    ASSERT_EQ(S_OK, image.process->CorrectHemisphere(&record));
    const auto pixels = PixelsOf<uint8_t>(image.pixels);
    const auto at = [&](LONG x, LONG y) { return static_cast<int>(pixels[static_cast<size_t>(y * 12 + x)]); };
    EXPECT_EQ(103, at(5, 5));                                     // 104 - 105 + 102.5 = 101.5, below Lower
    EXPECT_EQ(103, at(8, 5));                                     // 102.5
    EXPECT_EQ(104, at(5, 9));                                     // 103.5 rounded half up
    EXPECT_EQ(106, at(10, 5));                                    // 106.5, above Upper
    EXPECT_EQ(106, at(11, 0));                                    // outside the circle
    SAngledHemisphereFit flat = {0, 7, 5, 5, 7, 0, 5, 0.1, 0.1};  // no z scale: the height of the centre
    const auto level = PictureOf<uint16_t>(9, 9, [](LONG, LONG) { return 1234; });
    ASSERT_EQ(S_OK, level.process->CorrectAngledHemisphere(&flat));
    EXPECT_THAT(PixelsOf<uint16_t>(level.pixels), Each(1234));
}

TEST(HemisphereContract, WhatDeterminesNoHemisphereGivesFalse) {
    const auto none = [](const Picture& picture) {
        SHemisphereFit fit = Untouched<SHemisphereFit>();
        SAngledHemisphereFit angled = Untouched<SAngledHemisphereFit>();
        EXPECT_EQ(S_FALSE, picture.process->get_HemisphereFit(&fit));
        EXPECT_EQ(S_FALSE, picture.process->get_AngledHemisphereFit(&angled));
        return SameRecord(Untouched<SHemisphereFit>(), fit) && SameRecord(Untouched<SAngledHemisphereFit>(), angled);
    };
    EXPECT_TRUE(none(PictureOf<uint8_t>(30, 30, [](LONG, LONG) { return 9; })));
    EXPECT_TRUE(none(PictureOf<float>(30, 30, [](LONG x, LONG y) { return 0.3 * x - y; })));
    EXPECT_TRUE(none(PictureOf<uint8_t>(4, 1, [](LONG x, LONG) { return x * x; })));
    const auto empty = CapOf<uint8_t>(30, 30, 10, 0.5, 40);
    auto region = CreateObject<IShapeRegionOfInterest>("Orlix.ShapeRegionOfInterest");
    Check(region->CreateRectangle(30, 30, 40, 40, 50, 50), region);
    ASSERT_EQ(S_OK, empty.process->put_RegionOfInterest(region.get()));
    EXPECT_TRUE(none(empty));
}

TEST(HemisphereContract, FailuresHaveTheirTexts) {
    const auto bands = Cast<IOrlixImageProcess>(NewImage<uint8_t>(4, 4, 3));
    SHemisphereFit fit = {};
    SAngledHemisphereFit angled = {};
    EXPECT_TRUE(Fails(bands->get_HemisphereFit(&fit),
                      "IImageProcess::get_HemisphereFit: multiband measurement is not supported."));
    EXPECT_TRUE(Fails(bands->get_AngledHemisphereFit(&angled),
                      "IOrlixImageProcess::get_AngledHemisphereFit: multiband measurement is not supported."));
    EXPECT_TRUE(FailsSilently(bands->get_HemisphereFit(nullptr), E_POINTER));
    EXPECT_TRUE(FailsSilently(bands->get_AngledHemisphereFit(nullptr), E_POINTER));
    for (const double bad : {kNaN, std::numeric_limits<double>::infinity()}) {
        const auto image =
            PictureOf<float>(20, 20, [=](LONG x, LONG y) { return x == 7 && y == 9 ? bad : double{1} * x * y; });
        EXPECT_TRUE(Fails(image.process->get_HemisphereFit(&fit),
                          "IImageProcess::get_HemisphereFit: not all pixels are finite."));
        EXPECT_TRUE(Fails(image.process->get_AngledHemisphereFit(&angled),
                          "IOrlixImageProcess::get_AngledHemisphereFit: not all pixels are finite."));
        SHemisphereFit record = {0, 1, 1, 1, 1, 1, bad};
        SAngledHemisphereFit tilted = {0, bad, 1, 1, 1, 1, 1, 0, 0};
        const auto level = PictureOf<uint8_t>(5, 5, [](LONG, LONG) { return 3; });
        EXPECT_TRUE(Fails(level.process->CorrectHemisphere(&record),
                          "IOrlixImageProcess::CorrectHemisphere: the surface is not finite."));
        EXPECT_TRUE(Fails(level.process->CorrectAngledHemisphere(&tilted),
                          "IOrlixImageProcess::CorrectAngledHemisphere: the surface is not finite."));
        EXPECT_THAT(PixelsOf<uint8_t>(level.pixels), Each(3));
    }
}

}  // namespace
}  // namespace orlix::testing
