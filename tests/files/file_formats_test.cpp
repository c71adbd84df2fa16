// The table of file formats: each format reads what it writes, and no other one takes it for its own.
#include "files/file_formats.hpp"

#include <algorithm>

#include "files/reading.hpp"

namespace orlix::test {
namespace {

TEST(FileFormats, EachImageComesBackAsItWas) {
    int written = 0;
    for (const FileFormat& format : FileFormats())
        for (const int32_t bands : format.bands)
            for (const int32_t bits : format.bits)
                for (const auto& [width, height] :
                     {std::pair{1, 1}, {1, 3}, {2, 1}, {2, 3}, {17, 1}, {17, 3}, {100, 1}, {100, 3}}) {
                    SCOPED_TRACE(testing::Message() << format.name << ' ' << bands << ' ' << bits << ' ' << width);
                    Noise noise(5);
                    MemoryImage image(width, height, bands, bits, [&](auto...) { return noise(); });
                    const Bytes file = Written(format.code, image);
                    EXPECT_TRUE(Read(file).SamePixels(image));
                    const auto start = std::span(file).first(std::min(file.size(), kLooksLikeBytes));
                    for (const FileFormat& other : FileFormats())
                        EXPECT_EQ(&other == &format, other.looksLike(start)) << other.name;
                    ++written;
                }
    EXPECT_EQ((4 + 2 + 2 + 2 + 2) * 8, written);  // PNG has grey and colour
}

TEST(FileFormats, AreChosenByOneCodeAndOneExtension) {
    for (const FileFormat& format : FileFormats())
        for (const FileFormat& other : FileFormats())
            if (&format != &other) {
                EXPECT_NE(format.code, other.code) << format.name;
                EXPECT_TRUE(format.extension.empty() || format.extension != other.extension) << format.name;
            }
}

}  // namespace
}  // namespace orlix::test
