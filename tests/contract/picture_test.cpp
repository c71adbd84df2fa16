// The picture of an image on every system: drawn into memory, with its maps, zoom and events. What the arithmetic of
// views, zooms and scaling has to give is tested in tests/display.

#ifdef _WIN32
#include <olectl.h>
#endif

#include <algorithm>
#include <optional>

#include "contract/support.hpp"

namespace orlix::testing {
namespace {

using Lines = std::vector<std::string>;
using Box = std::vector<LONG>;

constexpr unsigned kUntouched = 0xcdcdcdcd;

// Memory with a guard around it.
struct MemoryCanvas {
    LONG width, height;
    std::vector<unsigned> pixels;
    SPictureMemory memory;
    MemoryCanvas(LONG w, LONG h, RasterScaling scaling = RS_Nearest)
        : width(w), height(h), pixels(static_cast<size_t>((w + 1) * (h + 2)), kUntouched) {
        memory = {pixels.data() + w + 1, w, h, w + 1, scaling};
    }
    unsigned at(LONG x, LONG y) const { return memory.m_pPixels[y * memory.m_lStride + x]; }
    // One character a pixel: the red part divided by 16, '.' for what was not drawn.
    Lines Rows() const {
        Lines rows(static_cast<size_t>(height));
        for (LONG y = 0; y < height; ++y)
            for (LONG x = 0; x < width; ++x)
                rows[static_cast<size_t>(y)] += at(x, y) == kUntouched ? '.' : "0123456789abcdef"[at(x, y) >> 20 & 15];
        return rows;
    }
};

// 4 x 2 pixels: 16 (1 + x + 4 y).
TypedImage<uint8_t> SmallPicture() { return ImageOf<uint8_t>(4, {16, 32, 48, 64, 80, 96, 112, 128}); }

Box DestRectOf(const Image& image) { return Edges(Get(image.zoom, &IPictureExZoom::get_DestRect)); }
TCoordinateMap ToDest(const Image& image) { return Get(image.zoom, &IPictureExZoom::get_PixelToDestCoords); }
TCoordinateMap ToPixel(const Image& image) { return Get(image.zoom, &IPictureExZoom::get_DestToPixelCoords); }

void ExpectZoom(const Image& image, double factor, double x, double y, const char* what) {
    EXPECT_EQ(factor, Get(image.zoom, &IPictureExZoom::get_ZoomFactor)) << what;
    EXPECT_EQ(x, Get(image.zoom, &IPictureExZoom::get_ZoomCenterX)) << what;
    EXPECT_EQ(y, Get(image.zoom, &IPictureExZoom::get_ZoomCenterY)) << what;
}

TEST(Picture, IsFittedIntoTheMiddleOrTheCornerWithItsSurround) {
    const auto picture = SmallPicture();
    ASSERT_EQ(S_OK, picture.zoom->put_Surround(0xff0000f0));
    MemoryCanvas centred(9, 8);
    // 8 x 4 of the 8 x 6 asked for, one row free above and below.
    ASSERT_EQ(S_OK, picture.memory->RenderToMemory(&centred.memory, 1, 1, 8, 6));
    EXPECT_EQ(
        (Lines{".........", ".ffffffff", ".11223344", ".11223344", ".55667788", ".55667788", ".ffffffff", "........."}),
        centred.Rows());
    EXPECT_EQ((Box{1, 2, 9, 6}), DestRectOf(picture));
    EXPECT_EQ((std::vector<double>{2, 3, 2, 0, 0, 2}), Entries(ToDest(picture))) << "pixel 0 covers 1 .. 3";
    EXPECT_EQ((std::vector<double>{-1, -1.5, 0.5, 0, 0, 0.5}), Entries(ToPixel(picture)));

    MemoryCanvas corner(9, 8);
    ASSERT_EQ(S_OK, picture.memory->RenderTopLeftToMemory(&corner.memory, 1, 1, 8, 6));
    EXPECT_EQ(
        (Lines{".........", ".11223344", ".11223344", ".55667788", ".55667788", ".ffffffff", ".ffffffff", "........."}),
        corner.Rows());
    EXPECT_EQ((Box{1, 1, 9, 5}), DestRectOf(picture));
}

TEST(Picture, IsMirroredWithItsDestinationAndClippedToTheMemory) {
    const auto picture = SmallPicture();
    MemoryCanvas mirrored(4, 2);
    ASSERT_EQ(S_OK, picture.memory->RenderToMemory(&mirrored.memory, 4, 2, -4, -2));
    EXPECT_EQ((Lines{"8765", "4321"}), mirrored.Rows());
    EXPECT_EQ((Box{4, 2, 0, 0}), DestRectOf(picture));
    MemoryCanvas clipped(3, 2);
    ASSERT_EQ(S_OK, picture.memory->RenderToMemory(&clipped.memory, -2, -1, 8, 4));
    EXPECT_EQ((Lines{"223", "667"}), clipped.Rows());
    EXPECT_EQ(S_OK, picture.memory->RenderToMemory(&clipped.memory, kLeast, kLeast, kMost, kMost));
    EXPECT_EQ(S_OK, picture.memory->RenderToMemory(&clipped.memory, kMost, kMost, kLeast, kLeast));
    // The top row last.
    MemoryCanvas turned(4, 2);
    turned.memory.m_pPixels += turned.memory.m_lStride;
    turned.memory.m_lStride = -turned.memory.m_lStride;
    ASSERT_EQ(S_OK, picture.memory->RenderToMemory(&turned.memory, 0, 0, 4, 2));
    EXPECT_EQ((Lines{"1234", "5678"}), turned.Rows());
    // An empty destination changes nothing.
    for (const auto& [width, height] : {std::pair{0, 5}, {5, 0}, {0, 0}})
        EXPECT_EQ(S_FALSE, picture.memory->RenderToMemory(&turned.memory, 1, 1, width, height));
    EXPECT_EQ((Box{0, 0, 4, 2}), DestRectOf(picture));
}

TEST(Picture, BltShowsPixelByPixelAndStretchWhatItIsGiven) {
    const auto picture = SmallPicture();
    Check(picture.zoom->put_ZoomFactor(4), picture.zoom);  // neither asks for it
    MemoryCanvas blt(7, 4);
    ASSERT_EQ(S_OK, picture.memory->RenderBltToMemory(&blt.memory, 1, 1, 6, 3, -1, 1));
    EXPECT_EQ((Lines{".......", ".056780", ".000000", ".000000"}), blt.Rows());
    EXPECT_EQ((Box{2, 1, 6, 2}), DestRectOf(picture));
    EXPECT_EQ(S_FALSE, picture.memory->RenderBltToMemory(&blt.memory, 0, 0, 3, 1, 4, 0));
    EXPECT_EQ("000....", blt.Rows()[0]);
    EXPECT_EQ((Box{2, 1, 6, 2}), DestRectOf(picture)) << "nothing of the image was shown";

    MemoryCanvas stretch(6, 4);
    ASSERT_EQ(S_OK, picture.memory->RenderStretchToMemory(&stretch.memory, 0, 0, 6, 4, 1, 0, 2, 2));
    EXPECT_EQ((Lines{"222333", "222333", "666777", "666777"}), stretch.Rows());
    for (const auto& [x, y, w, h] : {std::array{-1, 0, 2, 2},
                                     {0, 0, 5, 2},
                                     {0, 1, 4, 2},
                                     {0, 0, 0, 1},
                                     {0, 0, 1, -1},
                                     {INT32_MAX, 0, INT32_MAX, 1},
                                     {0, INT32_MIN, 1, INT32_MIN}})
        EXPECT_TRUE(Fails(picture.memory->RenderStretchToMemory(&stretch.memory, 0, 0, 6, 4, x, y, w, h),
                          "IPictureEx::RenderStretch: the source rectangle must lie on the image."));
}

TEST(Picture, SmoothAverages) {
    const auto picture = ImageOf<uint8_t>(4, {0, 100, 200, 255, 50, 10, 30, 20});
    MemoryCanvas half(2, 1, RS_Smooth);
    ASSERT_EQ(S_OK, picture.memory->RenderToMemory(&half.memory, 0, 0, 2, 1));
    EXPECT_EQ(40 * 0x010101u, half.at(0, 0));   // 160 / 4
    EXPECT_EQ(126 * 0x010101u, half.at(1, 0));  // 505 / 4
}

// Channels and tables are tested in tests/display.
TEST(Picture, ShowsColoursOfTheTableOrOfThreeBands) {
    MemoryCanvas canvas(4, 2);
    const auto grey = SmallPicture();
    Check(grey.display->put_ColorTable(48, 0x112233), grey.display);  // blue, green, red
    ASSERT_EQ(S_OK, grey.memory->RenderToMemory(&canvas.memory, 0, 0, 4, 2));
    EXPECT_EQ(0x332211u, canvas.at(2, 0));
    Check(grey.display->PutDisplayRange(32, 64), grey.display);
    ASSERT_EQ(S_OK, grey.memory->RenderToMemory(&canvas.memory, 0, 0, 4, 2));
    EXPECT_EQ(0x808080u, canvas.at(2, 0));

    const auto color = NewImage<uint16_t>(2, 1, 4);
    for (LONG band = 0; band < 4; ++band)
        color.Fill([&](LONG x, LONG) { return x == 0 ? 257 * 20 * (band + 1) : 0; }, band);
    for (const auto& [band, shown] : {std::pair<LONG, unsigned>{1, 0x282828}, {BI_AllBands, 0x14283c}}) {
        Check(color.display->put_BandToDisplay(band), color.display);
        ASSERT_EQ(S_OK, color.memory->RenderToMemory(&canvas.memory, 0, 0, 2, 1));
        EXPECT_EQ(shown, canvas.at(0, 0));
    }
    MemoryCanvas smooth(4, 2, RS_Smooth);
    ASSERT_EQ(S_OK, color.memory->RenderToMemory(&smooth.memory, 0, 0, 4, 2));
    EXPECT_EQ(0x0f1e2du, smooth.at(1, 0)) << "three quarters";
}

TEST(Picture, RefusesMemoryThatCannotBe) {
    const auto picture = SmallPicture();
    MemoryCanvas canvas(4, 2);
    const auto render = [&](const std::function<void(SPictureMemory&)>& spoil) {
        SPictureMemory memory = canvas.memory;
        spoil(memory);
        return picture.memory->RenderToMemory(&memory, 0, 0, 4, 2);
    };
    EXPECT_TRUE(FailsSilently(render([](auto& m) { m.m_pPixels = nullptr; }), E_POINTER));
    for (const auto side : {&SPictureMemory::m_lWidth, &SPictureMemory::m_lHeight})
        for (const LONG size : {LONG{0}, LONG{-1}, kLeast})
            EXPECT_TRUE(Fails(render([&](auto& m) { m.*side = size; }), "IPictureMemory: the memory has no pixels."));
    for (const LONG stride : {3, -3, 0})
        EXPECT_TRUE(
            Fails(render([&](auto& m) { m.m_lStride = stride; }), "IPictureMemory: the stride is shorter than a row."));
    EXPECT_TRUE(Fails(render([](auto& m) { m.m_lScaling = 2; }), "IPictureMemory: no such scaling."));
}

TEST(Picture, WithoutAnImageThereIsNothingToRender) {
    MemoryCanvas canvas(4, 2);
    SPictureMemory* const to = &canvas.memory;
    const auto refuses = [&](const Image& picture, const std::string& text, const char* blt, const char* stretch) {
        const auto& memory = picture.memory;
        EXPECT_TRUE(Fails(memory->RenderToMemory(to, 0, 0, 4, 2), "IPictureEx::Render" + text));
        EXPECT_TRUE(Fails(memory->RenderTopLeftToMemory(to, 0, 0, 4, 2), "IPictureEx::Render" + text));
        EXPECT_TRUE(Fails(memory->RenderBltToMemory(to, 0, 0, 4, 2, 0, 0), blt + text));
        EXPECT_TRUE(Fails(memory->RenderStretchToMemory(to, 0, 0, 4, 2, 0, 0, 1, 1), stretch + text));
    };
    const Image empty;
    refuses(empty, ": No image.", "IPictureEx::Render", "IPictureEx::Render");
    EXPECT_EQ(0, Get(empty.zoom, &IPictureExZoom::get_Width));
    double x = -1, y = -1, value = -1;
    OLE_COLOR color = 1;
    EXPECT_EQ(S_FALSE, empty.zoom->GetPixelInfo(2, 3, &x, &y, &value, &color));
    EXPECT_EQ(2.5, x);
    EXPECT_EQ(0, value);
    void* bitmap = &canvas;
    EXPECT_TRUE(Fails(empty.zoom->CreateHBITMAP(nullptr, &bitmap), "IPictureEx::CreateHBITMAP: No image."));
    EXPECT_EQ(nullptr, bitmap);

    // A buffer that may not be touched.
    const Image refused;
    EXPECT_TRUE(FAILED(refused.zoom->AttachBuffer(reinterpret_cast<void*>(16), 4, 2, 8)));
    refuses(refused, ": unable to retrieve bitmap information.", "IPictureEx::RenderBlt", "IPictureEx::RenderStretch");
    EXPECT_EQ(S_FALSE, refused.zoom->GetPixelInfo(0, 0, &x, &y, &value, &color));
}

TEST(Picture, PixelInfoTellsWhatLiesUnderADevicePixel) {
    const auto picture = ImageOf<float>(2, {-1.5f, 300.25f, 0.5f, 64.0f});
    Check(picture.display->put_ColorTable(64, 0x030201), picture.display);
    MemoryCanvas canvas(8, 8);
    ASSERT_EQ(S_OK, picture.memory->RenderToMemory(&canvas.memory, 0, 0, 8, 8));
    const auto info = [&](LONG x, LONG y) { return Get(picture.zoom, &IPictureExZoom::GetPixelInfo, x, y); };
    EXPECT_EQ(std::tuple(1.375, -0.375, 300.25, 0xffffffu), info(7, 0));
    EXPECT_EQ(std::tuple(0.625, 0.625, 64.0, 0x030201u), info(4, 4));
    EXPECT_EQ(std::tuple(1.625, 0.625, 0.0, 0u), info(8, 4));
    double x = 0, y = 0, value = 0;
    OLE_COLOR color = 9;
    for (const LONG edge : {kLeast, LONG{8}, kMost})
        EXPECT_EQ(S_FALSE, picture.zoom->GetPixelInfo(edge, edge, &x, &y, &value, &color));

    const auto colored = NewImage<uint8_t>(1, 1, 3);
    for (LONG band = 0; band < 3; ++band) colored.Fill([&](LONG, LONG) { return band + 1; }, band);
    Check(colored.display->put_BandToDisplay(BI_AllBands), colored.display);
    ASSERT_EQ(S_OK, colored.memory->RenderToMemory(&canvas.memory, 0, 0, 8, 8));
    EXPECT_EQ(S_OK, colored.zoom->GetPixelInfo(0, 0, &x, &y, &value, &color));
    EXPECT_EQ(0x030201u, color);
    EXPECT_EQ(1, value);
}

TEST(Picture, AttachesOneBandOfBytesOrWords) {
    const Image picture;
    std::vector<uint16_t> words = {1, 2, 3, 4};
    ASSERT_EQ(S_OK, picture.zoom->AttachBuffer(words.data(), 2, 2, 16));
    EXPECT_EQ(words, PixelsOf<uint16_t>(picture));
    words[3] = 9;
    for (const LONG bits : {0, 1, 24, 32, -8})
        EXPECT_TRUE(Fails(picture.zoom->AttachBuffer(words.data(), 2, 2, bits),
                          "IPictureEx::AttachBuffer: the picture must have 8 or 16 bits per pixel."));
    EXPECT_EQ(words, PixelsOf<uint16_t>(picture));
    EXPECT_TRUE(Raises(picture.zoom->AttachBuffer(nullptr, 2, 2, 8), "IImageVPAEx::AttachBuffer: no source buffer."));
}

TEST(Picture, ZoomIsResetByANewSizeAndKeptByTheSameOne) {
    const auto picture = NewImage<uint8_t>(641, 481);
    Check(picture.zoom->put_ZoomFactor(3), picture.zoom);
    Check(picture->Create(641, 481, 2, DT_Float, 1), picture);
    ExpectZoom(picture, 3, 320, 240, "another type and more bands, the same size");
    Check(picture->Create(640, 481, 1, DT_Float, 1), picture);
    ExpectZoom(picture, 1, 320, 240, "another size");
    EXPECT_EQ(481, Get(picture.zoom, &IPictureExZoom::get_Height));
}

TEST(Picture, ZoomPutsAndStepsFollowTheirRules) {
    const auto picture = NewImage<uint8_t>(640, 480);
    const auto& zoom = picture.zoom;
    EXPECT_TRUE(Fails(zoom->put_ZoomFactor(0), "IPictureZoom: zoom factor must be positive."));
    EXPECT_EQ(E_FAIL, zoom->put_ZoomCenterX(0.4));
    EXPECT_EQ(E_FAIL, zoom->put_ZoomCenterY(479.5));
    EXPECT_EQ(S_OK, zoom->put_ZoomCenterX(0.5));
    EXPECT_EQ(S_OK, zoom->put_ZoomCenterY(7));
    EXPECT_EQ(S_OK, zoom->put_ZoomFactor(1.1));
    ExpectZoom(picture, 1.1, 0.5, 7, "put");
    EXPECT_EQ(S_OK, zoom->ResetZoom());
    // Two device pixels an image pixel.
    MemoryCanvas canvas(4, 3);
    ASSERT_EQ(S_OK, picture.memory->RenderToMemory(&canvas.memory, 0, 0, 1280, 960));
    const struct {
        const char* what;
        std::function<HRESULT()> call;
        double factor, x, y;
    } steps[] = {
        {"in", [&] { return zoom->ZoomIn(); }, 1.25, 320, 240},
        {"out", [&] { return zoom->ZoomOut(); }, 1, 320, 240},
        {"from the middle, 319.5, by a whole pixel", [&] { return zoom->PanLeft(); }, 1, 318.5, 240},
        {"right", [&] { return zoom->PanRight(); }, 1, 320.5, 240},
        {"up", [&] { return zoom->ScrollUp(); }, 1, 320.5, 238.5},
        {"down", [&] { return zoom->ScrollDown(); }, 1, 320.5, 240.5},
        {"no way", [&] { return zoom->PanScrollFromPoints(100, 100, 100, 100); }, 1, 320.5, 240.5},
        {"dragged", [&] { return zoom->PanScrollFromPoints(100, 100, 90, 120); }, 1, 325.5, 230.5},
        {"in at a point", [&] { return zoom->ZoomInFromPoint(201, 101); }, 1.25, 100, 50},
        {"out, off the image", [&] { return zoom->ZoomOutFromPoint(-5000, 201); }, 1, 100, 100},
        {"a rectangle", [&] { return zoom->ZoomFromRectangle(0, 0, 128, 960); }, 65.0 / 640, 31.5, 239.5},
    };
    for (const auto& step : steps) {
        EXPECT_EQ(S_OK, step.call()) << step.what;
        ExpectZoom(picture, step.factor, step.x, step.y, step.what);
    }
    EXPECT_EQ(S_OK, picture.memory->RenderToMemory(&canvas.memory, 0, 0, 4, 3)) << "renders like 1";
    EXPECT_EQ(0.00625, ToDest(picture).Matrix.A11);
}

// ------------------------------------------------------------------------------------------------------------- events

TEST(PictureEvents, ConnectionsComeAndGoByTheirCookies) {
    std::optional<TypedImage<uint8_t>> picture = SmallPicture();
    auto point = PointOf(*picture);
    const ComPtr<Sink> sinks[2] = {MakeCounted<Sink>(), MakeCounted<Sink>()};
    DWORD cookies[2] = {};
    for (int i = 0; i < 2; ++i) ASSERT_EQ(S_OK, point->Advise(sinks[i].get(), &cookies[i]));
    EXPECT_NE(cookies[0], cookies[1]);
    EXPECT_EQ(2u, ReferencesOf(sinks[0].get()));
    MemoryCanvas canvas(4, 2);
    EXPECT_EQ(S_OK, picture->memory->RenderToMemory(&canvas.memory, 0, 0, 4, 2));
    EXPECT_EQ(0, sinks[0]->calls) << "the caller draws over its memory itself";
    picture.reset();  // the point keeps its object

    auto connections = Get(point, &IConnectionPoint::EnumConnections);
    CONNECTDATA data[3] = {};
    ULONG fetched = 9;
    EXPECT_EQ(S_FALSE, connections->Next(3, data, &fetched));
    ASSERT_EQ(2u, fetched);
    for (ULONG i = 0; i < 2; ++i) {
        EXPECT_EQ(cookies[i], data[i].dwCookie);
        EXPECT_EQ(static_cast<IUnknown*>(sinks[i].get()), data[i].pUnk);
        data[i].pUnk->Release();
    }
    connections = nullptr;

    EXPECT_EQ(S_OK, point->Unadvise(cookies[0]));
    EXPECT_EQ(1u, ReferencesOf(sinks[0].get()));
    for (const DWORD gone : {cookies[0], DWORD{0}}) EXPECT_EQ(CONNECT_E_NOCONNECTION, point->Unadvise(gone));
    // The client that goes last calls back.
    DWORD again = 0;
    auto nested = MakeCounted<Sink>();
    nested->onLastRelease = [&] { EXPECT_EQ(S_OK, point->Unadvise(cookies[1])); };
    ASSERT_EQ(S_OK, point->Advise(nested.get(), &again));
    nested = nullptr;
    EXPECT_EQ(S_OK, point->Unadvise(again));
    EXPECT_EQ(1u, ReferencesOf(sinks[1].get()));

    DWORD cookie = 7;
    EXPECT_EQ(E_POINTER, point->Advise(nullptr, &cookie));
    EXPECT_EQ(0u, cookie);
    EXPECT_EQ(E_POINTER, point->Advise(sinks[0].get(), nullptr));
    EXPECT_EQ(CONNECT_E_CANNOTCONNECT, point->Advise(NewBitmap(1, 1).get(), &cookie));
    // Those that are left go with the object.
    ASSERT_EQ(S_OK, point->Advise(sinks[0].get(), &cookie));
    point = nullptr;
    EXPECT_EQ(1u, ReferencesOf(sinks[0].get()));
}

TEST(PictureEvents, TheContainerHasThisOnePoint) {
    const auto picture = SmallPicture();
    const auto container = Cast<IConnectionPointContainer>(picture);
    const auto point = PointOf(picture);
    EXPECT_TRUE(Get(point, &IConnectionPoint::GetConnectionInterface) == __uuidof(IPictureExEvents));
    const auto back = Get(point, &IConnectionPoint::GetConnectionPointContainer);
    EXPECT_EQ(Cast<IUnknown>(picture).get(), Cast<IUnknown>(back).get());
    EXPECT_NE(Cast<IUnknown>(picture).get(), Cast<IUnknown>(point).get()) << "an object of its own";
    ComPtr<IConnectionPoint> other;
    EXPECT_EQ(CONNECT_E_NOCONNECTION, container->FindConnectionPoint(__uuidof(IPictureEx), other.Out()));
    EXPECT_FALSE(other);

    const auto points = Get(container, &IConnectionPointContainer::EnumConnectionPoints);
    IConnectionPoint* found[2] = {};
    ULONG fetched = 0;
    EXPECT_EQ(S_FALSE, points->Next(2, found, &fetched));
    ASSERT_EQ(1u, fetched);
    EXPECT_EQ(point.get(), found[0]);
    found[0]->Release();
    EXPECT_EQ(S_FALSE, points->Next(1, found, nullptr));
    EXPECT_EQ(E_POINTER, points->Next(2, found, nullptr));
    EXPECT_EQ(S_OK, points->Reset());
    EXPECT_EQ(S_FALSE, points->Skip(2));
    const auto clone = Get(points, &IEnumConnectionPoints::Clone);
    EXPECT_EQ(S_FALSE, clone->Next(1, found, &fetched)) << "where the other one stands";
    EXPECT_EQ(S_OK, clone->Reset());
    EXPECT_EQ(S_OK, clone->Skip(1));
}

#ifndef _WIN32
TEST(PictureEvents, ClientsCallBackWhenTheirReferencesAreTakenOrGivenBack) {
    IConnectionPoint* point = nullptr;
    IEnumConnections* connections = nullptr;
    CONNECTDATA data = {};
    ULONG fetched = 0;
    const auto others = MakeCounted<Sink>();
    auto kept = MakeCounted<Sink>(), last = MakeCounted<Sink>();
    int gone = 0;
    kept->onLastRelease = [&] {  // of an enumerator that is dying: it is at its end
        EXPECT_EQ(S_FALSE, connections->Next(1, &data, &fetched));
        connections->AddRef();
        connections->Release();
        ++gone;
    };
    last->onLastRelease = [&] {  // of an image that is dying: nobody connects any more
        DWORD cookie = 0;
        EXPECT_EQ(CONNECT_E_CANNOTCONNECT, point->Advise(others.get(), &cookie));
        ++gone;
    };
    {
        const auto held = PointOf(SmallPicture());
        point = held.get();
        const DWORD cookie = Get(held, &IConnectionPoint::Advise, kept.get());
        Get(held, &IConnectionPoint::Advise, last.get());
        kept->onAddRef = [&] {
            for (int i = 0; i < 100; ++i) Get(held, &IConnectionPoint::Advise, others.get());
        };
        ASSERT_EQ(S_OK, point->EnumConnections(&connections));
        ASSERT_EQ(S_OK, connections->Next(1, &data, &fetched));
        EXPECT_EQ(kept.get(), data.pUnk);
        EXPECT_EQ(101u, ReferencesOf(others.get()));
        data.pUnk->Release();
        EXPECT_EQ(S_OK, point->Unadvise(cookie));
        kept = nullptr;
        EXPECT_EQ(0u, connections->Release());
        EXPECT_EQ(1, gone);
        last = nullptr;
    }
    EXPECT_EQ(2, gone);
    EXPECT_EQ(1u, ReferencesOf(others.get()));
}

TEST(Picture, HasNoDeviceContextsOffWindows) {
    const auto picture = SmallPicture();
    int handle = 0;
    void* bits = &handle;
    void* bitmap = &handle;
    EXPECT_TRUE(FailsSilently(picture.zoom->Render(&handle, 0, 0, 4, 2), E_NOTIMPL));
    EXPECT_TRUE(FailsSilently(picture.zoom->RenderStretch(&handle, 0, 0, 4, 2, 0, 0, 1, 1), E_NOTIMPL));
    EXPECT_TRUE(FailsSilently(picture.zoom->CreateHBITMAP(nullptr, &bitmap), E_NOTIMPL));
    EXPECT_EQ(nullptr, bitmap);
    EXPECT_TRUE(FailsSilently(picture.zoom->CreateDIBSection(&bits, &bitmap), E_NOTIMPL));
    EXPECT_EQ(nullptr, bits);
}
#endif

}  // namespace
}  // namespace orlix::testing
