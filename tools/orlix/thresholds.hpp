// The six automatic thresholds of a histogram, beside each other.
#pragma once

#include "document.hpp"

#include <orlix/com_ptr.hpp>

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

struct ThresholdMethod {
    const char* id;                         // as on the command line and in the documents
    const char* alias;                      // a shorter or better known name, or ""
    const char* label;                      // for people
    std::array<const char*, 2> parameters;  // names; "" where there are fewer
    std::array<double, 2> defaults;
};

std::span<const ThresholdMethod> ThresholdMethods();

// What the command line says about the threshold: a method, with its own parameters if wanted, or two levels.
struct ThresholdChoice {
    const ThresholdMethod* method = nullptr;  // null: levels
    std::array<double, 2> parameters = {};
    std::array<double, 2> levels = {};  // both belong to the phase; NaN: no bound
    std::string text;                   // as given
};

// "METHOD", "METHOD:P" or "METHOD:P,P" with an id or alias, or "LO,HI", "LO," or ",HI". UsageError otherwise.
ThresholdChoice ParseThreshold(std::string_view text);

// What one method found.
struct ThresholdResult {
    const ThresholdMethod* method = nullptr;
    std::array<double, 2> parameters = {};
    std::string message;            // why there is none; empty when there is one
    std::string note;               // what to know about it; mostly empty
    std::vector<double> locations;  // the threshold; for trim the left and the right limit; grey levels
    // Dark are the pixels of at most darkCut, bright those above brightCut. The library's thresholds name a bin that belongs
    // to the lower class, so the cut is that bin's upper edge; trim leaves its two bins to neither tail.
    double darkCut = 0;
    double brightCut = 0;
};

ThresholdResult FindThreshold(const orlix::ComPtr<IHistogram>& histogram, const ThresholdMethod& method,
                              const std::array<double, 2>& parameters);

}  // namespace tool
