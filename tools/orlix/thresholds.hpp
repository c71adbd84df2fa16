// The automatic thresholds of a histogram, beside each other.
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
    const char* id;                         // as on the command line and in the documents
    const char* alias;                      // a shorter or better known name, or ""
    const char* label;                      // for people
    std::array<const char*, 2> parameters;  // names; "" where there are fewer
    std::array<double, 2> defaults;
    bool always;     // tried whether chosen or not
    bool twoPeaked;  // means anything only where the histogram has two peaks
};

std::span<const NamedThreshold> ThresholdMethods();

// What the command line says about the threshold: a method, with its own parameters if wanted, or two levels.
struct ThresholdChoice {
    const NamedThreshold* method = nullptr;  // null: levels
    std::array<double, 2> parameters = {};
    std::array<double, 2> levels = {};  // both belong to the phase; NaN: no bound
    std::string text;                   // as given
};

// "METHOD", "METHOD:P" or "METHOD:P,P" with an id or alias, or "LO,HI", "LO," or ",HI". UsageError otherwise.
ThresholdChoice ParseThreshold(std::string_view text);

// What one method found.
struct ThresholdResult {
    const NamedThreshold* method = nullptr;
    std::array<double, 2> parameters = {};
    std::string error;  // why the method failed; empty when it did not
    std::string none;   // why there is no threshold although it did not fail; empty when there is one
    // What to know about a threshold; mostly empty.
    std::string note;
    std::string noteCode;  // see warnings.hpp
    // Dark are the pixels of at most darkCut, bright those above brightCut. The library's thresholds name a bin that
    // belongs to the lower class, so the cut is that bin's upper edge; trim leaves its two bins to neither tail.
    double darkCut = 0;
    double brightCut = 0;
    // For people and documents: the last dark level, of trim the levels between which neither tail lies. Of integer
    // pixels whole numbers.
    std::vector<double> levels;
};

// The histogram is of integer pixels or not. `largest` is the largest level of the pixels.
ThresholdResult FindThreshold(const orlix::ComPtr<IHistogram>& histogram, bool integer, double largest,
                              const NamedThreshold& method, const std::array<double, 2>& parameters);

}  // namespace tool
