#include "files/corpus.hpp"

#include <array>
#include <cmath>
#include <cstring>
#include <map>
#include <optional>
#include <string>

#include "component/failure.hpp"
#include "files/memory_stream.hpp"

namespace orlix::test {
namespace {

constexpr uint32_t kSampleSizes[] = {1, 2, 4, 4};  // bytes, of the types that sound heads have

bool IsDocumented(const Failure& failure) {
    for (const char* const text :
         {"IPersistStreamInit::Load: not an image stream.", "IPersistStreamInit::Load: version compatibility problems.",
          "IPersistStreamInit::Load: the stream ends early.", "IPersistStreamInit::Load: the stream is damaged."})
        if (std::strcmp(failure.what(), text) == 0) return failure.result() == E_FAIL;
    constexpr char kLimit[] = "IPersistStreamInit::Load: the image has ";
    return std::strncmp(failure.what(), kLimit, sizeof kLimit - 1) == 0 && failure.result() == E_FAIL;
}

bool IsBand(int32_t band, int32_t bands) { return band == BI_AllBands || (band >= 0 && band < bands); }

void CheckImage(const StreamImage& image, size_t size) {
    const ImageContent& content = image.content;
    const ImageLayout& layout = content.layout;
    Rule(layout.width > 0 && layout.height > 0 && layout.bands > 0, "positive size");
    Rule(layout == MakeLayout(layout.width, layout.height, layout.bands, image.dataType), "the layout of the geometry");
    Rule(layout.totalSize / 16 <= size_t{kMostSamples}, "no more samples than asked for");
    Rule(content.data && content.owned.size() == layout.totalSize, "its own pixels");
    Rule(layout.totalSize <= uint64_t{size} * 1032, "pixels that the stream can fill");
    Rule(content.table.size() == static_cast<size_t>(OffsetTableSize(layout)), "a whole table");
    Rule(IsBand(image.settings.bandToProcess, layout.bands) && IsBand(image.settings.bandToDisplay, layout.bands),
         "bands that exist");
    Rule(image.dataType == DT_BYTE ? image.settings.numberOfBins == 256 : image.settings.numberOfBins > 1, "bins");
    const ImageProperties& properties = content.properties;
    Rule(std::isfinite(properties.micronsX) && std::isfinite(properties.micronsY) &&
             (properties.micronsX > 0) == (properties.micronsY > 0) && properties.micronsX >= 0,
         "both pixel sizes or none");
    Rule(properties.hasDescription != properties.description.empty(), "no description or one of some length");
}

std::optional<StreamImage> ReadByTheRules(std::span<const uint8_t> bytes) {
    MemorySource source(bytes);
    std::optional<StreamImage> image;
    try {
        image = ReadImageStream(source, SampleLimit(kMostSamples));
        CheckImage(*image, bytes.size());
    } catch (const Failure& failure) {
        Rule(IsDocumented(failure), "a documented failure");
    } catch (const FailedResult& failed) {
        Rule(failed.result() == E_FAIL, "E_FAIL");
    }
    Rule(!source.greedy(), "no more than has arrived");
    return image;
}

// All that comes before the pixels. Making it takes a hundred times as long as reading it, so each is made once.
const Bytes& SoundHead(uint32_t kind, uint32_t bands, uint32_t width, uint32_t height) {
    static std::map<std::array<uint32_t, 4>, Bytes> heads;
    Bytes& head = heads[{kind, bands, width, height}];
    if (!head.empty()) return head;
    constexpr uint32_t kTypes[] = {DT_BYTE, DT_WORD, DT_DWORD, DT_Float};
    const uint32_t sample = kSampleSizes[kind], stride = (width * sample + 3) / 4 * 4;
    HandMadeStream stream;
    stream.outer = FromText("qelo") + Double(1) + Little32(kTypes[kind]);
    stream.geometry = {};
    for (const uint32_t value :
         {bands, width, height, sample, stride, bands * height * stride, std::max(width, height) + 400})
        stream.geometry = stream.geometry + Little32(value);
    stream.table = ZigzagTable(width, height, stride / sample);
    return head = stream.Head();
}

}  // namespace

void CheckStreamReading(std::span<const uint8_t> bytes) { ReadByTheRules(bytes); }

void CheckStreamWriting(std::span<const uint8_t> bytes) {
    const std::optional<StreamImage> image = ReadByTheRules(bytes);
    if (!image) return;
    const Bytes written = Written(*image);
    Rule(written.size() <= LargestImageStream(image->dataType, image->content, image->settings), "the announced size");
    MemorySource again(written, 1000);
    Rule(Written(ReadImageStream(again)) == written, "the same bytes again");
    Rule(again.at() == written.size(), "read to its end");
}

Bytes WithSoundPixels(std::span<const uint8_t> bytes) {
    constexpr size_t kStart = 5;  // which type, bands, width, height, pixel
    if (bytes.size() < kStart) return Bytes(bytes.begin(), bytes.end());
    const uint32_t kind = bytes[0] % 4, bands = 1 + bytes[1] % 3, width = 1 + bytes[2] % 9u, height = 1 + bytes[3] % 9u;
    const Bytes pixels = StoredStream(Bytes(bands * height * ((width * kSampleSizes[kind] + 3) / 4 * 4), bytes[4]));
    return SoundHead(kind, bands, width, height) + Little32(static_cast<uint32_t>(pixels.size())) + pixels +
           Bytes(bytes.begin() + kStart, bytes.end());
}

std::vector<Seed> MakeStreamSeeds() {
    const HandMadeStream hand;
    std::vector<Seed> seeds = {{"stream-hand-made", hand.Whole()},
                               {"stream-tail", Bytes{0, 0, 4, 2, 9} + hand.Tail()}};  // for WithSoundPixels()
    for (const LONG type : {DT_BYTE, DT_WORD, DT_DWORD, DT_Float}) {
        StreamImage image;
        image.dataType = type;
        image.content = MakeContent(type, 6, 5, 2);
        for (size_t i = 0; i < image.content.layout.totalSize; ++i)
            image.content.data[i] = static_cast<uint8_t>(37 * i);
        image.content.properties.texts = {{OLESTR("Title"), OLESTR("text")}};
        image.content.properties.binaries = {{OLESTR("Bytes"), {1, 2, 3}}};
        image.settings.luminanceUpper = 200;
        seeds.push_back({"stream-written-" + std::to_string(type), Written(image)});
    }
    return seeds;
}

}  // namespace orlix::test
