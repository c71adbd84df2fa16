// The image object as its clients see it: creation, pixels, coordinate map, copies.

#include <gmock/gmock.h>

#include <limits>
#include <numeric>

#include "contract/support.hpp"

namespace orlix::testing {
namespace {

using ::testing::ElementsAre;

constexpr LONG kMaximum = std::numeric_limits<LONG>::max();
constexpr LONG kMinimum = std::numeric_limits<LONG>::min();

ComPtr<IImageVPAExPlus> Empty() { return CreateObject<IImageVPAExPlus>("Orlix.Image"); }

std::vector<LONG> DimensionsOf(const ComPtr<IImageVPAExPlus>& image) {
    LONG bands = -1;
    LONG width = -1;
    LONG height = -1;
    Check(image->Dimensions(&bands, &width, &height), image);
    return {bands, width, height};
}

struct Band {
    uint8_t* base = nullptr;
    VPAEntry* table = nullptr;
};

Band BandOf(const ComPtr<IImageVPAExPlus>& image, LONG band = 0) {
    Band result;
    void* base = nullptr;
    Check(image->VPA(band, &base, &result.table), image);
    result.base = static_cast<uint8_t*>(base);
    return result;
}

TEST(ImageContract, EmptyImageHasNoSizeAndRefusesTheRest) {
    const auto image = Empty();
    EXPECT_THAT(DimensionsOf(image), ElementsAre(0, 0, 0));
    LONG type = 77;
    EXPECT_TRUE(FailsSilently(image->DataType(0, &type)));
    EXPECT_EQ(77, type);
    void* base = &type;
    VPAEntry entry = {};
    VPAEntry* table = &entry;
    EXPECT_TRUE(FailsSilently(image->VPA(0, &base, &table)));
    EXPECT_EQ(nullptr, base);
    EXPECT_EQ(nullptr, table);
    TCoordinateMap map = {};
    EXPECT_TRUE(FailsSilently(image->GetCoords(&map)));
    EXPECT_TRUE(FailsSilently(image->SetCoords(map)));
    BSTR text = nullptr;
    EXPECT_TRUE(FailsSilently(image->get_Description(&text)));
    EXPECT_TRUE(FailsSilently(image->put_Description(text)));
}

TEST(ImageContract, RowsArePaddedToFourBytesAndTheTableMirrors) {
    const auto image = Empty();
    ASSERT_EQ(S_OK, image->Create(5, 3, 1, DT_BYTE, 1));
    const Band band = BandOf(image);
    for (LONG y = 0; y < 3; ++y) EXPECT_EQ(8 * y, band.table[y].YEntry);
    for (LONG x = 0; x < 5; ++x) EXPECT_EQ(x, band.table[x].XEntry);
    EXPECT_EQ(1, band.table[-1].XEntry);
    EXPECT_EQ(3, band.table[5].XEntry);
    EXPECT_EQ(8, band.table[-1].YEntry);
    EXPECT_EQ(8, band.table[3].YEntry);
    EXPECT_EQ(0, band.table[-200].XEntry);  // 200 = 25 * 8
    EXPECT_EQ(4, band.table[204].XEntry);   // 204 = 25 * 8 + 4
    EXPECT_EQ(0, band.table[-200].YEntry);  // 200 = 50 * 4
    EXPECT_EQ(16, band.table[202].YEntry);  // 202 = 50 * 4 + 2
    for (int i = 0; i < 24; ++i) EXPECT_EQ(0, band.base[i]);

    ASSERT_EQ(S_OK, image->Create(3, 2, 2, DT_WORD, 1));
    EXPECT_EQ(4, BandOf(image).table[1].YEntry);  // samples, not bytes
    EXPECT_EQ(16, BandOf(image, 1).base - BandOf(image, 0).base);

    ASSERT_EQ(S_OK, image->Create(1, 1, 1, DT_Float, 1));
    for (int i = -200; i <= 200; ++i) {
        EXPECT_EQ(0, BandOf(image).table[i].XEntry);
        EXPECT_EQ(0, BandOf(image).table[i].YEntry);
    }
}

TEST(ImageContract, BandsOutOfRangeAreReportedWithNullOutputs) {
    const auto image = NewImage<uint8_t>(4, 4, 2);
    for (const LONG band : {LONG{-1}, LONG{2}, kMinimum, kMaximum}) {
        void* base = image.get();
        VPAEntry* table = reinterpret_cast<VPAEntry*>(image.get());
        EXPECT_TRUE(Fails(image->VPA(band, &base, &table), "IImageVPA::VPA: BandIndex is out of range", kImageSource,
                          DISP_E_EXCEPTION));
        EXPECT_EQ(nullptr, base);
        EXPECT_EQ(nullptr, table);
    }
    LONG type = 0;
    EXPECT_EQ(S_OK, image->DataType(99, &type));  // all bands share the type
    EXPECT_EQ(DT_BYTE, type);
}

TEST(ImageContract, CreateChecksItsArgumentsInOrderAndKeepsTheImage) {
    const auto image = ImageOf<uint8_t>(3, {1, 2, 3});
    struct Case {
        LONG width, height, bands;
        const char* text;
    };
    for (const Case& c : {Case{0, 0, 0, "IImageVPAEx::Create: Width must be positive."},
                          Case{kMinimum, 1, 1, "IImageVPAEx::Create: Width must be positive."},
                          Case{1, -1, 0, "IImageVPAEx::Create: Height must be positive."},
                          Case{1, 1, 0, "IImageVPAEx::Create: Bands must be positive."}}) {
        EXPECT_TRUE(
            Fails(image->Create(c.width, c.height, c.bands, DT_BYTE, 1), c.text, kImageSource, DISP_E_EXCEPTION));
        EXPECT_THAT(PixelsOf<uint8_t>(image), ElementsAre(1, 2, 3));
    }
}

TEST(ImageContract, CreateOfAnUnsupportedTypeEmptiesTheImageSilently) {
    for (const LONG type : {LONG{DT_Double}, LONG{DT_Char}, LONG{DT_Short}, LONG{DT_Long}, LONG{0}, LONG{7}, LONG{-1},
                            LONG{24}, kMinimum, kMaximum}) {
        const auto image = NewImage<uint8_t>(2, 2);
        EXPECT_TRUE(FailsSilently(image->Create(2, 2, 1, type, 1))) << type;
        EXPECT_THAT(DimensionsOf(image), ElementsAre(0, 0, 0));
        EXPECT_EQ(E_FAIL, image->DataType(0, &std::vector<LONG>(1)[0]));
    }
}

TEST(ImageContract, ARefusedCreationOfAnotherTypeLeavesAnEmptyImageOfThatType) {
    const auto image = NewImage<uint8_t>(2, 2);
    EXPECT_TRUE(Fails(image->Create(0, 2, 1, DT_WORD, 1), "IImageVPAEx::Create: Width must be positive.", kImageSource,
                      DISP_E_EXCEPTION));
    EXPECT_THAT(DimensionsOf(image), ElementsAre(0, 0, 0));
    LONG type = 0;
    EXPECT_EQ(S_OK, image->DataType(0, &type));
    EXPECT_EQ(DT_WORD, type);
    void* base = &type;
    VPAEntry* table = nullptr;
    EXPECT_EQ(S_FALSE, image->VPA(0, &base, &table));
    EXPECT_EQ(nullptr, base);
}

TEST(ImageContract, SizesThatNoMemoryHoldsLeaveTheImageAsItWas) {
    const auto image = ImageOf<uint8_t>(3, {1, 2, 3});
    for (const LONG type : {LONG{DT_BYTE}, LONG{DT_WORD}, LONG{DT_Float}}) {
        EXPECT_TRUE(FailsSilently(image->Create(kMaximum, kMaximum, 1, type, 0)));
        EXPECT_TRUE(FailsSilently(image->Create(kMaximum, kMaximum, kMaximum, type, 0)));
        EXPECT_TRUE(FailsSilently(image->Create(65536, 65536, 1, type, 0)));  // row offsets beyond 32 bits
        EXPECT_TRUE(FailsSilently(image->Create(32768, 32768, kMaximum, type, 0)));
    }
    EXPECT_THAT(PixelsOf<uint8_t>(image), ElementsAre(1, 2, 3));
}

TEST(ImageContract, SamplesStayWithoutZeroAndNewBytesAreZero) {
    const auto image = ImageOf<uint8_t>(4, {1, 2, 3, 4, 5, 6, 7, 8});
    ASSERT_EQ(S_OK, image->Create(4, 2, 1, DT_BYTE, 0));
    EXPECT_THAT(PixelsOf<uint8_t>(image), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8));
    ASSERT_EQ(S_OK, image->Create(4, 3, 1, DT_BYTE, 0));
    EXPECT_THAT(PixelsOf<uint8_t>(image), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 0, 0, 0, 0));
    ASSERT_EQ(S_OK, image->Create(4, 3, 1, DT_BYTE, 1));
    EXPECT_THAT(PixelsOf<uint8_t>(image), ::testing::Each(0));
}

TEST(ImageContract, CreationResetsTheCoordinateMapAndTheDescription) {
    const auto image = NewImage<uint8_t>(2, 2);
    const TCoordinateMap map = {1, 2, {3, 4, 5, std::numeric_limits<double>::infinity()}};
    ASSERT_EQ(S_OK, image->SetCoords(map));
    TCoordinateMap read = {};
    ASSERT_EQ(S_OK, image->GetCoords(&read));
    EXPECT_EQ(0, memcmp(&map, &read, sizeof map));  // NOLINT(bugprone-suspicious-memory-comparison): bit for bit
    ASSERT_EQ(S_OK, image->put_Description(Text("polished")));
    ASSERT_EQ(S_OK, image->Create(2, 2, 1, DT_BYTE, 0));
    ASSERT_EQ(S_OK, image->GetCoords(&read));
    EXPECT_EQ(0, read.OrgX);
    EXPECT_EQ(1, read.Matrix.A11);
    EXPECT_EQ(0, read.Matrix.A12);
    EXPECT_EQ(1, read.Matrix.A22);
    Text description;
    ASSERT_EQ(S_OK, image->get_Description(description.Out()));
    EXPECT_EQ(nullptr, static_cast<BSTR>(description));
}

TEST(ImageContract, DescriptionIsCopiedAndAnOwnedStringOfTheCallerIsFreed) {
    const auto image = NewImage<uint8_t>(1, 1);
    ASSERT_EQ(S_OK, image->put_Description(Text("\xC2\xB5m \xF0\x9F\x94\xAC")));
    BSTR text = SysAllocString(OLESTR("the caller's, freed by the call"));
    ASSERT_EQ(S_OK, image->get_Description(&text));
    EXPECT_EQ("\xC2\xB5m \xF0\x9F\x94\xAC", ToUtf8({text, SysStringLen(text)}));
    text[0] = 'x';  // a copy
    ASSERT_EQ(S_OK, image->get_Description(&text));
    EXPECT_EQ(0xB5, text[0]);
    SysFreeString(text);
    ASSERT_EQ(S_OK, image->put_Description(nullptr));
    Text none;
    ASSERT_EQ(S_OK, image->get_Description(none.Out()));
    EXPECT_EQ(nullptr, static_cast<BSTR>(none));
}

TEST(ImageContract, NullOutputsAreRefusedAndNothingIsWritten) {
    const auto image = NewImage<uint8_t>(2, 2);
    LONG n = 5;
    void* base = &n;
    VPAEntry* table = nullptr;
    EXPECT_TRUE(FailsSilently(image->Dimensions(nullptr, &n, &n), E_POINTER));
    EXPECT_TRUE(FailsSilently(image->Dimensions(&n, &n, nullptr), E_POINTER));
    EXPECT_TRUE(FailsSilently(image->DataType(0, nullptr), E_POINTER));
    EXPECT_TRUE(FailsSilently(image->VPA(0, nullptr, &table), E_POINTER));
    EXPECT_TRUE(FailsSilently(image->VPA(0, &base, nullptr), E_POINTER));
    EXPECT_TRUE(FailsSilently(image->GetCoords(nullptr), E_POINTER));
    EXPECT_TRUE(FailsSilently(image->get_Description(nullptr), E_POINTER));
    EXPECT_TRUE(FailsSilently(image->CreateFromImage(nullptr, 0), E_POINTER));
    EXPECT_TRUE(FailsSilently(image->CreateFromSubImage(nullptr, 0, 0, 0, 1, 1), E_POINTER));
    EXPECT_EQ(5, n);
    EXPECT_EQ(&n, base);
}

// ------------------------------------------------------------------------------------------------------------- buffers

TEST(AttachBuffer, UsesTheClientsMemoryWithThePaddedStride) {
    alignas(4) uint16_t pixels[2][2][4] = {};  // two bands of two rows of three pixels and one of padding
    const auto image = Empty();
    ASSERT_EQ(S_OK, image->AttachBuffer(pixels, 3, 2, 2, DT_WORD, 0));
    pixels[1][1][2] = 0x1234;
    EXPECT_EQ(0x1234, Rows<uint16_t>(image, 1)[1][2]);
    ASSERT_EQ(S_OK, Cast<IImageProcess>(image)->ScalarEquals(7));
    EXPECT_EQ(7, pixels[0][0][0]);
    EXPECT_EQ(7, pixels[1][1][2]);
    EXPECT_EQ(0, pixels[0][0][3]);  // the padding is the client's
    ASSERT_EQ(S_OK, image->AttachBuffer(pixels, 3, 2, 2, DT_WORD, 1));
    EXPECT_EQ(0, pixels[1][1][2]);
    pixels[0][0][0] = 9;
    EXPECT_EQ(9, Rows<uint16_t>(image, 0)[0][0]);         // the table outlives an attachment of the same shape
    ASSERT_EQ(S_OK, image->Create(3, 2, 2, DT_WORD, 1));  // an own buffer again
    EXPECT_EQ(9, pixels[0][0][0]);
}

TEST(AttachBuffer, ChecksItsArgumentsInOrder) {
    const auto image = Empty();
    uint8_t pixels[16] = {};
    EXPECT_TRUE(Fails(image->AttachBuffer(nullptr, 0, 0, 0, DT_BYTE, 0), "IImageVPAEx::AttachBuffer: no source buffer.",
                      kImageSource, DISP_E_EXCEPTION));
    EXPECT_TRUE(Fails(image->AttachBuffer(pixels, 0, 0, 0, DT_BYTE, 0),
                      "IImageVPAEx::AttachBuffer: Width must be positive.", kImageSource, DISP_E_EXCEPTION));
    EXPECT_TRUE(Fails(image->AttachBuffer(pixels, 1, 0, 0, DT_BYTE, 0),
                      "IImageVPAEx::AttachBuffer: Height must be positive.", kImageSource, DISP_E_EXCEPTION));
    EXPECT_TRUE(Fails(image->AttachBuffer(pixels, 1, 1, 0, DT_BYTE, 0),
                      "IImageVPAEx::AttachBuffer: Bands must be positive.", kImageSource, DISP_E_EXCEPTION));
    EXPECT_TRUE(FailsSilently(image->AttachBuffer(pixels, 1, 1, 1, DT_Double, 0)));
}

TEST(AttachBuffer, RefusesMemoryThatCannotBeReadAndStaysPointingAtIt) {
    const auto image = ImageOf<uint8_t>(2, {1, 2});
    auto* const wild = reinterpret_cast<void*>(uintptr_t{0x1000});
    for (int again = 0; again < 2; ++again)
        EXPECT_TRUE(Fails(
            image->AttachBuffer(wild, 64, 64, 1, DT_BYTE, 1),
            "IImageVPAEx::AttachBuffer: the operator system indicated that buffer has as bad address for reading."));
    EXPECT_THAT(DimensionsOf(image), ElementsAre(1, 64, 64));
    EXPECT_EQ(wild, BandOf(image).base);
    auto* const last = reinterpret_cast<void*>(~uintptr_t{15});
    EXPECT_EQ(E_FAIL, image->AttachBuffer(last, 64, 1, 2, DT_BYTE, 0));
    EXPECT_EQ(reinterpret_cast<void*>(uintptr_t{64 - 16}), BandOf(image, 1).base) << "addresses begin anew";
    // Nothing of ours touches it.
    const auto process = Cast<IImageProcess>(image);
    IHistogram* histogram = nullptr;
    EXPECT_EQ(E_FAIL, process->Invert());
    EXPECT_EQ(E_FAIL, process->get_Histogram(&histogram));
    EXPECT_TRUE(
        Fails(Cast<IImageFile>(image)->SaveToFile(Text("never.png"), IFF_PNG), "IImageFile::SaveToFile: no image."));
    const auto copy = Empty();
    EXPECT_TRUE(FailsSilently(copy->CreateFromImage(image.get(), 0)));
    const auto sum = ImageOf<uint8_t>(2, {1, 2});
    EXPECT_TRUE(
        Fails(Cast<IImageProcess>(sum)->PlusEquals(image.get(), 0), "IImageProcess::PlusEquals: no source image."));
    ASSERT_EQ(S_OK, image->Create(2, 1, 1, DT_BYTE, 1));
    EXPECT_EQ(S_OK, process->Invert());
}

TEST(AttachBuffer, RefusesReadOnlyMemory) {
    static const uint8_t kConstant[4096] = {1};  // in a read-only section
    const auto image = Empty();
    EXPECT_TRUE(
        Fails(image->AttachBuffer(const_cast<uint8_t*>(kConstant), 64, 64, 1, DT_BYTE, 1),
              "IImageVPAEx::AttachBuffer: the operator system indicated that buffer has as bad address for writing."));
}

TEST(AttachBuffer, RefusesABufferThatIsTooShort) {
    std::vector<uint8_t> pixels(4096);
    const auto image = Empty();
    EXPECT_TRUE(
        Fails(image->AttachBuffer(pixels.data(), 30000, 60000, 1, DT_BYTE, 0),
              "IImageVPAEx::AttachBuffer: the operator system indicated that buffer has as bad address for reading."));
}

// -------------------------------------------------------------------------------------------------------------- copies

TEST(CreateFromImage, CopiesOneBandOrAllWithTheMapAndRefusesItself) {
    const auto source = NewImage<uint16_t>(3, 2, 3);
    for (LONG band = 0; band < 3; ++band)
        for (const auto row : Rows<uint16_t>(source, band)) std::iota(row.begin(), row.end(), uint16_t(100 * band));
    ASSERT_EQ(S_OK, source->SetCoords({5, 6, {2, 0, 0, 2}}));
    const auto copy = Empty();
    ASSERT_EQ(S_OK, copy->CreateFromImage(source.get(), 2));
    EXPECT_THAT(DimensionsOf(copy), ElementsAre(1, 3, 2));
    EXPECT_THAT(PixelsOf<uint16_t>(copy), ElementsAre(200, 201, 202, 200, 201, 202));
    TCoordinateMap map = {};
    ASSERT_EQ(S_OK, copy->GetCoords(&map));
    EXPECT_EQ(5, map.OrgX);
    EXPECT_EQ(2, map.Matrix.A22);
    ASSERT_EQ(S_OK, copy->CreateFromImage(source.get(), BI_AllBands));
    EXPECT_THAT(DimensionsOf(copy), ElementsAre(3, 3, 2));
    EXPECT_EQ(101, Rows<uint16_t>(copy, 1)[1][1]);

    EXPECT_EQ(S_FALSE, copy->CreateFromImage(copy.get(), 0));
    EXPECT_EQ(S_FALSE, copy->CreateFromImage(Cast<IImageVPA>(Cast<IImageProcess>(copy)).get(), 0));
    EXPECT_THAT(DimensionsOf(copy), ElementsAre(3, 3, 2));
}

TEST(CreateFromImage, FailsAsTheSourceDoesBeforeAnythingChanges) {
    const auto image = ImageOf<uint8_t>(2, {1, 2});
    const auto source = NewImage<uint16_t>(3, 2, 1);
    EXPECT_TRUE(Fails(image->CreateFromImage(source.get(), 1), "IImageVPA::VPA: BandIndex is out of range"));
    EXPECT_TRUE(FailsSilently(image->CreateFromImage(Empty().get(), 0)));
    EXPECT_THAT(PixelsOf<uint8_t>(image), ElementsAre(1, 2));
}

TEST(CreateFromSubImage, CopiesTheRectangleAndPlacesItInTheParent) {
    const auto source = NewImage<uint8_t>(40, 40);
    const Rows<uint8_t> rows(source);
    for (LONG y = 0; y < 40; ++y)
        for (LONG x = 0; x < 40; ++x) rows[y][static_cast<size_t>(x)] = static_cast<uint8_t>(y * 5 + x);
    ASSERT_EQ(S_OK, source->SetCoords({1, 1, {2, 0, 0, 3}}));
    const auto part = Empty();
    ASSERT_EQ(S_OK, part->CreateFromSubImage(source.get(), 0, 10, 20, 19, 29));
    EXPECT_THAT(DimensionsOf(part), ElementsAre(1, 10, 10));
    EXPECT_EQ(20 * 5 + 10, Rows<uint8_t>(part)[0][0]);
    EXPECT_EQ(uint8_t(29 * 5 + 19), Rows<uint8_t>(part)[9][9]);
    TCoordinateMap map = {};
    ASSERT_EQ(S_OK, part->GetCoords(&map));
    EXPECT_EQ(-10, map.OrgX);
    EXPECT_EQ(-20, map.OrgY);
    EXPECT_EQ(3, map.Matrix.A22);
}

TEST(CreateFromSubImage, CropsTheImageItselfInPlace) {
    const auto image = ImageOf<uint8_t>(4, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11});
    ASSERT_EQ(S_OK, image->CreateFromSubImage(image.get(), BI_AllBands, 1, 1, 2, 2));
    EXPECT_THAT(PixelsOf<uint8_t>(image), ElementsAre(5, 6, 9, 10));
}

TEST(CreateFromSubImage, ReadsTheMirroredMarginAndRefusesToGoBeyondIt) {
    const auto source = ImageOf<uint8_t>(3, {1, 2, 3, 4, 5, 6});
    const auto part = Empty();
    ASSERT_EQ(S_OK, part->CreateFromSubImage(source.get(), 0, -2, -1, 4, 2));
    EXPECT_THAT(PixelsOf<uint8_t>(part), ElementsAre(6, 5, 4, 5, 6, 5, 4,  //
                                                     3, 2, 1, 2, 3, 2, 1,  //
                                                     6, 5, 4, 5, 6, 5, 4,  //
                                                     3, 2, 1, 2, 3, 2, 1));
    ASSERT_EQ(S_OK, part->CreateFromSubImage(source.get(), 0, -200, -200, 202, 201));
    const char* const text = "IImageVPAEx::CreateFromSubImage: the rectangle is too far outside the image.";
    const LONG outside[][4] = {
        {-201, 0, 1, 1}, {0, -201, 1, 1}, {0, 0, 203, 1}, {0, 0, 1, 202}, {kMinimum, kMinimum, kMaximum, kMaximum}};
    for (const auto& r : outside)
        EXPECT_TRUE(Fails(part->CreateFromSubImage(source.get(), 0, r[0], r[1], r[2], r[3]), text, kImageSource,
                          DISP_E_EXCEPTION));
    EXPECT_TRUE(Fails(part->CreateFromSubImage(source.get(), 0, 2, 0, 1, 1),
                      "IImageVPAEx::Create: Width must be positive.", kImageSource, DISP_E_EXCEPTION));
    EXPECT_TRUE(Fails(part->CreateFromSubImage(source.get(), 0, 0, kMaximum, 1, kMinimum),
                      "IImageVPAEx::Create: Height must be positive.", kImageSource, DISP_E_EXCEPTION));
    EXPECT_THAT(DimensionsOf(part), ElementsAre(1, 403, 402));
}

// ------------------------------------------------------------------------------------------ images of other components

TEST(ForeignImages, AreReadThroughTheirTable) {
    // Red, green, blue side by side, bottom row first: band 1 of a 2 x 2 picture.
    uint8_t interleaved[2][2][3] = {{{1, 2, 3}, {4, 5, 6}}, {{7, 8, 9}, {10, 11, 12}}};
    const auto foreign = MakeCounted<ForeignImage>();
    foreign->width = foreign->height = 2;
    foreign->base = &interleaved[0][0][1];
    foreign->SetOffsets([](LONG x) { return 3 * x; }, [](LONG y) { return 6 * (1 - y); });
    const auto image = Empty();
    ASSERT_EQ(S_OK, image->CreateFromImage(foreign.get(), 0));
    EXPECT_THAT(PixelsOf<uint8_t>(image), ElementsAre(8, 11, 2, 5));
    const auto process = Cast<IImageProcess>(image);
    ASSERT_EQ(S_OK, process->PlusEquals(foreign.get(), 0));
    EXPECT_THAT(PixelsOf<uint8_t>(image), ElementsAre(16, 22, 4, 10));
    ASSERT_EQ(S_OK, image->CreateFromSubImage(foreign.get(), 0, 1, -1, 2, 0));
    EXPECT_THAT(PixelsOf<uint8_t>(image), ElementsAre(5, 2, 11, 8));
    TCoordinateMap map = {};
    ASSERT_EQ(S_OK, image->GetCoords(&map));
    EXPECT_EQ(2, map.Matrix.A12);
    EXPECT_EQ(1u, ReferencesOf(foreign.get()));
}

TEST(ForeignImages, ThatLieOrFailLeaveTheImageAsItWas) {
    alignas(4) uint8_t pixels[64] = {};
    const auto image = ImageOf<uint8_t>(2, {1, 2});
    const auto process = Cast<IImageProcess>(image);
    struct Case {
        const char* what;
        std::function<void(ForeignImage&)> spoil;
    };
    const Case cases[] = {
        {"dimensions fail", [](ForeignImage& f) { f.dimensionsResult = E_NOTIMPL; }},
        {"type fails", [](ForeignImage& f) { f.typeResult = E_OUTOFMEMORY; }},
        {"pixels fail", [](ForeignImage& f) { f.vpaResult = E_UNEXPECTED; }},
        {"no pixels", [](ForeignImage& f) { f.vpaResult = S_FALSE, f.base = nullptr; }},
        {"null base", [](ForeignImage& f) { f.base = nullptr; }},
        {"null table", [](ForeignImage& f) { f.nullTable = true; }},
        {"a base where no pixel is",
         [](ForeignImage& f) { f.type = DT_WORD, f.base = static_cast<uint8_t*>(f.base) + 1; }},
        {"zero width", [](ForeignImage& f) { f.width = 0; }},
        {"negative height", [](ForeignImage& f) { f.height = kMinimum; }},
        {"no bands", [](ForeignImage& f) { f.bands = 0; }},
        {"a size that changes", [](ForeignImage& f) { f.growAfterVpa = 1; }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const auto foreign = MakeCounted<ForeignImage>();
        foreign->width = foreign->height = 4;
        foreign->base = pixels;
        foreign->SetOffsets([](LONG x) { return x; }, [](LONG y) { return 4 * y; });
        c.spoil(*foreign);
        EXPECT_EQ(E_FAIL, image->CreateFromImage(foreign.get(), 0));
        EXPECT_EQ(E_FAIL, image->CreateFromSubImage(foreign.get(), 0, 0, 0, 1, 0));
        EXPECT_EQ(E_FAIL, process->CastEquals(foreign.get(), 0));
        EXPECT_THAT(PixelsOf<uint8_t>(image), ElementsAre(1, 2));
    }
}

TEST(ForeignImages, MayCallBackIntoTheImageThatReadsThem) {
    uint8_t pixels[4] = {1, 2, 3, 4};
    const auto foreign = MakeCounted<ForeignImage>();
    foreign->width = foreign->height = 2;
    foreign->base = pixels;
    foreign->SetOffsets([](LONG x) { return x; }, [](LONG y) { return 2 * y; });
    const auto image = NewImage<uint8_t>(64, 64);
    foreign->onVpa = [&] { Check(image->Create(1, 1, 1, DT_Float, 1)); };
    EXPECT_EQ(S_OK, Cast<IImageProcess>(image)->PlusEquals(foreign.get(), 0)) << "to the bytes that were there";
    EXPECT_THAT(PixelsOf<float>(image), ElementsAre(0.0f));
    ASSERT_EQ(S_OK, image->CreateFromImage(foreign.get(), 0));
    EXPECT_THAT(PixelsOf<uint8_t>(image), ElementsAre(1, 2, 3, 4));
}

}  // namespace
}  // namespace orlix::testing
