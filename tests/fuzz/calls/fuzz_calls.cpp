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
#include <cstring>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include "fuzz/calls/death.hpp"
#include "fuzz/calls/heap.hpp"
#include "fuzz/calls/report.hpp"
#include "fuzz/calls/watchdog.hpp"
#include "fuzz/calls/world.hpp"
#include "fuzz/program_words.hpp"

using namespace orlix::fuzz;

namespace {

struct Options : SequenceOptions {
    bool everyMethod = false;
};

std::optional<Options> Parse(int count, char** words) {
    Options options;
    const Flags flags = {
        {"--verbose", [&] { options.verbose = true; }},
        {"--every-method", [&] { options.everyMethod = true; }},
    };
    Settings settings = SettingsOf(options);
    settings["--slow"] = [](const char* text) { slowSeconds = std::strtod(text, nullptr); };
    if (!ReadWords(count, words, flags, settings)) return {};
    return options;
}

// Empty, or what is left over.
std::string RunSequence(uint64_t seed, const Options& options) {
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
    return left;
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
    const std::optional<Options> options = Parse(count, words);
    if (!options) {
        std::fprintf(stderr, "see the beginning of tests/fuzz/calls/fuzz_calls.cpp\n");
        return 2;
    }
    ReportDeath();
    WatchCalls();
    const Tally& tally = TallyOfProcess();
    int status = 0;
    const std::time_t started = std::time(nullptr);
    std::time_t reported = started;
    // Chance may need more sequences to call every method than were asked for.
    const auto goesOn = [&](uint64_t k) {
        if (options->seconds > 0) return std::difftime(std::time(nullptr), started) < options->seconds;
        return k < options->sequences ||
               (options->everyMethod && k < 10 * options->sequences && !NeverCalled().empty());
    };
    for (uint64_t k = 0; goesOn(k); ++k) {
        const std::string left = RunSequence(options->seed + k, *options);
        if (!left.empty()) {
            std::printf("left over: %s, seed %llu\n", left.c_str(), static_cast<unsigned long long>(options->seed + k));
            std::fflush(stdout);
            return 1;  // what is left over would be seen again after each of the following
        }
        const std::time_t now = std::time(nullptr);
        if (options->progress > 0 && std::difftime(now, reported) >= options->progress) {
            PrintProgress(ReachedEdges());
            reported = now;
        }
    }
    PrintProgress(ReachedEdges());
    if (tally.slowCalls > 0) {
        std::printf("slow calls: %llu\n", static_cast<unsigned long long>(tally.slowCalls));
        status = 1;
    }
    if (options->everyMethod)
        for (const Method* const method : NeverCalled()) {
            std::printf("never called: %s::%s\n", method->interfaceName, method->name);
            status = 1;
        }
    return status;
}
