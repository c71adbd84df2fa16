// The words of a fuzzer's command line.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace orlix::fuzz {

using Flags = std::map<std::string, std::function<void()>>;
using Settings = std::map<std::string, std::function<void(const char*)>>;  // take the word that follows

// False for a word that is neither, or nothing after a setting.
inline bool ReadWords(int count, char** words, const Flags& flags, const Settings& settings) {
    for (int i = 1; i < count; ++i) {
        if (const auto flag = flags.find(words[i]); flag != flags.end())
            flag->second();
        else if (const auto setting = settings.find(words[i]); setting != settings.end() && i + 1 < count)
            setting->second(words[++i]);
        else
            return false;
    }
    return true;
}

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

// Those of the words that a value follows. Refers to the options.
inline Settings SettingsOf(SequenceOptions& options) {
    return {
        {"--seed", [&](const char* text) { options.seed = std::strtoull(text, nullptr, 10); }},
        {"--sequences", [&](const char* text) { options.sequences = std::strtoull(text, nullptr, 10); }},
        {"--seconds", [&](const char* text) { options.seconds = std::strtod(text, nullptr); }},
        {"--steps", [&](const char* text) { options.steps = std::atoi(text); }},
        {"--only", [&](const char* text) { options.only = Numbers(text); }},
        {"--progress", [&](const char* text) { options.progress = std::strtod(text, nullptr); }},
    };
}

}  // namespace orlix::fuzz
