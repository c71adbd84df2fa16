#include "files/image_stream.hpp"

#include <gtest/gtest.h>
#include <zlib.h>

#include <limits>
#include <string>
#include <tuple>

#include "component/failure.hpp"
#include "files/memory_stream.hpp"

namespace orlix::test {
namespace {

constexpr const char* kNotAnImage = "IPersistStreamInit::Load: not an image stream.";
constexpr const char* kVersion = "IPersistStreamInit::Load: version compatibility problems.";
constexpr const char* kEndsEarly = "IPersistStreamInit::Load: the stream ends early.";
constexpr const char* kDamaged = "IPersistStreamInit::Load: the stream is damaged.";
constexpr const char* kSilent = "failed result";

// "" when the stream is read, and to its last byte; else the text.
std::string Outcome(const Bytes& bytes, size_t piece = SIZE_MAX, const SampleLimit& limit = {}) {
    MemorySource source(bytes, piece);
    try {
        ReadImageStream(source, limit);
        if (source.greedy()) return "greedy";
        return source.at() == bytes.size() ? "" : "not read to the end";
    } catch (const Failure& failure) {
        return source.greedy() ? "greedy" : failure.what();
    } catch (const FailedResult& failed) {
        return failed.result() == E_FAIL ? failed.what() : "another result";
    }
}

StreamImage ReadBack(const Bytes& bytes) {
    MemorySource source(bytes);
    return ReadImageStream(source);
}

TEST(ImageStream, IsReadFieldByField) {
    const StreamImage image = ReadBack(HandMadeStream().Whole());
    EXPECT_EQ(DT_BYTE, image.dataType);
    const ImageContent& content = image.content;
    EXPECT_EQ((ImageLayout{5, 3, 1, 1, 8, 24, 24}), content.layout);
    EXPECT_EQ(HandMadeStream().pixels, Bytes(content.data, content.data + 24));
    const auto& [orgX, orgY, matrix] = content.coordinates;
    EXPECT_EQ(std::tuple(-1.5, 2.5, 3, 4, 5, 6),
              std::tuple(orgX, orgY, matrix.A11, matrix.A12, matrix.A21, matrix.A22));
    const ImageProperties& properties = content.properties;
    EXPECT_TRUE(properties.hasDescription);
    EXPECT_EQ(OLESTR("a\u9762"), properties.description);
    EXPECT_EQ(std::pair(0.25, 0.5), std::pair(properties.micronsX, properties.micronsY));
    ASSERT_EQ(2u, properties.texts.size());
    EXPECT_EQ(OLESTR("M. W."), properties.texts[0].text);
    EXPECT_EQ(OLESTR("Author"), properties.texts[1].keyword);
    ASSERT_EQ(1u, properties.binaries.size());
    EXPECT_EQ(OLESTR("Profile"), properties.binaries[0].keyword);
    EXPECT_EQ((Bytes{1, 0, 255}), properties.binaries[0].bytes);
    const ImageSettings& settings = image.settings;
    EXPECT_EQ(std::tuple(7, 200, BI_AllBands, 256), std::tuple(settings.luminanceLower, settings.luminanceUpper,
                                                               settings.bandToProcess, settings.numberOfBins));
    EXPECT_EQ(std::tuple(9, 8, 0, 4u * 3, 77),
              std::tuple(settings.displayLower, settings.displayUpper, settings.bandToDisplay, settings.palette[12],
                         settings.displaySetting[0]));
}

TEST(ImageStream, IsWrittenByteForByteAsLaidOut) {
    const HandMadeStream hand;
    const StreamImage image = ReadBack(hand.Whole());
    const Bytes written = Written(image);
    const Bytes head = hand.Head();
    ASSERT_EQ(16u + 12 + 48 + 28 + 8 * 405, head.size());
    ASSERT_GT(written.size(), head.size() + 4);
    EXPECT_EQ(head, Part(written, 0, head.size()));

    const size_t block = head.size() + 4;
    const size_t length = Part(written, block).size() - hand.Tail().size();
    EXPECT_EQ(Little32(static_cast<uint32_t>(length)), Part(written, block - 4, 4));
    Bytes pixels(25);
    uLongf size = 25;
    ASSERT_EQ(Z_OK, ::uncompress(pixels.data(), &size, &written[block], static_cast<uLong>(length)));
    EXPECT_EQ(hand.pixels, Part(pixels, 0, size));
    EXPECT_EQ(hand.Tail(), Part(written, block + length));

    EXPECT_EQ(written, Written(ReadBack(written)));
    // ceil(24 * 1.001) + 12 bytes for the block
    EXPECT_EQ(written.size() - length + 37, LargestImageStream(image.dataType, image.content, image.settings));
}

// Rows longer than columns are many and the other way round: one axis ends before the table does.
TEST(ImageStream, TableReachesBeyondTheShorterAxisWithZeros) {
    for (const auto& [width, height] : {std::pair{250, 3}, {3, 250}, {1, 1}, {2, 700}}) {
        StreamImage image;
        image.dataType = DT_WORD;
        image.content = MakeContent(DT_WORD, width, height, 2);
        const Bytes written = Written(image);
        const auto stride = static_cast<uint32_t>((2 * width + 3) / 4 * 4);
        const Bytes table = ZigzagTable(static_cast<uint32_t>(width), static_cast<uint32_t>(height), stride / 2);
        ASSERT_GT(written.size(), 104 + table.size());
        EXPECT_EQ(table, Part(written, 104, table.size()));
        EXPECT_EQ("", Outcome(written, 5));
    }
}

TEST(ImageStream, EveryTruncationFailsAndShortReadsDoNot) {
    const Bytes whole = HandMadeStream().Whole();
    for (const size_t piece : {size_t{1}, size_t{7}, SIZE_MAX}) EXPECT_EQ("", Outcome(whole, piece));
    for (size_t size = 0; size < whole.size(); ++size)
        ASSERT_EQ(size < 4 ? kNotAnImage : kEndsEarly, Outcome(Part(whole, 0, size), 1000)) << size;
}

// Up to the pixels every byte is decided by the others, but for the coordinate map and two entries without meaning
// (rows 203 and 204 of an image of three).
TEST(ImageStream, EveryChangeOfAByteBeforeThePixelsIsFound) {
    const HandMadeStream hand;
    Bytes bytes = hand.Whole();
    const size_t end = hand.Head().size();
    const auto free = [&](size_t at) {
        const bool meaningless = at >= end - 16 && (at - (end - 16)) % 8 >= 4;
        return (at >= 28 && at < 76) || meaningless;
    };
    for (size_t at = 0; at < end; ++at)
        for (const int change : {1, 2, 4, 8, 16, 32, 64, 128, 255}) {
            const uint8_t right = bytes[at];
            bytes[at] = static_cast<uint8_t>(right ^ change);
            const std::string outcome = Outcome(bytes);
            bytes[at] = right;
            const bool version = (at >= 4 && at < 12) || (at >= 20 && at < 28);
            const std::string wanted = at < 4 ? kNotAnImage : version ? kVersion : at < 20 ? kSilent : kDamaged;
            // A type of another size, or no type.
            if (at >= 12 && at < 16)
                ASSERT_TRUE(outcome == kSilent || outcome == kDamaged) << at << " " << change << " " << outcome;
            else
                ASSERT_EQ(free(at) ? "" : wanted, outcome) << at << " " << change;
        }
}

TEST(ImageStream, RefusesWhatDoesNotFitTogether) {
    using Field = Bytes HandMadeStream::*;
    const auto with = [](Field field, const Bytes& bytes) {
        HandMadeStream stream;
        stream.*field = bytes;
        return stream.Whole();
    };
    // One byte other than it was.
    const auto byte = [&](Field field, size_t at, uint8_t value) {
        Bytes bytes = HandMadeStream().*field;
        bytes[at] = value;
        return with(field, bytes);
    };
    const auto geometry = [&](const std::vector<uint32_t>& numbers) {
        Bytes bytes;
        for (const uint32_t number : numbers) bytes = bytes + Little32(number);
        return with(&HandMadeStream::geometry, bytes);
    };
    using S = HandMadeStream;
    HandMadeStream overfull;  // more pixels than the block can hold
    overfull.geometry =
        Little32(1) + Little32(5) + Little32(8000) + Little32(1) + Little32(8) + Little32(64000) + Little32(8400);
    overfull.table = ZigzagTable(5, 8000, 8);
    const Bytes outer = FromText("qelo"), inner = FromText("imba"), pixels = S().pixels;
    constexpr uint32_t kMost = 0x7FFFFFFF, kTall = 1 << 24 | 1;
    const struct {
        const char* what;
        Bytes stream;
        const char* outcome;
    } cases[] = {
        {"other letters", byte(&S::outer, 0, 'p'), kNotAnImage},
        {"header 1.1", with(&S::outer, outer + Double(1.1) + Little32(8)), kVersion},
        {"record 1.2", with(&S::inner, inner + Double(1.2)), kVersion},
        {"record NaN", with(&S::inner, inner + Double(0.0 / 0.0)), kVersion},
        {"other record", byte(&S::inner, 3, 'b'), kSilent},
        {"doubles", with(&S::outer, outer + Double(1.0) + Little32(0x440)), kSilent},
        {"no bands", geometry({0, 5, 3, 1, 8, 0, 405}), kDamaged},
        {"negative width", geometry({1, 0xFFFFFFFB, 3, 1, 8, 24, 405}), kDamaged},
        {"no bytes per sample", geometry({1, 5, 3, 0, 0, 0, 405}), kDamaged},
        {"huge", geometry({kMost, kMost, kMost, 1, 0x80000000, 0, kMost}), kDamaged},
        {"wraps to 0", geometry({1u << 16, 4, 1u << 14, 1, 4, 0, (1u << 14) + 400}), kDamaged},
        {"long row", geometry({1, kMost, 1, 1, 0x80000000, 0x80000000, 0x8000018F}),
         "IPersistStreamInit::Load: the image has 2147483647 samples, more than the limit of 268435456."},
        {"tall column", geometry({1, 1, kTall, 1, 4, 4 * kTall, kTall + 400}),
         "IPersistStreamInit::Load: the image has 16777217 rows or columns, more than the limit of 16777216."},
        {"more pixels than the block can hold", overfull.Whole(), kDamaged},
        {"block too long", with(&S::pixels, pixels + Bytes(40)), kDamaged},
        {"too few pixels", with(&S::pixels, Bytes(23)), kDamaged},
        {"too many pixels", with(&S::pixels, pixels + Bytes{0}), kDamaged},
        {"bytes behind the compressed ones", S().Head() + S().Block(StoredStream(pixels) + Bytes{0}) + S().Tail(),
         kDamaged},
        {"band to process", with(&S::processing, Bytes{0, 1} + Little32(1) + Little32(256)), kDamaged},
        {"bins", with(&S::processing, Bytes{0, 1} + Little32(0) + Little32(255)), kDamaged},
        {"band to display", byte(&S::display, 2, 1), kDamaged},
        {"long description", with(&S::description, Little32(kMost) + Bytes(99, 'a')), kEndsEarly},
        {"longer description", with(&S::description, Little32(0x80000000)), kDamaged},
        {"many texts",
         S().Head() + S().Block(StoredStream(pixels)) + S().description + S().processing + S().display +
             Little32(kMost),
         kEndsEarly},
        {"text version", byte(&S::texts, 11, 0), kVersion},
        {"binary version", byte(&S::binaries, 11, 0), kVersion},
        {"long binary", with(&S::binaries, Little32(1) + Double(1) + Little32(0) + Little32(kMost)), kEndsEarly},
        {"what follows is somebody else's", S().Whole() + Bytes{0}, "not read to the end"},
    };
    for (const auto& [what, stream, outcome] : cases) EXPECT_EQ(outcome, Outcome(stream)) << what;
    EXPECT_EQ("", Outcome(S().Whole(), SIZE_MAX, SampleLimit(15)));
    EXPECT_EQ("IPersistStreamInit::Load: the image has 15 samples, more than the limit of 14.",
              Outcome(S().Whole(), SIZE_MAX, SampleLimit(14)));
}

// Noise does not compress: the block comes in several buffers of the reader.
TEST(ImageStream, LongBlocksAreReadToTheirLastByteAndNoFurther) {
    StreamImage image;
    image.dataType = DT_BYTE;
    image.content = MakeContent(DT_BYTE, 400, 500, 1);
    Noise noise(3);
    for (size_t i = 0; i < 200000; ++i) image.content.data[i] = static_cast<uint8_t>(noise());
    const Bytes pixels(image.content.data, image.content.data + 200000);
    const Bytes written = Written(image);
    const StreamImage back = ReadBack(written);
    EXPECT_EQ(pixels, Bytes(back.content.data, back.content.data + 200000));

    const Bytes start = Part(written, 0, 104 + 8 * 900), whole = StoredStream(pixels);
    const Bytes tail = WriteImageStream(image.dataType, image.content, image.settings).tail;
    Bytes flipped = whole;
    flipped.back() ^= 1;
    for (const auto& [what, block, outcome] : {std::tuple{"right", whole, ""},
                                               {"checksum", flipped, kDamaged},
                                               {"cut", Part(whole, 0, whole.size() - 1), kDamaged},
                                               {"one byte behind", whole + Bytes{0}, kDamaged},
                                               {"one pixel more", StoredStream(pixels + Bytes{0}), kDamaged},
                                               {"one pixel less", StoredStream(Part(pixels, 1)), kDamaged}})
        EXPECT_EQ(outcome, Outcome(start + Little32(static_cast<uint32_t>(block.size())) + block + tail)) << what;
}

TEST(ImageStream, SizeOfAPixelAndSignificantBitsAreEntriesOnlyWhereTheyCanBe) {
    HandMadeStream stream;  // of bytes
    for (const uint32_t bits : {0u, 7u, 8u, 0xFFFFFFFFu}) {
        const Bytes entry = Double(1) + LittleString(OLESTR("SignificantBits")) + Little32(4) + Little32(bits);
        stream.binaries = Little32(2) + entry + entry;
        const ImageProperties properties = ReadBack(stream.Whole()).content.properties;
        EXPECT_EQ(bits == 7 ? 7 : 0, properties.significantBits);
        EXPECT_EQ(bits == 7 ? 1u : 2u, properties.binaries.size());
    }
    for (const double bad : {0.0, -1.0, std::numeric_limits<double>::infinity(), 0.0 / 0.0}) {
        stream.binaries =
            Little32(1) + Double(1) + LittleString(OLESTR("MicronsPerPixel")) + Little32(16) + Double(1) + Double(bad);
        const StreamImage image = ReadBack(stream.Whole());
        EXPECT_EQ(0, image.content.properties.micronsX);
        EXPECT_EQ(1u, image.content.properties.binaries.size());
    }
    for (const auto& [keyword, size] : {std::pair(OLESTR("Micron"), 16u), {OLESTR("MicronsPerPixel"), 24u}}) {
        const Bytes entry = LittleString(keyword) + Little32(size) + Part(Double(1) + Double(1) + Double(1), 0, size);
        stream.binaries = Little32(1) + Double(1) + entry;
        const ImageProperties properties = ReadBack(stream.Whole()).content.properties;
        EXPECT_EQ(0, properties.micronsX);
        EXPECT_EQ(1u, properties.binaries.size()) << "another keyword, another size";
    }
}

}  // namespace
}  // namespace orlix::test
