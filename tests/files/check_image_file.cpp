#include "files/corpus.hpp"

#include <cmath>
#include <cstring>
#include <string>

#include "files/memory_image.hpp"
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
        Rule(given.bands == 1 || given.bands == 3, "one band or three");
        Rule(given.bits == 8 || given.bits == 16, "8 or 16 bits");
        Rule(std::isfinite(given.micronsX) && std::isfinite(given.micronsY) &&
                 (given.micronsX > 0) == (given.micronsY > 0) && given.micronsX >= 0 && given.micronsY >= 0,
             "both pixel sizes or none");
        for (const FileText& text : given.texts)
            Rule(IsFileKeyword(text.keyword) && !text.text.empty(), "texts with keywords");
        // The best compression is 1032 to 1; a bit can become three bytes through a palette.
        Rule(SamplesOf(given) <= uint64_t{fileSize_} * 1032 * 8 * 3, "size that the file can fill");
        Rule(SamplesOf(given) <= static_cast<uint64_t>(kMostSamples), "no more samples than asked for");
        image.Begin(given);
        std::fill(image.bytes.begin(), image.bytes.end(), fill_);
        std::fill(image.words.begin(), image.words.end(), static_cast<uint16_t>(fill_ * 257));
    }
    void* Row(int32_t band, int32_t y) override { return image.Row(band, y); }

    MemoryImage image;

private:
    size_t fileSize_;
    uint8_t fill_;
};

bool SameTexts(const FileProperties& left, const FileProperties& right) {
    if (left.texts.size() != right.texts.size()) return false;
    for (size_t i = 0; i < left.texts.size(); ++i)
        if (left.texts[i].keyword != right.texts[i].keyword || left.texts[i].text != right.texts[i].text) return false;
    return true;
}

// A text is kept up to its first 0.
FileProperties WithTextsAsKept(FileProperties properties) {
    std::erase_if(properties.texts, [](FileText& text) {
        text.text = text.text.substr(0, text.text.find(OLECHAR{0}));
        return text.text.empty();
    });
    return properties;
}

// False for what is no image, or too large a one.
bool ReadInto(std::span<const uint8_t> bytes, CheckedSink& sink) {
    try {
        ReadImageFile(bytes, sink, SampleLimit(kMostSamples));
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
    const bool colour = properties.bands == 3;
    for (const ImageFileFormat format : {IFF_PNG, colour ? IFF_PPM : IFF_PGM, colour ? IFF_PlainPPM : IFF_PlainPGM}) {
        MemoryImage back;
        ReadImageFile(Written(format, sink.image), back);
        Rule(back.SamePixels(sink.image), "the same pixels after writing");
        if (format != IFF_PNG) continue;
        Rule(SameTexts(back.properties, WithTextsAsKept(properties)), "the same texts after writing");
        Rule(back.properties.micronsX == properties.micronsX && back.properties.micronsY == properties.micronsY,
             "the same pixel size after writing");
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
