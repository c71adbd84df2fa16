// Device-independent bitmaps: their memory, and what becomes of them as images, pictures, packed copies and files.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "contract/device_canvas.hpp"
#include "contract/support.hpp"

namespace orlix::testing {
namespace {

constexpr const char* kBufferSource = "Orlix.OrlixBuffer.1";
constexpr LONG kDepths[] = {1, 4, 8, 16, 24, 32};

using Octets = std::vector<uint8_t>;

::testing::AssertionResult BufferFails(HRESULT result, const std::string& text) {
    return Fails(result, text, kBufferSource);
}

struct Buffer : ComPtr<IDIBImage> {
    ComPtr<IImageVPA> image;
    ComPtr<IPictureExZoom> zoom;
    ComPtr<IPictureMemory> memory;

    Buffer() : ComPtr<IDIBImage>(CreateObject<IDIBImage>("Orlix.OrlixBuffer")) {
        image = Cast<IImageVPA>(*this);
        zoom = Cast<IPictureExZoom>(*this);
        memory = Cast<IPictureMemory>(*this);
    }
    Buffer(LONG width, LONG height, LONG bits) : Buffer() { Check((*this)->Create(width, height, bits), *this); }

    std::tuple<LONG, LONG, LONG> format() const { return Get(*this, &IDIBImage::GetFormat); }
    // The row in memory, from the first one on.
    uint8_t* row(LONG stored) const {
        const auto [bits, stride] = Get(*this, &IDIBImage::GetBits);
        return static_cast<uint8_t*>(bits) + static_cast<ptrdiff_t>(stride) * stored;
    }
    // Of the pixels, without the padding of the last row.
    size_t size() const {
        const auto [width, height, bits] = format();
        return static_cast<size_t>(std::get<1>(Get(*this, &IDIBImage::GetBits)) * (std::abs(height) - 1) +
                                   (width * bits + 7) / 8);
    }
    // Bytes that do not repeat soon.
    void FillWithNoise() const {
        uint32_t state = 12345;
        for (size_t i = 0; i < size(); ++i)
            row(0)[i] = static_cast<uint8_t>((state = state * 1664525 + 1013904223) >> 24);
    }
    void FillPalette() const {
        for (LONG i = 0; i < Get(*this, &IDIBImage::get_NumberOfColors); ++i)
            Check((*this)->put_ColorTable(i, static_cast<OLE_COLOR>(i * 0x030201 + 0x102030) & 0xffffff), *this);
    }
    Octets Packed(LONG header = 40) const {
        LONG needed = 0;
        EXPECT_EQ(S_FALSE, (*this)->GetPacked(header, 0, nullptr, &needed));
        Octets bytes(static_cast<size_t>(needed));
        EXPECT_EQ(S_OK, (*this)->GetPacked(header, needed, bytes.data(), &needed));
        return bytes;
    }
    HRESULT Put(Octets bytes) const { return (*this)->PutPacked(static_cast<LONG>(bytes.size()), bytes.data()); }
};

TypedImage<uint8_t> ImageFrom(const Buffer& buffer) {
    return TypedImage<uint8_t>(Cast<IImageVPAExPlus>(Get(buffer, &IDIBImage::CreateImage)));
}

void PutNumber(Octets& bytes, size_t at, uint32_t number) {
    for (size_t i = 0; i < 4; ++i) bytes[at + i] = static_cast<uint8_t>(number >> 8 * i);
}

// A packed bitmap: header, `between`, pixels.
Octets PackedOf(LONG width, LONG height, LONG bits, uint32_t compression, const Octets& between, const Octets& pixels,
                uint32_t colors = 0) {
    Octets bytes(40);
    PutNumber(bytes, 0, 40);
    PutNumber(bytes, 4, static_cast<uint32_t>(width));
    PutNumber(bytes, 8, static_cast<uint32_t>(height));
    bytes[12] = 1;
    bytes[14] = static_cast<uint8_t>(bits);
    PutNumber(bytes, 16, compression);
    PutNumber(bytes, 32, colors);
    bytes.insert(bytes.end(), between.begin(), between.end());
    bytes.insert(bytes.end(), pixels.begin(), pixels.end());
    return bytes;
}

TEST(Buffer, HasNothingAtFirst) {
    const Buffer buffer;
    EXPECT_EQ(std::tuple(0, 0, 0), buffer.format());
    EXPECT_EQ(nullptr, Get(buffer, &IDIBImage::get_Header));
    EXPECT_EQ((std::tuple<void*, LONG>(nullptr, 0)), Get(buffer, &IDIBImage::GetBits));
    EXPECT_EQ(0, Get(buffer, &IDIBImage::get_NumberOfColors));
    EXPECT_EQ(0, Get(buffer.zoom, &IPictureEx::get_Width));
    double x = 1, y = 1;
    LONG needed = 1;
    OLE_COLOR color = 1;
    IImageVPAEx* image = reinterpret_cast<IImageVPAEx*>(&needed);
    EXPECT_TRUE(BufferFails(buffer->GetMicronsPerPixel(&x, &y), "IDIBImage::GetMicronsPerPixel: no image."));
    EXPECT_TRUE(BufferFails(buffer->PutMicronsPerPixel(1, 1), "IDIBImage::PutMicronsPerPixel: no image."));
    EXPECT_TRUE(BufferFails(buffer->GetPacked(40, 0, nullptr, &needed), "IDIBImage::GetPacked: no image."));
    EXPECT_TRUE(BufferFails(buffer->CreateImage(&image), "IDIBImage::CreateImage: no image."));
    EXPECT_EQ(nullptr, image);
    EXPECT_TRUE(BufferFails(buffer->get_ColorTable(0, &color), "IDIBImage::get_ColorTable: no image."));
    EXPECT_TRUE(BufferFails(buffer->SaveToFile(Text("a.bmp")), "IDIBImage::SaveToFile: no image."));
    unsigned pixel = 7;
    SPictureMemory memory = {&pixel, 1, 1, 1, RS_Nearest};
    EXPECT_TRUE(BufferFails(buffer.memory->RenderToMemory(&memory, 0, 0, 1, 1), "IPictureEx::Render: No image."));
}

TEST(Buffer, IsCreatedInEveryDepthWithAGreyPalette) {
    const Buffer buffer;
    for (const LONG bits : kDepths)
        for (const LONG height : {3, -3}) {
            SCOPED_TRACE(::testing::Message() << bits << ' ' << height);
            ASSERT_EQ(S_OK, buffer->Create(9, height, bits));
            EXPECT_EQ(std::tuple(9, height, bits), buffer.format());
            const LONG stride = bits == 1 ? 4 : bits == 4 ? 8 : bits == 8 ? 12 : bits == 16 ? 20 : bits == 24 ? 28 : 36;
            EXPECT_EQ(stride, std::get<1>(Get(buffer, &IDIBImage::GetBits)));
            const LONG colors = bits <= 8 ? 1 << bits : 0;
            EXPECT_EQ(colors, Get(buffer, &IDIBImage::get_NumberOfColors));
            const auto* const header = static_cast<const uint8_t*>(Get(buffer, &IDIBImage::get_Header));
            EXPECT_EQ(header + 40 + 4 * colors, buffer.row(0)) << "packed";
            Octets wanted = PackedOf(9, height, bits, 0, {}, {}, static_cast<uint32_t>(colors));
            PutNumber(wanted, 20, static_cast<uint32_t>(3 * stride));
            EXPECT_EQ(wanted, Octets(header, header + 40));
            for (LONG i = 0; i < colors; ++i)
                EXPECT_EQ(static_cast<OLE_COLOR>(255 * i / (colors - 1)) * 0x010101,
                          Get(buffer, &IDIBImage::get_ColorTable, i));
            EXPECT_TRUE(std::all_of(buffer.row(0), buffer.row(3), [](uint8_t byte) { return byte == 0; }));
        }
    const std::string name = "IDIBImage::Create: ",
                      depth = "the bitmap must have 1, 4, 8, 16, 24 or 32 bits per pixel.";
    EXPECT_TRUE(BufferFails(buffer->Create(0, 0, 0), name + "Width must be positive."));
    EXPECT_TRUE(BufferFails(buffer->Create(kLeast, 1, 8), name + "Width must be positive."));
    EXPECT_TRUE(BufferFails(buffer->Create(1, 0, 0), name + "Height must not be 0."));
    for (const LONG bits : {LONG{0}, LONG{2}, LONG{9}, LONG{-8}, kMost})
        EXPECT_TRUE(BufferFails(buffer->Create(1, 1, bits), name + depth));
    for (const auto& [width, height, bits] :
         {std::array<LONG, 3>{1, kLeast, 1}, {kMost, kMost, 32}, {1 << 16, 1 << 15, 8}, {kMost, 1, 32}})
        EXPECT_TRUE(BufferFails(buffer->Create(width, height, bits), name + "the bitmap is too large."));
    EXPECT_EQ(std::tuple(9, -3, 32), buffer.format());
    OLE_COLOR color = 0;
    ASSERT_EQ(S_OK, buffer->Create(1, 1, 4));
    for (const LONG entry : {-1, 16}) {
        EXPECT_TRUE(
            BufferFails(buffer->get_ColorTable(entry, &color), "IDIBImage: color table entry is out of range."));
        EXPECT_TRUE(BufferFails(buffer->put_ColorTable(entry, 0), "IDIBImage: color table entry is out of range."));
    }
}

TEST(Buffer, IsAnImageWhileItHasGreyLevels) {
    for (const LONG height : {2, -2}) {
        const Buffer buffer(3, height, 8);
        const LONG top = height > 0 ? 1 : 0;
        std::copy_n(Octets{1, 2, 3}.data(), 3, buffer.row(top));
        std::copy_n(Octets{4, 5, 6}.data(), 3, buffer.row(1 - top));
        EXPECT_EQ((Octets{1, 2, 3, 4, 5, 6}), PixelsOf<uint8_t>(buffer.image));
        EXPECT_EQ(std::tuple(1, 3, 2), Get(buffer.image, &IImageVPA::Dimensions));
        const auto [base, table] = Get(buffer.image, &IImageVPA::VPA, 0);
        const auto at = [&, pixels = static_cast<uint8_t*>(base), offsets = table](LONG x, LONG y) {
            return pixels[offsets[x].XEntry + offsets[y].YEntry];
        };
        EXPECT_EQ(5, at(-1, -1)) << "mirrored";
        EXPECT_EQ(at(1, 1), at(201, 201));
        void* none = nullptr;
        VPAEntry* noTable = nullptr;
        EXPECT_TRUE(Fails(buffer.image->VPA(1, &none, &noTable), "IImageVPA::VPA: BandIndex is out of range",
                          kBufferSource, DISP_E_EXCEPTION));

        ASSERT_EQ(S_OK, buffer->PutMicronsPerPixel(0.5, 0.25));
        TypedImage<uint8_t> copy;
        ASSERT_EQ(S_OK, copy->CreateFromImage(buffer.image.get(), 0));
        EXPECT_EQ((Octets{1, 2, 3, 4, 5, 6}), copy.values());
        EXPECT_EQ((std::tuple(0.5, 0.25)), Get(copy.file, &IImageFile::GetMicronsPerPixel));

        Check(buffer.image->SetCoords({1, 2, {3, 4, 5, 6}}));
        EXPECT_EQ((std::vector<double>{1, 2, 3, 4, 5, 6}), Entries(Get(buffer.image, &IImageVPA::GetCoords)));
        const std::string text = "IImageVPA: the bitmap does not have 8 bits and a grey palette.";
        LONG number = 0;
        TCoordinateMap map = {};
        const auto expectNoImage = [&] {
            EXPECT_TRUE(BufferFails(buffer.image->Dimensions(&number, &number, &number), text));
            EXPECT_TRUE(BufferFails(buffer.image->DataType(0, &number), text));
            EXPECT_TRUE(BufferFails(buffer.image->VPA(0, &none, &noTable), text));
            EXPECT_TRUE(BufferFails(buffer.image->GetCoords(&map), text));
            EXPECT_TRUE(BufferFails(buffer.image->SetCoords(map), text));
            EXPECT_EQ(E_FAIL, copy->CreateFromImage(buffer.image.get(), 0));
        };
        Check(buffer->put_ColorTable(77, 0x4d4d4e), buffer);
        expectNoImage();
        Check(buffer->put_ColorTable(77, 0x4d4d4d), buffer);
        EXPECT_EQ((Octets{1, 2, 3, 4, 5, 6}), PixelsOf<uint8_t>(buffer.image));
        Check(buffer->Create(2, 2, 24), buffer);
        expectNoImage();
        Check(buffer->Create(2, 2, 8), buffer);
        EXPECT_EQ((std::vector<double>{0, 0, 1, 0, 0, 1}), Entries(Get(buffer.image, &IImageVPA::GetCoords)));
    }
}

TEST(Buffer, BecomesAnImageInEveryDepth) {
    const struct {
        LONG bits;
        Octets row;  // of two pixels
        std::vector<Octets> bands;
    } cases[] = {{1, {0x40}, {{0, 255}}},
                 {4, {0x1F}, {{17, 255}}},
                 {8, {9, 200}, {{9, 200}}},
                 {16, {0x01, 0x00, 0x00, 0x42}, {{0, 132}, {0, 132}, {8, 0}}},
                 {24, {1, 2, 3, 4, 5, 6}, {{3, 6}, {2, 5}, {1, 4}}},
                 {32, {1, 2, 3, 9, 4, 5, 6, 9}, {{3, 6}, {2, 5}, {1, 4}}}};
    for (const auto& [bits, row, bands] : cases)
        for (const LONG height : {1, -1}) {
            const Buffer buffer(2, height, bits);
            std::copy(row.begin(), row.end(), buffer.row(0));
            Check(buffer->PutMicronsPerPixel(0.3, 0.4), buffer);
            const auto image = ImageFrom(buffer);
            ASSERT_EQ(std::tuple(static_cast<LONG>(bands.size()), 2, 1), image.size()) << bits;
            for (size_t band = 0; band < bands.size(); ++band)
                EXPECT_EQ(bands[band], image.values(static_cast<LONG>(band))) << bits;
            EXPECT_EQ((std::tuple(0.3, 0.4)), Get(image.file, &IImageFile::GetMicronsPerPixel));
        }
    const Buffer buffer(2, 1, 8);
    buffer.row(0)[0] = 5;
    Check(buffer->put_ColorTable(6, 0x123456), buffer);
    EXPECT_EQ(1, std::get<0>(ImageFrom(buffer).size())) << "no pixel has this colour";
    Check(buffer->put_ColorTable(5, 0x123456), buffer);
    EXPECT_EQ((Octets{0x56, 0}), ImageFrom(buffer).values(0));
    EXPECT_EQ((Octets{0x12, 0}), ImageFrom(buffer).values(2));
    ASSERT_EQ(S_OK, buffer.Put(PackedOf(1, 1, 8, 0, Octets(8), {2, 0, 0, 0}, 2)));
    IImageVPAEx* image = nullptr;
    EXPECT_TRUE(BufferFails(buffer->CreateImage(&image), "IDIBImage::CreateImage: a pixel is outside the palette."));
}

TEST(Buffer, TakesImagesOfOneBandAndOfThree) {
    const Buffer buffer;
    for (const LONG bands : {1, 3}) {
        const auto image = NewImage<uint8_t>(5, 3, bands);
        for (LONG band = 0; band < bands; ++band)
            image.Fill([&](LONG x, LONG y) { return 50 * band + 7 * x + y; }, band);
        Check(image.file->PutMicronsPerPixel(0.7, 0.8), image);
        ASSERT_EQ(S_OK, buffer->CreateFromImage(image.get()));
        EXPECT_EQ(std::tuple(5, 3, bands == 1 ? 8 : 24), buffer.format());
        const auto back = ImageFrom(buffer);
        for (LONG band = 0; band < bands; ++band) EXPECT_EQ(image.values(band), back.values(band));
        EXPECT_EQ((std::tuple(0.7, 0.8)), Get(buffer, &IDIBImage::GetMicronsPerPixel));
        if (bands == 1) {
            ASSERT_EQ(S_OK, buffer->CreateFromImage(buffer.image.get())) << "of its own pixels";
            EXPECT_EQ(image.values(), PixelsOf<uint8_t>(buffer.image));
        }
    }
    const std::string text = "IDIBImage::CreateFromImage: the image must have 8 bits and one band or three.";
    EXPECT_TRUE(BufferFails(buffer->CreateFromImage(NewImage<uint16_t>(1, 1).get()), text));
    EXPECT_TRUE(BufferFails(buffer->CreateFromImage(NewImage<uint8_t>(1, 1, 2).get()), text));
    EXPECT_EQ(E_FAIL, buffer->CreateFromImage(Image().get()));
    EXPECT_EQ(std::tuple(5, 3, 24), buffer.format());
}

TEST(Buffer, LetsASourceCallBackAndReleaseIt) {
    Octets samples = {1, 2, 3, 4, 5, 6};
    const auto source = ForeignImage::Of(3, 2, DT_BYTE, samples.data());
    auto buffer = std::make_unique<Buffer>(4, 4, 32);
    source->onVpa = [&] { (*buffer)->Create(1, 1, 1); };
    ASSERT_EQ(S_OK, (*buffer)->CreateFromImage(source.get()));
    EXPECT_EQ(samples, PixelsOf<uint8_t>(buffer->image));
    IDIBImage* const callee = buffer->get();
    source->onVpa = [&] { buffer.reset(); };
    EXPECT_EQ(S_OK, callee->CreateFromImage(source.get()));
    EXPECT_EQ(nullptr, buffer);
}

// Renders both with everything that IPictureMemory offers.
void ExpectSamePicture(const Buffer& buffer, const Image& image) {
    for (const RasterScaling scaling : {RS_Nearest, RS_Smooth})
        for (const int kind : {0, 1, 2, 3}) {
            std::vector<unsigned> pixels[2];
            const ComPtr<IPictureMemory> pictures[] = {buffer.memory, image.memory};
            for (size_t i = 0; i < 2; ++i) {
                pixels[i].assign(40 * 30, 0x55);
                SPictureMemory memory = {pixels[i].data(), 40, 30, 40, scaling};
                IPictureMemory& on = *pictures[i].get();
                EXPECT_EQ(S_OK, kind == 0   ? on.RenderToMemory(&memory, 1, 2, 37, 25)
                                : kind == 1 ? on.RenderTopLeftToMemory(&memory, 39, 2, -20, 25)
                                : kind == 2 ? on.RenderBltToMemory(&memory, 3, 3, 30, 20, 2, -1)
                                            : on.RenderStretchToMemory(&memory, 0, 0, 40, 30, 3, 1, 9, 5));
            }
            EXPECT_EQ(pixels[1], pixels[0]) << scaling << ' ' << kind;
        }
}

TEST(Buffer, IsDrawnLikeAnImageOfItsPixelsAsTheyAreNow) {
    for (const LONG bits : kDepths)
        for (const LONG height : {11, -11}) {
            SCOPED_TRACE(::testing::Message() << bits << ' ' << height);
            const Buffer buffer(17, height, bits);
            for (const int round : {0, 1, 2}) {
                if (round == 1) buffer.FillWithNoise();
                if (round == 2) buffer.FillPalette();
                const auto image = ImageFrom(buffer);
                Check(image.display->put_BandToDisplay(BI_AllBands), image);
                for (const ComPtr<IPictureExZoom>& zoom : {buffer.zoom, image.zoom}) {
                    Check(zoom->put_Surround(0x00604020), zoom);
                    Check(zoom->put_ZoomFactor(round == 2 ? 1.7 : 1.0), zoom);
                }
                ExpectSamePicture(buffer, image);
                for (const auto& [x, y] : {std::pair{5, 5}, {36, 20}, {-4, 2}}) {
                    const auto seen = Get(buffer.zoom, &IPictureEx::GetPixelInfo, x, y),
                               wanted = Get(image.zoom, &IPictureEx::GetPixelInfo, x, y);
                    EXPECT_EQ(std::get<0>(wanted), std::get<0>(seen));
                    EXPECT_EQ(std::get<3>(wanted), std::get<3>(seen)) << "colour";
                    if (bits > 8) {
                        EXPECT_EQ(std::get<2>(wanted), std::get<2>(seen)) << "value";
                    }
                }
            }
        }
}

TEST(Buffer, UsesTheMemoryOfAClient) {
    const Buffer buffer;
    Octets packed = PackedOf(3, -2, 8, 0, {1, 2, 3, 0, 9, 8, 7, 0}, {0, 1, 0, 99, 1, 1, 1}, 2);
    ASSERT_EQ(S_OK, buffer->Attach(packed.data(), nullptr)) << "the padding of the last row may be missing";
    EXPECT_EQ(std::tuple(3, -2, 8), buffer.format());
    EXPECT_EQ(packed.data(), Get(buffer, &IDIBImage::get_Header));
    EXPECT_EQ(packed.data() + 48, buffer.row(0));
    EXPECT_EQ((Octets{3, 7, 3, 7, 7, 7}), ImageFrom(buffer).values(0));
    packed[49] = 0;
    packed[40 + 2] = 200;
    EXPECT_EQ((Octets{200, 200, 200, 7, 7, 7}), ImageFrom(buffer).values(0));
    Check(buffer->put_ColorTable(1, 0x030201), buffer);
    EXPECT_EQ((Octets{3, 2, 1, 0}), Octets(packed.begin() + 44, packed.begin() + 48));
    Check(buffer->PutMicronsPerPixel(0.5, 0.25), buffer);
    EXPECT_EQ((Octets{0x80, 0x84, 0x1E, 0, 0, 0x09, 0x3D, 0}), Octets(packed.begin() + 24, packed.begin() + 32));
    PutNumber(packed, 4, kMost);
    packed[14] = 32;
    EXPECT_EQ(std::tuple(3, -2, 8), buffer.format()) << "read once";

    // 16 bits with masks of the client's, pixels elsewhere; then the header of OS/2.
    Octets masked = PackedOf(2, 1, 16, 3, {0, 0xF8, 0, 0, 0xE0, 7, 0, 0, 0x1F, 0, 0, 0}, {});
    Octets pixels = {0x20, 0, 0, 0xF8};
    ASSERT_EQ(S_OK, buffer->Attach(masked.data(), pixels.data()));
    EXPECT_EQ((Octets{4, 0}), ImageFrom(buffer).values(1));
    Octets core = {12, 0, 0, 0, 1, 0, 1, 0, 1, 0, 1, 0, 5, 5, 5, 6, 6, 6, 0x80, 0, 0, 0};
    ASSERT_EQ(S_OK, buffer->Attach(core.data(), nullptr));
    EXPECT_EQ((Octets{6}), ImageFrom(buffer).values());
    Check(buffer->PutMicronsPerPixel(1, 1), buffer);
    EXPECT_EQ((Octets{12, 0, 0, 0, 1, 0, 1, 0, 1, 0, 1, 0, 5, 5, 5, 6, 6, 6, 0x80, 0, 0, 0}), core);

    const std::string name = "IDIBImage::Attach: ",
                      header = name + "the system does not allow to read and write the header.",
                      bits = name + "the system does not allow to read and write the pixels.";
    void* const nowhere = reinterpret_cast<void*>(16);
    Octets good = PackedOf(3, 2, 8, 0, {}, Octets(1024 + 8));
    EXPECT_TRUE(BufferFails(buffer->Attach(nowhere, pixels.data()), header));
    EXPECT_TRUE(BufferFails(buffer->Attach(good.data(), nowhere), bits));
    Octets huge = PackedOf(1 << 20, 2047, 8, 0, {}, Octets(1024 + 8));
    EXPECT_TRUE(BufferFails(buffer->Attach(huge.data(), nowhere), bits));
    const auto refused = [&](const std::string& text, Octets bytes) {
        EXPECT_TRUE(BufferFails(buffer->Attach(bytes.data(), nullptr), name + text));
    };
    refused("compressed bitmaps cannot be attached.", PackedOf(3, 2, 8, 1, {}, Octets(1032)));
    refused("the bitmap is too large.", PackedOf(kMost, 2, 8, 0, {}, Octets(1032)));
    refused("problems reading the header.", PackedOf(0, 2, 8, 0, {}, Octets(1032)));
    refused("problems reading the header.", Octets(64));
    ASSERT_EQ(S_OK, buffer->Create(3, 2, 8));
    EXPECT_TRUE(BufferFails(buffer->Attach(Get(buffer, &IDIBImage::get_Header), nullptr), header)) << "its own memory";
    EXPECT_TRUE(BufferFails(buffer->Attach(good.data(), buffer.row(0)), bits));
    EXPECT_EQ(std::tuple(3, 2, 8), buffer.format());

    // As pictures do it.
    alignas(4) uint8_t grey[] = {1, 2, 3, 0, 4, 5, 6, 0};
    ASSERT_EQ(S_OK, buffer.zoom->AttachBuffer(grey, 3, 2, 8));
    EXPECT_EQ((Octets{1, 2, 3, 4, 5, 6}), PixelsOf<uint8_t>(buffer.image));
    EXPECT_EQ(grey, buffer.row(0));
    EXPECT_TRUE(BufferFails(buffer.zoom->AttachBuffer(nowhere, 3, 2, 8),
                            "IImageVPAEx::AttachBuffer: the operator system indicated that buffer has as bad address "
                            "for reading."));
    EXPECT_TRUE(BufferFails(buffer.zoom->AttachBuffer(grey, 1, 1, 24),
                            "IPictureEx::AttachBuffer: the picture must have 8 or 16 bits per pixel."));
    EXPECT_EQ(grey, buffer.row(0));
}

TEST(Buffer, IsCopiedInOnePiece) {
    for (const LONG bits : kDepths)
        for (const LONG height : {4, -4})
            for (const LONG header : {40, 124}) {
                SCOPED_TRACE(::testing::Message() << bits << ' ' << height << ' ' << header);
                const Buffer buffer(7, height, bits), copy;
                buffer.FillWithNoise();
                buffer.FillPalette();
                Check(buffer->PutMicronsPerPixel(0.5, 0.25), buffer);
                const Octets packed = buffer.Packed(header);
                EXPECT_EQ(header, packed[0]);
                ASSERT_EQ(S_OK, copy.Put(packed));
                EXPECT_EQ(buffer.format(), copy.format());
                EXPECT_EQ((std::tuple(0.5, 0.25)), Get(copy, &IDIBImage::GetMicronsPerPixel));
                EXPECT_EQ(buffer.Packed(), copy.Packed());
                if (header != 40) continue;
                const auto* const memory = static_cast<const uint8_t*>(Get(buffer, &IDIBImage::get_Header));
                EXPECT_EQ(Octets(memory, memory + packed.size()), packed);
            }
    // Masks go into either header, and run lengths become pixels.
    const Buffer buffer;
    const Octets masks = {0, 0xF8, 0, 0, 0xE0, 7, 0, 0, 0x1F, 0, 0, 0}, pixels = {0x20, 0, 0, 0xF8};
    ASSERT_EQ(S_OK, buffer.Put(PackedOf(2, 1, 16, 3, masks, pixels)));
    for (const LONG header : {40, 124}) {
        const Octets packed = buffer.Packed(header);
        EXPECT_EQ(3, packed[16]);
        EXPECT_EQ(masks, Octets(packed.begin() + 40, packed.begin() + 52));
        EXPECT_EQ(static_cast<size_t>(header == 40 ? 52 : 124) + 4, packed.size());
        ASSERT_EQ(S_OK, buffer.Put(packed));
        EXPECT_EQ((Octets{4, 0}), ImageFrom(buffer).values(1));
    }
    Octets colors(64);
    colors[4 * 3] = 9;
    ASSERT_EQ(S_OK, buffer.Put(PackedOf(5, 2, 4, 2, colors, {3, 0x30, 0, 0, 0, 4, 0x12, 0x34, 0, 1})));
    EXPECT_EQ((Octets{0x30, 0x30, 0}), Octets(buffer.row(0), buffer.row(0) + 3));
    EXPECT_EQ((Octets{0x12, 0x34, 0}), Octets(buffer.row(1), buffer.row(1) + 3));
    ASSERT_EQ(S_OK, buffer.Put(PackedOf(3, 2, 8, 1, Octets(1024), {2, 7, 0, 0, 3, 8, 0, 1})));
    EXPECT_EQ((Octets{7, 7, 0, 0, 8, 8, 8, 0}), Octets(buffer.row(0), buffer.row(2)));

    const std::string name = "IDIBImage::PutPacked: ", tooShort = "fewer bytes than the pixels need.";
    const std::pair<std::string, Octets> refused[] = {
        {"problems reading the header.", {}},
        {"problems reading the header.", Octets(39, 40)},
        {"unknown number of bits per pixel.", PackedOf(1, 1, 2, 0, {}, Octets(99))},
        {"unknown compression.", PackedOf(1, 1, 24, 1, {}, Octets(99))},
        {"invalid colour masks.", PackedOf(1, 1, 16, 3, Octets(12, 0xA0), Octets(99))},
        {tooShort, PackedOf(1, 1, 8, 0, Octets(1024), {})},
        {tooShort, PackedOf(1, 1, 1, 0, Octets(7), {})},
        {tooShort, PackedOf(1, 1, 24, 0, {}, Octets(99), kMost)},
        {"the run lengths leave the image.", PackedOf(3, 1, 8, 1, Octets(1024), {5, 7})},
        {tooShort, PackedOf(3, 1, 8, 1, Octets(1024), {2, 7})}};
    for (const auto& [text, bytes] : refused) EXPECT_TRUE(BufferFails(buffer.Put(bytes), name + text));
    uint8_t byte = 0;
    LONG needed = 0;
    EXPECT_TRUE(BufferFails(buffer->PutPacked(-1, &byte), name + "Size must not be negative."));
    EXPECT_TRUE(
        BufferFails(buffer->GetPacked(40, -1, &byte, &needed), "IDIBImage::GetPacked: Size must not be negative."));
    EXPECT_TRUE(BufferFails(buffer->GetPacked(41, 0, nullptr, &needed),
                            "IDIBImage::GetPacked: the header must have 40 or 124 bytes."));
    EXPECT_EQ(S_FALSE, buffer->GetPacked(40, 1, &byte, &needed));
    EXPECT_EQ(40 + 1024 + 8, needed);
    EXPECT_EQ(0, byte);
    EXPECT_TRUE(BufferFails(buffer->PutMicronsPerPixel(1, kNaN),
                            "IDIBImage::PutMicronsPerPixel: the pixel size must be positive."));
}

TEST(Buffer, IsSavedAndLoadedInEveryDepth) {
    const auto folder = std::filesystem::temp_directory_path() / "orlix buffer test";
    std::filesystem::create_directories(folder);
    const std::string path = (folder / "a.bmp").string();
    const Buffer loaded;
    for (const LONG bits : kDepths)
        for (const LONG height : {5, -5}) {
            SCOPED_TRACE(::testing::Message() << bits << ' ' << height);
            const Buffer buffer(13, height, bits);
            buffer.FillWithNoise();
            buffer.FillPalette();
            Check(buffer->PutMicronsPerPixel(0.5, 0.25), buffer);
            ASSERT_EQ(S_OK, buffer->SaveToFile(Text(path)));
            ASSERT_EQ(S_OK, loaded->LoadFromFile(Text(path)));
            EXPECT_EQ(buffer.Packed(), loaded.Packed());
            EXPECT_EQ((std::tuple(0.5, 0.25)), Get(loaded, &IDIBImage::GetMicronsPerPixel));
            TypedImage<uint8_t> image;
            ASSERT_EQ(S_OK, image.file->LoadFromFile(Text(path), 0));
            const auto same = ImageFrom(buffer);
            ASSERT_EQ(same.size(), image.size());
            for (LONG band = 0; band < std::get<0>(same.size()); ++band)
                EXPECT_EQ(same.values(band), image.values(band)) << "band " << band;
            EXPECT_EQ((std::tuple(0.5, 0.25)), Get(image.file, &IImageFile::GetMicronsPerPixel));
        }
    // An image's file is a buffer's.
    const auto image = NewImage<uint8_t>(4, 3, 3);
    image.Fill([](LONG x, LONG y) { return 20 * x + y; }, 1);
    ASSERT_EQ(S_OK, image.file->SaveToFile(Text(path), IFF_ByExtension));
    ASSERT_EQ(S_OK, loaded->LoadFromFile(Text(path)));
    EXPECT_EQ(image.values(1), ImageFrom(loaded).values(1));
    const auto write = [&](const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; };
    const std::string name = "IDIBImage::LoadFromFile: ";
    write("P5 1 1 255\n\1");
    EXPECT_TRUE(BufferFails(loaded->LoadFromFile(Text(path)), name + "not a BMP file."));
    write("BM");
    EXPECT_TRUE(BufferFails(loaded->LoadFromFile(Text(path)), name + "problems reading the header."));
    EXPECT_TRUE(BufferFails(loaded->LoadFromFile(Text(folder.string())), name + "failed to open file."));
    EXPECT_TRUE(BufferFails(loaded->SaveToFile(Text(folder.string())), "IDIBImage::SaveToFile: failed to write file."));
    EXPECT_EQ(std::tuple(4, 3, 24), loaded.format());
    std::filesystem::remove_all(folder);
}

#ifdef _WIN32

TEST(BufferOnDevice, IsDrawnAndTellsItsClients) {
    const Buffer buffer(4, 2, 8);
    for (uint8_t x = 0; x < 4; ++x) buffer.row(1)[x] = static_cast<uint8_t>(16 * (1 + x)), buffer.row(0)[x] = 0x50;
    const auto sink = MakeCounted<Sink>();
    const auto point = PointOf(buffer);
    const DWORD cookie = Get(point, &IConnectionPoint::Advise, sink.get());
    IPictureEx* shown = nullptr;
    // The bitmap is replaced while it is drawn.
    sink->onRender = [&](IPictureEx* picture, void*, RenderSourceType) {
        shown = picture;
        buffer->Create(1, 1, 1);
    };
    DeviceCanvas canvas(4, 2);
    ASSERT_EQ(S_OK, buffer.zoom->Render(canvas.context, 0, 0, 4, 2));
    EXPECT_EQ((std::vector<std::string>{"1234", "5555"}), canvas.Rows());
    EXPECT_EQ(1, sink->calls);
    EXPECT_EQ(static_cast<IPictureEx*>(buffer.zoom.get()), shown);
    EXPECT_EQ(std::tuple(1, 1, 1), buffer.format());
    Check(point->Unadvise(cookie));
}

TEST(BufferOnDevice, ComesFromSystemBitmapsAndTheClipboard) {
    for (const LONG bits : kDepths)
        for (const LONG height : {3, -3}) {
            SCOPED_TRACE(::testing::Message() << bits << ' ' << height);
            const Buffer buffer(5, height, bits), other;
            buffer.FillWithNoise();
            if (bits <= 8) buffer.FillPalette();
            const auto wanted = ImageFrom(buffer);
            const auto expectSame = [&] {
                const auto found = ImageFrom(other);
                ASSERT_EQ(wanted.size(), found.size());
                for (LONG band = 0; band < std::get<0>(wanted.size()); ++band)
                    EXPECT_EQ(wanted.values(band), found.values(band)) << "band " << band;
            };
            ASSERT_EQ(S_OK, buffer->CopyToClipboard());
            ASSERT_EQ(S_OK, other->CreateFromClipboard());
            expectSame();
            const auto [memory, section] = Get(buffer.zoom, &IPictureEx::CreateDIBSection);
            ASSERT_EQ(S_OK, other->CreateFromHBITMAP(section));
            EXPECT_EQ(std::tuple(5, 3, bits <= 8 ? 8 : 32), other.format());
            expectSame();
            DeleteObject(section);
            void* const compatible = Get(buffer.zoom, &IPictureEx::CreateHBITMAP, nullptr);
            ASSERT_EQ(S_OK, other->CreateFromHBITMAP(compatible));
            expectSame();
            DeleteObject(compatible);
        }
    const Buffer buffer(1, 1, 1);
    EXPECT_TRUE(BufferFails(buffer->CreateFromHBITMAP(nullptr), "IDIBImage::CreateFromHBITMAP: invalid HBITMAP"));
    EXPECT_TRUE(BufferFails(buffer->CreateFromHBITMAP(GetStockObject(WHITE_BRUSH)),
                            "IDIBImage::CreateFromHBITMAP: invalid HBITMAP"));
    ASSERT_TRUE(OpenClipboard(nullptr) && EmptyClipboard() && CloseClipboard());
    EXPECT_EQ(S_FALSE, buffer->CreateFromClipboard());
    EXPECT_EQ(std::tuple(1, 1, 1), buffer.format());
}

#else

TEST(Buffer, NeedsWindowsForSystemBitmaps) {
    const Buffer buffer(1, 1, 8);
    EXPECT_TRUE(FailsSilently(buffer->CreateFromHBITMAP(nullptr), E_NOTIMPL));
    EXPECT_TRUE(FailsSilently(buffer->CreateFromClipboard(), E_NOTIMPL));
    EXPECT_TRUE(FailsSilently(buffer->CopyToClipboard(), E_NOTIMPL));
}

#endif

}  // namespace
}  // namespace orlix::testing
