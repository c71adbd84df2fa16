// The table of file formats: each format reads what it writes, and no other one takes it for its own.
#include "files/file_formats.hpp"

#include <gtest/gtest.h>

#include <algorithm>

#include "files/hand_made.hpp"
#include "files/image_file.hpp"
#include "files/memory_image.hpp"

namespace orlix::test {
namespace {

TEST(FileFormats, EachImageComesBackAsItWas) {
    int written = 0;
    for (const FileFormat& format : FileFormats()) {
        SCOPED_TRACE(format.name);
        for (const int32_t bands : format.bands)
            for (const int32_t bits : format.bits)
                for (const int32_t width : {1, 2, 17, 100})
                    for (const int32_t height : {1, 3}) {
                        MemoryImage image(width, height, bands, bits), back;
                        Noise noise(5);
                        for (auto& byte : image.bytes) byte = static_cast<uint8_t>(noise());
                        for (auto& word : image.words) word = static_cast<uint16_t>(noise());
                        FleetingSource source(image);
                        const Bytes file = WriteImageFile(format.code, image.properties, source);
                        ASSERT_EQ("", FailureOfReading(file, back));
                        EXPECT_TRUE(back.SamePixels(image)) << bands << " " << bits << " " << width << "x" << height;
                        const auto start = std::span(file).first(std::min(file.size(), kLooksLikeBytes));
                        for (const FileFormat& other : FileFormats())
                            EXPECT_EQ(&other == &format, other.looksLike(start)) << other.name;
                        ++written;
                    }
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
