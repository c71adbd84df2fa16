// The command line of a fuzzer, and its sequences.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

namespace orlix::fuzz {

// "I,J,..."
inline std::vector<int> Numbers(const char* text) {
    std::vector<int> numbers;
    while (*text) {
        char* end = nullptr;
        numbers.push_back(static_cast<int>(std::strtol(text, &end, 10)));
        text = *end ? end + 1 : end;
    }
    return numbers;
}

// What every program that runs sequences is told.
struct SequenceOptions {
    uint64_t seed = 1;
    uint64_t sequences = 100;
    double seconds = 0;
    int steps = 60;
    std::vector<int> only;
    bool verbose = false;
    double progress = 0;
};

// A word of the command line, and whether another one follows that it takes.
struct Word {
    std::string name;
    bool takesValue;
    std::function<void(const char*)> set;
};

// Ends the program for a word that is neither one of these nor the program's own; `file` explains them.
inline SequenceOptions ReadOptions(int count, char** given, const char* file, const std::vector<Word>& own = {}) {
    SequenceOptions options;
    std::vector<Word> words = {
        {"--seed", true, [&](const char* text) { options.seed = std::strtoull(text, nullptr, 10); }},
        {"--sequences", true, [&](const char* text) { options.sequences = std::strtoull(text, nullptr, 10); }},
        {"--seconds", true, [&](const char* text) { options.seconds = std::strtod(text, nullptr); }},
        {"--steps", true, [&](const char* text) { options.steps = std::atoi(text); }},
        {"--only", true, [&](const char* text) { options.only = Numbers(text); }},
        {"--progress", true, [&](const char* text) { options.progress = std::strtod(text, nullptr); }},
        {"--verbose", false, [&](const char*) { options.verbose = true; }},
    };
    words.insert(words.end(), own.begin(), own.end());
    for (int i = 1; i < count; ++i) {
        const auto word = std::ranges::find(words, given[i], &Word::name);
        if (word == words.end() || (word->takesValue && ++i == count)) {
            std::fprintf(stderr, "see the beginning of %s\n", file);
            std::exit(2);
        }
        word->set(given[i]);
    }
    return options;
}

// Runs the sequences, more than were asked for while more(how many) holds, and reports how many have been run. False
// once run(seed) is.
template <class More, class Run, class Report>
bool RunSequences(const SequenceOptions& options, const More& more, const Run& run, const Report& report) {
    const std::time_t started = std::time(nullptr);
    std::time_t reported = started;
    uint64_t k = 0;
    for (std::time_t now = started;
         options.seconds > 0 ? std::difftime(now, started) < options.seconds : k < options.sequences || more(k); ++k) {
        if (!run(options.seed + k)) return false;
        now = std::time(nullptr);
        if (options.progress > 0 && std::difftime(now, reported) >= options.progress) {
            report(k + 1);
            reported = now;
        }
    }
    report(k);
    return true;
}

}  // namespace orlix::fuzz
