#include "display/displayed_image.hpp"

#include "support/testing.hpp"

namespace orlix {
namespace {

struct TestImage {
    explicit TestImage(LONG dataType) : image(DisplayedImage::Make(dataType, *changes)) {}
    DisplayedImage* operator->() const { return image.get(); }

    std::unique_ptr<Changes> changes = std::make_unique<Changes>();
    std::unique_ptr<DisplayedImage> image;
};

// Pixel (x, y) of a band is 100 band + 10 y + x.
TestImage Bytes(LONG width, LONG height, LONG bands) {
    TestImage image(DT_BYTE);
    image->store().Create(width, height, bands, DT_BYTE, true);
    image->ContentReplaced();
    for (LONG band = 0; band < bands; ++band)
        for (LONG y = 0; y < height; ++y)
            for (LONG x = 0; x < width; ++x)
                image->store().base(band)[y * image->store().layout().rowStride + x] =
                    static_cast<uint8_t>(100 * band + 10 * y + x);
    return image;
}

using Levels = std::vector<int>;
Levels Row(const DisplayBitmap& bitmap, int32_t y) {
    const uint8_t* row = bitmap.row(y);
    return {row, row + bitmap.rowStride};
}

TEST(DisplayBitmap, HoldsTheLevelsBottomUpInRowsPaddedWithZeros) {
    const auto image = Bytes(3, 2, 1);
    const DisplayBitmap& bitmap = image->Display();
    EXPECT_TRUE(bitmap.width == 3 && bitmap.height == 2);
    EXPECT_EQ((Levels{0, 1, 2, 0}), Row(bitmap, 0));
    EXPECT_EQ((Levels{10, 11, 12, 0}), Row(bitmap, 1));
    EXPECT_EQ(bitmap.pixels.data(), bitmap.row(1));
    image->PutDisplayRange(10, 12);
    EXPECT_EQ((Levels{0, 128, 255, 0}), Row(image->Display(), 1));
}

// Parts of any place and size, with changes in between, next to an image that is shown as a whole.
TEST(DisplayBitmap, HoldsThePartsThatAreShown) {
    std::mt19937 random(1);
    const auto below = [&](int64_t n) { return static_cast<int64_t>(random() % static_cast<uint32_t>(n)); };
    for (const LONG bands : {1, 3}) {
        const auto parts = Bytes(301, 50, bands), whole = Bytes(301, 50, bands);
        for (int step = 0; step < 300; ++step) {
            if (below(4) == 0)
                for (const TestImage* image : {&parts, &whole}) {
                    (*image)->PutDisplayRange(step % 100, 200);
                    (*image)->store().base(bands - 1)[step % 301] = static_cast<uint8_t>(step);
                }
            Rectangle part{below(301), below(50), 0, 0};
            part.width = 1 + below(301 - part.x);
            part.height = 1 + below(50 - part.y);
            parts->Show(part);
            const DisplayBitmap &got = parts->Bitmap(), &want = whole->Display();
            ASSERT_FALSE(parts->DisplayDirty());
            const auto bytes = static_cast<size_t>(got.bitsPerPixel / 8);
            for (auto y = static_cast<int32_t>(part.y); y < part.bottom(); ++y)
                ASSERT_EQ(0, std::memcmp(want.row(y) + static_cast<size_t>(part.x) * bytes,
                                         got.row(y) + static_cast<size_t>(part.x) * bytes,
                                         static_cast<size_t>(part.width) * bytes));
        }
    }
}

TEST(DisplayBitmap, IsComputedAnewOnlyAfterAChange) {
    const auto image = Bytes(1, 1, 1);
    uint8_t& pixel = *image->store().base(0);
    const auto shown = [&] { return int{*image->Display().row(0)}; };
    EXPECT_TRUE(image->DisplayDirty());
    EXPECT_EQ(0, shown());
    EXPECT_FALSE(image->DisplayDirty());
    pixel = 9;  // behind the library's back
    EXPECT_EQ(0, shown());
    for (const bool dirty : {true, false}) {
        ++pixel;
        image->PutDisplayDirty(dirty);
        EXPECT_EQ(dirty, image->DisplayDirty());
        EXPECT_EQ(pixel, shown());
        EXPECT_FALSE(image->DisplayDirty());
    }
    pixel = static_cast<uint8_t>(255 - pixel);
    ++image.changes->pixels;
    EXPECT_TRUE(image->DisplayDirty());
    EXPECT_EQ(255 - 11, shown());
    image->PutColor(0, 0xffffff);  // the levels are the same
    pixel = 1;
    EXPECT_EQ(255 - 11, shown());
    image->PutDisplayRange(0, 2);
    EXPECT_EQ(128, shown());
    image->store().Create(1, 1, 1, DT_BYTE, true);
    image->ContentReplaced();
    EXPECT_EQ(0, shown());
}

TEST(DisplayBitmap, ShowsThreeBandsInColourOrTheBandThatIsChosen) {
    const struct {
        LONG bands, band;
        Levels top, bottom;
    } cases[] = {{4, BI_AllBands, {200, 100, 0, 0, 201, 101, 1, 0}, {210, 110, 10, 0, 211, 111, 11, 0}},
                 {2, BI_AllBands, {0, 1, 0, 0}, {10, 11, 0, 0}},
                 {3, 2, {200, 201, 0, 0}, {210, 211, 0, 0}}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.bands << " bands, " << c.band);
        const auto image = Bytes(2, 2, c.bands);
        image->PutBandToDisplay(c.band);
        const DisplayBitmap& bitmap = image->Display();
        EXPECT_EQ(c.top, Row(bitmap, 0));
        EXPECT_EQ(c.bottom, Row(bitmap, 1));
    }
}

TEST(DisplayBitmap, InColourPassesEachChannelThroughItsPartOfTheTable) {
    const auto image = Bytes(1, 1, 3);  // red 0, green 100, blue 200
    image->PutBandToDisplay(BI_AllBands);
    image->Display();
    image->PutColor(0, 0x112233);  // blue, green, red
    image->PutColor(100, 0x445566);
    image->PutColor(200, 0x778899);
    EXPECT_EQ((Levels{0x77, 0x55, 0x33, 0}), Row(image->Display(), 0));
}

TEST(DisplayBitmap, OfAnImageWithoutPixelsHasNoBits) {
    const TestImage image(DT_Float);
    EXPECT_EQ(0, image->Display().bitsPerPixel);
    EXPECT_EQ(0, image->Display().width);
    image->store().Create(5, 7, 1, DT_Float, true);
    image->ContentReplaced();
    EXPECT_EQ(7, image->Display().height);
}

TEST(DisplayState, OfAStreamTakesTheDisplay) {
    const auto image = Bytes(1, 1, 2);
    image->Display();
    DisplayState state = image->displayState();
    EXPECT_EQ(0, state.carried.number);
    EXPECT_EQ(0.0, state.carried.values[2]);
    state.band = 1;
    state.colors[3] = {1, 2, 3, 4};
    image->PutDisplayState(state);
    EXPECT_EQ(100, *image->Display().row(0));
    EXPECT_EQ(0x010203u, image->GetColor(3));
    EXPECT_EQ(4, image->displayState().colors[3].reserved);
}

}  // namespace
}  // namespace orlix
