// Random sequences of calls of all methods, from seeds:
//
//     fuzz_calls [--seed N] [--sequences N | --seconds N] [--steps N] [--only I,J,...] [--verbose] [--progress N]
//                [--slow SECONDS] [--every-method]
//
// Sequence k has the seed N + k. --only runs these steps of each sequence alone, --verbose prints the calls, --progress
// a line every so many seconds. A call that is at work for 5 s is named meanwhile. Status 1: a client's or the
// library's object was left over, a call took longer than --slow (2 s of the processor), or, with --every-method, a
// method was not called in ten times as many sequences. A crash names the seed and the step.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "fuzz/calls/heap.hpp"
#include "fuzz/calls/report.hpp"
#include "fuzz/calls/world.hpp"
#include "fuzz/program_words.hpp"

using namespace orlix::fuzz;

namespace {

// Says what is left over; false when something is.
bool RunSequence(uint64_t seed, const SequenceOptions& options) {
    Choices choices(seed);
    place = {seed, 0, 0, "", "", ""};
    choices.BeginStep(UINT32_MAX);
    World world(choices, options.verbose);
    for (int step = 0; step < options.steps; ++step) {
        if (!options.only.empty() && std::ranges::find(options.only, step) == options.only.end()) continue;
        place.step = step;
        choices.BeginStep(static_cast<uint64_t>(step));
        world.Say("step %d", step);
        world.Step();
    }
    place.step = options.steps;
    choices.BeginStep(UINT32_MAX - 1);
    const std::string left = world.Close();
    CheckHeap();
    ++TallyOfProcess().sequences;
    if (left.empty()) return true;
    std::printf("left over: %s, seed %llu\n", left.c_str(), static_cast<unsigned long long>(seed));
    std::fflush(stdout);
    return false;
}

// Except for the events, which clients alone implement.
std::vector<const Method*> NeverCalled() {
    std::vector<const Method*> never;
    for (size_t i = 0; i < Methods().size(); ++i)
        if (TallyOfProcess().callsOf[i] == 0 && *Methods()[i].iid != __uuidof(IPictureExEvents))
            never.push_back(&Methods()[i]);
    return never;
}

}  // namespace

int main(int count, char** words) {
    bool everyMethod = false;
    const SequenceOptions options =
        ReadOptions(count, words, "tests/fuzz/calls/fuzz_calls.cpp",
                    {{"--every-method", false, [&](const char*) { everyMethod = true; }},
                     {"--slow", true, [](const char* text) { slowSeconds = std::strtod(text, nullptr); }}});
    ReportDeath();
    WatchCalls();
    // Chance may need more sequences to call every method than were asked for.
    const auto more = [&](uint64_t k) { return everyMethod && k < 10 * options.sequences && !NeverCalled().empty(); };
    // What is left over would be seen again after each of the following.
    if (!RunSequences(
            options, more, [&](uint64_t seed) { return RunSequence(seed, options); },
            [](uint64_t) { PrintProgress(); }))
        return 1;
    int status = 0;
    if (const uint64_t slow = TallyOfProcess().slowCalls) {
        std::printf("slow calls: %llu\n", static_cast<unsigned long long>(slow));
        status = 1;
    }
    if (everyMethod)
        for (const Method* const method : NeverCalled()) {
            std::printf("never called: %s::%s\n", method->interfaceName, method->name);
            status = 1;
        }
    return status;
}
