// The second way of drawing on device contexts, for systems that refuse the first; the first is tested through the
// image.
#ifdef _WIN32

#include "display/windows/gdi_surface.hpp"

#include <gtest/gtest.h>

namespace orlix {
namespace {

TEST(DrawDib, DrawsThePartOfTheBitmapThatIsAskedFor) {
    DisplayBitmap bitmap{4, 3, 8, 4, {}};
    bitmap.pixels.Resize(12);
    for (int32_t y = 0; y < 3; ++y)
        for (int32_t x = 0; x < 4; ++x) bitmap.row(y)[x] = static_cast<uint8_t>(16 * (4 * y + x));
    const ColorTable ramp = GreyRamp();
    const BitmapHeader header(bitmap, ramp);
    const HDC screen = GetDC(nullptr), context = CreateCompatibleDC(screen);
    const HBITMAP canvas = CreateBitmap(5, 4, 1, 32, nullptr);
    const HGDIOBJ former = SelectObject(context, canvas);
    PatBlt(context, 0, 0, 5, 4, BLACKNESS);
    EXPECT_TRUE(DrawWithDrawDib(context, header, bitmap, {1, 1, 3, 2}, {2, 1, 3, 2}));
    const int wanted[4][5] = {{0, 0, 0, 0, 0}, {0, 0, 5, 6, 7}, {0, 0, 9, 10, 11}, {0, 0, 0, 0, 0}};
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 5; ++x)
            EXPECT_EQ(static_cast<COLORREF>(wanted[y][x] * 0x101010), GetPixel(context, x, y)) << x << ", " << y;
    EXPECT_FALSE(DrawWithDrawDib(context, header, bitmap, {0, 0, 4, 3}, {4, 0, -4, 3}));
    SelectObject(context, former);
    DeleteObject(canvas);
    DeleteDC(context);
    ReleaseDC(nullptr, screen);
}

}  // namespace
}  // namespace orlix

#endif
