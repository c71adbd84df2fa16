// Shape regions as clients see them. The pixels of the shapes are tested in tests/geometry.
#include <string>

#include "contract/support.hpp"

namespace orlix::testing {
namespace {

constexpr char kRegionSource[] = "Orlix.ShapeRegionOfInterest.1";

// start, stop of each run, as the row is handed out
using Runs = std::vector<std::pair<LONG, LONG>>;
using Box = std::vector<LONG>;

Runs RunsOf(const ComPtr<IShapeRegionOfInterest>& region, LONG row) {
    SRun *begin = nullptr, *end = nullptr;
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

Box BoxOf(const ComPtr<IShapeRegionOfInterest>& region) {
    return Edges(Get(region, &IRegionOfInterest::get_BoundingBox));
}

TEST(RegionContract, ANewRegionHasNoRows) {
    const auto region = NewRegion();
    EXPECT_EQ(0, Get(region, &IRegionOfInterest::get_Width));
    EXPECT_EQ(0, Get(region, &IRegionOfInterest::get_Height));
    EXPECT_EQ((Box{0, 0, -1, -1}), BoxOf(region));
    for (const PolarityType each : {PT_Inside, PT_Outside, PT_Frame})
        for (const LONG row : {kLeast, LONG{-1}, LONG{0}, kMost}) {
            region->put_Polarity(each);
            SRun *begin = reinterpret_cast<SRun*>(8), *end = begin;
            EXPECT_EQ(S_FALSE, region->GetRowRuns(row, &begin, &end));
            EXPECT_TRUE(begin == nullptr && end == nullptr) << each << row;
        }
}

TEST(RegionContract, EachShapeHasItsRunsAndItsBox) {
    using Region = IShapeRegionOfInterest;
    const auto rectangle = [](Region& r) { return r.CreateRectangle(100, 50, 10, 5, 20, 8); };
    const struct {
        const char* what;
        std::function<HRESULT(Region&)> create;  // in a size of 100 x 50
        PolarityType polarity;
        Box box;
        LONG top;  // first of the rows compared
        std::vector<Runs> rows;
    } cases[] = {
        {"a rectangle", rectangle, PT_Inside, {10, 5, 20, 8}, 4, {{}, {{10, 20}}, {{10, 20}}}},
        {"its outside", rectangle, PT_Outside, {0, 0, 99, 49}, 4, {{{0, 99}}, {{0, 9}, {21, 99}}}},
        {"its frame", rectangle, PT_Frame, {10, 5, 20, 8}, 4, {{}, {{10, 20}}, {{10, 10}, {20, 20}}}},
        {"a circle, clipped in rows only",
         [](Region& r) { return r.CreateCircle(100, 50, 1, 2, 5); },
         PT_Inside,
         {0, 0, 6, 7},
         2,
         {{{-4, 6}}, {{-3, 5}}}},
        // Rows grow downwards, so angles turn clockwise; about whole pixels a right angle is exact.
        {"upright",
         [](Region& r) { return r.CreateOrientedRectangle(100, 50, 10, 4, -90, 50, 20); },
         PT_Inside,
         {48, 15, 52, 25},
         15,
         {{{48, 52}}}},
        {"below a width of one, its centre line",
         [](Region& r) { return r.CreateOrientedRectangleFromCenterLine(100, 50, 0, 0, 3, 1, 0.5); },
         PT_Inside,
         {0, 0, 3, 1},
         0,
         {{{0, 1}}, {{2, 3}}}},
    };
    const auto region = NewRegion();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        ASSERT_EQ(S_OK, c.create(*region));
        ASSERT_EQ(S_OK, region->put_Polarity(c.polarity));
        EXPECT_EQ(100, Get(region, &IRegionOfInterest::get_Width));
        EXPECT_EQ(50, Get(region, &IRegionOfInterest::get_Height));
        EXPECT_EQ(c.box, BoxOf(region));
        LONG y = c.top;
        for (const Runs& runs : c.rows) EXPECT_EQ(runs, RunsOf(region, y++));
        SRun *begin = nullptr, *end = nullptr;
        for (const LONG row : {-1, 50}) EXPECT_EQ(S_FALSE, region->GetRowRuns(row, &begin, &end));
    }
    // At 30 degrees the pixel 20 to the right and 12 down (30.96 degrees) is in a rectangle 48 long, and 20 right, 12
    // up is not.
    ASSERT_EQ(S_OK, region->CreateOrientedRectangle(100, 100, 48, 2, 30, 50, 50));
    const Runs below = RunsOf(region, 62), above = RunsOf(region, 38);
    ASSERT_EQ(1u, below.size());
    ASSERT_EQ(1u, above.size());
    EXPECT_TRUE(below[0].first <= 70 && below[0].second >= 70);
    EXPECT_LT(above[0].second, 50);
}

TEST(RegionContract, SizesAndShapesAreTestedInOrder) {
    const auto region = NewRegion();
    const std::string width = "width must be positive.", height = "height must be positive.";
    const std::string line = "no rectangle center line.";
    const std::tuple<const char*, HRESULT (*)(IShapeRegionOfInterest&), std::string> cases[] = {
        {"Rectangle", [](auto& r) { return r.CreateRectangle(0, 0, 5, 5, 1, 1); }, width},
        {"Rectangle", [](auto& r) { return r.CreateRectangle(1, 0, 5, 5, 1, 1); }, height},
        {"Rectangle", [](auto& r) { return r.CreateRectangle(9, 9, 5, 5, 1, 1); },
         "left cannot be greater than right."},
        {"Rectangle", [](auto& r) { return r.CreateRectangle(9, 9, 1, 5, 5, 1); }, "top cannot be below bottom."},
        {"Circle", [](auto& r) { return r.CreateCircle(kLeast, 0, 1, 1, 1); }, width},
        {"Circle", [](auto& r) { return r.CreateCircle(1, kLeast, 1, 1, 1); }, height},
        {"OrientedRectangle", [](auto& r) { return r.CreateOrientedRectangle(0, 0, 5, 2, 0, 1, 1); }, width},
        {"OrientedRectangle", [](auto& r) { return r.CreateOrientedRectangle(5, 0, 5, 2, 0, 1, 1); }, height},
        {"OrientedRectangle", [](auto& r) { return r.CreateOrientedRectangle(5, 5, 0, 2, 0, 1, 1); }, line},
        {"OrientedRectangle", [](auto& r) { return r.CreateOrientedRectangle(5, 5, 5, 3, kInfinity, 5, 5); }, line},
        {"OrientedRectangle", [](auto& r) { return r.CreateOrientedRectangleFromCenterLine(0, 5, 1, 1, 2, 1, 1); },
         width},
        {"OrientedRectangle", [](auto& r) { return r.CreateOrientedRectangleFromCenterLine(5, 5, 1, 1, 1, 1, 1); },
         line}};
    for (const auto& [shape, call, what] : cases) {
        const std::string text = std::string("IShapeRegionOfInterest::Create") + shape + ": " + what;
        EXPECT_TRUE(Fails(call(*region), text, kRegionSource)) << text;
    }
    EXPECT_EQ(1u, ReferencesOf(region.get()));
    // A refused size changes nothing, a refused shape leaves the new size without pixels.
    region->CreateRectangle(100, 50, 10, 5, 20, 8);
    EXPECT_EQ(E_FAIL, region->CreateRectangle(0, 7, 1, 1, 2, 2));
    EXPECT_EQ((Runs{{10, 20}}), RunsOf(region, 6));
    EXPECT_EQ(E_FAIL, region->CreateRectangle(30, 40, 2, 2, 1, 1));
    EXPECT_EQ(30, Get(region, &IRegionOfInterest::get_Width));
    EXPECT_EQ((Runs{{29, 0}}), RunsOf(region, 6));
}

// What the shapes are then is tested in tests/geometry.
TEST(RegionContract, OddNumbersAreDefined) {
    const auto region = NewRegion();
    for (const double odd : {kNaN, kInfinity, -kInfinity, 1e300, -1e300, 1e-320}) {
        EXPECT_EQ(S_OK, region->CreateCircle(20, 10, odd, odd, odd));
        for (size_t at = 0; at < 5; ++at) {
            double a[] = {5, 3, 30, 5, 5};
            a[at] = odd;
            region->CreateOrientedRectangle(20, 10, a[0], a[1], a[2], a[3], a[4]);
            for (LONG y = 0; y < 10; ++y) EXPECT_LE(RunsOf(region, y).size(), 2u);
        }
    }
    EXPECT_EQ(S_OK, region->CreateOrientedRectangle(20, 10, 5, 3, 1e300, 5, 5)) << "any angle has a sine";
    EXPECT_EQ(S_OK, region->CreateRectangle(kMost, kMost, kLeast, kLeast, kMost, kMost));
    EXPECT_EQ((Runs{{0, kMost - 1}}), RunsOf(region, kMost - 1));
}

TEST(RegionContract, PolarityColourAndDescriptionSurviveANewShape) {
    const auto region = NewRegion();
    const auto overlay = Cast<IGraphicOverlay>(region);
    const auto holds = [&](PolarityType polarity, OLE_COLOR color, const char* description) {
        EXPECT_EQ(polarity, Get(region, &IShapeRegionOfInterest::get_Polarity));
        EXPECT_EQ(color, Get(overlay, &IGraphicOverlay::get_Color));
        EXPECT_EQ(description, TextOf(overlay, &IGraphicOverlay::get_Description));
    };
    holds(PT_Inside, 0x0000FF00, "(null)");
    EXPECT_EQ(S_OK, overlay->put_Color(0x00112233));
    EXPECT_EQ(S_OK, overlay->put_Description(Text("pore \xE2\x88\x85 3")));
    EXPECT_EQ(S_OK, region->put_Polarity(PT_Frame));
    ASSERT_EQ(S_OK, region->CreateCircle(20, 20, 5, 5, 3));
    holds(PT_Frame, 0x00112233, "pore \xE2\x88\x85 3");
    EXPECT_EQ(S_OK, overlay->put_Description(nullptr));
    EXPECT_EQ("(null)", TextOf(overlay, &IGraphicOverlay::get_Description));
}

}  // namespace
}  // namespace orlix::testing
