// The fuzzers' seeds, and mutations of them, as a test of every build.
#include <stdexcept>

#include "files/corpus.hpp"
#include "files/reading.hpp"

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

// The rule that is broken, of the checks that throw std::logic_error.
template <class Checks>
std::string Broken(const Checks& checks) {
    try {
        checks();
        return "";
    } catch (const std::logic_error& broken) {
        return broken.what();
    }
}

template <class Check>
void ExpectSound(const std::vector<Seed>& seeds, int rounds, Noise noise, const Check& check) {
    for (const Seed& seed : seeds) EXPECT_EQ("", Broken([&] { check(seed.bytes); })) << seed.name;
    for (int round = 0; round < rounds; ++round)
        for (const Seed& seed : seeds) {
            const Seed& other = seeds[noise.below(static_cast<uint32_t>(seeds.size()))];
            const Bytes mutated = Mutated(seed.bytes, other.bytes, noise);
            ASSERT_EQ("", Broken([&] { check(mutated); })) << seed.name << " round " << round;
        }
}

TEST(FuzzCorpus, TheSeedsAreImagesAndMutationsOfThemBreakNoRule) {
    for (const Seed& seed : MakeSeeds()) Read(seed.bytes);
    ExpectSound(MakeSeeds(), 60, Noise(20240229), [](const Bytes& bytes) {
        const Bytes right = WithRightChecksums(bytes);
        CheckReading(bytes);
        CheckReading(right);
        CheckWriting(right);
    });
}

TEST(FuzzCorpus, StreamsAndTheirMutationsBreakNoRule) {
    ExpectSound(MakeStreamSeeds(), 80, Noise(20250411), [](const Bytes& bytes) {
        CheckStreamWriting(bytes);
        CheckStreamWriting(WithSoundPixels(bytes));
    });
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

}  // namespace
}  // namespace orlix::test
