// The table of file formats: each format reads what it writes, and no other one takes it for its own.
#include "files/file_formats.hpp"

#include <algorithm>

#include "files/reading.hpp"

namespace orlix::test {
namespace {

// Contents that lead PNG to different filters and methods of compression.
struct Content {
    const char* name;
    uint32_t (*level)(uint32_t band, uint32_t x, uint32_t y, Noise& noise);
};
constexpr Content kContents[] = {
    {"flat", [](uint32_t, uint32_t, uint32_t, Noise&) { return 77u; }},
    {"noise", [](uint32_t, uint32_t, uint32_t, Noise& noise) { return noise(); }},
    {"ramp", [](uint32_t band, uint32_t x, uint32_t y, Noise&) { return 3 * x + 5 * y + 50 * band; }},
    {"noisy ramp",
     [](uint32_t band, uint32_t x, uint32_t y, Noise& noise) { return 40 * x + 60 * y + 50 * band + noise.below(9); }},
    // Noise along a row and the same in every row but for the level: each row needs the one above it.
    {"columns", [](uint32_t band, uint32_t x, uint32_t y, Noise&) { return Noise(x)() + y % 7 + band; }},
    {"label", [](uint32_t, uint32_t x, uint32_t y, Noise&) { return x / 7 % 3 == y / 5 % 3 ? 0xFFFFu : 0u; }},
};

TEST(FileFormats, EachImageComesBackAsItWas) {
    int written = 0;
    for (const FileFormat& format : FileFormats()) {
        const int32_t some[] = {1, 2, 3, 5};  // of formats that hold any number
        for (const int32_t bands : format.bands.empty() ? std::span<const int32_t>(some) : format.bands)
            for (const LONG bits : format.types)
                for (const Content& content : kContents)
                    for (const auto& [width, height] : {std::pair{1, 1},
                                                        {1, 7},
                                                        {7, 1},
                                                        {2, 2},
                                                        {13, 11},
                                                        {100, 3},
                                                        {300, 70},
                                                        {1000, 300},
                                                        {70000, 2}}) {
                        if (format.code == IFF_JPEG) continue;                // has losses
                        if (format.code != IFF_PNG && width > 100) continue;  // rows that need several buffers
                        SCOPED_TRACE(testing::Message() << format.name << ' ' << bands << ' ' << bits << ' '
                                                        << content.name << ' ' << width << 'x' << height);
                        Noise noise(5);
                        MemoryImage image(width, height, bands, bits, [&](int32_t band, int32_t x, int32_t y) {
                            return content.level(static_cast<uint32_t>(band), static_cast<uint32_t>(x),
                                                 static_cast<uint32_t>(y), noise);
                        });
                        const Bytes file = Written(format.code, image);
                        EXPECT_TRUE(Read(file).SamePixels(image));
                        const auto start = std::span(file).first(std::min(file.size(), kLooksLikeBytes));
                        for (const FileFormat& other : FileFormats())
                            EXPECT_EQ(&other == &format, other.looksLike(start)) << other.name;
                        ++written;
                    }
    }
    // PNG, BMP, PAM and PFM have grey and colour; PFM has one type. TIFF: four numbers of bands and four types.
    EXPECT_EQ(6 * (4 * 9 + 4 * 2 * 6 + 4 * 6 + 2 * 6) + 2 * 4 * 9 + 6 * 6 * 4 * 4, written);
}

}  // namespace
}  // namespace orlix::test
