// The picture of an image on device contexts, and its zoom for scripts.
#ifdef _WIN32

#include <olectl.h>
#include <windows.h>

#include <array>
#include <atomic>
#include <thread>

#include "contract/device_canvas.hpp"
#include "contract/support.hpp"

namespace orlix::testing {
namespace {

constexpr const char* kInvalid = "IPictureEx::Render: invalid HDC";

using Lines = std::vector<std::string>;
using Box = std::vector<LONG>;

// 4 x 2 pixels: 16 (2 + x + 4 y).
TypedImage<uint8_t> PictureOnDevice() { return ImageOf<uint8_t>(4, {32, 48, 64, 80, 96, 112, 128, 144}); }

Box DestRectOnDevice(const Image& image) { return Edges(Get(image.zoom, &IPictureExZoom::get_DestRect)); }

TEST(PictureOnDevice, DrawsTheImageWithItsColoursAndSurround) {
    const auto picture = PictureOnDevice();
    Check(picture.display->put_ColorTable(32, 0x332211), picture.display);
    Check(picture.zoom->put_Surround(0xff8040a0), picture.zoom);
    DeviceCanvas canvas(8, 6);
    ASSERT_EQ(S_OK, picture.zoom->Render(canvas.context, 1, 1, 4, 4));
    EXPECT_EQ((Lines{"11111111", "18888111", "13345111", "16789111", "18888111", "11111111"}), canvas.Rows());
    EXPECT_EQ(0xa04080u, canvas.at(1, 1));
    EXPECT_EQ(0x112233u, canvas.at(1, 2)) << "blue in the high byte of colours, in the low one of pixels";
    EXPECT_EQ((Box{1, 2, 5, 4}), DestRectOnDevice(picture));

    DeviceCanvas corner(4, 4);
    ASSERT_EQ(S_OK, picture.zoom->RenderTopLeft(corner.context, 0, 0, 4, 4));
    EXPECT_EQ((Lines{"3345", "6789", "8888", "8888"}), corner.Rows());
    DeviceCanvas blt(5, 3);
    ASSERT_EQ(S_OK, picture.zoom->RenderBlt(blt.context, 0, 0, 5, 3, 1, 1));
    EXPECT_EQ((Lines{"78988", "88888", "88888"}), blt.Rows());
    EXPECT_EQ(S_FALSE, picture.zoom->RenderBlt(blt.context, 0, 0, 5, 3, 9, 9));
    EXPECT_EQ((Lines{"88888", "88888", "88888"}), blt.Rows());
}

TEST(PictureOnDevice, ChoosesPixelsWhereBothHaveEightBits) {
    const auto picture = PictureOnDevice();
    DeviceCanvas twice(8, 4, 8);
    ASSERT_EQ(S_OK, picture.zoom->Render(twice.context, 0, 0, 8, 4));
    EXPECT_EQ((Lines{"22334455", "22334455", "66778899", "66778899"}), twice.Rows());
    // A part of it: rows are counted from the bottom of the bitmap.
    DeviceCanvas part(4, 2, 8);
    ASSERT_EQ(S_OK, picture.zoom->RenderStretch(part.context, 0, 0, 4, 2, 2, 0, 2, 1));
    EXPECT_EQ((Lines{"4455", "4455"}), part.Rows());
    EXPECT_TRUE(Fails(picture.zoom->RenderStretch(part.context, 0, 0, 4, 2, 2, 0, 3, 1),
                      "IPictureEx::RenderStretch: the source rectangle must lie on the image."));
    // Elsewhere neighbours are mixed.
    DeviceCanvas mixed(8, 4);
    ASSERT_EQ(S_OK, picture.zoom->Render(mixed.context, 0, 0, 8, 4));
    bool between = false;
    for (LONG x = 0; x < 8; ++x) between = between || mixed.at(x, 0) % 0x101010 != 0;
    EXPECT_TRUE(between);
}

TEST(PictureOnDevice, ShowsThreeBandsInColour) {
    const auto picture = NewImage<uint8_t>(3, 2, 3);
    for (LONG band = 0; band < 3; ++band) picture.Fill([&](LONG x, LONG) { return 50 * band + 10 * x + 5; }, band);
    Check(picture.display->put_BandToDisplay(BI_AllBands), picture.display);
    DeviceCanvas canvas(3, 2);
    ASSERT_EQ(S_OK, picture.zoom->Render(canvas.context, 0, 0, 3, 2));
    EXPECT_EQ(0x053769u, canvas.at(0, 0));
    EXPECT_EQ(0x194b7du, canvas.at(2, 1));
    void* bits = nullptr;
    void* section = nullptr;
    ASSERT_EQ(S_OK, picture.zoom->CreateDIBSection(&bits, &section));
    DIBSECTION description = {};
    ASSERT_TRUE(GetObjectW(section, sizeof description, &description));
    EXPECT_EQ(32, description.dsBmih.biBitCount);
    EXPECT_EQ(0x194b7du, static_cast<uint32_t*>(bits)[2]);
    DeleteObject(section);
}

TEST(PictureOnDevice, TakesLogicalCoordinatesAndLeavesTheContextAsItWas) {
    const auto picture = PictureOnDevice();
    DeviceCanvas canvas(20, 12, 8);
    SetMapMode(canvas.context, MM_ANISOTROPIC);
    SetWindowExtEx(canvas.context, 1, 1, nullptr);
    SetViewportExtEx(canvas.context, 2, 2, nullptr);
    SetWindowOrgEx(canvas.context, -1, 0, nullptr);
    SetViewportOrgEx(canvas.context, 3, 1, nullptr);
    SetStretchBltMode(canvas.context, WHITEONBLACK);
    ASSERT_EQ(S_OK, picture.zoom->Render(canvas.context, 0, 1, 4, 2));
    EXPECT_EQ((Box{5, 3, 13, 7}), DestRectOnDevice(picture)) << "device coordinates";
    EXPECT_EQ("11111111111111111111", canvas.Row(2));
    EXPECT_EQ("11111223344551111111", canvas.Row(3));
    EXPECT_EQ("11111667788991111111", canvas.Row(6));
    POINT viewport = {}, window = {};
    GetViewportOrgEx(canvas.context, &viewport);
    GetWindowOrgEx(canvas.context, &window);
    EXPECT_EQ(std::tuple(MM_ANISOTROPIC, WHITEONBLACK, 3, -1),
              std::tuple(GetMapMode(canvas.context), GetStretchBltMode(canvas.context), viewport.x, window.x));

    DeviceCanvas transformed(16, 8, 8);
    SetGraphicsMode(transformed.context, GM_ADVANCED);
    const XFORM twice = {2, 0, 0, 2, 4, 2};
    SetWorldTransform(transformed.context, &twice);
    ASSERT_EQ(S_OK, picture.zoom->Render(transformed.context, 0, 0, 4, 2));
    EXPECT_EQ((Box{4, 2, 12, 6}), DestRectOnDevice(picture));
    EXPECT_EQ("1111223344551111", transformed.Row(2));
    XFORM after = {};
    GetWorldTransform(transformed.context, &after);
    EXPECT_TRUE(after.eM11 == 2 && after.eDx == 4);
}

TEST(PictureOnDevice, TakesAContextOrTheAddressOfOneAndNothingElse) {
    const auto picture = PictureOnDevice();
    DeviceCanvas canvas(4, 2, 8);
    HDC context = canvas.context;
    ASSERT_EQ(S_OK, picture.zoom->Render(&context, 0, 0, 4, 2));
    EXPECT_EQ("2345", canvas.Row(0));

    const HBITMAP bitmap = CreateBitmap(1, 1, 1, 8, nullptr);
    HGDIOBJ object = bitmap;
    const HDC gone = CreateCompatibleDC(nullptr);
    DeleteDC(gone);
    void* const wrong[] = {nullptr, bitmap, &object, gone};
    for (void* const value : wrong)
        for (const HRESULT result :
             {picture.zoom->Render(value, 0, 0, 4, 2), picture.zoom->RenderBlt(value, 0, 0, 4, 2, 0, 0)})
            EXPECT_EQ(E_FAIL, result) << value;
    for (const uintptr_t address : {uintptr_t{1}, UINTPTR_MAX, UINTPTR_MAX - 8})
        EXPECT_TRUE(Fails(picture.zoom->Render(reinterpret_cast<void*>(address), 0, 0, 4, 2), kInvalid)) << address;
    DeleteObject(bitmap);

    // The context comes first, then the image, then the destination.
    const Image empty;
    EXPECT_TRUE(Fails(empty.zoom->Render(nullptr, 0, 0, 0, 0), kInvalid));
    EXPECT_TRUE(Fails(empty.zoom->Render(context, 0, 0, 0, 0), "IPictureEx::Render: No image."));
    EXPECT_EQ(S_FALSE, picture.zoom->Render(context, 0, 0, 0, 0));
    for (const LONG edge : {kLeast, kMost}) {
        picture.zoom->Render(context, edge, edge, edge, edge);  // no particular result, and no harm
        picture.zoom->RenderBlt(context, edge, 0, 10, 10, edge, edge);
    }
}

TEST(PictureOnDevice, IsPlayedBackFromMetafiles) {
    const auto picture = PictureOnDevice();
    DeviceCanvas enhancedCanvas(4, 2, 8);
    const HDC enhanced = CreateEnhMetaFileW(nullptr, nullptr, nullptr, nullptr);
    ASSERT_EQ(S_OK, picture.zoom->Render(enhanced, 0, 0, 4, 2));
    const HENHMETAFILE enhancedFile = CloseEnhMetaFile(enhanced);
    ENHMETAHEADER header = {};
    GetEnhMetaFileHeader(enhancedFile, sizeof header, &header);
    // At its own size: the frame is that of what was drawn.
    const RECT all = {header.rclBounds.left, header.rclBounds.top, header.rclBounds.right, header.rclBounds.bottom};
    SetStretchBltMode(enhancedCanvas.context, COLORONCOLOR);
    EXPECT_TRUE(PlayEnhMetaFile(enhancedCanvas.context, enhancedFile, &all));
    EXPECT_EQ((Lines{"2345", "6789"}), enhancedCanvas.Rows());
    DeleteEnhMetaFile(enhancedFile);

    DeviceCanvas canvas(6, 4, 8);
    const HDC old = CreateMetaFileW(nullptr);
    ASSERT_EQ(S_OK, picture.zoom->Render(old, 1, 1, 4, 2));
    EXPECT_EQ((Box{1, 1, 5, 3}), DestRectOnDevice(picture));
    const HMETAFILE file = CloseMetaFile(old);
    EXPECT_TRUE(PlayMetaFile(canvas.context, file));
    EXPECT_EQ((Lines{"111111", "123451", "167891", "111111"}), canvas.Rows());
    DeleteMetaFile(file);
}

// A client that draws a white square over the picture, where its maps say that pixel (1, 0) lies, and notes what it was
// given.
struct Connected {
    TypedImage<uint8_t> picture = PictureOnDevice();
    ComPtr<Sink> sink = MakeCounted<Sink>();
    ComPtr<IConnectionPoint> point = PointOf(picture);
    DWORD cookie = Get(point, &IConnectionPoint::Advise, sink.get());
    HDC context = nullptr;
    DWORD kind = 0;
    RenderSourceType source = {};
    std::function<void()> then;  // once

    Connected() {
        sink->onRender = [this](IPictureEx* on, void* hdc, RenderSourceType type) { Draw(on, hdc, type); };
    }
    void Draw(IPictureEx* on, void* hdc, RenderSourceType type) {
        context = static_cast<HDC>(hdc);
        kind = GetObjectType(context);
        source = type;
        TCoordinateMap map = {};
        on->get_PixelToDestCoords(&map);
        const auto left = static_cast<LONG>(map.OrgX + map.Matrix.A11 * 0.5);
        const auto top = static_cast<LONG>(map.OrgY - map.Matrix.A22 * 0.5);
        const RECT square = {left, top, left + static_cast<LONG>(map.Matrix.A11),
                             top + static_cast<LONG>(map.Matrix.A22)};
        FillRect(context, &square, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
        SetMapMode(context, MM_HIENGLISH);
        if (const auto call = std::exchange(then, {})) call();
    }
};

TEST(PictureOnDevice, TellsItsClientsWhichDrawOverIt) {
    Connected connected;
    const Sink& sink = *connected.sink;
    DeviceCanvas canvas(8, 4, 8);
    ASSERT_EQ(S_OK, connected.picture.zoom->Render(canvas.context, 0, 0, 8, 4));
    EXPECT_EQ(1, sink.calls);
    EXPECT_EQ(canvas.context, connected.context);
    EXPECT_EQ(RST_Memory, connected.source);
    EXPECT_EQ("22ff4455", canvas.Row(1));
    EXPECT_EQ(MM_TEXT, GetMapMode(canvas.context));
    const HDC metafile = CreateEnhMetaFileW(nullptr, nullptr, nullptr, nullptr);
    ASSERT_EQ(S_OK, connected.picture.zoom->RenderTopLeft(metafile, 0, 0, 8, 4));
    EXPECT_EQ(RST_EnhancedMetafile, connected.source);
    EXPECT_EQ(metafile, connected.context);
    DeleteEnhMetaFile(CloseEnhMetaFile(metafile));
    const HDC old = CreateMetaFileW(nullptr);
    ASSERT_EQ(S_OK, connected.picture.zoom->RenderStretch(old, 0, 0, 8, 4, 0, 0, 4, 2));
    EXPECT_EQ(RST_Metafile, connected.source);
    DeleteMetaFile(CloseMetaFile(old));
    EXPECT_EQ(3, sink.calls);
    EXPECT_EQ(S_FALSE, connected.picture.zoom->Render(canvas.context, 0, 0, 0, 4));
    EXPECT_EQ(3, sink.calls) << "nothing was drawn";
    Check(connected.point->Unadvise(connected.cookie));
    ASSERT_EQ(S_OK, connected.picture.zoom->Render(canvas.context, 0, 0, 8, 4));
    EXPECT_EQ(3, sink.calls);
}

// The screen's context, which exists without a display too.
TEST(PictureOnDevice, ADisplayIsDrawnThroughMemoryWhileClientsAreConnected) {
    Connected connected;
    const HDC screen = GetDC(nullptr);
    ASSERT_TRUE(screen);
    ASSERT_EQ(static_cast<DWORD>(OBJ_DC), GetObjectType(screen));
    std::array<uint32_t, 2> seen = {};
    connected.then = [&] {
        SetMapMode(connected.context, MM_TEXT);
        seen = {GetPixel(connected.context, 10, 10), GetPixel(connected.context, 14, 12)};
    };
    const HRESULT first = connected.picture.zoom->RenderBlt(screen, 10, 10, 6, 3, 0, 0);
    EXPECT_TRUE(first == S_OK) << TakeReportedText();
    EXPECT_EQ(static_cast<DWORD>(OBJ_MEMDC), connected.kind);
    EXPECT_NE(screen, connected.context);
    EXPECT_EQ(RST_Display, connected.source);
    EXPECT_EQ(0x202020u, seen[0]);
    EXPECT_EQ(0u, seen[1]) << "surround";

    // Kept while the right and bottom edges stay; rendering again from inside takes another one.
    const HDC kept = connected.context;
    EXPECT_EQ(S_OK, connected.picture.zoom->RenderBlt(screen, 2, 1, 14, 12, 0, 0));
    EXPECT_EQ(kept, connected.context);
    HDC inner = nullptr;
    connected.then = [&] {
        connected.picture.zoom->RenderBlt(screen, 0, 0, 5, 5, 0, 0);
        inner = connected.context;
    };
    EXPECT_EQ(S_OK, connected.picture.zoom->RenderBlt(screen, 2, 1, 14, 12, 0, 0));
    EXPECT_NE(kept, inner);
    // The image goes while it is drawn over.
    connected.then = [&] { connected.picture->Create(9, 9, 3, DT_Float, 1); };
    EXPECT_EQ(S_OK, connected.picture.zoom->RenderBlt(screen, 2, 1, 14, 12, 0, 0));
    // Wholly to the left of the screen: there is nothing to draw through.
    connected.sink->calls = 0;
    connected.picture.zoom->Render(screen, -50, -50, 20, 20);
    EXPECT_EQ(1, connected.sink->calls);
    EXPECT_EQ(screen, connected.context);
    Check(connected.point->Unadvise(connected.cookie));
    EXPECT_EQ(S_OK, connected.picture.zoom->Render(screen, 0, 0, 20, 20));
    ReleaseDC(nullptr, screen);
}

TEST(PictureOnDevice, KeepsNoObjectsOfTheSystem) {
    Connected connected;
    const HDC screen = GetDC(nullptr);
    DeviceCanvas canvas(8, 4);
    const auto round = [&](LONG size) {
        connected.picture.zoom->Render(canvas.context, 0, 0, 8, 4);
        connected.picture.zoom->Render(screen, 0, 0, size, size);
    };
    round(8);
    const DWORD before = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    for (LONG i = 0; i < 300; ++i) round(8 + i % 7);
    EXPECT_LE(GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS), before + 2);
    ReleaseDC(nullptr, screen);
}

// Each thread is an apartment with images of its own.
TEST(PictureOnDevice, KeepsTheGraphicsLibraryRunningWhileImagesExist) {
    const auto running = [] { return GetModuleHandleW(L"gdiplus.dll") != nullptr; };
    ASSERT_FALSE(running());
    std::atomic<int> missing{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 16; ++t)
        threads.emplace_back([&] {
            const Apartment apartment;
            for (int i = 0; i < 20; ++i) {
                const auto image = CreateObject<IImageVPAExPlus>("Orlix.Image");
                if (!running()) ++missing;
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(0, missing);
    EXPECT_FALSE(running());
}

TEST(PictureOnDevice, MakesBitmapsOfItself) {
    const auto picture = PictureOnDevice();
    Check(picture.display->put_ColorTable(48, 0x0000ff), picture.display);  // red
    const HDC context = CreateCompatibleDC(nullptr);
    const auto pixelsOf = [&](void* bitmap) {
        const HGDIOBJ former = SelectObject(context, bitmap);
        const std::array<COLORREF, 3> pixels = {GetPixel(context, 1, 0), GetPixel(context, 0, 1),
                                                GetPixel(context, 3, 1)};
        SelectObject(context, former);
        DeleteObject(bitmap);
        return pixels;
    };
    void* bits = nullptr;
    void* section = nullptr;
    ASSERT_EQ(S_OK, picture.zoom->CreateDIBSection(&bits, &section));
    DIBSECTION description = {};
    ASSERT_TRUE(GetObjectW(section, sizeof description, &description));
    EXPECT_EQ(std::tuple(8, 4, 2),
              std::tuple(description.dsBmih.biBitCount, description.dsBmih.biWidth, description.dsBmih.biHeight));
    EXPECT_EQ(96, static_cast<uint8_t*>(bits)[0]) << "bottom-up";
    const std::array<COLORREF, 3> want = {0x0000ff, 0x606060, 0x909090};
    EXPECT_EQ(want, pixelsOf(section));
    const DeviceCanvas like(1, 1);
    void* compatible = nullptr;
    ASSERT_EQ(S_OK, picture.zoom->CreateHBITMAP(like.context, &compatible));
    EXPECT_EQ(want, pixelsOf(compatible));
    ASSERT_EQ(S_OK, picture.zoom->CreateHBITMAP(nullptr, &compatible)) << "as the screen's";
    DeleteObject(compatible);
    DeleteDC(context);
    EXPECT_TRUE(FailsSilently(picture.zoom->CreateDIBSection(nullptr, &section), E_POINTER));
    EXPECT_TRUE(FailsSilently(picture.zoom->CreateHBITMAP(nullptr, nullptr), E_POINTER));
}

// ------------------------------------------------------------------------------------------------------------- scripts

class Script {
public:
    explicit Script(const ComPtr<IImageVPAExPlus>& image) : object_(Cast<IDispatch>(image)) {}
    DISPID IdOf(std::wstring name) const {
        LPOLESTR names[] = {name.data()};
        DISPID id = 0;
        const HRESULT result = object_->GetIDsOfNames(IID_NULL, names, 1, 0, &id);
        EXPECT_EQ(id == DISPID_UNKNOWN ? DISP_E_UNKNOWNNAME : S_OK, result);
        return id;
    }
    // The property, or an empty variant.
    VARIANT Get(const wchar_t* name) const {
        VARIANT value;
        VariantInit(&value);
        EXPECT_EQ(S_OK, Call(IdOf(name), DISPATCH_PROPERTYGET, {}, &value));
        return value;
    }
    HRESULT Put(const wchar_t* name, VARIANT value, EXCEPINFO* exception = nullptr) const {
        DISPID put = DISPID_PROPERTYPUT;
        return Call(IdOf(name), DISPATCH_PROPERTYPUT, {&value, &put, 1, 1}, nullptr, exception);
    }
    HRESULT Call(DISPID id, WORD how, DISPPARAMS arguments, VARIANT* value, EXCEPINFO* exception = nullptr) const {
        return object_->Invoke(id, IID_NULL, 0, how, &arguments, value, exception, nullptr);
    }
    IDispatch& object() const { return *object_; }

private:
    ComPtr<IDispatch> object_;
};

VARIANT Number(double value) {
    VARIANT variant;
    VariantInit(&variant);
    variant.vt = VT_R8;
    variant.dblVal = value;
    return variant;
}

TEST(PictureForScripts, HasTheSizeAndTheZoom) {
    const auto picture = NewImage<uint8_t>(640, 480);
    const Script script(picture);
    EXPECT_EQ(std::pair(VARTYPE{VT_I4}, 640L), std::pair(script.Get(L"width").vt, script.Get(L"width").lVal));
    EXPECT_EQ(480, script.Get(L"HEIGHT").lVal);
    EXPECT_EQ(S_OK, script.Put(L"ZoomFactor", Number(2.5)));
    EXPECT_EQ(VT_R8, script.Get(L"ZoomFactor").vt);
    EXPECT_EQ(2.5, script.Get(L"ZoomFactor").dblVal);
    VARIANT text = Number(0);
    text.vt = VT_BSTR;
    const Text hundred("100");
    text.bstrVal = hundred;
    EXPECT_EQ(S_OK, script.Put(L"ZoomCenterX", text)) << "converted";
    EXPECT_EQ(S_OK, script.Put(L"ZoomCenterY", Number(7)));
    EXPECT_EQ(100, script.Get(L"ZoomCenterX").dblVal);
    EXPECT_EQ(7, Get(picture.zoom, &IPictureExZoom::get_ZoomCenterY));
    DISPID id = 0;
    for (const wchar_t* const name : {L"Width", L"Height", L"ZoomFactor", L"ZoomCenterX", L"ZoomCenterY"})
        EXPECT_EQ(++id, script.IdOf(name));
    EXPECT_EQ(DISPID_UNKNOWN, script.IdOf(L"Zoom"));
}

TEST(PictureForScripts, PassesTextsOnAndRefusesWhatIsNotThere) {
    const auto picture = NewImage<uint8_t>(640, 480);
    const Script script(picture);
    EXCEPINFO exception = {};
    EXPECT_EQ(DISP_E_EXCEPTION, script.Put(L"ZoomCenterX", Number(0.4), &exception));
    EXPECT_STREQ(L"IPictureZoom::put_ZoomCenterX: x zoom center must be on the image.", exception.bstrDescription);
    EXPECT_STREQ(L"Orlix.Image.1", exception.bstrSource);
    EXPECT_EQ(E_FAIL, exception.scode);
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrSource);
    EXPECT_EQ(DISP_E_EXCEPTION, script.Put(L"ZoomFactor", Number(0)));
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND, script.Put(L"Width", Number(5)));
    VARIANT nothing = Number(0), two = Number(2), value = Number(0);
    nothing.vt = VT_UNKNOWN;
    nothing.punkVal = nullptr;
    EXPECT_TRUE(FAILED(script.Put(L"ZoomFactor", nothing)));
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND, script.Call(6, DISPATCH_PROPERTYGET, {}, &value));
    EXPECT_EQ(DISP_E_BADPARAMCOUNT, script.Call(3, DISPATCH_PROPERTYPUT, {}, &value));
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND, script.Call(3, DISPATCH_PROPERTYPUTREF, {&two, nullptr, 1, 0}, nullptr));
    EXPECT_EQ(S_OK, script.Call(1, DISPATCH_PROPERTYGET, {}, nullptr));
    IDispatch& object = script.object();
    DISPPARAMS none = {};
    EXPECT_EQ(DISP_E_UNKNOWNINTERFACE,
              object.Invoke(1, __uuidof(IUnknown), 0, DISPATCH_PROPERTYGET, &none, &value, nullptr, nullptr));
    EXPECT_EQ(E_POINTER, object.Invoke(1, IID_NULL, 0, DISPATCH_PROPERTYGET, nullptr, &value, nullptr, nullptr));
    UINT count = 0;
    EXPECT_EQ(S_OK, object.GetTypeInfoCount(&count));
    EXPECT_EQ(1u, count);
    ComPtr<ITypeInfo> info;
    ASSERT_EQ(S_OK, object.GetTypeInfo(0, 0, info.Out()));
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(S_OK, info->GetTypeAttr(&attributes));
    EXPECT_EQ(TKIND_DISPATCH, attributes->typekind);
    info->ReleaseTypeAttr(attributes);
    EXPECT_EQ(DISP_E_BADINDEX, object.GetTypeInfo(1, 0, info.Out()));
}

}  // namespace
}  // namespace orlix::testing

#endif
