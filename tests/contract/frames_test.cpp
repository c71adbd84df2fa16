// Frames of cameras that become images.
#include "contract/support.hpp"
#include "support/pages.hpp"

namespace orlix::testing {
namespace {

constexpr const char kPrefix[] = "IImageFrames::CreateFromFrame: ";

struct CameraImage : Image {
    ComPtr<IImageFrames> frames = Cast<IImageFrames>(process);
    HRESULT Take(SFrame frame) const { return frames->CreateFromFrame(&frame); }
    void* base() const { return std::get<0>(Get(*this, &IImageVPA::VPA, 0)); }
};

// 3 x 2 pixels of 12 bits: 0x321 and so on, the rows one stream of 9 bytes.
struct Stream {
    uint8_t bytes[9] = {0x21, 0x43, 0x65, 0x87, 0xa9, 0xcb, 0xed, 0x0f, 0x12};
    SFrame frame = {bytes, 9, 3, 2, PF_Mono12p, 0, 0, 0};
    const std::vector<uint16_t> pixels = {0x321, 0x654, 0x987, 0xcba, 0xfed, 0x120};
};

TEST(ImageFrames, RowsFollowInOneStreamOrByTheirPitch) {
    Stream stream;
    const CameraImage image;
    ASSERT_EQ(S_OK, image.Take(stream.frame));
    EXPECT_EQ(stream.pixels, PixelsOf<uint16_t>(image));
    stream.frame.m_lBottomUp = -1;
    ASSERT_EQ(S_OK, image.Take(stream.frame));
    EXPECT_EQ(std::vector<uint16_t>({0xcba, 0xfed, 0x120, 0x321, 0x654, 0x987}), PixelsOf<uint16_t>(image));
    stream.frame.m_lBottomUp = 0;
    stream.frame.m_lWidth = 2;
    stream.frame.m_lRowPitch = 4;
    stream.frame.m_llSize = 7;
    ASSERT_EQ(S_OK, image.Take(stream.frame));
    EXPECT_EQ(std::vector<uint16_t>({0x321, 0x654, 0xba9, 0xedc}), PixelsOf<uint16_t>(image));
}

TEST(ImageFrames, AFrameReplacesTheContentAndKeepsMemoryAndSettings) {
    Stream stream;
    const CameraImage image;
    ASSERT_EQ(S_OK, image.Take(stream.frame));
    ASSERT_EQ(S_OK, image.process->PutLuminanceRange(1, 4095));
    ASSERT_EQ(S_OK, image.file->PutMicronsPerPixel(2, 2));
    ASSERT_EQ(S_OK, image->put_Description(Text("old")));
    ASSERT_EQ(S_OK, image.display->put_DisplayDirty(0));
    void* const before = image.base();
    stream.bytes[0] = 0x22;
    ASSERT_EQ(S_OK, image.Take(stream.frame));
    EXPECT_EQ(before, image.base());
    EXPECT_EQ(0x322, PixelsOf<uint16_t>(image)[0]);
    double x = 1, y = 1;
    EXPECT_EQ(S_FALSE, image.file->GetMicronsPerPixel(&x, &y));
    EXPECT_EQ(12, Get(image.file, &IImageFile::get_SignificantBits)) << "by which files are saved";
    EXPECT_EQ("(null)", TextOf(image, &IImageVPAExPlus::get_Description));
    EXPECT_EQ(std::pair(1.0, 4095.0), image.LuminanceRange());
    EXPECT_NE(0, Get(image.display, &IDisplayProcess::get_DisplayDirty));

    // The image's own pixels as a frame: they are read before they go.
    stream.frame = {static_cast<unsigned char*>(before) + 2, 14, 3, 2, PF_Mono16, 8, 1, 0};
    ASSERT_EQ(S_OK, image.Take(stream.frame));
    EXPECT_EQ(std::vector<uint16_t>({0xfed, 0x120, 0, 0x654, 0x987, 0}), PixelsOf<uint16_t>(image)) << "padding is 0";
    EXPECT_EQ(0, Get(image.file, &IImageFile::get_SignificantBits));
}

TEST(ImageFrames, AMosaicIsKeptOrBecomesGreyOrBands) {
    std::vector<uint8_t> bytes(15 * 12);
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(i * i * 7 + 3 * i);
    SFrame frame = {bytes.data(), 180, 15, 12, PF_BayerGB8, 0, 0, FM_Keep};
    const CameraImage kept, grey, bands;
    ASSERT_EQ(S_OK, kept.Take(frame));
    EXPECT_EQ(bytes, PixelsOf<uint8_t>(kept));
    frame.m_lMosaic = FM_Grey;
    ASSERT_EQ(S_OK, grey.Take(frame));
    const auto smooth = NewImage<uint8_t>(15, 12);
    ASSERT_EQ(S_OK, smooth.process->Gaussian3x3(kept.get(), 0));
    EXPECT_EQ(smooth.values(), PixelsOf<uint8_t>(grey));
    frame.m_lMosaic = FM_Bands;
    ASSERT_EQ(S_OK, bands.Take(frame));
    EXPECT_EQ(std::tuple(LONG{3}, LONG{15}, LONG{12}), bands.size());
    EXPECT_EQ(bytes[0], PixelsOf<uint8_t>(bands, 1)[0]);
    EXPECT_EQ(bytes[1], PixelsOf<uint8_t>(bands, 2)[1]);
    EXPECT_EQ(bytes[15], PixelsOf<uint8_t>(bands, 0)[15]);
}

TEST(ImageFrames, RefusalsLeaveTheImageAsItWas) {
    Stream stream;
    const CameraImage image;
    ASSERT_EQ(S_OK, image.Take({stream.bytes, 2, 2, 1, PF_Mono8, 0, 0, 77})) << "there is no mosaic";
    const auto refused = [&](const std::string& text, const std::function<void(SFrame&)>& spoil) {
        SCOPED_TRACE(text);
        SFrame frame = stream.frame;
        spoil(frame);
        const HRESULT result = image.Take(frame);
        EXPECT_TRUE(text.empty() ? FailsSilently(result) : Fails(result, kPrefix + text));
        EXPECT_EQ(std::vector<uint8_t>({0x21, 0x43}), PixelsOf<uint8_t>(image));
    };
    refused("no buffer.", [](SFrame& f) { f.m_pBuffer = nullptr, f.m_lPixelFormat = 0; });
    refused("unknown pixel format.", [](SFrame& f) { f.m_lPixelFormat = DT_BYTE, f.m_lMosaic = 3; });
    for (const LONG mosaic : {-1, 3, int{kMost}})
        refused("a mosaic is kept, or becomes grey or bands.",
                [&](SFrame& f) { f.m_lPixelFormat = PF_BayerRG8, f.m_lMosaic = mosaic, f.m_lWidth = 0; });
    for (const LONG size : {LONG{0}, LONG{-1}, kLeast}) {
        refused("width and height must be positive.", [&](SFrame& f) { f.m_lWidth = size, f.m_lRowPitch = 1; });
        refused("width and height must be positive.", [&](SFrame& f) { f.m_lHeight = size; });
    }
    refused("", [](SFrame& f) { f.m_lWidth = f.m_lHeight = kMost, f.m_lRowPitch = 1; });
    for (const LONG pitch : {LONG{4}, LONG{1}, LONG{-5}, kLeast})
        refused("the row pitch is shorter than a row.", [&](SFrame& f) { f.m_lRowPitch = pitch, f.m_llSize = 0; });
    for (const LONGLONG size : {LONGLONG{8}, LONGLONG{0}, LONGLONG{-1}, std::numeric_limits<LONGLONG>::min()})
        refused("the buffer is shorter than the frame.", [&](SFrame& f) { f.m_llSize = size; });
    refused("the buffer is shorter than the frame.", [&](SFrame& f) { f.m_lRowPitch = 5; });
    refused("the buffer is shorter than the frame.", [](SFrame& f) {
        f.m_lRowPitch = kMost, f.m_lHeight = 1 << 26, f.m_lPixelFormat = PF_RGB8_Planar, f.m_lWidth = 1;
        f.m_llSize = (LONGLONG{kMost} * 3 << 26) - kMost;
    });

    Pages pages(3);
    ASSERT_TRUE(pages.Protect(1, Access::Read) && pages.Protect(2, Access::None));
    const auto two = [&](SFrame& f) { f = {pages.at(4096), 4096, 64, 64, PF_Mono8, 0, 0, 0}; };
    refused("the buffer cannot be read.", [&](SFrame& f) { two(f), f.m_pBuffer++; });
    refused("the buffer cannot be read.",
            [](SFrame& f) { f.m_pBuffer = reinterpret_cast<unsigned char*>(~uintptr_t{3}); });
    SFrame last;
    two(last);
    EXPECT_EQ(S_OK, image.Take(last)) << "a buffer that cannot be written";
    EXPECT_EQ(std::tuple(LONG{1}, LONG{64}, LONG{64}), image.size());
}

}  // namespace
}  // namespace orlix::testing
