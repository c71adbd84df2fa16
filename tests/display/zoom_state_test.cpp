#include "display/zoom_state.hpp"

#include "support/failure_of.hpp"
#include "support/special_numbers.hpp"
#include "support/testing.hpp"

namespace orlix {
namespace {

ZoomState Zoom(int32_t width, int32_t height) {
    ZoomState zoom;
    zoom.SetImageSize(width, height);
    return zoom;
}

void ExpectZoom(const ZoomState& zoom, double factor, double x, double y, const char* what) {
    EXPECT_EQ(factor, zoom.factor()) << what;
    EXPECT_EQ(x, zoom.centerX()) << what;
    EXPECT_EQ(y, zoom.centerY()) << what;
}

TEST(ZoomState, BeginsWithTheWholeImageAndAgainForANewSize) {
    ZoomState zoom = Zoom(640, 480);
    ExpectZoom(zoom, 1.0, 320, 240, "even");
    zoom.SetImageSize(641, 481);
    ExpectZoom(zoom, 1.0, 320, 240, "odd");
    zoom.PutFactor(3);
    zoom.PutCenterX(17.25);
    zoom.SetImageSize(641, 481);
    ExpectZoom(zoom, 3.0, 17.25, 240, "the same size");
    zoom.SetImageSize(641, 482);
    ExpectZoom(zoom, 1.0, 320, 241, "another size");
    ExpectZoom(Zoom(1, 1), 1.0, 0, 0, "a pixel");
}

TEST(ZoomState, TakesFactorsAboveZeroUnchanged) {
    ZoomState zoom = Zoom(640, 480);
    const double smallest = std::numeric_limits<double>::denorm_min();
    for (const double factor : {0.3, smallest, 1e300, kInfinity, 1.5}) {
        zoom.PutFactor(factor);
        ExpectZoom(zoom, factor, 320, 240, "accepted");
    }
    for (const double factor : {0.0, -0.0, -1.0, -kInfinity, kNaN})
        EXPECT_EQ("IPictureZoom: zoom factor must be positive.", FailureOf([&] { zoom.PutFactor(factor); }));
    EXPECT_EQ(1.5, zoom.factor());
}

TEST(ZoomState, TakesCentresWhoseNearestPixelIsOnTheImageButInTheFirstColumnOrRow) {
    ZoomState zoom = Zoom(640, 480);
    for (const auto& [x, y] : {std::pair{0.5, 0.5}, {639.49, 479.0}, {17.3, 479.49}}) {
        zoom.PutCenterX(x);
        zoom.PutCenterY(y);
        ExpectZoom(zoom, 1, x, y, "accepted");
    }
    for (const double off : {0.4, 0.0, -0.6, -5.0, 639.5, 640.0, 1e300, -1e300, kInfinity, -kInfinity, kNaN}) {
        EXPECT_EQ("IPictureZoom::put_ZoomCenterX: x zoom center must be on the image.",
                  FailureOf([&] { zoom.PutCenterX(off); }));
        EXPECT_EQ("IPictureZoom::put_ZoomCenterY: y zoom center must be on the image.",
                  FailureOf([&] { zoom.PutCenterY(off == 639.5 ? 479.5 : off); }));
        ExpectZoom(zoom, 1.0, 17.3, 479.49, "refused");
    }
}

TEST(ZoomState, ZoomsByAQuarterAndBackToTheWholeImage) {
    ZoomState zoom = Zoom(640, 480);
    for (int i = 0; i < 4; ++i) zoom.ZoomIn();
    EXPECT_EQ(2.44140625, zoom.factor());
    for (const auto& [before, after] : {std::pair{5.0, 4.0}, {1.1, 1.0}, {0.25, 1.0}}) {
        zoom.PutFactor(before);
        zoom.ZoomOut();
        EXPECT_EQ(after, zoom.factor());
    }
    zoom.PutFactor(std::numeric_limits<double>::max());
    zoom.ZoomIn();
    zoom.ZoomIn();
    EXPECT_EQ(kInfinity, zoom.factor());
}

// Two surface pixels for an image pixel, image pixel 0 begins at surface (100, 200).
const View kTwice = ViewOf({0, 0, 640, 480}, {100, 200, 1280, 960});

TEST(ZoomState, ZoomsAboutPointsAndRectanglesOfTheSurface) {
    ZoomState zoom = Zoom(640, 480);
    zoom.ZoomInFromPoint(kTwice, 301, 241);  // pixel (100, 20)
    ExpectZoom(zoom, 1.25, 100, 20, "in");
    zoom.PutFactor(10);
    zoom.ZoomOutFromPoint(kTwice, 501, 601);
    ExpectZoom(zoom, 8, 200, 200, "out");
    zoom.ZoomInFromPoint(kTwice, 0, 301);  // left of the image
    ExpectZoom(zoom, 10, 200, 50, "a refused column");

    // Pixels 99.5 .. 163.5 and 49.5 .. 61.5: 65 of 640 and 13 of 480.
    zoom.ZoomFromRectangle(kTwice, 300, 300, 128, 24);
    ExpectZoom(zoom, 13.0 / 480, 131.5, 55.5, "a rectangle");
    // Drawn to the left: -64 + 1 pixels would be a negative factor.
    zoom.ZoomFromRectangle(kTwice, 428, 300, -128, 48);
    ExpectZoom(zoom, 13.0 / 480, 131.5, 61.5, "a rectangle drawn to the left");
}

TEST(ZoomState, PansByASurfacePixelButAtLeastAnImagePixel) {
    ZoomState zoom = Zoom(640, 480);
    // The middle of the view is pixel edge 319.5, 239.5; the centre lies at 320, 240.
    zoom.PanLeft(kTwice);
    ExpectZoom(zoom, 1, 318.5, 240, "left, from the middle of the view");
    zoom.PanLeft(kTwice);
    ExpectZoom(zoom, 1, 317.5, 240, "left again");
    zoom.PanRight(kTwice);
    ExpectZoom(zoom, 1, 320.5, 240, "right, from the middle of the view");
    zoom.ScrollUp(kTwice);
    ExpectZoom(zoom, 1, 320.5, 238.5, "up");
    zoom.ScrollDown(kTwice);
    ExpectZoom(zoom, 1, 320.5, 240.5, "down");

    const View quarter = ViewOf({0, 0, 640, 480}, {0, 0, 160, 120});
    zoom.PanLeft(quarter);
    zoom.ScrollUp(quarter);
    ExpectZoom(zoom, 1, 315.5, 235.5, "four image pixels");

    // Mirrored: still at least one pixel to that side.
    zoom.PanRight(ViewOf({0, 0, 640, 480}, {160, 120, -160, -120}));
    ExpectZoom(zoom, 1, 320.5, 235.5, "mirrored");

    zoom.PutCenterX(1.2);
    zoom.PutCenterY(478.9);
    zoom.PanLeft(quarter);
    zoom.ScrollDown(quarter);
    ExpectZoom(zoom, 1, 1.2, 478.9, "at the edges nothing moves");
}

TEST(ZoomState, DragsTheImageWithThePointer) {
    ZoomState zoom = Zoom(640, 480);
    zoom.PanScrollFromPoints(kTwice, 50, 60, 50, 60);
    ExpectZoom(zoom, 1, 320, 240, "no way");
    zoom.PanScrollFromPoints(kTwice, 50, 60, 70, 50);
    ExpectZoom(zoom, 1, 310, 245, "right and up");
    zoom.PanScrollFromPoints(kTwice, 5000, 60, 0, 62);
    ExpectZoom(zoom, 1, 310, 244, "too far along x");
}

TEST(ZoomState, TakesAnyArgument) {
    const View never;  // before the first rendering: surface and image coordinates are the same
    View broken = kTwice;
    broken.toPixel = {kNaN, kInfinity, {kNaN, -kInfinity, kInfinity, kNaN}};
    for (const auto& [width, height] : {std::pair{640, 480}, {0, 0}, {1, 1}, {kMost, kMost}})
        for (const View& view : {never, kTwice, broken})
            for (const int32_t a : {kLeast, -1, 0, 7, kMost})
                for (const int32_t b : {kLeast, 0, kMost}) {
                    ZoomState zoom = Zoom(width, height);
                    zoom.ZoomInFromPoint(view, a, b);
                    zoom.ZoomFromRectangle(view, a, b, b, a);
                    zoom.ZoomFromRectangle(view, a, b, a, b);
                    zoom.ZoomOutFromPoint(view, b, a);
                    zoom.PanScrollFromPoints(view, a, b, b, a);
                    zoom.PanLeft(view);
                    zoom.PanRight(view);
                    zoom.ScrollUp(view);
                    zoom.ScrollDown(view);
                    ASSERT_GT(zoom.factor(), 0);
                    ASSERT_TRUE(zoom.centerX() >= 0 && zoom.centerX() <= width);
                    ASSERT_TRUE(zoom.centerY() >= 0 && zoom.centerY() <= height);
                }
    ZoomState zoom = Zoom(640, 480);
    zoom.ZoomInFromPoint(never, 30, 40);
    ExpectZoom(zoom, 1.25, 30, 40, "identity");
}

}  // namespace
}  // namespace orlix
