// The image object as its clients see it: creation, pixels, coordinate map, copies. The layout of pixels is tested in
// tests/image.

#include <gmock/gmock.h>

#include "contract/support.hpp"

namespace orlix::testing {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

using Size = std::tuple<LONG, LONG, LONG>;  // bands, width, height

std::string FailureOfBuffer(const char* what) {
    return std::string("IImageVPAEx::AttachBuffer: the operator system indicated that buffer has as bad address for ") +
           what + ".";
}

// What the layout is for other sizes is tested in tests/image.
TEST(ImageContract, RowsArePaddedToFourBytesAndTheTableMirrors) {
    const auto image = NewImage<uint8_t>(5, 3);
    {
        const auto [base, table] = Get(image, &IImageVPA::VPA, 0);
        for (const auto& [i, x] : {std::pair{0, 0}, {4, 4}, {-1, 1}, {5, 3}, {-200, 0}, {204, 4}})  // 200 = 25 * 8
            EXPECT_EQ(x, table[i].XEntry) << i;
        for (const auto& [i, y] : {std::pair{0, 0}, {2, 2}, {-1, 1}, {3, 1}, {-200, 0}, {202, 2}})  // 200 = 50 * 4
            EXPECT_EQ(8 * y, table[i].YEntry) << i;
        for (int i = 0; i < 24; ++i) EXPECT_EQ(0, static_cast<uint8_t*>(base)[i]);
    }
    ASSERT_EQ(S_OK, image->Create(3, 2, 2, DT_WORD, 1));
    const auto [first, table] = Get(image, &IImageVPA::VPA, 0);
    EXPECT_EQ(4, table[1].YEntry);  // samples, not bytes
    EXPECT_EQ(16, static_cast<char*>(std::get<0>(Get(image, &IImageVPA::VPA, 1))) - static_cast<char*>(first));
    for (const LONG band : {LONG{-1}, LONG{2}, kLeast, kMost}) {
        void* base = image.get();
        VPAEntry* entries = table;
        EXPECT_TRUE(Raises(image->VPA(band, &base, &entries), "IImageVPA::VPA: BandIndex is out of range"));
        EXPECT_TRUE(base == nullptr && entries == nullptr);
    }
    EXPECT_EQ(DT_WORD, Get(image, &IImageVPA::DataType, 99)) << "all bands share the type";
}

TEST(ImageContract, CreateChecksItsArgumentsInOrderAndKeepsTheImage) {
    const auto image = ImageOf<uint8_t>(3, {1, 2, 3});
    const struct {
        LONG width, height, bands;
        const char* text;
    } cases[] = {{0, 0, 0, "Width"}, {kLeast, 1, 1, "Width"}, {1, -1, 0, "Height"}, {1, 1, 0, "Bands"}};
    uint8_t pixels[16] = {};
    EXPECT_TRUE(
        Raises(image->AttachBuffer(nullptr, 0, 0, 0, DT_BYTE, 0), "IImageVPAEx::AttachBuffer: no source buffer."));
    for (const auto& [width, height, bands, what] : cases) {
        const std::string text = std::string(": ") + what + " must be positive.";
        EXPECT_TRUE(Raises(image->Create(width, height, bands, DT_BYTE, 1), "IImageVPAEx::Create" + text));
        EXPECT_TRUE(
            Raises(image->AttachBuffer(pixels, width, height, bands, DT_BYTE, 0), "IImageVPAEx::AttachBuffer" + text));
    }
    // Sizes that no memory holds.
    for (const LONG type : {DT_BYTE, DT_WORD, DT_Float}) {
        EXPECT_TRUE(FailsSilently(image->Create(kMost, kMost, 1, type, 0)));
        EXPECT_TRUE(FailsSilently(image->Create(kMost, kMost, kMost, type, 0)));
        EXPECT_TRUE(FailsSilently(image->Create(65536, 65536, 1, type, 0)));  // row offsets beyond 32 bits
        EXPECT_TRUE(FailsSilently(image->Create(32768, 32768, kMost, type, 0)));
    }
    EXPECT_THAT(image.values(), ElementsAre(1, 2, 3));
    EXPECT_TRUE(FailsSilently(image->AttachBuffer(pixels, 1, 1, 1, DT_Double, 0)));
}

TEST(ImageContract, WithoutATypeRefusesTheRestSilently) {
    for (const LONG type : {LONG{DT_Double}, LONG{DT_Char}, LONG{DT_Short}, LONG{DT_Long}, LONG{0}, LONG{7}, LONG{-1},
                            LONG{24}, kLeast, kMost}) {
        const auto image = NewImage<uint8_t>(2, 2);
        EXPECT_TRUE(FailsSilently(image->Create(2, 2, 1, type, 1))) << type;
        EXPECT_EQ(Size(0, 0, 0), image.size());
        LONG got = 77;
        void* base = &got;
        VPAEntry* table = reinterpret_cast<VPAEntry*>(&got);
        TCoordinateMap map = {};
        BSTR text = nullptr;
        for (const HRESULT result :
             {image->DataType(0, &got), image->VPA(0, &base, &table), image->GetCoords(&map), image->SetCoords(map),
              image->get_Description(&text), image->put_Description(text)})
            EXPECT_TRUE(FailsSilently(result));
        EXPECT_EQ(77, got);
        EXPECT_TRUE(base == nullptr && table == nullptr);
    }
    // A refused creation of another type leaves an empty image of that type.
    const auto image = NewImage<uint8_t>(2, 2);
    EXPECT_TRUE(Raises(image->Create(0, 2, 1, DT_WORD, 1), "IImageVPAEx::Create: Width must be positive."));
    EXPECT_EQ(Size(0, 0, 0), image.size());
    EXPECT_EQ(DT_WORD, Get(image, &IImageVPA::DataType, 0));
    void* base = image.get();
    VPAEntry* table = nullptr;
    EXPECT_EQ(S_FALSE, image->VPA(0, &base, &table));
    EXPECT_EQ(nullptr, base);
}

TEST(ImageContract, CreationKeepsSamplesUnlessAskedAndResetsMapAndDescription) {
    const auto image = ImageOf<uint8_t>(4, {1, 2, 3, 4, 5, 6, 7, 8});
    const TCoordinateMap map = {1, 2, {3, 4, 5, kInfinity}};
    ASSERT_EQ(S_OK, image->SetCoords(map));
    EXPECT_EQ(Entries(map), Entries(Get(image, &IImageVPA::GetCoords)));
    ASSERT_EQ(S_OK, image->put_Description(Text("polished")));
    ASSERT_EQ(S_OK, image->Create(4, 2, 1, DT_BYTE, 0));
    EXPECT_EQ((std::vector<double>{0, 0, 1, 0, 0, 1}), Entries(Get(image, &IImageVPA::GetCoords)));
    EXPECT_EQ("(null)", TextOf(image, &IImageVPAExPlus::get_Description));
    EXPECT_THAT(image.values(), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8));
    ASSERT_EQ(S_OK, image->Create(4, 3, 1, DT_BYTE, 0));
    EXPECT_THAT(image.values(), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 0, 0, 0, 0));
    ASSERT_EQ(S_OK, image->Create(4, 3, 1, DT_BYTE, 1));
    EXPECT_THAT(image.values(), Each(0));
}

TEST(ImageContract, DescriptionIsCopiedAndAnOwnedStringOfTheCallerIsFreed) {
    const auto image = NewImage<uint8_t>(1, 1);
    ASSERT_EQ(S_OK, image->put_Description(Text("\xC2\xB5m \xF0\x9F\x94\xAC")));
    BSTR text = SysAllocString(OLESTR("the caller's, freed by the call"));
    ASSERT_EQ(S_OK, image->get_Description(&text));
    text[0] = 'x';  // a copy
    SysFreeString(text);
    EXPECT_EQ("\xC2\xB5m \xF0\x9F\x94\xAC", TextOf(image, &IImageVPAExPlus::get_Description));
    ASSERT_EQ(S_OK, image->put_Description(nullptr));
    EXPECT_EQ("(null)", TextOf(image, &IImageVPAExPlus::get_Description));
}

// ------------------------------------------------------------------------------------------------------------- buffers

TEST(AttachBuffer, UsesTheClientsMemoryWithThePaddedStride) {
    alignas(4) uint16_t pixels[2][2][4] = {};  // two bands of two rows of three pixels and one of padding
    const Image image;
    ASSERT_EQ(S_OK, image->AttachBuffer(pixels, 3, 2, 2, DT_WORD, 0));
    pixels[1][1][2] = 0x1234;
    EXPECT_EQ(0x1234, Rows<uint16_t>(image, 1)[1][2]);
    ASSERT_EQ(S_OK, image.process->ScalarEquals(7));
    EXPECT_TRUE(pixels[0][0][0] == 7 && pixels[1][1][2] == 7);
    EXPECT_EQ(0, pixels[0][0][3]);  // the padding is the client's
    ASSERT_EQ(S_OK, image->AttachBuffer(pixels, 3, 2, 2, DT_WORD, 1));
    EXPECT_EQ(0, pixels[1][1][2]);
    pixels[0][0][0] = 9;
    EXPECT_EQ(9, Rows<uint16_t>(image, 0)[0][0]);         // the table outlives an attachment of the same shape
    ASSERT_EQ(S_OK, image->Create(3, 2, 2, DT_WORD, 1));  // an own buffer again
    EXPECT_EQ(9, pixels[0][0][0]);
}

TEST(AttachBuffer, RefusesMemoryThatCannotBeReadAndStaysPointingAtIt) {
    const auto image = ImageOf<uint8_t>(2, {1, 2});
    auto* const wild = reinterpret_cast<void*>(uintptr_t{0x1000});
    for (int again = 0; again < 2; ++again)
        EXPECT_TRUE(Fails(image->AttachBuffer(wild, 64, 64, 1, DT_BYTE, 1), FailureOfBuffer("reading")));
    EXPECT_EQ(Size(1, 64, 64), image.size());
    EXPECT_EQ(wild, std::get<0>(Get(image, &IImageVPA::VPA, 0)));
    auto* const last = reinterpret_cast<void*>(~uintptr_t{15});
    EXPECT_EQ(E_FAIL, image->AttachBuffer(last, 64, 1, 2, DT_BYTE, 0));
    EXPECT_EQ(reinterpret_cast<void*>(uintptr_t{64 - 16}), std::get<0>(Get(image, &IImageVPA::VPA, 1)))
        << "addresses begin anew";
    // Nothing of ours touches it.
    IHistogram* histogram = nullptr;
    EXPECT_EQ(E_FAIL, image.process->Invert());
    EXPECT_EQ(E_FAIL, image.process->get_Histogram(&histogram));
    EXPECT_TRUE(Fails(image.file->SaveToFile(Text("never.png"), IFF_PNG), "IImageFile::SaveToFile: no image."));
    EXPECT_TRUE(FailsSilently(Image()->CreateFromImage(image.get(), 0)));
    EXPECT_TRUE(Fails(ImageOf<uint8_t>(2, {1, 2}).process->PlusEquals(image.get(), 0),
                      "IImageProcess::PlusEquals: no source image."));
    ASSERT_EQ(S_OK, image->Create(2, 1, 1, DT_BYTE, 1));
    EXPECT_EQ(S_OK, image.process->Invert());
}

TEST(AttachBuffer, RefusesMemoryThatIsTooShortOrReadOnly) {
    static const uint8_t kConstant[4096] = {1};  // in a read-only section
    EXPECT_TRUE(Fails(Image()->AttachBuffer(const_cast<uint8_t*>(kConstant), 64, 64, 1, DT_BYTE, 1),
                      FailureOfBuffer("writing")));
    std::vector<uint8_t> pixels(4096);
    EXPECT_TRUE(Fails(Image()->AttachBuffer(pixels.data(), 30000, 60000, 1, DT_BYTE, 0), FailureOfBuffer("reading")));
}

// The buffer would be given back in the moment in which it is attached.
TEST(AttachBuffer, RefusesTheImagesOwnPixels) {
    for (const LONG type : {DT_BYTE, DT_WORD, DT_Float})
        for (const ptrdiff_t offset : {0, 64, 4096 - 4, -4}) {
            const auto image = NewImage<uint16_t>(64, 32);
            void* const buffer = reinterpret_cast<char*>(Rows<uint16_t>(image)[0].data()) + offset;
            EXPECT_TRUE(Fails(image->AttachBuffer(buffer, 16, 1, 1, type, 1), FailureOfBuffer("reading")))
                << type << " " << offset;
            EXPECT_TRUE(Fails(image.process->Invert(), "IImageProcess::Invert: no image."));
            ASSERT_EQ(S_OK, image->Create(4, 1, 1, type, 1));
            EXPECT_EQ(S_OK, image.process->Invert());
        }
}

// -------------------------------------------------------------------------------------------------------------- copies

TEST(CreateFromImage, CopiesOneBandOrAllWithTheMapAndRefusesItself) {
    const auto source = NewImage<uint16_t>(3, 2, 3);
    for (LONG band = 0; band < 3; ++band) source.Fill([=](LONG x, LONG) { return 100 * band + x; }, band);
    ASSERT_EQ(S_OK, source->SetCoords({5, 6, {2, 0, 0, 2}}));
    const TypedImage<uint16_t> copy;
    ASSERT_EQ(S_OK, copy->CreateFromImage(source.get(), 2));
    EXPECT_EQ(Size(1, 3, 2), copy.size());
    EXPECT_THAT(copy.values(), ElementsAre(200, 201, 202, 200, 201, 202));
    EXPECT_EQ((std::vector<double>{5, 6, 2, 0, 0, 2}), Entries(Get(copy, &IImageVPA::GetCoords)));
    ASSERT_EQ(S_OK, copy->CreateFromImage(source.get(), BI_AllBands));
    EXPECT_EQ(Size(3, 3, 2), copy.size());
    EXPECT_EQ(101, copy.values(1)[4]);

    EXPECT_EQ(S_FALSE, copy->CreateFromImage(copy.get(), 0));
    EXPECT_EQ(S_FALSE, copy->CreateFromImage(Cast<IImageVPA>(copy.process).get(), 0));
    EXPECT_TRUE(
        Fails(copy->CreateFromImage(NewImage<uint8_t>(1, 1).get(), 1), "IImageVPA::VPA: BandIndex is out of range"));
    EXPECT_TRUE(FailsSilently(copy->CreateFromImage(Image().get(), 0)));
    EXPECT_EQ(Size(3, 3, 2), copy.size());
}

// The memory stays, and everything else begins anew.
TEST(CreateFromImage, OverwritesAnImageOfTheSameKind) {
    constexpr LONG width = 303, height = 300, stride = 304;
    const auto source = NewImage<uint8_t>(width, height), copy = NewImage<uint8_t>(width, height);
    source.Fill([](LONG x, LONG y) { return 7 * x + 11 * y + x * y % 5; });
    const std::vector<uint8_t> pixels = source.values();
    const auto [base, table] = Get(copy, &IImageVPA::VPA, 0);
    const auto* const bytes = static_cast<const uint8_t*>(base);
    std::memset(base, 0xff, stride * height);  // with the padding of all rows
    table[-1].XEntry = table[1].YEntry = 77;
    ASSERT_EQ(S_OK, copy->SetCoords({5, 5, {2, 0, 0, 2}}));
    const auto file = Cast<IImageFile>(copy.process);
    ASSERT_EQ(S_OK, file->PutMicronsPerPixel(3, 3));
    ASSERT_EQ(S_OK, copy->CreateFromImage(source.get(), 0));
    EXPECT_EQ(base, std::get<0>(Get(copy, &IImageVPA::VPA, 0)));
    EXPECT_EQ(pixels, copy.values());
    for (LONG y = 0; y < height; ++y) ASSERT_EQ(0, bytes[y * stride + width]);
    EXPECT_EQ(1, std::get<1>(Get(copy, &IImageVPA::VPA, 0))[-1].XEntry);
    EXPECT_EQ(stride, std::get<1>(Get(copy, &IImageVPA::VPA, 0))[1].YEntry);
    EXPECT_EQ((std::vector<double>{0, 0, 1, 0, 0, 1}), Entries(Get(copy, &IImageVPA::GetCoords)));
    double sizeX = 1, sizeY = 1;
    EXPECT_EQ(S_FALSE, file->GetMicronsPerPixel(&sizeX, &sizeY));
    // Samples that lie in the image itself: its rows from 1 on, then its columns; the last ones are mirrored.
    const TypedImage<uint8_t> view;
    ASSERT_EQ(S_OK, view->AttachBuffer(static_cast<uint8_t*>(base) + stride, width, height - 1, 1, DT_BYTE, 0));
    ASSERT_EQ(S_OK, copy->CreateFromSubImage(view.get(), 0, 0, 0, width - 1, height - 1));
    ASSERT_EQ(S_OK, copy->CreateFromSubImage(copy.get(), 0, 1, 0, width, height - 1));
    for (LONG y = 0; y < height; ++y)
        for (LONG x = 0; x < width; ++x)
            ASSERT_EQ(source.at(x < width - 1 ? x + 1 : width - 2, y < height - 1 ? y + 1 : height - 2), copy.at(x, y));
}

TEST(CreateFromSubImage, CopiesTheRectangleAndPlacesItInTheParent) {
    const auto source = ImageOf<uint8_t>(4, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11});
    ASSERT_EQ(S_OK, source->SetCoords({1, 1, {2, 0, 0, 3}}));
    const TypedImage<uint8_t> part;
    ASSERT_EQ(S_OK, part->CreateFromSubImage(source.get(), 0, 2, 1, 3, 2));
    EXPECT_THAT(part.values(), ElementsAre(6, 7, 10, 11));
    EXPECT_EQ((std::vector<double>{-2, -1, 2, 0, 0, 3}), Entries(Get(part, &IImageVPA::GetCoords)));
    // The image itself is cropped in place.
    ASSERT_EQ(S_OK, source->CreateFromSubImage(source.get(), BI_AllBands, 1, 1, 2, 2));
    EXPECT_THAT(source.values(), ElementsAre(5, 6, 9, 10));
}

TEST(CreateFromSubImage, ReadsTheMirroredMarginAndRefusesToGoBeyondIt) {
    const auto source = ImageOf<uint8_t>(3, {1, 2, 3, 4, 5, 6});
    const TypedImage<uint8_t> part;
    ASSERT_EQ(S_OK, part->CreateFromSubImage(source.get(), 0, -2, -1, 4, 0));
    EXPECT_THAT(part.values(), ElementsAre(6, 5, 4, 5, 6, 5, 4, 3, 2, 1, 2, 3, 2, 1));
    ASSERT_EQ(S_OK, part->CreateFromSubImage(source.get(), 0, -200, -200, 202, 201));
    for (const auto& [left, top, right, bottom] : {std::array<LONG, 4>{-201, 0, 1, 1},
                                                   {0, -201, 1, 1},
                                                   {0, 0, 203, 1},
                                                   {0, 0, 1, 202},
                                                   {kLeast, kLeast, kMost, kMost}})
        EXPECT_TRUE(Raises(part->CreateFromSubImage(source.get(), 0, left, top, right, bottom),
                           "IImageVPAEx::CreateFromSubImage: the rectangle is too far outside the image."));
    EXPECT_TRUE(
        Raises(part->CreateFromSubImage(source.get(), 0, 2, 0, 1, 1), "IImageVPAEx::Create: Width must be positive."));
    EXPECT_TRUE(Raises(part->CreateFromSubImage(source.get(), 0, 0, kMost, 1, kLeast),
                       "IImageVPAEx::Create: Height must be positive."));
    EXPECT_EQ(Size(1, 403, 402), part.size());
}

// ------------------------------------------------------------------------------------------ images of other components

TEST(ForeignImages, AreReadThroughTheirTable) {
    // Red, green, blue side by side, bottom row first: band 1 of a 2 x 2 picture.
    uint8_t interleaved[2][2][3] = {{{1, 2, 3}, {4, 5, 6}}, {{7, 8, 9}, {10, 11, 12}}};
    const auto foreign = ForeignImage::Of(2, 2, DT_BYTE, &interleaved[0][0][1]);
    foreign->SetOffsets([](LONG x) { return 3 * x; }, [](LONG y) { return 6 * (1 - y); });
    const TypedImage<uint8_t> image;
    ASSERT_EQ(S_OK, image->CreateFromImage(foreign.get(), 0));
    EXPECT_THAT(image.values(), ElementsAre(8, 11, 2, 5));
    ASSERT_EQ(S_OK, image.process->PlusEquals(foreign.get(), 0));
    EXPECT_THAT(image.values(), ElementsAre(16, 22, 4, 10));
    ASSERT_EQ(S_OK, image->CreateFromSubImage(foreign.get(), 0, 1, -1, 2, 0));
    EXPECT_THAT(image.values(), ElementsAre(5, 2, 11, 8));
    EXPECT_EQ(2, Get(image, &IImageVPA::GetCoords).Matrix.A12);
    EXPECT_EQ(1u, ReferencesOf(foreign.get()));
}

TEST(ForeignImages, MayCallBackIntoTheImageThatReadsThem) {
    uint8_t pixels[4] = {1, 2, 3, 4};
    const auto foreign = ForeignImage::Of(2, 2, DT_BYTE, pixels);
    const auto image = NewImage<uint8_t>(64, 64);
    foreign->onVpa = [&] { Check(image->Create(1, 1, 1, DT_Float, 1)); };
    EXPECT_EQ(S_OK, image.process->PlusEquals(foreign.get(), 0)) << "to the bytes that were there";
    EXPECT_THAT(PixelsOf<float>(image), ElementsAre(0.0f));
    ASSERT_EQ(S_OK, image->CreateFromImage(foreign.get(), 0));
    EXPECT_THAT(image.values(), ElementsAre(1, 2, 3, 4));
}

}  // namespace
}  // namespace orlix::testing
