#include "geometry/region_rows.hpp"

#include "component/failure.hpp"
#include "geometry/foreign_region.hpp"
#include "geometry/orlix_shape_region_of_interest.hpp"
#include "support/special_numbers.hpp"
#include "support/testing.hpp"

namespace orlix {

void PrintTo(const Run& run, std::ostream* out) { *out << run.start << ".." << run.stop; }

namespace {

auto AreRuns(const std::vector<Run>& runs) { return testing::ElementsAreArray(runs); }

ComPtr<IShapeRegionOfInterest> MakeShape() {
    ComPtr<IShapeRegionOfInterest> shape;
    EXPECT_EQ(S_OK,
              OrlixShapeRegionOfInterest::CreateInstance(nullptr, __uuidof(IShapeRegionOfInterest), shape.OutVoid()));
    return shape;
}

HRESULT ResultOf(IRegionOfInterest& region, int32_t width, int32_t height) {
    try {
        const RegionRows rows(&region, width, height);
        return S_OK;
    } catch (const FailedResult& failed) {
        return failed.result();
    }
}

// Rows of the region in an image of this size: the pixels that the runs of the interface cover, in the rows of its box,
// in runs that are sorted, within the image and at least a column apart.
void ExpectPixelsOf(IRegionOfInterest& region, int32_t width, int32_t height) {
    const RegionRows rows(&region, width, height);
    RECT box = {0, 0, -1, -1};
    EXPECT_EQ(S_OK, region.get_BoundingBox(&box));
    int64_t pixels = 0;
    for (int32_t y = -1; y <= height; ++y) {
        std::vector<bool> want(static_cast<size_t>(width)), got = want;
        SRun *begin = nullptr, *end = nullptr;
        if (y >= 0 && y < height && y >= box.top && y <= box.bottom && region.GetRowRuns(y, &begin, &end) == S_OK)
            for (; begin != end; ++begin)
                for (int32_t x = 0; x < width; ++x)
                    if (begin->m_lStart <= x && x <= begin->m_lStop) want[static_cast<size_t>(x)] = true;
        int32_t free = 0;
        for (const Run run : rows.row(y)) {
            ASSERT_TRUE(free <= run.start && run.start <= run.stop && run.stop < width) << y;
            for (int32_t x = run.start; x <= run.stop; ++x) got[static_cast<size_t>(x)] = true;
            free = run.stop + 2;
            pixels += run.length();
        }
        ASSERT_EQ(want, got) << y;
        if (y < rows.top() || y > rows.bottom()) {
            EXPECT_TRUE(rows.row(y).empty());
        }
    }
    EXPECT_EQ(pixels, rows.pixels());
    EXPECT_EQ(pixels == int64_t{width} * height, rows.whole());
}

TEST(RegionRows, NoRegionIsOneWholeRunInEveryRow) {
    const RegionRows rows(nullptr, 7, 3);
    EXPECT_EQ(0, rows.top());
    EXPECT_EQ(2, rows.bottom());
    for (int32_t y = 0; y < 3; ++y) EXPECT_THAT(rows.row(y), AreRuns({{0, 6}}));
    EXPECT_TRUE(rows.row(-1).empty());
    EXPECT_TRUE(rows.row(3).empty());
    EXPECT_TRUE(rows.whole());
    EXPECT_EQ(21, rows.pixels());
    EXPECT_EQ(int64_t{kMost} * kMost, RegionRows(nullptr, kMost, kMost).pixels());
}

TEST(RegionRows, AnEmptyImageHasNoRows) {
    ForeignRegion foreign;
    for (ForeignRegion* region : {static_cast<ForeignRegion*>(nullptr), &foreign})
        for (const int32_t size : {0, -1, kLeast}) {
            const RegionRows rows(region, size, 5);
            EXPECT_LT(rows.bottom(), rows.top());
            EXPECT_EQ(0, rows.pixels());
            EXPECT_FALSE(rows.whole());
            EXPECT_LT(RegionRows(region, 5, size).bottom(), 0);
        }
    EXPECT_EQ(0, foreign.rowsAsked);
}

TEST(RegionRows, EqualsWhatTheInterfaceHandsOutForEveryShapePolarityAndImageSize) {
    const auto shape = MakeShape();
    std::mt19937 random(11);
    const auto any = [&](double low, double high) { return std::uniform_real_distribution<double>(low, high)(random); };
    for (int i = 0; i < 400; ++i) {
        const LONG regionWidth = 1 + static_cast<LONG>(random() % 40);
        const LONG regionHeight = 1 + static_cast<LONG>(random() % 30);
        if (i % 4 == 0) {
            const LONG left = static_cast<LONG>(random() % 60) - 20;
            const LONG top = static_cast<LONG>(random() % 50) - 20;
            ASSERT_EQ(S_OK, shape->CreateRectangle(regionWidth, regionHeight, left, top,
                                                   left + static_cast<LONG>(random() % 40),
                                                   top + static_cast<LONG>(random() % 40)));
        } else if (i % 4 == 1) {
            ASSERT_EQ(S_OK, shape->CreateCircle(regionWidth, regionHeight, any(-10, 50), any(-10, 40), any(-1, 25)));
        } else {
            ASSERT_EQ(S_OK, shape->CreateOrientedRectangleFromCenterLine(regionWidth, regionHeight, any(-20, 60),
                                                                         any(-20, 50), any(-20, 60), any(-20, 50),
                                                                         any(0, 9)));
        }
        if (i % 29 == 0) shape->CreateRectangle(regionWidth, regionHeight / 2 + 1, 5, 5, 4, 4);  // fails half-way
        for (const PolarityType polarity : {PT_Inside, PT_Outside, PT_Frame})
            for (const int32_t width : {1, 20, static_cast<int32_t>(regionWidth), 55}) {
                const int32_t height = width == 1 ? 33 : static_cast<int32_t>(regionHeight);
                ASSERT_EQ(S_OK, shape->put_Polarity(polarity));
                SCOPED_TRACE(testing::Message() << i << ' ' << polarity);
                ExpectPixelsOf(*shape, width, height);
            }
    }
}

TEST(RegionRows, KeepsThePixelsThatTheRegionHadWhenAsked) {
    auto shape = MakeShape();
    shape->CreateCircle(100, 100, 50, 50, 2);
    const RegionRows rows(shape.get(), 100, 100);
    shape->AddRef();
    EXPECT_EQ(1u, shape->Release());  // no reference is kept
    shape->CreateRectangle(100, 100, 0, 0, 1, 1);
    shape->put_Polarity(PT_Outside);
    shape = nullptr;
    EXPECT_EQ(48, rows.top());
    EXPECT_THAT(rows.row(49), AreRuns({{49, 51}}));
    EXPECT_EQ(13, rows.pixels());
    const RegionRows copy = rows;  // NOLINT(performance-unnecessary-copy-initialization): copies are what is tested
    EXPECT_THAT(copy.row(50), AreRuns({{48, 52}}));
}

// A component may aggregate a shape and implement the region itself, in its own way: then that implementation is asked.
TEST(RegionRows, ARegionThatContainsAShapeIsAskedItself) {
    const auto shape = MakeShape();
    shape->CreateRectangle(10, 10, 0, 0, 9, 9);
    ForeignRegion around;
    around.box = {0, 2, 9, 2};
    around.rows[2] = {MakeRun(3, 4)};
    ASSERT_EQ(nullptr, OrlixShapeRegionOfInterest::ShapeOf(&around));
    EXPECT_NE(nullptr, OrlixShapeRegionOfInterest::ShapeOf(shape.get()));
    EXPECT_EQ(nullptr, OrlixShapeRegionOfInterest::ShapeOf(nullptr));
    EXPECT_EQ(2, RegionRows(&around, 10, 10).pixels());
}

TEST(RegionRows, ForeignRunsGiveThePixelsTheyCoverInAnyOrder) {
    ForeignRegion region;
    region.box = {-5, 1, 500, 5};
    region.rows[1] = {MakeRun(-3, 2), MakeRun(4, 3), MakeRun(5, 5), MakeRun(18, 40)};
    region.rows[2] = {MakeRun(10, 12), MakeRun(0, 3), MakeRun(4, 5), MakeRun(2, 2), MakeRun(11, 15)};
    region.rows[3] = {MakeRun(kLeast, kMost), MakeRun(kMost, kLeast), MakeRun(-9, -1), MakeRun(20, 25)};
    for (LONG x = 0; x < 200; x += 2) region.rows[5].push_back(MakeRun(x, x));  // more than columns in the image
    ExpectPixelsOf(region, 20, 10);
    std::mt19937 random(5);
    for (int i = 0; i < 200; ++i) {
        region.rows.clear();
        region.box = {0, static_cast<LONG>(random() % 4), 0, static_cast<LONG>(random() % 12)};
        for (LONG y = 0; y < 10; ++y)
            for (unsigned n = random() % 8; n > 0; --n) {
                const LONG start = static_cast<LONG>(random() % 50) - 10;
                region.rows[y].push_back(MakeRun(start, start + static_cast<LONG>(random() % 12) - 3));
            }
        ExpectPixelsOf(region, 30, 10);
    }
}

TEST(RegionRows, NonsenseBoxesAreClippedAndReversedOnesHaveNoRows) {
    ForeignRegion region;
    region.box = {kLeast, kLeast, kMost, kMost};
    EXPECT_EQ(9, RegionRows(&region, 20, 10).bottom());
    EXPECT_EQ(10, region.rowsAsked);
    for (const RECT box : {RECT{0, 5, 9, 4}, RECT{0, kMost, 9, kLeast}, RECT{0, 10, 9, 20}, RECT{0, -9, 9, -1}}) {
        region.box = box;
        region.rowsAsked = 0;
        const RegionRows rows(&region, 20, 10);
        EXPECT_LT(rows.bottom(), rows.top());
        EXPECT_EQ(0, rows.pixels());
        EXPECT_EQ(0, region.rowsAsked);
    }
}

TEST(RegionRows, AFailureOfTheRegionIsPassedOn) {
    ForeignRegion region;
    region.box = {0, 0, 9, 9};
    region.boxResult = E_OUTOFMEMORY;
    EXPECT_EQ(E_OUTOFMEMORY, ResultOf(region, 10, 10));
    EXPECT_EQ(0, region.rowsAsked);
    region.boxResult = S_OK;
    region.answer = [](LONG row, SRun**, SRun**) { return row == 7 ? DISP_E_EXCEPTION : S_OK; };
    EXPECT_EQ(DISP_E_EXCEPTION, ResultOf(region, 10, 10));
    EXPECT_EQ(8, region.rowsAsked);
    EXPECT_EQ(S_OK, ResultOf(region, 10, 7));  // row 7 is not in the image
    EXPECT_EQ(1u, region.references);
}

TEST(RegionRows, OddRunListsAreRowsWithoutRuns) {
    static SRun runs[3] = {MakeRun(1, 2), MakeRun(4, 5), MakeRun(7, 8)};
    ForeignRegion region;
    region.box = {0, 0, 9, 4};
    region.answer = [](LONG row, SRun** begin, SRun** end) {
        *begin = row == 0 ? nullptr : row == 1 ? runs : runs + 2;
        *end = row == 0 ? runs + 3 : row == 1 ? nullptr : row == 2 ? runs : row == 3 ? runs + 2 : runs + 3;
        return S_OK;
    };
    const RegionRows rows(&region, 10, 5);
    for (int32_t y = 0; y < 4; ++y) EXPECT_TRUE(rows.row(y).empty()) << y;
    EXPECT_THAT(rows.row(4), AreRuns({{7, 8}}));

    region.answer = [](LONG, SRun** begin, SRun** end) {
        *begin = runs;
        *end = runs + 3;
        return S_FALSE;
    };
    EXPECT_EQ(0, RegionRows(&region, 10, 5).pixels());
    region.answer = [](LONG, SRun**, SRun**) { return S_OK; };  // writes nothing
    EXPECT_EQ(0, RegionRows(&region, 10, 5).pixels());
}

TEST(RegionRows, MoreRunsThanARowCanHoldFailAtOnce) {
    ForeignRegion region;
    region.box = {0, 0, 9, 0};
    region.rows[0] = std::vector<SRun>(65537, MakeRun(0, 0));
    EXPECT_EQ(S_OK, ResultOf(region, 10, 1));
    region.rows[0].push_back(MakeRun(1, 1));
    EXPECT_EQ(E_FAIL, ResultOf(region, 10, 1));
    // A million million runs that do not exist: nothing is read.
    region.answer = [](LONG, SRun** begin, SRun** end) {
        *begin = reinterpret_cast<SRun*>(alignof(SRun));
        *end = reinterpret_cast<SRun*>(static_cast<uintptr_t>(-1) / 2);
        return S_OK;
    };
    EXPECT_EQ(E_FAIL, ResultOf(region, 10, 1));
    region.answer = [](LONG, SRun** begin, SRun** end) {
        *begin = reinterpret_cast<SRun*>(uintptr_t{1});
        *end = reinterpret_cast<SRun*>(1 + sizeof(SRun));
        return S_OK;
    };
    EXPECT_EQ(E_FAIL, ResultOf(region, 10, 1));
}

}  // namespace
}  // namespace orlix
