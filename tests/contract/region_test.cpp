// Shape regions as clients see them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "contract/support.hpp"

using namespace orlix;
using orlix::testing::Fails;
using orlix::testing::FailsSilently;
using orlix::testing::Get;
using orlix::testing::ReferencesOf;

namespace {

constexpr char kSource[] = "Orlix.ShapeRegionOfInterest.1";
constexpr LONG kMost = std::numeric_limits<LONG>::max();
constexpr LONG kLeast = std::numeric_limits<LONG>::min();

ComPtr<IShapeRegionOfInterest> NewRegion() {
    return CreateObject<IShapeRegionOfInterest>("Orlix.ShapeRegionOfInterest");
}

// start, stop of each run, as the row is handed out
using Runs = std::vector<std::pair<LONG, LONG>>;

Runs RunsOf(const ComPtr<IShapeRegionOfInterest>& region, LONG row) {
    SRun* begin = nullptr;
    SRun* end = nullptr;
    EXPECT_EQ(S_OK, region->GetRowRuns(row, &begin, &end));
    EXPECT_EQ(begin == nullptr, end == nullptr);
    Runs runs;
    for (; begin != end; ++begin) {
        runs.emplace_back(begin->m_lStart, begin->m_lStop);
        EXPECT_EQ(0, begin->m_lLabel);
        EXPECT_EQ(nullptr, begin->m_pRightBridge);
        EXPECT_EQ(nullptr, begin->m_pRightChild);
    }
    return runs;
}

std::vector<LONG> BoxOf(const ComPtr<IShapeRegionOfInterest>& region) {
    RECT box = {};
    EXPECT_EQ(S_OK, region->get_BoundingBox(&box));
    return {box.left, box.top, box.right, box.bottom};
}

using Box = std::vector<LONG>;

TEST(RegionContract, NullOutputsGiveEPointerAndWriteNothing) {
    const auto region = NewRegion();
    const auto overlay = Cast<IGraphicOverlay>(region);
    SRun* run = reinterpret_cast<SRun*>(8);
    EXPECT_TRUE(FailsSilently(region->get_Width(nullptr), E_POINTER));
    EXPECT_TRUE(FailsSilently(region->get_Height(nullptr), E_POINTER));
    EXPECT_TRUE(FailsSilently(region->get_BoundingBox(nullptr), E_POINTER));
    EXPECT_TRUE(FailsSilently(region->GetRowRuns(0, nullptr, &run), E_POINTER));
    EXPECT_TRUE(FailsSilently(region->GetRowRuns(0, &run, nullptr), E_POINTER));
    EXPECT_TRUE(FailsSilently(region->get_Polarity(nullptr), E_POINTER));
    EXPECT_TRUE(FailsSilently(overlay->get_Color(nullptr), E_POINTER));
    EXPECT_TRUE(FailsSilently(overlay->get_Description(nullptr), E_POINTER));
    EXPECT_EQ(reinterpret_cast<SRun*>(8), run);
}

TEST(RegionContract, ANewRegionHasNoRows) {
    const auto region = NewRegion();
    EXPECT_EQ(0, Get(region, &IRegionOfInterest::get_Width));
    EXPECT_EQ(0, Get(region, &IRegionOfInterest::get_Height));
    EXPECT_EQ(PT_Inside, Get(region, &IShapeRegionOfInterest::get_Polarity));
    for (const PolarityType each : {PT_Inside, PT_Outside, PT_Frame})
        for (const LONG row : {kLeast, LONG{-1}, LONG{0}, kMost}) {
            region->put_Polarity(each);
            SRun* begin = reinterpret_cast<SRun*>(8);
            SRun* end = begin;
            EXPECT_EQ(S_FALSE, region->GetRowRuns(row, &begin, &end));
            EXPECT_EQ(nullptr, begin);
            EXPECT_EQ(nullptr, end);
        }
    region->put_Polarity(PT_Inside);
    EXPECT_EQ((Box{0, 0, -1, -1}), BoxOf(region));
}

TEST(RegionContract, ARectangleInsideOutsideAndAsAFrame) {
    const auto region = NewRegion();
    ASSERT_EQ(S_OK, region->CreateRectangle(100, 50, 10, 5, 20, 8));
    EXPECT_EQ(100, Get(region, &IRegionOfInterest::get_Width));
    EXPECT_EQ(50, Get(region, &IRegionOfInterest::get_Height));
    EXPECT_EQ((Box{10, 5, 20, 8}), BoxOf(region));
    EXPECT_EQ((Runs{}), RunsOf(region, 4));
    for (LONG y = 5; y <= 8; ++y) EXPECT_EQ((Runs{{10, 20}}), RunsOf(region, y));
    SRun* begin = nullptr;
    SRun* end = nullptr;
    EXPECT_EQ(S_FALSE, region->GetRowRuns(50, &begin, &end));
    EXPECT_EQ(S_FALSE, region->GetRowRuns(-1, &begin, &end));

    EXPECT_EQ(S_OK, region->put_Polarity(PT_Outside));
    EXPECT_EQ((Runs{{0, 9}, {21, 99}}), RunsOf(region, 6));
    EXPECT_EQ((Runs{{0, 99}}), RunsOf(region, 4));
    EXPECT_EQ((Box{0, 0, 99, 49}), BoxOf(region));

    region->put_Polarity(PT_Frame);
    EXPECT_EQ((Box{10, 5, 20, 8}), BoxOf(region));
    EXPECT_EQ((Runs{{10, 20}}), RunsOf(region, 5));
    EXPECT_EQ((Runs{{10, 10}, {20, 20}}), RunsOf(region, 6));
    EXPECT_EQ((Runs{{10, 10}, {20, 20}}), RunsOf(region, 7));
    EXPECT_EQ((Runs{{10, 20}}), RunsOf(region, 8));
    EXPECT_EQ((Runs{}), RunsOf(region, 4));

    region->put_Polarity(PT_Outside);
    ASSERT_EQ(S_OK, region->CreateRectangle(100, 50, 0, 0, 99, 49));
    EXPECT_EQ((Runs{{0, -1}, {100, 99}}), RunsOf(region, 10));
}

TEST(RegionContract, ACircleIsClippedInRowsOnly) {
    const auto region = NewRegion();
    ASSERT_EQ(S_OK, region->CreateCircle(100, 100, 50, 50, 2));
    EXPECT_EQ((Box{48, 48, 52, 52}), BoxOf(region));
    EXPECT_EQ((Runs{{50, 50}}), RunsOf(region, 48));
    EXPECT_EQ((Runs{{49, 51}}), RunsOf(region, 49));
    EXPECT_EQ((Runs{{48, 52}}), RunsOf(region, 50));
    EXPECT_EQ((Runs{{49, 51}}), RunsOf(region, 51));
    EXPECT_EQ((Runs{{50, 50}}), RunsOf(region, 52));
    ASSERT_EQ(S_OK, region->CreateCircle(100, 100, 1, 50, 5));
    EXPECT_EQ((Runs{{-4, 6}}), RunsOf(region, 50));
    EXPECT_EQ((Box{0, 45, 6, 55}), BoxOf(region));
    ASSERT_EQ(S_OK, region->CreateCircle(100, 100, 1, 50, -5));
    EXPECT_EQ((Runs{}), RunsOf(region, 50));
}

TEST(RegionContract, AnOrientedRectangleLiesAlongItsAngle) {
    const auto region = NewRegion();
    ASSERT_EQ(S_OK, region->CreateOrientedRectangle(100, 100, 10, 4, 0, 50, 50));
    EXPECT_EQ((Box{45, 48, 55, 52}), BoxOf(region));
    for (LONG y = 48; y <= 52; ++y) EXPECT_EQ((Runs{{45, 55}}), RunsOf(region, y));
    // Rows grow downwards, so angles turn clockwise; about whole pixels a right angle is exact.
    for (const double angle : {90.0, -90.0, 270.0}) {
        ASSERT_EQ(S_OK, region->CreateOrientedRectangle(100, 100, 10, 4, angle, 50, 50));
        EXPECT_EQ((Box{48, 45, 52, 55}), BoxOf(region)) << angle;
    }
    ASSERT_EQ(S_OK, region->CreateOrientedRectangle(100, 100, 10, 4, 180, 50, 50));
    EXPECT_EQ((Box{45, 48, 55, 52}), BoxOf(region));
    // At 30 degrees the pixel 20 to the right and 12 down (30.96 degrees) is in a rectangle 48 long, and 20 right, 12
    // up is not.
    ASSERT_EQ(S_OK, region->CreateOrientedRectangle(100, 100, 48, 2, 30, 50, 50));
    const Runs below = RunsOf(region, 62);
    const Runs above = RunsOf(region, 38);
    ASSERT_EQ(1u, below.size());
    ASSERT_EQ(1u, above.size());
    EXPECT_LE(below[0].first, 70);
    EXPECT_GE(below[0].second, 70);
    EXPECT_LT(above[0].second, 50);
}

TEST(RegionContract, BelowAWidthOfOneAnOrientedRectangleIsItsCentreLine) {
    const auto region = NewRegion();
    ASSERT_EQ(S_OK, region->CreateOrientedRectangleFromCenterLine(100, 100, 0, 0, 3, 1, 0.5));
    EXPECT_EQ((Runs{{0, 1}}), RunsOf(region, 0));
    EXPECT_EQ((Runs{{2, 3}}), RunsOf(region, 1));
    EXPECT_EQ((Box{0, 0, 3, 1}), BoxOf(region));
}

TEST(RegionContract, SizesAndShapesAreTestedInOrder) {
    const auto region = NewRegion();
    const std::string prefix = "IShapeRegionOfInterest::";
    const auto fails = [&](HRESULT result, const std::string& text) { return Fails(result, prefix + text, kSource); };
    EXPECT_TRUE(fails(region->CreateRectangle(0, 0, 5, 5, 1, 1), "CreateRectangle: width must be positive."));
    EXPECT_TRUE(fails(region->CreateRectangle(1, 0, 5, 5, 1, 1), "CreateRectangle: height must be positive."));
    EXPECT_TRUE(
        fails(region->CreateRectangle(9, 9, 5, 5, 1, 1), "CreateRectangle: left cannot be greater than right."));
    EXPECT_TRUE(fails(region->CreateRectangle(9, 9, 1, 5, 5, 1), "CreateRectangle: top cannot be below bottom."));
    EXPECT_TRUE(fails(region->CreateCircle(kLeast, 0, 1, 1, 1), "CreateCircle: width must be positive."));
    EXPECT_TRUE(fails(region->CreateCircle(1, kLeast, 1, 1, 1), "CreateCircle: height must be positive."));
    EXPECT_TRUE(fails(region->CreateOrientedRectangle(0, 0, 5, 2, 0, 1, 1),
                      "CreateOrientedRectangle: width must be positive."));
    EXPECT_TRUE(fails(region->CreateOrientedRectangle(5, 0, 5, 2, 0, 1, 1),
                      "CreateOrientedRectangle: height must be positive."));
    EXPECT_TRUE(fails(region->CreateOrientedRectangle(5, 5, 0, 2, 0, 1, 1),
                      "CreateOrientedRectangle: no rectangle center line."));
    EXPECT_TRUE(fails(region->CreateOrientedRectangleFromCenterLine(0, 5, 1, 1, 2, 1, 1),
                      "CreateOrientedRectangle: width must be positive."));
    EXPECT_TRUE(fails(region->CreateOrientedRectangleFromCenterLine(5, -1, 1, 1, 2, 1, 1),
                      "CreateOrientedRectangle: height must be positive."));
    EXPECT_TRUE(fails(region->CreateOrientedRectangleFromCenterLine(5, 5, 1, 1, 1, 1, 1),
                      "CreateOrientedRectangle: no rectangle center line."));
    EXPECT_EQ(1u, ReferencesOf(region.get()));
}

TEST(RegionContract, AFailedShapeLeavesTheNewSizeWithoutPixels) {
    const auto region = NewRegion();
    region->CreateRectangle(100, 50, 10, 5, 20, 8);
    EXPECT_EQ(E_FAIL, region->CreateRectangle(0, 7, 1, 1, 2, 2));
    EXPECT_EQ((Runs{{10, 20}}), RunsOf(region, 6));
    EXPECT_EQ(E_FAIL, region->CreateRectangle(30, 40, 2, 2, 1, 1));
    EXPECT_EQ(30, Get(region, &IRegionOfInterest::get_Width));
    EXPECT_EQ((Runs{{29, 0}}), RunsOf(region, 6));
}

TEST(RegionContract, OddNumbersAreDefined) {
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const auto region = NewRegion();
    for (const double odd : {nan, inf, -inf, 1e300, -1e300, 1e-320}) {
        EXPECT_EQ(S_OK, region->CreateCircle(20, 10, odd, 5, 3));
        EXPECT_EQ(S_OK, region->CreateCircle(20, 10, 5, odd, 3));
        EXPECT_EQ(S_OK, region->CreateCircle(20, 10, 5, 5, odd));
        region->CreateOrientedRectangle(20, 10, odd, 3, 30, 5, 5);
        region->CreateOrientedRectangle(20, 10, 5, odd, 30, 5, 5);
        region->CreateOrientedRectangle(20, 10, 5, 3, odd, 5, 5);
        region->CreateOrientedRectangle(20, 10, 5, 3, 30, odd, odd);
        for (const PolarityType polarity : {PT_Inside, PT_Outside, PT_Frame}) {
            region->put_Polarity(polarity);
            for (LONG y = 0; y < 10; ++y) EXPECT_LE(RunsOf(region, y).size(), 2u);
        }
    }
    // Any angle has a sine; of what has none there is no centre line.
    EXPECT_EQ(S_OK, region->CreateOrientedRectangle(20, 10, 5, 3, 1e300, 5, 5));
    EXPECT_TRUE(Fails(region->CreateOrientedRectangle(20, 10, 5, 3, inf, 5, 5),
                      "IShapeRegionOfInterest::CreateOrientedRectangle: no rectangle center line.", kSource));
    EXPECT_EQ(S_OK, region->CreateRectangle(kMost, kMost, kLeast, kLeast, kMost, kMost));
    region->put_Polarity(PT_Inside);
    EXPECT_EQ((Runs{{0, kMost - 1}}), RunsOf(region, kMost - 1));
    EXPECT_EQ(S_OK, region->CreateCircle(kMost, kMost, 1e9, 1e9, 3));
    EXPECT_EQ((Runs{{999999997, 1000000003}}), RunsOf(region, 1000000000));
}

TEST(RegionContract, PolarityColourAndDescriptionSurviveANewShape) {
    const auto region = NewRegion();
    const auto overlay = Cast<IGraphicOverlay>(region);
    EXPECT_EQ(0x0000FF00u, Get(overlay, &IGraphicOverlay::get_Color));
    Text description;
    EXPECT_EQ(S_OK, overlay->get_Description(description.Out()));
    EXPECT_EQ(nullptr, static_cast<BSTR>(description));

    EXPECT_EQ(S_OK, overlay->put_Color(0x00112233));
    EXPECT_EQ(S_OK, overlay->put_Description(Text("pore \xE2\x88\x85 3")));
    EXPECT_EQ(S_OK, region->put_Polarity(static_cast<PolarityType>(3)));
    ASSERT_EQ(S_OK, region->CreateCircle(20, 20, 5, 5, 3));
    EXPECT_EQ((Runs{{2, 8}}), RunsOf(region, 5));  // counts as the inside

    EXPECT_EQ(3, static_cast<int>(Get(region, &IShapeRegionOfInterest::get_Polarity)));
    EXPECT_EQ(0x00112233u, Get(overlay, &IGraphicOverlay::get_Color));
    overlay->get_Description(description.Out());
    EXPECT_EQ("pore \xE2\x88\x85 3", description.Utf8());
    EXPECT_EQ(S_OK, overlay->put_Description(nullptr));
    overlay->get_Description(description.Out());
    EXPECT_EQ(nullptr, static_cast<BSTR>(description));
}

}  // namespace
