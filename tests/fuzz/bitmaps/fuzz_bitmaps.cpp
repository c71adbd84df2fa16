// Random sequences of operations on bitmaps, each compared with its slow definition, pixel by pixel:
//
//     fuzz_bitmaps [--seed N] [--sequences N | --seconds N] [--steps N] [--only I,J,...] [--verbose] [--progress N]
//
// Sequence k has the seed N + k. --only runs these steps of each sequence alone, --verbose prints the calls, --progress
// a line every so many seconds. Status 1: a difference, which is printed with its seed, its step and the two pictures;
// scripts/fuzz shrink finds the fewest steps that show it.
#include <algorithm>
#include <cstdio>
#include <ctime>

#include "fuzz/bitmaps/world.hpp"
#include "fuzz/program_words.hpp"

using namespace orlix::fuzz;

namespace {

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
    const SequenceOptions options = ReadOptions(count, words, "tests/fuzz/bitmaps/fuzz_bitmaps.cpp");
    const orlix::Apartment apartment;
    const std::time_t started = std::time(nullptr);
    uint64_t steps = 0;
    const auto report = [&](uint64_t sequences) {
        std::printf("progress: %.0f s sequences=%llu steps=%llu\n", std::difftime(std::time(nullptr), started),
                    static_cast<unsigned long long>(sequences), static_cast<unsigned long long>(steps));
        std::fflush(stdout);
    };
    const auto run = [&](uint64_t seed) { return RunSequence(seed, options, steps); };
    return RunSequences(
               options, [](uint64_t) { return false; }, run, report)
               ? 0
               : 1;
}
