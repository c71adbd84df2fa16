#include "files/corpus.hpp"

#include <algorithm>
#include <cstring>
#include <string>

#include "files/memory_image.hpp"
#include "files/private_chunks.hpp"
#include "image/byte_order.hpp"

namespace orlix::test {
namespace {

constexpr uint64_t kMostSamplesWritten = uint64_t{1} << 16;

uint64_t SamplesOf(const FileProperties& properties) {
    return static_cast<uint64_t>(properties.width) * static_cast<uint64_t>(properties.height) *
           static_cast<uint64_t>(properties.bands);
}

// Every sample holds `fill` until it is written.
class CheckedSink final : public PixelSink {
public:
    CheckedSink(size_t fileSize, uint8_t fill) : fileSize_(fileSize), fill_(fill) {}

    void Begin(const FileProperties& given) override {
        Rule(given.width > 0 && given.height > 0, "positive size");
        Rule(given.bands > 0, "a band");
        Rule(given.dataType == DT_BYTE || given.dataType == DT_WORD || given.dataType == DT_DWORD ||
                 given.dataType == DT_Float,
             "a type of images");
        const ImageProperties& kept = given.kept;
        Rule(IsPixelSize(kept.micronsX, kept.micronsY) || (kept.micronsX == 0 && kept.micronsY == 0),
             "both pixel sizes or none");
        // The best compression is 2730 to 1 (LZW); a bit can become three bytes through a palette.
        Rule(SamplesOf(given) <= uint64_t{fileSize_} * 2730 * 8 * 3, "size that the file can fill");
        Rule(SamplesOf(given) <= static_cast<uint64_t>(kMostSamples), "no more samples than asked for");
        image.Begin(given);
        std::fill(image.bytes.begin(), image.bytes.end(), fill_);
        std::fill(image.words.begin(), image.words.end(), static_cast<uint16_t>(fill_ * 257));
        std::fill(image.dwords.begin(), image.dwords.end(), fill_ * 0x01010101u);
    }
    void* Row(int32_t band, int32_t y) override { return image.Row(band, y); }

    MemoryImage image;

private:
    size_t fileSize_;
    uint8_t fill_;
};

bool SameEntries(ImageFileFormat format, const ImageProperties& left, const ImageProperties& right) {
    const auto same = [](const auto& one, const auto& other) {
        return std::ranges::equal(one, other, [](const auto& a, const auto& b) {
            if constexpr (requires { a.text; })
                return a.keyword == b.keyword && a.text == b.text;
            else if constexpr (requires { a.keyword; })
                return a.keyword == b.keyword && a.bytes == b.bytes;
            else
                return a.type == b.type && a.behindPixels == b.behindPixels && a.bytes == b.bytes;
        });
    };
    return same(left.AllTexts(), right.AllTexts()) && same(left.binaries, right.binaries) &&
           (format != IFF_PNG || same(left.chunks, right.chunks));
}

bool SameSettings(const FileProperties& left, const FileProperties& right) {
    // Their chunks, because they hold NaN.
    const auto leftChunks = PrivateChunks(left), rightChunks = PrivateChunks(right);
    return std::ranges::equal(leftChunks, rightChunks,
                              [](const PrivateChunk& a, const PrivateChunk& b) { return a.data == b.data; });
}

// False for what is no image, or too large a one.
bool ReadInto(std::span<const uint8_t> bytes, CheckedSink& sink) {
    try {
        ReadOptions options;
        options.limit = SampleLimit(kMostSamples);
        sink.image.properties = ReadImageFile(bytes, sink, options);
        return true;
    } catch (const Failure& failure) {
        Rule(std::strncmp(failure.what(), "IImageVPAEx::CreateFrom", 23) == 0, "a text that names the reader");
        Rule(failure.result() == DISP_E_EXCEPTION, "DISP_E_EXCEPTION");
        return false;
    }
}

}  // namespace

void CheckReading(std::span<const uint8_t> bytes) {
    CheckedSink sink(bytes.size(), 0x00), other(bytes.size(), 0xFF);
    if (!ReadInto(bytes, sink)) return;
    Rule(sink.image.begun, "begun");
    Rule(ReadInto(bytes, other), "the same again");
    Rule(sink.image.SamePixels(other.image), "every sample written");
}

void CheckWriting(std::span<const uint8_t> bytes) {
    CheckedSink sink(bytes.size(), 0);
    if (!ReadInto(bytes, sink) || SamplesOf(sink.image.properties) > kMostSamplesWritten) return;
    const FileProperties& properties = sink.image.properties;
    const bool narrow = properties.dataType == DT_BYTE || properties.dataType == DT_WORD;
    std::vector<ImageFileFormat> formats = {IFF_TIFF};
    if (narrow && properties.bands == 1) formats = {IFF_TIFF, IFF_PNG, IFF_PAM, IFF_PGM, IFF_PlainPGM};
    if (narrow && properties.bands == 3) formats = {IFF_TIFF, IFF_PNG, IFF_PAM, IFF_PPM, IFF_PlainPPM};
    if (properties.dataType == DT_Float && (properties.bands == 1 || properties.bands == 3))
        formats = {IFF_TIFF, IFF_PFM};
    if (properties.dataType == DT_BYTE && (properties.bands == 1 || properties.bands == 3)) formats.push_back(IFF_BMP);
    for (const ImageFileFormat format : formats) {
        MemoryImage back;
        back.properties = ReadImageFile(Written(format, sink.image), back);
        Rule(back.SamePixels(sink.image), "the same pixels after writing");
        if (format != IFF_PNG && format != IFF_TIFF) continue;
        Rule(SameEntries(format, back.properties.kept, properties.kept), "the same entries after writing");
        Rule(SameSettings(back.properties, properties), "the same calibration and settings after writing");
    }
}

Bytes WithRightChecksums(std::span<const uint8_t> bytes) {
    Bytes file(bytes.begin(), bytes.end());
    for (size_t at = 8; at + 12 <= file.size();) {
        const size_t length = BigEndian32(&file[at]);
        if (length > file.size() - at - 12) break;
        const auto type = file.begin() + static_cast<ptrdiff_t>(at + 4);
        PutBigEndian32(&file[at + 8 + length], Crc32(Bytes(type, type + static_cast<ptrdiff_t>(4 + length))));
        at += 12 + length;
    }
    return file;
}

}  // namespace orlix::test
