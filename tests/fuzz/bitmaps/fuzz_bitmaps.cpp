// Random sequences of operations on bitmaps, each compared with its slow definition, pixel by pixel:
//
//     fuzz_bitmaps [--seed N] [--sequences N | --seconds N] [--steps N] [--only I,J,...] [--verbose] [--progress N]
//
// Sequence k has the seed N + k. --only runs these steps of each sequence alone, --verbose prints the calls, --progress
// a line every so many seconds. Status 1: a difference, which is printed with its seed, its step and the two pictures;
// scripts/fuzz shrink finds the fewest steps that show it.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <vector>

#include "fuzz/bitmaps/world.hpp"
#include "fuzz/program_words.hpp"

using namespace orlix::fuzz;

namespace {

std::optional<SequenceOptions> Parse(int count, char** words) {
    SequenceOptions options;
    const Flags flags = {{"--verbose", [&] { options.verbose = true; }}};
    if (!ReadWords(count, words, flags, SettingsOf(options))) return {};
    return options;
}

// False after a difference.
bool RunSequence(uint64_t seed, const SequenceOptions& options, uint64_t& steps) {
    World world(seed, options.verbose);
    for (int step = 0; step < options.steps; ++step) {
        if (!options.only.empty() && std::ranges::find(options.only, step) == options.only.end()) continue;
        try {
            world.Step(static_cast<uint64_t>(step));
        } catch (const Difference& difference) {
            std::printf("difference: seed %llu, step %d, %s\n%s\n", static_cast<unsigned long long>(seed), step,
                        world.call().c_str(), difference.what());
            return false;
        }
        ++steps;
    }
    return true;
}

}  // namespace

int main(int count, char** words) {
    const std::optional<SequenceOptions> options = Parse(count, words);
    if (!options) {
        std::fprintf(stderr, "see the beginning of tests/fuzz/bitmaps/fuzz_bitmaps.cpp\n");
        return 2;
    }
    const orlix::Apartment apartment;
    const std::time_t started = std::time(nullptr);
    std::time_t reported = started;
    uint64_t steps = 0;
    const auto report = [&](uint64_t sequences) {
        std::printf("progress: %.0f s sequences=%llu steps=%llu\n", std::difftime(std::time(nullptr), started),
                    static_cast<unsigned long long>(sequences), static_cast<unsigned long long>(steps));
        std::fflush(stdout);
    };
    uint64_t k = 0;
    for (;
         options->seconds > 0 ? std::difftime(std::time(nullptr), started) < options->seconds : k < options->sequences;
         ++k) {
        if (!RunSequence(options->seed + k, *options, steps)) return 1;
        if (options->progress > 0 && std::difftime(std::time(nullptr), reported) >= options->progress) {
            report(k + 1);
            reported = std::time(nullptr);
        }
    }
    report(k);
    return 0;
}
