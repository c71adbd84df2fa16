#include "files/hand_made_jpeg.hpp"

#include <cstdlib>

namespace orlix::test {
namespace {

Bytes Big16(uint32_t value) { return {static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value)}; }

// JpegBits of a scan. A byte 0 follows each byte 255; the last byte is filled with ones.
class JpegBits {
public:
    void Put(uint32_t value, int count) {
        for (int bit = count - 1; bit >= 0; --bit) {
            byte_ = byte_ << 1 | (value >> bit & 1);
            if (++used_ == 8) Flush();
        }
    }
    Bytes Take() {
        while (used_ != 0) Put(1, 1);
        return out_;
    }

private:
    void Flush() {
        out_.push_back(static_cast<uint8_t>(byte_));
        if (out_.back() == 0xFF) out_.push_back(0);
        byte_ = 0;
        used_ = 0;
    }

    Bytes out_;
    uint32_t byte_ = 0;
    int used_ = 0;
};

// The difference of a block's mean from the one before: the number of its bits, by a code of 4 bits, and the bits.
void PutDifference(int difference, JpegBits& bits) {
    int size = 0;
    while (std::abs(difference) >> size) ++size;
    bits.Put(static_cast<uint32_t>(size), 4);
    bits.Put(static_cast<uint32_t>(difference < 0 ? difference + (1 << size) - 1 : difference), size);
}

}  // namespace

Bytes JpegSegment(uint32_t marker, const Bytes& data) {
    return Bytes{0xFF, static_cast<uint8_t>(marker)} + Big16(static_cast<uint32_t>(data.size() + 2)) + data;
}

Bytes JfifSegment(uint32_t unit, uint32_t x, uint32_t y) {
    return JpegSegment(
        0xE0, FromText("JFIF") + Bytes{0, 1, 2, static_cast<uint8_t>(unit)} + Big16(x) + Big16(y) + Bytes{0, 0});
}

Bytes ExifSegment(const Bytes& directory) { return JpegSegment(0xE1, FromText("Exif") + Bytes{0, 0} + directory); }

Bytes MakeJpeg(const JpegPicture& picture) {
    const bool progressive = picture.frame == 0xC2;
    Bytes frame = Bytes{static_cast<uint8_t>(picture.precision)} + Big16(picture.height) + Big16(picture.width) +
                  Bytes{static_cast<uint8_t>(picture.components)};
    Bytes scan = {static_cast<uint8_t>(picture.components)};
    for (uint32_t i = 1; i <= picture.components; ++i) {
        frame = frame + Bytes{static_cast<uint8_t>(i), 0x11, 0};  // not subsampled
        scan = scan + Bytes{static_cast<uint8_t>(i), 0};
    }
    Bytes quanta = {0};
    quanta.resize(1 + 64, 8);  // the mean counts 8 times a level, so that a unit is a level
    Bytes means = {0x00, 0, 0, 0, 9}, details = {0x10, 1};
    means.resize(1 + 16);
    for (uint8_t size = 0; size < 9; ++size) means.push_back(size);
    details.resize(1 + 16);
    details.push_back(0);  // "no more coefficients" is the only code, one bit 0

    Bytes file = Bytes{0xFF, 0xD8} + picture.segments + JpegSegment(0xDB, quanta) + JpegSegment(picture.frame, frame) +
                 JpegSegment(0xC4, means) + JpegSegment(0xC4, details);
    JpegBits bits;
    std::vector<int> before(picture.components);
    for (uint32_t row = 0; row < (picture.height + 7) / 8; ++row)
        for (uint32_t column = 0; column < (picture.width + 7) / 8; ++column)
            for (uint32_t i = 0; i < picture.components; ++i) {
                const int mean = picture.level(i, column, row) - 128;
                PutDifference(mean - before[i], bits);
                before[i] = mean;
                if (!progressive) bits.Put(0, 1);
            }
    // First and last coefficient of the scan, and its precision.
    file = file + JpegSegment(0xDA, scan + Bytes{0, static_cast<uint8_t>(progressive ? 0 : 63), 0}) + bits.Take();
    for (uint32_t i = 1; progressive && i <= picture.components; ++i) {
        JpegBits none;
        for (uint32_t block = 0; block < (picture.height + 7) / 8 * ((picture.width + 7) / 8); ++block) none.Put(0, 1);
        file = file + JpegSegment(0xDA, {1, static_cast<uint8_t>(i), 0, 1, 63, 0}) + none.Take();
    }
    return file + Bytes{0xFF, 0xD9};
}

}  // namespace orlix::test
