// The picture of an image on every system: drawn into memory, with its maps, zoom and events.

#ifdef _WIN32
#include <olectl.h>
#endif

#include <algorithm>
#include <cmath>
#include <limits>

#include "contract/support.hpp"

namespace orlix::testing {
namespace {

constexpr unsigned kUntouched = 0xcdcdcdcd;

// Memory with a guard around it.
struct Canvas {
    LONG width, height;
    std::vector<unsigned> pixels;
    SPictureMemory memory;
    Canvas(LONG w, LONG h, RasterScaling scaling = RS_Nearest)
        : width(w), height(h), pixels(static_cast<size_t>((w + 1) * (h + 2)), kUntouched) {
        memory = {pixels.data() + w + 1, w, h, w + 1, scaling};
    }
    unsigned at(LONG x, LONG y) const { return memory.m_pPixels[y * memory.m_lStride + x]; }
    // One character a pixel: the red part divided by 16, '.' for what was not drawn.
    std::string Row(LONG y) const {
        std::string row;
        for (LONG x = 0; x < width; ++x) row += at(x, y) == kUntouched ? '.' : "0123456789abcdef"[at(x, y) >> 20 & 15];
        return row;
    }
    std::vector<std::string> Rows() const {
        std::vector<std::string> rows;
        for (LONG y = 0; y < height; ++y) rows.push_back(Row(y));
        return rows;
    }
};

struct Picture {
    ComPtr<IImageVPAExPlus> image;
    ComPtr<IPictureExZoom> zoom;
    ComPtr<IPictureMemory> memory;
    ComPtr<IDisplayProcess> display;
    explicit Picture(const ComPtr<IImageVPAExPlus>& from)
        : image(from),
          zoom(Cast<IPictureExZoom>(image)),
          memory(Cast<IPictureMemory>(image)),
          display(Cast<IDisplayProcess>(image)) {}

    double factor() const {
        return Get([&](double* v) { return zoom->get_ZoomFactor(v); });
    }
    double x() const {
        return Get([&](double* v) { return zoom->get_ZoomCenterX(v); });
    }
    double y() const {
        return Get([&](double* v) { return zoom->get_ZoomCenterY(v); });
    }
    TCoordinateMap toDest() const {
        TCoordinateMap map = {};
        Check(zoom->get_PixelToDestCoords(&map), zoom);
        return map;
    }
    TCoordinateMap toPixel() const {
        TCoordinateMap map = {};
        Check(zoom->get_DestToPixelCoords(&map), zoom);
        return map;
    }
    std::vector<LONG> destRect() const {
        RECT r = {};
        Check(zoom->get_DestRect(&r), zoom);
        return {r.left, r.top, r.right, r.bottom};
    }

private:
    template <class Call>
    static double Get(const Call& call) {
        double value = kNaN;
        EXPECT_EQ(S_OK, call(&value));
        return value;
    }
};

// 4 x 2 pixels: 16 (1 + x + 4 y).
Picture Small() { return Picture(ImageOf<uint8_t>(4, {16, 32, 48, 64, 80, 96, 112, 128})); }

TEST(Picture, IsFittedIntoTheMiddleOrTheCornerWithItsSurround) {
    const Picture picture = Small();
    ASSERT_EQ(S_OK, picture.zoom->put_Surround(0xff0000f0));
    Canvas centred(9, 8);
    // 8 x 4 of the 8 x 6 asked for, one row free above and below.
    ASSERT_EQ(S_OK, picture.memory->RenderToMemory(&centred.memory, 1, 1, 8, 6));
    EXPECT_EQ((std::vector<std::string>{".........", ".ffffffff", ".11223344", ".11223344", ".55667788", ".55667788",
                                        ".ffffffff", "........."}),
              centred.Rows());
    EXPECT_EQ((std::vector<LONG>{1, 2, 9, 6}), picture.destRect());
    const TCoordinateMap map = picture.toDest();
    EXPECT_EQ(2, map.Matrix.A11);
    EXPECT_EQ(2, map.Matrix.A22);
    EXPECT_EQ(0, map.Matrix.A12);
    EXPECT_EQ(0, map.Matrix.A21);
    EXPECT_EQ(2, map.OrgX);  // pixel 0 covers 1 .. 3
    EXPECT_EQ(3, map.OrgY);
    const TCoordinateMap back = picture.toPixel();
    EXPECT_EQ(0.5, back.Matrix.A11);
    EXPECT_EQ(-1, back.OrgX);
    EXPECT_EQ(-1.5, back.OrgY);

    Canvas corner(9, 8);
    ASSERT_EQ(S_OK, picture.memory->RenderTopLeftToMemory(&corner.memory, 1, 1, 8, 6));
    EXPECT_EQ((std::vector<std::string>{".........", ".11223344", ".11223344", ".55667788", ".55667788", ".ffffffff",
                                        ".ffffffff", "........."}),
              corner.Rows());
    EXPECT_EQ((std::vector<LONG>{1, 1, 9, 5}), picture.destRect());
}

TEST(Picture, IsMirroredWithItsDestinationAndClippedToTheMemory) {
    const Picture picture = Small();
    Canvas mirrored(4, 2);
    ASSERT_EQ(S_OK, picture.memory->RenderToMemory(&mirrored.memory, 4, 2, -4, -2));
    EXPECT_EQ((std::vector<std::string>{"8765", "4321"}), mirrored.Rows());
    EXPECT_EQ((std::vector<LONG>{4, 2, 0, 0}), picture.destRect());
    EXPECT_EQ(-1, picture.toDest().Matrix.A11);

    Canvas clipped(3, 2);
    ASSERT_EQ(S_OK, picture.memory->RenderToMemory(&clipped.memory, -2, -1, 8, 4));
    EXPECT_EQ((std::vector<std::string>{"223", "667"}), clipped.Rows());
    EXPECT_EQ((std::vector<LONG>{-2, -1, 6, 3}), picture.destRect());
    EXPECT_EQ(S_OK, picture.memory->RenderToMemory(&clipped.memory, INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX));
    EXPECT_EQ(S_OK, picture.memory->RenderToMemory(&clipped.memory, INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN));
    // The top row last.
    Canvas turned(4, 2);
    turned.memory.m_pPixels += turned.memory.m_lStride;
    turned.memory.m_lStride = -turned.memory.m_lStride;
    ASSERT_EQ(S_OK, picture.memory->RenderToMemory(&turned.memory, 0, 0, 4, 2));
    EXPECT_EQ((std::vector<std::string>{"1234", "5678"}), turned.Rows());
}

TEST(Picture, AnEmptyDestinationChangesNothing) {
    const Picture picture = Small();
    Canvas canvas(4, 2);
    ASSERT_EQ(S_OK, picture.memory->RenderToMemory(&canvas.memory, 0, 0, 4, 2));
    const std::vector<unsigned> before = canvas.pixels;
    for (const auto& [width, height] : {std::pair{0, 5}, {5, 0}, {0, 0}})
        EXPECT_EQ(S_FALSE, picture.memory->RenderToMemory(&canvas.memory, 1, 1, width, height));
    EXPECT_EQ(before, canvas.pixels);
    EXPECT_EQ((std::vector<LONG>{0, 0, 4, 2}), picture.destRect());
}

TEST(Picture, BltShowsPixelByPixelAndStretchWhatItIsGiven) {
    const Picture picture = Small();
    Check(picture.zoom->put_ZoomFactor(4), picture.zoom);  // neither asks for it
    Canvas blt(7, 4);
    ASSERT_EQ(S_OK, picture.memory->RenderBltToMemory(&blt.memory, 1, 1, 6, 3, -1, 1));
    EXPECT_EQ((std::vector<std::string>{".......", ".056780", ".000000", ".000000"}), blt.Rows());
    EXPECT_EQ((std::vector<LONG>{2, 1, 6, 2}), picture.destRect());
    EXPECT_EQ(S_FALSE, picture.memory->RenderBltToMemory(&blt.memory, 0, 0, 3, 1, 4, 0));
    EXPECT_EQ("000....", blt.Row(0));
    EXPECT_EQ((std::vector<LONG>{2, 1, 6, 2}), picture.destRect()) << "nothing of the image was shown";

    Canvas stretch(6, 4);
    ASSERT_EQ(S_OK, picture.memory->RenderStretchToMemory(&stretch.memory, 0, 0, 6, 4, 1, 0, 2, 2));
    EXPECT_EQ((std::vector<std::string>{"222333", "222333", "666777", "666777"}), stretch.Rows());
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

TEST(Picture, ZoomShowsThePixelsAboutItsCentre) {
    // 16 columns of 16 x, 8 rows.
    std::vector<uint8_t> pixels;
    for (int i = 0; i < 128; ++i) pixels.push_back(static_cast<uint8_t>(i % 16 * 16));
    const Picture picture(ImageOf<uint8_t>(16, pixels));
    Check(picture.zoom->put_ZoomFactor(4), picture.zoom);
    Check(picture.zoom->put_ZoomCenterX(10), picture.zoom);
    Canvas canvas(10, 5);
    // Columns 8..12, rows 3..5: 8 of the 10 columns asked for. Two columns more would be too wide.
    ASSERT_EQ(S_OK, picture.memory->RenderToMemory(&canvas.memory, 0, 0, 10, 5));
    EXPECT_EQ("089abc0", [&] {
        std::string shown = canvas.Row(2);
        shown.erase(std::unique(shown.begin(), shown.end()), shown.end());
        return shown;
    }()) << canvas.Row(2);
}

TEST(Picture, SmoothAveragesAndInterpolates) {
    const Picture picture(ImageOf<uint8_t>(4, {0, 100, 200, 255, 50, 10, 30, 20}));
    Canvas half(2, 1, RS_Smooth);
    ASSERT_EQ(S_OK, picture.memory->RenderToMemory(&half.memory, 0, 0, 2, 1));
    EXPECT_EQ(40 * 0x010101u, half.at(0, 0));   // 160 / 4
    EXPECT_EQ(126 * 0x010101u, half.at(1, 0));  // 505 / 4
    Canvas twice(8, 4, RS_Smooth);
    ASSERT_EQ(S_OK, picture.memory->RenderToMemory(&twice.memory, 0, 0, 8, 4));
    EXPECT_EQ(25 * 0x010101u, [&] {
        Canvas line(8, 1, RS_Smooth);
        Check(picture.memory->RenderStretchToMemory(&line.memory, 0, 0, 8, 1, 0, 0, 4, 1), picture.memory);
        return line.at(1, 0);
    }());  // a quarter of the way from 0 to 100
    EXPECT_EQ(0u, twice.at(0, 0));
}

TEST(Picture, ShowsColoursOfTheTableOrOfThreeBands) {
    const Picture grey = Small();
    Check(grey.display->put_ColorTable(48, 0x112233), grey.display);  // blue, green, red
    Canvas canvas(4, 2);
    ASSERT_EQ(S_OK, grey.memory->RenderToMemory(&canvas.memory, 0, 0, 4, 2));
    EXPECT_EQ(0x332211u, canvas.at(2, 0));
    Check(grey.display->PutDisplayRange(32, 64), grey.display);
    ASSERT_EQ(S_OK, grey.memory->RenderToMemory(&canvas.memory, 0, 0, 4, 2));
    EXPECT_EQ(0u, canvas.at(0, 0));
    EXPECT_EQ(0x808080u, canvas.at(2, 0));
    EXPECT_EQ(0xffffffu, canvas.at(3, 0));

    const Picture color(NewImage<uint16_t>(2, 1, 4));
    for (LONG band = 0; band < 4; ++band)
        for (const auto row : Rows<uint16_t>(color.image, band)) row[0] = static_cast<uint16_t>(257 * 20 * (band + 1));
    Check(color.display->put_BandToDisplay(1), color.display);
    ASSERT_EQ(S_OK, color.memory->RenderToMemory(&canvas.memory, 0, 0, 2, 1));
    EXPECT_EQ(0x282828u, canvas.at(0, 0));
    Check(color.display->put_BandToDisplay(BI_AllBands), color.display);
    ASSERT_EQ(S_OK, color.memory->RenderToMemory(&canvas.memory, 0, 0, 2, 1));
    EXPECT_EQ(0x14283cu, canvas.at(0, 0));
    EXPECT_EQ(0u, canvas.at(1, 0));
    Canvas smooth(4, 2, RS_Smooth);
    ASSERT_EQ(S_OK, color.memory->RenderToMemory(&smooth.memory, 0, 0, 4, 2));
    EXPECT_EQ(0x0f1e2du, smooth.at(1, 0)) << "three quarters";
}

TEST(Picture, RefusesMemoryThatCannotBe) {
    const Picture picture = Small();
    Canvas canvas(4, 2);
    const auto render = [&](const std::function<void(SPictureMemory&)>& spoil) {
        SPictureMemory memory = canvas.memory;
        spoil(memory);
        return picture.memory->RenderToMemory(&memory, 0, 0, 4, 2);
    };
    EXPECT_TRUE(FailsSilently(picture.memory->RenderToMemory(nullptr, 0, 0, 4, 2), E_POINTER));
    EXPECT_TRUE(FailsSilently(render([](auto& m) { m.m_pPixels = nullptr; }), E_POINTER));
    for (const LONG size : {0, -1, INT32_MIN}) {
        EXPECT_TRUE(Fails(render([&](auto& m) { m.m_lWidth = size; }), "IPictureMemory: the memory has no pixels."));
        EXPECT_TRUE(Fails(render([&](auto& m) { m.m_lHeight = size; }), "IPictureMemory: the memory has no pixels."));
    }
    for (const LONG stride : {3, -3, 0})
        EXPECT_TRUE(
            Fails(render([&](auto& m) { m.m_lStride = stride; }), "IPictureMemory: the stride is shorter than a row."));
    EXPECT_TRUE(Fails(render([](auto& m) { m.m_lScaling = 2; }), "IPictureMemory: no such scaling."));
}

TEST(Picture, WithoutAnImageThereIsNothingToRender) {
    Canvas canvas(4, 2);
    const Picture empty(CreateObject<IImageVPAExPlus>("Orlix.Image"));
    const auto refuses = [&](const Picture& picture, const char* text, const char* bltText, const char* stretchText) {
        EXPECT_TRUE(Fails(picture.memory->RenderToMemory(&canvas.memory, 0, 0, 4, 2), text));
        EXPECT_TRUE(Fails(picture.memory->RenderTopLeftToMemory(&canvas.memory, 0, 0, 4, 2), text));
        EXPECT_TRUE(Fails(picture.memory->RenderBltToMemory(&canvas.memory, 0, 0, 4, 2, 0, 0), bltText));
        EXPECT_TRUE(Fails(picture.memory->RenderStretchToMemory(&canvas.memory, 0, 0, 4, 2, 0, 0, 1, 1), stretchText));
    };
    constexpr const char* kNoImage = "IPictureEx::Render: No image.";
    refuses(empty, kNoImage, kNoImage, kNoImage);
    LONG size = -1;
    EXPECT_EQ(S_OK, empty.zoom->get_Width(&size));
    EXPECT_EQ(0, size);
    double x = -1, y = -1, value = -1;
    OLE_COLOR color = 1;
    EXPECT_EQ(S_FALSE, empty.zoom->GetPixelInfo(2, 3, &x, &y, &value, &color));
    EXPECT_EQ(2.5, x);
    EXPECT_EQ(0, value);
    void* bitmap = &canvas;
    EXPECT_TRUE(Fails(empty.zoom->CreateHBITMAP(nullptr, &bitmap), "IPictureEx::CreateHBITMAP: No image."));
    EXPECT_EQ(nullptr, bitmap);

    // A buffer that may not be touched.
    const Picture refused(CreateObject<IImageVPAExPlus>("Orlix.Image"));
    EXPECT_TRUE(FAILED(refused.zoom->AttachBuffer(reinterpret_cast<void*>(16), 4, 2, 8)));
    refuses(refused, "IPictureEx::Render: unable to retrieve bitmap information.",
            "IPictureEx::RenderBlt: unable to retrieve bitmap information.",
            "IPictureEx::RenderStretch: unable to retrieve bitmap information.");
    EXPECT_EQ(S_FALSE, refused.zoom->GetPixelInfo(0, 0, &x, &y, &value, &color));
}

TEST(Picture, MapsAreInverseToAMilliardthOfAPixel) {
    const Picture picture(NewImage<uint8_t>(5003, 3001));
    std::vector<unsigned> pixels(64 * 48);
    SPictureMemory memory = {pixels.data(), 64, 48, 64, RS_Nearest};
    uint32_t state = 1;
    const auto random = [&](uint32_t below) {
        return static_cast<LONG>((state = state * 1664525 + 1013904223) >> 8) % static_cast<LONG>(below);
    };
    for (int round = 0; round < 300; ++round) {
        Check(picture.zoom->put_ZoomFactor(1 + random(9000) / 10.0), picture.zoom);
        Check(picture.zoom->put_ZoomCenterX(1 + random(5000)), picture.zoom);
        Check(picture.zoom->put_ZoomCenterY(1 + random(2999)), picture.zoom);
        Check(picture.memory->RenderToMemory(&memory, random(900) - 450, random(700) - 350, 1 + random(2500),
                                             1 + random(1500)),
              picture.memory);
        const TCoordinateMap to = picture.toDest(), from = picture.toPixel();
        for (const double x : {0.0, 5002.0, 1234.5})
            ASSERT_NEAR(x, from.OrgX + from.Matrix.A11 * (to.OrgX + to.Matrix.A11 * x), 1e-9);
        for (const double y : {0.0, 3000.0, 77.25})
            ASSERT_NEAR(y, from.OrgY + from.Matrix.A22 * (to.OrgY + to.Matrix.A22 * y), 1e-9);
    }
}

TEST(Picture, PixelInfoTellsWhatLiesUnderADevicePixel) {
    const Picture picture(ImageOf<float>(2, {-1.5f, 300.25f, 0.5f, 64.0f}));
    Check(picture.display->put_ColorTable(64, 0x030201), picture.display);
    Canvas canvas(8, 8);
    ASSERT_EQ(S_OK, picture.memory->RenderToMemory(&canvas.memory, 0, 0, 8, 8));
    double x = 0, y = 0, value = 0;
    OLE_COLOR color = 9;
    ASSERT_EQ(S_OK, picture.zoom->GetPixelInfo(7, 0, &x, &y, &value, &color));
    EXPECT_EQ(1.375, x);
    EXPECT_EQ(-0.375, y);
    EXPECT_EQ(300.25, value);
    EXPECT_EQ(0xffffffu, color);
    ASSERT_EQ(S_OK, picture.zoom->GetPixelInfo(4, 4, &x, &y, &value, &color));
    EXPECT_EQ(64, value);
    EXPECT_EQ(0x030201u, color);
    EXPECT_EQ(0x010203u, canvas.at(4, 4));
    ASSERT_EQ(S_FALSE, picture.zoom->GetPixelInfo(8, 4, &x, &y, &value, &color));
    EXPECT_EQ(1.625, x);
    EXPECT_EQ(0, value);
    EXPECT_EQ(0u, color);
    for (const LONG edge : {INT32_MIN, INT32_MAX})
        EXPECT_EQ(S_FALSE, picture.zoom->GetPixelInfo(edge, edge, &x, &y, &value, &color));
    EXPECT_TRUE(FailsSilently(picture.zoom->GetPixelInfo(0, 0, &x, nullptr, &value, &color), E_POINTER));

    const Picture colored(NewImage<uint8_t>(1, 1, 3));
    for (LONG band = 0; band < 3; ++band)
        for (const auto row : Rows<uint8_t>(colored.image, band)) row[0] = static_cast<uint8_t>(band + 1);
    Check(colored.display->put_BandToDisplay(BI_AllBands), colored.display);
    ASSERT_EQ(S_OK, colored.memory->RenderToMemory(&canvas.memory, 0, 0, 8, 8));
    ASSERT_EQ(S_OK, colored.zoom->GetPixelInfo(0, 0, &x, &y, &value, &color));
    EXPECT_EQ(0x030201u, color);
    EXPECT_EQ(1, value);
}

TEST(Picture, AttachesOneBandOfBytesOrWords) {
    const Picture picture(CreateObject<IImageVPAExPlus>("Orlix.Image"));
    std::vector<uint16_t> words = {1, 2, 3, 4};
    ASSERT_EQ(S_OK, picture.zoom->AttachBuffer(words.data(), 2, 2, 16));
    EXPECT_EQ(words, PixelsOf<uint16_t>(picture.image));
    words[3] = 9;
    EXPECT_EQ(9, PixelsOf<uint16_t>(picture.image)[3]);
    for (const LONG bits : {0, 1, 24, 32, -8})
        EXPECT_TRUE(Fails(picture.zoom->AttachBuffer(words.data(), 2, 2, bits),
                          "IPictureEx::AttachBuffer: the picture must have 8 or 16 bits per pixel."));
    EXPECT_EQ(9, PixelsOf<uint16_t>(picture.image)[3]);
    EXPECT_TRUE(Fails(picture.zoom->AttachBuffer(nullptr, 2, 2, 8), "IImageVPAEx::AttachBuffer: no source buffer.",
                      kImageSource, DISP_E_EXCEPTION));
}

TEST(Picture, ZoomIsResetByANewSizeAndKeptByTheSameOne) {
    const Picture picture(NewImage<uint8_t>(641, 481));
    EXPECT_EQ(320, picture.x());
    EXPECT_EQ(240, picture.y());
    Check(picture.zoom->put_ZoomFactor(3), picture.zoom);
    Check(picture.zoom->put_ZoomCenterX(100.25), picture.zoom);
    Check(picture.image->Create(641, 481, 2, DT_BYTE, 1), picture.image);
    EXPECT_EQ(3, picture.factor());
    EXPECT_EQ(100.25, picture.x());
    Check(picture.image->Create(641, 481, 1, DT_Float, 1), picture.image);
    EXPECT_EQ(3, picture.factor()) << "another type, the same size";
    Check(picture.image->Create(640, 481, 1, DT_Float, 1), picture.image);
    EXPECT_EQ(1, picture.factor());
    EXPECT_EQ(320, picture.x());
    LONG height = 0;
    EXPECT_EQ(S_OK, picture.zoom->get_Height(&height));
    EXPECT_EQ(481, height);
}

TEST(Picture, ZoomPutsAndStepsFollowTheirRules) {
    const Picture picture(NewImage<uint8_t>(640, 480));
    for (const double wrong : {0.0, -1.0, kNaN, -std::numeric_limits<double>::infinity()})
        EXPECT_TRUE(Fails(picture.zoom->put_ZoomFactor(wrong), "IPictureZoom: zoom factor must be positive."));
    for (const double wrong : {0.4, 639.5, -5.0, kNaN, 1e300}) {
        EXPECT_TRUE(Fails(picture.zoom->put_ZoomCenterX(wrong),
                          "IPictureZoom::put_ZoomCenterX: x zoom center must be on the image."));
    }
    EXPECT_TRUE(Fails(picture.zoom->put_ZoomCenterY(479.5),
                      "IPictureZoom::put_ZoomCenterY: y zoom center must be on the image."));
    EXPECT_EQ(S_OK, picture.zoom->put_ZoomCenterX(0.5));
    EXPECT_EQ(0.5, picture.x());
    EXPECT_EQ(S_OK, picture.zoom->ResetZoom());
    EXPECT_EQ(320, picture.x());
    for (int i = 0; i < 4; ++i) EXPECT_EQ(S_OK, picture.zoom->ZoomIn());
    EXPECT_EQ(2.44140625, picture.factor());
    Check(picture.zoom->put_ZoomFactor(1.1), picture.zoom);
    EXPECT_EQ(S_OK, picture.zoom->ZoomOut());
    EXPECT_EQ(1, picture.factor());

    // Two device pixels an image pixel.
    std::vector<unsigned> pixels(1);
    SPictureMemory memory = {pixels.data(), 1, 1, 1, RS_Nearest};
    Check(picture.memory->RenderToMemory(&memory, 0, 0, 1280, 960), picture.memory);
    EXPECT_EQ(S_OK, picture.zoom->PanLeft());
    EXPECT_EQ(318.5, picture.x()) << "from the middle, 319.5, by a whole pixel";
    EXPECT_EQ(S_OK, picture.zoom->PanRight());
    EXPECT_EQ(320.5, picture.x());
    EXPECT_EQ(S_OK, picture.zoom->ScrollUp());
    EXPECT_EQ(238.5, picture.y());
    EXPECT_EQ(S_OK, picture.zoom->ScrollDown());
    EXPECT_EQ(240.5, picture.y());
    EXPECT_EQ(S_OK, picture.zoom->PanScrollFromPoints(100, 100, 100, 100));
    EXPECT_EQ(320.5, picture.x());
    EXPECT_EQ(S_OK, picture.zoom->PanScrollFromPoints(100, 100, 90, 120));
    EXPECT_EQ(325.5, picture.x());
    EXPECT_EQ(230.5, picture.y());
    EXPECT_EQ(S_OK, picture.zoom->ZoomInFromPoint(201, 101));
    EXPECT_EQ(100, picture.x());
    EXPECT_EQ(50, picture.y());
    EXPECT_EQ(1.25, picture.factor());
    EXPECT_EQ(S_OK, picture.zoom->ZoomOutFromPoint(-5000, 201));
    EXPECT_EQ(100, picture.x()) << "off the image";
    EXPECT_EQ(100, picture.y());
    EXPECT_EQ(1, picture.factor());
    EXPECT_EQ(S_OK, picture.zoom->ZoomFromRectangle(0, 0, 128, 960));
    EXPECT_EQ(65.0 / 640, picture.factor());
    EXPECT_EQ(31.5, picture.x());
    EXPECT_EQ(239.5, picture.y());
    Canvas canvas(4, 3);
    EXPECT_EQ(S_OK, picture.memory->RenderToMemory(&canvas.memory, 0, 0, 4, 3)) << "renders like 1";
    EXPECT_EQ(0.00625, picture.toDest().Matrix.A11);
}

// ------------------------------------------------------------------------------------------------------------- events

class Sink final : public IPictureExEvents {
public:
    explicit Sink(std::function<void()> onLast = {}) : onLast_(std::move(onLast)) {}
    STDMETHODIMP QueryInterface(REFIID iid, void** object) noexcept override {
        *object = iid == __uuidof(IUnknown) || iid == __uuidof(IPictureExEvents) ? this : nullptr;
        if (!*object) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() noexcept override {
        ++references;
        if (onAddRef) std::exchange(onAddRef, nullptr)();
        return references;
    }
    STDMETHODIMP_(ULONG) Release() noexcept override {  // lives on the test's stack
        if (--references == 0 && onLast_) onLast_();
        return references;
    }
    STDMETHODIMP OnRender(IPictureEx*, void*, RenderSourceType) noexcept override {
        ++calls;
        return S_OK;
    }
    ULONG references = 0;
    int calls = 0;
    std::function<void()> onAddRef;  // once

private:
    std::function<void()> onLast_;
};

ComPtr<IConnectionPoint> PointOf(const Picture& picture) {
    ComPtr<IConnectionPoint> point;
    Check(Cast<IConnectionPointContainer>(picture.image)->FindConnectionPoint(__uuidof(IPictureExEvents), point.Out()));
    return point;
}

TEST(PictureEvents, ConnectionsComeAndGoByTheirCookies) {
    const Picture picture = Small();
    const auto point = PointOf(picture);
    Sink first, second;
    DWORD cookies[2] = {};
    ASSERT_EQ(S_OK, point->Advise(&first, &cookies[0]));
    ASSERT_EQ(S_OK, point->Advise(&second, &cookies[1]));
    EXPECT_NE(cookies[0], cookies[1]);
    EXPECT_EQ(1u, first.references);

    ComPtr<IEnumConnections> connections;
    ASSERT_EQ(S_OK, point->EnumConnections(connections.Out()));
    CONNECTDATA data[3] = {};
    ULONG fetched = 9;
    EXPECT_EQ(S_FALSE, connections->Next(3, data, &fetched));
    ASSERT_EQ(2u, fetched);
    for (ULONG i = 0; i < 2; ++i) {
        EXPECT_EQ(cookies[i], data[i].dwCookie);
        EXPECT_EQ(static_cast<IUnknown*>(i == 0 ? &first : &second), data[i].pUnk);
        data[i].pUnk->Release();
    }
    connections = nullptr;

    EXPECT_EQ(S_OK, point->Unadvise(cookies[0]));
    EXPECT_EQ(0u, first.references);
    EXPECT_EQ(CONNECT_E_NOCONNECTION, point->Unadvise(cookies[0]));
    EXPECT_EQ(CONNECT_E_NOCONNECTION, point->Unadvise(0));
    // The client that goes last calls back.
    DWORD again = 0;
    {
        Sink nested([&] { EXPECT_EQ(S_OK, point->Unadvise(cookies[1])); });
        ASSERT_EQ(S_OK, point->Advise(&nested, &again));
        EXPECT_EQ(S_OK, point->Unadvise(again));
    }
    EXPECT_EQ(0u, second.references);

    DWORD cookie = 7;
    EXPECT_EQ(E_POINTER, point->Advise(nullptr, &cookie));
    EXPECT_EQ(0u, cookie);
    EXPECT_EQ(E_POINTER, point->Advise(&first, nullptr));
    EXPECT_EQ(CONNECT_E_CANNOTCONNECT, point->Advise(CreateObject<IBitmap>("Orlix.Bitmap").get(), &cookie));
}

TEST(PictureEvents, TheContainerHasThisOnePoint) {
    const Picture picture = Small();
    const auto container = Cast<IConnectionPointContainer>(picture.image);
    const auto point = PointOf(picture);
    IID iid = {};
    EXPECT_EQ(S_OK, point->GetConnectionInterface(&iid));
    EXPECT_TRUE(iid == __uuidof(IPictureExEvents));
    ComPtr<IConnectionPointContainer> back;
    EXPECT_EQ(S_OK, point->GetConnectionPointContainer(back.Out()));
    EXPECT_EQ(Cast<IUnknown>(picture.image).get(), Cast<IUnknown>(back).get());
    EXPECT_NE(Cast<IUnknown>(picture.image).get(), Cast<IUnknown>(point).get()) << "an object of its own";
    ComPtr<IConnectionPoint> other;
    EXPECT_EQ(CONNECT_E_NOCONNECTION, container->FindConnectionPoint(__uuidof(IPictureEx), other.Out()));
    EXPECT_FALSE(other);
    EXPECT_EQ(E_POINTER, container->FindConnectionPoint(__uuidof(IPictureExEvents), nullptr));
    EXPECT_EQ(E_POINTER, container->EnumConnectionPoints(nullptr));

    ComPtr<IEnumConnectionPoints> points;
    ASSERT_EQ(S_OK, container->EnumConnectionPoints(points.Out()));
    IConnectionPoint* found[2] = {};
    ULONG fetched = 0;
    EXPECT_EQ(S_FALSE, points->Next(2, found, &fetched));
    ASSERT_EQ(1u, fetched);
    EXPECT_EQ(point.get(), found[0]);
    found[0]->Release();
    EXPECT_EQ(S_FALSE, points->Next(1, found, nullptr));
    EXPECT_EQ(E_POINTER, points->Next(2, found, nullptr));
    EXPECT_EQ(E_POINTER, points->Next(1, nullptr, &fetched));
    EXPECT_EQ(S_OK, points->Reset());
    EXPECT_EQ(S_FALSE, points->Skip(2));
    ComPtr<IEnumConnectionPoints> clone;
    ASSERT_EQ(S_OK, points->Clone(clone.Out()));
    EXPECT_EQ(S_FALSE, clone->Next(1, found, &fetched)) << "where the other one stands";
    EXPECT_EQ(S_OK, clone->Reset());
    EXPECT_EQ(S_OK, clone->Skip(1));
}

TEST(PictureEvents, AConnectionKeepsItsClientAndThePointItsObject) {
    Sink sink;
    ComPtr<IConnectionPoint> point;
    {
        const Picture picture = Small();
        point = PointOf(picture);
        DWORD cookie = 0;
        ASSERT_EQ(S_OK, point->Advise(&sink, &cookie));
        Canvas canvas(4, 2);
        EXPECT_EQ(S_OK, picture.memory->RenderToMemory(&canvas.memory, 0, 0, 4, 2));
        EXPECT_EQ(0, sink.calls) << "the caller draws over its memory itself";
    }
    EXPECT_EQ(1u, sink.references);
    point = nullptr;
    EXPECT_EQ(0u, sink.references);
}

#ifndef _WIN32
TEST(PictureEvents, ClientsCallBackWhenTheirReferencesAreTakenOrGivenBack) {
    IConnectionPoint* point = nullptr;
    IEnumConnections* connections = nullptr;
    CONNECTDATA data = {};
    ULONG fetched = 0;
    Sink others, kept([&] {  // of an enumerator that is dying: it is at its end
        EXPECT_EQ(S_FALSE, connections->Next(1, &data, &fetched));
        connections->AddRef();
        connections->Release();
    });
    Sink last([&] {  // of an image that is dying: nobody connects any more
        DWORD cookie = 0;
        EXPECT_EQ(CONNECT_E_CANNOTCONNECT, point->Advise(&others, &cookie));
    });
    {
        const Picture picture = Small();
        const auto held = PointOf(picture);
        point = held.get();
        DWORD cookies[2] = {}, cookie = 0;
        ASSERT_EQ(S_OK, point->Advise(&kept, &cookies[0]));
        ASSERT_EQ(S_OK, point->Advise(&last, &cookies[1]));
        kept.onAddRef = [&] {
            for (int i = 0; i < 100; ++i) EXPECT_EQ(S_OK, point->Advise(&others, &cookie));
        };
        ASSERT_EQ(S_OK, point->EnumConnections(&connections));
        ASSERT_EQ(S_OK, connections->Next(1, &data, &fetched));
        EXPECT_EQ(&kept, data.pUnk);
        EXPECT_EQ(100u, others.references);
        data.pUnk->Release();
        EXPECT_EQ(S_OK, point->Unadvise(cookies[0]));
        EXPECT_EQ(0u, connections->Release());
        EXPECT_EQ(0u, kept.references);
    }
    EXPECT_EQ(0u, last.references);
    EXPECT_EQ(0u, others.references);
}

TEST(Picture, HasNoDeviceContextsOffWindows) {
    const Picture picture = Small();
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
