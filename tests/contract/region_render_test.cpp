// Shape regions as overlays on a device context.

#include "contract/device_canvas.hpp"
#include "contract/support.hpp"

namespace orlix::testing {
namespace {

using Lines = std::vector<std::string>;

class ForeignPicture final : public Refusing<IPictureEx> {
public:
    TCoordinateMap toDest = {0, 0, {1, 0, 0, 1}};
    HRESULT result = S_OK;
    STDMETHODIMP QueryInterface(REFIID, void** object) noexcept override {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() noexcept override { return 2; }  // lives on the test's stack
    STDMETHODIMP_(ULONG) Release() noexcept override { return 1; }
    STDMETHODIMP get_PixelToDestCoords(TCoordinateMap* map) noexcept override {
        *map = toDest;
        return result;
    }
};

#ifdef _WIN32
TEST(RegionRender, FillsTheRunsThroughTheViewOfThePicture) {
    const auto region = RectangleOf(6, 6, 1, 1, 3, 3);
    const auto overlay = Cast<IGraphicOverlay>(region);
    ASSERT_EQ(S_OK, overlay->put_Color(0x00ff0000));  // blue
    // Shows '1' where nothing was drawn.
    const auto drawn = [&](PolarityType polarity, const TCoordinateMap& toDest, LONG width, LONG height) {
        EXPECT_EQ(S_OK, region->put_Polarity(polarity));
        ForeignPicture picture;
        picture.toDest = toDest;
        DeviceCanvas canvas(width, height);
        EXPECT_EQ(S_OK, overlay->Render(&picture, canvas.context));
        for (LONG x = 0; x < width; ++x) EXPECT_TRUE(canvas.at(x, 2) == 0x0000ff || canvas.at(x, 2) == 0x111111);
        return canvas.Rows();
    };
    // Twice as large: pixel x covers 2 x .. 2 x + 1, its centre lies at 2 x + 1 between them.
    EXPECT_EQ((Lines{"1111111111", "1111111111", "11ffffff11", "11ffffff11", "11ffffff11", "11ffffff11", "11ffffff11",
                     "11ffffff11", "1111111111"}),
              drawn(PT_Inside, {1, 1, {2, 0, 0, 2}}, 10, 9));
    // Mirrored.
    EXPECT_EQ((Lines{"111111", "11fff1", "11f1f1", "11fff1", "111111"}),
              drawn(PT_Frame, {5.5, 0.5, {-1, 0, 0, 1}}, 6, 5));
    // The outside, in the rows of the shape.
    EXPECT_EQ((Lines{"111111", "f111ff", "f111ff", "f111ff", "111111", "111111"}),
              drawn(PT_Outside, {0.5, 0.5, {1, 0, 0, 1}}, 6, 6));
}

TEST(RegionRender, FailsWithThePictureAndRefusesNulls) {
    const auto overlay = Cast<IGraphicOverlay>(CircleOf(6, 6, 3, 3, 2));
    DeviceCanvas canvas(4, 4);
    ForeignPicture picture;
    picture.result = E_UNEXPECTED;
    EXPECT_TRUE(FailsSilently(overlay->Render(&picture, canvas.context)));
    EXPECT_TRUE(FailsSilently(overlay->Render(nullptr, canvas.context), E_POINTER));
    EXPECT_TRUE(FailsSilently(overlay->Render(&picture, nullptr), E_POINTER));
    picture.result = S_OK;
    picture.toDest = {1e300, -1e300, {1e300, 0, 0, 1e300 * 1e300}};
    overlay->Render(&picture, canvas.context);  // no particular result, and no harm
}
#else
TEST(RegionRender, NeedsDeviceContexts) {
    const auto region = NewRegion();
    ForeignPicture picture;
    EXPECT_EQ(E_FAIL, region->CreateCircle(0, 1, 0, 0, 1));
    EXPECT_TRUE(FailsSilently(Cast<IGraphicOverlay>(region)->Render(&picture, &picture), E_NOTIMPL));
}
#endif

}  // namespace
}  // namespace orlix::testing
