// Arrays as arguments and results.
#include <numeric>

#include "automation/script.hpp"

namespace orlix::testing {
namespace {

using Bytes = std::vector<uint8_t>;
using Reals = std::vector<double>;
using Longs = std::vector<LONG>;

class ScriptArrays : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(ModuleUnderTest()) << "is the module registered?"; }
    void TearDown() override { EXPECT_TRUE(ModuleIsUnlocked()); }
};

template <class T>
void ComeAndGo(int type, VARTYPE element, double most) {
    const Script image = NewScriptImage(3, 2, 2, type);
    std::vector<T> pixels = {0, 1, 2, 3, 4, static_cast<T>(most)};
    image("PutPixels", {1, Variant::Array<T>(element, {3, 2}, pixels)});
    const Variant got = image("GetPixels", {1});
    EXPECT_EQ(pixels, got.elements<T>(element));
    EXPECT_EQ(3u, got.size(0));
    EXPECT_EQ(std::vector<T>(6), image("GetPixels").elements<T>(element)) << "of band 0";
    // Numbers of other types are converted.
    image("PutPixels", {0, Variant::Array<double>(VT_R8, {3, 2}, {5, 4, 3, 2, 1.5, most})});
    EXPECT_EQ(static_cast<T>(most), image("GetPixels").elements<T>(element)[5]);
    EXPECT_EQ(DISP_E_OVERFLOW,
              image.Try("PutPixels", {0, Variant::Array<double>(VT_R8, {3, 2}, {9, 0, 0, 0, 0, 1e300})}).result);
    EXPECT_EQ(static_cast<T>(5), image("GetPixels").elements<T>(element)[0]) << "nothing was written";
}

TEST_F(ScriptArrays, PixelsOfEveryTypeComeAndGo) {
    ComeAndGo<uint8_t>(DT_BYTE, VT_UI1, 255);
    ComeAndGo<uint16_t>(DT_WORD, VT_UI2, 65535);
    ComeAndGo<uint32_t>(DT_DWORD, VT_UI4, 4294967295.0);
    ComeAndGo<float>(DT_Float, VT_R4, 1e30f);
    const Script image = NewScriptImage(2, 2);
    // VBScript's arrays hold VARIANTs, here with texts and numbers.
    Variant mixed = Variant::Array<VARIANT>(VT_VARIANT, {2, 2}, {});
    for (LONG i = 0; i < 4; ++i) {
        LONG at[] = {i % 2, i / 2};
        Variant element = i == 2 ? Variant("30") : Variant(static_cast<int>(10 * i + 10));
        SafeArrayPutElement(mixed.parray, at, &element);
    }
    Variant variable = mixed;
    image("PutPixels", {0, Variant::To(variable)});
    EXPECT_EQ((Bytes{10, 20, 30, 40}), image("GetPixels").elements<uint8_t>(VT_UI1));
    EXPECT_EQ(0u, Script("Orlix.Image")("GetPixels").size(0));
    EXPECT_EQ("IImageVPA::VPA: BandIndex is out of range", image.Try("GetPixels", {1}).text);
}

TEST_F(ScriptArrays, ImpossibleArraysAreRefused) {
    const Script image = NewScriptImage(2, 2);
    const struct {
        Variant given;
        HRESULT result;
    } cases[] = {{Variant::Array<uint8_t>(VT_UI1, {4}, {}), DISP_E_TYPEMISMATCH},
                 {Variant::Array<uint8_t>(VT_UI1, {2, 3}, {}), DISP_E_TYPEMISMATCH},
                 {Variant::Array<uint8_t>(VT_UI1, {2, 2, 1}, {}), DISP_E_TYPEMISMATCH},
                 {Variant::Array<uint8_t>(VT_UI1, {2, 2}, {}, 1), DISP_E_BADINDEX},
                 {Variant::Array<BSTR>(VT_BSTR, {2, 2}, {}), DISP_E_TYPEMISMATCH},
                 {Variant::Of(VT_ARRAY | VT_UI1), DISP_E_TYPEMISMATCH},
                 {Variant::Of(VT_BYREF | VT_ARRAY | VT_UI1), DISP_E_TYPEMISMATCH},
                 {Variant(7), DISP_E_TYPEMISMATCH}};
    for (const auto& [given, result] : cases) {
        const Outcome outcome = image.Try("PutPixels", {0, given});
        EXPECT_EQ(result, outcome.result) << &given - &cases[0].given;
        EXPECT_EQ(1u, outcome.badArgument);
    }
    // A locked array can be read; a variable that holds one cannot be overwritten.
    Variant locked = Variant::Array<uint8_t>(VT_UI1, {2, 2}, {1, 2, 3, 4});
    SafeArrayLock(locked.parray);
    image("PutPixels", {0, locked});
    EXPECT_EQ(DISP_E_ARRAYISLOCKED, image.Try("Dimensions", {Variant::To(locked)}).result);
    SafeArrayUnlock(locked.parray);
    image("Dimensions", {Variant::To(locked)});
    EXPECT_EQ(1, locked.lVal);
}

TEST_F(ScriptArrays, BitmapsAreZerosAndOnes) {
    const Script bitmap("Orlix.Bitmap");
    bitmap("Create", {9, 2});
    Bytes bits(18);
    bits[0] = bits[8] = bits[10] = 1;
    bitmap("PutPixels", {Variant::Array<uint8_t>(VT_UI1, {9, 2}, bits)});
    EXPECT_EQ((std::array<double, 4>{3, 1, 1, 0}),
              (std::array{bitmap("PixelCount").number(), bitmap("Bit", {8, 0}).number(), bitmap("Bit", {1, 1}).number(),
                          bitmap("Bit", {0, 1}).number()}));
    EXPECT_EQ(bits, bitmap("GetPixels").elements<uint8_t>(VT_UI1));
    Bytes table(512);
    for (size_t i = 0; i < 512; ++i) table[i] = (i & 16) == 0;
    EXPECT_EQ(1, bitmap("ApplyTable", {Variant::Array<uint8_t>(VT_UI1, {512}, table)}).number());
    EXPECT_EQ(15, bitmap("PixelCount").number()) << "inverted";
    EXPECT_EQ(DISP_E_TYPEMISMATCH, bitmap.Try("ApplyTable", {Variant::Array<uint8_t>(VT_UI1, {511}, {})}).result);
}

TEST_F(ScriptArrays, VerticesBinsRunsAndElements) {
    const Script polygon("Orlix.Polygon");
    polygon("Create", {Variant::Array<double>(VT_R8, {6}, {0, 0, 4, 0, 4, 3})});
    EXPECT_EQ(6, polygon("Area").number());
    const Variant vertices = polygon("Vertices");
    EXPECT_EQ((Reals{0, 4, 4, 0, 0, 3}), vertices.elements<double>(VT_R8)) << "columns: x, then y";
    EXPECT_EQ(2u, vertices.size(1));
    polygon("Create", {Variant::Array<short>(VT_I2, {4, 2}, {0, 2, 2, 0, 0, 0, 2, 2})});
    EXPECT_EQ(4, polygon("Area").number());
    EXPECT_EQ(2, Script(polygon("GetVertex", {2}))("Y").number());
    EXPECT_EQ(DISP_E_BADINDEX, polygon.Try("GetVertex", {4}).scode);
    EXPECT_EQ(DISP_E_TYPEMISMATCH, polygon.Try("Create", {Variant::Array<double>(VT_R8, {3}, {})}).result);

    const Script image = NewScriptImage(2, 2);
    image("PutPixels", {0, Variant::Array<uint8_t>(VT_UI1, {2, 2}, {3, 3, 250, 0})});
    const Script histogram(image("Histogram"));
    const Longs bins = histogram("Bins").elements<LONG>(VT_I4);
    EXPECT_EQ(256u, bins.size());
    EXPECT_EQ((Longs{1, 2, 1}), (Longs{bins[0], bins[3], bins[250]}));
    EXPECT_EQ(2, histogram("Bins", {3}).number());
    EXPECT_EQ(DISP_E_BADINDEX, histogram.Try("Bins", {256}).scode);
    EXPECT_EQ(0u, Script("Orlix.Histogram")("Bins").size(0));

    const Script region("Orlix.ShapeRegionOfInterest");
    region("CreateRectangle", {9, 9, 2, 3, 5, 6});
    EXPECT_EQ((Longs{2, 5}), region("GetRowRuns", {4}).elements<LONG>(VT_I4));
    EXPECT_EQ(0u, region("GetRowRuns", {8}).size(0));
    EXPECT_EQ(6, Script(region("BoundingBox"))("Bottom").number());
    const Script element("Orlix.StructuringElement");
    element("AddElement", {-1, 2});
    element("AddElement", {3, 4});
    EXPECT_EQ((Longs{-1, 3, 2, 4}), element("Elements").elements<LONG>(VT_I4));
}

TEST_F(ScriptArrays, BytesOfEntriesBitmapsAndFrames) {
    const Script image = NewScriptImage(2, 2);
    image("PutBinaryEntry", {"key", Variant::Array<uint8_t>(VT_UI1, {3}, {7, 8, 9})});
    EXPECT_EQ((Bytes{7, 8, 9}), image("ReadBinaryEntry", {0}).elements<uint8_t>(VT_UI1));
    EXPECT_EQ((Bytes{8}), image("ReadBinaryEntry", {0, 1, 1}).elements<uint8_t>(VT_UI1));
    EXPECT_EQ("IImageEntries::ReadBinaryEntry: the bytes are out of range.",
              image.Try("ReadBinaryEntry", {0, 2, 2}).text);
    EXPECT_EQ(3, Script(image("GetBinaryEntry", {0}))("Size").number());
    EXPECT_EQ("key", Script(image("GetBinaryEntry", {0}))("Keyword").text());

    const Script buffer("Orlix.OrlixBuffer"), copy("Orlix.OrlixBuffer");
    buffer("Create", {5, 4, 8});
    const Variant packed = buffer("GetPacked");
    EXPECT_EQ(40u + 1024 + 8 * 4, packed.size(0));
    copy("PutPacked", {packed});
    EXPECT_EQ(packed.elements<uint8_t>(VT_UI1), copy("GetPacked").elements<uint8_t>(VT_UI1));
    image("CreateFromFrame", {Variant::Array<uint8_t>(VT_UI1, {6}, {1, 2, 3, 4, 5, 6}), 3, 2, PF_Mono8});
    EXPECT_EQ((Bytes{1, 2, 3, 4, 5, 6}), image("GetPixels").elements<uint8_t>(VT_UI1));
}

TEST_F(ScriptArrays, BlobsAreACollectionOfTheirMeasurements) {
    const Script bitmap("Orlix.Bitmap");
    bitmap("Create", {10, 5});
    bitmap("DrawRectangle", {1, 1, 2, 2});
    bitmap("DrawRectangle", {5, 0, 7, 4});
    const Script blobs(bitmap("FindBlobs", {4}));
    EXPECT_EQ((Reals{15, 4}), blobs("GetValues", {SMT_Area}).elements<double>(VT_R8));
    EXPECT_EQ((Reals{4}), blobs("GetValues", {SMT_Area, 1}).elements<double>(VT_R8));
    EXPECT_EQ("IBlobs::GetValues: index is out of range", blobs.Try("GetValues", {SMT_Area, 1, 2000000000}).text);
    const Script second(blobs("Item", {1}));
    EXPECT_EQ(4, second("Area").number());
    EXPECT_EQ(10u, second("RawMoments").size(0));
    EXPECT_EQ(4, second("RawMoments", {0}).number());
    EXPECT_EQ(DISP_E_BADINDEX, second.Try("RawMoments", {10}).result);
    EXPECT_EQ(15, Script(blobs.TryId(DISPID_VALUE, {0}, kCallIt).value)("Area").number());
    const Variant all = blobs("GetBinaryMeasurements", {BEMT_Size});
    ASSERT_EQ(VT_ARRAY | VT_VARIANT, all.vt);
    EXPECT_EQ(5, Script(static_cast<Variant*>(all.parray->pvData)[0])("Left").number());
    const Variant items = blobs.TryId(DISPID_NEWENUM, {}, kCallIt).value;
    const auto enumerator = Cast<IEnumVARIANT>(ComPtr<IUnknown>(items.punkVal));
    Variant item[3];
    ULONG fetched = 0;
    EXPECT_EQ(S_FALSE, enumerator->Next(3, item, &fetched));
    EXPECT_EQ(2u, fetched);
    EXPECT_EQ(4, Script(item[1])("Area").number());
    EXPECT_EQ("IBlobs::GetGrayMeasurements: no image has been measured.", blobs.Try("GetGrayMeasurements", {}).text);
    const Script image = NewScriptImage(10, 5);
    image("ScalarEquals", {20});
    blobs("MeasureGray", {image});
    const Variant gray = blobs("GetGrayMeasurements");
    EXPECT_EQ(20, Script(static_cast<Variant*>(gray.parray->pvData)[1])("GrayAverage").number());
    const Variant level = blobs("GetLevelMeasurements", {image, Variant::Missing(), 10, 0, 1});
    EXPECT_EQ(1u, level.size(0));
}

TEST(ScriptPixels, OneByOneInEveryType) {
    const struct {
        int type;
        double given, kept, tooLarge;
    } types[] = {{DT_BYTE, 254.6, 255, 255.5},
                 {DT_WORD, 65535, 65535, 65536},
                 {DT_DWORD, 4294967295.0, 4294967295.0, 4294967296.0},
                 {DT_Float, 0.1, static_cast<double>(0.1f), 1e39}};
    for (const auto& [type, given, kept, tooLarge] : types) {
        const Script image = NewScriptImage(3, 2, 2, type);
        image.Put("Pixel", {2, 1, given});
        image.Put("Pixel", {0, 1, 1, 7});
        EXPECT_EQ(kept, image("Pixel", {2, 1}).number());
        EXPECT_EQ(7, image("Pixel", {0, 1, 1}).number());
        EXPECT_EQ(0, image("Pixel", {0, 1}).number()) << "of another band";
        EXPECT_EQ(DISP_E_OVERFLOW, image.Try("Pixel", {2, 1, tooLarge}, DISPATCH_PROPERTYPUT).result);
        EXPECT_EQ(kept, image("Pixel", {2, 1}).number());
        for (const auto& [x, y] : {std::pair{-1, 0}, {3, 0}, {0, -1}, {0, 2}}) {
            EXPECT_EQ(DISP_E_BADINDEX, image.Try("Pixel", {x, y}).scode);
            EXPECT_EQ(DISP_E_BADINDEX, image.Try("Pixel", {x, y, 1}, DISPATCH_PROPERTYPUT).scode);
        }
        EXPECT_EQ("IImageVPA::VPA: BandIndex is out of range", image.Try("Pixel", {0, 0, 2}).text);
    }
    EXPECT_EQ(DISP_E_BADINDEX, Script("Orlix.Image").Try("Pixel", {0, 0}).scode) << "without pixels";
    const Script bitmap("Orlix.Bitmap");
    bitmap("Create", {11, 2});
    bitmap.Put("Pixel", {9, 1, -3});
    bitmap.Put("Pixel", {8, 1, 1});
    bitmap.Put("Pixel", {8, 1, 0});
    EXPECT_EQ(1, bitmap("PixelCount").number());
    EXPECT_EQ(1, bitmap("Pixel", {9, 1}).number());
    EXPECT_EQ(0, bitmap("Pixel", {8, 1}).number());
    for (const auto& [x, y] : {std::pair{11, 0}, {0, 2}, {-1, 0}})
        EXPECT_EQ(DISP_E_BADINDEX, bitmap.Try("Pixel", {x, y}).scode);
}

}  // namespace
}  // namespace orlix::testing
