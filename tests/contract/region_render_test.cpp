// Shape regions as overlays on a device context.

#include "contract/support.hpp"

namespace orlix::testing {
namespace {

class Picture final : public IPictureEx {
public:
    TCoordinateMap toDest = {0, 0, {1, 0, 0, 1}};
    HRESULT result = S_OK;
    STDMETHODIMP QueryInterface(REFIID, void** object) noexcept override {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() noexcept override { return 2; }  // lives on the test's stack
    STDMETHODIMP_(ULONG) Release() noexcept override { return 1; }
    STDMETHODIMP get_DestToPixelCoords(TCoordinateMap*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_PixelToDestCoords(TCoordinateMap* map) noexcept override {
        *map = toDest;
        return result;
    }
    STDMETHODIMP get_Width(LONG*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_Height(LONG*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_DestRect(RECT*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_Surround(OLE_COLOR*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP put_Surround(OLE_COLOR) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Render(void*, LONG, LONG, LONG, LONG) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP RenderTopLeft(void*, LONG, LONG, LONG, LONG) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP RenderBlt(void*, LONG, LONG, LONG, LONG, LONG, LONG) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP RenderStretch(void*, LONG, LONG, LONG, LONG, LONG, LONG, LONG, LONG) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP CreateHBITMAP(void*, void**) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateDIBSection(void**, void**) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP AttachBuffer(void*, LONG, LONG, LONG) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetPixelInfo(LONG, LONG, double*, double*, double*, OLE_COLOR*) noexcept override { return E_NOTIMPL; }
};

#ifdef _WIN32
// A 32-bit picture in memory to draw on, black at first.
class Canvas {
public:
    Canvas(LONG width, LONG height) : context_(CreateCompatibleDC(nullptr)), width_(width) {
        BITMAPINFO info = {};
        info.bmiHeader.biSize = sizeof info.bmiHeader;
        info.bmiHeader.biWidth = width;
        info.bmiHeader.biHeight = -height;
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        void* bits = nullptr;
        bitmap_ = CreateDIBSection(context_, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
        pixels_ = static_cast<uint32_t*>(bits);
        SelectObject(context_, bitmap_);
    }
    ~Canvas() {
        DeleteDC(context_);
        DeleteObject(bitmap_);
    }
    HDC context() const { return context_; }
    // One character a pixel: '#' where the red colour is, '.' where nothing is.
    std::string Row(LONG y) const {
        GdiFlush();
        std::string row;
        for (LONG x = 0; x < width_; ++x) {
            const uint32_t pixel = pixels_[y * width_ + x] & 0xffffff;
            row += pixel == 0xff0000 ? '#' : pixel == 0 ? '.' : '?';
        }
        return row;
    }

private:
    HDC context_;
    HBITMAP bitmap_;
    LONG width_;
    uint32_t* pixels_;
};

TEST(RegionRender, FillsTheRunsThroughTheViewOfThePicture) {
    const auto region = CreateObject<IShapeRegionOfInterest>("Orlix.ShapeRegionOfInterest");
    const auto overlay = Cast<IGraphicOverlay>(region);
    ASSERT_EQ(S_OK, overlay->put_Color(0x000000ff));  // red
    ASSERT_EQ(S_OK, region->CreateRectangle(6, 6, 1, 1, 3, 3));
    Picture picture;

    // Twice as large: pixel x covers 2 x .. 2 x + 1, its centre lies at 2 x + 1 between them.
    picture.toDest = {1, 1, {2, 0, 0, 2}};
    Canvas twice(12, 10);
    ASSERT_EQ(S_OK, overlay->Render(&picture, twice.context()));
    EXPECT_EQ("............", twice.Row(1));
    EXPECT_EQ("..######....", twice.Row(2));
    EXPECT_EQ("..######....", twice.Row(7));
    EXPECT_EQ("............", twice.Row(8));

    // Mirrored, frame only.
    ASSERT_EQ(S_OK, region->put_Polarity(PT_Frame));
    picture.toDest = {5.5, 0.5, {-1, 0, 0, 1}};
    Canvas mirrored(6, 6);
    ASSERT_EQ(S_OK, overlay->Render(&picture, mirrored.context()));
    EXPECT_EQ("......", mirrored.Row(0));
    EXPECT_EQ("..###.", mirrored.Row(1));
    EXPECT_EQ("..#.#.", mirrored.Row(2));
    EXPECT_EQ("..###.", mirrored.Row(3));

    // The outside, in the rows of the shape.
    ASSERT_EQ(S_OK, region->put_Polarity(PT_Outside));
    picture.toDest = {0.5, 0.5, {1, 0, 0, 1}};
    Canvas outside(6, 6);
    ASSERT_EQ(S_OK, overlay->Render(&picture, outside.context()));
    EXPECT_EQ("......", outside.Row(0));
    EXPECT_EQ("#...##", outside.Row(1));
    EXPECT_EQ("#...##", outside.Row(3));
    EXPECT_EQ("......", outside.Row(4));
}

TEST(RegionRender, FailsWithThePictureAndRefusesNulls) {
    const auto region = CreateObject<IShapeRegionOfInterest>("Orlix.ShapeRegionOfInterest");
    const auto overlay = Cast<IGraphicOverlay>(region);
    ASSERT_EQ(S_OK, region->CreateCircle(6, 6, 3, 3, 2));
    Canvas canvas(4, 4);
    Picture picture;
    picture.result = E_UNEXPECTED;
    EXPECT_TRUE(FailsSilently(overlay->Render(&picture, canvas.context())));
    EXPECT_TRUE(FailsSilently(overlay->Render(nullptr, canvas.context()), E_POINTER));
    EXPECT_TRUE(FailsSilently(overlay->Render(&picture, nullptr), E_POINTER));
    picture.result = S_OK;
    picture.toDest = {1e300, -1e300, {1e300, 0, 0, 1e300 * 1e300}};
    overlay->Render(&picture, canvas.context());  // no particular result, and no harm
}
#else
TEST(RegionRender, NeedsDeviceContexts) {
    const auto region = CreateObject<IShapeRegionOfInterest>("Orlix.ShapeRegionOfInterest");
    Picture picture;
    EXPECT_EQ(E_FAIL, region->CreateCircle(0, 1, 0, 0, 1));
    EXPECT_TRUE(FailsSilently(Cast<IGraphicOverlay>(region)->Render(&picture, &picture), E_NOTIMPL));
}
#endif

}  // namespace
}  // namespace orlix::testing
