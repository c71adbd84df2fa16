#include "display/view_geometry.hpp"

#include "support/special_numbers.hpp"
#include "support/testing.hpp"

namespace orlix {

void PrintTo(const Rectangle& r, std::ostream* out) {
    *out << "(" << r.x << ", " << r.y << ") " << r.width << " x " << r.height;
}

namespace {

TEST(ViewGeometry, TheZoomShowsThePixelsAboutTheCentre) {
    const struct {
        const char* what;
        int32_t width, height;
        double factor, x, y;
        Rectangle want;
    } cases[] = {
        {"below 1", 640, 480, 0.1, 3.7, 476.2, {0, 0, 640, 480}},
        // 320 - 160 + .5 = 160.5 to 480.5, both ends included.
        {"twice", 640, 480, 2.0, 320, 240, {160, 120, 321, 241}},
        // 99.7 +- 53.33..: 46.866 to 153.533; 50.4 +- 40: 10.9 to 90.9.
        {"three times", 320, 240, 3.0, 99.7, 50.4, {46, 10, 108, 81}},
        // 10 - 80 + .5 is cut to -69, so that 160 columns from there end at 159.
        {"left and top edge", 640, 480, 4.0, 10, 10, {0, 0, 160, 120}},
        {"right and bottom edge", 640, 480, 4.0, 639, 479, {479, 359, 161, 121}},
        {"one pixel", 640, 480, 1e300, 100.4, 7.5, {100, 8, 1, 1}},
        {"not a number", 640, 480, kNaN, kNaN, kNaN, {0, 0, 640, 480}},
        {"no centre", 640, 480, 1e9, kNaN, kNaN, {0, 0, 1, 1}},
        {"centre far off", 640, 480, 4.0, 1e300, -kInfinity, {479, 0, 161, 121}},
        // 536870911.75 to each side: 1610612088 to 2684353912, moved back to end at the last column.
        {"largest image", kMost, 3, 2.0, 2147483000.0, 1, {1073741822, 0, 1073741825, 3}},
        {"one pixel wide", 1, 1, 1.25, 0, 0, {0, 0, 1, 1}},
    };
    for (const auto& c : cases) EXPECT_EQ(c.want, SourceRectangle(c.width, c.height, c.factor, c.x, c.y)) << c.what;
}

TEST(ViewGeometry, AnyZoomShowsAPartOfTheImageAndBelowOneAllOfIt) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> exponent(-3, 12), center(-0.2, 1.2);
    for (int i = 0; i < 20000; ++i) {
        const auto width = static_cast<int32_t>(random() % (i % 2 ? 50 : kMost)) + 1;
        const auto height = static_cast<int32_t>(random() % 1000) + 1;
        const double factor = std::exp2(exponent(random));
        const Rectangle got = SourceRectangle(width, height, factor, center(random) * width, center(random) * height);
        ASSERT_EQ(got, Intersection(got, {0, 0, width, height})) << factor;
        ASSERT_GT(got.width, 0);
        ASSERT_GT(got.height, 0);
        ASSERT_TRUE(factor > 1 || got == (Rectangle{0, 0, width, height})) << factor;
    }
}

// The rule, one step at a time.
Rectangle GrownStepByStep(Rectangle source, int32_t width, int32_t height, const Rectangle& dest) {
    const double da = std::fabs(static_cast<double>(dest.width)) / std::fabs(static_cast<double>(dest.height));
    const auto aspect = [](const Rectangle& r) { return static_cast<double>(r.width) / static_cast<double>(r.height); };
    const bool taller = da<aspect(source), wider = da> aspect(source);
    while (taller || wider) {
        Rectangle next = source;
        if (taller) {
            if (source.y > 0) next.y -= 1, next.height += 1;
            if (source.bottom() < height) next.height += 1;
        } else {
            if (source.x > 0) next.x -= 1, next.width += 1;
            if (source.right() < width) next.width += 1;
        }
        if (next == source || (taller ? aspect(next) < da : aspect(next) > da)) break;
        source = next;
    }
    return source;
}

TEST(ViewGeometry, GrowsToTheAspectAsStepByStep) {
    std::mt19937 random(2);
    int grown = 0;
    for (int i = 0; i < 50000; ++i) {
        const auto upTo = [&](int n) { return static_cast<int32_t>(random() % static_cast<unsigned>(n)); };
        const int32_t width = upTo(300) + 1, height = upTo(300) + 1;
        const Rectangle source = SourceRectangle(width, height, 1 + upTo(100) / 9.0, upTo(width), upTo(height));
        const Rectangle dest{0, 0, upTo(2) ? upTo(400) + 1 : -upTo(400) - 1, upTo(2) ? upTo(400) + 1 : -upTo(400) - 1};
        const Rectangle want = GrownStepByStep(source, width, height, dest);
        ASSERT_EQ(want, GrownToAspect(source, width, height, dest)) << testing::PrintToString(source);
        grown += want != source;
    }
    EXPECT_GT(grown, 10000);
    // At once also where there are 2^31 steps.
    EXPECT_EQ((Rectangle{0, 0, kMost, 1}), GrownToAspect({kMost / 2, 0, 1, 1}, kMost, 1, {0, 0, kMost, 1}));
}

TEST(ViewGeometry, FitsTheAspectCentredOrAtTheTopLeft) {
    const struct {
        const char* what;
        Rectangle source, dest, centred;
    } cases[] = {
        {"equal", {0, 0, 4, 3}, {5, 6, 400, 300}, {5, 6, 400, 300}},
        {"bars above and below", {0, 0, 4, 2}, {10, 20, 400, 300}, {10, 70, 400, 200}},
        {"bars at the sides", {0, 0, 2, 4}, {10, 20, 400, 300}, {135, 20, 150, 300}},
        // 33.3 rows of 100: 33, and 67 are left, of which 33 go to each side.
        {"an odd remainder", {0, 0, 3, 1}, {0, 0, 100, 100}, {0, 33, 100, 34}},
        // 66.7 rows are 67, of which 33 are missing.
        {"rounded up", {0, 0, 3, 2}, {0, 0, 100, 100}, {0, 16, 100, 68}},
        {"mirrored", {0, 0, 4, 2}, {10, 20, -400, -300}, {10, -30, -400, -200}},
        {"at least a pixel", {0, 0, 1000, 1}, {0, 0, 5, 5}, {0, 2, 5, 1}},
        {"at least a pixel, even", {0, 0, 1, 1000}, {0, 0, 4, 4}, {1, 0, 2, 4}},
        {"one pixel of room", {0, 0, 1000, 1}, {7, 7, 3, -1}, {7, 7, 3, -1}},
        {"smallest integers", {0, 0, 1, 2}, {0, 0, kLeast, kLeast}, {-536870912, 0, -1073741824, kLeast}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.centred, Fitted(c.source, c.dest, Placing::Centred)) << c.what;
        EXPECT_EQ((Rectangle{c.dest.x, c.dest.y, c.centred.width, c.centred.height}),
                  Fitted(c.source, c.dest, Placing::TopLeft))
            << c.what;
    }
}

TEST(ViewGeometry, BothMapsCarryEdgesToEdgesThereAndBack) {
    // Pixels 10..13 on surface pixels 100..107: pixel 10 covers 100 .. 102, its centre lies at 101.
    const View view = ViewOf({10, 20, 4, 2}, {100, 50, 8, -6});
    const auto at = [](const auto& map, double x, double y) {
        const PixelPoint p = Apply(map, x, y);
        return std::pair{p.x, p.y};
    };
    EXPECT_EQ((std::pair{101.0, 48.5}), at(view.toDest, 10, 20));
    EXPECT_EQ((std::pair{103.0, 45.5}), at(view.toDest, 11, 21));
    EXPECT_EQ((std::pair{13.5, 21.5}), at(view.toPixel, 108, 44));

    std::mt19937 random(3);
    std::uniform_real_distribution<double> unit(0, 1), exponent(0, 12);
    double worst = 0;
    int measured = 0;
    for (int i = 0; i < 20000; ++i) {
        const auto upTo = [&](int n) { return static_cast<int32_t>(random() % static_cast<unsigned>(n)); };
        const int32_t width = upTo(1 << 20) + 1, height = upTo(1 << 20) + 1;
        const Rectangle dest{upTo(5000) - 2500, upTo(5000) - 2500, upTo(4000) + 1, -upTo(4000) - 1};
        const auto some = MakeView(width, height, std::exp2(exponent(random)), unit(random) * width,
                                   unit(random) * height, dest, i % 2 ? Placing::Centred : Placing::TopLeft);
        ASSERT_TRUE(some);
        const Rectangle inside = Normalized(some->dest);
        ASSERT_EQ(inside, Intersection(inside, Normalized(dest)));
        if (std::max(std::fabs(some->toPixel.OrgX), std::fabs(some->toPixel.OrgY)) > 1 << 20) continue;
        const double x = unit(random) * width, y = unit(random) * height;
        const PixelPoint there = Apply(some->toDest, x, y), back = Apply(some->toPixel, there.x, there.y);
        worst = std::max({worst, std::fabs(back.x - x), std::fabs(back.y - y)});
        ++measured;
    }
    EXPECT_GT(measured, 10000);
    EXPECT_LT(worst, 1e-9);
}

TEST(ViewGeometry, ShowsMoreOfTheImageBeforeItLeavesBars) {
    // 4 times into a wide window: 161 x 121 pixels grow to the right and left while they are narrower than 2:1.
    const auto view = MakeView(640, 480, 4.0, 320, 240, {0, 0, 1000, 500}, Placing::Centred);
    ASSERT_TRUE(view);
    EXPECT_EQ((Rectangle{320 - 80 - 40, 180, 241, 121}), view->source);
    EXPECT_EQ((Rectangle{2, 0, 996, 500}), view->dest);  // trunc(1000 * (241 / 121) / 2 + .5) = 996
    EXPECT_FALSE(MakeView(640, 480, 1, 0, 0, {0, 0, 0, 5}, Placing::Centred));
    EXPECT_FALSE(MakeView(640, 480, 1, 0, 0, {0, 0, 5, 0}, Placing::Centred));
    EXPECT_FALSE(MakeView(0, 480, 1, 0, 0, {0, 0, 5, 5}, Placing::Centred));
    EXPECT_FALSE(MakeView(640, 0, 1, 0, 0, {0, 0, 5, 5}, Placing::Centred));
}

TEST(ViewGeometry, ShowsPixelForPixelWhereTheImageIs) {
    const struct {
        const char* what;
        Rectangle dest;
        int32_t x, y;
        Rectangle source, shown;
    } cases[] = {
        {"inside", {100, 50, 8, 6}, 10, 20, {10, 20, 8, 6}, {100, 50, 8, 6}},
        {"left and top of it", {100, 50, 8, 6}, -3, -2, {0, 0, 5, 4}, {103, 52, 5, 4}},
        {"right and bottom of it", {100, 50, 8, 6}, 35, 28, {35, 28, 5, 2}, {100, 50, 5, 2}},
        {"mirrored", {100, 50, -8, -6}, -3, 28, {0, 28, 5, 2}, {97, 50, -5, -2}},
        {"all of it", {0, 0, kMost, kLeast}, -7, -7, {0, 0, 40, 30}, {7, -7, 40, -30}},
    };
    for (const auto& c : cases) {
        const auto view = MakeUnscaledView(40, 30, c.dest, c.x, c.y);
        ASSERT_TRUE(view) << c.what;
        EXPECT_EQ(c.source, view->source) << c.what;
        EXPECT_EQ(c.shown, view->dest) << c.what;
        EXPECT_EQ(1.0, std::fabs(view->toDest.Matrix.A11)) << c.what;
    }
    for (const auto& [x, y] : {std::pair{40, 0}, {0, 30}, {-8, 0}, {kLeast, 0}, {0, kMost}})
        EXPECT_FALSE(MakeUnscaledView(40, 30, {0, 0, 8, 6}, x, y)) << x << ", " << y;
    EXPECT_FALSE(MakeUnscaledView(40, 30, {0, 0, 0, 6}, 0, 0));
    EXPECT_FALSE(MakeUnscaledView(0, 0, {0, 0, 8, 6}, 0, 0));
}

TEST(ViewGeometry, BandsAndPictureCoverTheDestinationOnce) {
    for (const Rectangle& dest : {Rectangle{2, 3, 9, 4}, {11, 3, -9, 4}, {2, 7, 4, -4}, {6, 14, -4, -11}, {2, 3, 4, 4}})
        for (const Placing placing : {Placing::Centred, Placing::TopLeft}) {
            int hits[20][20] = {};
            const auto add = [&](const Rectangle& r) {
                for (int64_t y = r.y; y < r.bottom(); ++y)
                    for (int64_t x = r.x; x < r.right(); ++x) ++hits[y][x];
            };
            const Rectangle fitted = Fitted({0, 0, 1, 1}, dest, placing);
            add(Normalized(fitted));
            for (const Rectangle& band : SurroundBands(dest, fitted)) add(band);
            const Rectangle all = Normalized(dest);
            for (int y = 0; y < 20; ++y)
                for (int x = 0; x < 20; ++x)
                    ASSERT_EQ(x >= all.x && x < all.right() && y >= all.y && y < all.bottom(), hits[y][x]);
        }
}

TEST(ViewGeometry, ReportsRectanglesIn32Bits) {
    const RECT rect = ToRect({kMost, kLeast, 5, -5}), wanted = {kMost, kLeast, kMost, kLeast};
    EXPECT_EQ(0, std::memcmp(&wanted, &rect, sizeof(rect)));
}

}  // namespace
}  // namespace orlix
