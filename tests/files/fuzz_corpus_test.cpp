// The fuzzers' seeds, and mutations of them, as a test of every build.
#include <stdexcept>

#include "files/check_image_file.hpp"
#include "files/check_image_stream.hpp"
#include "files/reading.hpp"
#include "files/seeds.hpp"

namespace orlix::test {
namespace {

// A few changes of the kinds that fuzzers make.
Bytes Mutated(Bytes file, const Bytes& other, Noise& noise) {
    for (uint32_t changes = 1 + noise.below(4); changes > 0 && !file.empty(); --changes) {
        const size_t at = noise.below(static_cast<uint32_t>(file.size()));
        const auto place = file.begin() + static_cast<ptrdiff_t>(at);
        switch (noise.below(7)) {
            case 0:
                *place = static_cast<uint8_t>(noise());
                break;
            case 1:
                *place = static_cast<uint8_t>(*place ^ 1u << noise.below(8));
                break;
            case 2:  // numbers at the ends of their range
                for (size_t i = at; i < std::min(file.size(), at + 4); ++i) file[i] = noise.below(2) ? 0xFF : 0x00;
                break;
            case 3:
                file.erase(place, place + static_cast<ptrdiff_t>(std::min<size_t>(file.size() - at, noise.below(9))));
                break;
            case 4:
                file.insert(place, noise.below(9), static_cast<uint8_t>(noise()));
                break;
            case 5:
                file.resize(at);
                break;
            default:
                if (at < other.size()) file.insert(place, other.begin() + static_cast<ptrdiff_t>(at), other.end());
        }
    }
    return file;
}

// Of the checks that throw std::logic_error.
template <class Checks>
std::string Broken(const Checks& checks) {
    try {
        checks();
        return "";
    } catch (const std::logic_error& broken) {
        return broken.what();
    }
}
std::string BrokenRule(const Bytes& bytes) {
    return Broken([&] {
        const Bytes right = WithRightChecksums(bytes);
        CheckReading(bytes);
        CheckReading(right);
        CheckWriting(right);
    });
}
std::string BrokenRuleOfStreams(const Bytes& bytes) {
    return Broken([&] {
        CheckStreamReading(bytes);
        CheckStreamReading(WithSoundPixels(bytes));
    });
}

TEST(FuzzCorpus, TheSeedsAreImagesAndMutationsOfThemBreakNoRule) {
    const std::vector<Seed> seeds = MakeSeeds();
    Noise noise(20240229);
    for (const Seed& seed : seeds) {
        Read(seed.bytes);
        EXPECT_EQ("", BrokenRule(seed.bytes)) << seed.name;
    }
    for (int round = 0; round < 60; ++round)
        for (const Seed& seed : seeds) {
            const Seed& other = seeds[noise.below(static_cast<uint32_t>(seeds.size()))];
            ASSERT_EQ("", BrokenRule(Mutated(seed.bytes, other.bytes, noise))) << seed.name << " round " << round;
        }
}

// Every value of every byte of the header of a small image.
TEST(FuzzCorpus, NoHeaderBreaksARule) {
    const Bytes bmp = MakeBmp({.width = 5, .height = 2, .palette = GreyRampPalette(), .rows = Bytes(16)});
    const Bytes png = PngFile(PngHeader(2, 2, 8, 0), StoredStream({0, 10, 20, 0, 30, 40}));
    for (const auto& [file, from, to] : {std::tuple{bmp, 0, 60}, {png, 16, 29}})
        for (int at = from; at < to; ++at)
            for (int value = 0; value < 256; ++value) {
                Bytes damaged = file;
                damaged[static_cast<size_t>(at)] = static_cast<uint8_t>(value);
                EXPECT_EQ("", Broken([&] { CheckReading(WithRightChecksums(damaged)); }))
                    << "byte " << at << " value " << value;
            }
}

TEST(FuzzCorpus, StreamsAndTheirMutationsBreakNoRule) {
    const std::vector<Seed> seeds = MakeStreamSeeds();
    Noise noise(20250411);
    for (const Seed& seed : seeds) EXPECT_EQ("", BrokenRuleOfStreams(seed.bytes)) << seed.name;
    for (int round = 0; round < 300; ++round)
        for (const Seed& seed : seeds) {
            const Seed& other = seeds[noise.below(static_cast<uint32_t>(seeds.size()))];
            ASSERT_EQ("", BrokenRuleOfStreams(Mutated(seed.bytes, other.bytes, noise)))
                << seed.name << " round " << round;
        }
}

}  // namespace
}  // namespace orlix::test
