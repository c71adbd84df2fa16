// The words of a fuzzer's command line.
#pragma once

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

}  // namespace orlix::fuzz
