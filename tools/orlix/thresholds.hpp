// The automatic thresholds of a histogram by their names on the command line.
#pragma once

#include "document.hpp"

#include <orlix/measure.hpp>

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

struct NamedThreshold {
    orlix::ThresholdMethod method;
    const char* id;                         // on the command line and in documents
    const char* alias;                      // a shorter or better known name
    const char* label;                      // for people
    std::array<const char*, 2> parameters;  // names; "" for a missing one
    bool always;                            // shown even if another method is chosen
    bool twoPeaked;                         // meaningful only if the histogram has two peaks
};

std::span<const NamedThreshold> ThresholdMethods();

// The threshold of the command line: a method with its parameters, or two levels.
struct ThresholdChoice {
    const NamedThreshold* method = nullptr;  // null for levels
    std::array<double, 2> parameters = {};
    std::array<double, 2> levels = {};  // first and last level of the phase; NaN for no bound
    std::string text;                   // as given
};

// Parses "METHOD", "METHOD:P" or "METHOD:P,P" with an id or alias, or "LO,HI", "LO," or ",HI". Throws UsageError for
// anything else.
ThresholdChoice ParseThreshold(std::string_view text);

// The result of one method.
struct ThresholdResult {
    const NamedThreshold* method = nullptr;
    std::array<double, 2> parameters = {};
    std::string error;     // why the method failed; empty if it did not
    std::string none;      // why there is no threshold although the method did not fail; empty if there is one
    std::string note;      // a doubt about the threshold; usually empty
    std::string noteCode;  // see warnings.hpp
    // See orlix::AutoThreshold.
    double darkCut = 0;
    double brightCut = 0;
    // For people and documents: the last dark level, or for trim the first and last level that belong to neither tail.
    // Whole numbers for integer pixels.
    std::vector<double> levels;
};

// `integer`: the pixels of the histogram are integers. `largest` is their largest level.
ThresholdResult FindThreshold(const orlix::ComPtr<IHistogram>& histogram, bool integer, double largest,
                              const NamedThreshold& method, const std::array<double, 2>& parameters);

}  // namespace tool
