// The fuzzers' seeds, and mutations of them, as a test of every build.
#include <gtest/gtest.h>

#include <stdexcept>

#include "files/check_image_file.hpp"
#include "files/check_image_stream.hpp"
#include "files/memory_image.hpp"
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

std::string BrokenRule(const Bytes& bytes) {
    try {
        const Bytes right = WithRightChecksums(bytes);
        CheckReading(bytes);
        CheckReading(right);
        CheckWriting(right);
        return "";
    } catch (const std::logic_error& broken) {
        return broken.what();
    }
}

std::string BrokenRuleOfStreams(const Bytes& bytes) {
    try {
        CheckStreamReading(bytes);
        CheckStreamReading(WithSoundPixels(bytes));
        return "";
    } catch (const std::logic_error& broken) {
        return broken.what();
    }
}

TEST(FuzzCorpus, EverySeedIsAnImage) {
    for (const Seed& seed : MakeSeeds()) {
        MemoryImage image;
        EXPECT_EQ("", FailureOfReading(seed.bytes, image)) << seed.name;
        EXPECT_EQ("", BrokenRule(seed.bytes)) << seed.name;
    }
}

TEST(FuzzCorpus, MutationsOfTheSeedsBreakNoRule) {
    const std::vector<Seed> seeds = MakeSeeds();
    Noise noise(20240229);
    for (int round = 0; round < 60; ++round)
        for (const Seed& seed : seeds) {
            const Seed& other = seeds[noise.below(static_cast<uint32_t>(seeds.size()))];
            const Bytes mutated = Mutated(seed.bytes, other.bytes, noise);
            ASSERT_EQ("", BrokenRule(mutated)) << seed.name << " round " << round;
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
