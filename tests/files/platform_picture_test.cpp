#include "files/platform_picture.hpp"

#ifdef _WIN32
#include <windows.h>
#endif

#include "files/reading.hpp"

namespace orlix::test {
namespace {

// 3 x 2 pixels of the indices 0 to 3 and 0, 1. Codes of 3 bits, the least significant first; clear codes (4) keep them
// so short.
Bytes MakeGif(const Bytes& colours) {
    Bytes data = {0};
    int bit = 0;
    for (const uint32_t code : {4u, 0u, 1u, 4u, 2u, 3u, 4u, 0u, 1u, 5u})
        for (int i = 0; i < 3; ++i, ++bit) {
            if (bit / 8 == static_cast<int>(data.size())) data.push_back(0);
            data.back() = static_cast<uint8_t>(data.back() | (code >> i & 1) << bit % 8);
        }
    const Bytes size = Little16(3) + Little16(2);
    return FromText("GIF89a") + size + Bytes{0xF1, 0, 0} + colours + Bytes{0x2C, 0, 0, 0, 0} + size + Bytes{0, 2} +
           Bytes{static_cast<uint8_t>(data.size())} + data + Bytes{0, 0x3B};
}

// 16 x 16 pixels of one colour, none transparent.
Bytes MakeIcon(const Bytes& blueGreenRed) {
    Bytes bitmap = Little32(40) + Little32(16) + Little32(32) + Little16(1) + Little16(24);
    bitmap.resize(40);
    for (int i = 0; i < 256; ++i) bitmap = std::move(bitmap) + blueGreenRed;
    bitmap.resize(bitmap.size() + 16 * 4);
    return Bytes{0, 0, 1, 0, 1, 0, 16, 16, 0, 0, 1, 0, 24, 0} + Little32(static_cast<uint32_t>(bitmap.size())) +
           Little32(22) + bitmap;
}

const Bytes kGreys = {10, 10, 10, 20, 20, 20, 30, 30, 30, 40, 40, 40};

#ifdef _WIN32

TEST(PlatformPicture, GifsAndIconsAreLoadedByTheSystem) {
    using Levels = std::vector<uint32_t>;
    EXPECT_EQ((Levels{10, 20, 30, 40, 10, 20}), Read(MakeGif(kGreys)).Levels());
    Bytes colours = kGreys;
    colours[0] = 50;  // red of index 0
    EXPECT_EQ((Levels{50, 20, 30, 40, 50, 20, 10, 20, 30, 40, 10, 20, 10, 20, 30, 40, 10, 20}),
              Read(MakeGif(colours)).Levels());
    const MemoryImage icon = Read(MakeIcon({1, 2, 3}));
    ASSERT_EQ(3, icon.properties.bands);
    for (uint32_t band = 0; band < 3; ++band) EXPECT_EQ(3 - band, icon.bytes[256 * band + 100]);
    ExpectRefused("IImageVPAEx::CreateFromFile: the image has 6 samples, more than the limit of 5.", MakeGif(kGreys),
                  false, SampleLimit(5));
    ExpectRefused("IImageVPAEx::CreateFromFile: the system cannot load the picture.", Part(MakeGif(kGreys), 0, 12));
}

TEST(PlatformPicture, MetafilesAreDrawnOnWhite) {
    const HDC recording = CreateEnhMetaFileW(nullptr, nullptr, nullptr, nullptr);
    ASSERT_TRUE(recording);
    const RECT all = {0, 0, 40, 20}, left = {0, 0, 20, 20};
    FillRect(recording, &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    FillRect(recording, &left, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    const HENHMETAFILE metafile = CloseEnhMetaFile(recording);
    Bytes file(GetEnhMetaFileBits(metafile, 0, nullptr));
    GetEnhMetaFileBits(metafile, static_cast<UINT>(file.size()), file.data());
    DeleteEnhMetaFile(metafile);
    const MemoryImage image = Read(file);
    const auto width = static_cast<size_t>(image.properties.width),
               height = static_cast<size_t>(image.properties.height);
    ASSERT_LT(0u, image.bytes.size());
    EXPECT_EQ(0, image.bytes[height / 2 * width + width / 4]);
    EXPECT_EQ(255, image.bytes[height / 2 * width + 3 * width / 4]);
}

#else

TEST(PlatformPicture, OffWindowsTheyAreRefusedByName) {
    Bytes metafile = Little32(1) + Little32(108);
    metafile.resize(108);
    for (const Bytes& file :
         {MakeGif(kGreys), MakeIcon({1, 2, 3}), metafile, Bytes{0xD7, 0xCD, 0xC6, 0x9A}, Bytes{1, 0, 9, 0, 0, 3}})
        ExpectRefused("IImageVPAEx::CreateFromFile: this format is loaded on Windows only.", file);
}

#endif

}  // namespace
}  // namespace orlix::test
